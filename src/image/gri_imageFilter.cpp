#include "image/gri_imageFilter.h"

#include <cassert>

void GRIImageFilter::initialize(GRIImageStage* previousStage) {
  m_previousStage = GRUtilSmartPointer<GRIImageStage>(previousStage);
}

GRIImageStage* GRIImageFilter::getPreviousStage() const { return m_previousStage.get(); }

GRIImageStage& GRIImageFilter::previous() const {
  assert(m_previousStage);
  return *m_previousStage;
}

gr_uint32 GRIImageFilter::getWidth() const { return previous().getWidth(); }

gr_uint32 GRIImageFilter::getHeight() const { return previous().getHeight(); }

GR_STATUS GRIImageFilter::getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const {
  return previous().getDimsAtMag(mag, width, height);
}

const GRIPixel& GRIImageFilter::getPixelProps() const { return previous().getPixelProps(); }

const GRIPixel* GRIImageFilter::getBackgroundPixel() const {
  return previous().getBackgroundPixel();
}

const GRIPixel* GRIImageFilter::getNoDataPixel() const { return previous().getNoDataPixel(); }

const GRIPixelLookupTable* GRIImageFilter::getPixelLookupTable() const {
  return previous().getPixelLookupTable();
}

const GRIPixel& GRIImageFilter::getMinDynamicRange() const {
  return previous().getMinDynamicRange();
}

const GRIPixel& GRIImageFilter::getMaxDynamicRange() const {
  return previous().getMaxDynamicRange();
}

const GRIGeoCoord& GRIImageFilter::getGeoCoord() const { return previous().getGeoCoord(); }

bool GRIImageFilter::isGeoCoordImplicit() const { return previous().isGeoCoordImplicit(); }

const GRIMetadataDatabase& GRIImageFilter::getMetadata() const { return previous().getMetadata(); }

double GRIImageFilter::getMinMagnification() const { return previous().getMinMagnification(); }

double GRIImageFilter::getMaxMagnification() const { return previous().getMaxMagnification(); }

gr_int64 GRIImageFilter::getSourceFileSize() const { return previous().getSourceFileSize(); }

bool GRIImageFilter::isSelective() const { return previous().isSelective(); }

gr_uint32 GRIImageFilter::getSourceInfo() const { return previous().getSourceInfo(); }

void GRIImageFilter::setProgressDelegate(GRIProgressDelegate* delegate) {
  previous().setProgressDelegate(delegate);
}

GRIProgressDelegate* GRIImageFilter::getProgressDelegate() const {
  return previous().getProgressDelegate();
}

void GRIImageFilter::setInterruptDelegate(GRIInterruptDelegate* delegate) {
  previous().setInterruptDelegate(delegate);
}

GRIInterruptDelegate* GRIImageFilter::getInterruptDelegate() const {
  return previous().getInterruptDelegate();
}

gr_uint32 GRIImageFilter::getStripHeight() const { return previous().getStripHeight(); }

GR_STATUS GRIImageFilter::setStripHeight(gr_uint32 stripHeight) {
  return previous().setStripHeight(stripHeight);
}

gr_int64 GRIImageFilter::getSceneCost(const GRIScene& scene) const {
  return previous().getSceneCost(scene);
}

bool GRIImageFilter::getClippedScene(const GRIScene& scene, GRIScene& out) const {
  return previous().getClippedScene(scene, out);
}

GR_STATUS GRIImageFilter::setBackgroundPixel(const GRIPixel* pixel) {
  return previous().setBackgroundPixel(pixel);
}

GR_STATUS GRIImageFilter::setNoDataPixel(const GRIPixel* pixel) {
  return previous().setNoDataPixel(pixel);
}

GR_STATUS GRIImageFilter::setGeoCoord(const GRIGeoCoord& geoCoord) {
  return previous().setGeoCoord(geoCoord);
}

GR_STATUS GRIImageFilter::setDynamicRange(const GRIPixel& min, const GRIPixel& max) {
  return previous().setDynamicRange(min, max);
}

GR_STATUS GRIImageFilter::setPrecision(gr_uint8 bits) { return previous().setPrecision(bits); }

GR_STATUS GRIImageFilter::setPixelLookupTable(const GRIPixelLookupTable* table) {
  return previous().setPixelLookupTable(table);
}

GR_STATUS GRIImageFilter::setMetadata(const GRIMetadataDatabase* metadata) {
  return previous().setMetadata(metadata);
}

GR_STATUS GRIImageFilter::decodeBegin(const GRIScene& scene) { return previous().readBegin(scene); }

GR_STATUS GRIImageFilter::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  return previous().readStrip(buffer, stripScene);
}

GR_STATUS GRIImageFilter::decodeEnd() { return previous().readEnd(); }
