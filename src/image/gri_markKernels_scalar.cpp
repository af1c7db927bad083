#include <bit>
#include <cassert>
#include <cstring>
#include <type_traits>

#include "image/gri_markKernels.h"

namespace {

template <typename T>
T sampleAt(const void* row, size_t index) {
  T sample;
  std::memcpy(&sample, static_cast<const gr_uint8*>(row) + index * sizeof(T), sizeof(T));
  return sample;
}

/// Marks the pixels from `begin` on for which `isMarked(i)` holds.
template <typename Predicate>
void mark(size_t begin, size_t numPixels, gr_uint8* marks, Predicate&& isMarked) {
  assert(begin % 64 == 0 && begin <= numPixels);
  std::memset(marks + begin / 8, 0, gri_markBytes(numPixels - begin));
  for (size_t i = begin; i < numPixels; ++i) {
    if (isMarked(i)) marks[i / 8] = static_cast<gr_uint8>(marks[i / 8] | (1u << (i % 8)));
  }
}

bool sameBits(gr_uint8 a, gr_uint8 b) { return a == b; }
bool sameBits(gr_uint16 a, gr_uint16 b) { return a == b; }
bool sameBits(gr_uint32 a, gr_uint32 b) { return a == b; }
bool sameBits(gr_uint64 a, gr_uint64 b) { return a == b; }
bool sameBits(float a, float b) {
  return std::bit_cast<gr_uint32>(a) == std::bit_cast<gr_uint32>(b);
}
bool sameBits(double a, double b) {
  return std::bit_cast<gr_uint64>(a) == std::bit_cast<gr_uint64>(b);
}

template <typename T>
void markDifferent(const void* const* rows, const void* const* noData, size_t numBands,
                   size_t begin, size_t numPixels, gr_uint8* marks) {
  mark(begin, numPixels, marks, [&](size_t i) {
    for (size_t band = 0; band < numBands; ++band) {
      const T sample = sampleAt<T>(rows[band], i);
      const T none = sampleAt<T>(noData[band], 0);
      if (!sameBits(sample, none) && sample != none) return true;
    }
    return false;
  });
}

template <typename T>
void markGreater(const void* a, const void* b, size_t begin, size_t numPixels, gr_uint8* marks) {
  mark(begin, numPixels, marks, [&](size_t i) { return sampleAt<T>(a, i) > sampleAt<T>(b, i); });
}

template <typename T>
double distance(T none, T sample) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<double>(none) - static_cast<double>(sample);
  } else {
    return gr_int32{none} - gr_int32{sample};
  }
}

template <typename T>
void markFuzzy(const void* const* a, const void* const* b, const void* const* noData,
               size_t numBands, double threshold, size_t begin, size_t numPixels, gr_uint8* marks) {
  mark(begin, numPixels, marks, [&](size_t i) {
    bool noDataA = true, noDataB = true;
    double da = 0.0, db = 0.0;
    for (size_t band = 0; band < numBands; ++band) {
      const T none = sampleAt<T>(noData[band], 0);
      const T sampleA = sampleAt<T>(a[band], i), sampleB = sampleAt<T>(b[band], i);
      noDataA = noDataA && sampleA == none;
      noDataB = noDataB && sampleB == none;
      da += distance(none, sampleA) * distance(none, sampleA);
      db += distance(none, sampleB) * distance(none, sampleB);
    }
    if (noDataB) return false;
    if (noDataA) return true;
    if (db > threshold) return true;
    if (da < threshold) return true;
    return 2 * da < db;
  });
}

}  // namespace

void gri_markDifferentScalar(const void* const* rows, const void* const* noData, size_t numBands,
                             GRIDataType type, size_t begin, size_t numPixels, gr_uint8* marks) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_SINT8:
      return markDifferent<gr_uint8>(rows, noData, numBands, begin, numPixels, marks);
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_SINT16:
      return markDifferent<gr_uint16>(rows, noData, numBands, begin, numPixels, marks);
    case GRI_DATATYPE_UINT32:
    case GRI_DATATYPE_SINT32:
      return markDifferent<gr_uint32>(rows, noData, numBands, begin, numPixels, marks);
    case GRI_DATATYPE_UINT64:
    case GRI_DATATYPE_SINT64:
      return markDifferent<gr_uint64>(rows, noData, numBands, begin, numPixels, marks);
    case GRI_DATATYPE_FLOAT32:
      return markDifferent<float>(rows, noData, numBands, begin, numPixels, marks);
    case GRI_DATATYPE_FLOAT64:
      return markDifferent<double>(rows, noData, numBands, begin, numPixels, marks);
    default:
      assert(false && "bad datatype");
  }
}

void gri_markGreaterScalar(const void* a, const void* b, GRIDataType type, size_t begin,
                           size_t numPixels, gr_uint8* marks) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
      return markGreater<gr_uint8>(a, b, begin, numPixels, marks);
    case GRI_DATATYPE_UINT16:
      return markGreater<gr_uint16>(a, b, begin, numPixels, marks);
    case GRI_DATATYPE_SINT16:
      return markGreater<gr_int16>(a, b, begin, numPixels, marks);
    case GRI_DATATYPE_FLOAT32:
      return markGreater<float>(a, b, begin, numPixels, marks);
    default:
      assert(false && "bad datatype");
  }
}

void gri_markFuzzyScalar(const void* const* a, const void* const* b, const void* const* noData,
                         size_t numBands, GRIDataType type, double threshold, size_t begin,
                         size_t numPixels, gr_uint8* marks) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
      return markFuzzy<gr_uint8>(a, b, noData, numBands, threshold, begin, numPixels, marks);
    case GRI_DATATYPE_UINT16:
      return markFuzzy<gr_uint16>(a, b, noData, numBands, threshold, begin, numPixels, marks);
    case GRI_DATATYPE_SINT16:
      return markFuzzy<gr_int16>(a, b, noData, numBands, threshold, begin, numPixels, marks);
    case GRI_DATATYPE_FLOAT32:
      return markFuzzy<float>(a, b, noData, numBands, threshold, begin, numPixels, marks);
    default:
      assert(false && "bad datatype");
  }
}
