/// @file
/// GRIResizedFilter, the base of filters that show their previous stage in another size.
#pragma once

#include "image/gri_imageFilter.h"
#include "image/gri_overrides.h"

/// Holds size, position and range of magnifications itself, and answers from them what a scene of
/// its own is. All else goes to the previous stage.
class GRIResizedFilter
    : public GRIOverrideDimensions<GRIOverrideGeoCoord<GRIOverrideMagnification<GRIImageFilter>>> {
 public:
  GR_STATUS getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const override;
  bool getClippedScene(const GRIScene& scene, GRIScene& out) const override;
};
