/// @file
/// NITFGraphicSegment, a graphic (2.1) or symbol (2.0) in a NITF file.
#pragma once

#include "nitf/nitf_segment.h"

/// Reads the subheader alone: nothing here draws graphics.
class NITFGraphicSegment : public NITFSegment {
 public:
  NITFGraphicSegment(const NITFImageManager& manager, GRIOStreamInf& stream,
                     const NITFSegmentPlace& place)
      : NITFSegment(manager, stream, "SY", NITFAreas::EXTENSION, place) {}

  const char* getIdentifier() const override { return m_SID.text(); }

 protected:
  /// @return also 51220 for an unknown format of the graphic, 51211 for an encrypted one
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;

 private:
  static GR_STATUS skipColors(NITFFieldReader& fields, bool isBitmap, char color);

  NITFText<10> m_SID;
};
