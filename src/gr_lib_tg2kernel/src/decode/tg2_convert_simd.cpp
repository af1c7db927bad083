// The conversion of rows, for whatever vectors the machine has.

#include <limits>

#include "gr_lib_tg2kernel/src/decode/tg2_convert.h"
#include "gr_lib_tg2kernel/src/decode/tg2_convertConstants.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg2kernel/src/decode/tg2_convert_simd.cpp"
#include <hwy/foreach_target.h>
// The target's vectors come after the loop over targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg2_convert_simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<float>;
using V = hn::Vec<D>;

/// Cut below at 0; what isn't a number becomes 0.
HWY_INLINE V CutBelow(V v) { return hn::IfThenElseZero(hn::Gt(v, hn::Zero(D())), v); }

template <typename Sample>
HWY_INLINE void StoreCut(V v, Sample* samples) {
  const D d;
  const V cut =
      hn::Min(CutBelow(v), hn::Set(d, static_cast<float>(std::numeric_limits<Sample>::max())));
  if constexpr (hwy::IsFloat<Sample>()) {
    hn::StoreU(cut, d, samples);
  } else {
    const hn::Rebind<Sample, D> narrow;
    const auto whole = hn::ConvertTo(hn::RebindToSigned<D>(), cut);
    hn::StoreU(hn::DemoteTo(narrow, whole), narrow, samples);
  }
}

// These take the samples that fill whole vectors, and return how many.

template <typename Sample>
size_t OneBand(const float* const* planes, Sample* const* bands, size_t n) {
  const D d;
  const V half = hn::Set(d, 0.5F);
  const size_t lanes = hn::Lanes(d);
  const float* const plane = planes[0];
  Sample* const band = bands[0];
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    StoreCut(hn::Add(hn::LoadU(d, plane + i), half), band + i);
  }
  return i;
}

template <class Real, class VR = hn::Vec<Real>>
HWY_INLINE VR Color(Real d, const TG2ColorRow& row, VR p0, VR p1, VR p2) {
  using T = hn::TFromD<Real>;
  const VR first = hn::Add(p0, hn::Mul(hn::Set(d, static_cast<T>(row.ofP1)), p1));
  return hn::Add(first, hn::Mul(hn::Set(d, static_cast<T>(row.ofP2)), p2));
}

template <typename Sample>
size_t ThreeBands(const float* const* planes, Sample* const* bands, size_t n) {
  const D d;
  const V half = hn::Set(d, 0.5F);
  const size_t lanes = hn::Lanes(d);
  const float* const plane0 = planes[0];
  const float* const plane1 = planes[1];
  const float* const plane2 = planes[2];
  Sample* const red = bands[0];
  Sample* const green = bands[1];
  Sample* const blue = bands[2];
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const V p0 = hn::LoadU(d, plane0 + i);
    const V p1 = hn::LoadU(d, plane1 + i);
    const V p2 = hn::LoadU(d, plane2 + i);
    StoreCut(hn::Add(Color(d, TG2_COLOR_ROWS[0], p0, p1, p2), half), red + i);
    StoreCut(hn::Add(Color(d, TG2_COLOR_ROWS[1], p0, p1, p2), half), green + i);
    StoreCut(hn::Add(Color(d, TG2_COLOR_ROWS[2], p0, p1, p2), half), blue + i);
  }
  return i;
}

#if HWY_TARGET == HWY_SCALAR  // it has no halves of vectors
template <typename Sample>
size_t FourBands(const float* const*, Sample* const*, size_t) {
  return 0;
}
#else
/// Half a vector of one ink, from that many pixels.
HWY_INLINE hn::Vec<hn::Half<D>> InkHalf(const TG2ColorRow& row, const float* p0, const float* p1,
                                        const float* p2, double max) {
  const hn::Half<D> half;
  const hn::Rebind<double, hn::Half<D>> wide;
  const auto color =
      Color(wide, row, hn::PromoteTo(wide, hn::LoadU(half, p0)),
            hn::PromoteTo(wide, hn::LoadU(half, p1)), hn::PromoteTo(wide, hn::LoadU(half, p2)));
  const auto ink = hn::Mul(hn::Sub(hn::Set(wide, max), color), hn::Set(wide, 2.0));
  return hn::DemoteTo(half, ink);
}

/// One ink: C, M or Y.
HWY_INLINE V Ink(const TG2ColorRow& row, const float* p0, const float* p1, const float* p2,
                 float max) {
  const D d;
  const size_t rest = hn::Lanes(d) / 2;
  const V ink = hn::Combine(d, InkHalf(row, p0 + rest, p1 + rest, p2 + rest, max),
                            InkHalf(row, p0, p1, p2, max));
  return hn::Min(CutBelow(ink), hn::Set(d, 2 * max));
}

template <typename Sample>
size_t FourBands(const float* const* planes, Sample* const* bands, size_t n) {
  const D d;
  constexpr auto MAX = static_cast<float>(std::numeric_limits<Sample>::max());
  const V half = hn::Set(d, 0.5F);
  const size_t lanes = hn::Lanes(d);
  size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const float* const p0 = planes[0] + i;
    const float* const p1 = planes[1] + i;
    const float* const p2 = planes[2] + i;
    const V c = Ink(TG2_COLOR_ROWS[0], p0, p1, p2, MAX);
    const V m = Ink(TG2_COLOR_ROWS[1], p0, p1, p2, MAX);
    const V y = Ink(TG2_COLOR_ROWS[2], p0, p1, p2, MAX);
    const V least = hn::Min(hn::Min(c, m), y);
    const V black = CutBelow(hn::LoadU(d, planes[3] + i));
    const V k = hn::Sub(least, hn::Min(least, black));
    StoreCut(hn::Sub(hn::Add(c, half), k), bands[0] + i);
    StoreCut(hn::Sub(hn::Add(m, half), k), bands[1] + i);
    StoreCut(hn::Sub(hn::Add(y, half), k), bands[2] + i);
    StoreCut(hn::Add(k, half), bands[3] + i);
  }
  return i;
}
#endif

size_t OneBand8(const float* const* planes, gr_uint8* const* bands, size_t n) {
  return OneBand(planes, bands, n);
}
size_t OneBand16(const float* const* planes, gr_uint16* const* bands, size_t n) {
  return OneBand(planes, bands, n);
}
size_t OneBandFloat(const float* const* planes, float* const* bands, size_t n) {
  return OneBand(planes, bands, n);
}
size_t ThreeBands8(const float* const* planes, gr_uint8* const* bands, size_t n) {
  return ThreeBands(planes, bands, n);
}
size_t ThreeBands16(const float* const* planes, gr_uint16* const* bands, size_t n) {
  return ThreeBands(planes, bands, n);
}
size_t ThreeBandsFloat(const float* const* planes, float* const* bands, size_t n) {
  return ThreeBands(planes, bands, n);
}
size_t FourBands8(const float* const* planes, gr_uint8* const* bands, size_t n) {
  return FourBands(planes, bands, n);
}
size_t FourBands16(const float* const* planes, gr_uint16* const* bands, size_t n) {
  return FourBands(planes, bands, n);
}

}  // namespace HWY_NAMESPACE
}  // namespace tg2_convert_simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tg2_convert_simd {
HWY_EXPORT(OneBand8);
HWY_EXPORT(OneBand16);
HWY_EXPORT(OneBandFloat);
HWY_EXPORT(ThreeBands8);
HWY_EXPORT(ThreeBands16);
HWY_EXPORT(ThreeBandsFloat);
HWY_EXPORT(FourBands8);
HWY_EXPORT(FourBands16);

/// Calls `scalar` for what is left of each row from `done` on.
template <size_t NUM_BANDS, typename Sample, typename Scalar>
void finish(const float* const* planes, Sample* const* bands, size_t done, size_t n,
            Scalar scalar) {
  if (done == n) return;
  const float* planeEnds[NUM_BANDS];
  Sample* bandEnds[NUM_BANDS];
  for (size_t i = 0; i < NUM_BANDS; ++i) {
    planeEnds[i] = planes[i] + done;
    bandEnds[i] = bands[i] + done;
  }
  scalar(planeEnds, bandEnds, n - done);
}

template <size_t NUM_BANDS, typename Sample>
void finish(const float* const* planes, Sample* const* bands, size_t done, size_t n) {
  finish<NUM_BANDS>(planes, bands, done, n, [](auto ends, auto bandEnds, size_t left) {
    if constexpr (NUM_BANDS == 1) {
      tg2_convertOneBandScalar(ends, bandEnds, left);
    } else if constexpr (NUM_BANDS == 3) {
      tg2_convertThreeBandsScalar(ends, bandEnds, left);
    } else {
      tg2_convertFourBandsScalar(ends, bandEnds, left);
    }
  });
}
}  // namespace tg2_convert_simd

using namespace tg2_convert_simd;

void tg2_convertOneBand(const float* const* planes, gr_uint8* const* bands, size_t n) {
  finish<1>(planes, bands, HWY_DYNAMIC_DISPATCH(OneBand8)(planes, bands, n), n);
}
void tg2_convertOneBand(const float* const* planes, gr_uint16* const* bands, size_t n) {
  finish<1>(planes, bands, HWY_DYNAMIC_DISPATCH(OneBand16)(planes, bands, n), n);
}
void tg2_convertOneBand(const float* const* planes, float* const* bands, size_t n) {
  finish<1>(planes, bands, HWY_DYNAMIC_DISPATCH(OneBandFloat)(planes, bands, n), n);
}
void tg2_convertThreeBands(const float* const* planes, gr_uint8* const* bands, size_t n) {
  finish<3>(planes, bands, HWY_DYNAMIC_DISPATCH(ThreeBands8)(planes, bands, n), n);
}
void tg2_convertThreeBands(const float* const* planes, gr_uint16* const* bands, size_t n) {
  finish<3>(planes, bands, HWY_DYNAMIC_DISPATCH(ThreeBands16)(planes, bands, n), n);
}
void tg2_convertThreeBands(const float* const* planes, float* const* bands, size_t n) {
  finish<3>(planes, bands, HWY_DYNAMIC_DISPATCH(ThreeBandsFloat)(planes, bands, n), n);
}
void tg2_convertFourBands(const float* const* planes, gr_uint8* const* bands, size_t n) {
  finish<4>(planes, bands, HWY_DYNAMIC_DISPATCH(FourBands8)(planes, bands, n), n);
}
void tg2_convertFourBands(const float* const* planes, gr_uint16* const* bands, size_t n) {
  finish<4>(planes, bands, HWY_DYNAMIC_DISPATCH(FourBands16)(planes, bands, n), n);
}
#endif  // HWY_ONCE
