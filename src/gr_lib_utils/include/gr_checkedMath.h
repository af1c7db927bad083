/// @file
/// Sums and products of numbers that a file supplies: 64 bits, and a word about overflow.
#pragma once

#include <limits>

#include "gr_lib_utils/include/gr_types.h"

/// sum = a + b; false, with `sum` untouched, when that passes 64 bits.
[[nodiscard]] constexpr bool gr_checkedAdd(gr_uint64 a, gr_uint64 b, gr_uint64& sum) {
  if (a > std::numeric_limits<gr_uint64>::max() - b) return false;
  sum = a + b;
  return true;
}

/// product = a * b; false, with `product` untouched, when that passes 64 bits.
[[nodiscard]] constexpr bool gr_checkedMultiply(gr_uint64 a, gr_uint64 b, gr_uint64& product) {
  if (b != 0 && a > std::numeric_limits<gr_uint64>::max() / b) return false;
  product = a * b;
  return true;
}

/// a + b, or the largest number where that passes 64 bits.
constexpr gr_uint64 gr_saturatingAdd(gr_uint64 a, gr_uint64 b) {
  gr_uint64 sum = std::numeric_limits<gr_uint64>::max();
  static_cast<void>(gr_checkedAdd(a, b, sum));
  return sum;
}

/// a * b, or the largest number where that passes 64 bits.
constexpr gr_uint64 gr_saturatingMultiply(gr_uint64 a, gr_uint64 b) {
  gr_uint64 product = std::numeric_limits<gr_uint64>::max();
  static_cast<void>(gr_checkedMultiply(a, b, product));
  return product;
}

/// ceil(a / b) for b > 0, without overflow.
constexpr gr_uint64 gr_ceilDivide(gr_uint64 a, gr_uint64 b) { return a / b + (a % b != 0); }
