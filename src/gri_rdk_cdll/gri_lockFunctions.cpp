// The exported functions about locked images; what they do is documented in the public header.
#include "gr_lib_utils/include/gr_status.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_handles.h"
#include "image/gri_imageStage.h"
#include "tesra/tesra_imageReader.h"

namespace {

/// The reader behind a handle; null where it is that of another format.
TesraImageReader* tesraReaderOf(gric_image image) {
  return dynamic_cast<TesraImageReader*>(&gri_stageOf(image));
}

}  // namespace

gr_int32 gric_isTesraLocked(gric_image image) {
  if (image == nullptr) return 0;
  const TesraImageReader* const reader = tesraReaderOf(image);
  return reader != nullptr && reader->isLocked() ? 1 : 0;
}

GR_STATUS gric_setTesraPassword(gric_image image, const char* password) {
  if (image == nullptr || password == nullptr) return GR_STATUS_NULL_ARGUMENT;
  TesraImageReader* const reader = tesraReaderOf(image);
  return reader != nullptr ? reader->setPassword(password) : GRI_STATUS_UNSUPPORTED_OPERATION;
}
