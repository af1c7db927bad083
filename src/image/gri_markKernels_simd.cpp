#include <cstring>

#include "image/gri_markKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "image/gri_markKernels_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace gri_markKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR && HWY_HAVE_FLOAT64

// All kernels here work on whole groups of 64 pixels and give the number of pixels that they did.
// Pointers to samples may be unaligned: they go to Highway's unaligned loads only.

template <typename T>
const T* At(const void* row, size_t index) {
  return static_cast<const T*>(row) + index;
}

/// Writes the marks of one group: `mask(k)` are those of the pixels from k on, as a mask of `d`.
template <class D, class MaskOf>
void MarkGroup(D d, gr_uint8* marks, MaskOf&& mask) {
  const size_t lanes = hn::Lanes(d);
  if (lanes >= 8) {
    for (size_t k = 0; k < 64; k += lanes) hn::StoreMaskBits(d, mask(k), marks + k / 8);
    return;
  }
  gr_uint8 bits[8];
  for (size_t k = 0; k < 64; k += 8) {
    gr_uint32 byte = 0;
    for (size_t i = 0; i < 8; i += lanes) {
      hn::StoreMaskBits(d, mask(k + i), bits);
      byte |= static_cast<gr_uint32>(bits[0]) << i;
    }
    marks[k / 8] = static_cast<gr_uint8>(byte);
  }
}

// Not(Eq) in place of Ne, which on some targets doesn't hold for a NaN.

template <class D, class V = hn::Vec<D>>
auto Different(D d, V sample, V none) {
  const auto sameValues = hn::Eq(sample, none);
  if constexpr (hwy::IsFloat<hn::TFromD<D>>()) {
    const hn::RebindToUnsigned<D> bits;
    const auto sameBits = hn::Eq(hn::BitCast(bits, sample), hn::BitCast(bits, none));
    return hn::Not(hn::Or(sameValues, hn::RebindMask(d, sameBits)));
  } else {
    return hn::Not(sameValues);
  }
}

template <typename T>
size_t MarkDifferent(const void* const* rows, const void* const* noData, size_t numBands,
                     size_t numPixels, gr_uint8* marks) {
  const hn::ScalableTag<T> d;
  const auto noneOf = [&](size_t band) {
    T none;
    std::memcpy(&none, noData[band], sizeof(T));
    return hn::Set(d, none);
  };
  const auto none0 = noneOf(0);
  const auto differentIn = [&](size_t band, size_t i, auto none) {
    return Different(d, hn::LoadU(d, At<T>(rows[band], i)), none);
  };
  size_t i = 0;
  if (numBands == 1) {
    for (; i + 64 <= numPixels; i += 64) {
      MarkGroup(d, marks + i / 8, [&](size_t k) { return differentIn(0, i + k, none0); });
    }
  } else if (numBands == 3) {
    const auto none1 = noneOf(1), none2 = noneOf(2);
    for (; i + 64 <= numPixels; i += 64) {
      MarkGroup(d, marks + i / 8, [&](size_t k) {
        return hn::Or(hn::Or(differentIn(0, i + k, none0), differentIn(1, i + k, none1)),
                      differentIn(2, i + k, none2));
      });
    }
  } else {
    for (; i + 64 <= numPixels; i += 64) {
      MarkGroup(d, marks + i / 8, [&](size_t k) {
        auto different = differentIn(0, i + k, none0);
        for (size_t band = 1; band < numBands; ++band) {
          different = hn::Or(different, differentIn(band, i + k, noneOf(band)));
        }
        return different;
      });
    }
  }
  return i;
}

template <typename T>
size_t MarkGreater(const void* a, const void* b, size_t numPixels, gr_uint8* marks) {
  const hn::ScalableTag<T> d;
  size_t i = 0;
  for (; i + 64 <= numPixels; i += 64) {
    MarkGroup(d, marks + i / 8, [&](size_t k) {
      return hn::Gt(hn::LoadU(d, At<T>(a, i + k)), hn::LoadU(d, At<T>(b, i + k)));
    });
  }
  return i;
}

/// The samples from `at` on as doubles; all four types fit them exactly.
template <class D, typename T>
hn::Vec<D> LoadDoubles(D d, const T* at) {
  if constexpr (sizeof(T) == 4) {
    const hn::Rebind<float, D> floats;
    return hn::PromoteTo(d, hn::LoadU(floats, at));
  } else {
    const hn::Rebind<T, D> samples;
    const hn::Rebind<gr_int32, D> ints;
    return hn::PromoteTo(d, hn::PromoteTo(ints, hn::LoadU(samples, at)));
  }
}

template <typename T>
size_t MarkFuzzy(const void* const* a, const void* const* b, const void* const* noData,
                 size_t numBands, double threshold, size_t numPixels, gr_uint8* marks) {
  const hn::ScalableTag<double> d;
  const auto limit = hn::Set(d, threshold);
  size_t i = 0;
  for (; i + 64 <= numPixels; i += 64) {
    MarkGroup(d, marks + i / 8, [&](size_t k) {
      auto da = hn::Zero(d), db = hn::Zero(d);
      auto noDataA = hn::Eq(da, db), noDataB = noDataA;  // true, before the first band
      for (size_t band = 0; band < numBands; ++band) {
        T none;
        std::memcpy(&none, noData[band], sizeof(T));
        const auto n = hn::Set(d, static_cast<double>(none));
        const auto sampleA = LoadDoubles(d, At<T>(a[band], i + k));
        const auto sampleB = LoadDoubles(d, At<T>(b[band], i + k));
        noDataA = hn::And(noDataA, hn::Eq(sampleA, n));
        noDataB = hn::And(noDataB, hn::Eq(sampleB, n));
        const auto differenceA = hn::Sub(n, sampleA), differenceB = hn::Sub(n, sampleB);
        // Not fused, so that they are the scalar's numbers.
        da = hn::Add(da, hn::Mul(differenceA, differenceA));
        db = hn::Add(db, hn::Mul(differenceB, differenceB));
      }
      const auto closer = hn::Lt(hn::Add(da, da), db);
      const auto byDistance = hn::Or(hn::Or(hn::Gt(db, limit), hn::Lt(da, limit)), closer);
      return hn::AndNot(noDataB, hn::Or(noDataA, byDistance));
    });
  }
  return i;
}

size_t DifferentGroups(const void* const* rows, const void* const* noData, size_t numBands,
                       GRIDataType type, size_t numPixels, gr_uint8* marks) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_SINT8:
      return MarkDifferent<gr_uint8>(rows, noData, numBands, numPixels, marks);
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_SINT16:
      return MarkDifferent<gr_uint16>(rows, noData, numBands, numPixels, marks);
    case GRI_DATATYPE_UINT32:
    case GRI_DATATYPE_SINT32:
      return MarkDifferent<gr_uint32>(rows, noData, numBands, numPixels, marks);
    case GRI_DATATYPE_UINT64:
    case GRI_DATATYPE_SINT64:
      return MarkDifferent<gr_uint64>(rows, noData, numBands, numPixels, marks);
    case GRI_DATATYPE_FLOAT32:
      return MarkDifferent<float>(rows, noData, numBands, numPixels, marks);
    case GRI_DATATYPE_FLOAT64:
      return MarkDifferent<double>(rows, noData, numBands, numPixels, marks);
    default:
      return 0;
  }
}

size_t GreaterGroups(const void* a, const void* b, GRIDataType type, size_t numPixels,
                     gr_uint8* marks) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
      return MarkGreater<gr_uint8>(a, b, numPixels, marks);
    case GRI_DATATYPE_UINT16:
      return MarkGreater<gr_uint16>(a, b, numPixels, marks);
    case GRI_DATATYPE_SINT16:
      return MarkGreater<gr_int16>(a, b, numPixels, marks);
    case GRI_DATATYPE_FLOAT32:
      return MarkGreater<float>(a, b, numPixels, marks);
    default:
      return 0;
  }
}

size_t FuzzyGroups(const void* const* a, const void* const* b, const void* const* noData,
                   size_t numBands, GRIDataType type, double threshold, size_t numPixels,
                   gr_uint8* marks) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
      return MarkFuzzy<gr_uint8>(a, b, noData, numBands, threshold, numPixels, marks);
    case GRI_DATATYPE_UINT16:
      return MarkFuzzy<gr_uint16>(a, b, noData, numBands, threshold, numPixels, marks);
    case GRI_DATATYPE_SINT16:
      return MarkFuzzy<gr_int16>(a, b, noData, numBands, threshold, numPixels, marks);
    case GRI_DATATYPE_FLOAT32:
      return MarkFuzzy<float>(a, b, noData, numBands, threshold, numPixels, marks);
    default:
      return 0;
  }
}

#else  // one lane is slower than the scalar loop

size_t DifferentGroups(const void* const*, const void* const*, size_t, GRIDataType, size_t,
                       gr_uint8*) {
  return 0;
}

size_t GreaterGroups(const void*, const void*, GRIDataType, size_t, gr_uint8*) { return 0; }

size_t FuzzyGroups(const void* const*, const void* const*, const void* const*, size_t, GRIDataType,
                   double, size_t, gr_uint8*) {
  return 0;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace gri_markKernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace gri_markKernels {
// A build for one instruction set alone finds a kernel by its name in its own namespace.
HWY_EXPORT(DifferentGroups);
HWY_EXPORT(GreaterGroups);
HWY_EXPORT(FuzzyGroups);

auto chosenDifferentGroups() { return HWY_DYNAMIC_DISPATCH(DifferentGroups); }

auto chosenGreaterGroups() { return HWY_DYNAMIC_DISPATCH(GreaterGroups); }

auto chosenFuzzyGroups() { return HWY_DYNAMIC_DISPATCH(FuzzyGroups); }
}  // namespace gri_markKernels

void gri_markDifferent(const void* const* rows, const void* const* noData, size_t numBands,
                       GRIDataType type, size_t numPixels, gr_uint8* marks) {
  const size_t done =
      gri_markKernels::chosenDifferentGroups()(rows, noData, numBands, type, numPixels, marks);
  gri_markDifferentScalar(rows, noData, numBands, type, done, numPixels, marks);
}

void gri_markGreater(const void* a, const void* b, GRIDataType type, size_t numPixels,
                     gr_uint8* marks) {
  const size_t done = gri_markKernels::chosenGreaterGroups()(a, b, type, numPixels, marks);
  gri_markGreaterScalar(a, b, type, done, numPixels, marks);
}

void gri_markFuzzy(const void* const* a, const void* const* b, const void* const* noData,
                   size_t numBands, GRIDataType type, double threshold, size_t numPixels,
                   gr_uint8* marks) {
  const size_t done = gri_markKernels::chosenFuzzyGroups()(a, b, noData, numBands, type, threshold,
                                                           numPixels, marks);
  gri_markFuzzyScalar(a, b, noData, numBands, type, threshold, done, numPixels, marks);
}
#endif  // HWY_ONCE
