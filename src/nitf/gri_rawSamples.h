/// @file
/// Samples that lie in a stream, or in memory, as they are.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_sceneBuffer.h"

/// Where samples lie: that of column c, row r and band b at
///     offset + c * pixelBytes + r * rowBytes + b * bandBytes.
///
/// All of them have one width, and one of three orders: pixel-interleaved (pixelBytes is the width
/// of all bands), row-interleaved (bandBytes is below rowBytes), or band-sequential.
struct GRIRawSamples {
  gr_uint64 offset = 0;  // bytes
  gr_uint64 pixelBytes = 0;
  gr_uint64 rowBytes = 0;
  gr_uint64 bandBytes = 0;
  gr_uint32 sampleBytes = 0;  // 1, 2, 4 or 8
  gr_uint32 numBands = 0;
  bool mustSwap = false;  // whether they are in the other byte order
};

/// A rectangle of them.
struct GRIRawRect {
  gr_uint64 col = 0;
  gr_uint64 row = 0;
  gr_uint32 numCols = 0;
  gr_uint32 numRows = 0;
};

/// A place in a scene buffer: of the upper left in its window, and the first of the bands.
struct GRIRawTarget {
  gr_uint32 col = 0;
  gr_uint32 row = 0;
  gr_uint16 firstBand = 0;
};

/// Copies samples from where they lie to where they belong, in the machine's order. Does nothing
/// else to them.
/// @param bytes   the memory in which `samples` lie
/// @param buffer  has room for the rectangle at `target`
/// @param planes  room for samples.numBands pointers
void gri_copyRawSamples(const gr_uint8* bytes, const GRIRawSamples& samples, const GRIRawRect& rect,
                        GRISceneBuffer& buffer, const GRIRawTarget& target, void** planes);
