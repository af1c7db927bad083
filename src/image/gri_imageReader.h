/// @file
/// GRIImageReader, a stage that is a source.
#pragma once

#include "image/gri_imageStage.h"
#include "image/gri_overrides.h"

/// Holds every property itself. What is left to a concrete reader: getSourceFileSize, decodeBegin,
/// decodeStrip, decodeEnd, and to set the properties before the first decode.
class GRIImageReader
    : public GRIOverrideDimensions<GRIOverridePixelProps<
          GRIOverrideBackgroundPixel<GRIOverrideGeoCoord<GRIOverrideMagnification<
              GRIOverrideIsSelective<GRIOverrideStripHeight<GRIOverrideDelegates<
                  GRIOverridePixelLookupTables<GRIOverrideMetadata<GRIImageStage>>>>>>>>>> {
 public:
  GR_STATUS getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const override;
  gr_int64 getSceneCost(const GRIScene& scene) const override;
  bool getClippedScene(const GRIScene& scene, GRIScene& out) const override;
  gr_uint32 getSourceInfo() const override { return 0; }
};
