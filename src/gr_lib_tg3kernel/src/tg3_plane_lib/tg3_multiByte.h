/// @file
/// Integers of variable length: few bits in the first byte, then groups of 7, the lowest first. A
/// flag in each byte says whether another one follows.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// An integer with some bits in front that don't belong to it.
struct TG3MultiByte {
  static constexpr gr_uint32 MOST_RESERVED_BITS = 6;

  gr_uint64 value = 0;
  gr_uint8 reservedBits = 0;  ///< the top bits of the first byte, moved to the bottom
  gr_uint32 count = 0;        ///< bytes that it takes

  /// Up to 4 bytes, of which the fourth has no flag: 8 bits.
  /// @param numReservedBits  up to MOST_RESERVED_BITS
  /// @return 0; 2001 when `bytes` end inside
  [[nodiscard]] GR_STATUS read32(std::span<const gr_uint8> bytes, gr_uint32 numReservedBits);
  /// Up to 8 bytes.
  /// @return 0; 2001 when `bytes` end inside; 2010 when the eighth byte has its flag set
  [[nodiscard]] GR_STATUS read64(std::span<const gr_uint8> bytes, gr_uint32 numReservedBits);
};
