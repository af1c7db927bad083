#include "image/gri_geoCoord.h"

#include <cmath>
#include <cstring>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_scene.h"

namespace {

bool areOriginsEqual(double a, double b) {
  const double difference = std::fabs(a - b);
  return difference <= 5e-11 * std::fabs(a + b) || difference <= 1e-06;
}

bool areScalesEqual(double a, double b) {
  if (a != 0.0 && b != 0.0) return std::fabs(a / b - 1.0) <= 1e-06;
  return a == b;
}

bool areTextsEqual(const char* a, const char* b) {
  if (a == b) return true;
  return a != nullptr && b != nullptr && std::strcmp(a, b) == 0;
}

}  // namespace

GRIGeoCoord::GRIGeoCoord(double xOrigin, double yOrigin, double xResolution, double yResolution,
                         double xRotation, double yRotation)
    : m_xOrigin(xOrigin),
      m_yOrigin(yOrigin),
      m_xResolution(xResolution),
      m_yResolution(yResolution),
      m_xRotation(xRotation),
      m_yRotation(yRotation) {}

GRIGeoCoord::GRIGeoCoord(const GRIGeoCoord& other)
    : GRIGeoCoord(other.m_xOrigin, other.m_yOrigin, other.m_xResolution, other.m_yResolution,
                  other.m_xRotation, other.m_yRotation) {
  setWKT(other.getWKT());
}

GRIGeoCoord& GRIGeoCoord::operator=(const GRIGeoCoord& other) {
  if (this == &other) return *this;
  setWKT(other.getWKT());
  m_xOrigin = other.m_xOrigin;
  m_yOrigin = other.m_yOrigin;
  m_xResolution = other.m_xResolution;
  m_yResolution = other.m_yResolution;
  m_xRotation = other.m_xRotation;
  m_yRotation = other.m_yRotation;
  return *this;
}

bool GRIGeoCoord::operator==(const GRIGeoCoord& other) const {
  return areOriginsEqual(m_xOrigin, other.m_xOrigin) &&
         areOriginsEqual(m_yOrigin, other.m_yOrigin) &&
         areScalesEqual(m_xResolution, other.m_xResolution) &&
         areScalesEqual(m_yResolution, other.m_yResolution) &&
         areScalesEqual(m_xRotation, other.m_xRotation) &&
         areScalesEqual(m_yRotation, other.m_yRotation) && areTextsEqual(getWKT(), other.getWKT());
}

void GRIGeoCoord::getAll(double& xOrigin, double& yOrigin, double& xResolution, double& yResolution,
                         double& xRotation, double& yRotation) const {
  xOrigin = m_xOrigin;
  yOrigin = m_yOrigin;
  xResolution = m_xResolution;
  yResolution = m_yResolution;
  xRotation = m_xRotation;
  yRotation = m_yRotation;
}

void GRIGeoCoord::setWKT(const char* wkt) {
  GRArray<char> copy;
  if (wkt != nullptr) {
    const size_t bytes = std::strlen(wkt) + 1;
    if (!GR_SUCCESS(copy.allocate(bytes))) throw GRUtilException(GR_STATUS_NO_MEMORY);
    std::memcpy(copy.data(), wkt, bytes);
  }
  m_wkt = std::move(copy);
}

GR_STATUS GRIGeoCoord::pixelToGeo(double col, double row, double mag, double& x, double& y) const {
  const double s = 1 / mag;
  x = (col * m_xResolution + row * m_xRotation) * s + m_xOrigin;
  y = (col * m_yRotation + row * m_yResolution) * s + m_yOrigin;
  return GR_STATUS_OK;
}

GR_STATUS GRIGeoCoord::geoToPixel(double x, double y, double mag, double& col, double& row) const {
  const double d = m_xResolution * m_yResolution - m_xRotation * m_yRotation;
  if (d == 0.0) return GR_STATUS_FAILURE;
  const double s = mag / d;
  const double dx = x - m_xOrigin;
  const double dy = y - m_yOrigin;
  col = (m_yResolution * dx - m_xRotation * dy) * s;
  row = (-m_yRotation * dx + m_xResolution * dy) * s;
  return GR_STATUS_OK;
}

GRIGeoCoord GRIGeoCoord::getGeoCoord(const GRIScene& scene) const {
  GRIGeoCoord geo(*this);
  const double mag = scene.getMag();
  pixelToGeo(scene.getUpperLeftCol(), scene.getUpperLeftRow(), mag, geo.m_xOrigin, geo.m_yOrigin);
  geo.m_xResolution /= mag;
  geo.m_yResolution /= mag;
  geo.m_xRotation /= mag;
  geo.m_yRotation /= mag;
  return geo;
}
