#include <cassert>
#include <cstring>

#include "image/gri_sampleKernels.h"

namespace {

// Samples are moved with memcpy of a constant size, which is one move for the machine whatever the
// alignment.

template <size_t BYTES>
void split(const gr_uint8* interleaved, size_t numPixels, size_t numBands, void* const* planes) {
  for (size_t band = 0; band < numBands; ++band) {
    const gr_uint8* from = interleaved + band * BYTES;
    gr_uint8* to = static_cast<gr_uint8*>(planes[band]);
    for (size_t i = 0; i < numPixels; ++i) {
      std::memcpy(to + i * BYTES, from + i * numBands * BYTES, BYTES);
    }
  }
}

template <size_t BYTES>
void join(const void* const* planes, size_t numPixels, size_t numBands, gr_uint8* interleaved) {
  for (size_t band = 0; band < numBands; ++band) {
    const gr_uint8* from = static_cast<const gr_uint8*>(planes[band]);
    gr_uint8* to = interleaved + band * BYTES;
    for (size_t i = 0; i < numPixels; ++i) {
      std::memcpy(to + i * numBands * BYTES, from + i * BYTES, BYTES);
    }
  }
}

gr_uint16 reversed(gr_uint16 value) { return __builtin_bswap16(value); }
gr_uint32 reversed(gr_uint32 value) { return __builtin_bswap32(value); }
gr_uint64 reversed(gr_uint64 value) { return __builtin_bswap64(value); }

template <typename T>
void copyReversed(const gr_uint8* from, size_t numSamples, gr_uint8* to) {
  for (size_t i = 0; i < numSamples; ++i) {
    T sample;
    std::memcpy(&sample, from + i * sizeof(T), sizeof(T));
    sample = reversed(sample);
    std::memcpy(to + i * sizeof(T), &sample, sizeof(T));
  }
}

}  // namespace

void gri_splitBandsScalar(const void* interleaved, size_t numPixels, size_t numBands,
                          size_t sampleBytes, void* const* planes) {
  const gr_uint8* from = static_cast<const gr_uint8*>(interleaved);
  switch (sampleBytes) {
    case 1:
      return split<1>(from, numPixels, numBands, planes);
    case 2:
      return split<2>(from, numPixels, numBands, planes);
    case 4:
      return split<4>(from, numPixels, numBands, planes);
    case 8:
      return split<8>(from, numPixels, numBands, planes);
    default:
      assert(false && "a sample is 1, 2, 4 or 8 bytes wide");
  }
}

void gri_joinBandsScalar(const void* const* planes, size_t numPixels, size_t numBands,
                         size_t sampleBytes, void* interleaved) {
  gr_uint8* to = static_cast<gr_uint8*>(interleaved);
  switch (sampleBytes) {
    case 1:
      return join<1>(planes, numPixels, numBands, to);
    case 2:
      return join<2>(planes, numPixels, numBands, to);
    case 4:
      return join<4>(planes, numPixels, numBands, to);
    case 8:
      return join<8>(planes, numPixels, numBands, to);
    default:
      assert(false && "a sample is 1, 2, 4 or 8 bytes wide");
  }
}

void gri_copySwappedScalar(const void* from, size_t numSamples, size_t sampleBytes, void* to) {
  const gr_uint8* source = static_cast<const gr_uint8*>(from);
  gr_uint8* target = static_cast<gr_uint8*>(to);
  switch (sampleBytes) {
    case 1:
      if (numSamples != 0) std::memmove(to, from, numSamples);
      return;
    case 2:
      return copyReversed<gr_uint16>(source, numSamples, target);
    case 4:
      return copyReversed<gr_uint32>(source, numSamples, target);
    case 8:
      return copyReversed<gr_uint64>(source, numSamples, target);
    default:
      assert(false && "a sample is 1, 2, 4 or 8 bytes wide");
  }
}
