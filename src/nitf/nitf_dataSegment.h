/// @file
/// NITFDataSegment, a data extension segment of a NITF file.
#pragma once

#include "nitf/nitf_segment.h"

/// Of the data extensions only those matter here that take the tags that found no room in another
/// segment's areas: overflow segments.
class NITFDataSegment : public NITFSegment {
 public:
  NITFDataSegment(const NITFImageManager& manager, GRIOStreamInf& stream,
                  const NITFSegmentPlace& place)
      : NITFSegment(manager, stream, "DE", NITFAreas::NONE, place) {}

  const char* getIdentifier() const override { return m_DESTAG.text(); }
  bool isOverflow() const { return m_isOverflow; }
  /// Whether this takes the overflow of a segment.
  /// @param code, number  the segment's
  /// @param isUser  whether it is that of the user area, not of the extension area
  /// @return 0; 51210 when it takes another's, or none
  [[nodiscard]] GR_STATUS verifyIsOverflow(std::string_view code, bool isUser,
                                           gr_uint32 number) const;

 protected:
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;

 private:
  NITFText<25> m_DESTAG;
  bool m_isOverflow = false;
  NITFText<6> m_DESOFLW;    // the area that overflowed
  gr_uint32 m_DESITEM = 0;  // the number of the segment that it belongs to
};
