/// @file
/// The digest SHA-1 (FIPS 180-4), which locked images keep of their passwords.
#pragma once

#include <array>
#include <span>

#include "gr_lib_utils/include/gr_types.h"

using GRSha1Digest = std::array<gr_uint8, 20>;

/// The digest of some bytes.
GRSha1Digest gr_sha1(std::span<const gr_uint8> bytes);
