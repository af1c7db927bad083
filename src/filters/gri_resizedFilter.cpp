#include "filters/gri_resizedFilter.h"

#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_navigator.h"

GR_STATUS GRIResizedFilter::getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const {
  if (!(mag >= getMinMagnification() && mag <= getMaxMagnification())) {
    return GR_STATUS_OUT_OF_RANGE;
  }
  GRIUtils::getDimsAtMag(getWidth(), getHeight(), mag, width, height);
  return GR_STATUS_OK;
}

bool GRIResizedFilter::getClippedScene(const GRIScene& scene, GRIScene& out) const {
  GRINavigator navigator(*this, scene);
  const GR_STATUS status = navigator.setScene(scene, GRI_NAVIGATOR_CLIP);
  out = static_cast<const GRIScene&>(navigator);
  return GR_SUCCESS(status);
}
