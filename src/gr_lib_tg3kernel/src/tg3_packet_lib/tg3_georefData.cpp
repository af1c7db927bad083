#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_georefData.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint8 HAS_GEO = 0x01;
constexpr gr_uint8 HAS_Z = 0x02;
constexpr gr_uint8 HAS_NO_DATA = 0x04;
constexpr gr_uint8 HAS_BACKGROUND = 0x08;
constexpr gr_uint8 RESERVED = 0xF0;

GR_STATUS readGeo(GRFieldReader& fields, TG3GeorefPosition& geo) {
  double* const numbers[] = {&geo.xUL, &geo.yUL, &geo.xLR, &geo.yLR, &geo.xRes, &geo.yRes};
  bool areFinite = true;
  for (double* const number : numbers) {
    GR_RETURN_IF_FAILED(fields.read(*number));
    areFinite = areFinite && std::isfinite(*number);
  }
  const bool isGood = areFinite && geo.xRes != 0.0 && geo.yRes != 0.0;
  return isGood ? GR_STATUS_OK : TG3_STATUS_FORMAT_ERROR;
}

bool isByte(TG3Datatype datatype) {
  return datatype == TG3_DATATYPE_UINT8 || datatype == TG3_DATATYPE_SINT8;
}

// A number of one or two bytes, the top bit of which may be a sign.
template <typename T>
GR_STATUS readValue(GRFieldReader& fields, bool isSigned, gr_int32& value) {
  static_assert(std::is_unsigned_v<T>);
  constexpr gr_int32 NUM_VALUES = gr_int32{std::numeric_limits<T>::max()} + 1;
  T stored = 0;
  GR_RETURN_IF_FAILED(fields.read(stored));
  value = isSigned && stored >= NUM_VALUES / 2 ? stored - NUM_VALUES : stored;
  return GR_STATUS_OK;
}

GR_STATUS readValue(GRFieldReader& fields, TG3Datatype datatype, gr_int32& value) {
  switch (datatype) {
    case TG3_DATATYPE_UINT8:
    case TG3_DATATYPE_SINT8:
      return readValue<gr_uint8>(fields, datatype == TG3_DATATYPE_SINT8, value);
    case TG3_DATATYPE_UINT16:
    case TG3_DATATYPE_SINT16:
      return readValue<gr_uint16>(fields, datatype == TG3_DATATYPE_SINT16, value);
    default:
      return TG3_STATUS_FORMAT_ERROR;
  }
}

GR_STATUS readPixel(GRFieldReader& fields, const TG3ImageInfo& info, TG3PixelRecord& pixel) {
  gr_uint16 numBands = 0;
  gr_uint8 datatype = 0;
  GR_RETURN_IF_FAILED(fields.read(numBands));
  GR_RETURN_IF_FAILED(fields.read(datatype));
  if (numBands != info.numComponents || datatype != info.datatype) return TG3_STATUS_FORMAT_ERROR;
  pixel.datatype = info.datatype;
  const gr_uint64 numBytes = gr_uint64{numBands} * (isByte(info.datatype) ? 1 : 2);
  if (numBytes > fields.left()) return TG3_STATUS_FORMAT_ERROR;
  if (!GR_SUCCESS(pixel.values.allocate(numBands))) return TG3_STATUS_NO_MEMORY;
  for (gr_int32& value : pixel.values) {
    GR_RETURN_IF_FAILED(readValue(fields, pixel.datatype, value));
  }
  return GR_STATUS_OK;
}

}  // namespace

GR_STATUS TG3GeorefData::read(GRIOStreamInf& stream, gr_uint64 length, const TG3ImageInfo& info) {
  GRFieldReader fields(stream, length);
  gr_uint8 bits = 0;
  GR_RETURN_IF_FAILED(fields.read(bits));
  if ((bits & RESERVED) != 0) return TG3_STATUS_FORMAT_ERROR;

  TG3GeorefData data;
  if ((bits & HAS_GEO) != 0) GR_RETURN_IF_FAILED(readGeo(fields, data.geo.emplace()));
  if ((bits & HAS_Z) != 0) GR_RETURN_IF_FAILED(fields.read(data.zNumber.emplace()));
  if ((bits & HAS_NO_DATA) != 0) {
    GR_RETURN_IF_FAILED(readPixel(fields, info, data.noData.emplace()));
  }
  if ((bits & HAS_BACKGROUND) != 0) {
    GR_RETURN_IF_FAILED(readPixel(fields, info, data.background.emplace()));
  }
  *this = std::move(data);
  return GR_STATUS_OK;
}
