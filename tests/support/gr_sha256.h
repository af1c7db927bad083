/// @file
/// SHA-256 (FIPS 180-4), to hold decoded pictures to hashes that others made.
#pragma once

#include <span>
#include <string>

#include "gr_lib_utils/include/gr_types.h"

/// The hash of bytes, as 64 small hexadecimal digits.
std::string gr_sha256(std::span<const gr_uint8> bytes);
