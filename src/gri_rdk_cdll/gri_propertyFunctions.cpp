// The exported functions about an open image; what they do is documented in the public header.
#include "gr_lib_utils/include/gr_status.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_handles.h"
#include "image/gri_geoCoord.h"
#include "image/gri_imageStage.h"
#include "image/gri_pixel.h"
#include "metadata/gri_metadataDatabase.h"

// The numbers of the header are those of the stages.
static_assert(GRIC_DATATYPE_INVALID == GRI_DATATYPE_INVALID);
static_assert(GRIC_DATATYPE_UINT8 == GRI_DATATYPE_UINT8);
static_assert(GRIC_DATATYPE_SINT8 == GRI_DATATYPE_SINT8);
static_assert(GRIC_DATATYPE_UINT16 == GRI_DATATYPE_UINT16);
static_assert(GRIC_DATATYPE_SINT16 == GRI_DATATYPE_SINT16);
static_assert(GRIC_DATATYPE_UINT32 == GRI_DATATYPE_UINT32);
static_assert(GRIC_DATATYPE_SINT32 == GRI_DATATYPE_SINT32);
static_assert(GRIC_DATATYPE_FLOAT32 == GRI_DATATYPE_FLOAT32);
static_assert(GRIC_DATATYPE_FLOAT64 == GRI_DATATYPE_FLOAT64);
static_assert(GRIC_DATATYPE_UINT64 == GRI_DATATYPE_UINT64);
static_assert(GRIC_DATATYPE_SINT64 == GRI_DATATYPE_SINT64);

static_assert(GRIC_COLORSPACE_INVALID == GRI_COLORSPACE_INVALID);
static_assert(GRIC_COLORSPACE_GRAYSCALE == GRI_COLORSPACE_GRAYSCALE);
static_assert(GRIC_COLORSPACE_RGB == GRI_COLORSPACE_RGB);
static_assert(GRIC_COLORSPACE_CMY == GRI_COLORSPACE_CMY);
static_assert(GRIC_COLORSPACE_YCC == GRI_COLORSPACE_YCC);
static_assert(GRIC_COLORSPACE_CMYK == GRI_COLORSPACE_CMYK);
static_assert(GRIC_COLORSPACE_YCCK == GRI_COLORSPACE_YCCK);
static_assert(GRIC_COLORSPACE_MULTISPECTRAL == GRI_COLORSPACE_MULTISPECTRAL);
static_assert((GRIC_COLORSPACE_RGB | GRIC_COLORSPACE_ALPHA) == GRI_COLORSPACE_RGB_ALPHA);
static_assert((GRIC_COLORSPACE_RGB | GRIC_COLORSPACE_ALPHA | GRIC_COLORSPACE_ALPHA_SECOND_FLAG) ==
              GRI_COLORSPACE_RGB_ALPHA_2);

static_assert(GRIC_METADATA_DATATYPE_INVALID == GRI_METADATA_DATATYPE_INVALID);
static_assert(GRIC_METADATA_DATATYPE_UINT8 == GRI_METADATA_DATATYPE_UINT8);
static_assert(GRIC_METADATA_DATATYPE_SINT8 == GRI_METADATA_DATATYPE_SINT8);
static_assert(GRIC_METADATA_DATATYPE_UINT16 == GRI_METADATA_DATATYPE_UINT16);
static_assert(GRIC_METADATA_DATATYPE_SINT16 == GRI_METADATA_DATATYPE_SINT16);
static_assert(GRIC_METADATA_DATATYPE_UINT32 == GRI_METADATA_DATATYPE_UINT32);
static_assert(GRIC_METADATA_DATATYPE_SINT32 == GRI_METADATA_DATATYPE_SINT32);
static_assert(GRIC_METADATA_DATATYPE_UINT64 == GRI_METADATA_DATATYPE_UINT64);
static_assert(GRIC_METADATA_DATATYPE_SINT64 == GRI_METADATA_DATATYPE_SINT64);
static_assert(GRIC_METADATA_DATATYPE_FLOAT32 == GRI_METADATA_DATATYPE_FLOAT32);
static_assert(GRIC_METADATA_DATATYPE_FLOAT64 == GRI_METADATA_DATATYPE_FLOAT64);
static_assert(GRIC_METADATA_DATATYPE_ASCII == GRI_METADATA_DATATYPE_ASCII);

gr_uint32 gric_getWidth(gric_image image) {
  return image == nullptr ? 0 : gri_stageOf(image).getWidth();
}

gr_uint32 gric_getHeight(gric_image image) {
  return image == nullptr ? 0 : gri_stageOf(image).getHeight();
}

gr_uint16 gric_getNumBands(gric_image image) {
  return image == nullptr ? gr_uint16{0} : gri_stageOf(image).getPixelProps().getNumBands();
}

gr_int32 gric_getColorSpace(gric_image image) {
  if (image == nullptr) return 0;
  return static_cast<gr_int32>(gri_stageOf(image).getPixelProps().getColorSpace());
}

gr_int32 gric_getDataType(gric_image image) {
  if (image == nullptr) return 0;
  return static_cast<gr_int32>(gri_stageOf(image).getPixelProps().getDataType());
}

double gric_getMinMagnification(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getMinMagnification();
}

double gric_getMaxMagnification(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getMaxMagnification();
}

double gric_getGeoXOrigin(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getGeoCoord().getXOrigin();
}

double gric_getGeoYOrigin(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getGeoCoord().getYOrigin();
}

double gric_getGeoXResolution(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getGeoCoord().getXResolution();
}

double gric_getGeoYResolution(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getGeoCoord().getYResolution();
}

double gric_getGeoXRotation(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getGeoCoord().getXRot();
}

double gric_getGeoYRotation(gric_image image) {
  return image == nullptr ? 0.0 : gri_stageOf(image).getGeoCoord().getYRot();
}

gr_uint32 gric_getNumMetadataRecords(gric_image image) {
  return image == nullptr ? 0 : gri_stageOf(image).getMetadata().getIndexCount();
}

GR_STATUS gric_getDimsAtMag(gric_image image, double magnification, gr_uint32* width,
                            gr_uint32* height) {
  if (image == nullptr || width == nullptr || height == nullptr) return GR_STATUS_NULL_ARGUMENT;
  gr_uint32 columns = 0;
  gr_uint32 rows = 0;
  GR_RETURN_IF_FAILED(gri_stageOf(image).getDimsAtMag(magnification, columns, rows));
  *width = columns;
  *height = rows;
  return GR_STATUS_OK;
}

GR_STATUS gric_getMetadataRecord(gric_image image, gr_uint32 index, const char** tag,
                                 gr_int32* dataType, gr_uint32* numDims, const gr_uint32** dims,
                                 const void** data) {
  const bool hasNull = image == nullptr || tag == nullptr || dataType == nullptr ||
                       numDims == nullptr || dims == nullptr || data == nullptr;
  if (hasNull) return GR_STATUS_NULL_ARGUMENT;
  const GRIMetadataRecord* record = nullptr;
  GR_RETURN_IF_FAILED(gri_stageOf(image).getMetadata().getDataByIndex(index, record));
  if (record == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *tag = record->getTagName();
  *dataType = static_cast<gr_int32>(record->getDataType());
  *data = record->getArrayData(*numDims, *dims);
  return GR_STATUS_OK;
}
