/// @file
/// The colour transform of generation 2, for its kernels.
#pragma once

/// Weights of the second and third plane in a colour; the first one's is 1.
struct TG2ColorRow {
  float ofP1;
  float ofP2;
};

/// Red, green and blue. All are exact in single precision.
constexpr TG2ColorRow TG2_COLOR_ROWS[3] = {
    {0.9452160596847534F, 0.6327160596847534F},
    {-0.28935185074806213F, -0.6018518805503845F},
    {-1.0995370149612427F, 1.7129629850387573F},
};
