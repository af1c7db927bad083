// Mosaics equal what is put together by hand of their tiles.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "tests/support/gri_testMosaic.h"

namespace {

/// The mosaic at a magnification, put together by hand: each tile as a whole, one on top of the
/// other.
struct Picture {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  std::vector<gr_uint8> samples;

  Picture(const Mosaic& mosaic, double mag, gr_uint8 background) {
    const GRIGeoCoord& geoCoord = mosaic.filter().getGeoCoord();
    width = static_cast<gr_uint32>(std::ceil(mosaic.filter().getWidth() * mag));
    height = static_cast<gr_uint32>(std::ceil(mosaic.filter().getHeight() * mag));
    samples.assign(size_t{width} * height, background);
    const std::vector<GRITile>& tiles = mosaic.manager().tiles();
    for (const GRITile& tile : tiles) {
      // Where a tile says nothing of no data, what the first one says counts.
      draw(tile, geoCoord, mag, tile.noData >= 0 ? tile.noData : tiles[0].noData);
    }
  }

  void draw(const GRITile& tile, const GRIGeoCoord& geoCoord, double mag, int noData) {
    const double xScale = tile.xResolution / geoCoord.getXResolution();
    const double yScale = tile.yResolution / geoCoord.getYResolution();
    const double x = (tile.xOrigin - geoCoord.getXOrigin()) / geoCoord.getXResolution() * mag;
    const double y = (tile.yOrigin - geoCoord.getYOrigin()) / geoCoord.getYResolution() * mag;
    const gr_int64 left = static_cast<gr_int64>(std::ceil(x - 0.5));
    const gr_int64 top = static_cast<gr_int64>(std::ceil(y - 0.5));
    const gr_int64 numCols = static_cast<gr_int64>(std::ceil(std::ceil(tile.width * xScale) * mag));
    const gr_int64 numRows =
        static_cast<gr_int64>(std::ceil(std::ceil(tile.height * yScale) * mag));
    // At the power of two that the tile has and that comes nearest to what is asked for.
    const double wanted = mag * std::sqrt(xScale * yScale);
    const double halvings = std::floor(std::log2(1.0 / wanted) + 0.5);
    const double tileMag =
        std::clamp(std::exp2(-halvings), tile.minMagnification, tile.maxMagnification);
    const gr_int64 tileCols = static_cast<gr_int64>(std::ceil(tile.width * tileMag));
    const gr_int64 tileRows = static_cast<gr_int64>(std::ceil(tile.height * tileMag));
    for (gr_int64 row = 0; row < numRows; ++row) {
      for (gr_int64 col = 0; col < numCols; ++col) {
        const gr_int64 tileCol =
            std::min(static_cast<gr_int64>(static_cast<double>(col) * tileMag / (mag * xScale)),
                     tileCols - 1);
        const gr_int64 tileRow =
            std::min(static_cast<gr_int64>(static_cast<double>(row) * tileMag / (mag * yScale)),
                     tileRows - 1);
        const gr_uint8 sample = tile.at(tileCol, tileRow, tileMag);
        if (sample == noData) continue;
        const gr_int64 c = left + col;
        const gr_int64 r = top + row;
        if (c < 0 || r < 0 || c >= gr_int64{width} || r >= gr_int64{height}) continue;
        samples[static_cast<size_t>(r * width + c)] = sample;
      }
    }
  }

  std::vector<gr_uint8> window(gr_uint32 left, gr_uint32 top, gr_uint32 numCols,
                               gr_uint32 numRows) const {
    std::vector<gr_uint8> part;
    for (gr_uint32 row = top; row < top + numRows; ++row) {
      for (gr_uint32 col = left; col < left + numCols; ++col) {
        part.push_back(samples[size_t{row} * width + col]);
      }
    }
    return part;
  }
};

void expectEqual(const std::vector<gr_uint8>& actual, const std::vector<gr_uint8>& expected,
                 size_t width) {
  ASSERT_EQ(actual.size(), expected.size());
  for (size_t i = 0; i < actual.size(); ++i) {
    ASSERT_EQ(actual[i], expected[i]) << "at " << i % width << ", " << i / width;
  }
}

/// Holds the whole picture and windows of it to what is put together by hand.
void expectComposition(const std::vector<GRITile>& tiles, double mag, gr_uint8 background,
                       std::mt19937& random) {
  for (const gr_uint32 stripHeight : {64u, 7u, 1u}) {
    const GRIPixel pixel = grayPixel(background);
    const Mosaic mosaic(tiles, {.background = &pixel, .stripHeight = stripHeight});
    ASSERT_EQ(mosaic.status(), 0u);
    const Picture picture(mosaic, mag, background);
    SCOPED_TRACE(testing::Message() << "magnification " << mag << ", strips of " << stripHeight
                                    << ", " << picture.width << " x " << picture.height);
    expectEqual(mosaic.decoded({0, 0, double(picture.width), double(picture.height), mag}),
                picture.samples, picture.width);
    for (int i = 0; i < 8; ++i) {
      const gr_uint32 left = random() % picture.width;
      const gr_uint32 top = random() % picture.height;
      const gr_uint32 numCols = random() % (picture.width - left) + 1;
      const gr_uint32 numRows = random() % (picture.height - top) + 1;
      SCOPED_TRACE(testing::Message()
                   << left << ", " << top << ": " << numCols << " x " << numRows);
      expectEqual(
          mosaic.decoded({double(left), double(top), double(numCols), double(numRows), mag}),
          picture.window(left, top, numCols, numRows), numCols);
      if (testing::Test::HasFatalFailure()) return;
      ASSERT_EQ(mosaic.log().numAlive, 0u);
    }
  }
}

TEST(GRIMosaicPictureTest, EqualsWhatIsPutTogetherByHand) {
  std::mt19937 random(31);
  for (int i = 0; i < 30; ++i) {
    SCOPED_TRACE(i);
    std::vector<GRITile> tiles;
    const size_t numTiles = 2 + random() % 8;
    for (size_t t = 0; t < numTiles; ++t) {
      GRITile tile = tileAt(random() % 120, random() % 90, random() % 50 + 1, random() % 50 + 1,
                            static_cast<gr_uint8>(random()));
      if (random() % 2 == 0) {
        tile.noData = static_cast<gr_uint8>(random() % 8);
        for (gr_uint32 s = 0; s < tile.width * tile.height; ++s) {
          tile.samples.push_back(static_cast<gr_uint8>(random() % 8));
        }
      }
      tiles.push_back(tile);
    }
    expectComposition(tiles, 1.0, 0xEE, random);
  }
}

TEST(GRIMosaicPictureTest, EqualsItAtEveryMagnificationAndForResolutionsOfPowersOfTwo) {
  std::mt19937 random(32);
  for (int i = 0; i < 20; ++i) {
    SCOPED_TRACE(i);
    std::vector<GRITile> tiles;
    for (size_t t = 0; t < 6; ++t) {
      // Places are whole pixels at all magnifications, so that nothing has to be rounded.
      GRITile tile =
          tileAt(double(random() % 16) * 8, double(random() % 12) * 8, (random() % 6 + 1) * 8,
                 (random() % 6 + 1) * 8, static_cast<gr_uint8>(random()));
      tile.xResolution = std::exp2(random() % 3);
      tile.yResolution = i % 2 == 0 ? -tile.xResolution : -std::exp2(random() % 3);
      tile.minMagnification = std::exp2(-1.0 * (random() % 4));
      tile.maxMagnification = std::exp2(random() % 3);
      if (random() % 2 == 0) {
        tile.noData = tile.base;
      }
      tiles.push_back(tile);
    }
    for (const double mag : {1.0, 0.5, 0.25, 0.125}) {
      const Mosaic mosaic(tiles);
      ASSERT_EQ(mosaic.status(), 0u);
      if (mag < mosaic.filter().getMinMagnification()) continue;
      expectComposition(tiles, mag, 3, random);
    }
    expectComposition(tiles, 2.0 > Mosaic(tiles).filter().getMaxMagnification() ? 1.0 : 2.0, 3,
                      random);
  }
}

// Tiles of a grid whose sides are no whole pixels at the magnification: none of them leaves a gap,
// and a window shows what the whole does.
TEST(GRIMosaicPictureTest, TilesSideBySideLeaveNoGapAtAnyMagnification) {
  std::mt19937 random(33);
  for (const gr_uint32 size : {37u, 50u, 64u}) {
    std::vector<GRITile> tiles;
    for (gr_uint32 row = 0; row < 4; ++row) {
      for (gr_uint32 col = 0; col < 5; ++col) {
        GRITile tile = tileAt(col * size, row * size, size, size);
        tile.samples.assign(size_t{size} * size, static_cast<gr_uint8>(1 + row * 5 + col));
        tile.minMagnification = 1.0 / 16;
        tile.maxMagnification = 4.0;
        // As positions come out of a division.
        tile.xOrigin = (tile.xOrigin * 0.1 + 1000.3) * 3.7;
        tile.yOrigin = (tile.yOrigin * 0.1 - 77.7) * 3.7;
        tile.xResolution = 0.37;
        tile.yResolution = -0.37;
        tiles.push_back(tile);
      }
    }
    const GRIPixel zero = grayPixel(0);
    for (const double mag : {4.0, 1.0, 0.5, 0.25, 0.125, 0.0625}) {
      const Mosaic mosaic(tiles, {.background = &zero, .stripHeight = 16});
      ASSERT_EQ(mosaic.status(), 0u);
      ASSERT_EQ(mosaic.filter().getWidth(), size * 5);
      gr_uint32 width = 0;
      gr_uint32 height = 0;
      ASSERT_EQ(mosaic.filter().getDimsAtMag(mag, width, height), 0u);
      const std::vector<gr_uint8> whole =
          mosaic.decoded({0, 0, double(width), double(height), mag});
      // Sizes are rounded up, so the last column and row may have no tile.
      for (gr_uint32 row = 0; row + 1 < height; ++row) {
        for (gr_uint32 col = 0; col + 1 < width; ++col) {
          ASSERT_NE(whole[row * width + col], 0)
              << size << " " << mag << ": " << col << ", " << row;
        }
      }
      for (int i = 0; i < 10; ++i) {
        const gr_uint32 left = random() % width;
        const gr_uint32 top = random() % height;
        const std::vector<gr_uint8> part = mosaic.decoded(
            {double(left), double(top), double(width - left), double(height - top), mag});
        for (gr_uint32 row = top; row < height; ++row) {
          for (gr_uint32 col = left; col < width; ++col) {
            ASSERT_EQ(part[(row - top) * (width - left) + col - left], whole[row * width + col])
                << size << " " << mag << ": " << col << ", " << row;
          }
        }
      }
    }
  }
}

TEST(GRIMosaicPictureTest, AStripThatNoTileTouchesIsBackground) {
  GRITile first = tileAt(0, 0, 10, 10);
  first.background = std::make_shared<GRIPixel>(grayPixel(99));
  const Mosaic mosaic({first, tileAt(0, 50, 10, 10)});
  ASSERT_EQ(mosaic.filter().getHeight(), 60u);
  EXPECT_EQ(mosaic.decoded({0, 12, 10, 20, 1}), std::vector<gr_uint8>(200, 99));
  EXPECT_EQ(mosaic.log().numOpened, 0u);
}

TEST(GRIMosaicPictureTest, TheBackgroundIsTheGivenOneOrTheFirstTilesOrZero) {
  const std::vector<GRITile> tiles = {tileAt(0, 0, 1, 1), tileAt(3, 0, 1, 1)};
  EXPECT_EQ(Mosaic(tiles).decoded({1, 0, 1, 1, 1})[0], 0);
  std::vector<GRITile> withBackground = tiles;
  withBackground[0].background = std::make_shared<GRIPixel>(grayPixel(99));
  withBackground[1].background = std::make_shared<GRIPixel>(grayPixel(98));
  EXPECT_EQ(Mosaic(withBackground).decoded({1, 0, 1, 1, 1})[0], 99);
  const GRIPixel given = grayPixel(50);
  EXPECT_EQ(Mosaic(withBackground, {.background = &given}).decoded({1, 0, 1, 1, 1})[0], 50);
  // Zero also where black is something else.
  std::vector<GRITile> cmyk = tiles;
  for (GRITile& tile : cmyk) tile.pixel = GRIPixel(GRI_COLORSPACE_CMYK, 4, GRI_DATATYPE_UINT8);
  const Mosaic mosaic(cmyk);
  ASSERT_NE(mosaic.filter().getBackgroundPixel(), nullptr);
  EXPECT_EQ(mosaic.filter().getBackgroundPixel()->getSample(3).getValueUint8(), 0);
}

TEST(GRIMosaicPictureTest, OfIdenticalTilesTheHigherNumberWins) {
  const Mosaic mosaic({tileAt(0, 0, 9, 9, 1), tileAt(0, 0, 9, 9, 2), tileAt(0, 0, 9, 9, 3)});
  EXPECT_EQ(mosaic.decoded({0, 0, 1, 1, 1})[0], 3);
}

TEST(GRIMosaicPictureTest, PixelsOfNoDataOfTheFirstTileCountWhereATileSaysNothing) {
  GRITile below = tileAt(0, 0, 2, 1);
  below.samples = {40, 41};
  below.noData = 7;
  GRITile above = tileAt(0, 0, 2, 1);
  above.samples = {7, 8};
  EXPECT_EQ(Mosaic({below, above}).decoded({0, 0, 2, 1, 1}), (std::vector<gr_uint8>{40, 8}));
  above.noData = 8;  // its own counts alone
  EXPECT_EQ(Mosaic({below, above}).decoded({0, 0, 2, 1, 1}), (std::vector<gr_uint8>{7, 41}));
}

TEST(GRIMosaicPictureTest, AnotherPositionOfTheWholeMovesNoTile) {
  const Mosaic mosaic({tileAt(0, 0, 10, 10, 1), tileAt(10, 0, 10, 10, 2)});
  const std::vector<gr_uint8> samples = mosaic.decoded({0, 0, 20, 10, 1});
  EXPECT_EQ(samples[10], 2);
  ASSERT_EQ(mosaic.filter().setGeoCoord(GRIGeoCoord(5000, 9000, 0.5, -0.5, 0.1, 0.2)), 0u);
  EXPECT_EQ(mosaic.decoded({0, 0, 20, 10, 1}), samples);
}

/// Holds strips of other heights to those of 64 rows.
void expectSameInStrips(const std::vector<GRITile>& tiles, const GRIScene& scene) {
  const std::vector<gr_uint8> expected = Mosaic(tiles).decoded(scene);
  const size_t width = static_cast<size_t>(scene.getNumCols());
  for (const gr_uint32 stripHeight : {1u, 3u, 7u, 1000u}) {
    SCOPED_TRACE(testing::Message()
                 << "magnification " << scene.getMag() << ", strips of " << stripHeight);
    expectEqual(Mosaic(tiles, {.stripHeight = stripHeight}).decoded(scene), expected, width);
  }
}

GRITile withAllMagnifications(GRITile tile, double resolution) {
  tile.xResolution = resolution;
  tile.yResolution = -resolution;
  tile.minMagnification = 1.0 / 16;
  tile.maxMagnification = 1 << 20;
  return tile;
}

// 3 pixels of 1.5 are 5 and not 4.5, of which the last half is several rows of an enlarged scene.
TEST(GRIMosaicPictureTest, ATileThatWasRoundedUpShowsItsLastRowsInEveryStrip) {
  const std::vector<GRITile> tiles = {withAllMagnifications(tileAt(6, 6, 10, 10, 100), 1.0),
                                      withAllMagnifications(tileAt(0, 0, 3, 3, 9), 1.5)};
  for (const double mag : {2.0, 4.0, 8.0}) {
    const GRIScene scene(0, 0, 16 * mag, 16 * mag, mag);
    expectSameInStrips(tiles, scene);
    const size_t lastRow = static_cast<size_t>(5 * mag) - 1;
    EXPECT_NE(Mosaic(tiles, {.stripHeight = 1}).decoded(scene)[lastRow * scene.getNumCols()], 0);
  }
}

/// Holds windows to what the whole shows there.
void expectWindowsOfTheWhole(const std::vector<GRITile>& tiles, double mag, std::mt19937& random) {
  SCOPED_TRACE(testing::Message() << "magnification " << mag);
  const Mosaic mosaic(tiles);
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  ASSERT_EQ(mosaic.filter().getDimsAtMag(mag, width, height), 0u);
  const std::vector<gr_uint8> whole = mosaic.decoded({0, 0, double(width), double(height), mag});
  for (int i = 0; i < 30; ++i) {
    const gr_uint32 left = random() % (width - width / 10);
    const gr_uint32 top = random() % height;
    const gr_uint32 numCols = std::min<gr_uint32>(64 + random() % 300, width - left);
    const gr_uint32 numRows = std::min<gr_uint32>(1 + random() % 30, height - top);
    SCOPED_TRACE(testing::Message() << left << ", " << top << ": " << numCols << " x " << numRows);
    std::vector<gr_uint8> expected;
    for (gr_uint32 row = top; row < top + numRows; ++row) {
      const gr_uint8* const from = &whole[size_t{row} * width + left];
      expected.insert(expected.end(), from, from + numCols);
    }
    expectEqual(mosaic.decoded({double(left), double(top), double(numCols), double(numRows), mag}),
                expected, numCols);
    if (testing::Test::HasFatalFailure()) return;
  }
}

// They take up room where they would lie, and are drawn upright all the same.
TEST(GRIMosaicPictureTest, WindowsOfRotatedTilesShowWhatTheWholeDoes) {
  std::mt19937 random(34);
  std::vector<GRITile> tiles = {tileAt(0, 0, 100, 100, 1), tileAt(40, 30, 100, 100, 2),
                                tileAt(150, 100, 50, 50, 3)};
  for (GRITile& tile : tiles) tile.xRotation = -0.9;
  const Mosaic mosaic(tiles);
  ASSERT_EQ(mosaic.status(), 0u);
  EXPECT_NE(mosaic.decoded({99, 0, 1, 1, 1})[0], 0);  // outside of the rotated box
  expectWindowsOfTheWhole(tiles, 1.0, random);
}

// From 2^50 on positions are quarters of a pixel, which are many rows of an enlarged scene.
TEST(GRIMosaicPictureTest, TilesFarAwayShowAllTheirRowsInEveryStrip) {
  const double far = std::ldexp(1.0, 50);
  const std::vector<GRITile> tiles = {
      withAllMagnifications(tileAt(far, far, 3, 3, 1), 1.0),
      withAllMagnifications(tileAt(far + 3, far + 1, 3, 3, 90), 1.0)};
  expectSameInStrips(tiles, {0, 0, 6 * 64, 4 * 64, 64});
}

// The first strip of a tile may be a decode of its own, whose few rows are no reason to show
// others.
TEST(GRIMosaicPictureTest, HowATileIsScaledDependsOnNoStrip) {
  const std::vector<GRITile> tiles = {withAllMagnifications(tileAt(600, 0, 10, 10), 1.0),
                                      withAllMagnifications(tileAt(0, 10, 500, 900), 1.0015)};
  expectSameInStrips(tiles, {0, 0, 450, 850, 1});
  expectSameInStrips(tiles, {0, 0, 450, 300, 1});  // not resampled
  expectSameInStrips(tiles, {100, 200, 400, 450, 1});
}

// Unless they are so small that a scale makes no difference of a pixel: those aren't scaled.
TEST(GRIMosaicPictureTest, WindowsOfScaledTilesShowWhatTheWholeDoes) {
  std::mt19937 random(35);
  for (const double resolution : {3.0, 1.1, 1.7, 37.3}) {
    SCOPED_TRACE(resolution);
    const gr_uint32 width = static_cast<gr_uint32>(2100 / resolution);
    std::vector<GRITile> tiles = {withAllMagnifications(tileAt(2200, 0, 10, 10), 1.0),
                                  withAllMagnifications(tileAt(13, 5, width, 60), resolution)};
    for (const double mag : {1.0, 0.5, 0.75, 1.9}) expectWindowsOfTheWhole(tiles, mag, random);
    // The same of an image that has no magnification but 1.
    tiles[1].minMagnification = tiles[1].maxMagnification = 1.0;
    for (const double mag : {1.0, 0.125}) expectWindowsOfTheWhole(tiles, mag, random);
  }
}

}  // namespace
