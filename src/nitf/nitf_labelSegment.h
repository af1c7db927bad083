/// @file
/// NITFLabelSegment, a label in a NITF file (2.0 alone has them).
#pragma once

#include "nitf/nitf_segment.h"

class NITFLabelSegment : public NITFSegment {
 public:
  NITFLabelSegment(const NITFImageManager& manager, GRIOStreamInf& stream,
                   const NITFSegmentPlace& place)
      : NITFSegment(manager, stream, "LA", NITFAreas::EXTENSION, place) {}

  const char* getIdentifier() const override { return m_LID.text(); }
  /// The text of the label.
  const GRArray<gr_uint8>& getData() const { return m_data; }

 protected:
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;
  [[nodiscard]] GR_STATUS readData() override;

 private:
  NITFText<10> m_LID;
  GRArray<gr_uint8> m_data;
};
