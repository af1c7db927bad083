#include "gr_lib_tg2kernel/src/decode/tg2_dequantizer.h"

#include <algorithm>
#include <cmath>

#include "gr_lib_tg2kernel/src/decode/tg2_dequantize.h"
#include "gr_lib_tg2kernel/src/decode/tg2_noiseTable.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

float tg2_levelNormalizer(gr_int32 level) {
  constexpr double OF_ONE_LEVEL = 1.5133281569763917;
  double power = 1;
  for (gr_int32 i = std::abs(level); i > 0; --i) power *= OF_ONE_LEVEL;
  return static_cast<float>(level < 0 ? 1 / power : power);
}

float tg2_bandStep(float normalizer, float gain, float binWidth) {
  return 1.0F / normalizer / gain * binWidth;
}

void TG2Dequantizer::dequantizeRow(gr_int32 x, gr_int32 y, const gr_int32* in, float* out, size_t n,
                                   float step) const {
  if (m_noise == nullptr) {
    tg2_dequantize(in, out, n, step);
    return;
  }
  const size_t row = (static_cast<size_t>(y) + m_noise->y) % TG2_NOISE_SIZE;
  size_t column = (static_cast<size_t>(x) + m_noise->x) % TG2_NOISE_SIZE;
  for (size_t i = 0; i < n;) {
    const size_t count = std::min(n - i, TG2_NOISE_SIZE - column);
    tg2_dequantizeDither(in + i, &tg2_noiseTable[row][column], out + i, count, step);
    i += count;
    column = 0;
  }
}

void TG2Dequantizer::dequantize(const gr_int32* in, float* out, float step) const {
  const size_t width = static_cast<size_t>(std::max<gr_int64>(m_rect.getWidth(), 0));
  for (gr_int32 y = m_rect.y0; y <= m_rect.y1; ++y) {
    dequantizeRow(m_rect.x0, y, in, out, width, step);
    in += width;
    out += width;
  }
}
