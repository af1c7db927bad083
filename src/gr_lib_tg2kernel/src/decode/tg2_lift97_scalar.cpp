#include "gr_lib_tg2kernel/src/decode/tg2_lift97.h"

namespace {

float lift(float center, float a, float b, float factor) {
  const double sum = static_cast<double>(a) + static_cast<double>(b);
  return static_cast<float>(static_cast<double>(center) + static_cast<double>(factor) * sum);
}

}  // namespace

void tg2_lift97StepScalar(const float* center, const float* a, const float* b, float factor,
                          float* out, size_t n) {
  for (size_t i = 0; i < n; ++i) out[i] = lift(center[i], a[i], b[i], factor);
}

void tg2_lift97VerticalScalar(const TG2Lift97Rows& rows, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const float firstEven = lift(rows.low[i], rows.highAbove[i], rows.high[i], TG2_LIFT97[0]);
    const float firstOdd = lift(rows.highAbove[i], rows.firstEven[i], firstEven, TG2_LIFT97[1]);
    const float even = lift(rows.firstEven[i], rows.firstOdd[i], firstOdd, TG2_LIFT97[2]);
    rows.odd[i] = lift(rows.firstOdd[i], rows.evenAbove[i], even, TG2_LIFT97[3]);
    rows.even[i] = even;
    rows.firstEven[i] = firstEven;
    rows.firstOdd[i] = firstOdd;
  }
}

void tg2_lift97HorizontalScalar(const float* low, const float* high, float* work, float* out,
                                bool startsOdd, size_t count) {
  if (count == 0) return;
  const size_t begin = startsOdd ? 1 : 0;  // positions, of which 0 is low[0]'s
  const size_t end = begin + count;
  const size_t m = tg2_lift97Evens(startsOdd, count);
  float* even = work + 1;         // even[-1] to even[m]
  float* odd = even + m + 1 + 1;  // odd[-1] to odd[m - 1]
  tg2_lift97StepScalar(low - 1, high - 2, high - 1, TG2_LIFT97[0], even - 1, m + 2);
  tg2_lift97StepScalar(high - 1, even - 1, even, TG2_LIFT97[1], odd - 1, m + 1);
  tg2_lift97StepScalar(even, odd - 1, odd, TG2_LIFT97[2], even, m);
  for (size_t position = begin; position < end; ++position) {
    const size_t n = position / 2;
    out[position - begin] =
        position % 2 == 0 ? even[n] : lift(odd[n], even[n], even[n + 1], TG2_LIFT97[3]);
  }
}
