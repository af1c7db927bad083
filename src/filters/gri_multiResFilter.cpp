#include "filters/gri_multiResFilter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "filters/gri_resamplePosition.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_level.h"
#include "image/gri_navigator.h"
#include "image/gri_pixel.h"

namespace {

// Of an image with one magnification, so many pixels to one that it pays to decode single rows.
constexpr double MOST_PIXELS_TO_ONE = 16.0;
// A longer row of the image isn't held in memory; it's decoded in parts.
constexpr gr_int32 LONGEST_ROW = 1 << 20;
constexpr gr_int64 LONGEST_PART = 1 << 14;
// Positions along a row are added up in single precision, so rows are resampled in pieces. They are
// cut at multiples of a fixed number of columns of the whole image, so that what a column shows
// depends on nothing else.
constexpr double MOST_COLUMNS_PER_PIECE = 256.0;
constexpr double LARGEST_PIECE = 2048.0;  // pixels of the image
constexpr size_t BYTES_OF_DOUBLE = 8;
constexpr double LARGEST_SIZE = 0x7FFFFFFF;  // columns or rows

// A whole position that a scale has moved by next to nothing stays the same.
constexpr double NEXT_TO_NOTHING = 1e-6;  // pixels

/// As the resampler truncates positions.
double truncated(double position) { return std::floor(position + NEXT_TO_NOTHING); }

bool isScale(double scale) { return std::isfinite(scale) && scale > 0.0; }

/// The power of two nearest to a magnification, as decoders choose their level.
double nearestPowerOfTwo(double magnification) {
  return std::ldexp(1.0, -gri_levelOf(magnification));
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
  const GRIScene whole = std::exchange(m_wholeScene, std::nullopt).value_or(scene);
  m_scene = scene;
  GRIScene clipped;
  if (!getClippedScene(scene, clipped)) return GRI_STATUS_FILTER_SCENE_EMPTY;
  GR_RETURN_IF_FAILED(chooseMode(whole));
  if (m_mode == Mode::ROWS) return GR_STATUS_OK;
  GRIImageStage& image = *getPreviousStage();
  m_margin = m_mode == Mode::PASS
                 ? 0
                 : static_cast<gr_int64>(m_imageScene.getUpperLeftCol()) - pieceFrom(0).left;
  m_stripRows =
      m_mode == Mode::PASS ? getStripHeight() : rowsPerImageStrip(m_imageScene.getNumCols());
  GR_RETURN_IF_FAILED(image.setStripHeight(m_stripRows));
  m_isReading = true;  // also when it fails: it may have begun all the same
  return image.readBegin(m_imageScene);
}

/// @param whole  the scene at hand, or the one that it is a part of
GR_STATUS GRIMultiResFilter::chooseMode(const GRIScene& whole) {
  const GRIImageStage& image = *getPreviousStage();
  const double xMag = whole.getMag() * m_xScale;
  const double yMag = whole.getMag() * m_yScale;
  const double least = image.getMinMagnification();
  const double most = image.getMaxMagnification();
  const double mag = std::sqrt(xMag * yMag);
  if (!isScale(mag)) return GRI_STATUS_FILTER_SCENE_EMPTY;
  m_imageMag = std::max(std::min(nearestPowerOfTwo(mag), most), least);
  m_xResample = m_imageMag / xMag;
  m_yResample = m_imageMag / yMag;
  if (!isScale(m_xResample) || !isScale(m_yResample)) return GRI_STATUS_FILTER_SCENE_EMPTY;
  const bool isReduced = m_xResample * m_yResample > MOST_PIXELS_TO_ONE;
  if (!GR_SUCCESS(image.getDimsAtMag(m_imageMag, m_imageWidth, m_imageHeight)) ||
      m_imageWidth == 0 || m_imageHeight == 0) {
    return GRI_STATUS_FILTER_SCENE_EMPTY;
  }
  m_columnsPerPiece =
      GRIUtils::getNumBytes(image.getDataType()) == BYTES_OF_DOUBLE
          ? 1  // whose positions are added up in double precision
          : static_cast<gr_int32>(
                std::clamp(std::floor(LARGEST_PIECE / m_xResample), 1.0, MOST_COLUMNS_PER_PIECE));
  m_imageScene = requireScene(m_scene);
  if (m_imageScene.getNumCols() == 0 || m_imageScene.getNumRows() == 0) {
    return GRI_STATUS_FILTER_SCENE_EMPTY;
  }

  const bool isTooLong = m_imageScene.getNumCols() > LONGEST_ROW &&
                         m_imageScene.getNumCols() / 2 >= m_scene.getNumCols();
  if (image.isSelective() && ((least == most && isReduced) || isTooLong)) {
    m_mode = Mode::ROWS;
  } else if (passes(whole)) {
    m_mode = Mode::PASS;
    m_imageScene = GRIScene(truncated(whole.getUpperLeftCol() * m_xResample) +
                                m_scene.getUpperLeftCol() - whole.getUpperLeftCol(),
                            truncated(whole.getUpperLeftRow() * m_yResample) +
                                m_scene.getUpperLeftRow() - whole.getUpperLeftRow(),
                            m_scene.getNumCols(), m_scene.getNumRows(), m_imageMag);
  } else {
    m_mode = Mode::RESAMPLE;
  }
  return GR_STATUS_OK;
}

/// Whether a scene of the image of the same columns and rows is as good as a resampled one.
bool GRIMultiResFilter::passes(const GRIScene& scene) const {
  if (!(std::fabs(m_xResample - 1.0) < 1.0 / scene.getWidth())) return false;
  if (!(std::fabs(m_yResample - 1.0) < 1.0 / scene.getHeight())) return false;
  const double left = truncated(scene.getUpperLeftCol() * m_xResample);
  const double top = truncated(scene.getUpperLeftRow() * m_yResample);
  return left >= 0.0 && top >= 0.0 && left + scene.getNumCols() <= m_imageWidth &&
         top + scene.getNumRows() <= m_imageHeight;
}

/// The scene of the image that `scene` shows. The filter's last columns and rows may lie a little
/// past the image, because sizes are rounded up: those show the image's last ones.
GRIScene GRIMultiResFilter::requireScene(const GRIScene& scene) const {
  const Columns columns = imageColumnsOf(0, std::max(scene.getNumCols(), 1) - 1);
  const double left = static_cast<double>(columns.first);
  const double right = static_cast<double>(columns.last) + 1.0;
  const double top = std::clamp(scene.getUpperLeftRow() * m_yResample, 0.0, m_imageHeight - 1.0);
  // A pixel at least, so that there is one to resample.
  const double bottom = std::max(scene.getLowerRightRow() * m_yResample, top + 1.0);
  return m_resampler->getRequiredScene(*getPreviousStage(),
                                       {left, top, right - left, bottom - top, m_imageMag});
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

/// The piece of a row that a column of the scene is in, from that column on.
GRIMultiResFilter::Piece GRIMultiResFilter::pieceFrom(gr_int32 column) const {
  const double firstColumn = m_scene.getUpperLeftCol();
  const gr_int64 wholeColumn = static_cast<gr_int64>(std::floor(firstColumn)) + column;
  const gr_int64 passed = std::max<gr_int64>(wholeColumn, 0) % m_columnsPerPiece;
  const double begin = (firstColumn + static_cast<double>(column - passed)) * m_xResample;
  Piece piece;
  piece.left = static_cast<gr_int64>(std::clamp(truncated(begin), 0.0, m_imageWidth - 1.0));
  piece.numCols = m_columnsPerPiece - static_cast<gr_int32>(passed);
  piece.position = static_cast<float>(begin - static_cast<double>(piece.left));
  // As the resampler adds them up.
  for (gr_int64 i = 0; i < passed; ++i) piece.position += static_cast<float>(m_xResample);
  return piece;
}

/// The column of the image that a column of the scene, counted from its first, shows.
gr_int64 GRIMultiResFilter::imageColumnOf(gr_int32 column) const {
  const Piece piece = pieceFrom(column);
  const GRIResamplePosition<float> position(piece.position, m_imageWidth);
  return std::clamp<gr_int64>(piece.left + position.index, 0, gr_int64{m_imageWidth} - 1);
}

/// The columns of the image that columns of the scene show. What is added up may be a little off,
/// so that the column in front of a piece shows one behind that of the piece's first.
GRIMultiResFilter::Columns GRIMultiResFilter::imageColumnsOf(gr_int32 first, gr_int32 last) const {
  Columns columns{imageColumnOf(first), imageColumnOf(last)};
  const gr_int32 secondPiece = first + pieceFrom(first).numCols;
  if (secondPiece <= last) columns.first = std::min(columns.first, imageColumnOf(secondPiece));
  const gr_int32 lastPiece = last - (m_columnsPerPiece - pieceFrom(last).numCols);
  if (lastPiece > first) columns.last = std::max(columns.last, imageColumnOf(lastPiece - 1));
  return columns;
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

    const Source source{m_strips[0].buffer.get(), m_strips[1].buffer.get(),
                        static_cast<gr_int64>(m_imageScene.getUpperLeftCol()) - m_margin};
    const GRIResampleRect dest{0, static_cast<gr_uint32>(row), numCols - 1,
                               static_cast<gr_uint32>(end - 1)};
    resampleRow(buffer, dest, source, static_cast<gr_uint32>(imageRow - m_strips[0].firstRow));
    row = end;
  }
  return GR_STATUS_OK;
}

/// Fills rows of a strip, which are all the same, from one row of the image.
/// @param row  of the source
void GRIMultiResFilter::resampleRow(GRISceneBuffer& buffer, const GRIResampleRect& dest,
                                    const Source& source, gr_uint32 row) const {
  const float y = static_cast<float>(row);
  const float step = static_cast<float>(m_xResample);
  GRIResampleRect piece = dest;
  while (piece.left <= dest.right) {
    const Piece from = pieceFrom(static_cast<gr_int32>(piece.left));
    piece.right = std::min(piece.left + static_cast<gr_uint32>(from.numCols) - 1, dest.right);
    const GRIResampleRect pixels{static_cast<gr_uint32>(from.left - source.left), row,
                                 source.first->getWindowNumCols() - 1, row};
    if (source.second == nullptr) {
      m_resampler->resample(buffer, piece, *source.first, pixels, from.position, y, step, 0.0F);
    } else {
      m_resampler->resample(buffer, piece, *source.first, *source.second, pixels, from.position, y,
                            step, 0.0F);
    }
    piece.left = piece.right + 1;
  }
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
  const gr_uint32 numCols = static_cast<gr_uint32>(m_imageScene.getNumCols());
  const gr_uint32 margin = static_cast<gr_uint32>(m_margin);
  strip.buffer = gr_makeUnique<GRISceneBuffer>(getPixelProps(), margin + numCols, numRows, nullptr);
  if (strip.buffer == nullptr) return GRI_STATUS_FILTER_NO_MEMORY;
  GRISceneBuffer decoded(*strip.buffer, margin, 0, numCols, numRows);
  GR_RETURN_IF_FAILED(getPreviousStage()->readStrip(
      decoded,
      GRIScene(m_imageScene.getUpperLeftCol(), m_imageScene.getUpperLeftRow() + strip.firstRow,
               m_imageScene.getWidth(), numRows, m_imageMag)));
  m_strips[isFirst ? 0 : 1] = std::move(strip);
  return GR_STATUS_OK;
}

GR_STATUS GRIMultiResFilter::decodeRowByRow(GRISceneBuffer& buffer, gr_int32 firstRow) {
  const gr_uint32 numCols = buffer.getWindowNumCols();
  // As many columns as need no more of the image than is decoded at once, one at least.
  const double columns = static_cast<double>(LONGEST_PART) / std::max(m_xResample, 1.0);
  const gr_uint32 columnsAtOnce = static_cast<gr_uint32>(std::max(columns, 1.0));
  for (gr_uint32 row = 0; row < buffer.getWindowNumRows(); ++row) {
    const gr_int32 imageRow =
        static_cast<gr_int32>(imageRowOf(firstRow + static_cast<gr_int32>(row)));
    for (gr_uint32 column = 0; column < numCols; column += columnsAtOnce) {
      const gr_uint32 last = std::min(columnsAtOnce, numCols - column) + column - 1;
      GR_RETURN_IF_FAILED(decodePart(buffer, {column, row, last, row}, imageRow));
    }
  }
  return GR_STATUS_OK;
}

/// Decodes a part of a row of the scene from just the pixels of the image that it needs.
GR_STATUS GRIMultiResFilter::decodePart(GRISceneBuffer& buffer, const GRIResampleRect& part,
                                        gr_int32 imageRow) {
  const gr_int32 firstColumn = static_cast<gr_int32>(part.left);
  const Columns columns = imageColumnsOf(firstColumn, static_cast<gr_int32>(part.right));
  const gr_int64 begin = pieceFrom(firstColumn).left;
  const gr_uint32 margin = static_cast<gr_uint32>(columns.first - begin);
  const gr_uint32 numCols = static_cast<gr_uint32>(columns.last - columns.first + 1);
  GRISceneBuffer pixels(getPixelProps(), margin + numCols, 1, nullptr);
  GRISceneBuffer decoded(pixels, margin, 0, numCols, 1);
  GR_RETURN_IF_FAILED(getPreviousStage()->read(
      GRIScene(static_cast<double>(columns.first), m_imageScene.getUpperLeftRow() + imageRow,
               numCols, 1.0, m_imageMag),
      decoded));
  resampleRow(buffer, part, {&pixels, nullptr, begin}, 0);
  return GR_STATUS_OK;
}

GR_STATUS GRIMultiResFilter::decodeEnd() {
  for (Strip& strip : m_strips) strip = Strip();
  if (!m_isReading) return GR_STATUS_OK;
  m_isReading = false;
  return getPreviousStage()->readEnd();
}
