/// @file
/// The forward 9/7 wavelet and the colour transform of the test files: what the decoder undoes.
#pragma once

#include <vector>

#include "gr_lib_utils/include/gr_types.h"

/// A subband: which samples it is made of, and how large it is.
struct TG2TestSubband {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  /// What its coefficients are multiplied by before they are divided by the bin width.
  double gain = 1.0;
};

/// The 3 * numLevels + 1 subbands of an image, in the order of the file.
std::vector<TG2TestSubband> tg2_subbandsOf(gr_uint32 width, gr_uint32 height, gr_uint32 numLevels);

/// Splits an image, lines of one column or row as if they were constant.
/// @param plane  width x height samples, row after row
/// @return the coefficients of each subband, row after row
std::vector<std::vector<float>> tg2_forwardWavelet(gr_uint32 width, gr_uint32 height,
                                                   gr_uint32 numLevels, std::vector<float> plane);

/// What the low samples of a line of constants are divided by to give the constant, squared: the
/// picture at half the size is the low subband divided by this.
constexpr double TG2_TEST_LOW_SCALE = 1.5133281569763917;

/// Makes the planes of a file from the bands of an image, in place: 1 as it is, 3 from RGB to one
/// of lightness and two of colour, 4 from CMYK.
/// @param max  the largest sample
void tg2_forwardColor(std::vector<std::vector<float>>& bands, double max);
