#include <algorithm>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

namespace {

// Sums wrap modulo 2^32: in unsigned numbers, where that is defined.
gr_int32 add(gr_int32 a, gr_int32 b) {
  return static_cast<gr_int32>(static_cast<gr_uint32>(a) + static_cast<gr_uint32>(b));
}
gr_int32 subtract(gr_int32 a, gr_int32 b) {
  return static_cast<gr_int32>(static_cast<gr_uint32>(a) - static_cast<gr_uint32>(b));
}

}  // namespace

void tg3_lift53VerticalScalar(const gr_int32* low, const gr_int32* high, gr_int32* heldHigh,
                              gr_int32* heldEven, gr_int32* odd, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const gr_int32 above = heldHigh[i];
    const gr_int32 below = high[i];
    const gr_int32 even = subtract(low[i], tg3_roundQuarter(add(above, below)));
    odd[i] = add(above, tg3_roundHalf(add(heldEven[i], even)));
    heldHigh[i] = below;
    heldEven[i] = even;
  }
}

void tg3_lift53LastOddScalar(const gr_int32* high, const gr_int32* even, gr_int32* odd, size_t n) {
  for (size_t i = 0; i < n; ++i) odd[i] = add(high[i], tg3_roundHalf(add(even[i], even[i])));
}

void tg3_lift53HorizontalScalar(const gr_int32* low, const gr_int32* high, gr_int32* even,
                                gr_int32* out, size_t n) {
  if (n == 0) return;
  const gr_int32* left = high - 1;
  for (size_t i = 0; i < n; ++i) {
    even[i] = subtract(low[i], tg3_roundQuarter(add(left[i], high[i])));
  }
  even[n] = even[n - 1];
  for (size_t i = 0; i < n; ++i) {
    out[2 * i] = even[i];
    out[2 * i + 1] = add(high[i], tg3_roundHalf(add(even[i], even[i + 1])));
  }
}

void tg3_addRowsScalar(const gr_int32* a, const gr_int32* b, gr_int32* sum, size_t n) {
  for (size_t i = 0; i < n; ++i) sum[i] = add(a[i], b[i]);
}

void tg3_clampTo8Scalar(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint8* samples,
                        size_t n) {
  for (size_t i = 0; i < n; ++i) {
    samples[i] = static_cast<gr_uint8>(std::clamp(values[i], low, high) & 0xFF);
  }
}

void tg3_clampTo16Scalar(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint16* samples,
                         size_t n) {
  for (size_t i = 0; i < n; ++i) {
    samples[i] = static_cast<gr_uint16>(std::clamp(values[i], low, high) & 0xFFFF);
  }
}
