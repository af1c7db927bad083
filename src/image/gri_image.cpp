#include "image/gri_image.h"

#include <cassert>
#include <limits>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "image/gri_geoCoord.h"
#include "image/gri_pixel.h"

namespace {

bool isFullRange(const GRISample& lowest, const GRISample& highest) {
  switch (lowest.getDataType()) {
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_SINT8:
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_SINT16:
    case GRI_DATATYPE_FLOAT32:
      break;
    default:
      return false;
  }
  GRISample smallest = lowest;
  GRISample largest = highest;
  smallest.setToMin();
  largest.setToMax();
  return lowest.getValueAsDouble() <= smallest.getValueAsDouble() &&
         highest.getValueAsDouble() >= largest.getValueAsDouble();
}

}  // namespace

gr_uint16 GRIImage::getNumBands() const { return getPixelProps().getNumBands(); }

GRIColorSpace GRIImage::getColorSpace() const { return getPixelProps().getColorSpace(); }

GRIDataType GRIImage::getDataType() const { return getPixelProps().getDataType(); }

gr_uint64 GRIImage::getNumBytes() const {
  const gr_uint64 pixels = gr_uint64{getWidth()} * getHeight();
  return gr_saturatingMultiply(pixels, getPixelProps().getNumBytes());
}

bool GRIImage::isFullDynamicRange() const {
  const GRIPixel& lowest = getMinDynamicRange();
  const GRIPixel& highest = getMaxDynamicRange();
  const gr_uint16 numBands = getNumBands();
  assert(lowest.getNumBands() == numBands && highest.getNumBands() == numBands);
  for (gr_uint16 band = 0; band < numBands; ++band) {
    if (!isFullRange(lowest.getSample(band), highest.getSample(band))) return false;
  }
  return true;
}

void GRIImage::getGeoPosition(GRIPosition position, double& x, double& y) const {
  const GRIGeoCoord& geo = getGeoCoord();
  const double dx = (static_cast<double>(getWidth()) - 1) * geo.getXResolution();
  const double dy = (static_cast<double>(getHeight()) - 1) * geo.getYResolution();
  double right = 0.0;  // how far to the right and down, as a part of dx and dy
  double down = 0.0;
  switch (position) {
    case GRI_POSITION_UPPER_LEFT:
      break;
    case GRI_POSITION_UPPER_CENTER:
      right = 0.5;
      break;
    case GRI_POSITION_UPPER_RIGHT:
      right = 1.0;
      break;
    case GRI_POSITION_LOWER_LEFT:
      down = 1.0;
      break;
    case GRI_POSITION_LOWER_CENTER:
      right = 0.5;
      down = 1.0;
      break;
    case GRI_POSITION_LOWER_RIGHT:
      right = 1.0;
      down = 1.0;
      break;
    case GRI_POSITION_CENTER_LEFT:
      down = 0.5;
      break;
    case GRI_POSITION_CENTER:
      right = 0.5;
      down = 0.5;
      break;
    case GRI_POSITION_CENTER_RIGHT:
      right = 1.0;
      down = 0.5;
      break;
    default:
      assert(false && "bad position");
      x = 0.0;
      y = 0.0;
      return;
  }
  // Not by 0 times: what has no distance from the origin is the origin, for any resolution.
  x = right > 0.0 ? geo.getXOrigin() + right * dx : geo.getXOrigin();
  y = down > 0.0 ? geo.getYOrigin() + down * dy : geo.getYOrigin();
}

std::unique_ptr<GRIPixel> GRIImage::createBackgroundPixel() const {
  if (const GRIPixel* background = getBackgroundPixel()) return background->clone();
  std::unique_ptr<GRIPixel> pixel = getPixelProps().clone();
  if (pixel == nullptr) return nullptr;
  // Black is no light in most colour spaces, and all ink in those of printing.
  const GRIColorSpace colors = GRIUtils::stripAlpha(pixel->getColorSpace());
  if (colors == GRI_COLORSPACE_CMYK || colors == GRI_COLORSPACE_CMY) {
    pixel->setToMax();
  } else {
    pixel->setToMin();
  }
  if (GRIUtils::hasAlpha(pixel->getColorSpace())) {
    assert(pixel->getNumBands() > 1);
    pixel->getSample(static_cast<gr_uint16>(pixel->getNumBands() - 1)).setToMax();
  }
  return pixel;
}
