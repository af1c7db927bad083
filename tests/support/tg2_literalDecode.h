/// @file
/// What a file of generation 2 decodes to, computed from its bins without the file: whole images,
/// value by value as the format describes it.
#pragma once

#include <vector>

#include "tests/support/tg2_literalSynthesis.h"
#include "tests/support/tg2_writer.h"

/// One band of the whole image at a level, as it comes from the wavelet.
/// @param level  negative for one that is larger than the image
TG2LiteralPlane tg2_literalPlane(const TG2TestImage& image, const TG2TestBins& bins, gr_uint32 band,
                                 gr_int32 level);

/// A part of the image as samples of single precision, which keep the half that is added for
/// rounding; bands 1 or 3.
/// @return a plane per band
std::vector<std::vector<float>> tg2_literalSamples(const std::vector<TG2LiteralPlane>& planes,
                                                   const TG2TestRect& window);
