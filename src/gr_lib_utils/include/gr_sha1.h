/// @file
/// The digest SHA-1 (FIPS 180-4), which locked images keep of their passwords.
#pragma once

#include <array>
#include <span>

#include "gr_lib_utils/include/gr_types.h"

using GRSha1Digest = std::array<gr_uint8, 20>;

/// Digests some bytes, and leaves no copy of them anywhere.
/// @param digest  receives it
/// @return 0; 8 for memory; 1 where the machine forbids this digest
[[nodiscard]] GR_STATUS gr_sha1(std::span<const gr_uint8> bytes, GRSha1Digest& digest);
