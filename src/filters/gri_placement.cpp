#include "filters/gri_placement.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr double LEAST_SIZE = 1e-08;  // what overlaps must be larger, in pixels

// Columns or rows.
struct Range {
  gr_int64 place = 0;  // of the first one in the scene
  gr_int64 first = 0;  // of the image
  gr_int64 count = 0;
};

GR_STATUS placeRange(double sceneBegin, double sceneEnd, double offset, gr_uint32 size,
                     Range& range) {
  const double begin = std::max(sceneBegin - offset, 0.0);
  const double end = std::min<double>(sceneEnd - offset, size);
  if (!(end - begin > LEAST_SIZE)) return GR_STATUS_OK;  // no number counts as nothing, too
  const gr_int64 first = GRIScene::round(begin);
  gr_int64 count = GRIScene::round(end) - first;
  if (count <= 0) return GR_STATUS_OK;
  gr_int64 place = sceneBegin < offset ? -gr_int64{GRIScene::round(sceneBegin - offset)} : 0;
  const gr_int64 available = gr_int64{GRIScene::round(sceneEnd)} - GRIScene::round(sceneBegin);
  const gr_int64 overshoot = place + count - available;
  if (overshoot > 1) return GRI_STATUS_FILTER_SCENE_EMPTY;
  if (overshoot == 1) {
    // Half a pixel was rounded up at both ends.
    if (place > 0) {
      --place;
    } else {
      --count;
    }
  }
  if (count > 0) range = {place, first, count};
  return GR_STATUS_OK;
}

}  // namespace

GR_STATUS GRIPlacement::initialize(const GRIScene& scene, double xOffset, double yOffset,
                                   gr_uint32 width, gr_uint32 height) {
  *this = GRIPlacement();
  Range columns;
  Range rows;
  GR_RETURN_IF_FAILED(
      placeRange(scene.getUpperLeftCol(), scene.getLowerRightCol(), xOffset, width, columns));
  GR_RETURN_IF_FAILED(
      placeRange(scene.getUpperLeftRow(), scene.getLowerRightRow(), yOffset, height, rows));
  if (columns.count == 0 || rows.count == 0) return GR_STATUS_OK;
  left = static_cast<gr_int32>(columns.place);
  top = static_cast<gr_int32>(rows.place);
  numCols = static_cast<gr_int32>(columns.count);
  numRows = static_cast<gr_int32>(rows.count);
  imageScene =
      GRIScene(static_cast<double>(columns.first), static_cast<double>(rows.first),
               static_cast<double>(columns.count), static_cast<double>(rows.count), scene.getMag());
  return GR_STATUS_OK;
}
