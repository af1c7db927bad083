// Tesra files of any bytes, through a callback stream.

#include "fuzz/fuzz_image.h"
#include "tests/support/host_stream.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const HostStream stream({data, size});
  gric_image image = nullptr;
  if (gric_openTesraImageStream(&image, stream.handle()) == 0) {
    // With the password of most locked seeds, so that what stands behind locks is reached as well.
    static_cast<void>(gric_setTesraPassword(image, "x y z"));
    fuzz::exercise(image);
  }
  return 0;
}
