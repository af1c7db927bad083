#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pixelProps.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

GRIColorSpace tg3_toColorSpace(gr_int32 code) {
  switch (code) {
    case 1:
      return GRI_COLORSPACE_GRAYSCALE;
    case 5:
      return GRI_COLORSPACE_MULTISPECTRAL;
    case 10:
      return GRI_COLORSPACE_RGB;
    case 11:
      return GRI_COLORSPACE_CMYK;
    default:
      return GRI_COLORSPACE_INVALID;
  }
}

GRIDataType tg3_toDataType(TG3Datatype datatype) {
  switch (datatype) {
    case TG3_DATATYPE_UINT8:
      return GRI_DATATYPE_UINT8;
    case TG3_DATATYPE_SINT8:
      return GRI_DATATYPE_SINT8;
    case TG3_DATATYPE_UINT16:
      return GRI_DATATYPE_UINT16;
    case TG3_DATATYPE_SINT16:
      return GRI_DATATYPE_SINT16;
    case TG3_DATATYPE_UINT32:
      return GRI_DATATYPE_UINT32;
    case TG3_DATATYPE_SINT32:
      return GRI_DATATYPE_SINT32;
    case TG3_DATATYPE_UINT64:
      return GRI_DATATYPE_UINT64;
    case TG3_DATATYPE_SINT64:
      return GRI_DATATYPE_SINT64;
    default:  // the floating-point types have numbers, but no image has them
      return GRI_DATATYPE_INVALID;
  }
}

GR_STATUS tg3_makePixel(const TG3ImageInfo& info, GR_STATUS badColor, GR_STATUS badDatatype,
                        std::unique_ptr<GRIPixel>& pixel) {
  const GRIColorSpace colorSpace = tg3_toColorSpace(info.imageColorSpace);
  if (colorSpace == GRI_COLORSPACE_INVALID) return badColor;
  const GRIDataType dataType = tg3_toDataType(info.datatype);
  if (dataType == GRI_DATATYPE_INVALID) return badDatatype;
  if (!GRIPixel::fits(colorSpace, info.numComponents, dataType)) return badColor;
  try {
    std::unique_ptr<GRIPixel> made =
        gr_makeUnique<GRIPixel>(colorSpace, info.numComponents, dataType);
    if (made == nullptr) return GR_STATUS_NO_MEMORY;
    pixel = std::move(made);
    return GR_STATUS_OK;
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS tg3_makePixel(const GRIPixel& props, const TG3PixelRecord& record,
                        std::unique_ptr<GRIPixel>& pixel) {
  try {
    std::unique_ptr<GRIPixel> made = gr_makeUnique<GRIPixel>(props);
    if (made == nullptr) return GR_STATUS_NO_MEMORY;
    const size_t bands = std::min<size_t>(props.getNumBands(), record.values.size());
    for (size_t band = 0; band < bands; ++band) {
      made->getSample(static_cast<gr_uint16>(band)).setValueFromDouble(record.values[band]);
    }
    pixel = std::move(made);
    return GR_STATUS_OK;
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}
