#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace {

constexpr gr_uint32 MAX_SUBBLOCKS_PER_SIDE = 0xFFFF;

constexpr gr_int64 MAX_COORDINATE = std::numeric_limits<gr_int32>::max();

// The last of `count` columns or rows from `first` on.
gr_int32 limitedLast(gr_int64 first, gr_uint64 count) {
  const gr_int64 start = std::min(first, MAX_COORDINATE);
  const gr_uint64 room = static_cast<gr_uint64>(MAX_COORDINATE - start) + 1;
  return static_cast<gr_int32>(start - 1 + static_cast<gr_int64>(std::min(count, room)));
}

// A rectangle, cut to coordinates of 31 bits.
TG3Rect limitedRect(gr_int64 left, gr_int64 top, gr_uint64 width, gr_uint64 height) {
  return {static_cast<gr_int32>(std::min(left, MAX_COORDINATE)),
          static_cast<gr_int32>(std::min(top, MAX_COORDINATE)), limitedLast(left, width),
          limitedLast(top, height)};
}

}  // namespace

TG3Datatype tg3_datatypeOfDomainBits(gr_uint8 domainBits) {
  switch (domainBits) {
    case 8:
      return TG3_DATATYPE_UINT8;
    case 7:
      return TG3_DATATYPE_SINT8;
    case 16:
      return TG3_DATATYPE_UINT16;
    case 15:
      return TG3_DATATYPE_SINT16;
    case 32:
      return TG3_DATATYPE_UINT32;
    case 31:
      return TG3_DATATYPE_SINT32;
    case 64:
      return TG3_DATATYPE_UINT64;
    case 63:
      return TG3_DATATYPE_SINT64;
    case 24:
      return TG3_DATATYPE_FLOAT32;
    case 48:
      return TG3_DATATYPE_FLOAT64;
    default:
      return TG3_DATATYPE_INVALID;
  }
}

gr_uint64 tg3_sizeAtScale(gr_uint64 n, gr_int32 scale) {
  if (n == 0) return 0;
  if (scale > 0) return scale > 63 ? 1 : ((n - 1) >> scale) + 1;
  constexpr gr_uint64 MAX = std::numeric_limits<gr_uint64>::max();
  if (scale < -63 || n > MAX >> -scale) return MAX;
  return n << -scale;
}

gr_int64 tg3_coordinateAtScale(gr_int64 n, gr_int32 scale) {
  assert(n >= 0);
  if (scale > 0) return scale > 62 ? 0 : n >> scale;
  constexpr gr_int64 MAX = std::numeric_limits<gr_int64>::max();
  if (n == 0) return 0;
  if (scale < -62 || n > MAX >> -scale) return MAX;
  return n << -scale;
}

GR_STATUS TG3ImageInfo::setSubband(gr_uint32 subband, gr_uint32 columns, gr_uint32 rows) {
  const auto numBlocks = [this](gr_uint32 samples) {
    return (gr_uint64{samples} + subblockSize - 1) / subblockSize;
  };
  const gr_uint64 blockColumns = numBlocks(columns);
  const gr_uint64 blockRows = numBlocks(rows);
  if (blockColumns > MAX_SUBBLOCKS_PER_SIDE || blockRows > MAX_SUBBLOCKS_PER_SIDE) {
    return TG3_STATUS_FORMAT_ERROR;
  }
  m_subbands[subband] = {columns, rows, static_cast<gr_uint16>(blockRows),
                         static_cast<gr_uint16>(blockColumns)};
  m_totalSubblocks += blockColumns * blockRows;
  return GR_STATUS_OK;
}

GR_STATUS TG3ImageInfo::initializeSubbands() {
  if (width == 0 || height == 0 || width > MAX_SIZE || height > MAX_SIZE ||
      numLevels > MAX_LEVELS || numComponents == 0 || numPlanes == 0 || numPlanes > MAX_PLANES ||
      subblockSize == 0) {
    return TG3_STATUS_FORMAT_ERROR;
  }
  m_totalSubblocks = 0;
  gr_uint32 columns = width;
  gr_uint32 rows = height;
  for (gr_uint32 level = numLevels; level > 0; --level) {
    const gr_uint32 lowColumns = (columns + 1) >> 1;
    const gr_uint32 lowRows = (rows + 1) >> 1;
    GR_RETURN_IF_FAILED(setSubband(4 * level, columns >> 1, rows >> 1));
    GR_RETURN_IF_FAILED(setSubband(4 * level - 1, lowColumns, rows >> 1));
    GR_RETURN_IF_FAILED(setSubband(4 * level - 2, columns >> 1, lowRows));
    GR_RETURN_IF_FAILED(setSubband(4 * level - 3, lowColumns, lowRows));
    columns = lowColumns;
    rows = lowRows;
  }
  GR_RETURN_IF_FAILED(setSubband(0, columns, rows));
  virtualSupport = getSupport(0);
  return GR_STATUS_OK;
}

GR_STATUS TG3ImageInfo::initializeVirtualSupport(const TG3Rect& support, gr_uint8 levelsRemoved) {
  const TG3Rect whole = getSupport(0);
  if (support.left < 0 || support.top < 0 || support.isEmpty() || support.right > whole.right ||
      support.bottom > whole.bottom || levelsRemoved > numLevels) {
    return TG3_STATUS_FORMAT_ERROR;
  }
  virtualSupport = support;
  numLevelsRemoved = levelsRemoved;
  hasVirtualImageProps = levelsRemoved != 0 || support != whole;
  return GR_STATUS_OK;
}

gr_uint32 TG3ImageInfo::getSubblockIndex(gr_uint32 subband, gr_uint32 row, gr_uint32 column) const {
  assert(row < getSubblockRows(subband) && column < getSubblockColumns(subband));
  return row * getSubblockColumns(subband) + column;
}

gr_uint32 TG3ImageInfo::getSubblockRow(gr_uint32 subband, gr_uint32 subblock) const {
  assert(subblock < getNumSubblocks(subband));
  return subblock / getSubblockColumns(subband);
}

gr_uint32 TG3ImageInfo::getSubblockColumn(gr_uint32 subband, gr_uint32 subblock) const {
  assert(subblock < getNumSubblocks(subband));
  return subblock % getSubblockColumns(subband);
}

TG3Rect TG3ImageInfo::getSubblockRect(gr_uint32 subband, gr_uint32 subblock) const {
  const gr_uint32 left = getSubblockColumn(subband, subblock) * subblockSize;
  const gr_uint32 top = getSubblockRow(subband, subblock) * subblockSize;
  const gr_uint32 right = std::min(left + subblockSize, getSubbandColumns(subband)) - 1;
  const gr_uint32 bottom = std::min(top + subblockSize, getSubbandRows(subband)) - 1;
  return {static_cast<gr_int32>(left), static_cast<gr_int32>(top), static_cast<gr_int32>(right),
          static_cast<gr_int32>(bottom)};
}

TG3Rect TG3ImageInfo::getSupport(gr_int32 actualScale) const {
  return limitedRect(0, 0, tg3_sizeAtScale(width, actualScale),
                     tg3_sizeAtScale(height, actualScale));
}

TG3Rect TG3ImageInfo::getVirtualSupport(gr_int32 visibleScale) const {
  const gr_int32 scale = visibleScale + numLevelsRemoved;
  const TG3Rect& support = virtualSupport;
  return limitedRect(tg3_coordinateAtScale(support.left, scale),
                     tg3_coordinateAtScale(support.top, scale),
                     tg3_sizeAtScale(static_cast<gr_uint64>(support.width()), scale),
                     tg3_sizeAtScale(static_cast<gr_uint64>(support.height()), scale));
}

gr_uint32 TG3ImageInfo::getVisibleWidth() const {
  return static_cast<gr_uint32>(getVirtualSupport(0).width());
}

gr_uint32 TG3ImageInfo::getVisibleHeight() const {
  return static_cast<gr_uint32>(getVirtualSupport(0).height());
}

gr_uint32 TG3ImageInfo::getDynamicRangeBits() const {
  gr_int64 range = gr_int64{std::max(dynamicRangeMax, 0)} - std::min(dynamicRangeMin, 0);
  gr_uint32 bits = 0;
  for (; range != 0; range >>= 1) ++bits;
  return bits;
}

gr_uint32 TG3ImageInfo::getMaxLevels(gr_uint32 columns, gr_uint32 rows) {
  const gr_uint64 shorter = std::min(columns, rows);
  gr_uint32 n = 1;
  while ((gr_uint64{1} << (n + 1)) < shorter) ++n;
  return n - 1;
}
