#include "image/gri_dataTypes.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <limits>

namespace {

constexpr gr_int32 ALPHA_FLAGS = 0x030000;
constexpr gr_int32 ANY_NUMBER_OF_BANDS = 0xFF;

gr_uint32 sizeAtMag(gr_uint32 size, double mag) {
  const double scaled = std::ceil(static_cast<double>(size) * mag);
  if (!(scaled > 0.0)) return 0;  // also when it's no number
  constexpr double LARGEST = std::numeric_limits<gr_uint32>::max();
  return scaled < LARGEST ? static_cast<gr_uint32>(scaled) : std::numeric_limits<gr_uint32>::max();
}

}  // namespace

bool GRIUtils::isSampleType(GRIDataType dataType) {
  return dataType >= GRI_DATATYPE_UINT8 && dataType <= GRI_DATATYPE_SINT64;
}

gr_uint32 GRIUtils::getNumBytes(GRIDataType dataType) {
  switch (dataType) {
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_SINT8:
      return 1;
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_SINT16:
      return 2;
    case GRI_DATATYPE_UINT32:
    case GRI_DATATYPE_SINT32:
    case GRI_DATATYPE_FLOAT32:
      return 4;
    case GRI_DATATYPE_FLOAT64:
    case GRI_DATATYPE_UINT64:
    case GRI_DATATYPE_SINT64:
    case GRI_DATATYPE_COMPLEX32:
      return 8;
    case GRI_DATATYPE_COMPLEX64:
      return 16;
    case GRI_DATATYPE_INVALID:
      break;
  }
  assert(false && "bad datatype");
  return 0;
}

bool GRIUtils::isSigned(GRIDataType dataType) {
  switch (dataType) {
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_UINT32:
    case GRI_DATATYPE_UINT64:
      return false;
    case GRI_DATATYPE_SINT8:
    case GRI_DATATYPE_SINT16:
    case GRI_DATATYPE_SINT32:
    case GRI_DATATYPE_SINT64:
    case GRI_DATATYPE_FLOAT32:
    case GRI_DATATYPE_FLOAT64:
    case GRI_DATATYPE_COMPLEX32:
    case GRI_DATATYPE_COMPLEX64:
      return true;
    case GRI_DATATYPE_INVALID:
      break;
  }
  assert(false && "bad datatype");
  return false;
}

bool GRIUtils::isFloat(GRIDataType dataType) {
  switch (dataType) {
    case GRI_DATATYPE_FLOAT32:
    case GRI_DATATYPE_FLOAT64:
    case GRI_DATATYPE_COMPLEX32:
    case GRI_DATATYPE_COMPLEX64:
      return true;
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_SINT8:
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_SINT16:
    case GRI_DATATYPE_UINT32:
    case GRI_DATATYPE_SINT32:
    case GRI_DATATYPE_UINT64:
    case GRI_DATATYPE_SINT64:
      return false;
    case GRI_DATATYPE_INVALID:
      break;
  }
  assert(false && "bad datatype");
  return false;
}

bool GRIUtils::needsSwapping(GRIDataType dataType, GRIEndian byteOrder) {
  assert(byteOrder != GRI_ENDIAN_INVALID);
  if (getNumBytes(dataType) == 1) return false;
  constexpr GRIEndian OTHER =
      std::endian::native == std::endian::little ? GRI_ENDIAN_BIG : GRI_ENDIAN_LITTLE;
  return byteOrder == OTHER;
}

GRIColorSpace GRIUtils::stripAlpha(GRIColorSpace colorSpace) {
  return static_cast<GRIColorSpace>(colorSpace & ~ALPHA_FLAGS);
}

bool GRIUtils::hasAlpha(GRIColorSpace colorSpace) { return (colorSpace & ALPHA_FLAGS) != 0; }

gr_uint16 GRIUtils::getNumBands(GRIColorSpace colorSpace) {
  const gr_int32 colors = (colorSpace >> 8) & 0xFF;
  if (colors == ANY_NUMBER_OF_BANDS) return 0;
  return static_cast<gr_uint16>(colors + (hasAlpha(colorSpace) ? 1 : 0));
}

void GRIUtils::getDimsAtMag(gr_uint32 width, gr_uint32 height, double mag, gr_uint32& w,
                            gr_uint32& h) {
  w = sizeAtMag(width, mag);
  h = sizeAtMag(height, mag);
}
