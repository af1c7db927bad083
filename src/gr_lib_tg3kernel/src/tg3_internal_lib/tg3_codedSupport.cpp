#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_codedSupport.h"

#include <algorithm>

namespace {

constexpr TG3CodedRange EMPTY_RANGE{.first = 1, .last = 0};

// The coefficients, `halvings` levels below the visible image, that pixels `lower` to `upper` of it
// are made of.
// @param size  of the whole image where it counts as full size, in columns or rows
void reachedCoefficients(gr_int64 lower, gr_int64 upper, gr_int64 size, gr_int32 halvings,
                         bool isHigh, gr_int32& first, gr_int32& last) {
  if (halvings == 0) {
    first = static_cast<gr_int32>(lower);
    last = static_cast<gr_int32>(upper);
    return;
  }
  const gr_int64 high = isHigh ? 1 : 0;
  const gr_int64 bandSize = size - (isHigh ? gr_int64{1} << (halvings - 1) : 0);
  first = static_cast<gr_int32>(std::max<gr_int64>((lower >> halvings) - high, 0));
  const gr_int64 end =
      upper == 0 ? 0 : std::min(((upper - 1) >> halvings) + 1, (bandSize - 1) >> halvings);
  last = static_cast<gr_int32>(end);
}

// The part of `blockFirst` to `blockLast` that lies in `first` to `last`.
TG3CodedRange relativeRange(gr_int32 blockFirst, gr_int32 blockLast, gr_int32 first,
                            gr_int32 last) {
  const gr_int32 from = std::max(blockFirst, first);
  const gr_int32 to = std::min(blockLast, last);
  if (to < from) return EMPTY_RANGE;
  return {.first = static_cast<gr_uint32>(from - blockFirst),
          .last = static_cast<gr_uint32>(to - blockFirst)};
}

}  // namespace

TG3Rect tg3_codedSupport(const TG3ImageInfo& info, gr_uint32 subband) {
  TG3Rect coded;
  coded.right = static_cast<gr_int32>(info.getSubbandColumns(subband)) - 1;
  coded.bottom = static_cast<gr_int32>(info.getSubbandRows(subband)) - 1;
  if (!info.hasVirtualImageProps) return coded;

  const gr_int32 levelsAbove = static_cast<gr_int32>(TG3ImageInfo::getLevel(subband)) - 1;
  const gr_int32 halvings = info.numLevels - levelsAbove - info.numLevelsRemoved;
  if (halvings < 0) return {};
  const TG3Rect visible = info.getVirtualSupport(0);
  const TG3Rect whole = info.getSupport(info.numLevelsRemoved);
  reachedCoefficients(visible.left, visible.right, whole.width(), halvings,
                      TG3ImageInfo::isHighInX(subband), coded.left, coded.right);
  reachedCoefficients(visible.top, visible.bottom, whole.height(), halvings,
                      TG3ImageInfo::isHighInY(subband), coded.top, coded.bottom);
  return coded;
}

void tg3_codedRanges(const TG3Rect& subblock, const TG3Rect& coded, TG3CodedRange& columns,
                     TG3CodedRange& rows) {
  columns = relativeRange(subblock.left, subblock.right, coded.left, coded.right);
  rows = relativeRange(subblock.top, subblock.bottom, coded.top, coded.bottom);
}
