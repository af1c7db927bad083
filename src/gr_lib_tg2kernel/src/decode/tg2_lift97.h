/// @file
/// The kernels of the 9/7 synthesis.
///
/// A line of samples is split into low-pass values (its even positions) and high-pass values (its
/// odd positions). Synthesis is four steps, each over the whole line:
///
///     e[n] = low[n]  - 0.44350684  * (high[n - 1] + high[n])
///     o[n] = high[n] - 0.8829111   * (e[n] + e[n + 1])
///     e[n] = e[n]    + 0.052980117 * (o[n - 1] + o[n])
///     o[n] = o[n]    + 1.5861344   * (e[n] + e[n + 1])
///
/// The constants are single precision. Sum, product and outer sum are formed in double precision,
/// none of them fused, and each lifted value is rounded to single once: so every result is fixed to
/// the bit. The functions named ...Scalar are the definition; those without are the fast ones,
/// equal bit for bit. None of them mirrors: the caller's rows reach as far as the steps do.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// The factors of the four steps, with the sign that makes each step a sum. a - k * b and
/// a + (-k) * b are the same to the bit.
constexpr float TG2_LIFT97[4] = {-0.44350684F, -0.8829111F, 0.052980117F, 1.5861344F};

/// A single step: out[i] = center[i] + factor * (a[i] + b[i]). `out` may be `center`.
void tg2_lift97StepScalar(const float* center, const float* a, const float* b, float factor,
                          float* out, size_t n);
void tg2_lift97Step(const float* center, const float* a, const float* b, float factor, float* out,
                    size_t n);

/// What moves down the columns from one call of tg2_lift97Vertical to the next: a row each.
struct TG2Lift97Rows {
  const float* low;        ///< in: low-pass row n
  const float* highAbove;  ///< in: high-pass row n - 1
  const float* high;       ///< in: high-pass row n
  float* firstEven;        ///< in: row n - 1 after the first step; out: row n
  float* firstOdd;         ///< in: row n - 2 after the second step; out: row n - 1
  const float* evenAbove;  ///< in: even output row n - 2
  float* even;             ///< out: even output row n - 1, which is sample 2 n - 2
  float* odd;              ///< out: odd output row n - 2, which is sample 2 n - 3
};

/// The four steps, each a row behind the one before it, for `n` columns at once. No row that is
/// written is another one of them.
void tg2_lift97VerticalScalar(const TG2Lift97Rows& rows, size_t n);
void tg2_lift97Vertical(const TG2Lift97Rows& rows, size_t n);

/// How many even positions the samples of a row reach: see tg2_lift97Horizontal.
constexpr size_t tg2_lift97Evens(bool startsOdd, size_t count) {
  return (count + (startsOdd ? 1 : 0)) / 2 + 1;
}

/// One row of `count` samples, of which the first one belongs to low[0] or, with `startsOdd`, to
/// high[0]. With m = tg2_lift97Evens(startsOdd, count), it reads low[-1] to low[m] and high[-2] to
/// high[m].
/// @param work  room for 2 * m + 3 values, which the call uses as it likes
void tg2_lift97HorizontalScalar(const float* low, const float* high, float* work, float* out,
                                bool startsOdd, size_t count);
void tg2_lift97Horizontal(const float* low, const float* high, float* work, float* out,
                          bool startsOdd, size_t count);
