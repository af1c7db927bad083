/// @file
/// TG3PlaneDesc, the name of one bit-plane of an image.
#pragma once

#include <compare>

#include "gr_lib_utils/include/gr_types.h"

class TG3ImageInfo;

/// Names a plane by subband, subblock, component and plane. A field of all ones is none at all;
/// their order is the natural order of the names.
struct TG3PlaneDesc {
  static constexpr gr_uint8 NO_SUBBAND = 0xFF;
  static constexpr gr_uint32 NO_SUBBLOCK = 0xFFFFFFFF;
  static constexpr gr_uint16 NO_COMPONENT = 0xFFFF;
  static constexpr gr_uint8 NO_PLANE = 0xFF;

  gr_uint8 subband = NO_SUBBAND;
  gr_uint32 subblock = NO_SUBBLOCK;
  gr_uint16 component = NO_COMPONENT;
  gr_uint8 plane = NO_PLANE;

  bool isValid() const {
    return subband != NO_SUBBAND && subblock != NO_SUBBLOCK && component != NO_COMPONENT &&
           plane != NO_PLANE;
  }
  /// Whether the image has this plane.
  bool isLegal(const TG3ImageInfo& info) const;
  /// All four in 64 bits, the subband on top and the plane at the bottom.
  gr_uint64 getKey() const {
    return gr_uint64{subband} << 56 | gr_uint64{subblock} << 24 | gr_uint64{component} << 8 | plane;
  }

  // NOLINTNEXTLINE(modernize-use-nullptr): the zero is that of the comparison itself
  auto operator<=>(const TG3PlaneDesc&) const = default;
};
