/// @file
/// The dither that decoding adds: a constant of the format.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_types.h"

constexpr gr_uint32 TG2_NOISE_SIZE = 128;  ///< rows of the table, and columns of each

/// By row, then by column: from -0.25 to 0.25, evenly spread.
extern const std::array<std::array<float, TG2_NOISE_SIZE>, TG2_NOISE_SIZE> tg2_noiseTable;
