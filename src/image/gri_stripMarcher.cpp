#include "image/gri_stripMarcher.h"

#include <cassert>
#include <cmath>
#include <limits>

namespace {

constexpr double UP = std::numeric_limits<double>::infinity();

gr_int32 countStrips(gr_int64 numRows, gr_int32 stripHeight) {
  return static_cast<gr_int32>((numRows + stripHeight - 1) / stripHeight);
}

/// `row`, or the next double beside it that rounds to `wanted`. Adding whole rows to a row that
/// lies just below a half can arrive at the half itself, which rounds the other way.
double rowThatRoundsTo(gr_int64 wanted, double row) {
  const gr_int64 rounded = GRIScene::round(row);
  if (rounded == wanted) return row;
  return std::nextafter(row, rounded > wanted ? -UP : UP);
}

}  // namespace

GRIStripMarcher::GRIStripMarcher(const GRIScene& fullScene, gr_int32 stripHeight)
    : m_fullScene(fullScene),
      m_stripHeight(stripHeight),
      m_numStrips(countStrips(fullScene.getNumRows(), stripHeight)) {}

GRIScene GRIStripMarcher::getStripScene(gr_int32 number) const {
  assert(number >= 0 && number < m_numStrips);
  const bool isLast = number == m_numStrips - 1;
  if (isLast && number == 0) return m_fullScene;

  const gr_int64 offset = gr_int64{number} * m_stripHeight;
  const double firstRow = m_fullScene.getUpperLeftRow();
  const gr_int64 wantedTop = gr_int64{GRIScene::round(firstRow)} + offset;
  const double top = rowThatRoundsTo(wantedTop, firstRow + static_cast<double>(offset));
  double height = isLast ? m_fullScene.getLowerRightRow() - top : m_stripHeight;
  const gr_int64 wantedBottom =
      isLast ? GRIScene::round(m_fullScene.getLowerRightRow()) : wantedTop + m_stripHeight;
  // The same for the lower row, which is a sum that can't be stored: its addend moves by as much.
  const double bottom = top + height;
  height += rowThatRoundsTo(wantedBottom, bottom) - bottom;
  return {m_fullScene.getUpperLeftCol(), top, m_fullScene.getWidth(), height, m_fullScene.getMag()};
}
