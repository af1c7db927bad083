/// @file
/// Finished planes to samples: the colour transform of generation 2, rounding and clipping.
///
/// One row of planes P0, P1, ... becomes one row of samples in each band. With `max` the largest
/// value of the samples (255, 65535 or the largest single-precision number):
///
/// - One band: P0 + 0.5.
/// - Three bands, with R + 0.5, G + 0.5 and B + 0.5 for
///       R = P0 + 0.94521606 * P1 + 0.63271606 * P2
///       G = P0 - 0.28935185 * P1 - 0.60185188 * P2
///       B = P0 - 1.09953701 * P1 + 1.71296299 * P2
/// - Four bands, for integers only. R, G and B in double precision give C = 2 * (max - R) and so M
///   and Y, each rounded to single precision and cut to 0 and 2 * max. K is P3 cut below at 0. With
///   m the smallest of C, M and Y, and k = m - min(m, K), the samples are C + 0.5 - k,
///   M + 0.5 - k, Y + 0.5 - k and k + 0.5.
///
/// Each is cut to 0 and max, and truncated for integers. Where nothing else is said, each operation
/// is rounded to single precision, in the order as written; what isn't a number becomes 0.
///
/// The functions named ...Scalar are the definition; the others are the fast ones, equal bit for
/// bit.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

class GRISceneBuffer;

/// Rows of one band each: pointers to `n` values or more.
void tg2_convertOneBandScalar(const float* const* planes, gr_uint8* const* bands, size_t n);
void tg2_convertOneBandScalar(const float* const* planes, gr_uint16* const* bands, size_t n);
void tg2_convertOneBandScalar(const float* const* planes, float* const* bands, size_t n);
void tg2_convertOneBand(const float* const* planes, gr_uint8* const* bands, size_t n);
void tg2_convertOneBand(const float* const* planes, gr_uint16* const* bands, size_t n);
void tg2_convertOneBand(const float* const* planes, float* const* bands, size_t n);

void tg2_convertThreeBandsScalar(const float* const* planes, gr_uint8* const* bands, size_t n);
void tg2_convertThreeBandsScalar(const float* const* planes, gr_uint16* const* bands, size_t n);
void tg2_convertThreeBandsScalar(const float* const* planes, float* const* bands, size_t n);
void tg2_convertThreeBands(const float* const* planes, gr_uint8* const* bands, size_t n);
void tg2_convertThreeBands(const float* const* planes, gr_uint16* const* bands, size_t n);
void tg2_convertThreeBands(const float* const* planes, float* const* bands, size_t n);

void tg2_convertFourBandsScalar(const float* const* planes, gr_uint8* const* bands, size_t n);
void tg2_convertFourBandsScalar(const float* const* planes, gr_uint16* const* bands, size_t n);
void tg2_convertFourBands(const float* const* planes, gr_uint8* const* bands, size_t n);
void tg2_convertFourBands(const float* const* planes, gr_uint16* const* bands, size_t n);

/// Converts planes into the window of a scene buffer. The buffer has 1, 3 or 4 bands, all of 8 bits
/// without sign, of 16 bits without sign or of single precision. Four bands of single precision
/// leave it as it was.
///
/// @param planes  one per band, row after row
/// @param stride  from one row of a plane to the next, in samples
/// @param col, row    where the first sample goes in the window
/// @param cols, rows  the size to convert, which the window has from there on
void tg2_convertPlanes(const float* const* planes, size_t stride, gr_uint32 col, gr_uint32 row,
                       gr_uint32 cols, gr_uint32 rows, GRISceneBuffer& buffer);
