#include "filters/gri_mosaicLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "filters/gri_multiResFilter.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_image.h"
#include "image/gri_imageStage.h"

namespace {

constexpr double LARGEST_SIZE = 0x7FFFFFFF;  // columns or rows
constexpr double RATIO_TOLERANCE = 1e-09;
constexpr double LARGEST_SHIFT = 1.0;  // of the last pixel, in pixels
constexpr double LARGEST_STEP = 0.25;  // from one position to the next that there is, in pixels

bool isPowerOfTwo(double ratio) {
  int exponent = 0;
  return std::frexp(ratio, &exponent) == 0.5;
}

bool isResolution(double resolution) { return std::isfinite(resolution) && resolution != 0.0; }

bool hasArea(const GRIBox& box) {
  return std::isfinite(box.left) && std::isfinite(box.top) && std::isfinite(box.right) &&
         std::isfinite(box.bottom) && std::isfinite(box.getWidth()) &&
         std::isfinite(box.getHeight()) && box.getWidth() > 0.0 && box.getHeight() > 0.0;
}

/// How many pixels an extent has; 0 for more than an image can have, or none.
gr_uint32 numPixels(double extent, double resolution) {
  const double count = std::floor(extent / resolution + 0.5);
  return count >= 1.0 && count <= LARGEST_SIZE ? static_cast<gr_uint32>(count) : 0;
}

/// Whether the numbers between two bounds lie close enough together to tell pixels apart.
bool holdsPixels(double least, double most, double resolution) {
  const double farthest = std::max(std::fabs(least), std::fabs(most));
  const double step = std::nextafter(farthest, std::numeric_limits<double>::infinity()) - farthest;
  return step <= LARGEST_STEP * resolution;
}

/// A whole number in place of one that is nearly it. Positions on the ground are seldom whole, and
/// tiles side by side must not part where half a pixel is rounded this way and that way.
double snapped(double offset) {
  constexpr double NOTHING = 1e-6;  // pixels
  const double whole = std::floor(offset + 0.5);
  return std::fabs(offset - whole) < NOTHING ? whole : offset;
}

GRIMosaicTile describe(const GRIImageStage& stage) {
  GRIMosaicTile tile;
  tile.width = stage.getWidth();
  tile.height = stage.getHeight();
  tile.minMagnification = stage.getMinMagnification();
  tile.maxMagnification = stage.getMaxMagnification();
  const GRIGeoCoord& geoCoord = stage.getGeoCoord();
  tile.xOrigin = geoCoord.getXOrigin();
  tile.yOrigin = geoCoord.getYOrigin();
  tile.xResolution = geoCoord.getXResolution();
  tile.yResolution = geoCoord.getYResolution();
  double x0 = 0.0;
  double y0 = 0.0;
  double x1 = 0.0;
  double y1 = 0.0;
  geoCoord.pixelToGeo(0.0, 0.0, 1.0, x0, y0);
  geoCoord.pixelToGeo(tile.width, tile.height, 1.0, x1, y1);
  tile.box = GRIBox::ofCorners(x0, y0, x1, y1);
  return tile;
}

}  // namespace

GR_STATUS GRIMosaicLayout::initialize(gr_uint32 numTiles, const Rules& rules) {
  m_rules = rules;
  return m_tiles.allocate(numTiles);
}

GR_STATUS GRIMosaicLayout::add(const GRIImageStage& stage) {
  const GRIMosaicTile tile = describe(stage);
  if (!isResolution(tile.xResolution) || !isResolution(tile.yResolution) || !hasArea(tile.box)) {
    return GRI_STATUS_COMPOSITION_INPUTS;
  }
  const double xResolution = std::fabs(tile.xResolution);
  const double yResolution = std::fabs(tile.yResolution);
  if (m_numTiles == 0) {
    m_xResolution = xResolution;
    m_yResolution = yResolution;
    m_bounds = tile.box;
  } else {
    const GRIMosaicTile& first = m_tiles[0];
    if ((tile.xResolution < 0.0) != (first.xResolution < 0.0)) {
      return GRI_STATUS_MOSAIC_X_RESOLUTION;
    }
    if ((tile.yResolution < 0.0) != (first.yResolution < 0.0)) {
      return GRI_STATUS_MOSAIC_Y_RESOLUTION;
    }
    if (m_rules.useMultires) {
      m_xResolution = std::min(m_xResolution, xResolution);
      m_yResolution = std::min(m_yResolution, yResolution);
    }
  }
  m_bounds = m_bounds.unitedWith(tile.box);
  m_tiles[m_numTiles++] = tile;
  return GR_STATUS_OK;
}

GR_STATUS GRIMosaicLayout::finish() {
  const GRIBox& bounds = m_bounds;
  m_width = numPixels(bounds.getWidth(), m_xResolution);
  m_height = numPixels(bounds.getHeight(), m_yResolution);
  if (m_width == 0 || m_height == 0 || !holdsPixels(bounds.left, bounds.right, m_xResolution) ||
      !holdsPixels(bounds.top, bounds.bottom, m_yResolution)) {
    return GRI_STATUS_COMPOSITION_INPUTS;
  }
  const GRIMosaicTile& first = m_tiles[0];
  const bool isLeftward = first.xResolution < 0.0;
  const bool isUpward = first.yResolution < 0.0;  // of y, from the first row to the last downward
  m_geoCoord =
      GRIGeoCoord(isLeftward ? bounds.right : bounds.left, isUpward ? bounds.bottom : bounds.top,
                  isLeftward ? -m_xResolution : m_xResolution,
                  isUpward ? -m_yResolution : m_yResolution, 0.0, 0.0);
  for (gr_uint32 i = 0; i < m_numTiles; ++i) {
    const GRIMosaicTile& tile = m_tiles[i];
    GR_RETURN_IF_FAILED(checkResolutions(tile));
    const double scale = scaleOf(i);
    m_minMagnification = std::min(m_minMagnification, tile.minMagnification / scale);
    m_maxMagnification = std::max(m_maxMagnification, tile.maxMagnification * scale);
    GR_RETURN_IF_FAILED(m_tree.add(drawnBoxOf(i), i));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIMosaicLayout::checkResolutions(const GRIMosaicTile& tile) const {
  const double rx = std::fabs(tile.xResolution) / m_xResolution;
  const double ry = std::fabs(tile.yResolution) / m_yResolution;
  if (!m_rules.useMultires) {
    const double width = tile.width;
    const double height = tile.height;
    const bool isXGood = m_rules.isApproximate ? std::fabs(width * rx / ry - width) < LARGEST_SHIFT
                                               : std::fabs(rx - 1.0) <= RATIO_TOLERANCE;
    const bool isYGood = m_rules.isApproximate
                             ? std::fabs(height * ry / rx - height) < LARGEST_SHIFT
                             : std::fabs(ry - 1.0) <= RATIO_TOLERANCE;
    if (!isXGood) return GRI_STATUS_MOSAIC_X_RESOLUTION;
    return isYGood ? GR_STATUS_OK : GRI_STATUS_MOSAIC_Y_RESOLUTION;
  }
  if (m_rules.isApproximate) return GR_STATUS_OK;
  if (!isPowerOfTwo(rx)) return GRI_STATUS_MOSAIC_X_SCALE;
  if (!isPowerOfTwo(ry)) return GRI_STATUS_MOSAIC_Y_SCALE;
  return rx == ry ? GR_STATUS_OK : GRI_STATUS_MOSAIC_X_RESOLUTION;
}

double GRIMosaicLayout::getXScale(gr_uint32 tile) const {
  return std::fabs(m_tiles[tile].xResolution) / m_xResolution;
}

double GRIMosaicLayout::getYScale(gr_uint32 tile) const {
  return std::fabs(m_tiles[tile].yResolution) / m_yResolution;
}

double GRIMosaicLayout::scaleOf(gr_uint32 tile) const {
  return std::sqrt(getXScale(tile) * getYScale(tile));
}

GRIBox GRIMosaicLayout::drawnBoxOf(gr_uint32 tile) const {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  getDimsAtMag(tile, 1.0, width, height);
  const double left = getXOffset(tile);
  const double top = getYOffset(tile);
  double x0 = 0.0;
  double y0 = 0.0;
  double x1 = 0.0;
  double y1 = 0.0;
  m_geoCoord.pixelToGeo(left, top, 1.0, x0, y0);
  m_geoCoord.pixelToGeo(left + width, top + height, 1.0, x1, y1);
  return GRIBox::ofCorners(x0, y0, x1, y1);
}

bool GRIMosaicLayout::isScaled(gr_uint32 tile) const {
  if (getXScale(tile) != 1.0 || getYScale(tile) != 1.0) return true;
  return m_tiles[tile].minMagnification > m_minMagnification ||
         m_tiles[tile].maxMagnification < m_maxMagnification;
}

double GRIMosaicLayout::getXOffset(gr_uint32 tile) const {
  return snapped((m_tiles[tile].xOrigin - m_geoCoord.getXOrigin()) / m_geoCoord.getXResolution());
}

double GRIMosaicLayout::getYOffset(gr_uint32 tile) const {
  return snapped((m_tiles[tile].yOrigin - m_geoCoord.getYOrigin()) / m_geoCoord.getYResolution());
}

void GRIMosaicLayout::getDimsAtMag(gr_uint32 tile, double mag, gr_uint32& width,
                                   gr_uint32& height) const {
  GRIUtils::getDimsAtMag(GRIMultiResFilter::scaledSize(m_tiles[tile].width, getXScale(tile)),
                         GRIMultiResFilter::scaledSize(m_tiles[tile].height, getYScale(tile)), mag,
                         width, height);
}
