#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_sceneGeometry.h"

#include "gr_lib_utils/include/gr_status.h"

namespace {

// Moves the range `first` to `last`; false when that leaves the `size` columns or rows there are.
bool place(gr_int64 first, gr_int64 last, gr_int64 offset, gr_uint64 size, TG3Range& range) {
  const gr_int64 limit = static_cast<gr_int64>(size) - offset;
  if (first < -offset || last < first || last >= limit) return false;
  range.first = static_cast<gr_uint32>(first + offset);
  range.last = static_cast<gr_uint32>(last + offset);
  return true;
}

}  // namespace

GR_STATUS tg3_locateScene(const TG3ImageInfo& info, const TG3VisibleRect& rect,
                          gr_int32 visibleScale, Pipe::Geometry& geometry) {
  const gr_int32 levels = info.numLevels;
  const gr_int32 removed = info.numLevelsRemoved;
  if (visibleScale > levels - removed) return TG3_STATUS_BAD_ARGUMENT;
  const gr_int32 scale = visibleScale + removed;

  const gr_uint64 width = tg3_sizeAtScale(info.width, scale);
  const gr_uint64 height = tg3_sizeAtScale(info.height, scale);
  if (width > TG3ImageInfo::MAX_SIZE || height > TG3ImageInfo::MAX_SIZE) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  Pipe::Geometry located;
  located.scale = scale;
  located.levels = static_cast<gr_uint32>(levels - scale);
  located.components = info.numComponents;
  located.width = static_cast<gr_uint32>(width);
  located.height = static_cast<gr_uint32>(height);

  const gr_int64 offsetX = tg3_coordinateAtScale(info.virtualSupport.left, scale);
  const gr_int64 offsetY = tg3_coordinateAtScale(info.virtualSupport.top, scale);
  if (!place(rect.left, rect.right, offsetX, width, located.columns) ||
      !place(rect.top, rect.bottom, offsetY, height, located.rows)) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  geometry = located;
  return GR_STATUS_OK;
}
