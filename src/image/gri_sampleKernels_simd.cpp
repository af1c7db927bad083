#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <type_traits>
#include <utility>

#include "image/gri_sampleKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "image/gri_sampleKernels_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace gri_sampleKernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The first `done` pixels of `interleaved` are split; the scalar loop takes the rest.
void SplitRest(const gr_uint8* interleaved, size_t done, size_t numPixels, size_t numBands,
               size_t sampleBytes, void* const* planes) {
  if (done == numPixels) return;
  void* rest[4];
  for (size_t band = 0; band < numBands; ++band) {
    rest[band] = static_cast<gr_uint8*>(planes[band]) + done * sampleBytes;
  }
  gri_splitBandsScalar(interleaved + done * numBands * sampleBytes, numPixels - done, numBands,
                       sampleBytes, rest);
}

void JoinRest(const void* const* planes, size_t done, size_t numPixels, size_t numBands,
              size_t sampleBytes, gr_uint8* interleaved) {
  if (done == numPixels) return;
  const void* rest[4];
  for (size_t band = 0; band < numBands; ++band) {
    rest[band] = static_cast<const gr_uint8*>(planes[band]) + done * sampleBytes;
  }
  gri_joinBandsScalar(rest, numPixels - done, numBands, sampleBytes,
                      interleaved + done * numBands * sampleBytes);
}

// Pointers to samples may be unaligned: they go to Highway's unaligned loads and stores only.

template <typename T>
void SplitVector(const gr_uint8* interleaved, size_t numPixels, size_t numBands,
                 void* const* planes) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  const T* from = reinterpret_cast<const T*>(interleaved);
  T* const p0 = static_cast<T*>(planes[0]);
  T* const p1 = static_cast<T*>(planes[1]);
  hn::Vec<decltype(d)> v0, v1, v2, v3;
  size_t i = 0;
  if (numBands == 2) {
    for (; i + lanes <= numPixels; i += lanes) {
      hn::LoadInterleaved2(d, from + 2 * i, v0, v1);
      hn::StoreU(v0, d, p0 + i);
      hn::StoreU(v1, d, p1 + i);
    }
  } else if (numBands == 3) {
    T* const p2 = static_cast<T*>(planes[2]);
    for (; i + lanes <= numPixels; i += lanes) {
      hn::LoadInterleaved3(d, from + 3 * i, v0, v1, v2);
      hn::StoreU(v0, d, p0 + i);
      hn::StoreU(v1, d, p1 + i);
      hn::StoreU(v2, d, p2 + i);
    }
  } else {
    T* const p2 = static_cast<T*>(planes[2]);
    T* const p3 = static_cast<T*>(planes[3]);
    for (; i + lanes <= numPixels; i += lanes) {
      hn::LoadInterleaved4(d, from + 4 * i, v0, v1, v2, v3);
      hn::StoreU(v0, d, p0 + i);
      hn::StoreU(v1, d, p1 + i);
      hn::StoreU(v2, d, p2 + i);
      hn::StoreU(v3, d, p3 + i);
    }
  }
  SplitRest(interleaved, i, numPixels, numBands, sizeof(T), planes);
}

template <typename T>
void JoinVector(const void* const* planes, size_t numPixels, size_t numBands,
                gr_uint8* interleaved) {
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  T* to = reinterpret_cast<T*>(interleaved);
  const T* const p0 = static_cast<const T*>(planes[0]);
  const T* const p1 = static_cast<const T*>(planes[1]);
  size_t i = 0;
  if (numBands == 2) {
    for (; i + lanes <= numPixels; i += lanes) {
      hn::StoreInterleaved2(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i), d, to + 2 * i);
    }
  } else if (numBands == 3) {
    const T* const p2 = static_cast<const T*>(planes[2]);
    for (; i + lanes <= numPixels; i += lanes) {
      hn::StoreInterleaved3(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i), hn::LoadU(d, p2 + i), d,
                            to + 3 * i);
    }
  } else {
    const T* const p2 = static_cast<const T*>(planes[2]);
    const T* const p3 = static_cast<const T*>(planes[3]);
    for (; i + lanes <= numPixels; i += lanes) {
      hn::StoreInterleaved4(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i), hn::LoadU(d, p2 + i),
                            hn::LoadU(d, p3 + i), d, to + 4 * i);
    }
  }
  JoinRest(planes, i, numPixels, numBands, sizeof(T), interleaved);
}

void SplitBands(const void* interleaved, size_t numPixels, size_t numBands, size_t sampleBytes,
                void* const* planes) {
  const gr_uint8* from = static_cast<const gr_uint8*>(interleaved);
  switch (sampleBytes) {
    case 1:
      return SplitVector<gr_uint8>(from, numPixels, numBands, planes);
    case 2:
      return SplitVector<gr_uint16>(from, numPixels, numBands, planes);
    default:
      return SplitVector<gr_uint32>(from, numPixels, numBands, planes);
  }
}

void JoinBands(const void* const* planes, size_t numPixels, size_t numBands, size_t sampleBytes,
               void* interleaved) {
  gr_uint8* to = static_cast<gr_uint8*>(interleaved);
  switch (sampleBytes) {
    case 1:
      return JoinVector<gr_uint8>(planes, numPixels, numBands, to);
    case 2:
      return JoinVector<gr_uint16>(planes, numPixels, numBands, to);
    default:
      return JoinVector<gr_uint32>(planes, numPixels, numBands, to);
  }
}

void CopySwapped(const void* from, size_t numSamples, size_t sampleBytes, void* to) {
  const gr_uint8* source = static_cast<const gr_uint8*>(from);
  gr_uint8* target = static_cast<gr_uint8*>(to);
  const size_t numBytes = numSamples * sampleBytes;
  size_t i = 0;
#if HWY_TARGET != HWY_SCALAR  // which has no shuffles of bytes
  // Within each 16 bytes, byte k comes from the mirrored place of its sample.
  HWY_ALIGN gr_uint8 order[HWY_MAX_BYTES];
  for (size_t k = 0; k < sizeof(order); ++k) {
    order[k] = static_cast<gr_uint8>((k % 16) ^ (sampleBytes - 1));
  }
  const hn::ScalableTag<gr_uint8> d;
  const size_t lanes = hn::Lanes(d);
  const auto mirrored = hn::Load(d, order);
  for (; i + lanes <= numBytes; i += lanes) {
    hn::StoreU(hn::TableLookupBytes(hn::LoadU(d, source + i), mirrored), d, target + i);
  }
#endif
  gri_copySwappedScalar(source + i, (numBytes - i) / sampleBytes, sampleBytes, target + i);
}

}  // namespace HWY_NAMESPACE
}  // namespace gri_sampleKernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace gri_sampleKernels {
// A build for one instruction set alone finds a kernel by its name in its own namespace.
HWY_EXPORT(SplitBands);
HWY_EXPORT(JoinBands);
HWY_EXPORT(CopySwapped);

auto chosenSplitBands() { return HWY_DYNAMIC_DISPATCH(SplitBands); }

auto chosenJoinBands() { return HWY_DYNAMIC_DISPATCH(JoinBands); }

auto chosenCopySwapped() { return HWY_DYNAMIC_DISPATCH(CopySwapped); }

namespace {

constexpr size_t GROUP_BANDS = 4;      // the most that the kernels take
constexpr size_t PIECE_PIXELS = 256;   // at most
constexpr size_t PIECE_BYTES = 32768;  // of interleaved pixels, which each group passes over
constexpr size_t MAX_SAMPLE_BYTES = 8;

template <size_t BYTES>
void copyBlocks(const gr_uint8* from, size_t fromStep, size_t count, gr_uint8* to, size_t toStep) {
  for (size_t i = 0; i < count; ++i) std::memcpy(to + i * toStep, from + i * fromStep, BYTES);
}

template <size_t... BYTES>
void copyBlocks(const gr_uint8* from, size_t fromStep, size_t count, size_t bytes, gr_uint8* to,
                size_t toStep, std::index_sequence<BYTES...>) {
  const bool isCopied =
      ((bytes == BYTES && (copyBlocks<BYTES>(from, fromStep, count, to, toStep), true)) || ...);
  assert(isCopied);
  static_cast<void>(isCopied);
}

/// Copies `count` blocks of `bytes` bytes that lie `fromStep` and `toStep` bytes apart. A block is
/// one to four samples of 1, 2, 4 or 8 bytes.
void copyBlocks(const gr_uint8* from, size_t fromStep, size_t count, size_t bytes, gr_uint8* to,
                size_t toStep) {
  copyBlocks(from, fromStep, count, bytes, to, toStep,
             std::index_sequence<1, 2, 3, 4, 6, 8, 12, 16, 24, 32>());
}

/// Cuts pixels of many bands into groups of bands that the kernels take, and rows into pieces that
/// stay in the cache from one group to the next. Calls `body(block, count, bands, bytes, planes)`
/// for each: `count` pixels, whose samples of this group are `bytes` bytes from `block` on (an
/// offset into the interleaved row), and where the samples of the group's `bands` bands lie.
template <typename Plane, typename Body>
void forEachGroup(size_t numPixels, size_t numBands, size_t sampleBytes, Plane* const* planes,
                  Body&& body) {
  using Byte = std::conditional_t<std::is_const_v<Plane>, const gr_uint8, gr_uint8>;
  const size_t pixelBytes = numBands * sampleBytes;
  const size_t step = std::clamp<size_t>(PIECE_BYTES / pixelBytes, 1, PIECE_PIXELS);
  for (size_t first = 0; first < numPixels; first += step) {
    const size_t count = std::min(step, numPixels - first);
    for (size_t band = 0; band < numBands; band += GROUP_BANDS) {
      const size_t bands = std::min(GROUP_BANDS, numBands - band);
      Plane* group[GROUP_BANDS] = {};
      for (size_t k = 0; k < bands; ++k) {
        group[k] = static_cast<Byte*>(planes[band + k]) + first * sampleBytes;
      }
      body(first * pixelBytes + band * sampleBytes, count, bands, bands * sampleBytes, group);
    }
  }
}

void splitManyBands(const void* interleaved, size_t numPixels, size_t numBands, size_t sampleBytes,
                    void* const* planes) {
  const gr_uint8* const from = static_cast<const gr_uint8*>(interleaved);
  gr_uint8 packed[PIECE_PIXELS * GROUP_BANDS * MAX_SAMPLE_BYTES];
  forEachGroup(numPixels, numBands, sampleBytes, planes,
               [&](size_t block, size_t count, size_t bands, size_t bytes, void* const* group) {
                 copyBlocks(from + block, numBands * sampleBytes, count, bytes, packed, bytes);
                 gri_splitBands(packed, count, bands, sampleBytes, group);
               });
}

void joinManyBands(const void* const* planes, size_t numPixels, size_t numBands, size_t sampleBytes,
                   void* interleaved) {
  gr_uint8* const to = static_cast<gr_uint8*>(interleaved);
  gr_uint8 packed[PIECE_PIXELS * GROUP_BANDS * MAX_SAMPLE_BYTES];
  forEachGroup(
      numPixels, numBands, sampleBytes, planes,
      [&](size_t block, size_t count, size_t bands, size_t bytes, const void* const* group) {
        gri_joinBands(group, count, bands, sampleBytes, packed);
        copyBlocks(packed, bytes, count, bytes, to + block, numBands * sampleBytes);
      });
}

}  // namespace
}  // namespace gri_sampleKernels

void gri_splitBands(const void* interleaved, size_t numPixels, size_t numBands, size_t sampleBytes,
                    void* const* planes) {
  if (numBands == 1) {
    if (numPixels != 0) std::memcpy(planes[0], interleaved, numPixels * sampleBytes);
  } else if (numBands > gri_sampleKernels::GROUP_BANDS) {
    gri_sampleKernels::splitManyBands(interleaved, numPixels, numBands, sampleBytes, planes);
  } else if (sampleBytes <= 4) {
    gri_sampleKernels::chosenSplitBands()(interleaved, numPixels, numBands, sampleBytes, planes);
  } else {
    gri_splitBandsScalar(interleaved, numPixels, numBands, sampleBytes, planes);
  }
}

void gri_joinBands(const void* const* planes, size_t numPixels, size_t numBands, size_t sampleBytes,
                   void* interleaved) {
  if (numBands == 1) {
    if (numPixels != 0) std::memcpy(interleaved, planes[0], numPixels * sampleBytes);
  } else if (numBands > gri_sampleKernels::GROUP_BANDS) {
    gri_sampleKernels::joinManyBands(planes, numPixels, numBands, sampleBytes, interleaved);
  } else if (sampleBytes <= 4) {
    gri_sampleKernels::chosenJoinBands()(planes, numPixels, numBands, sampleBytes, interleaved);
  } else {
    gri_joinBandsScalar(planes, numPixels, numBands, sampleBytes, interleaved);
  }
}

void gri_copySwapped(const void* from, size_t numSamples, size_t sampleBytes, void* to) {
  if (sampleBytes == 1) return gri_copySwappedScalar(from, numSamples, sampleBytes, to);
  gri_sampleKernels::chosenCopySwapped()(from, numSamples, sampleBytes, to);
}

void gri_copyFromBigEndian(const void* from, size_t numSamples, size_t sampleBytes, void* to) {
  if constexpr (std::endian::native == std::endian::little) {
    gri_copySwapped(from, numSamples, sampleBytes, to);
  } else if (numSamples != 0) {
    std::memmove(to, from, numSamples * sampleBytes);
  }
}
#endif  // HWY_ONCE
