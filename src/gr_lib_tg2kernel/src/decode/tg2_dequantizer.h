/// @file
/// TG2Dequantizer: bin numbers to wavelet coefficients, with or without dither.
#pragma once

#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_utils/include/gr_types.h"

/// Where a subband begins in the table of noise.
struct TG2NoiseOrigin {
  gr_uint8 x = 0;  ///< column
  gr_uint8 y = 0;  ///< row
};

/// The factor of one level, to the power of the level of the decoder, in double precision; rounded
/// at the end.
float tg2_levelNormalizer(gr_int32 level);

/// The step of a band.
/// @param normalizer  of the decoder's level
/// @param gain  of the subband in its tree
/// @param binWidth  of the band, finite and not below 0
float tg2_bandStep(float normalizer, float gain, float binWidth);

/// With the step s of its band, bin number 0 becomes 0, and any other number q
///
///     (q - 0.44) * s + s / 2     above 0
///     (q + 0.44) * s - s / 2     below 0
///
/// in single precision, rounded after each operation. Dither then subtracts s times the value that
/// the table of noise has for the sample's place in the subband. A step of 0 gives zeros, and no
/// dither.
class TG2Dequantizer {
 public:
  /// @param rect  the samples of a call of `dequantize`, in coordinates of the subband
  /// @param noise  for dither, else null; outlives the object
  explicit TG2Dequantizer(const TG2Rect& rect, const TG2NoiseOrigin* noise)
      : m_rect(rect), m_noise(noise) {}

  /// @param in  a bin number for each sample of the rectangle, row after row without padding
  /// @param out  as many samples; may be the same memory
  void dequantize(const gr_int32* in, float* out, float step) const;

  /// A part of one row: `n` samples from column `x` of row `y` of the subband on, which aren't
  /// negative. `out` may be the same memory as `in`.
  void dequantizeRow(gr_int32 x, gr_int32 y, const gr_int32* in, float* out, size_t n,
                     float step) const;

 private:
  TG2Rect m_rect;
  const TG2NoiseOrigin* m_noise;
};
