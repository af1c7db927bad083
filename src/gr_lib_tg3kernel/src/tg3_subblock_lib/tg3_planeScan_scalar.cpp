#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_planeScan.h"

namespace {

/// The bits of a bypass plane, the highest of each byte first.
class RawBits {
 public:
  explicit RawBits(std::span<const gr_uint8> bytes) : m_bytes(bytes) {}
  gr_uint32 next() {
    if (m_left == 0) {
      m_byte = m_position < m_bytes.size() ? m_bytes[m_position++] : 0;
      m_left = 8;
    }
    return (m_byte >> --m_left) & 1;
  }

 private:
  std::span<const gr_uint8> m_bytes;
  size_t m_position = 0;
  gr_uint32 m_byte = 0;
  gr_uint32 m_left = 0;
};

void markNearest(gr_uint16* flags, gr_uint8* positive, size_t stride, gr_uint32 negative) {
  flags[0] |= TG3_FLAG_SIGNIFICANT;
  flags[-1] |= TG3_FLAG_RIGHT;
  flags[1] |= TG3_FLAG_LEFT;
  *(flags - stride) |= TG3_FLAG_LOWER;
  flags[stride] |= TG3_FLAG_UPPER;
  if (negative != 0) return;
  positive[-1] |= TG3_POSITIVE_RIGHT;
  positive[1] |= TG3_POSITIVE_LEFT;
  *(positive - stride) |= TG3_POSITIVE_LOWER;
  positive[stride] |= TG3_POSITIVE_UPPER;
}

}  // namespace

void tg3_scanBypassPlane(const TG3PlaneScan& scan, std::span<const gr_uint8> bytes,
                         bool isSignPlane, gr_uint64* bits) {
  RawBits raw(bytes);
  const size_t words = scan.wordsPerRow();
  for (size_t y = 0; y < scan.height; ++y) {
    gr_uint16* flags = scan.flags + y * scan.flagStride();
    gr_uint8* positive = scan.positive + y * scan.flagStride();
    gr_uint64* significant = scan.significant + y * scan.significantStride();
    gr_uint64* negative = scan.negative + y * words;
    for (size_t x = 0; x < scan.width; ++x) {
      gr_uint64& word = bits[y * words + x / 64];
      if (x % 64 == 0) word = 0;
      const gr_uint64 column = gr_uint64{1} << (x % 64);
      const gr_uint32 bit = raw.next();
      if (bit != 0) word |= column;
      if ((flags[x] & TG3_FLAG_SIGNIFICANT) != 0) {
        flags[x] |= TG3_FLAG_REFINED;
      } else if (bit != 0) {
        const gr_uint32 rule = scan.model->sign[tg3_signIndex(flags[x], positive[x])];
        const gr_uint32 sign = (raw.next() ^ (rule >> 7)) | (isSignPlane ? 1 : 0);
        significant[x / 64] |= column;
        if (sign != 0) negative[x / 64] |= column;
        markNearest(flags + x, positive + x, scan.flagStride(), sign);
      }
    }
  }
}

void tg3_makeSamplesScalar(const TG3SampleRow& row, gr_uint32 from, gr_int32* samples) {
  for (size_t x = from; x < row.width; ++x) {
    gr_uint32 magnitude = 0;
    for (gr_uint32 i = 0; i < row.numPlanes; ++i) {
      const gr_uint64 bit = (row.bits[i * row.planeStride + x / 64] >> (x % 64)) & 1;
      const gr_uint32 plane = row.firstPlane + i;
      if (bit != 0 && plane > 0) magnitude |= gr_uint32{1} << (31 - plane);
    }
    if (magnitude != 0) magnitude += row.midpoint[x % 2];
    const bool negative = ((row.negative[x / 64] >> (x % 64)) & 1) != 0;
    samples[x] = static_cast<gr_int32>(negative ? 0 - magnitude : magnitude);
  }
}
