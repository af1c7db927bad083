/// @file
/// The scan of one bit-plane of one component, and the samples that the planes make.
///
/// A plane visits every sample of the coded rectangle, row by row: one decision for the bit of its
/// magnitude, and one for the sign where that bit is its first. What is known is kept twice: as a
/// word of flags for each sample (tg3_contextTables.h), for the contexts, and as rows of bits,
/// 64 columns a word, which tell at once where nothing is around. The decoded bits themselves only
/// go into rows of bits; samples are made of them when all planes are in.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_contextTables.h"

/// The state of a component while its planes are scanned. All memory is the caller's.
struct TG3PlaneScan {
  gr_uint32 width = 0;   ///< of the coded rectangle
  gr_uint32 height = 0;  ///< of the coded rectangle
  TG3ContextModel* model = nullptr;

  /// Flags of sample (0, 0), with one sample of margin at every side.
  gr_uint16* flags = nullptr;
  /// Positive neighbours of sample (0, 0), laid out like the flags.
  gr_uint8* positive = nullptr;
  /// Significant samples: the word of columns 0 to 63 of row 0, with one word of margin at both
  /// ends of a row and one row above and below.
  gr_uint64* significant = nullptr;
  /// Negative samples, rows of wordsPerRow() without margins.
  gr_uint64* negative = nullptr;

  size_t wordsPerRow() const { return (size_t{width} + 63) / 64; }
  size_t flagStride() const { return size_t{width} + 2; }
  size_t significantStride() const { return wordsPerRow() + 2; }
};

/// Scans an arithmetically coded plane.
/// @param bytes  of the plane; at least one
/// @param isSignPlane  the plane is 0, which weighs what the sign does: its samples are negative
/// @param bits  receives the plane's magnitude bits, rows of wordsPerRow() words
void tg3_scanPlane(const TG3PlaneScan& scan, std::span<const gr_uint8> bytes, bool isSignPlane,
                   gr_uint64* bits);

/// Scans a plane of raw bits; past the end they are 0. The contexts of the arithmetic coder stay
/// as they are, and diagonal neighbours learn nothing of what becomes significant.
void tg3_scanBypassPlane(const TG3PlaneScan& scan, std::span<const gr_uint8> bytes,
                         bool isSignPlane, gr_uint64* bits);

/// One row of samples from its bits.
struct TG3SampleRow {
  gr_uint32 width = 0;
  const gr_uint64* negative = nullptr;
  const gr_uint64* bits = nullptr;  ///< of the first plane
  size_t planeStride = 0;           ///< words from one plane's bits to the next one's
  gr_uint32 firstPlane = 0;
  gr_uint32 numPlanes = 0;
  /// What samples that aren't zero get in addition, at even and odd columns.
  gr_uint32 midpoint[2] = {0, 0};
};

/// Makes the samples of a row; plane p weighs 2^(31 - p), and plane 0 nothing.
void tg3_makeSamples(const TG3SampleRow& row, gr_int32* samples);
/// The definition, from column `from`.
void tg3_makeSamplesScalar(const TG3SampleRow& row, gr_uint32 from, gr_int32* samples);
