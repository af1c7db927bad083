// decode_raw IN REDUCTION OUT
//
// Decodes an image at 1/2^REDUCTION to raw samples: band after band, row after row, in the order of
// this machine. When the library refuses it prints "status N" and ends with 1. For programs that
// compare decoders.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

#include "gri_rdk_cdll.h"

namespace {

constexpr int REFUSED = 1;
constexpr int WRONG_USE = 2;

GR_STATUS openByContent(const char* path, gric_image* image) {
  char magic[4] = {};
  std::ifstream(path, std::ios::binary).read(magic, sizeof magic);
  if (std::memcmp(magic, "tsra", 4) == 0) return gric_openTesraImageFile(image, path);
  if (std::memcmp(magic, "NITF", 4) == 0 || std::memcmp(magic, "NSIF", 4) == 0) {
    return gric_openNITFImageFile(image, path);
  }
  return gric_openJP2ImageFile(image, path);
}

size_t bytesOf(gr_int32 dataType) {
  constexpr size_t BYTES[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 8};
  return BYTES[dataType];
}

/// Strips keep memory small, whatever the size of the picture; each band gets its part of the file.
GR_STATUS decode(gric_image image, double magnification, std::FILE* out) {
  constexpr gr_uint32 STRIP_ROWS = 256;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  const GR_STATUS status = gric_getDimsAtMag(image, magnification, &width, &height);
  if (status != 0) return status;
  const gr_uint16 numBands = gric_getNumBands(image);
  const size_t rowBytes = width * bytesOf(gric_getDataType(image));
  std::vector<std::vector<char>> planes(numBands, std::vector<char>(rowBytes * STRIP_ROWS));
  std::vector<void*> pointers;
  pointers.reserve(numBands);
  for (auto& plane : planes) pointers.push_back(plane.data());
  for (gr_uint32 row = 0; row < height; row += STRIP_ROWS) {
    const gr_uint32 rows = std::min(STRIP_ROWS, height - row);
    const GR_STATUS decoded =
        gric_decode(image, 0, row, width, rows, magnification, pointers.data());
    if (decoded != 0) return decoded;
    for (size_t band = 0; band < numBands; ++band) {
      const auto place = static_cast<off_t>((band * height + row) * rowBytes);
      if (fseeko(out, place, SEEK_SET) != 0) return 1;
      if (std::fwrite(planes[band].data(), rowBytes, rows, out) != rows) return 1;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: decode_raw IN REDUCTION OUT\n");
    return WRONG_USE;
  }
  gric_image image = nullptr;
  GR_STATUS status = openByContent(argv[1], &image);
  if (status == 0) {
    std::FILE* const out = std::fopen(argv[3], "wb");
    if (out == nullptr) return WRONG_USE;
    status = decode(image, std::ldexp(1.0, -std::atoi(argv[2])), out);
    std::fclose(out);
    gric_closeImage(image);
  }
  if (status != 0) {
    std::printf("status %u\n", status);
    return REFUSED;
  }
  return 0;
}
