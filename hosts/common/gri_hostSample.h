/// @file
/// What the library's numbers for data types and colour spaces mean.
#pragma once

#include <string>
#include <vector>

#include "gri_rdk_cdll.h"

/// What the samples of one band mean.
enum class GRIHostColor {
  OTHER,
  GRAY,
  RED,
  GREEN,
  BLUE,
  CYAN,
  MAGENTA,
  YELLOW,
  BLACK,
  LUMA,
  CHROMA_BLUE,
  CHROMA_RED,
  ALPHA,
};

/// Bytes of one sample of a GRIC_DATATYPE_*; 0 for GRIC_DATATYPE_INVALID and unknown numbers.
size_t gri_hostSampleBytes(gr_int32 dataType);
/// "uint8", "int16", "float32" ...; "mixed" for GRIC_DATATYPE_INVALID and unknown numbers.
const char* gri_hostSampleName(gr_int32 dataType);
/// "8-bit unsigned", "16-bit signed", "32-bit float" ...
const char* gri_hostSampleWords(gr_int32 dataType);

/// Whether a sample of that type can have that value: it is in the type's range, and whole where
/// the type is. 64-bit types count as far as doubles tell.
bool gri_hostIsSample(gr_int32 dataType, double value);

/// "gray", "RGB", "CMYK", "multispectral" ..., with " with alpha" where there is an alpha band.
std::string gri_hostColorSpaceName(gr_int32 colorSpace);
bool gri_hostHasAlpha(gr_int32 colorSpace);

/// The meaning of each band. Bands that the colour space doesn't account for are OTHER.
std::vector<GRIHostColor> gri_hostBandColors(gr_int32 colorSpace, gr_uint16 numBands);
/// "red", "alpha" ...
const char* gri_hostColorName(GRIHostColor color);
