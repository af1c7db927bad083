/// @file
/// GRIPlacement, where an image lands in a scene of the frame around it.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_scene.h"

/// The part of a scene that an image covers, in whole pixels of the scene, and the scene of the
/// image that shows there.
///
/// Both are in whole pixels, so that a pixel of the image always lands on the same pixel of the
/// frame, whichever scene it is decoded for (as long as scenes begin at whole pixels). An image
/// that begins in the middle of a pixel goes to the left and up.
struct GRIPlacement {
  gr_int32 left = 0;     ///< columns from the left side of the scene
  gr_int32 top = 0;      ///< rows from its top
  gr_int32 numCols = 0;  ///< 0 where the image doesn't touch the scene
  gr_int32 numRows = 0;
  GRIScene imageScene;  ///< in pixels of the image, of this size

  bool isEmpty() const { return numCols == 0; }

  /// @param scene             of the frame
  /// @param xOffset, yOffset  of the image in the frame, in pixels at the scene's magnification
  /// @param width, height     of the image at the scene's magnification
  /// @return 0; 50232 when the image's pixels pass the scene by more than rounding explains
  [[nodiscard]] GR_STATUS initialize(const GRIScene& scene, double xOffset, double yOffset,
                                     gr_uint32 width, gr_uint32 height);
};
