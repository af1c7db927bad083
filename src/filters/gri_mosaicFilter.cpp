#include "filters/gri_mosaicFilter.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "filters/gri_mosaicMetadata.h"
#include "filters/gri_multiResFilter.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

constexpr gr_uint64 COST_UNIT = 1024;  // bytes

/// Widens a range of samples by another one.
void widen(GRIPixel& min, GRIPixel& max, const GRIImageStage& stage) {
  for (gr_uint16 band = 0; band < min.getNumBands(); ++band) {
    min.getSample(band).setToLesser(stage.getMinDynamicRange().getSample(band));
    max.getSample(band).setToGreater(stage.getMaxDynamicRange().getSample(band));
  }
}

/// Whether the stage's range has one sample of the pixel's type for each band.
bool hasRangeLike(const GRIImageStage& stage, const GRIPixel& pixel) {
  return GR_SUCCESS(pixel.checkImpedance(stage.getMinDynamicRange())) &&
         GR_SUCCESS(pixel.checkImpedance(stage.getMaxDynamicRange()));
}

}  // namespace

/// Collects the tiles that have an area in common with a box.
class GRIMosaicFilter::ListImageStagesInSceneCallback final : public GRIRTree::SearchBBoxCallback {
 public:
  explicit ListImageStagesInSceneCallback(GRArray<gr_uint32>& hits) : m_hits(hits) {}

  GR_STATUS onBox(gr_uint32 value, const GRIBox& box, const GRIBox& cut) override {
    static_cast<void>(box);
    if (cut.getWidth() != 0.0 && cut.getHeight() != 0.0) m_hits[m_numHits++] = value;
    return GR_STATUS_OK;
  }
  gr_uint32 getNumHits() const { return m_numHits; }

 private:
  GRArray<gr_uint32>& m_hits;  // with room for all tiles
  gr_uint32 m_numHits = 0;
};

GR_STATUS GRIMosaicFilter::initialize(GRIImageStageManager& manager,
                                      const GRIPixel* backgroundPixel, bool isApproximate,
                                      bool useMultires) {
  const gr_uint32 numTiles = manager.getNumImages();
  if (numTiles == 0) return GRI_STATUS_FILTER_ARGUMENT;
  manager.retain();
  m_imageStageManager = GRUtilSmartPointer<GRIImageStageManager>(&manager);
  GR_RETURN_IF_FAILED(m_layout.initialize(numTiles, {isApproximate, useMultires}));
  GR_RETURN_IF_FAILED(m_slots.allocate(numTiles));
  GR_RETURN_IF_FAILED(m_openTiles.allocate(numTiles));
  GR_RETURN_IF_FAILED(m_hits.allocate(numTiles));
  try {
    GRIMosaicMetadata metadata;
    gr_uint64 sourceFileSize = 0;
    std::unique_ptr<GRIPixel> min;
    std::unique_ptr<GRIPixel> max;
    setSelective(true);
    for (gr_uint32 tile = 0; tile < numTiles; ++tile) {
      GRIImageStage* created = nullptr;
      GR_RETURN_IF_FAILED(manager.createImageStage(tile, created));
      if (created == nullptr) return GRI_STATUS_FILTER_ARGUMENT;
      // Given back before the next one comes, so that no more than one is open.
      const GRUtilSmartPointer<GRIImageStage> stage(created);
      if (tile == 0) {
        GR_RETURN_IF_FAILED(takeOver(*stage, backgroundPixel));
        min = getPixelProps().clone();
        max = getPixelProps().clone();
        if (min == nullptr || max == nullptr) return GR_STATUS_NO_MEMORY;
        if (!hasRangeLike(*stage, getPixelProps())) return GRI_STATUS_MOSAIC_PIXELS;
        *min = stage->getMinDynamicRange();
        *max = stage->getMaxDynamicRange();
      } else if (!GR_SUCCESS(getPixelProps().checkImpedance(stage->getPixelProps())) ||
                 !hasRangeLike(*stage, getPixelProps())) {
        return GRI_STATUS_MOSAIC_PIXELS;
      } else {
        widen(*min, *max, *stage);
      }
      GR_RETURN_IF_FAILED(m_layout.add(*stage));
      setSelective(isSelective() && stage->isSelective());
      GR_RETURN_IF_FAILED(metadata.add(stage->getMetadata()));
      sourceFileSize = gr_saturatingAdd(sourceFileSize, static_cast<gr_uint64>(std::max<gr_int64>(
                                                            stage->getSourceFileSize(), 0)));
    }
    GR_RETURN_IF_FAILED(m_layout.finish());
    m_sourceFileSize = static_cast<gr_int64>(
        std::min<gr_uint64>(sourceFileSize, std::numeric_limits<gr_int64>::max()));
    setDimensions(m_layout.getWidth(), m_layout.getHeight());
    setMagnificationRange(m_layout.getMinMagnification(), m_layout.getMaxMagnification());
    GRIGeoCoord geoCoord(m_layout.getGeoCoord());
    geoCoord.setWKT(getGeoCoord().getWKT());
    GR_RETURN_IF_FAILED(setGeoCoord(geoCoord));
    GR_RETURN_IF_FAILED(setDynamicRange(*min, *max));
    GRIMetadataDatabase* const records = editMetadata();
    return records == nullptr ? GR_STATUS_NO_MEMORY : metadata.writeTo(*records, numTiles);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

/// What the first image says for all of them.
GR_STATUS GRIMosaicFilter::takeOver(const GRIImageStage& first, const GRIPixel* backgroundPixel) {
  GR_RETURN_IF_FAILED(setPixelProps(first.getPixelProps()));
  GR_RETURN_IF_FAILED(setMetadata(&first.getMetadata()));
  GR_RETURN_IF_FAILED(setPixelLookupTable(first.getPixelLookupTable()));
  GR_RETURN_IF_FAILED(setGeoCoord(first.getGeoCoord()));  // of which the WKT stays
  GR_RETURN_IF_FAILED(setNoDataPixel(first.getNoDataPixel()));
  if (backgroundPixel == nullptr) backgroundPixel = first.getBackgroundPixel();
  if (backgroundPixel != nullptr) return setBackgroundPixel(backgroundPixel);
  GRIPixel zero(first.getPixelProps());
  for (gr_uint16 band = 0; band < zero.getNumBands(); ++band) {
    const gr_uint64 none = 0;
    zero.setSampleValueBytes(band, &none);
  }
  return setBackgroundPixel(&zero);
}

GR_STATUS GRIMosaicFilter::getImageStage(gr_uint32 tile, GRIEmbeddedImage*& stage) {
  stage = nullptr;
  if (tile >= getNumTiles()) return GR_STATUS_OUT_OF_RANGE;
  Slot& slot = m_slots[tile];
  if (!slot.stage) {
    GR_RETURN_IF_FAILED(createStage(tile, slot.stage));
    slot.stripsLeft = IDLE;
    m_openTiles[m_numOpenTiles++] = tile;
  }
  stage = slot.stage.get();
  return GR_STATUS_OK;
}

GR_STATUS GRIMosaicFilter::createStage(gr_uint32 tile,
                                       GRUtilSmartPointer<GRIEmbeddedImage>& stage) {
  GRIImageStage* created = nullptr;
  GR_RETURN_IF_FAILED(m_imageStageManager->createImageStage(tile, created));
  if (created == nullptr) return GRI_STATUS_FILTER_ARGUMENT;
  GRUtilSmartPointer<GRIImageStage> image(created);
  // It was this when the mosaic was laid out; the file may have changed since.
  const GRIMosaicTile& known = m_layout.getTile(tile);
  if (image->getWidth() != known.width || image->getHeight() != known.height ||
      !GR_SUCCESS(getPixelProps().checkImpedance(image->getPixelProps()))) {
    return GRI_STATUS_MOSAIC_PIXELS;
  }
  const double minMag = getMinMagnification();
  const double maxMag = getMaxMagnification();
  if (m_layout.isScaled(tile)) {
    GRUtilSmartPointer<GRIMultiResFilter> scaled(gr_makeUnique<GRIMultiResFilter>().release());
    if (!scaled) return GR_STATUS_NO_MEMORY;
    GR_RETURN_IF_FAILED(scaled->initialize(image.detach(), m_layout.getXScale(tile),
                                           m_layout.getYScale(tile), minMag, maxMag, 1.0));
    image = GRUtilSmartPointer<GRIImageStage>(scaled.detach());
  }
  if (m_tileCreatedDelegate != nullptr) {
    GR_RETURN_IF_FAILED(m_tileCreatedDelegate->onTileCreated(tile, *image));
  }
  GRUtilSmartPointer<GRIEmbeddedImage> embedded(gr_makeUnique<GRIEmbeddedImage>().release());
  if (!embedded) return GR_STATUS_NO_MEMORY;
  // Nothing is filled: what lies around a tile is there before it is drawn.
  GR_RETURN_IF_FAILED(embedded->initialize(image.detach(), getWidth(), getHeight(),
                                           m_layout.getXOffset(tile), m_layout.getYOffset(tile),
                                           minMag, maxMag, nullptr, getNoDataPixel()));
  stage = std::move(embedded);
  return GR_STATUS_OK;
}

/// The tiles that a scene may show, in their order.
GR_STATUS GRIMosaicFilter::findTiles(const GRIScene& scene, GRArray<gr_uint32>& hits,
                                     gr_uint32& numHits) const {
  // A tile's pixels may lie up to a pixel of the scene away from its place on the ground, and up to
  // one of the mosaic, to which its size was rounded up.
  const double mag = scene.getMag();
  const double margin = 1.0 + std::max(mag, 1.0);
  // Where the tiles lie, which isn't what a host has made of the mosaic's position since.
  const GRIGeoCoord& geoCoord = m_layout.getGeoCoord();
  double x0 = 0.0;
  double y0 = 0.0;
  double x1 = 0.0;
  double y1 = 0.0;
  geoCoord.pixelToGeo(scene.getUpperLeftCol() - margin, scene.getUpperLeftRow() - margin, mag, x0,
                      y0);
  geoCoord.pixelToGeo(scene.getLowerRightCol() + margin, scene.getLowerRightRow() + margin, mag, x1,
                      y1);
  ListImageStagesInSceneCallback callback(hits);
  GR_RETURN_IF_FAILED(m_layout.getTree().search(GRIBox::ofCorners(x0, y0, x1, y1), callback));
  numHits = callback.getNumHits();
  std::sort(hits.begin(), hits.begin() + numHits);
  return GR_STATUS_OK;
}

GR_STATUS GRIMosaicFilter::placeTile(gr_uint32 tile, const GRIScene& scene,
                                     GRIPlacement& placement) const {
  const double mag = scene.getMag();
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  m_layout.getDimsAtMag(tile, mag, width, height);
  return placement.initialize(scene, m_layout.getXOffset(tile) * mag,
                              m_layout.getYOffset(tile) * mag, width, height);
}

gr_int64 GRIMosaicFilter::getSceneCost(const GRIScene& scene) const {
  const gr_uint64 bytes = getPixelProps().getNumBytes();
  const auto costOf = [&](gr_int32 numCols, gr_int32 numRows) {
    return gr_saturatingMultiply(static_cast<gr_uint64>(numCols) * static_cast<gr_uint64>(numRows),
                                 bytes) /
           COST_UNIT;
  };
  const gr_uint64 most = costOf(scene.getNumCols(), scene.getNumRows());
  gr_uint64 cost = 0;
  GRArray<gr_uint32> hits;
  gr_uint32 numHits = 0;
  if (!GR_SUCCESS(hits.allocate(getNumTiles())) || !GR_SUCCESS(findTiles(scene, hits, numHits))) {
    return static_cast<gr_int64>(most);
  }
  for (gr_uint32 i = 0; i < numHits; ++i) {
    GRIPlacement placement;
    if (!GR_SUCCESS(placeTile(hits[i], scene, placement))) continue;
    cost = gr_saturatingAdd(cost, costOf(placement.numCols, placement.numRows));
  }
  return static_cast<gr_int64>(std::min(cost, most));
}

GR_STATUS GRIMosaicFilter::decodeBegin(const GRIScene& scene) {
  GR_RETURN_IF_FAILED(decodeEnd());  // of a scene that was left
  m_scene = scene;
  m_rowsPerStrip = static_cast<gr_int32>(getStripHeight());
  return m_rowsPerStrip > 0 ? GR_STATUS_OK : GRI_STATUS_INVALID_ARGUMENT;
}

GR_STATUS GRIMosaicFilter::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  assert(m_scene.getMag() == stripScene.getMag());
  assert(m_scene.getUpperLeftCol() == stripScene.getUpperLeftCol());
  assert(m_scene.getNumCols() == stripScene.getNumCols());
  gr_uint32 numHits = 0;
  GR_RETURN_IF_FAILED(findTiles(stripScene, m_hits, numHits));
  GR_RETURN_IF_FAILED(fillBackground(stripScene, buffer));
  for (gr_uint32 i = 0; i < numHits; ++i) {
    GR_RETURN_IF_FAILED(decodeTile(m_hits[i], buffer, stripScene));
  }
  return finishStrip();
}

GR_STATUS GRIMosaicFilter::decodeTile(gr_uint32 tile, GRISceneBuffer& buffer,
                                      const GRIScene& stripScene) {
  const gr_int32 stripTop = stripScene.getUpperLeftIntRow() - m_scene.getUpperLeftIntRow();
  GRIPlacement placement;
  GR_RETURN_IF_FAILED(placeTile(tile, m_scene, placement));
  // Not in the scene, or in another strip of it: it isn't opened for that.
  if (placement.isEmpty() || placement.top >= stripTop + stripScene.getNumRows() ||
      placement.top + placement.numRows <= stripTop) {
    return GR_STATUS_OK;
  }
  GRIEmbeddedImage* stage = nullptr;
  GR_RETURN_IF_FAILED(getImageStage(tile, stage));
  Slot& slot = m_slots[tile];
  if (slot.stripsLeft < 1) {
    GR_RETURN_IF_FAILED(stage->setStripHeight(static_cast<gr_uint32>(m_rowsPerStrip)));
    stage->setInterruptDelegate(getInterruptDelegate());
    GR_RETURN_IF_FAILED(stage->decodeBegin(m_scene));
    const gr_int32 lastRow = placement.top + placement.numRows - 1;
    slot.stripsLeft = lastRow / m_rowsPerStrip - stripTop / m_rowsPerStrip + 1;
  }
  return stage->decodeStrip(buffer, stripScene);
}

/// Counts the strip, and ends tiles that have no strip left.
GR_STATUS GRIMosaicFilter::finishStrip() {
  GR_STATUS result = GR_STATUS_OK;
  gr_uint32 numKept = 0;
  for (gr_uint32 i = 0; i < m_numOpenTiles; ++i) {
    const gr_uint32 tile = m_openTiles[i];
    Slot& slot = m_slots[tile];
    if (slot.stripsLeft > 0 && --slot.stripsLeft == 0) {
      const GR_STATUS status = slot.stage->decodeEnd();
      if (GR_SUCCESS(result)) result = status;
    }
    if (slot.stripsLeft > 0 || !m_releaseClosedTiles) {
      m_openTiles[numKept++] = tile;
    } else {
      slot = Slot();
    }
  }
  m_numOpenTiles = numKept;
  return result;
}

GR_STATUS GRIMosaicFilter::decodeEnd() {
  GR_STATUS result = GR_STATUS_OK;
  for (gr_uint32 i = 0; i < m_numOpenTiles; ++i) {
    Slot& slot = m_slots[m_openTiles[i]];
    if (slot.stripsLeft > 0) {
      const GR_STATUS status = slot.stage->decodeEnd();
      if (GR_SUCCESS(result)) result = status;
    }
    slot.stripsLeft = IDLE;
    if (m_releaseClosedTiles) slot = Slot();
  }
  if (m_releaseClosedTiles) m_numOpenTiles = 0;
  return result;
}
