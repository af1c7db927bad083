#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockLocator.h"

#include <algorithm>

namespace {

struct Span {
  gr_int32 first;
  gr_int32 last;
};

/// The coefficients of a band that the samples `first` to `last` of `size` are made of: those at
/// their own places, and what the 5/3 synthesis takes from beside.
Span supportOf(gr_int32 first, gr_int32 last, gr_int32 size, bool isHigh) {
  const gr_int64 low = isHigh ? 0 : 1;
  const gr_int64 from = gr_int64{first} - (first % 2 + 1) + low;
  const gr_int64 to = std::min<gr_int64>(gr_int64{last} + last % 2 + 1, gr_int64{size} - 2 + low);
  return {static_cast<gr_int32>(std::max<gr_int64>(from, 0) / 2), static_cast<gr_int32>(to / 2)};
}

TG3Rect supportOf(const TG3Rect& rectangle, const TG3Rect& whole, bool isHighInX, bool isHighInY) {
  const Span columns = supportOf(rectangle.left, rectangle.right, whole.right + 1, isHighInX);
  const Span rows = supportOf(rectangle.top, rectangle.bottom, whole.bottom + 1, isHighInY);
  return {columns.first, rows.first, columns.last, rows.last};
}

bool isInside(const TG3Rect& rectangle, const TG3Rect& whole) {
  return rectangle.left >= 0 && rectangle.top >= 0 && !rectangle.isEmpty() &&
         rectangle.right <= whole.right && rectangle.bottom <= whole.bottom;
}

}  // namespace

bool TG3SubblockLocator::isInRange(gr_uint32 subband) const {
  // Without levels the only subband is the image, at scale 0.
  const gr_int32 level =
      m_info.numLevels == 0 ? 0 : static_cast<gr_int32>(TG3ImageInfo::getLevel(subband));
  const gr_int32 scale = m_info.numLevels - level;
  return scale >= m_scaleMin && scale <= m_scaleMax;
}

TG3Rect TG3SubblockLocator::getSupport(gr_uint32 subband) const {
  return {0, 0, static_cast<gr_int32>(m_info.getSubbandColumns(subband)) - 1,
          static_cast<gr_int32>(m_info.getSubbandRows(subband)) - 1};
}

bool TG3SubblockLocator::meetsPartly(gr_uint32 subband, gr_uint32 subblock) const {
  if (!meets(subband, subblock)) return false;
  const TG3Rect block = m_info.getSubblockRect(subband, subblock);
  const TG3Rect support = getSupport(subband);
  return block.left < support.left || block.top < support.top || block.right > support.right ||
         block.bottom > support.bottom;
}

float TG3SubblockLocator::getContribution(gr_uint32 subband, gr_uint32 subblock) const {
  if (!isInRange(subband)) return 0;
  const TG3Rect block = m_info.getSubblockRect(subband, subblock);
  const TG3Rect support = getSupport(subband);
  const gr_int64 columns =
      gr_int64{std::min(block.right, support.right)} - std::max(block.left, support.left) + 1;
  const gr_int64 rows =
      gr_int64{std::min(block.bottom, support.bottom)} - std::max(block.top, support.top) + 1;
  if (columns <= 0 || rows <= 0) return 0;
  const auto size = static_cast<float>(m_info.subblockSize);
  return static_cast<float>(columns) / size * (static_cast<float>(rows) / size);
}

GR_STATUS TG3SubblockRectLocator::initialize(const TG3Rect& rectangle, gr_int32 scaleMin,
                                             gr_int32 scaleMax) {
  const gr_int32 removed = m_info.numLevelsRemoved;
  const gr_int32 visibleLevels = m_info.numLevels - removed;
  if (scaleMin < 0 || scaleMax > visibleLevels || scaleMin > scaleMax || rectangle.left < 0 ||
      rectangle.top < 0) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  const TG3Rect visible = m_info.getVirtualSupport(scaleMin);
  const TG3Rect atScale = m_info.getSupport(scaleMin + removed);
  // The size of the image bounds the sums as well.
  if (rectangle.right > atScale.right || rectangle.bottom > atScale.bottom) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  const gr_int64 right = gr_int64{rectangle.right} + visible.left;
  const gr_int64 bottom = gr_int64{rectangle.bottom} + visible.top;
  if (right > atScale.right || bottom > atScale.bottom) return TG3_STATUS_BAD_ARGUMENT;
  const TG3Rect wanted = {rectangle.left + visible.left, rectangle.top + visible.top,
                          static_cast<gr_int32>(right), static_cast<gr_int32>(bottom)};
  if (!isInside(wanted, atScale)) return TG3_STATUS_BAD_ARGUMENT;

  m_scaleMin = scaleMin + removed;
  m_scaleMax = scaleMax + removed;
  TG3Rect reached = wanted;
  for (gr_int32 scale = 0; scale < m_info.numLevels; ++scale) {
    const gr_uint32 finest = 4 * (m_info.numLevels - static_cast<gr_uint32>(scale));
    const TG3Rect whole = m_info.getSupport(scale);
    const bool inRange = scale >= m_scaleMin && scale <= m_scaleMax;
    const TG3Rect& from = inRange ? reached : whole;
    for (gr_uint32 subband = finest - 3; subband <= finest; ++subband) {
      m_supports[subband] = supportOf(from, whole, TG3ImageInfo::isHighInX(subband),
                                      TG3ImageInfo::isHighInY(subband));
    }
    if (inRange) reached = m_supports[finest - 3];
  }
  m_supports[0] = m_info.numLevels == 0 ? wanted : m_supports[1];
  return GR_STATUS_OK;
}
