// Codes a picture as a TG3 file, losslessly or to a size: material for the benchmarks.
//
//     encode_tg3 IN.ppm OUT.tsra [BYTES [LEVELS [BLOCK_SIZE [WORLD_FILE]]]]
//
// IN is a binary PPM or PGM of 8 or 16 bits. With BYTES above 0 the lowest bit-planes are left out
// until the planes take no more than that: whole planes of all subbands first, and of the next
// plane those of the coarse subbands, then as many of the finer ones as there is room for.
// WORLD_FILE gives the picture a position, without rotation.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "benchmarks/encode_picture.h"
#include "tests/support/tg3_writer.h"

namespace {

constexpr gr_uint32 LAST_PLANE = 31;
constexpr gr_uint32 DEFAULT_LEVELS = 6;
constexpr gr_uint32 DEFAULT_BLOCK_SIZE = 64;
constexpr gr_uint8 COLOR_SPACE_GRAY = 1;
constexpr gr_uint8 COLOR_SPACE_RGB = 10;
constexpr gr_uint8 COLOR_TRANSFORM_RGB = 10;  // which gives the smallest files of real imagery

// Bytes of the planes up to `lastPlane`, each with its record.
size_t bytesUpTo(const TG3TestSubblock& subblock, gr_uint32 lastPlane) {
  size_t bytes = 0;
  for (const TG3TestPlane& plane : subblock.planes) {
    if (plane.plane > lastPlane) continue;
    bytes += plane.bytes.size() + tg3_planeRecord(true, false, plane.bytes.size(), false).size();
  }
  return bytes;
}

// Subblocks stand in the order of their subbands, the coarse ones first.
void truncateTo(std::vector<TG3TestSubblock>& subblocks, size_t budget) {
  const auto total = [&](gr_uint32 lastPlane) {
    size_t bytes = 0;
    for (const TG3TestSubblock& subblock : subblocks) bytes += bytesUpTo(subblock, lastPlane);
    return bytes;
  };
  gr_uint32 lastPlane = LAST_PLANE;
  while (lastPlane > 0 && total(lastPlane) > budget) --lastPlane;
  if (lastPlane == LAST_PLANE) return;
  size_t left = budget - total(lastPlane);
  for (TG3TestSubblock& subblock : subblocks) {
    const size_t more = bytesUpTo(subblock, lastPlane + 1) - bytesUpTo(subblock, lastPlane);
    const bool fits = more <= left;
    if (fits) left -= more;
    const gr_uint32 last = fits ? lastPlane + 1 : lastPlane;
    std::erase_if(subblock.planes, [&](const TG3TestPlane& plane) { return plane.plane > last; });
  }
  std::erase_if(subblocks, [](const TG3TestSubblock& subblock) { return subblock.planes.empty(); });
}

// Positions with a rotation aren't written.
bool addPosition(const char* worldFile, const TG3TestImage& image, TG3Writer& writer) {
  std::array<double, 6> numbers{};
  if (!encode_readWorldFile(worldFile, numbers)) return false;
  const auto [xRes, xRotation, yRotation, yRes, x, y] = numbers;
  if (xRotation != 0 || yRotation != 0) return false;
  TG3TestGeoref georef;
  georef.geo = {x, y, x + xRes * (image.width - 1), y + yRes * (image.height - 1), xRes, yRes};
  writer.addMetadata(3, 0, image.image, tg3_georefBlock(georef));
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 7) {
    std::fprintf(stderr,
                 "usage: encode_tg3 IN.ppm OUT.tsra [BYTES [LEVELS [BLOCK_SIZE [WORLD_FILE]]]]\n");
    return 2;
  }
  EncodePicture picture;
  if (!encode_readPicture(argv[1], picture)) {
    std::fprintf(stderr, "encode_tg3: can't read %s\n", argv[1]);
    return 1;
  }
  const auto option = [&](int index, gr_uint32 otherwise) {
    return argc > index ? static_cast<gr_uint32>(std::strtoul(argv[index], nullptr, 10))
                        : otherwise;
  };
  const bool isRgb = picture.components.size() == 3;
  TG3TestImage image;
  image.width = picture.width;
  image.height = picture.height;
  image.numLevels = static_cast<gr_uint8>(option(4, DEFAULT_LEVELS));
  image.blockSize = static_cast<gr_uint16>(option(5, DEFAULT_BLOCK_SIZE));
  image.numComponents = static_cast<gr_uint16>(picture.components.size());
  image.domainBits = picture.largest > 0xFF ? 16 : 8;
  image.dynamicRangeMax = static_cast<gr_int32>(picture.largest);
  image.imageColorSpace = isRgb ? COLOR_SPACE_RGB : COLOR_SPACE_GRAY;
  image.waveletColorSpace = image.imageColorSpace;
  image.colorTransform = isRgb ? COLOR_TRANSFORM_RGB : 1;
  image.storage = 2;

  std::vector<TG3TestSubblock> subblocks =
      tg3_encode(image, tg3_transform(image, picture.components));
  const gr_uint32 budget = option(3, 0);
  if (budget > 0) truncateTo(subblocks, budget);
  TG3Writer writer;
  writer.addHeader(image);
  if (argc > 6 && !addPosition(argv[6], image, writer)) {
    std::fprintf(stderr, "encode_tg3: can't read %s\n", argv[6]);
    return 1;
  }
  writer.addPlaneset(image, subblocks);
  return encode_writeFile(argv[2], writer.bytes()) ? 0 : 1;
}
