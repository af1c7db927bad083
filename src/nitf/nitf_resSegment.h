/// @file
/// NITFResSegment, a reserved extension segment of a NITF file.
#pragma once

#include "nitf/nitf_segment.h"

/// Read so far that the file's segments add up.
class NITFResSegment : public NITFSegment {
 public:
  NITFResSegment(const NITFImageManager& manager, GRIOStreamInf& stream,
                 const NITFSegmentPlace& place)
      : NITFSegment(manager, stream, "RE", NITFAreas::NONE, place) {}

  const char* getIdentifier() const override { return m_RESID.text(); }

 protected:
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;

 private:
  NITFText<25> m_RESID;
};
