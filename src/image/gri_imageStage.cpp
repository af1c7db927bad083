#include "image/gri_imageStage.h"

#include <cassert>
#include <limits>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_delegates.h"
#include "image/gri_navigator.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

/// Whether the last column and row of a scene have numbers of 32 bits. Those of larger images don't
/// all have: GRIScene::round gives the same for them.
bool hasWholeNumbers(const GRIScene& scene) {
  constexpr double LARGEST = std::numeric_limits<gr_int32>::max();
  return scene.getLowerRightCol() < LARGEST + 0.5 && scene.getLowerRightRow() < LARGEST + 0.5;
}

}  // namespace

GRIImageStage::~GRIImageStage() = default;

GR_STATUS GRIImageStage::read(const GRIScene& scene, GRISceneBuffer& buffer) {
  GR_RETURN_IF_FAILED(checkImpedance(scene, buffer));
  GR_RETURN_IF_FAILED(readBegin(scene));
  const GR_STATUS result = readStrips(buffer);
  const GR_STATUS end = readEnd();
  return GR_SUCCESS(result) ? end : result;
}

GR_STATUS GRIImageStage::checkImpedance(const GRIScene& scene, const GRISceneBuffer& buffer) const {
  if (static_cast<gr_uint32>(scene.getNumCols()) > buffer.getWindowNumCols() ||
      static_cast<gr_uint32>(scene.getNumRows()) > buffer.getWindowNumRows()) {
    return GRI_STATUS_SCENE_BUFFER_SIZE;
  }
  return getPixelProps().checkImpedance(buffer.getPixelProps());
}

GR_STATUS GRIImageStage::readStrips(GRISceneBuffer& buffer) {
  const GRIStripMarcher marcher = *m_stripMarcher;
  const gr_int64 firstRow = marcher.getFullScene().getUpperLeftIntRow();
  for (gr_int32 number = 0; number < marcher.getNumStrips(); ++number) {
    const GRIScene stripScene = marcher.getStripScene(number);
    const gr_uint32 rowOffset = static_cast<gr_uint32>(stripScene.getUpperLeftIntRow() - firstRow);
    const gr_uint32 numCols = static_cast<gr_uint32>(stripScene.getNumCols());
    const gr_uint32 numRows = static_cast<gr_uint32>(stripScene.getNumRows());
    if (numCols * numRows == 0) return GRI_STATUS_SCENE_TOO_LARGE;
    // Can't be: the strips tile the scene, which fits. But the scene is numbers of a host's, and a
    // window past the end would have the reader write there.
    if (gr_uint64{rowOffset} + numRows > buffer.getWindowNumRows() ||
        numCols > buffer.getWindowNumCols()) {
      return GRI_STATUS_SCENE_OUT_OF_RANGE;
    }
    try {
      GRISceneBuffer window(buffer, 0, rowOffset, numCols, numRows);
      GR_RETURN_IF_FAILED(readStrip(window, stripScene));
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIImageStage::checkScene(const GRIScene& scene) const {
  const double mag = scene.getMag();
  if (!(mag >= getMinMagnification() && mag <= getMaxMagnification())) {
    return GRI_STATUS_SCENE_MAGNIFICATION;
  }
  GRINavigator clipped(*this, scene);
  if (!GR_SUCCESS(clipped.setScene(scene, GRI_NAVIGATOR_CLIP))) return GRI_STATUS_SCENE_EMPTY;
  const GRIScene& cut = clipped;
  if (!hasWholeNumbers(cut)) return GRI_STATUS_SCENE_TOO_LARGE;
  if (cut == scene) return GR_STATUS_OK;
  GRINavigator given(*this, scene);
  given.roundScene();
  clipped.roundScene();
  const GRIScene& whole = given;
  return cut == whole ? GR_STATUS_OK : GRI_STATUS_SCENE_OUT_OF_RANGE;
}

GR_STATUS GRIImageStage::readBegin(const GRIScene& scene) {
  GR_RETURN_IF_FAILED(checkScene(scene));
  const gr_uint32 stripHeight = getStripHeight();
  if (stripHeight == 0 || stripHeight > 0x7FFFFFFF) return GRI_STATUS_INVALID_ARGUMENT;
  m_stripMarcher = gr_makeUnique<GRIStripMarcher>(scene, static_cast<gr_int32>(stripHeight));
  if (m_stripMarcher == nullptr) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(decodeBegin(scene));
  return reportProgress(0.0F);
}

GR_STATUS GRIImageStage::readStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  assert(m_stripMarcher != nullptr);
  assert(static_cast<gr_uint32>(stripScene.getNumCols()) <= buffer.getWindowNumCols());
  assert(static_cast<gr_uint32>(stripScene.getNumRows()) <= buffer.getWindowNumRows());
  GR_RETURN_IF_FAILED(decodeStrip(buffer, stripScene));
  const GRIScene& full = m_stripMarcher->getFullScene();
  const double behind = stripScene.getUpperLeftRow() - full.getUpperLeftRow();
  return reportProgress(static_cast<float>(behind / full.getHeight()));
}

GR_STATUS GRIImageStage::readEnd() {
  GR_RETURN_IF_FAILED(decodeEnd());
  GR_RETURN_IF_FAILED(reportProgress(1.0F));
  m_stripMarcher.reset();
  return GR_STATUS_OK;
}

GR_STATUS GRIImageStage::reportProgress(float progress) {
  if (GRIInterruptDelegate* delegate = getInterruptDelegate()) {
    GR_RETURN_IF_FAILED(delegate->getInterruptStatus());
  }
  if (GRIProgressDelegate* delegate = getProgressDelegate()) {
    return delegate->setProgress(progress);
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIImageStage::fillBackground(const GRIScene& scene, GRISceneBuffer& buffer) const {
  const GRIPixel* background = getBackgroundPixel();
  if (background == nullptr) return GR_STATUS_OK;
  const gr_uint32 numCols = static_cast<gr_uint32>(scene.getNumCols());
  const gr_uint32 numRows = static_cast<gr_uint32>(scene.getNumRows());
  assert(numCols <= buffer.getWindowNumCols() && numRows <= buffer.getWindowNumRows());
  try {
    return GRISceneBuffer(buffer, 0, 0, numCols, numRows).fill(*background);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}
