/// @file
/// The loops that compare rows of samples and mark pixels: one bit per pixel, pixel i is bit i % 8
/// of byte i / 8.
///
/// Each comes as the definition (`...Scalar`) and as the fast one, which is chosen for the machine
/// at run time and gives the same bits. No row needs any alignment. The definitions can leave out
/// the first `begin` pixels, a multiple of 64, and their marks.
#pragma once

#include <bit>
#include <cstring>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"

/// Bytes of the marks of `numPixels` pixels: whole groups of 64. The kernels write all of them; the
/// bits behind the last pixel are 0.
constexpr size_t gri_markBytes(size_t numPixels) { return (numPixels + 63) / 64 * 8; }

/// Marks the pixels that differ from no data in at least one band. Floats differ when neither their
/// bits nor their values agree: 0 is -0, and a NaN is a NaN of the same bits.
/// @param rows    numBands pointers, each to numPixels samples
/// @param noData  numBands pointers, each to one sample
/// @param type    one of the ten data types of samples
void gri_markDifferent(const void* const* rows, const void* const* noData, size_t numBands,
                       GRIDataType type, size_t numPixels, gr_uint8* marks);
void gri_markDifferentScalar(const void* const* rows, const void* const* noData, size_t numBands,
                             GRIDataType type, size_t begin, size_t numPixels, gr_uint8* marks);

/// Marks the pixels at which a > b; never at a NaN.
/// @param a, b  numPixels samples each
/// @param type  UINT8, UINT16, SINT16 or FLOAT32
void gri_markGreater(const void* a, const void* b, GRIDataType type, size_t numPixels,
                     gr_uint8* marks);
void gri_markGreaterScalar(const void* a, const void* b, GRIDataType type, size_t begin,
                           size_t numPixels, gr_uint8* marks);

/// Marks the pixels of b that should replace those of a, by their distance from no data. With da
/// and db the squared distances from no data, summed over the bands in their order, a pixel is
/// decided by the first of these that holds:
///
///     b is no data in all bands          no
///     a is no data in all bands          yes
///     db > threshold                     yes
///     da < threshold                     yes
///     otherwise                          2 * da < db
///
/// @param a, b    numBands pointers each, each to numPixels samples
/// @param noData  numBands pointers, each to one sample
/// @param type    UINT8, UINT16, SINT16 or FLOAT32
void gri_markFuzzy(const void* const* a, const void* const* b, const void* const* noData,
                   size_t numBands, GRIDataType type, double threshold, size_t numPixels,
                   gr_uint8* marks);
void gri_markFuzzyScalar(const void* const* a, const void* const* b, const void* const* noData,
                         size_t numBands, GRIDataType type, double threshold, size_t begin,
                         size_t numPixels, gr_uint8* marks);

/// Calls `body(first, count)` for each longest run of marked pixels, from left to right.
template <typename Body>
void gri_forEachMarkedRun(const gr_uint8* marks, size_t numPixels, Body&& body) {
  size_t runStart = 0;
  bool inRun = false;
  for (size_t base = 0; base < numPixels; base += 64) {
    gr_uint64 word = 0;
    for (size_t i = 0; i < 8; ++i) word |= gr_uint64{marks[base / 8 + i]} << (8 * i);
    if (word == (inRun ? ~gr_uint64{0} : 0)) continue;  // nothing changes here
    // Each step goes to the next pixel that ends the state which the one before left.
    for (size_t at = 0; at < 64;) {
      const gr_uint64 rest = (inRun ? ~word : word) >> at;
      if (rest == 0) break;
      at += static_cast<size_t>(std::countr_zero(rest));
      if (inRun) {
        body(runStart, base + at - runStart);
      } else {
        runStart = base + at;
      }
      inRun = !inRun;
    }
  }
  if (inRun) body(runStart, numPixels - runStart);
}
