/// @file
/// GRIResamplePosition, from a position between samples to the samples around it.
#pragma once

#include <cmath>

#include "gr_lib_utils/include/gr_types.h"

/// A position in a row or column of samples, cut into a whole number and a fraction.
///
/// Positions far outside are moved nearer before they are converted, which changes nothing: every
/// sample around them is the first or the last one all the same. No number counts as 0.
template <typename Float>
struct GRIResamplePosition {
  /// @param size  samples of the row or column
  GRIResamplePosition(Float position, gr_uint32 size) {
    constexpr Float LEAST = -4;  // no kernel reaches farther than two samples
    const Float most = static_cast<Float>(size) + 4;
    Float held = std::isnan(position) ? Float{0} : position;
    if (held < LEAST) held = LEAST;
    if (held > most) held = most;
    index = static_cast<gr_int64>(held);
    fraction = held - static_cast<Float>(index);
  }

  gr_int64 index;  ///< truncated toward zero
  Float fraction;
};

/// `index` limited to `first` .. `last`.
constexpr size_t gri_heldIndex(gr_int64 index, size_t first, size_t last) {
  if (index < static_cast<gr_int64>(first)) return first;
  if (index > static_cast<gr_int64>(last)) return last;
  return static_cast<size_t>(index);
}
