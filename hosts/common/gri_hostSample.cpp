#include "hosts/common/gri_hostSample.h"

#include <array>
#include <cmath>
#include <limits>

namespace {

struct SampleType {
  size_t bytes;
  const char* name;
  const char* words;
};

const SampleType& sampleType(gr_int32 dataType) {
  static constexpr std::array<SampleType, 11> TYPES{{
      {0, "mixed", "mixed types"},
      {1, "uint8", "8-bit unsigned"},
      {1, "int8", "8-bit signed"},
      {2, "uint16", "16-bit unsigned"},
      {2, "int16", "16-bit signed"},
      {4, "uint32", "32-bit unsigned"},
      {4, "int32", "32-bit signed"},
      {4, "float32", "32-bit float"},
      {8, "float64", "64-bit float"},
      {8, "uint64", "64-bit unsigned"},
      {8, "int64", "64-bit signed"},
  }};
  const bool isKnown = dataType > 0 && static_cast<size_t>(dataType) < TYPES.size();
  return TYPES[isKnown ? static_cast<size_t>(dataType) : 0];
}

constexpr gr_int32 ALPHA_FLAGS = GRIC_COLORSPACE_ALPHA | GRIC_COLORSPACE_ALPHA_SECOND_FLAG;

const char* colorName(gr_int32 colorSpaceWithoutAlpha) {
  switch (colorSpaceWithoutAlpha) {
    case GRIC_COLORSPACE_GRAYSCALE:
      return "gray";
    case GRIC_COLORSPACE_RGB:
      return "RGB";
    case GRIC_COLORSPACE_CMY:
      return "CMY";
    case GRIC_COLORSPACE_YCC:
      return "YCC";
    case GRIC_COLORSPACE_CMYK:
      return "CMYK";
    case GRIC_COLORSPACE_YCCK:
      return "YCCK";
    case GRIC_COLORSPACE_MULTISPECTRAL:
      return "multispectral";
    default:
      return "unknown";
  }
}

std::vector<GRIHostColor> colorsOf(gr_int32 colorSpaceWithoutAlpha) {
  using enum GRIHostColor;
  switch (colorSpaceWithoutAlpha) {
    case GRIC_COLORSPACE_GRAYSCALE:
      return {GRAY};
    case GRIC_COLORSPACE_RGB:
      return {RED, GREEN, BLUE};
    case GRIC_COLORSPACE_CMY:
      return {CYAN, MAGENTA, YELLOW};
    case GRIC_COLORSPACE_YCC:
      return {LUMA, CHROMA_BLUE, CHROMA_RED};
    case GRIC_COLORSPACE_CMYK:
      return {CYAN, MAGENTA, YELLOW, BLACK};
    case GRIC_COLORSPACE_YCCK:
      return {LUMA, CHROMA_BLUE, CHROMA_RED, BLACK};
    default:
      return {};
  }
}

}  // namespace

size_t gri_hostSampleBytes(gr_int32 dataType) { return sampleType(dataType).bytes; }
const char* gri_hostSampleName(gr_int32 dataType) { return sampleType(dataType).name; }
const char* gri_hostSampleWords(gr_int32 dataType) { return sampleType(dataType).words; }

bool gri_hostIsSample(gr_int32 dataType, double value) {
  const auto isWholeBetween = [&](double least, double end) {
    return value >= least && value < end && value == std::floor(value);
  };
  switch (dataType) {
    case GRIC_DATATYPE_UINT8:
      return isWholeBetween(0, 0x1p8);
    case GRIC_DATATYPE_SINT8:
      return isWholeBetween(-0x1p7, 0x1p7);
    case GRIC_DATATYPE_UINT16:
      return isWholeBetween(0, 0x1p16);
    case GRIC_DATATYPE_SINT16:
      return isWholeBetween(-0x1p15, 0x1p15);
    case GRIC_DATATYPE_UINT32:
      return isWholeBetween(0, 0x1p32);
    case GRIC_DATATYPE_SINT32:
      return isWholeBetween(-0x1p31, 0x1p31);
    case GRIC_DATATYPE_UINT64:
      return isWholeBetween(0, 0x1p64);
    case GRIC_DATATYPE_SINT64:
      return isWholeBetween(-0x1p63, 0x1p63);
    case GRIC_DATATYPE_FLOAT32:
      return !std::isfinite(value) || std::abs(value) <= std::numeric_limits<float>::max();
    case GRIC_DATATYPE_FLOAT64:
      return true;
    default:
      return false;
  }
}

bool gri_hostHasAlpha(gr_int32 colorSpace) { return (colorSpace & ALPHA_FLAGS) != 0; }

std::string gri_hostColorSpaceName(gr_int32 colorSpace) {
  std::string name = colorName(colorSpace & ~ALPHA_FLAGS);
  if (gri_hostHasAlpha(colorSpace)) name += " with alpha";
  return name;
}

std::vector<GRIHostColor> gri_hostBandColors(gr_int32 colorSpace, gr_uint16 numBands) {
  std::vector<GRIHostColor> colors = colorsOf(colorSpace & ~ALPHA_FLAGS);
  colors.resize(numBands, GRIHostColor::OTHER);
  if (gri_hostHasAlpha(colorSpace) && numBands > 0) colors.back() = GRIHostColor::ALPHA;
  return colors;
}

const char* gri_hostColorName(GRIHostColor color) {
  static constexpr std::array<const char*, 13> NAMES{
      "other",  "gray",  "red",  "green",       "blue",       "cyan", "magenta",
      "yellow", "black", "luma", "chroma blue", "chroma red", "alpha"};
  return NAMES[static_cast<size_t>(color)];
}
