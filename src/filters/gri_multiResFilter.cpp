#include "filters/gri_multiResFilter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_navigator.h"
#include "image/gri_pixel.h"

namespace {

// Of an image with one magnification, so many pixels to one that it pays to decode single rows.
constexpr double MOST_PIXELS_TO_ONE = 16.0;
// A longer row of the image isn't held in memory; it's decoded in pieces.
constexpr gr_int32 LONGEST_ROW = 1 << 20;
constexpr gr_int64 LONGEST_PIECE = 1 << 14;
// Positions along a row are added up in single precision, so rows are resampled in pieces.
constexpr gr_uint32 COLUMNS_PER_PIECE = 1024;
constexpr double LARGEST_SIZE = 0x7FFFFFFF;  // columns or rows

// A whole position that a scale has moved by next to nothing stays the same.
constexpr double NEXT_TO_NOTHING = 1e-6;  // pixels

/// As the resampler truncates positions.
double truncated(double position) { return std::floor(position + NEXT_TO_NOTHING); }

bool isScale(double scale) { return std::isfinite(scale) && scale > 0.0; }

/// The power of two nearest to a magnification, as decoders choose their level.
double nearestPowerOfTwo(double magnification) {
  return std::ldexp(1.0, -static_cast<int>(std::floor(std::log2(1.0 / magnification) + 0.5)));
}

}  // namespace

gr_int32 GRIMultiResFilter::Strip::getEnd() const {
  return buffer == nullptr ? firstRow
                           : firstRow + static_cast<gr_int32>(buffer->getWindowNumRows());
}

gr_uint32 GRIMultiResFilter::scaledSize(gr_uint32 size, double scale) {
  const double scaled = std::ceil(size * scale - NEXT_TO_NOTHING);
  return scaled >= 1.0 && scaled <= LARGEST_SIZE ? static_cast<gr_uint32>(scaled) : 0;
}

GR_STATUS GRIMultiResFilter::initialize(GRIImageStage* previousStage, double xScale, double yScale,
                                        double minMag, double maxMag, double magnification) {
  GRIImageFilter::initialize(previousStage);
  if (xScale == 0.0 || yScale == 0.0) xScale = yScale = magnification;
  const GRIImageStage& image = *previousStage;
  if (!isScale(xScale) || !isScale(yScale)) return GRI_STATUS_COMPOSITION_INPUTS;
  const gr_uint32 width = scaledSize(image.getWidth(), xScale);
  const gr_uint32 height = scaledSize(image.getHeight(), yScale);
  if (width == 0 || height == 0) return GRI_STATUS_COMPOSITION_INPUTS;
  m_xScale = xScale;
  m_yScale = yScale;
  setDimensions(width, height);
  const double scale = std::sqrt(xScale * yScale);
  setMagnificationRange(std::min(minMag, image.getMinMagnification() * scale),
                        std::max(maxMag, image.getMaxMagnification() * scale));
  GR_RETURN_IF_FAILED(setStripHeight(image.getStripHeight()));
  try {
    GRIGeoCoord geoCoord(image.getGeoCoord());
    geoCoord.setXResolution(geoCoord.getXResolution() / xScale);
    geoCoord.setXRot(geoCoord.getXRot() / xScale);
    geoCoord.setYResolution(geoCoord.getYResolution() / yScale);
    geoCoord.setYRot(geoCoord.getYRot() / yScale);
    GR_RETURN_IF_FAILED(setGeoCoord(geoCoord));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  m_resampler = GRIResampler::create(image.getDataType(), GRIResampler::NEAREST);
  return m_resampler == nullptr ? GRI_STATUS_FILTER_ARGUMENT : GR_STATUS_OK;
}

GR_STATUS GRIMultiResFilter::decodeBegin(const GRIScene& scene) {
  for (Strip& strip : m_strips) strip = Strip();
  m_isReading = false;
  m_scene = scene;
  GRIScene clipped;
  if (!getClippedScene(scene, clipped)) return GRI_STATUS_FILTER_SCENE_EMPTY;
  GR_RETURN_IF_FAILED(chooseMode(scene));
  if (m_mode == Mode::ROWS) return GR_STATUS_OK;
  GRIImageStage& image = *getPreviousStage();
  m_stripRows =
      m_mode == Mode::PASS ? getStripHeight() : rowsPerImageStrip(m_imageScene.getNumCols());
  GR_RETURN_IF_FAILED(image.setStripHeight(m_stripRows));
  m_isReading = true;  // also when it fails: it may have begun all the same
  return image.readBegin(m_imageScene);
}

GR_STATUS GRIMultiResFilter::chooseMode(const GRIScene& scene) {
  const GRIImageStage& image = *getPreviousStage();
  const double xMag = scene.getMag() * m_xScale;
  const double yMag = scene.getMag() * m_yScale;
  const double least = image.getMinMagnification();
  const double most = image.getMaxMagnification();
  const double mag = std::sqrt(xMag * yMag);
  if (!isScale(mag)) return GRI_STATUS_FILTER_SCENE_EMPTY;
  m_imageMag = std::max(std::min(nearestPowerOfTwo(mag), most), least);
  m_xResample = m_imageMag / xMag;
  m_yResample = m_imageMag / yMag;
  if (!isScale(m_xResample) || !isScale(m_yResample)) return GRI_STATUS_FILTER_SCENE_EMPTY;
  const bool isReduced = m_xResample * m_yResample > MOST_PIXELS_TO_ONE;
  m_imageScene = requireScene(scene);
  if (m_imageScene.getNumCols() == 0 || m_imageScene.getNumRows() == 0) {
    return GRI_STATUS_FILTER_SCENE_EMPTY;
  }

  const bool isTooLong = m_imageScene.getNumCols() > LONGEST_ROW &&
                         m_imageScene.getNumCols() / 2 >= scene.getNumCols();
  if (image.isSelective() && ((least == most && isReduced) || isTooLong)) {
    m_mode = Mode::ROWS;
  } else if (passes(scene)) {
    m_mode = Mode::PASS;
    m_imageScene = GRIScene(truncated(scene.getUpperLeftCol() * m_xResample),
                            truncated(scene.getUpperLeftRow() * m_yResample), scene.getNumCols(),
                            scene.getNumRows(), m_imageMag);
  } else {
    m_mode = Mode::RESAMPLE;
  }
  return GR_STATUS_OK;
}

/// Whether a scene of the image of the same columns and rows is as good as a resampled one.
bool GRIMultiResFilter::passes(const GRIScene& scene) const {
  if (!(std::fabs(m_xResample - 1.0) < 1.0 / scene.getWidth())) return false;
  if (!(std::fabs(m_yResample - 1.0) < 1.0 / scene.getHeight())) return false;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  if (!GR_SUCCESS(getPreviousStage()->getDimsAtMag(m_imageMag, width, height))) return false;
  const double left = truncated(scene.getUpperLeftCol() * m_xResample);
  const double top = truncated(scene.getUpperLeftRow() * m_yResample);
  return left >= 0.0 && top >= 0.0 && left + scene.getNumCols() <= width &&
         top + scene.getNumRows() <= height;
}

/// The scene of the image that `scene` shows. The filter's last columns and rows may lie a little
/// past the image, because sizes are rounded up: those show the image's last ones.
GRIScene GRIMultiResFilter::requireScene(const GRIScene& scene) const {
  const GRIImageStage& image = *getPreviousStage();
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  if (!GR_SUCCESS(image.getDimsAtMag(m_imageMag, width, height))) return {0, 0, 0, 0, m_imageMag};
  const double left = std::clamp(scene.getUpperLeftCol() * m_xResample, 0.0, width - 1.0);
  const double top = std::clamp(scene.getUpperLeftRow() * m_yResample, 0.0, height - 1.0);
  // A pixel at least, so that there is one to resample.
  const double right = std::max(scene.getLowerRightCol() * m_xResample, left + 1.0);
  const double bottom = std::max(scene.getLowerRightRow() * m_yResample, top + 1.0);
  return m_resampler->getRequiredScene(image, {left, top, right - left, bottom - top, m_imageMag});
}

/// So many that a strip of the image isn't much larger than one of the scene.
gr_uint32 GRIMultiResFilter::rowsPerImageStrip(gr_int32 numCols) const {
  const gr_int64 sceneColumns = std::max(m_scene.getNumCols(), 1);
  const gr_int64 rows = gr_int64{getStripHeight()} * sceneColumns / std::max(numCols, 1);
  return static_cast<gr_uint32>(std::clamp<gr_int64>(rows, 1, getStripHeight()));
}

/// The row of the image's scene that a row of the scene, counted from its first, shows.
gr_int64 GRIMultiResFilter::imageRowOf(gr_int32 row) const {
  const double y = (m_scene.getUpperLeftRow() + row) * m_yResample - m_imageScene.getUpperLeftRow();
  return static_cast<gr_int64>(std::clamp(truncated(y), 0.0, m_imageScene.getHeight() - 1.0));
}

gr_int64 GRIMultiResFilter::imageColumnOf(gr_int32 column) const {
  const double x =
      (m_scene.getUpperLeftCol() + column) * m_xResample - m_imageScene.getUpperLeftCol();
  return static_cast<gr_int64>(std::clamp(truncated(x), 0.0, m_imageScene.getWidth() - 1.0));
}

GR_STATUS GRIMultiResFilter::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  const gr_int32 firstRow = stripScene.getUpperLeftIntRow() - m_scene.getUpperLeftIntRow();
  try {
    switch (m_mode) {
      case Mode::PASS:
        return getPreviousStage()->readStrip(
            buffer,
            GRIScene(m_imageScene.getUpperLeftCol(), m_imageScene.getUpperLeftRow() + firstRow,
                     m_imageScene.getWidth(), stripScene.getNumRows(), m_imageMag));
      case Mode::ROWS:
        return decodeRowByRow(buffer, firstRow);
      case Mode::RESAMPLE:
        return resampleStrip(buffer, firstRow);
    }
  } catch (const GRUtilException&) {
    return GRI_STATUS_FILTER_NO_MEMORY;
  }
  return GRI_STATUS_FILTER_SCENE_EMPTY;
}

GR_STATUS GRIMultiResFilter::resampleStrip(GRISceneBuffer& buffer, gr_int32 firstRow) {
  const gr_int32 numRows = static_cast<gr_int32>(buffer.getWindowNumRows());
  const gr_uint32 numCols = buffer.getWindowNumCols();
  for (gr_int32 row = 0; row < numRows;) {
    const gr_int32 imageRow = static_cast<gr_int32>(imageRowOf(firstRow + row));
    GR_RETURN_IF_FAILED(loadRow(imageRow));
    // Rows of the scene that show the same row of the image come at once.
    gr_int32 end = row + 1;
    while (end < numRows && imageRowOf(firstRow + end) == imageRow) ++end;

    const GRISceneBuffer& first = *m_strips[0].buffer;
    for (gr_uint32 column = 0; column < numCols; column += COLUMNS_PER_PIECE) {
      const gr_int32 sceneColumn = static_cast<gr_int32>(column);
      const gr_int64 left = imageColumnOf(sceneColumn);
      const double x = (m_scene.getUpperLeftCol() + sceneColumn) * m_xResample -
                       m_imageScene.getUpperLeftCol() - static_cast<double>(left);
      const GRIResampleRect destRect{column, static_cast<gr_uint32>(row),
                                     std::min(numCols - column, COLUMNS_PER_PIECE) + column - 1,
                                     static_cast<gr_uint32>(end - 1)};
      const gr_uint32 sourceRow = static_cast<gr_uint32>(imageRow - m_strips[0].firstRow);
      const GRIResampleRect srcRect{static_cast<gr_uint32>(left), sourceRow,
                                    first.getWindowNumCols() - 1, sourceRow};
      const float x0 = static_cast<float>(x);
      const float y0 = static_cast<float>(sourceRow);
      const float xStep = static_cast<float>(m_xResample);
      if (m_strips[1].buffer == nullptr) {
        m_resampler->resample(buffer, destRect, first, srcRect, x0, y0, xStep, 0.0F);
      } else {
        m_resampler->resample(buffer, destRect, first, *m_strips[1].buffer, srcRect, x0, y0, xStep,
                              0.0F);
      }
    }
    row = end;
  }
  return GR_STATUS_OK;
}

/// Decodes on until a row of the image's scene is there. Rows come from top to bottom.
GR_STATUS GRIMultiResFilter::loadRow(gr_int32 row) {
  while (row >= std::max(m_strips[0].getEnd(), m_strips[1].getEnd())) {
    GR_RETURN_IF_FAILED(loadStrip());
  }
  return GR_STATUS_OK;
}

/// Decodes the next strip of the image; of those before, the last one stays.
GR_STATUS GRIMultiResFilter::loadStrip() {
  if (m_strips[1].buffer != nullptr) m_strips[0] = std::move(m_strips[1]);
  m_strips[1] = Strip();
  const bool isFirst = m_strips[0].buffer == nullptr;
  Strip strip;
  strip.firstRow = isFirst ? 0 : m_strips[0].getEnd();
  const gr_int32 rowsLeft = m_imageScene.getNumRows() - strip.firstRow;
  if (rowsLeft <= 0) return GRI_STATUS_FILTER_SCENE_EMPTY;
  const gr_uint32 numRows = std::min(m_stripRows, static_cast<gr_uint32>(rowsLeft));
  strip.buffer = gr_makeUnique<GRISceneBuffer>(
      getPixelProps(), static_cast<gr_uint32>(m_imageScene.getNumCols()), numRows, nullptr);
  if (strip.buffer == nullptr) return GRI_STATUS_FILTER_NO_MEMORY;
  GR_RETURN_IF_FAILED(getPreviousStage()->readStrip(
      *strip.buffer,
      GRIScene(m_imageScene.getUpperLeftCol(), m_imageScene.getUpperLeftRow() + strip.firstRow,
               m_imageScene.getWidth(), numRows, m_imageMag)));
  m_strips[isFirst ? 0 : 1] = std::move(strip);
  return GR_STATUS_OK;
}

GR_STATUS GRIMultiResFilter::decodeRowByRow(GRISceneBuffer& buffer, gr_int32 firstRow) {
  const gr_uint32 numCols = buffer.getWindowNumCols();
  // As many columns as need no more of the image than a piece holds, one at least.
  const double columns = static_cast<double>(LONGEST_PIECE) / std::max(m_xResample, 1.0);
  const gr_uint32 columnsPerPiece = static_cast<gr_uint32>(std::max(columns, 1.0));
  for (gr_uint32 row = 0; row < buffer.getWindowNumRows(); ++row) {
    const gr_int32 imageRow =
        static_cast<gr_int32>(imageRowOf(firstRow + static_cast<gr_int32>(row)));
    for (gr_uint32 column = 0; column < numCols; column += columnsPerPiece) {
      GR_RETURN_IF_FAILED(
          decodePiece(buffer, row, column, std::min(columnsPerPiece, numCols - column), imageRow));
    }
  }
  return GR_STATUS_OK;
}

/// Decodes a part of a row of the scene from just the pixels of the image that it needs.
GR_STATUS GRIMultiResFilter::decodePiece(GRISceneBuffer& buffer, gr_uint32 row, gr_uint32 column,
                                         gr_uint32 numCols, gr_int32 imageRow) {
  const gr_int32 firstColumn = static_cast<gr_int32>(column);
  const gr_int64 left = imageColumnOf(firstColumn);
  const gr_int64 right = imageColumnOf(firstColumn + static_cast<gr_int32>(numCols) - 1);
  const gr_uint32 imageColumns = static_cast<gr_uint32>(right - left + 1);
  GRISceneBuffer pixels(getPixelProps(), imageColumns, 1, nullptr);
  GR_RETURN_IF_FAILED(getPreviousStage()->read(
      GRIScene(m_imageScene.getUpperLeftCol() + static_cast<double>(left),
               m_imageScene.getUpperLeftRow() + imageRow, imageColumns, 1.0, m_imageMag),
      pixels));
  const double x = (m_scene.getUpperLeftCol() + firstColumn) * m_xResample -
                   m_imageScene.getUpperLeftCol() - static_cast<double>(left);
  m_resampler->resample(buffer, {column, row, column + numCols - 1, row}, pixels,
                        {0, 0, imageColumns - 1, 0}, static_cast<float>(x), 0.0F,
                        static_cast<float>(m_xResample), 0.0F);
  return GR_STATUS_OK;
}

GR_STATUS GRIMultiResFilter::decodeEnd() {
  for (Strip& strip : m_strips) strip = Strip();
  if (!m_isReading) return GR_STATUS_OK;
  m_isReading = false;
  return getPreviousStage()->readEnd();
}
