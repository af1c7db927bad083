#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "tests/support/own_process.h"
#include "tests/support/tg3_writer.h"

namespace {

constexpr gr_uint32 SIZE = 30000;       // columns and rows
constexpr long LIMIT_KIB = 64L * 1024;  // above the caller's buffer

TG3TestImage pictureOfSubblocks() {
  TG3TestImage image;
  image.width = SIZE;
  image.height = SIZE;
  image.numLevels = 8;
  image.storage = 2;  // with the pipeline's order the layout for which there is a small index
  return image;
}

/// The bytes that an index of every subblock is said to take.
double fullIndexEstimate() {
  const TG3TestImage image = pictureOfSubblocks();
  double numSubblocks = 0;
  const TG3TestGeometry geometry = image.geometry();
  for (const TG3TestGeometry::Band& band : geometry.bands()) {
    numSubblocks += static_cast<double>(band.numBlocks());
  }
  return numSubblocks * image.numPlanes * 8.0 + 11814;
}

/// A picture with planes in every eighth row of subblocks and here and there between them.
long writePicture(const std::string& path) {
  const TG3TestImage image = pictureOfSubblocks();
  std::mt19937 random(1);
  std::vector<TG3TestSubblock> subblocks;
  const TG3TestGeometry geometry = image.geometry();
  for (gr_uint32 band = 0; band < geometry.bands().size(); ++band) {
    const TG3TestGeometry::Band& of = geometry.bands()[band];
    for (gr_uint64 block = 0; block < of.numBlocks(); ++block) {
      if (block / of.blockColumns % 8 != 0 && block % 16 != 0) continue;
      TG3TestPlane plane;
      plane.plane = 28;
      plane.bytes.resize(100);
      for (gr_uint8& byte : plane.bytes) byte = static_cast<gr_uint8>(random());
      subblocks.push_back({band, block, {plane}});
    }
  }
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPlaneset(image, subblocks);
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(writer.bytes().data()),
             static_cast<std::streamsize>(writer.bytes().size()));
  return file ? 0 : -1;
}

enum class Rows { ALL, FIRST_AND_LAST };

/// Decodes a picture in strips, each by a call of its own.
/// @return what that took in KiB above the strip's own buffer, or a negative status
long memoryOfDecode(const std::string& path, const char* model, gr_uint32 stripRows, Rows rows) {
  setenv("GR_TG3_MEMORY_MODEL", model, 1);
  std::vector<gr_uint8> strip(std::size_t{SIZE} * stripRows, 1);
  void* bands[] = {strip.data()};
  const long before = process_peakKib();
  gric_image image = nullptr;
  const GR_STATUS opened = gric_openTesraImageFile(&image, path.c_str());
  if (opened != 0) return -static_cast<long>(opened);
  for (gr_uint32 row = 0; row < SIZE;) {
    const gr_uint32 numRows = std::min(stripRows, SIZE - row);
    const GR_STATUS decoded = gric_decode(image, 0, row, SIZE, numRows, 1.0, bands);
    if (decoded != 0) return -static_cast<long>(decoded);
    const bool mustSkip = rows == Rows::FIRST_AND_LAST && row >= 300 && row < SIZE - 300;
    row = mustSkip ? SIZE - 300 : row + numRows;
  }
  gric_closeImage(image);
  return process_peakKib() - before;
}

class TesraPeakMemoryTest : public testing::Test {
 protected:
  void SetUp() override {
    m_directory = std::filesystem::temp_directory_path() / "tesra_peakMemory.XXXXXX";
    ASSERT_NE(mkdtemp(m_directory.data()), nullptr);
    m_path = m_directory + "/picture.tsra";
    ASSERT_EQ(process_runApart([&] { return writePicture(m_path); }), 0);
  }
  void TearDown() override { std::filesystem::remove_all(m_directory); }

  long measure(const char* model, gr_uint32 stripRows, Rows rows) {
    const long memory =
        process_runApart([&] { return memoryOfDecode(m_path, model, stripRows, rows); });
    std::cout << model << " index, strips of " << stripRows << " rows: " << memory
              << " KiB above the caller's buffer\n";
    return memory;
  }

 private:
  std::string m_directory;
  std::string m_path;
};

TEST_F(TesraPeakMemoryTest, ALargePictureIsDecodedInStripsInLittleMemory) {
  const long atBothEnds = measure("partial", 64, Rows::FIRST_AND_LAST);
  EXPECT_GE(atBothEnds, 0) << "status " << -atBothEnds;
  EXPECT_LT(atBothEnds, LIMIT_KIB);
  const long whole = measure("partial", 250, Rows::ALL);
  EXPECT_GE(whole, 0) << "status " << -whole;
  EXPECT_LT(whole, LIMIT_KIB);
}

TEST_F(TesraPeakMemoryTest, AnIndexOfEverySubblockTakesNoMoreThanItIsEstimatedAt) {
  const long partial = measure("partial", 250, Rows::FIRST_AND_LAST);
  const long full = measure("full", 250, Rows::FIRST_AND_LAST);
  EXPECT_GE(partial, 0) << "status " << -partial;
  EXPECT_GE(full, partial);
  EXPECT_LT(static_cast<double>(full - partial) * 1024, fullIndexEstimate());
}

}  // namespace
