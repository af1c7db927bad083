/// @file
/// The 9/7 synthesis word by word as the format describes it: whole planes, line by line, each
/// value by recursion. The definition that tests hold the fast one to.
#pragma once

#include <functional>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"

/// A line of all samples from its low and high channel, which together have as many. Each value of
/// a step may be asked for at any place, inside the line or not.
std::vector<float> tg2_literalLine(const std::vector<float>& low, const std::vector<float>& high);

/// A whole subband.
struct TG2LiteralPlane {
  gr_int64 width = 0;
  gr_int64 height = 0;
  std::vector<float> samples{};  ///< row after row

  float at(gr_int64 x, gr_int64 y) const { return samples.at(static_cast<size_t>(y * width + x)); }
};

/// Columns first, then rows.
TG2LiteralPlane tg2_literalJoin(const TG2LiteralPlane& lowLow, const TG2LiteralPlane& highLow,
                                const TG2LiteralPlane& lowHigh, const TG2LiteralPlane& highHigh);

/// The coefficients of a subband: of the file's index `subband`, `width` x `height`, with its gain.
using TG2LiteralSubbands =
    std::function<TG2LiteralPlane(gr_int32 subband, gr_int64 width, gr_int64 height, float gain)>;

/// The whole image at a level, one band.
/// @param width, height  of the image at level 0
/// @param numLevels  how many levels the file has
/// @param level  negative for one that is larger than the image
TG2LiteralPlane tg2_literalImage(gr_int64 width, gr_int64 height, gr_int32 numLevels,
                                 gr_int32 level, const TG2LiteralSubbands& subbands);

/// The step of a band.
/// @param level  of the whole image that is made
float tg2_literalStep(gr_int32 level, float gain, float binWidth);

/// A bin number's value, without dither.
float tg2_literalValue(gr_int32 bin, float step);
