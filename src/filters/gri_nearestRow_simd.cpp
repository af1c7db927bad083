#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

#include "filters/gri_nearestRow.h"
#include "filters/gri_resamplePosition.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/gri_nearestRow_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace gri_nearestRow_kernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Pointers to samples may be unaligned: they go to Highway's unaligned loads and stores only.

/// Writes each sample `times` times (2 or 4). @return how many of `numSamples` were taken
template <typename T>
size_t RepeatVector(const gr_uint8* from, size_t numSamples, size_t times, gr_uint8* dest) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  const T* const row = reinterpret_cast<const T*>(from);
  T* const to = reinterpret_cast<T*>(dest);
  size_t i = 0;
  for (; i + lanes <= numSamples; i += lanes) {
    const auto v = hn::LoadU(d, row + i);
    if (times == 2) {
      hn::StoreInterleaved2(v, v, d, to + 2 * i);
    } else {
      hn::StoreInterleaved4(v, v, v, v, d, to + 4 * i);
    }
  }
  return i;
}

/// Writes the first of each `times` samples (2 or 4). @return how many of `count` were written
template <typename T>
size_t PickVector(const gr_uint8* from, size_t count, size_t times, gr_uint8* dest) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  const T* const row = reinterpret_cast<const T*>(from);
  T* const to = reinterpret_cast<T*>(dest);
  hn::Vec<decltype(d)> v0, v1, v2, v3;
  size_t i = 0;
  // The last one may be the last sample of the row, behind which nothing may be read.
  for (; i + lanes < count; i += lanes) {
    if (times == 2) {
      hn::LoadInterleaved2(d, row + 2 * i, v0, v1);
    } else {
      hn::LoadInterleaved4(d, row + 4 * i, v0, v1, v2, v3);
    }
    hn::StoreU(v0, d, to + i);
  }
  return i;
}

size_t Repeat(const gr_uint8* from, size_t numSamples, size_t times, size_t sampleBytes,
              gr_uint8* dest) {
  switch (sampleBytes) {
    case 1:
      return RepeatVector<gr_uint8>(from, numSamples, times, dest);
    case 2:
      return RepeatVector<gr_uint16>(from, numSamples, times, dest);
    case 4:
      return RepeatVector<gr_uint32>(from, numSamples, times, dest);
    default:
      return 0;
  }
}

size_t Pick(const gr_uint8* from, size_t count, size_t times, size_t sampleBytes, gr_uint8* dest) {
  switch (sampleBytes) {
    case 1:
      return PickVector<gr_uint8>(from, count, times, dest);
    case 2:
      return PickVector<gr_uint16>(from, count, times, dest);
    case 4:
      return PickVector<gr_uint32>(from, count, times, dest);
    default:
      return 0;
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace gri_nearestRow_kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace gri_nearestRow_kernels {
// A build for one instruction set alone finds a kernel by its name in its own namespace.
HWY_EXPORT(Repeat);
HWY_EXPORT(Pick);

auto chosenRepeat() { return HWY_DYNAMIC_DISPATCH(Repeat); }

auto chosenPick() { return HWY_DYNAMIC_DISPATCH(Pick); }

/// Positions as whole numbers of 2^-shift, where adding them up in floating point is exact.
struct FixedPositions {
  static constexpr int MOST_SHIFT = 20;

  /// @param digits  bits of a floating-point number's digits
  /// @return whether all positions are exact, and none goes to the left
  bool initialize(double x, double step, size_t count, int digits) {
    if (!(step > 0.0) || !std::isfinite(x)) return false;
    const double farthest = std::fabs(x) + step * static_cast<double>(count);
    for (shift = 0; shift <= MOST_SHIFT; ++shift) {
      const double scale = std::ldexp(1.0, shift);
      if (!(farthest * scale <= std::ldexp(1.0, digits))) return false;
      if (std::floor(x * scale) != x * scale || std::floor(step * scale) != step * scale) continue;
      first = static_cast<gr_int64>(x * scale);
      distance = static_cast<gr_int64>(step * scale);
      return true;
    }
    return false;
  }

  gr_int64 at(size_t k) const { return first + distance * static_cast<gr_int64>(k); }
  /// How many positions lie in front of `index`; `index` is below 2^32.
  size_t countBefore(gr_int64 index, size_t count) const {
    const gr_int64 limit = index << shift;
    if (first >= limit) return 0;
    const gr_uint64 before = static_cast<gr_uint64>((limit - first + distance - 1) / distance);
    return static_cast<size_t>(std::min<gr_uint64>(before, count));
  }

  gr_int64 first = 0;
  gr_int64 distance = 0;
  int shift = 0;
};

template <size_t Bytes>
void fill(const gr_uint8* sample, size_t count, gr_uint8* dest) {
  for (size_t k = 0; k < count; ++k) std::memcpy(dest + k * Bytes, sample, Bytes);
}

template <size_t Bytes>
void pickOneByOne(const gr_uint8* row, const FixedPositions& positions, size_t from, size_t to,
                  gr_uint8* dest) {
  gr_int64 position = positions.at(from);
  for (size_t k = from; k < to; ++k) {
    const size_t index = static_cast<size_t>(position >> positions.shift);
    std::memcpy(dest + k * Bytes, row + index * Bytes, Bytes);
    position += positions.distance;
  }
}

template <size_t Bytes>
void nearestRow(const gr_uint8* row, gr_uint32 width, const FixedPositions& positions, size_t count,
                gr_uint8* dest) {
  const gr_int64 last = gr_int64{width} - 1;
  const size_t begin = positions.countBefore(0, count);
  const size_t end = std::max(begin, positions.countBefore(last + 1, count));
  fill<Bytes>(row, begin, dest);
  size_t k = begin;
  const gr_int64 one = gr_int64{1} << positions.shift;
  const gr_int64 distance = positions.distance;
  if (distance < one) {
    const gr_int64 times = one / distance;
    // Up to the first position at the begin of a sample, and then whole samples.
    const auto isBegin = [&](size_t at) { return (positions.at(at) & (one - 1)) == 0; };
    if ((times == 2 || times == 4) && distance * times == one) {
      size_t aligned = k;
      while (aligned < end && aligned < k + 4 && !isBegin(aligned)) ++aligned;
      if (aligned < end && isBegin(aligned)) {
        pickOneByOne<Bytes>(row, positions, k, aligned, dest);
        const size_t repeats = static_cast<size_t>(times);
        const size_t index = static_cast<size_t>(positions.at(aligned) >> positions.shift);
        k = aligned + repeats * chosenRepeat()(row + index * Bytes, (end - aligned) / repeats,
                                               repeats, Bytes, dest + aligned * Bytes);
      }
    }
  } else if (k < end) {
    const gr_uint8* const first =
        row + static_cast<size_t>(positions.at(k) >> positions.shift) * Bytes;
    if (distance == one) {
      std::memcpy(dest + k * Bytes, first, (end - k) * Bytes);
      k = end;
    } else if (distance == 2 * one || distance == 4 * one) {
      k += chosenPick()(first, end - k, static_cast<size_t>(distance / one), Bytes,
                        dest + k * Bytes);
    }
  }
  pickOneByOne<Bytes>(row, positions, k, end, dest);
  fill<Bytes>(row + static_cast<size_t>(last) * Bytes, count - end, dest + end * Bytes);
}

/// How many positions from `p` on, `p` itself included, surely lie within the row, however their
/// sums are rounded. A sum of so many steps is off by less than one part in 2^11.
template <typename Float>
size_t countInside(Float p, Float step, gr_uint32 width, size_t count) {
  constexpr size_t MOST_STEPS = 4096;
  constexpr double ROUNDING = 1.0 + 1.0 / 2048;
  if (!(p >= 0) || !(step > 0)) return 0;
  const double room = static_cast<double>(width) / ROUNDING - static_cast<double>(p);
  if (!(room > static_cast<double>(step))) return 0;
  const double steps = std::min(room / static_cast<double>(step), double{MOST_STEPS});
  return std::min(static_cast<size_t>(steps), count);
}

/// As the definition, but where positions surely lie within the row they need no limits.
template <size_t Bytes, typename Float>
void nearestRowOfAnyStep(const gr_uint8* row, gr_uint32 width, Float p, Float step, size_t count,
                         gr_uint8* dest) {
  constexpr size_t LIMITED_AT_ONCE = 16;
  for (size_t k = 0; k < count;) {
    const size_t insideEnd = k + countInside(p, step, width, count - k);
    for (; k < insideEnd; ++k) {
      std::memcpy(dest + k * Bytes, row + static_cast<size_t>(static_cast<gr_int64>(p)) * Bytes,
                  Bytes);
      p += step;
    }
    const size_t limitedEnd = std::min(k + LIMITED_AT_ONCE, count);
    for (; k < limitedEnd; ++k) {
      const size_t index =
          gri_heldIndex(GRIResamplePosition<Float>(p, width).index, 0, size_t{width} - 1);
      std::memcpy(dest + k * Bytes, row + index * Bytes, Bytes);
      p += step;
    }
  }
}

}  // namespace gri_nearestRow_kernels

void gri_nearestRow(const void* row, gr_uint32 width, size_t sampleBytes, float x, float step,
                    size_t count, void* dest) {
  using namespace gri_nearestRow_kernels;
  constexpr int FLOAT_DIGITS = 24;
  const gr_uint8* const from = static_cast<const gr_uint8*>(row);
  gr_uint8* const to = static_cast<gr_uint8*>(dest);
  FixedPositions positions;
  const bool isExact = positions.initialize(x, step, count, FLOAT_DIGITS);
  const auto nearest = [&]<size_t BYTES, typename Float>() {
    if (isExact) {
      nearestRow<BYTES>(from, width, positions, count, to);
    } else {
      nearestRowOfAnyStep<BYTES, Float>(from, width, x, step, count, to);
    }
  };
  switch (sampleBytes) {
    case 1:
      return nearest.template operator()<1, float>();
    case 2:
      return nearest.template operator()<2, float>();
    case 4:
      return nearest.template operator()<4, float>();
    case 8:
      return nearest.template operator()<8, double>();
    default:
      assert(false && "bad sample width");
  }
}
#endif  // HWY_ONCE
