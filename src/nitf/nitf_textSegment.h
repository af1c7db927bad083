/// @file
/// NITFTextSegment, a text in a NITF file.
#pragma once

#include "nitf/nitf_segment.h"

class NITFTextSegment : public NITFSegment {
 public:
  NITFTextSegment(const NITFImageManager& manager, GRIOStreamInf& stream,
                  const NITFSegmentPlace& place)
      : NITFSegment(manager, stream, "TE", NITFAreas::EXTENSION, place) {}

  const char* getIdentifier() const override { return m_TEXTID.text(); }
  const GRArray<gr_uint8>& getData() const { return m_data; }

 protected:
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;
  [[nodiscard]] GR_STATUS readData() override;
  [[nodiscard]] GR_STATUS addSegmentMetadata(NITFMetadata& metadata) const override;

 private:
  NITFText<7> m_TEXTID;
  NITFText<3> m_TXTALVL;
  NITFText<14> m_TXTDT;
  NITFText<80> m_TXTITL;
  GRArray<gr_uint8> m_data;
};
