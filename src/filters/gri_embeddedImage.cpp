#include "filters/gri_embeddedImage.h"

#include <algorithm>

#include "filters/gri_multiResFilter.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_sceneBuffer.h"

GR_STATUS GRIEmbeddedImage::initialize(GRIImageStage* previousStage, gr_uint32 width,
                                       gr_uint32 height, double xOffset, double yOffset,
                                       double minMag, double maxMag, const GRIPixel* background,
                                       const GRIPixel* noData) {
  GRIImageFilter::initialize(previousStage);
  m_scaledImage = dynamic_cast<GRIMultiResFilter*>(previousStage);
  if (background != nullptr) {
    GR_RETURN_IF_FAILED(getPixelProps().checkImpedance(*background));
  }
  GR_RETURN_IF_FAILED(setBackgroundPixel(background));
  GR_RETURN_IF_FAILED(setNoDataPixel(noData));
  setDimensions(width, height);
  setMagnificationRange(minMag, maxMag);
  m_xOffset = xOffset;
  m_yOffset = yOffset;
  try {
    GRIGeoCoord geoCoord(previousStage->getGeoCoord());
    double x = 0.0;
    double y = 0.0;
    geoCoord.pixelToGeo(-xOffset, -yOffset, 1.0, x, y);
    geoCoord.setXOrigin(x);
    geoCoord.setYOrigin(y);
    return setGeoCoord(geoCoord);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS GRIEmbeddedImage::place(const GRIScene& scene, GRIPlacement& placement) const {
  const double mag = scene.getMag();
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  placement = GRIPlacement();
  const GR_STATUS status = getPreviousStage()->getDimsAtMag(mag, width, height);
  if (status == GR_STATUS_OUT_OF_RANGE) return GR_STATUS_OK;  // it hasn't this magnification
  GR_RETURN_IF_FAILED(status);
  return placement.initialize(scene, getOffsetX(mag), getOffsetY(mag), width, height);
}

bool GRIEmbeddedImage::mapScene(const GRIScene& scene, GRIScene& clipped) const {
  GRIPlacement placement;
  if (!GR_SUCCESS(place(scene, placement)) || placement.isEmpty()) return false;
  clipped = placement.imageScene;
  return true;
}

GR_STATUS GRIEmbeddedImage::decodeBegin(const GRIScene& scene) {
  m_scene = scene;
  m_isReading = false;
  return place(scene, m_placement);
}

GR_STATUS GRIEmbeddedImage::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  GR_RETURN_IF_FAILED(fillBackground(stripScene, buffer));
  if (!touchesImage()) return GR_STATUS_OK;
  const gr_int32 stripTop = stripScene.getUpperLeftIntRow() - m_scene.getUpperLeftIntRow();
  const gr_int32 stripBottom = stripTop + stripScene.getNumRows();
  const gr_int32 top = std::max(stripTop, m_placement.top);
  const gr_int32 bottom = std::min(stripBottom, m_placement.top + m_placement.numRows);
  if (top >= bottom) return GR_STATUS_OK;  // the image begins below or has ended above

  const gr_int32 firstRow = top - m_placement.top;
  const gr_int32 numRows = bottom - top;
  if (m_isReading && firstRow != m_rowsNext) GR_RETURN_IF_FAILED(endRows());
  if (!m_isReading) GR_RETURN_IF_FAILED(beginRows(firstRow, numRows));
  const GRIScene& whole = m_placement.imageScene;
  const GRIScene rows(whole.getUpperLeftCol(), whole.getUpperLeftRow() + firstRow, whole.getWidth(),
                      numRows, whole.getMag());
  try {
    GRISceneBuffer window(
        buffer, static_cast<gr_uint32>(m_placement.left), static_cast<gr_uint32>(top - stripTop),
        static_cast<gr_uint32>(m_placement.numCols), static_cast<gr_uint32>(numRows));
    GR_RETURN_IF_FAILED(decodeRows(window, rows));
  } catch (const GRUtilException&) {
    return GRI_STATUS_FILTER_NO_MEMORY;
  }
  m_rowsNext = firstRow + numRows;
  return m_rowsNext == m_rowsEnd ? endRows() : GR_STATUS_OK;
}

/// Has the image begin with the rows that the strip at hand needs. Strips of the image are cut from
/// its first row on, and strips of the frame from the frame's. Where the image begins inside of a
/// strip of the frame, the rest of that strip is a decode of its own, and the next one starts with
/// the frame's next strip.
GR_STATUS GRIEmbeddedImage::beginRows(gr_int32 firstRow, gr_int32 numRows) {
  const gr_int32 rowsLeft = m_placement.numRows - firstRow;
  const bool isWholeStrip = static_cast<gr_uint32>(numRows) == getStripHeight();
  const gr_int32 count = isWholeStrip ? rowsLeft : numRows;
  const GRIScene& whole = m_placement.imageScene;
  m_rowsNext = firstRow;
  m_rowsEnd = firstRow + count;
  if (m_scaledImage != nullptr) m_scaledImage->setWholeScene(whole);
  m_isReading = true;  // also when it fails: it may have begun all the same
  return getPreviousStage()->readBegin(GRIScene(whole.getUpperLeftCol(),
                                                whole.getUpperLeftRow() + firstRow,
                                                whole.getWidth(), count, whole.getMag()));
}

GR_STATUS GRIEmbeddedImage::endRows() {
  m_isReading = false;
  return getPreviousStage()->readEnd();
}

GR_STATUS GRIEmbeddedImage::decodeRows(GRISceneBuffer& window, const GRIScene& rows) {
  GRIImageStage& image = *getPreviousStage();
  const GRIPixel* noData = image.getNoDataPixel();
  if (noData == nullptr) noData = getNoDataPixel();
  if (noData == nullptr) return image.readStrip(window, rows);
  GRISceneBuffer decoded(window.getPixelProps(), window.getWindowNumCols(),
                         window.getWindowNumRows(), nullptr);
  GR_RETURN_IF_FAILED(image.readStrip(decoded, rows));
  return window.merge(GRI_MERGE_EXACT, decoded, noData);
}

GR_STATUS GRIEmbeddedImage::decodeEnd() { return m_isReading ? endRows() : GR_STATUS_OK; }
