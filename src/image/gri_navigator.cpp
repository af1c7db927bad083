#include "image/gri_navigator.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"
#include "image/gri_image.h"

namespace {

constexpr double LEAST_SIZE = 1e-08;          // what's left of a scene must be larger, in pixels
constexpr double LARGEST_FIT_INSIDE = 256.0;  // magnification

}  // namespace

GRINavigator::GRINavigator(const GRIImage& image)
    : GRIScene(0.0, 0.0, image.getWidth(), image.getHeight(), 1.0), m_image(&image) {}

GRINavigator::GRINavigator(const GRIImage& image, const GRIScene& scene)
    : GRIScene(scene), m_image(&image) {}

void GRINavigator::assign(double column, double row, double width, double height, double mag) {
  m_column = column;
  m_row = row;
  m_width = width;
  m_height = height;
  m_mag = mag;
}

GR_STATUS GRINavigator::setScene(const GRIScene& scene, GRINavigatorStyle style) {
  GRIScene::operator=(scene);
  switch (style) {
    case GRI_NAVIGATOR_STRICT:
      return GR_STATUS_OK;
    case GRI_NAVIGATOR_CHECK:
      return isValid() ? GR_STATUS_OK : GR_STATUS_FAILURE;
    case GRI_NAVIGATOR_CLIP:
      return clipToImage() ? GR_STATUS_OK : GR_STATUS_FAILURE;
  }
  assert(false && "bad style");
  return GR_STATUS_FAILURE;
}

bool GRINavigator::isValid() const {
  if (!(m_column >= 0.0 && m_row >= 0.0 && m_mag >= 0.0)) return false;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  if (!GR_SUCCESS(m_image->getDimsAtMag(m_mag, width, height))) return false;
  return getLowerRightCol() <= width && getLowerRightRow() <= height &&
         m_mag >= m_image->getMinMagnification() && m_mag <= m_image->getMaxMagnification();
}

bool GRINavigator::clipToImage() {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  if (!GR_SUCCESS(m_image->getDimsAtMag(m_mag, width, height))) return false;
  const double left = std::max(m_column, 0.0);
  const double top = std::max(m_row, 0.0);
  const double right = std::min<double>(getLowerRightCol(), width);
  const double bottom = std::min<double>(getLowerRightRow(), height);
  // Written so that what is no number fails.
  if (!(right >= left && bottom >= top)) return false;
  if (!(std::fabs(right - left) > LEAST_SIZE && std::fabs(bottom - top) > LEAST_SIZE)) return false;
  // A side that wasn't cut keeps its numbers to the bit: right - left could differ in the last.
  const double columns = left == m_column && right == getLowerRightCol() ? m_width : right - left;
  const double rows = top == m_row && bottom == getLowerRightRow() ? m_height : bottom - top;
  assign(left, top, columns, rows, m_mag);
  return true;
}

GR_STATUS GRINavigator::setSceneAsULWH(double x, double y, double width, double height,
                                       double mag) {
  assign(x, y, width, height, mag);
  return GR_STATUS_OK;
}

GR_STATUS GRINavigator::setSceneAsULLR(double ulx, double uly, double lrx, double lry, double mag) {
  return setSceneAsULWH(ulx, uly, lrx - ulx + 1, lry - uly + 1, mag);
}

GR_STATUS GRINavigator::setSceneAsCWH(double cx, double cy, double width, double height,
                                      double mag) {
  return setSceneAsULWH(cx - width / 2, cy - height / 2, width, height, mag);
}

GR_STATUS GRINavigator::setSceneAsFullImage() {
  return setSceneAsULWH(0.0, 0.0, m_image->getWidth(), m_image->getHeight(), 1.0);
}

GR_STATUS GRINavigator::setSceneAsMinMag() {
  const double mag = m_image->getMinMagnification();
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  GR_RETURN_IF_FAILED(m_image->getDimsAtMag(mag, width, height));
  return setSceneAsULWH(0.0, 0.0, width, height, mag);
}

GR_STATUS GRINavigator::moveBy(double dx, double dy, GRINavigatorStyle style) {
  return moveTo(m_column + dx, m_row + dy, style);
}

GR_STATUS GRINavigator::moveTo(double x, double y, GRINavigatorStyle style) {
  assign(x, y, m_width, m_height, m_mag);
  const GRIScene moved(static_cast<const GRIScene&>(*this));
  return setScene(moved, style);
}

GR_STATUS GRINavigator::zoomBy(double factor, GRINavigatorStyle style) {
  return zoomTo(m_mag * factor, style);
}

GR_STATUS GRINavigator::zoomTo(double mag, GRINavigatorStyle style) {
  m_mag = mag;
  const GRIScene zoomed(static_cast<const GRIScene&>(*this));
  return setScene(zoomed, style);
}

void GRINavigator::roundScene() {
  const double left = round(m_column);
  const double top = round(m_row);
  const double right = round(getLowerRightCol());
  const double bottom = round(getLowerRightRow());
  assign(left, top, right - left, bottom - top, m_mag);
}

GR_STATUS GRINavigator::setSceneAsFitInside(gr_uint32 maxWidth, gr_uint32 maxHeight) {
  const double smallest = m_image->getMinMagnification();
  double mag = std::min(m_image->getMaxMagnification(), LARGEST_FIT_INSIDE);
  do {
    gr_uint32 width = 0;
    gr_uint32 height = 0;
    GR_RETURN_IF_FAILED(m_image->getDimsAtMag(mag, width, height));
    // The width may equal its limit, the height may not.
    if (width <= maxWidth && height < maxHeight) {
      return setSceneAsULWH(0.0, 0.0, width, height, mag);
    }
    mag /= 2;
  } while (mag >= smallest && mag > 0.0);
  return GR_STATUS_FAILURE;
}

void GRINavigator::getGeoCoord(GRIGeoCoord& geoCoord) const {
  geoCoord = m_image->getGeoCoord().getGeoCoord(*this);
}

GR_STATUS GRINavigator::setSceneAsGeoULWH(double x, double y, double width, double height,
                                          double mag) {
  const GRIGeoCoord& geo = m_image->getGeoCoord();
  assert(geo.getXRot() == 0.0);
  assert(geo.getYRot() == 0.0);
  double col = 0.0;
  double row = 0.0;
  GR_RETURN_IF_FAILED(geo.geoToPixel(x, y, mag, col, row));
  return setSceneAsULWH(col, row, std::fabs(width / geo.getXResolution()) * mag,
                        std::fabs(height / geo.getYResolution()) * mag, mag);
}

GR_STATUS GRINavigator::setSceneAsGeoULLR(double ulx, double uly, double lrx, double lry,
                                          double mag) {
  const GRIGeoCoord& geo = m_image->getGeoCoord();
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  GR_RETURN_IF_FAILED(geo.geoToPixel(ulx, uly, mag, left, top));
  GR_RETURN_IF_FAILED(geo.geoToPixel(lrx, lry, mag, right, bottom));
  return setSceneAsULLR(left, top, right, bottom, mag);
}

GR_STATUS GRINavigator::setSceneAsGeoCWH(double cx, double cy, double width, double height,
                                         double mag) {
  return setSceneAsGeoULWH(cx - width / 2, cy + height / 2, width, height, mag);
}
