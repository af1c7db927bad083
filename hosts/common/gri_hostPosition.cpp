#include "hosts/common/gri_hostPosition.h"

#include <cmath>

void GRIHostPosition::toGround(double column, double row, double& x, double& y) const {
  x = xOrigin + column * xResolution + row * xRotation;
  y = yOrigin + column * yRotation + row * yResolution;
}

bool GRIHostPosition::toPicture(double x, double y, double& column, double& row) const {
  const double determinant = xResolution * yResolution - xRotation * yRotation;
  if (determinant == 0 || !std::isfinite(determinant)) return false;
  const double dx = x - xOrigin;
  const double dy = y - yOrigin;
  column = (yResolution * dx - xRotation * dy) / determinant;
  row = (xResolution * dy - yRotation * dx) / determinant;
  return true;
}

bool GRIHostPosition::isFinite() const {
  return std::isfinite(xOrigin) && std::isfinite(yOrigin) && std::isfinite(xResolution) &&
         std::isfinite(yResolution) && std::isfinite(xRotation) && std::isfinite(yRotation);
}
