/// @file
/// The colour transforms of the test files: what the decoder's undo.
#pragma once

#include <vector>

#include "gr_lib_utils/include/gr_types.h"
#include "tests/support/tg3_forwardWavelet.h"

/// Transforms the coefficients of all components as a file of a kind stores them: 1 leaves them,
/// 4 and 10 take three components, 7 and 13 four, of which the last one stays.
void tg3_forwardColor(gr_uint32 kind, std::vector<TG3TestBands>& components);

/// One sample of three components by the two routines, which undo each other.
void tg3_colorRoutine4(gr_int32 (&sample)[3]);
void tg3_colorRoutine10(gr_int32 (&sample)[3]);
