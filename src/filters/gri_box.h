/// @file
/// GRIBox, a rectangle on the ground.
#pragma once

#include <algorithm>

/// Left and top are the lesser numbers, right and bottom the greater ones, whichever way is up.
struct GRIBox {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;

  /// The box with these opposite corners.
  static GRIBox ofCorners(double x0, double y0, double x1, double y1) {
    return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
  }

  double getWidth() const { return right - left; }
  double getHeight() const { return bottom - top; }

  bool operator==(const GRIBox& other) const = default;

  /// Whether the two have a point in common; edges belong to both.
  bool overlaps(const GRIBox& other) const {
    return left <= other.right && other.left <= right && top <= other.bottom && other.top <= bottom;
  }
  /// What the two have in common, if they overlap.
  GRIBox cutTo(const GRIBox& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
  }
  /// The least box around both.
  GRIBox unitedWith(const GRIBox& other) const {
    return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
            std::max(bottom, other.bottom)};
  }
};
