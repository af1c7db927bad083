/// @file
/// TG3PlaneRecord, the record of one stored plane, or of several that are not stored.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// What a record says. On disk it is one integer of variable length, the two top bits of which
/// (in its first byte) are the flags.
struct TG3PlaneRecord {
  bool isLength = false;   ///< `value` is a plane's length in bytes; else a number of empty slots
  bool useBypass = false;  ///< the plane is coded as raw bits
  gr_uint64 value = 0;
  gr_uint32 prefixCount = 0;  ///< bytes that the record takes, up to LONGEST

  static constexpr gr_uint32 LONGEST = 8;  ///< bytes

  /// Reads the record at the begin of `bytes`.
  /// @param is64Bit  whether integers take up to 8 bytes (TG3MultiByte64) or 4 (TG3MultiByte32)
  /// @return 0; 2001 when `bytes` end inside of it, or for no empty slots; 2010 for an integer of
  ///         more than 8 bytes
  [[nodiscard]] GR_STATUS read(std::span<const gr_uint8> bytes, bool is64Bit);
};
