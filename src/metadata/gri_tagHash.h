/// @file
/// The hash by which records are found.
#pragma once

#include <string_view>

#include "gr_lib_utils/include/gr_types.h"

/// SipHash-2-4 (Aumasson and Bernstein, 2012): who doesn't know the key can't choose texts whose
/// hashes collide.
gr_uint64 gri_tagHash(gr_uint64 key0, gr_uint64 key1, std::string_view text);
