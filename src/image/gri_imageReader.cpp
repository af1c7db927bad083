#include "image/gri_imageReader.h"

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
  constexpr gr_int64 UNIT = 1024;  // bytes
  const gr_int64 pixels = gr_int64{scene.getNumCols()} * scene.getNumRows();
  const gr_int64 bytesPerPixel = getPixelProps().getNumBytes();
  // 2^62 pixels at most; the product may pass 64 bits, the quotient of its factors doesn't.
  if (pixels > INT64_MAX / bytesPerPixel) return pixels / UNIT * bytesPerPixel;
  return pixels * bytesPerPixel / UNIT;
}

bool GRIImageReader::getClippedScene(const GRIScene& scene, GRIScene& out) const {
  GRINavigator navigator(*this, scene);
  const GR_STATUS status = navigator.setScene(scene, GRI_NAVIGATOR_CLIP);
  out = navigator;
  return GR_SUCCESS(status);
}
