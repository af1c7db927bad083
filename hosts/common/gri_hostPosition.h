/// @file
/// Where a picture lies on the ground.
#pragma once

#include "gri_rdk_cdll.h"

/// An affine position, in the units of the picture's coordinate system:
///     x = xOrigin + column * xResolution + row * xRotation
///     y = yOrigin + column * yRotation + row * yResolution
/// where column and row 0 are the centre of the upper left pixel at magnification 1.
struct GRIHostPosition {
  double xOrigin = 0;
  double yOrigin = 0;
  double xResolution = 1;
  double yResolution = -1;
  double xRotation = 0;
  double yRotation = 0;

  /// The ground point of a point of the picture. Whole columns and rows are centres of pixels, so
  /// the outer corner of the picture is (-0.5, -0.5).
  void toGround(double column, double row, double& x, double& y) const;

  /// The reverse. False, with nothing written, when the position is degenerate (a zero resolution).
  bool toPicture(double x, double y, double& column, double& row) const;

  bool isFinite() const;
};
