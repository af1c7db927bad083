/// @file
/// The row kernels of TG2Dequantizer. Those named ...Scalar are the definition; the others are the
/// fast ones, equal bit for bit. `out` may be the same memory as `bins`.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// The reconstruction point of a bin, from its middle towards 0.
constexpr float TG2_RECONSTRUCTION = 0.44F;

/// Without dither; see TG2Dequantizer.
void tg2_dequantizeScalar(const gr_int32* bins, float* out, size_t n, float step);
void tg2_dequantize(const gr_int32* bins, float* out, size_t n, float step);

/// With dither. @param noise  the values of the table for the `n` samples
void tg2_dequantizeDitherScalar(const gr_int32* bins, const float* noise, float* out, size_t n,
                                float step);
void tg2_dequantizeDither(const gr_int32* bins, const float* noise, float* out, size_t n,
                          float step);
