/// @file
/// The row kernels of the reversible 5/3 synthesis, with rounding to nearest and ties to even.
///
/// A line of samples x is split into low-pass values (its even positions) and high-pass values
/// (its odd positions). Synthesis is two steps, with mirrored edges (x[-1] = x[1]):
///
///     even[i] = low[i]  - round((high[i - 1] + high[i]) / 4)
///     odd[i]  = high[i] + round((even[i] + even[i + 1]) / 2)
///
/// All sums wrap modulo 2^32, so a damaged file goes wrong the same way in every variant. The
/// functions named ...Scalar are the definition; those without are the fast ones, equal bit for
/// bit.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// s / 4, rounded to nearest, ties to even.
constexpr gr_int32 tg3_roundQuarter(gr_int32 s) {
  const gr_int32 quarter = s >> 2;
  return static_cast<gr_int32>(static_cast<gr_uint32>(quarter) +
                               static_cast<gr_uint32>((quarter | s) & (s >> 1) & 1));
}

/// s / 2, rounded to nearest, ties to even.
constexpr gr_int32 tg3_roundHalf(gr_int32 s) {
  const gr_int32 half = s >> 1;
  return static_cast<gr_int32>(static_cast<gr_uint32>(half) + static_cast<gr_uint32>(s & half & 1));
}

/// One step down a column, for `n` columns at once. With H and E for high-pass and even rows:
///
///     even' = low - round((heldHigh + high) / 4)           E[r]     of H[r - 1], H[r]
///     odd   = heldHigh + round((heldEven + even') / 2)      O[r - 1] of E[r - 1], E[r]
///     heldHigh = high; heldEven = even'
///
/// @param low  L[r]
/// @param high  H[r]; may be `heldHigh` itself, which mirrors at the bottom of an odd height
/// @param heldHigh  in: H[r - 1], out: H[r]
/// @param heldEven  in: E[r - 1], out: E[r]
/// @param odd  out: O[r - 1]
void tg3_lift53VerticalScalar(const gr_int32* low, const gr_int32* high, gr_int32* heldHigh,
                              gr_int32* heldEven, gr_int32* odd, size_t n);
void tg3_lift53Vertical(const gr_int32* low, const gr_int32* high, gr_int32* heldHigh,
                        gr_int32* heldEven, gr_int32* odd, size_t n);

/// The last odd row of an even height, where the even row below is the mirrored one above:
/// odd = high + round((even + even) / 2).
void tg3_lift53LastOddScalar(const gr_int32* high, const gr_int32* even, gr_int32* odd, size_t n);
void tg3_lift53LastOdd(const gr_int32* high, const gr_int32* even, gr_int32* odd, size_t n);

/// One row: `n` low-pass and `n` + 1 high-pass values become 2 `n` samples.
/// @param low  n values
/// @param high  the high-pass value at the right of the first low one; high[-1], the one at its
///              left, is read too. The caller mirrors where the row begins or ends.
/// @param even  room for n + 1 values, which the call uses as it likes
/// @param out  2 n samples; the last one takes even[n] as even[n - 1], the mirror at the right
///             edge of a row of even width
void tg3_lift53HorizontalScalar(const gr_int32* low, const gr_int32* high, gr_int32* even,
                                gr_int32* out, size_t n);
void tg3_lift53Horizontal(const gr_int32* low, const gr_int32* high, gr_int32* even, gr_int32* out,
                          size_t n);

/// sum[i] = a[i] + b[i]; `sum` may be `a`.
void tg3_addRowsScalar(const gr_int32* a, const gr_int32* b, gr_int32* sum, size_t n);
void tg3_addRows(const gr_int32* a, const gr_int32* b, gr_int32* sum, size_t n);

/// samples[i] = clamp(values[i], low, high) as an 8- or 16-bit sample (of the bits, so signed
/// samples go through the same functions); low and high fit the sample.
void tg3_clampTo8Scalar(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint8* samples,
                        size_t n);
void tg3_clampTo8(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint8* samples, size_t n);
void tg3_clampTo16Scalar(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint16* samples,
                         size_t n);
void tg3_clampTo16(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint16* samples,
                   size_t n);
