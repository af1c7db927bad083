#include "filters/gri_mosaicLayout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "tests/support/gri_testMosaic.h"

namespace {

constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double ENDLESS = std::numeric_limits<double>::infinity();

TEST(GRIMosaicLayoutTest, NeedsImages) {
  EXPECT_EQ(statusOf({}), 50203u);
  GRUtilSmartPointer<GRITileManager> manager(
      gr_makeUnique<GRITileManager>(std::vector<GRITile>(2)).release());
  manager->givesNull = true;
  GRUtilSmartPointer<GRIMosaicFilter> filter(gr_makeUnique<GRIMosaicFilter>().release());
  EXPECT_EQ(filter->initialize(*manager, nullptr, true, true), 50203u);
}

TEST(GRIMosaicLayoutTest, AStatusOfATileIsHandedOn) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 1, 1), tileAt(1, 0, 1, 1)};
  tiles[1].failure = 4711;
  EXPECT_EQ(statusOf(tiles), 4711u);
}

TEST(GRIMosaicLayoutTest, PixelsMustAgree) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 1, 1), tileAt(1, 0, 1, 1)};
  tiles[1].pixel = GRIPixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  EXPECT_EQ(statusOf(tiles), 50205u);
  tiles[1].pixel = GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16);
  EXPECT_EQ(statusOf(tiles), 50205u);
}

TEST(GRIMosaicLayoutTest, SignsOfTheResolutionsMustAgree) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 1, 1), tileAt(1, 0, 1, 1)};
  tiles[1].xResolution = -1;
  EXPECT_EQ(statusOf(tiles), 50206u);
  tiles[1].xResolution = 1;
  tiles[1].yResolution = 1;
  EXPECT_EQ(statusOf(tiles), 50207u);
}

std::vector<GRITile> tilesOfRatio(double xRatio, double yRatio, gr_uint32 size = 100) {
  std::vector<GRITile> tiles = {tileAt(0, 0, size, size), tileAt(size, 0, size, size)};
  tiles[1].xResolution *= xRatio;
  tiles[1].yResolution *= yRatio;
  return tiles;
}

TEST(GRIMosaicLayoutTest, StrictlyResolutionsAreTheSameUpToABillionth) {
  const MosaicOptions strict{.isApproximate = false, .useMultires = false};
  EXPECT_EQ(statusOf(tilesOfRatio(1, 1), strict), 0u);
  EXPECT_EQ(statusOf(tilesOfRatio(1 + 1e-10, 1 - 1e-10), strict), 0u);
  EXPECT_EQ(statusOf(tilesOfRatio(1 + 1e-08, 1), strict), 50206u);
  EXPECT_EQ(statusOf(tilesOfRatio(1 - 1e-08, 1), strict), 50206u);
  EXPECT_EQ(statusOf(tilesOfRatio(1, 1 + 1e-08), strict), 50207u);
}

TEST(GRIMosaicLayoutTest, ApproximatelyPixelsHaveTheSameShapeUpToOnePixelOfTheTile) {
  const MosaicOptions approximate{.isApproximate = true, .useMultires = false};
  EXPECT_EQ(statusOf(tilesOfRatio(1.009, 1), approximate), 0u);
  EXPECT_EQ(statusOf(tilesOfRatio(1.011, 1), approximate), 50206u);
  EXPECT_EQ(statusOf(tilesOfRatio(1, 1.011), approximate), 50206u);  // 0.989 of the width
  EXPECT_EQ(statusOf(tilesOfRatio(3, 3), approximate), 0u);
  std::vector<GRITile> high = tilesOfRatio(1, 1.02, 10);
  high[1].height = 100;  // which a hundredth moves by two pixels
  EXPECT_EQ(statusOf(high, approximate), 50207u);
}

TEST(GRIMosaicLayoutTest, OfSeveralResolutionsStrictlyEachIsAPowerOfTwoAndTheSameBothWays) {
  const MosaicOptions strict{.isApproximate = false, .useMultires = true};
  EXPECT_EQ(statusOf(tilesOfRatio(4, 4), strict), 0u);
  EXPECT_EQ(statusOf(tilesOfRatio(0.5, 0.5), strict), 0u);  // now the first is the coarser one
  EXPECT_EQ(statusOf(tilesOfRatio(3, 4), strict), 50212u);
  EXPECT_EQ(statusOf(tilesOfRatio(4, 3), strict), 50213u);
  EXPECT_EQ(statusOf(tilesOfRatio(4, 2), strict), 50206u);
  const MosaicOptions approximate{.isApproximate = true, .useMultires = true};
  EXPECT_EQ(statusOf(tilesOfRatio(3, 1.7), approximate), 0u);
}

TEST(GRIMosaicLayoutTest, PositionsThatNoImageCanHaveAreRefused) {
  const auto with = [](const std::function<void(GRITile&)>& change) {
    GR_STATUS status = 0;
    for (const size_t number : {size_t{0}, size_t{1}}) {
      std::vector<GRITile> tiles = {tileAt(0, 0, 10, 10), tileAt(10, 0, 10, 10)};
      change(tiles[number]);
      status = statusOf(tiles);
      if (status == 0) return status;
    }
    return status;
  };
  for (const double bad : {NO_NUMBER, ENDLESS}) {
    EXPECT_EQ(with([&](GRITile& tile) { tile.xResolution = bad; }), 50211u) << bad;
    EXPECT_EQ(with([&](GRITile& tile) { tile.yResolution = -bad; }), 50211u) << bad;
    EXPECT_EQ(with([&](GRITile& tile) { tile.xOrigin = bad; }), 50211u) << bad;
    EXPECT_EQ(with([&](GRITile& tile) { tile.yOrigin = -bad; }), 50211u) << bad;
  }
  EXPECT_EQ(with([](GRITile& tile) { tile.xResolution = 0; }), 50211u);
  EXPECT_EQ(with([](GRITile& tile) { tile.yResolution = 0; }), 50211u);
  EXPECT_EQ(with([](GRITile& tile) { tile.xResolution = 1e308; }), 50211u);
  EXPECT_EQ(with([](GRITile& tile) { tile.xResolution = 1e-320; }), 50211u);
  EXPECT_EQ(with([](GRITile& tile) { tile.xOrigin = 1e18; }), 50211u);  // 10 pixels are nothing
  EXPECT_EQ(with([](GRITile& tile) { tile.xOrigin = 3e9; }), 50211u);
  EXPECT_EQ(with([](GRITile& tile) { tile.yOrigin = 4e9; }), 50211u);
  EXPECT_EQ(with([](GRITile& tile) { tile.width = 0; }), 50211u);
}

TEST(GRIMosaicLayoutTest, AMosaicOfAsManyColumnsAsAreCountedDecodesAtItsEnds) {
  const Mosaic mosaic({tileAt(0, 0, 10, 10, 1), tileAt(2147483637.0, 0, 10, 10, 2)});
  ASSERT_EQ(mosaic.status(), 0u);
  ASSERT_EQ(mosaic.filter().getWidth(), 2147483647u);
  EXPECT_EQ(mosaic.decoded({0, 0, 5, 5, 1})[0], 1);
  EXPECT_EQ(mosaic.decoded({2147483637.0, 0, 10, 10, 1})[0], 2);
}

// Positions are numbers of 53 bits: from 2^50 on, of steps of a quarter.
TEST(GRIMosaicLayoutTest, PositionsTooFarAwayToTellPixelsApartAreRefused) {
  for (const double sign : {1.0, -1.0}) {
    const auto statusAt = [&](double column, double row) {
      return statusOf({tileAt(column, row, 64, 64), tileAt(column + 64, row, 64, 64)});
    };
    const double far = sign * std::ldexp(1.0, 50);
    const double tooFar = sign * std::ldexp(1.0, 51);
    EXPECT_EQ(statusAt(far, 0), 0u);
    EXPECT_EQ(statusAt(0, far), 0u);
    EXPECT_EQ(statusAt(tooFar + 100 * sign, 0), 50211u);
    EXPECT_EQ(statusAt(0, tooFar + 100 * sign), 50211u);
  }
}

}  // namespace
