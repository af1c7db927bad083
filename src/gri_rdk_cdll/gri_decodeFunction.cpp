// The exported function that decodes; what it does is documented in the public header.
#include <algorithm>
#include <cassert>
#include <cmath>

#include "gr_lib_utils/include/gr_status.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_handles.h"
#include "image/gri_imageStage.h"
#include "image/gri_pixel.h"
#include "image/gri_scene.h"
#include "image/gri_sceneBuffer.h"

namespace {

/// Whether the numbers of a caller make a scene. The caller has to see to that; where it didn't,
/// nothing must be made of them.
GR_STATUS checkSceneNumbers(double column, double row, double width, double height, double mag) {
  const bool isFinite = std::isfinite(column) && std::isfinite(row) && std::isfinite(width) &&
                        std::isfinite(height) && std::isfinite(mag);
  if (!isFinite || width < 0 || height < 0) return GRI_STATUS_SCENE_EMPTY;
  if (mag <= 0) return GRI_STATUS_SCENE_MAGNIFICATION;
  return GR_STATUS_OK;
}

}  // namespace

GR_STATUS gric_decode(gric_image image, double xUpperLeft, double yUpperLeft, double width,
                      double height, double magnification, void** bandData) {
  if (image == nullptr || bandData == nullptr) return GR_STATUS_NULL_ARGUMENT;
  const GR_STATUS status = checkSceneNumbers(xUpperLeft, yUpperLeft, width, height, magnification);
  assert(GR_SUCCESS(status));
  GR_RETURN_IF_FAILED(status);

  GRIImageStage& stage = gri_stageOf(image);
  const GRIPixel& pixelProps = stage.getPixelProps();
  void** const end = bandData + pixelProps.getNumBands();
  if (std::find(bandData, end, nullptr) != end) return GR_STATUS_NULL_ARGUMENT;

  const GRIScene scene(xUpperLeft, yUpperLeft, width, height, magnification);
  GRISceneBuffer buffer(pixelProps, static_cast<gr_uint32>(scene.getNumCols()),
                        static_cast<gr_uint32>(scene.getNumRows()), bandData);
  return stage.read(scene, buffer);
}
