#include "fuzz/fuzz_image.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace fuzz {
namespace {

constexpr double WINDOW_SIDE = 96.0;  // pixels; a window's cost is bounded by it
constexpr std::size_t MOST_BANDS = 16;

std::size_t bytesPerSample(gr_int32 dataType) {
  switch (dataType) {
    case GRIC_DATATYPE_UINT8:
    case GRIC_DATATYPE_SINT8:
      return 1;
    case GRIC_DATATYPE_UINT16:
    case GRIC_DATATYPE_SINT16:
      return 2;
    case GRIC_DATATYPE_UINT32:
    case GRIC_DATATYPE_SINT32:
    case GRIC_DATATYPE_FLOAT32:
      return 4;
    default:
      return 8;
  }
}

/// Reads the bytes of every record to its claimed end, so that a record that promises more than
/// it holds is seen.
std::size_t sumOfMetadata(gric_image image) {
  std::size_t sum = 0;
  const gr_uint32 count = gric_getNumMetadataRecords(image);
  for (gr_uint32 i = 0; i < count; ++i) {
    const char* tag = nullptr;
    gr_int32 type = 0;
    gr_uint32 numDims = 0;
    const gr_uint32* dims = nullptr;
    const void* data = nullptr;
    if (gric_getMetadataRecord(image, i, &tag, &type, &numDims, &dims, &data) != 0) std::abort();
    std::size_t elements = 1;
    for (gr_uint32 d = 0; d < numDims; ++d) elements *= dims[d];
    sum += std::strlen(tag);
    if (type == GRIC_METADATA_DATATYPE_ASCII) {
      const char* const* texts = static_cast<const char* const*>(data);
      for (std::size_t e = 0; e < elements; ++e) sum += std::strlen(texts[e]);
    } else {
      static constexpr std::size_t BYTES[] = {0, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
      const unsigned char* bytes = static_cast<const unsigned char*>(data);
      for (std::size_t b = 0; b < elements * BYTES[type]; ++b) sum += bytes[b];
    }
  }
  return sum;
}

void decodeWindow(gric_image image, double x, double y, double magnification) {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  if (gric_getDimsAtMag(image, magnification, &width, &height) != 0) return;
  x = std::floor(x * width);
  y = std::floor(y * height);
  const double w = std::min(WINDOW_SIDE, width - x);
  const double h = std::min(WINDOW_SIDE, height - y);
  const std::size_t bands = gric_getNumBands(image);
  if (bands > MOST_BANDS) return;
  const std::size_t plane =
      static_cast<std::size_t>(WINDOW_SIDE * WINDOW_SIDE) * bytesPerSample(gric_getDataType(image));
  // Exactly as large as promised, so that a sanitizer sees a write past the end.
  std::vector<std::unique_ptr<std::uint8_t[]>> planes;
  std::vector<void*> pointers;
  for (std::size_t b = 0; b < bands; ++b) {
    planes.push_back(std::make_unique<std::uint8_t[]>(plane));
    pointers.push_back(planes.back().get());
  }
  static_cast<void>(gric_decode(image, x, y, w, h, magnification, pointers.data()));
}

}  // namespace

MemoryFile::MemoryFile(std::span<const std::uint8_t> bytes) {
  m_descriptor = memfd_create("fuzz", 0);
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t n = write(m_descriptor, bytes.data() + written, bytes.size() - written);
    if (n <= 0) std::abort();
    written += static_cast<std::size_t>(n);
  }
  m_path = "/proc/self/fd/" + std::to_string(m_descriptor);
}

MemoryFile::~MemoryFile() { close(m_descriptor); }

void exercise(gric_image image) {
  if (gric_getWidth(image) == 0 || gric_getHeight(image) == 0) std::abort();
  volatile std::size_t sink = sumOfMetadata(image);
  volatile double geo = gric_getGeoXOrigin(image) + gric_getGeoYOrigin(image) +
                        gric_getGeoXResolution(image) + gric_getGeoYResolution(image) +
                        gric_getGeoXRotation(image) + gric_getGeoYRotation(image);
  static_cast<void>(sink);
  static_cast<void>(geo);
  const double smallest = gric_getMinMagnification(image);
  for (const double magnification : {1.0, 0.5, smallest, 2.0}) {
    decodeWindow(image, 0.0, 0.0, magnification);
    decodeWindow(image, 0.7, 0.6, magnification);
  }
  gric_closeImage(image);
}

}  // namespace fuzz
