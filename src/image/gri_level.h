/// @file
/// The level of a wavelet pyramid that a magnification stands for.
#pragma once

#include <algorithm>
#include <cmath>

#include "gr_lib_utils/include/gr_types.h"

/// How many times to halve an image to come nearest to a magnification above 0; below 0 for
/// enlargements. Magnifications past 2^127 count as that, on both sides.
inline gr_int32 gri_levelOf(double magnification) {
  constexpr double LIMIT = 127.0;
  const double level = std::floor(std::log2(1.0 / magnification) + 0.5);
  return static_cast<gr_int32>(std::clamp(level, -LIMIT, LIMIT));
}
