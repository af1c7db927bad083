/// @file
/// The bit-plane coder of one component of one subblock, sample by sample as its rules read, in
/// both directions. Tests hold the decoder against it and writers of test files use it to encode.
#pragma once

#include <vector>

#include "gr_lib_utils/include/gr_types.h"

/// One of the 32 plane slots of a component. Plane p weighs 2^(31 - p).
struct TG3LiteralPlane {
  std::vector<gr_uint8> bytes;
  bool hasData = false;    ///< a record stands for it in the file, if only with a length of 0
  bool useBypass = false;  ///< raw bits
};

struct TG3LiteralShape {
  gr_uint32 subband = 0;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  /// The rectangle that is coded, inclusive; nothing is when a first is above its last.
  gr_uint32 firstColumn = 0, lastColumn = 0;
  gr_uint32 firstRow = 0, lastRow = 0;
};

/// A subblock that is coded as a whole.
TG3LiteralShape tg3_literalShape(gr_uint32 subband, gr_uint32 width, gr_uint32 height);

/// Encodes samples (magnitudes below 2^31), from the plane of the highest bit that is set to
/// `lastPlane`; all 32 slots come back, and none has data where all samples are zero.
/// @param bypassPlanes  bit p set: plane p is stored as raw bits
std::vector<TG3LiteralPlane> tg3_literalEncode(const TG3LiteralShape& shape,
                                               const std::vector<gr_int32>& samples,
                                               gr_uint32 lastPlane = 31,
                                               gr_uint32 bypassPlanes = 0);

/// Decodes up to 32 slots to the samples of the whole subblock, midpoints included.
std::vector<gr_int32> tg3_literalDecode(const TG3LiteralShape& shape,
                                        const std::vector<TG3LiteralPlane>& planes);
