#include <cstring>

#include "gr_lib_tg2kernel/src/decode/tg2_dequantize.h"

namespace {

// The bins may share their memory with the samples, which are of another type.
gr_int32 binAt(const gr_int32* bins, size_t i) {
  gr_int32 q = 0;
  std::memcpy(&q, bins + i, sizeof(q));
  return q;
}

float sampleOf(gr_int32 q, float step) {
  if (q == 0) return 0;
  const float value = static_cast<float>(q);
  const float half = step / 2;
  return q > 0 ? (value - TG2_RECONSTRUCTION) * step + half
               : (value + TG2_RECONSTRUCTION) * step - half;
}

}  // namespace

void tg2_dequantizeScalar(const gr_int32* bins, float* out, size_t n, float step) {
  for (size_t i = 0; i < n; ++i) {
    const float sample = step == 0 ? 0 : sampleOf(binAt(bins, i), step);
    std::memcpy(out + i, &sample, sizeof(sample));
  }
}

void tg2_dequantizeDitherScalar(const gr_int32* bins, const float* noise, float* out, size_t n,
                                float step) {
  for (size_t i = 0; i < n; ++i) {
    const float sample = step == 0 ? 0 : sampleOf(binAt(bins, i), step) - noise[i] * step;
    std::memcpy(out + i, &sample, sizeof(sample));
  }
}
