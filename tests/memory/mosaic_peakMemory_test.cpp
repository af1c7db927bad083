#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "tests/support/own_process.h"
#include "tests/support/tg3_writer.h"

namespace {

constexpr gr_uint32 TILE = 256;               // columns and rows
constexpr long WINDOW_LIMIT_KIB = 2L * 1024;  // on four tiles, above the open image

/// Tiles side by side in a square, of planes that mean nothing.
long writeMosaic(const std::string& path, gr_uint32 across) {
  TG3TestImage image;
  image.width = TILE;
  image.height = TILE;
  image.numLevels = 5;
  std::vector<TG3TestSubblock> subblocks;
  const TG3TestGeometry geometry = image.geometry();
  for (gr_uint32 band = 0; band < geometry.bands().size(); ++band) {
    for (gr_uint64 block = 0; block < geometry.bands()[band].numBlocks(); ++block) {
      TG3TestPlane plane;
      plane.plane = 28;
      plane.bytes.assign(100, static_cast<gr_uint8>(band + block));
      subblocks.push_back({band, block, {plane}});
    }
  }
  TG3Writer writer;
  for (gr_uint32 i = 0; i < across * across; ++i) {
    image.image = i;
    const gr_uint32 tileRow = i / across;
    const double x = double{TILE} * (i % across);
    const double y = -double{TILE} * tileRow;
    TG3TestGeoref georef;
    georef.geo = {x, y, x + TILE, y - TILE, 1.0, 1.0};
    writer.addMetadata(3, 0, i, tg3_georefBlock(georef));
    writer.addHeader(image);
    writer.addPlaneset(image, subblocks);
  }
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(writer.bytes().data()),
             static_cast<std::streamsize>(writer.bytes().size()));
  return file ? 0 : -1;
}

/// Decodes a window in the middle, on four tiles.
/// @return what that took in KiB, or a negative status
long memoryOfWindow(const std::string& path) {
  gric_image image = nullptr;
  const GR_STATUS opened = gric_openTesraImageFile(&image, path.c_str());
  if (opened != 0) return -static_cast<long>(opened);
  std::vector<gr_uint8> samples(size_t{64} * 64, 1);
  void* bands[] = {samples.data()};
  const gr_uint32 corner = gric_getWidth(image) / TILE / 2 * TILE;
  const double middle = corner - 32.0;
  const long before = process_peakKib();
  const GR_STATUS decoded = gric_decode(image, middle, middle, 64, 64, 1.0, bands);
  const long after = process_peakKib();
  gric_closeImage(image);
  return decoded != 0 ? -static_cast<long>(decoded) : after - before;
}

TEST(MosaicPeakMemoryTest, AWindowTakesWhatItsTilesTakeHoweverManyThereAre) {
  for (const gr_uint32 across : {4u, 50u}) {
    const std::string path = std::filesystem::temp_directory_path() /
                             ("mosaic_" + std::to_string(getpid()) + "_" + std::to_string(across));
    ASSERT_EQ(process_runApart([&] { return writeMosaic(path, across); }), 0);
    const long memory = process_runApart([&] { return memoryOfWindow(path); });
    std::filesystem::remove(path);
    std::cout << "window on four of " << across * across << " tiles: " << memory << " KiB\n";
    EXPECT_GE(memory, 0) << "status " << -memory;
    EXPECT_LT(memory, WINDOW_LIMIT_KIB);
  }
}

}  // namespace
