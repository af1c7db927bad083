#include "image/gri_scene.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace {

constexpr gr_int64 LARGEST = std::numeric_limits<gr_int32>::max();
constexpr gr_int64 SMALLEST = std::numeric_limits<gr_int32>::min();

gr_int32 limited(gr_int64 value) {
  return static_cast<gr_int32>(std::clamp(value, SMALLEST, LARGEST));
}

/// round(end) - round(begin), which the caller's numbers make 0 or more.
gr_int32 span(double begin, double end) {
  const gr_int64 count = gr_int64{GRIScene::round(end)} - GRIScene::round(begin);
  assert(count >= 0);
  return limited(std::max<gr_int64>(count, 0));
}

}  // namespace

GRIScene::GRIScene(double column, double row, double width, double height, double mag)
    : m_column(column), m_row(row), m_width(width), m_height(height), m_mag(mag) {
  assert(width >= 0.0);
  assert(height >= 0.0);
  assert(mag > 0.0);
}

gr_int32 GRIScene::round(double v) {
  const double rounded = std::floor(v + 0.5);
  if (std::isnan(rounded)) return 0;
  return static_cast<gr_int32>(
      std::clamp(rounded, static_cast<double>(SMALLEST), static_cast<double>(LARGEST)));
}

gr_int32 GRIScene::getNumCols() const { return span(m_column, m_column + m_width); }

gr_int32 GRIScene::getNumRows() const { return span(m_row, m_row + m_height); }

gr_int32 GRIScene::getLowerRightIntCol() const {
  return limited(gr_int64{round(m_column)} + getNumCols());
}

gr_int32 GRIScene::getLowerRightIntRow() const {
  return limited(gr_int64{round(m_row)} + getNumRows());
}

// The rounded upper left plus the rounded distance: the upper left cancels out.
gr_int32 GRIScene::getCenterIntCol() const { return round(getCenterCol()); }

gr_int32 GRIScene::getCenterIntRow() const { return round(getCenterRow()); }

void GRIScene::getUpperLeft(double& column, double& row) const {
  column = m_column;
  row = m_row;
}

void GRIScene::getUpperLeft(gr_int32& column, gr_int32& row) const {
  column = getUpperLeftIntCol();
  row = getUpperLeftIntRow();
}

void GRIScene::getLowerRight(double& column, double& row) const {
  column = getLowerRightCol();
  row = getLowerRightRow();
}

void GRIScene::getLowerRight(gr_int32& column, gr_int32& row) const {
  column = getLowerRightIntCol();
  row = getLowerRightIntRow();
}

void GRIScene::getSize(double& width, double& height) const {
  width = m_width;
  height = m_height;
}

void GRIScene::getSize(gr_int32& numCols, gr_int32& numRows) const {
  numCols = getNumCols();
  numRows = getNumRows();
}

GRIScene GRIScene::clip(double width, double height) const {
  // In this order, no number becomes 0.
  const auto cut = [](double edge, double end) { return std::max(0.0, std::min(edge, end)); };
  GRIScene clipped = *this;
  clipped.m_column = cut(m_column, width);
  clipped.m_row = cut(m_row, height);
  clipped.m_width = std::max(0.0, cut(getLowerRightCol(), width) - clipped.m_column);
  clipped.m_height = std::max(0.0, cut(getLowerRightRow(), height) - clipped.m_row);
  return clipped;
}
