#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53_simd.cpp"
#include <hwy/foreach_target.h>
// The target's vectors come after the loop over targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg3_lift53 {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<gr_int32>;
using V = hn::Vec<D>;

HWY_INLINE V RoundQuarter(D d, V s) {
  const V quarter = hn::ShiftRight<2>(s);
  const V up = hn::And(hn::And(hn::Or(quarter, s), hn::ShiftRight<1>(s)), hn::Set(d, 1));
  return hn::Add(quarter, up);
}

HWY_INLINE V RoundHalf(D d, V s) {
  const V half = hn::ShiftRight<1>(s);
  return hn::Add(half, hn::And(hn::And(s, half), hn::Set(d, 1)));
}

void Vertical(const gr_int32* low, const gr_int32* high, gr_int32* heldHigh, gr_int32* heldEven,
              gr_int32* odd, size_t n) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V above = hn::LoadU(d, heldHigh + i);
    const V below = hn::LoadU(d, high + i);
    const V even = hn::Sub(hn::LoadU(d, low + i), RoundQuarter(d, hn::Add(above, below)));
    const V sum = hn::Add(hn::LoadU(d, heldEven + i), even);
    hn::StoreU(hn::Add(above, RoundHalf(d, sum)), d, odd + i);
    hn::StoreU(below, d, heldHigh + i);
    hn::StoreU(even, d, heldEven + i);
  }
  tg3_lift53VerticalScalar(low + i, high + i, heldHigh + i, heldEven + i, odd + i, n - i);
}

void LastOdd(const gr_int32* high, const gr_int32* even, gr_int32* odd, size_t n) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V e = hn::LoadU(d, even + i);
    hn::StoreU(hn::Add(hn::LoadU(d, high + i), RoundHalf(d, hn::Add(e, e))), d, odd + i);
  }
  tg3_lift53LastOddScalar(high + i, even + i, odd + i, n - i);
}

void Horizontal(const gr_int32* low, const gr_int32* high, gr_int32* even, gr_int32* out,
                size_t n) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  if (n == 0) return;
  // All even values first: read back at once they would stall on the stores before them.
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V sum = hn::Add(hn::LoadU(d, high - 1 + i), hn::LoadU(d, high + i));
    hn::StoreU(hn::Sub(hn::LoadU(d, low + i), RoundQuarter(d, sum)), d, even + i);
  }
  for (; i < n; ++i) {
    const gr_uint32 sum = static_cast<gr_uint32>(high[i]) + static_cast<gr_uint32>((high - 1)[i]);
    even[i] =
        static_cast<gr_int32>(static_cast<gr_uint32>(low[i]) -
                              static_cast<gr_uint32>(tg3_roundQuarter(static_cast<gr_int32>(sum))));
  }
  even[n] = even[n - 1];
  for (i = 0; i + lanes <= n; i += lanes) {
    const V here = hn::LoadU(d, even + i);
    const V sum = hn::Add(here, hn::LoadU(d, even + i + 1));
    const V odd = hn::Add(hn::LoadU(d, high + i), RoundHalf(d, sum));
    hn::StoreInterleaved2(here, odd, d, out + 2 * i);
  }
  for (; i < n; ++i) {
    const gr_uint32 sum = static_cast<gr_uint32>(even[i]) + static_cast<gr_uint32>(even[i + 1]);
    out[2 * i] = even[i];
    out[2 * i + 1] =
        static_cast<gr_int32>(static_cast<gr_uint32>(high[i]) +
                              static_cast<gr_uint32>(tg3_roundHalf(static_cast<gr_int32>(sum))));
  }
}

void AddRows(const gr_int32* a, const gr_int32* b, gr_int32* sum, size_t n) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    hn::StoreU(hn::Add(hn::LoadU(d, a + i), hn::LoadU(d, b + i)), d, sum + i);
  }
  tg3_addRowsScalar(a + i, b + i, sum + i, n - i);
}

/// @return how many of the samples are done: whole vectors
template <typename Sample>
size_t ClampVectors(const gr_int32* values, gr_int32 low, gr_int32 high, Sample* samples,
                    size_t n) {
  const D d;
  const hn::Rebind<Sample, D> narrow;
  const size_t lanes = hn::Lanes(d);
  const V lowest = hn::Set(d, low);
  const V highest = hn::Set(d, high);
  const V mask = hn::Set(d, static_cast<Sample>(~Sample{0}));
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V v = hn::Min(hn::Max(hn::LoadU(d, values + i), lowest), highest);
    hn::StoreU(hn::DemoteTo(narrow, hn::And(v, mask)), narrow, samples + i);
  }
  return i;
}

void ClampTo8(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint8* samples, size_t n) {
  const size_t done = ClampVectors(values, low, high, samples, n);
  tg3_clampTo8Scalar(values + done, low, high, samples + done, n - done);
}

void ClampTo16(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint16* samples, size_t n) {
  const size_t done = ClampVectors(values, low, high, samples, n);
  tg3_clampTo16Scalar(values + done, low, high, samples + done, n - done);
}

}  // namespace HWY_NAMESPACE
}  // namespace tg3_lift53
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tg3_lift53 {
HWY_EXPORT(Vertical);
HWY_EXPORT(LastOdd);
HWY_EXPORT(Horizontal);
HWY_EXPORT(AddRows);
HWY_EXPORT(ClampTo8);
HWY_EXPORT(ClampTo16);
}  // namespace tg3_lift53

void tg3_lift53Vertical(const gr_int32* low, const gr_int32* high, gr_int32* heldHigh,
                        gr_int32* heldEven, gr_int32* odd, size_t n) {
  using namespace tg3_lift53;
  HWY_DYNAMIC_DISPATCH(Vertical)(low, high, heldHigh, heldEven, odd, n);
}

void tg3_lift53LastOdd(const gr_int32* high, const gr_int32* even, gr_int32* odd, size_t n) {
  using namespace tg3_lift53;
  HWY_DYNAMIC_DISPATCH(LastOdd)(high, even, odd, n);
}

void tg3_lift53Horizontal(const gr_int32* low, const gr_int32* high, gr_int32* even, gr_int32* out,
                          size_t n) {
  using namespace tg3_lift53;
  HWY_DYNAMIC_DISPATCH(Horizontal)(low, high, even, out, n);
}

void tg3_addRows(const gr_int32* a, const gr_int32* b, gr_int32* sum, size_t n) {
  using namespace tg3_lift53;
  HWY_DYNAMIC_DISPATCH(AddRows)(a, b, sum, n);
}

void tg3_clampTo8(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint8* samples,
                  size_t n) {
  using namespace tg3_lift53;
  HWY_DYNAMIC_DISPATCH(ClampTo8)(values, low, high, samples, n);
}

void tg3_clampTo16(const gr_int32* values, gr_int32 low, gr_int32 high, gr_uint16* samples,
                   size_t n) {
  using namespace tg3_lift53;
  HWY_DYNAMIC_DISPATCH(ClampTo16)(values, low, high, samples, n);
}
#endif  // HWY_ONCE
