#include <algorithm>

#include "gr_lib_tg2kernel/src/decode/tg2_lift97.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg2kernel/src/decode/tg2_lift97_simd.cpp"
#include <hwy/foreach_target.h>
// The target's vectors come after the loop over targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg2_lift97 {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Values stand in memory as singles and in registers as doubles, a whole vector of them.
using D = hn::ScalableTag<double>;
using F = hn::Rebind<float, D>;
using V = hn::Vec<D>;
using S = hn::Vec<F>;

HWY_INLINE V Load(const float* from) { return hn::PromoteTo(D(), hn::LoadU(F(), from)); }

HWY_INLINE S Lift(V center, V a, V b, V factor) {
  const V lifted = hn::Add(center, hn::Mul(factor, hn::Add(a, b)));
  // Its DemoteTo holds large values back from becoming infinite.
  if constexpr (HWY_TARGET == HWY_SCALAR) {
    return hn::Set(F(), static_cast<float>(hn::GetLane(lifted)));
  } else {
    return hn::DemoteTo(F(), lifted);
  }
}

HWY_INLINE V Factor(size_t step) { return hn::Set(D(), static_cast<double>(TG2_LIFT97[step])); }

HWY_INLINE void StepRow(const float* center, const float* a, const float* b, float factor,
                        float* out, size_t n) {
  const size_t lanes = hn::Lanes(D());
  const V k = hn::Set(D(), static_cast<double>(factor));
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    hn::StoreU(Lift(Load(center + i), Load(a + i), Load(b + i), k), F(), out + i);
  }
  tg2_lift97StepScalar(center + i, a + i, b + i, factor, out + i, n - i);
}

void Step(const float* center, const float* a, const float* b, float factor, float* out, size_t n) {
  StepRow(center, a, b, factor, out, n);
}

void Vertical(const TG2Lift97Rows& given, size_t n) {
  const size_t lanes = hn::Lanes(D());
  const TG2Lift97Rows rows = given;
  const V k0 = Factor(0), k1 = Factor(1), k2 = Factor(2), k3 = Factor(3);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V highAbove = Load(rows.highAbove + i);
    const S firstEven = Lift(Load(rows.low + i), highAbove, Load(rows.high + i), k0);
    const V evenHeld = Load(rows.firstEven + i);
    const S firstOdd = Lift(highAbove, evenHeld, hn::PromoteTo(D(), firstEven), k1);
    const V oddHeld = Load(rows.firstOdd + i);
    const S even = Lift(evenHeld, oddHeld, hn::PromoteTo(D(), firstOdd), k2);
    const S odd = Lift(oddHeld, Load(rows.evenAbove + i), hn::PromoteTo(D(), even), k3);
    hn::StoreU(firstEven, F(), rows.firstEven + i);
    hn::StoreU(firstOdd, F(), rows.firstOdd + i);
    hn::StoreU(even, F(), rows.even + i);
    hn::StoreU(odd, F(), rows.odd + i);
  }
  tg2_lift97VerticalScalar({rows.low + i, rows.highAbove + i, rows.high + i, rows.firstEven + i,
                            rows.firstOdd + i, rows.evenAbove + i, rows.even + i, rows.odd + i},
                           n - i);
}

/// The last step of `n` pairs: out[2 i] = even[i], and behind it the odd sample.
HWY_INLINE void LastStep(const float* even, const float* odd, float* out, size_t n) {
  const size_t lanes = hn::Lanes(D());
  const V k = Factor(3);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const S here = hn::LoadU(F(), even + i);
    const S last = Lift(Load(odd + i), hn::PromoteTo(D(), here), Load(even + i + 1), k);
    hn::StoreInterleaved2(here, last, F(), out + 2 * i);
  }
  for (; i < n; ++i) {
    out[2 * i] = even[i];
    tg2_lift97StepScalar(odd + i, even + i, even + i + 1, TG2_LIFT97[3], out + 2 * i + 1, 1);
  }
}

void Horizontal(const float* low, const float* high, float* work, float* out, bool startsOdd,
                size_t count) {
  if (count == 0) return;
  const size_t lanes = hn::Lanes(D());
  const size_t begin = startsOdd ? 1 : 0;  // positions, of which 0 is low[0]'s
  const size_t end = begin + count;
  const size_t m = tg2_lift97Evens(startsOdd, count);
  float* even = work + 1;
  float* odd = even + m + 2;

  // Piece by piece, so that what a step reads is still in the cache. A step stays behind the one
  // before it by what it reads ahead, and by whole vectors but for the row's end. Fused, each step
  // would wait for values that the one before it has just stored as other vectors.
  constexpr size_t PIECE = 256;
  size_t first = 0, second = 0, third = 0, last = begin;  // values that are done, pairs at last
  const auto behind = [lanes](size_t done, size_t limit, bool isEnd) {
    return isEnd ? limit : (done - 1) / lanes * lanes;
  };
  while (first < m + 2) {
    size_t from = first;
    first = std::min(first + PIECE, m + 2);
    const bool isEnd = first == m + 2;
    StepRow(low - 1 + from, high - 2 + from, high - 1 + from, TG2_LIFT97[0], even - 1 + from,
            first - from);
    from = second;
    second = behind(first, m + 1, isEnd);
    StepRow(high - 1 + from, even - 1 + from, even + from, TG2_LIFT97[1], odd - 1 + from,
            second - from);
    from = third;
    third = behind(second, m, isEnd);
    StepRow(even + from, odd - 1 + from, odd + from, TG2_LIFT97[2], even + from, third - from);
    from = last;
    last = std::max(last, behind(third, end / 2, isEnd));
    LastStep(even + from, odd + from, out + 2 * from - begin, last - from);
  }
  if (startsOdd) tg2_lift97StepScalar(odd, even, even + 1, TG2_LIFT97[3], out, 1);
  if (end % 2 != 0) out[count - 1] = even[end / 2];
}

}  // namespace HWY_NAMESPACE
}  // namespace tg2_lift97
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tg2_lift97 {
HWY_EXPORT(Step);
HWY_EXPORT(Vertical);
HWY_EXPORT(Horizontal);
}  // namespace tg2_lift97

void tg2_lift97Step(const float* center, const float* a, const float* b, float factor, float* out,
                    size_t n) {
  using namespace tg2_lift97;
  HWY_DYNAMIC_DISPATCH(Step)(center, a, b, factor, out, n);
}

void tg2_lift97Vertical(const TG2Lift97Rows& rows, size_t n) {
  using namespace tg2_lift97;
  HWY_DYNAMIC_DISPATCH(Vertical)(rows, n);
}

void tg2_lift97Horizontal(const float* low, const float* high, float* work, float* out,
                          bool startsOdd, size_t count) {
  using namespace tg2_lift97;
  HWY_DYNAMIC_DISPATCH(Horizontal)(low, high, work, out, startsOdd, count);
}
#endif  // HWY_ONCE
