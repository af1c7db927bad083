/// @file
/// NITFImageRect, a rectangle of whole pixels.
#pragma once

#include <algorithm>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_scene.h"

/// Columns from left up to, not including, right; rows from top up to, not including, bottom.
struct NITFImageRect {
  gr_uint32 left = 0;
  gr_uint32 top = 0;
  gr_uint32 right = 0;
  gr_uint32 bottom = 0;

  gr_uint32 numCols() const { return right - left; }
  gr_uint32 numRows() const { return bottom - top; }
  bool isEmpty() const { return left >= right || top >= bottom; }
  bool contains(const NITFImageRect& other) const {
    return other.left >= left && other.right <= right && other.top >= top && other.bottom <= bottom;
  }
  NITFImageRect intersect(const NITFImageRect& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
  }
};

/// The pixels of a scene at magnification 1.
/// @return 0; 50014 when they don't all lie in an image of `width` by `height`
[[nodiscard]] inline GR_STATUS nitf_rectOfScene(const GRIScene& scene, gr_uint32 width,
                                                gr_uint32 height, NITFImageRect& rect) {
  const gr_int64 left = scene.getUpperLeftIntCol();
  const gr_int64 top = scene.getUpperLeftIntRow();
  const gr_int64 right = left + scene.getNumCols();
  const gr_int64 bottom = top + scene.getNumRows();
  if (left < 0 || top < 0 || right > width || bottom > height) {
    return GRI_STATUS_SCENE_OUT_OF_RANGE;
  }
  rect = {static_cast<gr_uint32>(left), static_cast<gr_uint32>(top), static_cast<gr_uint32>(right),
          static_cast<gr_uint32>(bottom)};
  return GR_STATUS_OK;
}
