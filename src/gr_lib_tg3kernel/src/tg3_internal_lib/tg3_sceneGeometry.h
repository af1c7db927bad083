/// @file
/// Where a scene lies in the wavelet levels of an image.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipe.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_utils/include/gr_types.h"

/// A rectangle of the visible image, both corners included: of what is left after columns and rows
/// were cut off and the finest levels removed. The corners may lie anywhere.
struct TG3VisibleRect {
  gr_int64 left = 0;
  gr_int64 top = 0;
  gr_int64 right = -1;
  gr_int64 bottom = -1;
};

/// Turns a rectangle of the visible image into one of the whole image, at a scale that counts the
/// removed levels too, and works out what the synthesis needs to know of the image there.
///
/// @param visibleScale  halvings from the visible image at full size, negative for an enlarged one;
///                      the rectangle is in pixels at this scale
/// @param geometry      receives the result; left alone on failure
/// @return 0; 2009 when the image hasn't so many levels, when the rectangle is inverted or leaves
///         the whole image, or when the image at that scale passes 2^31 - 1 columns or rows
[[nodiscard]] GR_STATUS tg3_locateScene(const TG3ImageInfo& info, const TG3VisibleRect& rect,
                                        gr_int32 visibleScale, Pipe::Geometry& geometry);
