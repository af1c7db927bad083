/// @file
/// TG2Rect, a rectangle of samples with inclusive corners.
#pragma once

#include <algorithm>

#include "gr_lib_utils/include/gr_types.h"

/// Columns x0 to x1 and rows y0 to y1. An empty one has x1 below x0 or y1 below y0; it is empty at
/// first.
struct TG2Rect {
  gr_int32 x0 = 0;
  gr_int32 y0 = 1;
  gr_int32 x1 = -1;
  gr_int32 y1 = 0;

  // 64 bits: corners may be as far apart as 32 bits allow.
  gr_int64 getWidth() const { return gr_int64{x1} - x0 + 1; }
  gr_int64 getHeight() const { return gr_int64{y1} - y0 + 1; }
  bool isEmpty() const { return x1 < x0 || y1 < y0; }
  /// Whether `other`, which isn't empty, lies in this one.
  bool contains(const TG2Rect& other) const {
    return other.x0 >= x0 && other.y0 >= y0 && other.x1 <= x1 && other.y1 <= y1;
  }
  /// What both have in common; empty in one way or another when that is nothing.
  TG2Rect intersect(const TG2Rect& other) const {
    return {std::max(x0, other.x0), std::max(y0, other.y0), std::min(x1, other.x1),
            std::min(y1, other.y1)};
  }
  /// The smallest rectangle that holds both, neither of which is empty.
  TG2Rect unite(const TG2Rect& other) const {
    return {std::min(x0, other.x0), std::min(y0, other.y0), std::max(x1, other.x1),
            std::max(y1, other.y1)};
  }
  bool operator==(const TG2Rect&) const = default;
};
