#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorRotation.h"
#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_rationalArithmetic.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorRotation_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg3_colorRotation {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<gr_int32>;
using V = hn::Vec<D>;

/// Products of values that are small enough for 32 bits: |x| <= 88449, and 60072 for both of a sum.
struct Small {
  static HWY_INLINE V Product(D d, V x, gr_int32 k) {
    const V half = hn::Set(d, TG3_RATIONAL_HALF);
    return hn::ShiftRight<TG3_RATIONAL_BITS>(hn::Add(hn::Mul(x, hn::Set(d, k)), half));
  }
  static HWY_INLINE V Sum(D d, V x, gr_int32 a, V y, gr_int32 b) {
    const V half = hn::Set(d, TG3_RATIONAL_HALF);
    const V sum = hn::Add(hn::Mul(x, hn::Set(d, a)), hn::Mul(y, hn::Set(d, b)));
    return hn::ShiftRight<TG3_RATIONAL_BITS>(hn::Add(sum, half));
  }
};

/// Products of any values.
struct Large {
  static HWY_INLINE V Remainder(D d, V x) { return hn::And(x, hn::Set(d, TG3_RATIONAL_ONE - 1)); }
  static HWY_INLINE V Product(D d, V x, gr_int32 k) {
    const V quotient = hn::Mul(hn::ShiftRight<TG3_RATIONAL_BITS>(x), hn::Set(d, k));
    return hn::Add(quotient, Small::Product(d, Remainder(d, x), k));
  }
  static HWY_INLINE V Sum(D d, V x, gr_int32 a, V y, gr_int32 b) {
    const V quotients = hn::Add(hn::Mul(hn::ShiftRight<TG3_RATIONAL_BITS>(x), hn::Set(d, a)),
                                hn::Mul(hn::ShiftRight<TG3_RATIONAL_BITS>(y), hn::Set(d, b)));
    return hn::Add(quotients, Small::Sum(d, Remainder(d, x), a, Remainder(d, y), b));
  }
};

/// Whether all values of two vectors are within `limit` of zero. The lowest number has no
/// magnitude and is taken for a large one.
HWY_INLINE bool AreWithin(D d, V x, V y, gr_int32 limit) {
  const V low = hn::Min(x, y);
  const V high = hn::Max(x, y);
  const auto outside = hn::Or(hn::Lt(low, hn::Set(d, -limit)), hn::Gt(high, hn::Set(d, limit)));
  return hn::AllFalse(d, outside);
}

template <typename Arithmetic>
HWY_INLINE void Inverse(D d, V u, V v, V b, gr_int32* outA, gr_int32* outB, gr_int32* outC) {
  const V t = Arithmetic::Sum(d, u, TG3_COLOR_C4, v, TG3_COLOR_C5);
  const V w = hn::Add(Arithmetic::Product(d, v, TG3_COLOR_C3), u);
  const V tb = hn::Add(t, b);
  const V newB = hn::Add(Arithmetic::Product(d, w, TG3_COLOR_C2), v);
  const V newA = hn::Add(w, tb);
  const V newC = hn::Add(hn::Sub(Arithmetic::Product(d, newB, TG3_COLOR_C1), newA), tb);
  hn::StoreU(newA, d, outA);
  hn::StoreU(newB, d, outB);
  hn::StoreU(newC, d, outC);
}

template <typename Arithmetic>
HWY_INLINE void Forward(D d, V a, V b, V c, gr_int32* outA, gr_int32* outB, gr_int32* outC) {
  c = hn::Sub(c, hn::Sub(Arithmetic::Product(d, b, TG3_COLOR_C1), a));
  a = hn::Sub(a, c);
  b = hn::Sub(b, Arithmetic::Product(d, a, TG3_COLOR_C2));
  a = hn::Sub(a, Arithmetic::Product(d, b, TG3_COLOR_C3));
  c = hn::Sub(c, Arithmetic::Sum(d, a, TG3_COLOR_C4, b, TG3_COLOR_C5));
  hn::StoreU(hn::Add(a, c), d, outA);
  hn::StoreU(c, d, outB);
  hn::StoreU(hn::Add(b, c), d, outC);
}

// With |u| and |v| up to this, |w| is at most 47426 and |b'| at most 35982: all products are small.
constexpr gr_int32 INVERSE_LIMIT = 19911;

void RotateInverse(gr_int32* a, gr_int32* b, gr_int32* c, size_t n) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V vb = hn::LoadU(d, b + i);
    const V u = hn::Sub(hn::LoadU(d, a + i), vb);
    const V v = hn::Sub(hn::LoadU(d, c + i), vb);
    if (AreWithin(d, u, v, INVERSE_LIMIT)) {
      Inverse<Small>(d, u, v, vb, a + i, b + i, c + i);
    } else {
      Inverse<Large>(d, u, v, vb, a + i, b + i, c + i);
    }
  }
  tg3_rotateInverseScalar(a + i, b + i, c + i, n - i);
}

// With all three up to this, no step passes 31985, and the two of the sum stay below 15911.
constexpr gr_int32 FORWARD_LIMIT = 10000;

void RotateForward(gr_int32* a, gr_int32* b, gr_int32* c, size_t n) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V va = hn::LoadU(d, a + i);
    const V vb = hn::LoadU(d, b + i);
    const V vc = hn::LoadU(d, c + i);
    if (AreWithin(d, va, vb, FORWARD_LIMIT) && AreWithin(d, vc, vc, FORWARD_LIMIT)) {
      Forward<Small>(d, va, vb, vc, a + i, b + i, c + i);
    } else {
      Forward<Large>(d, va, vb, vc, a + i, b + i, c + i);
    }
  }
  tg3_rotateForwardScalar(a + i, b + i, c + i, n - i);
}

}  // namespace HWY_NAMESPACE
}  // namespace tg3_colorRotation
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tg3_colorRotation {
HWY_EXPORT(RotateInverse);
HWY_EXPORT(RotateForward);
}  // namespace tg3_colorRotation

void tg3_rotateInverse(gr_int32* a, gr_int32* b, gr_int32* c, size_t n) {
  using namespace tg3_colorRotation;
  HWY_DYNAMIC_DISPATCH(RotateInverse)(a, b, c, n);
}

void tg3_rotateForward(gr_int32* a, gr_int32* b, gr_int32* c, size_t n) {
  using namespace tg3_colorRotation;
  HWY_DYNAMIC_DISPATCH(RotateForward)(a, b, c, n);
}

#endif  // HWY_ONCE
