// The scan is no vector code, but gains from the bit instructions that come with the newer
// instruction sets, so it's compiled for each like the kernels.
#include <bit>

#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_planeScan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_planeScan_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace gri {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The columns of a word that have a bit of `row` at, left or right of them.
HWY_INLINE gr_uint64 Spread(const gr_uint64* row) {
  return row[0] | (row[0] << 1) | (row[-1] >> 63) | (row[0] >> 1) | (row[1] << 63);
}

/// Sets bits of the flags of a sample, or of its positive neighbours.
template <typename T>
HWY_INLINE void Mark(T& of, gr_uint32 bits) {
  of = static_cast<T>(of | bits);
}

/// Tells the neighbours of a sample that it's significant.
HWY_INLINE void MarkSignificant(gr_uint16* flags, size_t stride) {
  gr_uint16* const above = flags - stride;
  gr_uint16* const below = flags + stride;
  Mark(flags[1], TG3_FLAG_LEFT);
  Mark(flags[0], TG3_FLAG_SIGNIFICANT);
  Mark(flags[-1], TG3_FLAG_RIGHT);
  Mark(above[-1], TG3_FLAG_LOWER_RIGHT);
  Mark(above[0], TG3_FLAG_LOWER);
  Mark(above[1], TG3_FLAG_LOWER_LEFT);
  Mark(below[-1], TG3_FLAG_UPPER_RIGHT);
  Mark(below[0], TG3_FLAG_UPPER);
  Mark(below[1], TG3_FLAG_UPPER_LEFT);
}

/// Tells the nearest neighbours of a sample its sign: `isPositive` is 0 or 1.
HWY_INLINE void MarkSign(gr_uint8* positive, size_t stride, gr_uint32 isPositive) {
  Mark(positive[1], isPositive * TG3_POSITIVE_LEFT);
  Mark(positive[-1], isPositive * TG3_POSITIVE_RIGHT);
  Mark(*(positive - stride), isPositive * TG3_POSITIVE_LOWER);
  Mark(positive[stride], isPositive * TG3_POSITIVE_UPPER);
}

void ScanPlane(const TG3PlaneScan& scan, std::span<const gr_uint8> bytes, bool isSignPlane,
               gr_uint64* bits) {
  GRMQBytes source(bytes);
  GRMQDecoder decoder(source);
  TG3ContextModel& model = *scan.model;
  const size_t stride = scan.flagStride();
  const size_t significantStride = scan.significantStride();
  const size_t words = scan.wordsPerRow();
  const gr_uint32 signPlane = isSignPlane ? 1 : 0;

  for (size_t y = 0; y < scan.height; ++y) {
    for (size_t word = 0; word < words; ++word) {
      gr_uint64* const row = scan.significant + y * significantStride + word;
      gr_uint16* const flags = scan.flags + y * stride + word * 64;
      gr_uint8* const positive = scan.positive + y * stride + word * 64;
      const size_t left = scan.width - word * 64;
      const gr_uint32 columns = left < 64 ? static_cast<gr_uint32>(left) : 64;
      const gr_uint64 valid = ~gr_uint64{0} >> (64 - columns);
      // The columns whose context isn't that of a sample with nothing around.
      gr_uint64 active =
          (Spread(row - significantStride) | Spread(row) | Spread(row + significantStride)) & valid;
      gr_uint64 ones = 0;
      gr_uint64 significant = row[0];
      gr_uint64 negative = 0;
      gr_uint32 x = 0;

      // What follows the first bit of a sample. Its sign's rule is looked up in advance.
      const auto becomeSignificant = [&](gr_uint32 rule) HWY_ATTR __attribute__((always_inline)) {
        MarkSignificant(flags + x, stride);
        const gr_uint64 column = gr_uint64{1} << x;
        ones |= column;
        significant |= column;
        active |= (column << 1) & valid;
        const gr_uint32 isNegative =
            (decoder.decode(model.coder, rule & 0x7F) ^ (rule >> 7)) | signPlane;
        negative |= gr_uint64{isNegative} << x;
        MarkSign(positive + x, stride, isNegative ^ 1);
      };

      while (x < columns) {
        const gr_uint64 ahead = active >> x;
        gr_uint32 end = ahead != 0 ? x + static_cast<gr_uint32>(std::countr_zero(ahead)) : columns;
        bool found = false;
        while (x < end) {
          const GRMQState context = model.coder.contexts[GRMQ_ZERO_CONTEXT];
          if ((context & 1) == 0) {
            x += decoder.skipExpected(context, end - x);
            if (x == end) break;
          }
          found = decoder.decode(model.coder, GRMQ_ZERO_CONTEXT) != 0;
          if (found) break;
          ++x;
        }
        if (found) {
          becomeSignificant(model.sign[tg3_signIndex(flags[x], positive[x])]);
          ++x;
        }
        if (x == columns) break;

        const gr_uint64 idle = ~active >> x;
        end = idle != 0 ? x + static_cast<gr_uint32>(std::countr_zero(idle)) : 64;
        for (; x < end; ++x) {
          const gr_uint32 state = flags[x];
          const gr_uint32 rule = model.sign[tg3_signIndex(state, positive[x])];
          const gr_uint64 bit = decoder.decode(model.coder, model.magnitude[state]);
          if ((bit & ~(state / TG3_FLAG_SIGNIFICANT)) != 0) {
            becomeSignificant(rule);
            continue;
          }
          ones |= bit << x;
          // A significant sample has been refined, at the latest now.
          flags[x] = static_cast<gr_uint16>(state | ((state & TG3_FLAG_SIGNIFICANT) << 1));
        }
      }
      bits[y * words + word] = ones;
      row[0] = significant;
      scan.negative[y * words + word] |= negative;
    }
  }
}

void MakeSamples(const TG3SampleRow& row, gr_int32* samples) {
  const hn::ScalableTag<gr_uint32> d;
  const hn::RebindToSigned<decltype(d)> ds;
  using V = hn::Vec<decltype(d)>;
  const size_t lanes = hn::Lanes(d);
  if (lanes > 32) return tg3_makeSamplesScalar(row, 0, samples);
  const V laneBits = hn::Shl(hn::Set(d, 1), hn::Iota(d, 0));
  const V parity = hn::And(hn::Iota(d, 0), hn::Set(d, 1));
  const V midpoint = hn::IfThenElse(hn::Eq(parity, hn::Zero(d)), hn::Set(d, row.midpoint[0]),
                                    hn::Set(d, row.midpoint[lanes > 1 ? 1 : 0]));
  const gr_uint32 skipped = row.firstPlane == 0 ? 1 : 0;  // plane 0 has no weight
  gr_uint32 x = 0;
  for (; lanes > 1 && x + lanes <= row.width; x += static_cast<gr_uint32>(lanes)) {
    const size_t word = x / 64;
    const size_t shift = x % 64;
    V magnitude = hn::Zero(d);
    gr_uint32 weight = gr_uint32{1} << (31 - row.firstPlane - skipped);
    for (gr_uint32 i = skipped; i < row.numPlanes; ++i, weight >>= 1) {
      const auto here = static_cast<gr_uint32>(row.bits[i * row.planeStride + word] >> shift);
      const auto set = hn::TestBit(hn::Set(d, here), laneBits);
      magnitude = hn::Or(magnitude, hn::IfThenElseZero(set, hn::Set(d, weight)));
    }
    const auto zero = hn::Eq(magnitude, hn::Zero(d));
    magnitude = hn::Add(magnitude, hn::IfThenZeroElse(zero, midpoint));
    const auto negative =
        hn::TestBit(hn::Set(d, static_cast<gr_uint32>(row.negative[word] >> shift)), laneBits);
    const auto sample = hn::IfThenElse(negative, hn::Sub(hn::Zero(d), magnitude), magnitude);
    hn::StoreU(hn::BitCast(ds, sample), ds, samples + x);
  }
  tg3_makeSamplesScalar(row, x, samples);
}

}  // namespace HWY_NAMESPACE
}  // namespace gri
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace gri {
HWY_EXPORT(ScanPlane);
HWY_EXPORT(MakeSamples);
}  // namespace gri

void tg3_scanPlane(const TG3PlaneScan& scan, std::span<const gr_uint8> bytes, bool isSignPlane,
                   gr_uint64* bits) {
  using namespace gri;
  HWY_DYNAMIC_DISPATCH(ScanPlane)(scan, bytes, isSignPlane, bits);
}

void tg3_makeSamples(const TG3SampleRow& row, gr_int32* samples) {
  using namespace gri;
  HWY_DYNAMIC_DISPATCH(MakeSamples)(row, samples);
}

#endif  // HWY_ONCE
