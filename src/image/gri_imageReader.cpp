#include "image/gri_imageReader.h"

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_navigator.h"

GR_STATUS GRIImageReader::getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const {
  if (!(mag >= getMinMagnification() && mag <= getMaxMagnification())) {
    return GR_STATUS_OUT_OF_RANGE;
  }
  GRIUtils::getDimsAtMag(getWidth(), getHeight(), mag, width, height);
  return GR_STATUS_OK;
}

gr_int64 GRIImageReader::getSceneCost(const GRIScene& scene) const {
  constexpr gr_uint64 UNIT = 1024;  // bytes
  const gr_uint64 pixels =
      static_cast<gr_uint64>(scene.getNumCols()) * static_cast<gr_uint64>(scene.getNumRows());
  return static_cast<gr_int64>(gr_saturatingMultiply(pixels, getPixelProps().getNumBytes()) / UNIT);
}

bool GRIImageReader::getClippedScene(const GRIScene& scene, GRIScene& out) const {
  GRINavigator navigator(*this, scene);
  const GR_STATUS status = navigator.setScene(scene, GRI_NAVIGATOR_CLIP);
  out = static_cast<const GRIScene&>(navigator);
  return GR_SUCCESS(status);
}
