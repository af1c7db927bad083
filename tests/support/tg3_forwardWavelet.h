/// @file
/// The forward 5/3 wavelet of the test files: what the decoder's synthesis undoes.
#pragma once

#include <functional>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"
#include "tests/support/tg3_testGeometry.h"

/// The coefficients of one component, subband by subband, each row after row.
using TG3TestBands = std::vector<std::vector<gr_int32>>;

/// The value of a level's correction band at a column and row. What stands there is taken out of
/// the low band, so any values give the same picture.
using TG3TestCorrection = std::function<gr_int32(gr_uint32 level, gr_uint32 x, gr_uint32 y)>;

/// Splits an image.
/// @param samples  width x height of the geometry's image, row after row
/// @param correction  empty: all zero
TG3TestBands tg3_forwardWavelet(const TG3TestGeometry& geometry, gr_uint32 width, gr_uint32 height,
                                std::vector<gr_int32> samples,
                                const TG3TestCorrection& correction = {});
