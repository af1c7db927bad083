// The exported functions that open and close; what they do is documented in the public header.
// This is the only place where the classes of the readers are chosen.
#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_handles.h"
#include "image/gri_imageStage.h"
#include "nitf/nitf_imageManager.h"
#include "nitf/nitf_imageReader.h"
#include "tesra/tesra_imageReader.h"

namespace {

/// Hands a reader that is ready to the host, with a reference of the host's own.
template <typename Reader>
void handOut(const GRUtilSmartPointer<Reader>& reader, gric_image* image) {
  *image = gri_toHandle(static_cast<GRIImageStage*>(reader.retained()));
}

template <typename Reader>
GRUtilSmartPointer<Reader> makeReader() {
  return GRUtilSmartPointer<Reader>(gr_makeUnique<Reader>().release());
}

}  // namespace

GR_STATUS gric_openTesraImageFile(gric_image* image, const char* fileName) {
  if (image == nullptr || fileName == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *image = nullptr;
  const GRUtilSmartPointer<TesraImageReader> reader = makeReader<TesraImageReader>();
  if (!reader) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(
      reader->initialize(GRFileSpec(fileName), false, TESRA_MEMORY_DEFAULT, TESRA_STREAM_CLOSE));
  handOut(reader, image);
  return GR_STATUS_OK;
}

GR_STATUS gric_openTesraImageStream(gric_image* image, gr_ioCStream stream) {
  if (image == nullptr || stream == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *image = nullptr;
  const GRUtilSmartPointer<TesraImageReader> reader = makeReader<TesraImageReader>();
  if (!reader) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(
      reader->initialize(gri_streamOf(stream), nullptr, TESRA_MEMORY_DEFAULT, TESRA_STREAM_CLOSE));
  handOut(reader, image);
  return GR_STATUS_OK;
}

GR_STATUS gric_openJP2ImageFile(gric_image* image, const char* fileName) {
  if (image == nullptr || fileName == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *image = nullptr;
  return GRI_STATUS_UNSUPPORTED_OPERATION;
}

GR_STATUS gric_openJP2ImageStream(gric_image* image, gr_ioCStream stream) {
  if (image == nullptr || stream == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *image = nullptr;
  return GRI_STATUS_UNSUPPORTED_OPERATION;
}

GR_STATUS gric_openNITFImageFile(gric_image* image, const char* fileName) {
  if (image == nullptr || fileName == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *image = nullptr;
  const GRUtilSmartPointer<NITFImageManager> manager = makeReader<NITFImageManager>();
  if (!manager) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(manager->initialize(GRFileSpec(fileName), true));
  // The reader keeps the manager alive.
  GRUtilSmartPointer<NITFImageReader> reader;
  GR_RETURN_IF_FAILED(manager->createReader(reader, 1));
  handOut(reader, image);
  return GR_STATUS_OK;
}

GR_STATUS gric_closeImage(gric_image image) {
  if (image == nullptr) return GR_STATUS_NULL_ARGUMENT;
  static_cast<void>(gri_stageOf(image).release());
  return GR_STATUS_OK;
}
