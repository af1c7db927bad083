/// @file
/// The nearest-neighbour row of a scaled image, which only moves samples: it knows how wide they
/// are, not what they mean.
///
/// It comes as the definition (`...Scalar`) and as the fast one, which gives the same bytes.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// Writes `count` samples: number k is the one of `row` at the position `x` + `step` + ... + `step`
/// (k times, added up in single precision; in double precision for samples of 8 bytes), truncated
/// and limited to the row.
/// @param row          `width` samples, at least one; needs no alignment
/// @param sampleBytes  1, 2, 4 or 8
/// @param dest         room for `count` samples, apart from `row`; needs no alignment
void gri_nearestRow(const void* row, gr_uint32 width, size_t sampleBytes, float x, float step,
                    size_t count, void* dest);
void gri_nearestRowScalar(const void* row, gr_uint32 width, size_t sampleBytes, float x, float step,
                          size_t count, void* dest);
