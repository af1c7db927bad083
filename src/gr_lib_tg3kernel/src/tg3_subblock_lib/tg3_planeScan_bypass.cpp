#include <algorithm>
#include <bit>

#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_planeScan.h"

namespace {

constexpr gr_uint32 CHUNK = 32;  ///< columns looked at together

/// The first `count` bits, at most CHUNK.
constexpr gr_uint64 lowBits(gr_uint32 count) { return (gr_uint64{1} << count) - 1; }

/// The bits of the plane, which a file has with the highest of each byte first. Past the end they
/// are 0.
class RawBits {
 public:
  explicit RawBits(std::span<const gr_uint8> bytes) : m_bytes(bytes) {}

  /// The next bits, the very next lowest; at least 57.
  gr_uint64 peek() const {
    const gr_uint64 start = m_position / 8;
    gr_uint64 word = 0;
    if (start + 8 <= m_bytes.size()) {
      for (gr_uint32 i = 0; i < 8; ++i) word |= gr_uint64{m_bytes[start + i]} << (8 * i);
    } else {
      for (gr_uint32 i = 0; start + i < m_bytes.size(); ++i) {
        word |= gr_uint64{m_bytes[start + i]} << (8 * i);
      }
    }
    return reverseInBytes(word) >> (m_position % 8);
  }
  void skip(gr_uint32 count) { m_position += count; }

 private:
  static gr_uint64 reverseInBytes(gr_uint64 word) {
    word = ((word >> 1) & 0x5555555555555555) | ((word & 0x5555555555555555) << 1);
    word = ((word >> 2) & 0x3333333333333333) | ((word & 0x3333333333333333) << 2);
    return ((word >> 4) & 0x0F0F0F0F0F0F0F0F) | ((word & 0x0F0F0F0F0F0F0F0F) << 4);
  }

  std::span<const gr_uint8> m_bytes;
  gr_uint64 m_position = 0;  ///< in bits
};

/// Every significant sample of a row has been refined once the plane is over, and in a plane of
/// raw bits nothing asks before.
void markRefined(gr_uint16* flags, size_t width) {
  for (size_t x = 0; x < width; ++x) {
    flags[x] = static_cast<gr_uint16>(flags[x] | ((flags[x] & TG3_FLAG_SIGNIFICANT) << 1));
  }
}

/// Tells the nearest neighbours of a sample that it's significant, and if it's positive.
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
  const size_t stride = scan.flagStride();
  const size_t words = scan.wordsPerRow();
  for (size_t y = 0; y < scan.height; ++y) {
    markRefined(scan.flags + y * stride, scan.width);
    for (size_t word = 0; word < words; ++word) {
      gr_uint64& significant = scan.significant[y * scan.significantStride() + word];
      gr_uint64& negative = scan.negative[y * words + word];
      gr_uint16* const flags = scan.flags + y * stride + word * 64;
      gr_uint8* const positive = scan.positive + y * stride + word * 64;
      const gr_uint64 refined = significant;
      const auto columns = static_cast<gr_uint32>(std::min<size_t>(scan.width - word * 64, 64));
      gr_uint64 ones = 0;
      for (gr_uint32 x = 0; x < columns;) {
        // Up to the first sample that becomes significant, and is followed by its sign, bits and
        // columns go together.
        const gr_uint64 next = raw.peek();
        const gr_uint32 count = std::min(columns - x, CHUNK);
        const gr_uint64 first = next & ~(refined >> x) & lowBits(count);
        if (first == 0) {
          ones |= (next & lowBits(count)) << x;
          raw.skip(count);
          x += count;
          continue;
        }
        const auto ahead = static_cast<gr_uint32>(std::countr_zero(first));
        ones |= (next & lowBits(ahead + 1)) << x;
        x += ahead;
        const gr_uint32 rule = scan.model->sign[tg3_signIndex(flags[x], positive[x])];
        const gr_uint32 isNegative =
            (static_cast<gr_uint32>(next >> (ahead + 1)) & 1) ^ (rule >> 7);
        const gr_uint32 sign = isSignPlane ? 1 : isNegative;
        significant |= gr_uint64{1} << x;
        negative |= gr_uint64{sign} << x;
        markNearest(flags + x, positive + x, stride, sign);
        raw.skip(ahead + 2);
        ++x;
      }
      bits[y * words + word] = ones;
    }
  }
}
