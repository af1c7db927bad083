/// @file
/// GRIScene, a rectangle of an image at a magnification.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// A question: this rectangle of the image at this magnification. Coordinates and sizes are in
/// pixels of the image scaled by the magnification, (0, 0) is the upper left; they may have
/// fractions. 1.0 is full size, 0.5 half of it.
class GRIScene {
 public:
  /// No scene: all zeros, with a magnification of -1.
  GRIScene() = default;
  /// @param width, height  not negative
  /// @param mag  above 0
  GRIScene(double column, double row, double width, double height, double mag);

  bool operator==(const GRIScene& other) const = default;

  /// floor(v + 0.5), limited to 32 bits; no number becomes 0. Every whole number that is derived
  /// from a scene goes through here.
  static gr_int32 round(double v);

  double getUpperLeftCol() const { return m_column; }
  double getUpperLeftRow() const { return m_row; }
  double getWidth() const { return m_width; }
  double getHeight() const { return m_height; }
  double getMag() const { return m_mag; }
  // The right and the lower edge lie one past the last pixel.
  double getLowerRightCol() const { return m_column + m_width; }
  double getLowerRightRow() const { return m_row + m_height; }
  double getUpperRightCol() const { return getLowerRightCol(); }
  double getUpperRightRow() const { return m_row; }
  double getLowerLeftCol() const { return m_column; }
  double getLowerLeftRow() const { return getLowerRightRow(); }
  double getCenterCol() const { return m_column + m_width / 2; }
  double getCenterRow() const { return m_row + m_height / 2; }

  /// Whole columns and rows: the difference of the rounded edges, not the rounded size, so that
  /// adjacent scenes tile without gaps or overlaps. Never negative, at most 0x7FFFFFFF.
  gr_int32 getNumCols() const;
  gr_int32 getNumRows() const;
  gr_int32 getUpperLeftIntCol() const { return round(m_column); }
  gr_int32 getUpperLeftIntRow() const { return round(m_row); }
  gr_int32 getLowerRightIntCol() const;
  gr_int32 getLowerRightIntRow() const;
  gr_int32 getCenterIntCol() const;
  gr_int32 getCenterIntRow() const;

  void getUpperLeft(double& column, double& row) const;
  void getUpperLeft(gr_int32& column, gr_int32& row) const;
  void getLowerRight(double& column, double& row) const;
  void getLowerRight(gr_int32& column, gr_int32& row) const;
  void getSize(double& width, double& height) const;
  void getSize(gr_int32& numCols, gr_int32& numRows) const;

  /// A new scene, cut to (0, 0, width, height); the magnification stays.
  GRIScene clip(double width, double height) const;

 protected:
  double m_column = 0.0;
  double m_row = 0.0;
  double m_width = 0.0;
  double m_height = 0.0;
  double m_mag = -1.0;
};
