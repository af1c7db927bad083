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
using Full = hn::ScalableTag<double>;
// For what is left at the end of a row.
using Few = hn::CappedTag<double, 4>;

/// The lifting step for vectors of one size.
template <class D>
struct Lifter {
  using F = hn::Rebind<float, D>;
  using V = hn::Vec<D>;
  using S = hn::Vec<F>;

  static HWY_INLINE V load(const float* from) { return promote(hn::LoadU(F(), from)); }
  static HWY_INLINE V promote(S values) { return hn::PromoteTo(D(), values); }
  static HWY_INLINE V factor(float value) { return hn::Set(D(), static_cast<double>(value)); }

  static HWY_INLINE S lift(V center, V a, V b, V factor) {
    const V lifted = hn::Add(center, hn::Mul(factor, hn::Add(a, b)));
    // Its DemoteTo holds large values back from becoming infinite.
    if constexpr (HWY_TARGET == HWY_SCALAR) {
      return hn::Set(F(), static_cast<float>(hn::GetLane(lifted)));
    } else {
      return hn::DemoteTo(F(), lifted);
    }
  }

  // Each does whole vectors from value `i` on, and returns the first one that isn't done.

  static HWY_INLINE size_t step(const float* center, const float* a, const float* b, float k,
                                float* out, size_t i, size_t n) {
    const size_t lanes = hn::Lanes(D());
    const V by = factor(k);
    for (; i + lanes <= n; i += lanes) {
      hn::StoreU(lift(load(center + i), load(a + i), load(b + i), by), F(), out + i);
    }
    return i;
  }

  static HWY_INLINE size_t vertical(const TG2Lift97Rows& rows, size_t i, size_t n) {
    const size_t lanes = hn::Lanes(D());
    const V k0 = factor(TG2_LIFT97[0]), k1 = factor(TG2_LIFT97[1]);
    const V k2 = factor(TG2_LIFT97[2]), k3 = factor(TG2_LIFT97[3]);
    for (; i + lanes <= n; i += lanes) {
      const V highAbove = load(rows.highAbove + i);
      const S firstEven = lift(load(rows.low + i), highAbove, load(rows.high + i), k0);
      const V evenHeld = load(rows.firstEven + i);
      const S firstOdd = lift(highAbove, evenHeld, promote(firstEven), k1);
      const V oddHeld = load(rows.firstOdd + i);
      const S even = lift(evenHeld, oddHeld, promote(firstOdd), k2);
      const S odd = lift(oddHeld, load(rows.evenAbove + i), promote(even), k3);
      hn::StoreU(firstEven, F(), rows.firstEven + i);
      hn::StoreU(firstOdd, F(), rows.firstOdd + i);
      hn::StoreU(even, F(), rows.even + i);
      hn::StoreU(odd, F(), rows.odd + i);
    }
    return i;
  }

  /// The last step: out[2 i] = even[i], and behind it the odd sample.
  static HWY_INLINE size_t lastStep(const float* even, const float* odd, float* out, size_t i,
                                    size_t n) {
    const size_t lanes = hn::Lanes(D());
    const V k = factor(TG2_LIFT97[3]);
    for (; i + lanes <= n; i += lanes) {
      const S here = hn::LoadU(F(), even + i);
      const S last = lift(load(odd + i), promote(here), load(even + i + 1), k);
      hn::StoreInterleaved2(here, last, F(), out + 2 * i);
    }
    return i;
  }
};

HWY_INLINE void StepRow(const float* center, const float* a, const float* b, float factor,
                        float* out, size_t n) {
  size_t i = Lifter<Full>::step(center, a, b, factor, out, 0, n);
  i = Lifter<Few>::step(center, a, b, factor, out, i, n);
  tg2_lift97StepScalar(center + i, a + i, b + i, factor, out + i, n - i);
}

void Step(const float* center, const float* a, const float* b, float factor, float* out, size_t n) {
  StepRow(center, a, b, factor, out, n);
}

void Vertical(const TG2Lift97Rows& given, size_t n) {
  const TG2Lift97Rows rows = given;
  size_t i = Lifter<Full>::vertical(rows, 0, n);
  i = Lifter<Few>::vertical(rows, i, n);
  tg2_lift97VerticalScalar({rows.low + i, rows.highAbove + i, rows.high + i, rows.firstEven + i,
                            rows.firstOdd + i, rows.evenAbove + i, rows.even + i, rows.odd + i},
                           n - i);
}

HWY_INLINE void LastStep(const float* even, const float* odd, float* out, size_t n) {
  size_t i = Lifter<Full>::lastStep(even, odd, out, 0, n);
  i = Lifter<Few>::lastStep(even, odd, out, i, n);
  for (; i < n; ++i) {
    out[2 * i] = even[i];
    tg2_lift97StepScalar(odd + i, even + i, even + i + 1, TG2_LIFT97[3], out + 2 * i + 1, 1);
  }
}

void Horizontal(const float* low, const float* high, float* work, float* out, bool startsOdd,
                size_t count) {
  if (count == 0) return;
  const size_t lanes = hn::Lanes(Full());
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
