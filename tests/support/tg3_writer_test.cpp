#include "tests/support/tg3_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tests/support/tg3_forwardColor.h"

namespace {

using testing::ElementsAre;

std::vector<gr_uint8> fromHex(const std::string& text) {
  std::vector<gr_uint8> bytes;
  std::string digits;
  for (const char c : text) {
    if (c != ' ') digits += c;
  }
  for (size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<gr_uint8>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

// A picture whose file is known byte for byte.
TG3TestImage knownImage() {
  TG3TestImage image;
  image.width = 5;
  image.height = 3;
  image.numLevels = 1;
  image.blockSize = 4;
  return image;
}
const std::vector<gr_int32> KNOWN_SAMPLES = {10, 12, 200, 7,   9,  3,  250, 14,
                                             80, 81, 0,   255, 33, 34, 90};

TEST(TG3WriterTest, SplitsAKnownPictureIntoItsKnownSubbands) {
  const TG3TestImage image = knownImage();
  const TG3TestBands bands = tg3_forwardWavelet(image.geometry(), 5, 3, KNOWN_SAMPLES);
  EXPECT_THAT(bands[0], ElementsAre(5, 134, 1, 161, 68, 116));
  EXPECT_THAT(bands[1], ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_THAT(bands[2], ElementsAre(-9, -50, 323, 19));
  EXPECT_THAT(bands[3], ElementsAre(82, -37, 79));
  EXPECT_THAT(bands[4], ElementsAre(169, 94));
}

TEST(TG3WriterTest, WritesAKnownPictureByteForByte) {
  const std::vector<gr_uint8> expected = fromHex(
      "7473726103001A74 0103 0000000000000028 0000000000000002 00000005 00000003 01 0001 20 0004 "
      "08 "
      "00000000 000000FF 010101 00000000 0001 0403 0000000000000056 0100 0000000000000020 18 "
      "820B1F "
      "8183 8183 8137 818F 82227F 813F 81BF 3701 820D7F 819F 81BF 8130 81EB 815F 82FF7F 8163 81DF "
      "19 "
      "8202DF 811F 81CF 81BF 813F 811F 82FF7F 18 8103 811F 81BF 813F 817F 813F 82FF7F 813F");
  EXPECT_EQ(tg3_writeImage(knownImage(), {KNOWN_SAMPLES}), expected);
}

TEST(TG3WriterTest, WritesKnownRecords) {
  EXPECT_EQ(tg3_planeRecord(false, false, 55, false), fromHex("37 01"));
  EXPECT_EQ(tg3_planeRecord(true, false, 2, false), fromHex("82"));
  EXPECT_EQ(tg3_planeRecord(true, true, 1, false), fromHex("C1"));
  EXPECT_EQ(tg3_planeRecord(false, false, 160, false), fromHex("20 05"));
  EXPECT_EQ(tg3_planeRecord(false, false, (1 << 27) - 1, false), fromHex("3F FF FF FF"));
  EXPECT_EQ(tg3_planeRecord(false, false, (gr_uint64{1} << 54) - 1, true),
            fromHex("3F FF FF FF FF FF FF 7F"));
}

// The first subblocks of an order, as subband, row, column.
std::vector<std::vector<gr_uint32>> pipeOrder(const TG3TestGeometry& geometry) {
  std::vector<std::vector<gr_uint32>> order(geometry.totalBlocks());
  for (gr_uint32 band = 0; band < geometry.bands().size(); ++band) {
    const TG3TestGeometry::Band& of = geometry.bands()[band];
    for (gr_uint32 block = 0; block < of.numBlocks(); ++block) {
      const gr_uint64 index = geometry.pipeIndex(band, block);
      EXPECT_LT(index, order.size());
      EXPECT_TRUE(order[index].empty()) << index << " is taken twice";
      order[index] = {band, block / of.blockColumns, block % of.blockColumns};
    }
  }
  return order;
}

TEST(TG3WriterTest, OrdersAKnownPictureByItsPipeline) {
  const auto order = pipeOrder({20, 20, 2, 4});
  ASSERT_EQ(order.size(), 56u);
  std::vector<std::vector<gr_uint32>> expected;
  const auto add = [&](gr_uint32 first, gr_uint32 last, gr_uint32 row, gr_uint32 columns) {
    for (gr_uint32 band = first; band <= last; ++band) {
      for (gr_uint32 column = 0; column < columns; ++column)
        expected.push_back({band, row, column});
    }
  };
  add(5, 8, 0, 3);
  add(5, 8, 1, 3);
  add(0, 4, 0, 2);
  add(0, 4, 1, 2);
  add(5, 8, 2, 3);
  EXPECT_EQ(order, expected);
}

TEST(TG3WriterTest, GivesEachSubblockAPlaceOfItsOwn) {
  for (gr_uint32 height = 1; height <= 60; height += 7) {
    for (gr_uint32 levels = 0; levels <= 4; ++levels) {
      SCOPED_TRACE(testing::Message() << height << " rows, " << levels << " levels");
      const TG3TestGeometry geometry(37, height, levels, 3);
      EXPECT_EQ(pipeOrder(geometry).size(), geometry.totalBlocks());
    }
  }
}

TEST(TG3WriterTest, ConfinesACroppedPictureToItsKnownRanges) {
  TG3TestImage image;
  image.width = 20;
  image.height = 20;
  image.numLevels = 2;
  image.virtualSupport = {7, 0, 12, 19, 0};
  const auto columns = [&](gr_uint32 band) {
    const TG3TestRange range = tg3_codedColumns(image, band);
    return std::vector<gr_int64>{range.first, range.last};
  };
  for (const gr_uint32 band : {0, 1, 3}) EXPECT_THAT(columns(band), ElementsAre(1, 3)) << band;
  for (const gr_uint32 band : {2, 4}) EXPECT_THAT(columns(band), ElementsAre(0, 3)) << band;
  for (const gr_uint32 band : {5, 7}) EXPECT_THAT(columns(band), ElementsAre(3, 6)) << band;
  for (const gr_uint32 band : {6, 8}) EXPECT_THAT(columns(band), ElementsAre(2, 6)) << band;
  image.virtualSupport->numLevelsRemoved = 1;
  for (const gr_uint32 band : {0, 1, 3}) EXPECT_THAT(columns(band), ElementsAre(1, 3)) << band;
  for (const gr_uint32 band : {2, 4}) EXPECT_THAT(columns(band), ElementsAre(0, 3)) << band;
  EXPECT_THAT(columns(5), ElementsAre(3, 5));
}

TEST(TG3WriterTest, TransformsKnownColours) {
  gr_int32 sample[3] = {130, 86, 89};
  tg3_colorRoutine10(sample);
  EXPECT_THAT(sample, ElementsAre(100, 50, 20));
  gr_int32 red[3] = {255, 0, 0};
  tg3_colorRoutine10(red);
  EXPECT_THAT(red, ElementsAre(76, 301, 106));
  gr_int32 other[3] = {62, 77, 1};
  tg3_colorRoutine4(other);
  EXPECT_THAT(other, ElementsAre(100, 50, 20));
}

TEST(TG3WriterTest, UndoesEachColourRoutineByTheOther) {
  std::mt19937 random(7);
  for (int i = 0; i < 10000; ++i) {
    std::vector<gr_int32> values(3);
    for (gr_int32& value : values) value = static_cast<gr_int32>(random() % 200001) - 100000;
    gr_int32 sample[3] = {values[0], values[1], values[2]};
    tg3_colorRoutine4(sample);
    tg3_colorRoutine10(sample);
    ASSERT_THAT(sample, testing::ElementsAreArray(values));
    tg3_colorRoutine10(sample);
    tg3_colorRoutine4(sample);
    ASSERT_THAT(sample, testing::ElementsAreArray(values));
  }
}

}  // namespace
