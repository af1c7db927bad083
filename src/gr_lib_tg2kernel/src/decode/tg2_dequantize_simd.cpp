// The row kernels of the dequantiser, for whatever vectors the machine has.

#include "gr_lib_tg2kernel/src/decode/tg2_dequantize.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg2kernel/src/decode/tg2_dequantize_simd.cpp"
#include <hwy/foreach_target.h>
// The target's vectors come after the loop over targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg2_dequantize_simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Full = hn::ScalableTag<float>;
// For what is left at the end of a row: records cut by a window are often only a few samples wide.
using Few = hn::CappedTag<float, 4>;

/// Turns bins into samples; both signs by the same operations, with the sign put to the constants.
template <class D>
class Samples {
 public:
  using V = hn::Vec<D>;

  explicit Samples(float step)
      : m_step(hn::Set(D(), step)),
        m_half(hn::Set(D(), step / 2)),
        m_reconstruction(hn::Set(D(), TG2_RECONSTRUCTION)) {}

  HWY_INLINE V of(const gr_int32* bins) const {
    const D d;
    const hn::RebindToSigned<D> di;
    const auto q = hn::LoadU(di, bins);
    const V value = hn::ConvertTo(d, q);
    const V shifted = hn::Sub(value, hn::CopySignToAbs(m_reconstruction, value));
    const V sample = hn::Add(hn::Mul(shifted, m_step), hn::CopySignToAbs(m_half, value));
    return hn::IfThenZeroElse(hn::RebindMask(d, hn::Eq(q, hn::Zero(di))), sample);
  }

  HWY_INLINE V step() const { return m_step; }

 private:
  V m_step, m_half, m_reconstruction;
};

/// Does whole vectors from sample `i` on. @return the first sample that isn't done
template <class D>
HWY_INLINE size_t PlainVectors(D d, const gr_int32* bins, float* out, size_t i, size_t n,
                               float step) {
  const size_t lanes = hn::Lanes(d);
  const Samples<D> samples(step);
  for (; i + lanes <= n; i += lanes) hn::StoreU(samples.of(bins + i), d, out + i);
  return i;
}

template <class D>
HWY_INLINE size_t DitherVectors(D d, const gr_int32* bins, const float* noise, float* out, size_t i,
                                size_t n, float step) {
  const size_t lanes = hn::Lanes(d);
  const Samples<D> samples(step);
  for (; i + lanes <= n; i += lanes) {
    const auto dither = hn::Mul(hn::LoadU(d, noise + i), samples.step());
    hn::StoreU(hn::Sub(samples.of(bins + i), dither), d, out + i);
  }
  return i;
}

void Plain(const gr_int32* bins, float* out, size_t n, float step) {
  size_t i = 0;
  if (step != 0) {
    i = PlainVectors(Full(), bins, out, i, n, step);
    i = PlainVectors(Few(), bins, out, i, n, step);
  }
  tg2_dequantizeScalar(bins + i, out + i, n - i, step);
}

void Dither(const gr_int32* bins, const float* noise, float* out, size_t n, float step) {
  size_t i = 0;
  if (step != 0) {
    i = DitherVectors(Full(), bins, noise, out, i, n, step);
    i = DitherVectors(Few(), bins, noise, out, i, n, step);
  }
  tg2_dequantizeDitherScalar(bins + i, noise + i, out + i, n - i, step);
}

}  // namespace HWY_NAMESPACE
}  // namespace tg2_dequantize_simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tg2_dequantize_simd {
HWY_EXPORT(Plain);
HWY_EXPORT(Dither);
}  // namespace tg2_dequantize_simd

void tg2_dequantize(const gr_int32* bins, float* out, size_t n, float step) {
  using namespace tg2_dequantize_simd;
  HWY_DYNAMIC_DISPATCH(Plain)(bins, out, n, step);
}

void tg2_dequantizeDither(const gr_int32* bins, const float* noise, float* out, size_t n,
                          float step) {
  using namespace tg2_dequantize_simd;
  HWY_DYNAMIC_DISPATCH(Dither)(bins, noise, out, n, step);
}
#endif  // HWY_ONCE
