#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"

#include <algorithm>
#include <cassert>
#include <limits>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"

namespace {

constexpr gr_int32 MAX_LEVEL = 31;

// How many samples a line of `size` has `level` halvings down, or -`level` doublings up.
gr_int64 sizeAtLevel(gr_int64 size, gr_int32 level) {
  return level < 0 ? size << -level : ((size - 1) >> level) + 1;
}

// Where the window of one axis lies at a level.
struct Span {
  gr_int64 first;
  gr_int64 last;
};
Span windowAtLevel(gr_int32 first, gr_int32 last, gr_uint32 wholeSize, gr_int32 level,
                   gr_int32 totalLevel) {
  const gr_int64 start = level < 0 ? gr_int64{first} << -level : gr_int64{first} >> level;
  const gr_int64 size = sizeAtLevel(gr_int64{last} - first + 1, level);
  return {start, std::min(start + size - 1, sizeAtLevel(wholeSize, totalLevel) - 1)};
}

}  // namespace

TG2DBInfo::~TG2DBInfo() = default;

GR_STATUS TG2DBInfo::lockIfShared() { return m_isShared ? lock() : GR_STATUS_OK; }
GR_STATUS TG2DBInfo::unlockIfShared() { return m_isShared ? unlock() : GR_STATUS_OK; }

GR_STATUS TG2DBInfo::lock() {
  m_mutex.lock();
  return GR_STATUS_OK;
}

GR_STATUS TG2DBInfo::unlock() {
  m_mutex.unlock();
  return GR_STATUS_OK;
}

GR_STATUS TG2DBInfo::getLevelSupport(gr_int32 level, TG2Rect& rect) const {
  const gr_int32 totalLevel = m_supportLevel + level;
  if (level < -MAX_LEVEL || level > MAX_LEVEL || totalLevel > MAX_LEVEL) {
    return TG2_STATUS_LEVEL_TOO_LARGE;
  }
  const Span x = windowAtLevel(m_supportRect.x0, m_supportRect.x1, m_width, level, totalLevel);
  const Span y = windowAtLevel(m_supportRect.y0, m_supportRect.y1, m_height, level, totalLevel);
  constexpr gr_int64 LAST = std::numeric_limits<gr_int32>::max();
  if (x.last > LAST || y.last > LAST) return TG2_STATUS_SUPPORT_TOO_LARGE;
  rect = {static_cast<gr_int32>(x.first), static_cast<gr_int32>(y.first),
          static_cast<gr_int32>(x.last), static_cast<gr_int32>(y.last)};
  return GR_STATUS_OK;
}

GR_STATUS TG2DBInfo::getSupport(const TG2Rect& sceneRect, gr_int32 level, TG2Rect& rect,
                                gr_int32& totalLevel) const {
  TG2Rect support;
  GR_RETURN_IF_FAILED(getLevelSupport(level, support));
  if (sceneRect.isEmpty() || sceneRect.x0 < 0 || sceneRect.y0 < 0 ||
      sceneRect.x1 >= support.getWidth() || sceneRect.y1 >= support.getHeight()) {
    return TG2_STATUS_SUPPORT_TOO_LARGE;
  }
  rect = {support.x0 + sceneRect.x0, support.y0 + sceneRect.y0, support.x0 + sceneRect.x1,
          support.y0 + sceneRect.y1};
  totalLevel = m_supportLevel + level;
  return GR_STATUS_OK;
}

void TG2DBInfo::getSubbandSize(gr_uint32 i, gr_uint32& width, gr_uint32& height) const {
  width = 0;
  height = 0;
  if (i >= getNumSubbands()) return;
  if (i == 0) {
    width = static_cast<gr_uint32>(sizeAtLevel(m_width, static_cast<gr_int32>(m_numLevels)));
    height = static_cast<gr_uint32>(sizeAtLevel(m_height, static_cast<gr_int32>(m_numLevels)));
    return;
  }
  // The three subbands of a level come in the order high columns, high rows, both high.
  const gr_int32 parentLevel = static_cast<gr_int32>(m_numLevels - 1 - (i - 1) / 3);
  const gr_uint32 which = (i - 1) % 3;
  const auto parentWidth = static_cast<gr_uint32>(sizeAtLevel(m_width, parentLevel));
  const auto parentHeight = static_cast<gr_uint32>(sizeAtLevel(m_height, parentLevel));
  width = which == 1 ? (parentWidth + 1) / 2 : parentWidth / 2;
  height = which == 0 ? (parentHeight + 1) / 2 : parentHeight / 2;
}
