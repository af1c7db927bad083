// NITF and NSIF files of any bytes.

#include "fuzz/fuzz_image.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::MemoryFile file({data, size});
  gric_image image = nullptr;
  if (gric_openNITFImageFile(&image, file.path().c_str()) == 0) fuzz::exercise(image);
  return 0;
}
