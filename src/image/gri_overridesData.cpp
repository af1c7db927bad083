#include "image/gri_overridesData.h"

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_image.h"

GR_STATUS GRIOverridePixelPropsData::setPixelProps(const GRIPixel& pixel) {
  std::unique_ptr<GRIPixel> props = pixel.clone();
  std::unique_ptr<GRIPixel> lowest = pixel.clone();
  std::unique_ptr<GRIPixel> highest = pixel.clone();
  if (props == nullptr || lowest == nullptr || highest == nullptr) return GR_STATUS_NO_MEMORY;
  lowest->setToMin();
  highest->setToMax();
  pixelProps = std::move(props);
  min = std::move(lowest);
  max = std::move(highest);
  return GR_STATUS_OK;
}

GR_STATUS GRIOverridePixelPropsData::setDynamicRange(const GRIPixel& lowest,
                                                     const GRIPixel& highest) {
  std::unique_ptr<GRIPixel> newMin = lowest.clone();
  std::unique_ptr<GRIPixel> newMax = highest.clone();
  if (newMin == nullptr || newMax == nullptr) return GR_STATUS_NO_MEMORY;
  min = std::move(newMin);
  max = std::move(newMax);
  return GR_STATUS_OK;
}

GR_STATUS GRIOverridePixelPropsData::setPrecision(gr_uint8 bits) {
  if (bits != 0) pixelProps->setPrecision(bits);
  return GR_STATUS_OK;
}

GR_STATUS GRIOverrideBackgroundPixelData::replace(std::unique_ptr<GRIPixel>& mine,
                                                  const GRIPixel* pixel) {
  std::unique_ptr<GRIPixel> copy;
  if (pixel != nullptr) {
    copy = pixel->clone();
    if (copy == nullptr) return GR_STATUS_NO_MEMORY;
  }
  mine = std::move(copy);
  return GR_STATUS_OK;
}

GR_STATUS GRIOverrideGeoCoordData::set(const GRIGeoCoord& newCoord) {
  try {
    geoCoord = newCoord;
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  isImplicit = false;
  return GR_STATUS_OK;
}

GR_STATUS GRIOverrideGeoCoordData::setDefault(const GRIImage& image) {
  const double bottom = static_cast<double>(image.getHeight()) - 1;
  GR_RETURN_IF_FAILED(set(GRIGeoCoord(0.0, bottom, 1.0, -1.0, 0.0, 0.0)));
  isImplicit = true;
  return GR_STATUS_OK;
}

GR_STATUS GRIOverridePixelLookupTablesData::set(const GRIPixelLookupTable* newTable) {
  std::unique_ptr<GRIPixelLookupTable> copy;
  if (newTable != nullptr) {
    try {
      copy = gr_makeUnique<GRIPixelLookupTable>(*newTable);
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
    if (copy == nullptr) return GR_STATUS_NO_MEMORY;
  }
  table = std::move(copy);
  return GR_STATUS_OK;
}
