// What the manager of a file's images finds out about them, and the front of an open file with it.
#include <gtest/gtest.h>

#include <array>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "tesra/tesra_imageReader.h"
#include "tests/support/tg2_writer.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

constexpr gr_uint32 LIMIT_SIDE = 0x4000;  // a square of bytes that may still be decoded with speed

/// An image of which the file has the header alone.
TG3TestImage claim(gr_uint32 width, gr_uint32 height) { return tesra_grayImage(width, height, 1); }

TesraBytes headersOf(std::vector<TG3TestImage> images) {
  TG3Writer writer;
  for (gr_uint32 number = 0; number < images.size(); ++number) {
    images[number].image = number;
    writer.addHeader(images[number]);
  }
  return writer.bytes();
}

/// The memory usage that comes of one that was asked for.
TesraMemoryUsage usageOf(const TesraBytes& file, TesraMemoryUsage wanted = TESRA_MEMORY_DEFAULT) {
  const std::unique_ptr<GRIOStreamInf> stream = tg3_memoryStream(file);
  const GRUtilSmartPointer<TesraImageStageManager> manager(
      gr_makeUnique<TesraImageStageManager>().release());
  EXPECT_EQ(manager->initialize(*stream, wanted, TESRA_STREAM_CLOSE), 0u);
  return manager->getMemoryUsage();
}

TEST(TesraManagerTest, SavesMemoryWhereTheSamplesOfAllImagesPass256MiB) {
  const TG3TestImage most = claim(LIMIT_SIDE, LIMIT_SIDE);
  EXPECT_EQ(usageOf(headersOf({most})), TESRA_MEMORY_DEFAULT);
  EXPECT_EQ(usageOf(headersOf({most, claim(1, 1)})), TESRA_MEMORY_SMALL);
  EXPECT_EQ(usageOf(headersOf({claim(LIMIT_SIDE, LIMIT_SIDE + 1)})), TESRA_MEMORY_SMALL);
}

TEST(TesraManagerTest, CountsTheBytesOfASampleAndEveryComponent) {
  TG3TestImage wide = claim(LIMIT_SIDE, LIMIT_SIDE / 2);
  wide.domainBits = 16;
  wide.dynamicRangeMax = 65535;
  EXPECT_EQ(usageOf(headersOf({wide})), TESRA_MEMORY_DEFAULT);
  EXPECT_EQ(usageOf(headersOf({wide, claim(1, 1)})), TESRA_MEMORY_SMALL);
  TG3TestImage color = claim(LIMIT_SIDE, LIMIT_SIDE / 2);
  color.numComponents = 3;
  EXPECT_EQ(usageOf(headersOf({color})), TESRA_MEMORY_SMALL);
}

TEST(TesraManagerTest, CountsTheLargestClaimsWithoutWrappingRound) {
  TG3TestImage huge = claim(0x40000000, 0x40000000);
  huge.numComponents = 16;  // 2^64 samples
  huge.imageColorSpace = 5;
  huge.blockSize = 0x8000;
  EXPECT_EQ(usageOf(headersOf({huge})), TESRA_MEMORY_SMALL);
}

TEST(TesraManagerTest, LeavesAUsageThatWasAskedForAsItIs) {
  const TesraBytes huge = headersOf({claim(LIMIT_SIDE, LIMIT_SIDE + 1)});
  for (const TesraMemoryUsage usage : {TESRA_MEMORY_NORMAL, TESRA_MEMORY_LARGE}) {
    EXPECT_EQ(usageOf(huge, usage), usage);
  }
}

TEST(TesraManagerTest, CountsNothingForAnImageOfTheOlderGeneration) {
  TG2TestImage older;
  older.width = 8;
  older.height = 8;
  const TesraBytes file = tg2_writeImage(older, {std::vector<float>(64, 1.0F)}).bytes;
  TG3TestImage most = claim(LIMIT_SIDE, LIMIT_SIDE);
  TG3Writer writer;
  writer.addHeader(most);
  writer.addPacket({.type = 7, .image = 1}, file);
  EXPECT_EQ(usageOf(writer.bytes()), TESRA_MEMORY_DEFAULT);
  EXPECT_EQ(usageOf(file), TESRA_MEMORY_DEFAULT);
}

TEST(TesraManagerTest, HasNoStageBehindTheLastImage) {
  const std::unique_ptr<GRIOStreamInf> stream =
      tg3_memoryStream(tesra_fileOf(tesra_grayImage(8, 8, 1)));
  const GRUtilSmartPointer<TesraImageStageManager> manager(
      gr_makeUnique<TesraImageStageManager>().release());
  ASSERT_EQ(manager->initialize(*stream, TESRA_MEMORY_DEFAULT, TESRA_STREAM_CLOSE), 0u);
  GRIImageStage* stage = nullptr;
  EXPECT_EQ(manager->createImageStage(1, stage), 3u);
  EXPECT_EQ(stage, nullptr);
  ASSERT_EQ(manager->createImageStage(0, stage), 0u);
  stage->release();
}

/// A mosaic of two tiles side by side.
TesraBytes mosaicOf(gr_uint8 leftLevels, gr_uint8 rightLevels) {
  TG3Writer writer;
  for (const gr_uint32 number : {0u, 1u}) {
    TG3TestImage image = tesra_grayImage(16, 16, number == 0 ? leftLevels : rightLevels);
    image.image = number;
    const double left = 16.0 * number;
    writer.addMetadata(3, 0, number,
                       tg3_georefBlock({.geo = {{left, 16.0, left + 16.0, 0.0, 1.0, 1.0}}}));
    writer.addImage(image, tesra_noise(image));
  }
  return writer.bytes();
}

TEST(TesraImageReaderTest, HasTheMostLevelsOfAnyImageAndStripsOf64Rows) {
  for (const auto& levels : {std::array<gr_uint8, 2>{1, 3}, std::array<gr_uint8, 2>{3, 1}}) {
    const std::unique_ptr<GRIOStreamInf> stream = tg3_memoryStream(mosaicOf(levels[0], levels[1]));
    const GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
    ASSERT_EQ(reader->initialize(*stream, nullptr, TESRA_MEMORY_DEFAULT, TESRA_STREAM_CLOSE), 0u);
    EXPECT_EQ(reader->getNumLevels(), 3);
    EXPECT_EQ(reader->getStripHeight(), 64u);
  }
}

}  // namespace
