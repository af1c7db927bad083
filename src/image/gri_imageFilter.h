/// @file
/// GRIImageFilter, a stage that passes everything on to a previous stage.
#pragma once

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_imageStage.h"

/// Forwards every operation; the decode trio goes to the read trio of the previous stage, and that
/// is how a strip goes down a chain. A concrete filter overrides what it changes. A property asked
/// before initialize() is the caller's error.
class GRIImageFilter : public GRIImageStage {
 public:
  GRIImageFilter() = default;

  /// Takes over one reference of the previous stage.
  void initialize(GRIImageStage* previousStage);
  GRIImageStage* getPreviousStage() const;

  gr_uint32 getWidth() const override;
  gr_uint32 getHeight() const override;
  GR_STATUS getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const override;
  const GRIPixel& getPixelProps() const override;
  const GRIPixel* getBackgroundPixel() const override;
  const GRIPixel* getNoDataPixel() const override;
  const GRIPixelLookupTable* getPixelLookupTable() const override;
  const GRIPixel& getMinDynamicRange() const override;
  const GRIPixel& getMaxDynamicRange() const override;
  const GRIGeoCoord& getGeoCoord() const override;
  bool isGeoCoordImplicit() const override;
  const GRIMetadataDatabase& getMetadata() const override;
  double getMinMagnification() const override;
  double getMaxMagnification() const override;
  gr_int64 getSourceFileSize() const override;

  bool isSelective() const override;
  gr_uint32 getSourceInfo() const override;
  void setProgressDelegate(GRIProgressDelegate* delegate) override;
  GRIProgressDelegate* getProgressDelegate() const override;
  void setInterruptDelegate(GRIInterruptDelegate* delegate) override;
  GRIInterruptDelegate* getInterruptDelegate() const override;
  gr_uint32 getStripHeight() const override;
  GR_STATUS setStripHeight(gr_uint32 stripHeight) override;
  gr_int64 getSceneCost(const GRIScene& scene) const override;
  bool getClippedScene(const GRIScene& scene, GRIScene& out) const override;
  GR_STATUS setBackgroundPixel(const GRIPixel* pixel) override;
  GR_STATUS setNoDataPixel(const GRIPixel* pixel) override;
  GR_STATUS setGeoCoord(const GRIGeoCoord& geoCoord) override;
  GR_STATUS setDynamicRange(const GRIPixel& min, const GRIPixel& max) override;
  GR_STATUS setPrecision(gr_uint8 bits) override;
  GR_STATUS setPixelLookupTable(const GRIPixelLookupTable* table) override;
  GR_STATUS setMetadata(const GRIMetadataDatabase* metadata) override;
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

 private:
  GRIImageStage& previous() const;

  GRUtilSmartPointer<GRIImageStage> m_previousStage;
};
