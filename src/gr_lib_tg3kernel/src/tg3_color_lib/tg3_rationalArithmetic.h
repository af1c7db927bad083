/// @file
/// Products with the rational numbers of the colour rotations: a coefficient k stands for
/// k / 16384, and a product is rounded to nearest, halves upwards.
///
/// A value is split into quotient and remainder, so that 32 bits do. Where the exact result needs
/// more, it is taken modulo 2^32: damaged files give the same wrong samples everywhere.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

constexpr int TG3_RATIONAL_BITS = 14;
constexpr gr_int32 TG3_RATIONAL_ONE = 1 << TG3_RATIONAL_BITS;
constexpr gr_int32 TG3_RATIONAL_HALF = TG3_RATIONAL_ONE / 2;

// Sums and products modulo 2^32.
constexpr gr_int32 tg3_wrappingAdd(gr_int32 a, gr_int32 b) {
  return static_cast<gr_int32>(static_cast<gr_uint32>(a) + static_cast<gr_uint32>(b));
}
constexpr gr_int32 tg3_wrappingSubtract(gr_int32 a, gr_int32 b) {
  return static_cast<gr_int32>(static_cast<gr_uint32>(a) - static_cast<gr_uint32>(b));
}
constexpr gr_int32 tg3_wrappingMultiply(gr_int32 a, gr_int32 b) {
  return static_cast<gr_int32>(static_cast<gr_uint32>(a) * static_cast<gr_uint32>(b));
}

/// floor((x * a + y * b + 8192) / 16384), for coefficients a and b of magnitudes up to 32767 each.
constexpr gr_int32 tg3_sumOfProducts(gr_int32 x, gr_int32 a, gr_int32 y, gr_int32 b) {
  const gr_int32 quotients = tg3_wrappingAdd(tg3_wrappingMultiply(x >> TG3_RATIONAL_BITS, a),
                                             tg3_wrappingMultiply(y >> TG3_RATIONAL_BITS, b));
  const gr_int32 remainders =
      (x & (TG3_RATIONAL_ONE - 1)) * a + (y & (TG3_RATIONAL_ONE - 1)) * b + TG3_RATIONAL_HALF;
  return tg3_wrappingAdd(quotients, remainders >> TG3_RATIONAL_BITS);
}

/// floor((x * k + 8192) / 16384)
constexpr gr_int32 tg3_product(gr_int32 x, gr_int32 k) { return tg3_sumOfProducts(x, k, 0, 0); }
