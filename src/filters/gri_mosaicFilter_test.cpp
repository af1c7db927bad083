#include "filters/gri_mosaicFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "image/gri_delegates.h"
#include "metadata/gri_metadataAcc.h"
#include "tests/support/gri_testMosaic.h"

namespace {

using Calls = std::vector<std::string>;

TEST(GRIMosaicFilterTest, OfTwoTilesThatShareAnEdgeTheStripThatEndsThereGetsOne) {
  const std::vector<GRITile> tiles = {tileAt(0, 0, 10, 16, 1), tileAt(0, 16, 10, 16, 2)};
  const Mosaic mosaic(tiles, {.stripHeight = 16});
  mosaic.decoded({0, 0, 10, 16, 1});
  EXPECT_EQ(mosaic.log().numOpened, 1u);
  EXPECT_EQ(mosaic.log().calls, (Calls{"0 begin 0+16", "0 strip 0+16", "0 end"}));
  mosaic.log() = GRITileLog();
  mosaic.decoded({0, 0, 10, 32, 1});
  EXPECT_EQ(mosaic.log().calls, (Calls{"0 begin 0+16", "0 strip 0+16", "0 end", "1 begin 0+16",
                                       "1 strip 0+16", "1 end"}));
  EXPECT_EQ(mosaic.log().mostAlive, 1u);
}

TEST(GRIMosaicFilterTest, ATileInsideOfOneStripOpensDecodesAndClosesThere) {
  const Mosaic mosaic({tileAt(0, 0, 10, 100), tileAt(2, 20, 4, 5)}, {.stripHeight = 16});
  mosaic.decoded({0, 0, 10, 100, 1});
  const Calls& calls = mosaic.log().calls;
  const auto begin = std::find(calls.begin(), calls.end(), "1 begin 0+5");
  ASSERT_NE(begin, calls.end());
  EXPECT_EQ(Calls(begin, begin + 3), (Calls{"1 begin 0+5", "1 strip 0+5", "1 end"}));
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "1 end"), 1);
}

TEST(GRIMosaicFilterTest, AWindowOpensTheTilesThatItTouchesAndNoOther) {
  std::vector<GRITile> tiles;
  for (gr_uint32 i = 0; i < 10000; ++i) {
    const gr_uint32 row = i / 100;
    tiles.push_back(tileAt(i % 100 * 256, row * 256, 256, 256));
  }
  const Mosaic mosaic(tiles);
  ASSERT_EQ(mosaic.status(), 0u);
  ASSERT_EQ(mosaic.filter().getWidth(), 25600u);
  mosaic.decoded({256 * 50 - 10, 256 * 70 - 10, 20, 20, 1});
  EXPECT_EQ(mosaic.log().numOpened, 4u);
  EXPECT_EQ(mosaic.log().mostAlive, 4u);
  EXPECT_EQ(mosaic.log().numAlive, 0u);
  // One whose sides are those of tiles opens just them.
  mosaic.log() = GRITileLog();
  mosaic.decoded({256 * 50, 256 * 70, 512, 512, 1});
  EXPECT_EQ(mosaic.log().numOpened, 4u);
}

TEST(GRIMosaicFilterTest, AWholeDecodeKeepsOneRowOfTilesOpenAndOpensEachOnce) {
  std::vector<GRITile> tiles;
  for (gr_uint32 i = 0; i < 200; ++i) {
    const gr_uint32 row = i / 10;
    tiles.push_back(tileAt(i % 10 * 32, row * 32, 32, 32));
  }
  const Mosaic mosaic(tiles, {.stripHeight = 16});
  mosaic.decoded({0, 0, 320, 640, 1});
  EXPECT_EQ(mosaic.log().numOpened, 200u);
  EXPECT_EQ(mosaic.log().mostAlive, 10u);
  // With strips that aren't in line with the tiles there are two rows of them for a while.
  mosaic.log() = GRITileLog();
  ASSERT_EQ(mosaic.filter().setStripHeight(24), 0u);
  mosaic.decoded({0, 0, 320, 640, 1});
  EXPECT_EQ(mosaic.log().numOpened, 200u);
  EXPECT_EQ(mosaic.log().mostAlive, 20u);
}

TEST(GRIMosaicFilterTest, TilesStayForLaterScenesWhenTheyAreNotToBeReleased) {
  const Mosaic mosaic({tileAt(0, 0, 10, 10), tileAt(10, 0, 10, 10), tileAt(20, 0, 10, 10)},
                      {.releasesTiles = false});
  mosaic.decoded({0, 0, 15, 10, 1});
  EXPECT_EQ(mosaic.filter().getNumOpenTiles(), 2u);
  EXPECT_EQ(mosaic.log().numOpened, 2u);
  mosaic.decoded({5, 0, 25, 10, 1});
  EXPECT_EQ(mosaic.log().numOpened, 3u);
  EXPECT_EQ(mosaic.log().numAlive, 3u);
}

TEST(GRIMosaicFilterTest, ATileCanBeAskedForAndIsPlaced) {
  const Mosaic mosaic({tileAt(0, 0, 10, 10), tileAt(25, 3, 10, 10)});
  GRIEmbeddedImage* stage = nullptr;
  ASSERT_EQ(mosaic.filter().getImageStage(1, stage), 0u);
  EXPECT_EQ(stage->getWidth(), 35u);
  EXPECT_EQ(stage->getOffsetX(1.0), 25.0);
  EXPECT_EQ(stage->getOffsetY(1.0), 3.0);
  EXPECT_EQ(mosaic.filter().getImageStage(2, stage), 3u);
  EXPECT_EQ(stage, nullptr);
}

class Delegate : public GRIMosaicFilter::TileCreatedDelegate {
 public:
  GR_STATUS onTileCreated(gr_uint32 tile, GRIImageStage& stage) override {
    tiles.push_back(tile);
    widths.push_back(stage.getWidth());
    return tile == failing ? 815 : 0;
  }
  std::vector<gr_uint32> tiles;
  std::vector<gr_uint32> widths;
  gr_uint32 failing = ~0u;
};

TEST(GRIMosaicFilterTest, TheDelegateHearsOfEachTileAndCanRefuseIt) {
  const Mosaic mosaic({tileAt(0, 0, 10, 10), tileAt(10, 0, 11, 10)});
  Delegate delegate;
  mosaic.filter().setTileCreatedDelegate(&delegate);
  mosaic.decoded({0, 0, 21, 10, 1});
  EXPECT_EQ(delegate.tiles, (std::vector<gr_uint32>{0, 1}));
  EXPECT_EQ(delegate.widths, (std::vector<gr_uint32>{10, 11}));
  delegate.failing = 1;
  std::vector<gr_uint8> samples;
  EXPECT_EQ(mosaic.decode({0, 0, 21, 10, 1}, samples), 815u);
  EXPECT_EQ(mosaic.log().numAlive, 0u);
}

TEST(GRIMosaicFilterTest, AFailingTileEndsTheDecodeAndTheMosaicGoesOn) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 10, 40, 5), tileAt(10, 20, 10, 10)};
  tiles[1].stripFailure = 4711;
  const Mosaic mosaic(tiles, {.stripHeight = 8});
  std::vector<gr_uint8> samples;
  EXPECT_EQ(mosaic.decode({0, 0, 20, 40, 1}, samples), 4711u);
  const Calls& calls = mosaic.log().calls;
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "0 end"), 1);
  EXPECT_EQ(mosaic.log().numAlive, 0u);
  EXPECT_EQ(mosaic.decoded({0, 0, 20, 10, 1})[0], 5);
  // The same when it can't be opened any more.
  mosaic.manager().tiles()[0].failure = 4712;
  EXPECT_EQ(mosaic.decode({0, 0, 20, 10, 1}, samples), 4712u);
  // Or is another one.
  mosaic.manager().tiles()[0].failure = 0;
  mosaic.manager().tiles()[0].width = 11;
  EXPECT_EQ(mosaic.decode({0, 0, 20, 10, 1}, samples), 50205u);
}

/// Stops what asks it for the n-th time.
class StopDelegate : public GRIInterruptDelegate {
 public:
  explicit StopDelegate(int number) : m_left(number) {}
  GR_STATUS getInterruptStatus() override { return --m_left == 0 ? 4711 : 0; }

 private:
  int m_left;
};

TEST(GRIMosaicFilterTest, WhereverADecodeIsStoppedEachTileThatBeganIsEnded) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 10, 20), tileAt(10, 5, 5, 5), tileAt(15, 3, 4, 4)};
  tiles[1].xResolution = 1.5;
  tiles[1].yResolution = -1.5;
  int number = 0;
  for (bool isStopped = true; isStopped;) {
    SCOPED_TRACE(++number);
    ASSERT_LT(number, 200);
    const Mosaic mosaic(tiles, {.stripHeight = 4, .releasesTiles = false});
    StopDelegate delegate(number);
    mosaic.filter().setInterruptDelegate(&delegate);
    std::vector<gr_uint8> samples;
    const GR_STATUS status = mosaic.decode({0, 0, 19, 20, 1}, samples);
    isStopped = status != 0;
    ASSERT_EQ(status, isStopped ? 4711u : 0u);
    const Calls& calls = mosaic.log().calls;
    const auto countOf = [&](const char* call) {
      return std::count_if(calls.begin(), calls.end(), [&](const std::string& text) {
        return text.find(call) != std::string::npos;
      });
    };
    EXPECT_EQ(countOf("begin"), countOf("end"));
    mosaic.filter().setInterruptDelegate(nullptr);
    EXPECT_EQ(mosaic.decoded({0, 0, 19, 20, 1}), Mosaic(tiles).decoded({0, 0, 19, 20, 1}));
  }
  EXPECT_GT(number, 20);
}

TEST(GRIMosaicFilterTest, LiesWhereItsTilesLie) {
  GRITile first = tileAt(100, 50, 10, 10);
  first.wkt = "first";
  GRITile second = tileAt(90, 70, 10, 10);
  second.wkt = "second";
  const Mosaic mosaic({first, second});
  const GRIGeoCoord& geoCoord = mosaic.filter().getGeoCoord();
  EXPECT_EQ(mosaic.filter().getWidth(), 20u);
  EXPECT_EQ(mosaic.filter().getHeight(), 30u);
  EXPECT_EQ(geoCoord.getXOrigin(), 90);
  EXPECT_EQ(geoCoord.getYOrigin(), -50);
  EXPECT_EQ(geoCoord.getXResolution(), 1);
  EXPECT_EQ(geoCoord.getYResolution(), -1);
  EXPECT_STREQ(geoCoord.getWKT(), "first");
  EXPECT_FALSE(mosaic.filter().isGeoCoordImplicit());
}

TEST(GRIMosaicFilterTest, SignsOfTheResolutionsChooseTheCorner) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 10, 10, 1), tileAt(20, -30, 5, 5, 2)};
  for (GRITile& tile : tiles) {
    tile.xResolution = -2;
    tile.yResolution = 2;
  }
  const Mosaic mosaic(tiles);  // x from -20 to 20, y from 0 to 40
  const GRIGeoCoord& geoCoord = mosaic.filter().getGeoCoord();
  EXPECT_EQ(geoCoord.getXOrigin(), 20);
  EXPECT_EQ(geoCoord.getYOrigin(), 0);
  EXPECT_EQ(geoCoord.getXResolution(), -2);
  EXPECT_EQ(geoCoord.getYResolution(), 2);
  EXPECT_EQ(mosaic.filter().getWidth(), 20u);
  EXPECT_EQ(mosaic.filter().getHeight(), 20u);
  const std::vector<gr_uint8> samples = mosaic.decoded({0, 0, 20, 20, 1});
  EXPECT_EQ(samples[10], 1);
  EXPECT_EQ(samples[size_t{15} * 20], 2);
}

TEST(GRIMosaicFilterTest, MagnificationsReachAsFarAsThoseOfAnyTile) {
  GRITile fine = tileAt(0, 0, 64, 64);
  fine.minMagnification = 0.25;
  fine.maxMagnification = 2;
  GRITile coarse = tileAt(64, 0, 16, 16);
  coarse.xResolution = 2;
  coarse.yResolution = -8;
  coarse.minMagnification = 0.25;
  coarse.maxMagnification = 2;
  const Mosaic mosaic({fine, coarse});  // of pixels 4 times as large
  EXPECT_EQ(mosaic.filter().getMinMagnification(), 1.0 / 16);
  EXPECT_EQ(mosaic.filter().getMaxMagnification(), 8.0);
  GRITile one = tileAt(0, 0, 4, 4);
  EXPECT_EQ(Mosaic({one, one}).filter().getMinMagnification(), 1.0);
  EXPECT_EQ(Mosaic({one, one}).filter().getMaxMagnification(), 1.0);
}

TEST(GRIMosaicFilterTest, RecordsNamesSizesAndTheNumberOfTiles) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 1, 1), tileAt(1, 0, 1, 1), tileAt(2, 0, 1, 1)};
  tiles[0].name = "a.tif";
  tiles[0].fileSize = 10;
  tiles[2].name = "b.tif";
  tiles[2].fileSize = gr_uint64{1} << 40;
  const Mosaic mosaic(tiles);
  const GRIMetadataAccConst records(mosaic.filter().getMetadata());
  const char* name = nullptr;
  gr_uint64 size = 0;
  gr_uint32 count = 0;
  ASSERT_EQ(records.getTagScalar("IMAGE::INPUT_NAME", name), 0u);
  EXPECT_STREQ(name, "a.tif, b.tif");
  ASSERT_EQ(records.getTagScalar("IMAGE::INPUT_FILE_SIZE", size), 0u);
  EXPECT_EQ(size, (gr_uint64{1} << 40) + 10);
  ASSERT_EQ(records.getTagScalar(GRIMosaicFilter::NUM_TILES_TAG, count), 0u);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(mosaic.filter().getSourceFileSize(), 3000);
  const Mosaic nameless({tileAt(0, 0, 1, 1), tileAt(1, 0, 1, 1)});
  EXPECT_FALSE(nameless.filter().getMetadata().has("IMAGE::INPUT_NAME"));
  EXPECT_FALSE(nameless.filter().getMetadata().has("IMAGE::INPUT_FILE_SIZE"));
}

TEST(GRIMosaicFilterTest, NamesOfMoreThanAMegabyteAreCutBehindAName) {
  std::vector<GRITile> tiles;
  for (gr_uint32 i = 0; i < 300; ++i) {
    tiles.push_back(tileAt(i, 0, 1, 1));
    tiles.back().name = std::string(5000, 'x');
  }
  const Mosaic mosaic(tiles);
  const char* name = nullptr;
  ASSERT_EQ(
      GRIMetadataAccConst(mosaic.filter().getMetadata()).getTagScalar("IMAGE::INPUT_NAME", name),
      0u);
  const size_t length = std::string(name).size();
  EXPECT_LE(length, size_t{1} << 20);
  EXPECT_EQ(length % 5002, 5000u);
}

TEST(GRIMosaicFilterTest, IsSelectiveWhenAllTilesAre) {
  std::vector<GRITile> tiles = {tileAt(0, 0, 1, 1), tileAt(1, 0, 1, 1)};
  EXPECT_TRUE(Mosaic(tiles).filter().isSelective());
  tiles[1].isSelective = false;
  EXPECT_FALSE(Mosaic(tiles).filter().isSelective());
}

TEST(GRIMosaicFilterTest, ASceneCostsWhatItsTilesCostButNoMoreThanItsPixels) {
  const Mosaic mosaic({tileAt(0, 0, 1024, 8), tileAt(0, 0, 1024, 8), tileAt(0, 100, 1024, 8)});
  EXPECT_EQ(mosaic.filter().getSceneCost({0, 0, 1024, 8, 1}), 8);
  EXPECT_EQ(mosaic.filter().getSceneCost({0, 0, 1024, 108, 1}), 24);
  EXPECT_EQ(mosaic.filter().getSceneCost({0, 50, 1024, 10, 1}), 0);
  EXPECT_EQ(mosaic.log().numOpened, 0u);
}

}  // namespace
