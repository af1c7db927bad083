/// @file
/// TG3PlaneData, the coded bytes of one plane, and TG3SubblockPlanes, those of a subblock.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// One stored plane of a subblock. The bytes are their reader's.
struct TG3PlaneData {
  /// So many bytes behind the last one can be read, too; their values mean nothing.
  static constexpr size_t PADDING = 8;

  gr_uint8* data = nullptr;  ///< `length` bytes
  gr_uint32 length = 0;      ///< may be 0: the plane exists, but has no bytes
  gr_uint16 component = 0;
  gr_uint8 plane = 0;   ///< 0 to 31; weighs 2^(31 - plane)
  bool bypass = false;  ///< coded as raw bits
};
static_assert(sizeof(TG3PlaneData) == 16 || sizeof(void*) != 8);

/// The stored planes of a subblock by ascending component, then plane. Slots without a plane don't
/// appear, so an empty span is a subblock of zeros.
using TG3SubblockPlanes = std::span<TG3PlaneData>;
