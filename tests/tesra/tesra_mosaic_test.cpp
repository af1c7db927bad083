// Files with several images show as one picture.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "tests/tesra/tesra_testFile.h"

namespace {

/// An image of a container, with its place on the ground.
struct Tile {
  gr_uint32 width = 8;
  gr_uint32 height = 8;
  double x = 0.0;  // of the upper left
  double y = 0.0;
  double resolution = 1.0;
  int noData = -1;  // negative for none
  gr_uint8 levels = 1;
  bool isLocked = false;
};

TG3TestImage imageOf(const Tile& tile, gr_uint32 number) {
  TG3TestImage image = tesra_grayImage(tile.width, tile.height, tile.levels);
  image.image = number;
  image.isLocked = tile.isLocked;
  return image;
}

/// Samples of an image, few enough values that no data is among them.
TesraSamples samplesOf(const TG3TestImage& image) {
  TesraSamples samples = tesra_noise(image);
  for (gr_int32& sample : samples[0]) {
    sample = static_cast<gr_int32>((static_cast<gr_uint32>(sample) + image.image) % 16);
  }
  return samples;
}

void addTile(TG3Writer& writer, const Tile& tile, gr_uint32 number) {
  const TG3TestImage image = imageOf(tile, number);
  TG3TestGeoref georef;
  georef.geo = {tile.x,
                tile.y,
                tile.x + tile.width * tile.resolution,
                tile.y - tile.height * tile.resolution,
                tile.resolution,
                tile.resolution};
  if (tile.noData >= 0) georef.noData = {tile.noData};
  writer.addMetadata(3, 0, number, tg3_georefBlock(georef));
  writer.addImage(image, samplesOf(image));
}

TesraBytes fileOf(const std::vector<Tile>& tiles) {
  TG3Writer writer;
  for (gr_uint32 i = 0; i < tiles.size(); ++i) addTile(writer, tiles[i], i);
  return writer.bytes();
}

GR_STATUS openStatus(const TesraBytes& bytes) { return TesraHandle(bytes).status(); }

/// The picture of tiles of resolution 1 at whole pixels, put together by hand.
TesraBytes composed(const std::vector<Tile>& tiles, double left, double top, gr_uint32 width,
                    gr_uint32 height) {
  TesraBytes picture(size_t{width} * height, 0);
  for (gr_uint32 i = 0; i < tiles.size(); ++i) {
    const Tile& tile = tiles[i];
    const TesraSamples samples = samplesOf(imageOf(tile, i));
    for (gr_uint32 row = 0; row < tile.height; ++row) {
      for (gr_uint32 col = 0; col < tile.width; ++col) {
        const gr_int32 sample = samples[0][size_t{row} * tile.width + col];
        if (sample == tile.noData) continue;
        const size_t x = static_cast<size_t>(tile.x - left) + col;
        const size_t y = static_cast<size_t>(top - tile.y) + row;
        picture[y * width + x] = static_cast<gr_uint8>(sample);
      }
    }
  }
  return picture;
}

struct Record {
  std::string text;
  gr_uint64 number = 0;
};

/// The record of a tag; nothing when there is none.
std::optional<Record> recordOf(gric_image image, const std::string& wanted) {
  for (gr_uint32 i = 0; i < gric_getNumMetadataRecords(image); ++i) {
    const char* tag = nullptr;
    gr_int32 type = 0;
    gr_uint32 numDims = 0;
    const gr_uint32* dims = nullptr;
    const void* data = nullptr;
    EXPECT_EQ(gric_getMetadataRecord(image, i, &tag, &type, &numDims, &dims, &data), 0u);
    if (tag != wanted) continue;
    Record record;
    constexpr gr_int32 TEXT = 11;
    constexpr gr_int32 UINT32 = 5;
    if (type == TEXT) std::memcpy(&record.number, data, sizeof(char*));
    if (type == TEXT) record.text = *static_cast<const char* const*>(data);
    if (type == UINT32) record.number = *static_cast<const gr_uint32*>(data);
    return record;
  }
  return std::nullopt;
}

TEST(TesraMosaicTest, ImagesLieWhereTheirPositionsPutThem) {
  // Side by side, apart, and one on top of two others with holes in it.
  const std::vector<Tile> tiles = {{.width = 70, .height = 50, .x = 100, .y = 1000},
                                   {.width = 33, .height = 90, .x = 170, .y = 980},
                                   {.width = 20, .height = 20, .x = 110, .y = 880},
                                   {.width = 60, .height = 80, .x = 140, .y = 990, .noData = 5}};
  const TesraHandle handle(fileOf(tiles));
  ASSERT_EQ(handle.status(), 0u);
  ASSERT_EQ(gric_getWidth(handle.image()), 103u);
  ASSERT_EQ(gric_getHeight(handle.image()), 140u);
  EXPECT_EQ(gric_getGeoXOrigin(handle.image()), 100.0);
  EXPECT_EQ(gric_getGeoYOrigin(handle.image()), 1000.0);
  EXPECT_EQ(gric_getGeoXResolution(handle.image()), 1.0);
  EXPECT_EQ(gric_getGeoYResolution(handle.image()), -1.0);

  const TesraBytes expected = composed(tiles, 100, 1000, 103, 140);
  TesraBytes samples;
  ASSERT_EQ(handle.decode(0, 0, 103, 140, 1.0, samples), 0u);
  EXPECT_EQ(samples, expected);
  // And each window is a part of it.
  for (const gr_uint32 left : {0u, 39u, 69u, 70u, 102u}) {
    for (const gr_uint32 top : {0u, 19u, 64u, 99u, 139u}) {
      const gr_uint32 width = std::min(40u, 103 - left);
      const gr_uint32 height = std::min(70u, 140 - top);
      ASSERT_EQ(handle.decode(left, top, width, height, 1.0, samples), 0u);
      for (gr_uint32 row = 0; row < height; ++row) {
        for (gr_uint32 col = 0; col < width; ++col) {
          ASSERT_EQ(samples[size_t{row} * width + col],
                    expected[size_t{top + row} * 103 + left + col]);
        }
      }
    }
  }
}

TEST(TesraMosaicTest, TellsHowManyImagesThereAreAndWhereTheyCameFrom) {
  const TesraHandle handle(fileOf({{}, {.x = 8}, {.x = 16}}));
  ASSERT_EQ(handle.status(), 0u);
  const std::optional<Record> count = recordOf(handle.image(), "IMAGE::NUMBER_OF_TILES");
  ASSERT_TRUE(count.has_value());
  EXPECT_EQ(count->number, 3u);
  const std::optional<Record> name = recordOf(handle.image(), "IMAGE::INPUT_NAME");
  ASSERT_TRUE(name.has_value());
  const std::string& text = name->text;
  const size_t end = text.find(", ");
  ASSERT_NE(end, std::string::npos);
  const std::string path = text.substr(0, end);
  EXPECT_EQ(text, path + ", " + path + ", " + path);

  const TesraHandle single(fileOf({{}}));
  EXPECT_FALSE(recordOf(single.image(), "IMAGE::NUMBER_OF_TILES").has_value());
}

TEST(TesraMosaicTest, IsLockedWhenAnImageIs) {
  const TesraHandle open(fileOf({{}, {.x = 8}}));
  ASSERT_EQ(open.status(), 0u);
  EXPECT_EQ(gric_isTesraLocked(open.image()), 0);
  const TesraHandle locked(fileOf({{}, {.x = 8, .isLocked = true}}));
  ASSERT_EQ(locked.status(), 0u);
  EXPECT_EQ(gric_isTesraLocked(locked.image()), 1);
}

TEST(TesraMosaicTest, ImagesOfDifferentLevelsShowAtTheLeastMagnificationOfAny) {
  const TesraHandle handle(
      fileOf({{.width = 64, .height = 64, .levels = 4}, {.width = 64, .height = 64, .x = 64}}));
  ASSERT_EQ(handle.status(), 0u);
  EXPECT_EQ(gric_getMinMagnification(handle.image()), 1.0 / 16);
  TesraBytes samples;
  ASSERT_EQ(handle.decode(0, 0, 8, 4, 1.0 / 16, samples), 0u);
  // The second one has halves at least: it shows every eighth pixel of them.
  TesraBytes halves;
  ASSERT_EQ(handle.decode(32, 0, 32, 32, 0.5, halves), 0u);
  for (size_t row = 0; row < 4; ++row) {
    for (size_t col = 0; col < 4; ++col) {
      EXPECT_EQ(samples[row * 8 + 4 + col], halves[row * 8 * 32 + col * 8]);
    }
  }
}

TEST(TesraMosaicTest, ACoarseImageIsScaledToTheFinestOne) {
  const std::vector<Tile> tiles = {{.width = 16, .height = 16},
                                   {.width = 8, .height = 8, .x = 16, .resolution = 2}};
  const TesraHandle handle(fileOf(tiles));
  ASSERT_EQ(handle.status(), 0u);
  ASSERT_EQ(gric_getWidth(handle.image()), 32u);
  ASSERT_EQ(gric_getHeight(handle.image()), 16u);
  // At the magnification of a half it is what it is, without scaling.
  TesraBytes samples;
  ASSERT_EQ(handle.decode(8, 0, 8, 8, 0.5, samples), 0u);
  const TesraSamples coarse = samplesOf(imageOf(tiles[1], 1));
  for (size_t i = 0; i < 64; ++i) ASSERT_EQ(samples[i], coarse[0][i]);
}

TEST(TesraMosaicTest, PositionsThatNoImageCanHaveAreRefused) {
  constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
  constexpr double ENDLESS = std::numeric_limits<double>::infinity();
  // What is wrong in itself is refused where it is read.
  for (const double bad : {NO_NUMBER, ENDLESS, -ENDLESS, 0.0}) {
    EXPECT_EQ(openStatus(fileOf({{}, {.resolution = bad}})), 2005u) << bad;
  }
  EXPECT_EQ(openStatus(fileOf({{}, {.x = NO_NUMBER}})), 2005u);
  EXPECT_EQ(openStatus(fileOf({{}, {.y = ENDLESS}})), 2005u);
  // The mosaic would have too many columns or rows, or none.
  EXPECT_EQ(openStatus(fileOf({{}, {.x = 3e9}})), 50211u);
  EXPECT_EQ(openStatus(fileOf({{}, {.y = 2147483640.0}})), 50211u);
  EXPECT_EQ(openStatus(fileOf({{}, {.x = 1e300}})), 50211u);
  EXPECT_EQ(openStatus(fileOf({{.x = -1.7e308}, {.x = 1.7e308}})), 50211u);
  EXPECT_EQ(openStatus(fileOf({{}, {.resolution = 1e-300}})), 50211u);
  EXPECT_EQ(openStatus(fileOf({{}, {.resolution = 1e300}})), 50211u);
  EXPECT_EQ(openStatus(fileOf({{}, {.x = 1e20}})), 50211u);  // where 8 pixels are nothing
}

TEST(TesraMosaicTest, TheLargestMosaicOpens) {
  const TesraHandle handle(fileOf({{}, {.x = 2147483639.0}}));
  ASSERT_EQ(handle.status(), 0u);
  EXPECT_EQ(gric_getWidth(handle.image()), 2147483647u);
  TesraBytes samples;
  EXPECT_EQ(handle.decode(2147483647.0 - 20, 0, 20, 8, 1.0, samples), 0u);
}

TEST(TesraMosaicTest, ImagesOfAnotherPixelAreRefused) {
  TG3Writer writer;
  addTile(writer, {}, 0);
  TG3TestImage deep = imageOf({}, 1);
  deep.domainBits = 16;
  deep.dynamicRangeMax = 65535;
  writer.addImage(deep, samplesOf(deep));
  EXPECT_EQ(openStatus(writer.bytes()), 50205u);
}

TEST(TesraMosaicTest, AnImageThatIsDamagedRefusesTheFile) {
  TG3Writer writer;
  addTile(writer, {}, 0);
  writer.addPacket({.type = 1, .image = 1}, {});
  EXPECT_EQ(openStatus(writer.bytes()), 2001u);
}

TEST(TesraMosaicTest, AMillionEmptyHeadersAreRefused) {
  constexpr gr_uint32 NUM_HEADERS = 1000000;
  TG3Writer writer;
  for (gr_uint32 i = 0; i < NUM_HEADERS; ++i) {
    writer.addPacket({.type = 1, .image = i, .lengthBytes = 1}, {});
  }
  EXPECT_EQ(openStatus(writer.bytes()), 2012u);
  // Of as many as there is room for, the first one is refused for what it lacks.
  TG3Writer fewer;
  for (gr_uint32 i = 0; i < NUM_HEADERS / 4; ++i) {
    fewer.addPacket({.type = 1, .image = i, .lengthBytes = 1}, {});
  }
  EXPECT_EQ(openStatus(fewer.bytes()), 2001u);
}

// Opens and decodes, also at the least magnification; that it comes back is what is tested.
void openAndDecode(const TesraBytes& bytes) {
  const TesraHandle handle(bytes);
  if (handle.status() != 0) return;
  const gr_uint32 width = std::min(gric_getWidth(handle.image()), 40u);
  const gr_uint32 height = std::min(gric_getHeight(handle.image()), 20u);
  for (const double mag : {1.0, 2.0}) {
    static_cast<void>(handle.decodeStatus(0, 0, width, height, mag));
  }
  const double least = gric_getMinMagnification(handle.image());
  gr_uint32 leastWidth = 0;
  gr_uint32 leastHeight = 0;
  ASSERT_EQ(gric_getDimsAtMag(handle.image(), least, &leastWidth, &leastHeight), 0u);
  static_cast<void>(
      handle.decodeStatus(0, 0, std::min(leastWidth, 40u), std::min(leastHeight, 20u), least));
}

TEST(TesraMosaicTest, EveryTruncationAndEveryDamagedByteEndInAStatusOrAPicture) {
  const TesraBytes whole = fileOf({{.width = 12, .height = 9, .noData = 3},
                                   {.width = 9, .height = 12, .x = 10, .y = -2, .noData = 3},
                                   {.width = 8, .height = 8, .x = 2, .y = 1, .resolution = 2}});
  for (size_t length = 0; length < whole.size(); ++length) {
    openAndDecode(TesraBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
  }
  for (size_t at = 0; at < whole.size(); ++at) {
    for (const int change : {0x01, 0x40, 0xFF}) {
      TesraBytes damaged = whole;
      damaged[at] = static_cast<gr_uint8>(damaged[at] ^ change);
      openAndDecode(damaged);
    }
  }
}

// A tile of 2^26 columns on as little ground as another one of eight. Reduced to that one's least
// magnification it's a few pixels, of which each is one of very many.
TEST(TesraMosaicTest, AFewPixelsOfAHugeTileTakeLittle) {
  TG3Writer writer;
  addTile(writer, {}, 0);
  TG3TestImage huge = imageOf({}, 1);
  constexpr gr_uint32 WIDTH = 1u << 26;
  huge.width = WIDTH;
  huge.height = 8;
  huge.blockSize = 2048;
  huge.numLevels = 0;
  TG3TestGeoref georef;
  georef.geo = {0, 0, 8, -8, 8.0 / WIDTH, 8.0 / WIDTH};
  writer.addMetadata(3, 0, 1, tg3_georefBlock(georef));
  writer.addHeader(huge);
  writer.addPlaneset(huge, {});
  const TesraHandle handle(writer.bytes());
  ASSERT_EQ(handle.status(), 0u);
  ASSERT_EQ(gric_getWidth(handle.image()), WIDTH);
  const double least = gric_getMinMagnification(handle.image());
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  ASSERT_EQ(gric_getDimsAtMag(handle.image(), least, &width, &height), 0u);
  EXPECT_EQ(width, 4u);
  openAndDecode(writer.bytes());
}

}  // namespace
