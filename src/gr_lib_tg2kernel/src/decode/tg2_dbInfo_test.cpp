// Grids of blocks, the walk over them, and windows at levels.

#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

// A subband whose blocks have no bands.
class PlainSubband : public TG2SubbandInfo {
 public:
  PlainSubband(const std::vector<TG2Rect>& rects, gr_uint32 width, gr_uint32 height)
      : TG2SubbandInfo(0, 0, 0), status(makeGrid(rects, width, height)) {}

  GR_STATUS getBlock(gr_uint32 index, TG2Block*& block, std::unique_ptr<TG2Block>& owned) override {
    if (index == refused) return TG2_STATUS_READ_ERROR;
    owned = gr_makeUnique<TG2Block>(1u, index, getBlockRect(index));
    block = owned.get();
    return GR_STATUS_OK;
  }

  GR_STATUS status;
  gr_uint32 refused = 0xFFFFFFFF;
};

TEST(TG2SubbandInfoTest, HasOneCellForABlockThatBeginsAtTheOrigin) {
  const PlainSubband subband({{0, 0, 9, 4}}, 10, 5);
  ASSERT_EQ(subband.status, GR_STATUS_OK);
  EXPECT_EQ(subband.getNumRows(), 1u);
  EXPECT_EQ(subband.getNumCols(), 1u);
  EXPECT_EQ(subband.getSupport(), (TG2Rect{0, 0, 9, 4}));
}

TEST(TG2SubbandInfoTest, HasALeadingCellForABlockThatBeginsBehindTheOrigin) {
  const PlainSubband subband({{3, 2, 9, 4}}, 10, 5);
  ASSERT_EQ(subband.status, GR_STATUS_OK);
  EXPECT_EQ(subband.getNumRows(), 2u);
  EXPECT_EQ(subband.getNumCols(), 2u);
  gr_uint32 index = 0;
  EXPECT_FALSE(subband.getBlockIndex(0, 0, index));
  EXPECT_FALSE(subband.getBlockIndex(0, 1, index));
  EXPECT_FALSE(subband.getBlockIndex(1, 0, index));
  EXPECT_TRUE(subband.getBlockIndex(1, 1, index));
}

TEST(TG2SubbandInfoTest, FindsPositionsInTheirInterval) {
  const PlainSubband subband({{0, 0, 4, 4}, {5, 0, 5, 4}, {6, 0, 19, 4}}, 20, 5);
  ASSERT_EQ(subband.status, GR_STATUS_OK);
  const auto expected = [](gr_int32 x) { return x < 5 ? 0u : x < 6 ? 1u : 2u; };
  for (gr_int32 x = -5; x < 30; ++x) EXPECT_EQ(subband.findCol(x), expected(x)) << x;
}

TEST(TG2SubbandInfoTest, RefusesBlocksThatDoNotFillTheirCells) {
  EXPECT_EQ(PlainSubband({{0, 0, 4, 4}, {4, 0, 9, 4}}, 10, 5).status, TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(PlainSubband({{0, 0, 4, 4}, {0, 0, 4, 4}}, 10, 5).status, TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(PlainSubband({{0, 0, 4, 4}, {0, 0, 9, 9}}, 10, 10).status, TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(PlainSubband({{0, 0, 9, 4}, {0, 5, 3, 9}}, 10, 10).status, TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(PlainSubband({{0, 0, 10, 4}}, 10, 5).status, TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(PlainSubband({{0, 0, 0, 0}}, 0, 5).status, TG2_STATUS_BAD_MARKER);
}

// The blocks of a random grid, of which some are left out, and in any order.
struct RandomGrid {
  explicit RandomGrid(std::mt19937& random) {
    std::vector<gr_int32> xs = cuts(random);
    std::vector<gr_int32> ys = cuts(random);
    for (size_t y = 0; y + 1 < ys.size(); ++y) {
      for (size_t x = 0; x + 1 < xs.size(); ++x) {
        if (random() % 3 == 0) continue;
        rects.push_back({xs[x], ys[y], xs[x + 1] - 1, ys[y + 1] - 1});
      }
    }
    if (rects.empty()) rects.push_back({xs[0], ys[0], xs[1] - 1, ys[1] - 1});
    std::shuffle(rects.begin(), rects.end(), random);
  }
  static std::vector<gr_int32> cuts(std::mt19937& random) {
    std::vector<gr_int32> made = {static_cast<gr_int32>(random() % 3)};
    for (gr_uint32 i = 1 + random() % 6; i > 0; --i) {
      made.push_back(made.back() + 1 + static_cast<gr_int32>(random() % 7));
    }
    return made;
  }
  std::vector<TG2Rect> rects;
};

TEST(TG2BlockIteratorTest, WalksJustTheBlocksThatMeetARectangleRowByRow) {
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    const RandomGrid grid(random);
    PlainSubband subband(grid.rects, 60, 60);
    ASSERT_EQ(subband.status, GR_STATUS_OK);
    for (const TG2Rect& block : grid.rects) EXPECT_TRUE(subband.getSupport().contains(block));
    TG2Rect rect;
    rect.x0 = static_cast<gr_int32>(random() % 50);
    rect.y0 = static_cast<gr_int32>(random() % 50);
    rect.x1 = rect.x0 + static_cast<gr_int32>(random() % 20);
    rect.y1 = rect.y0 + static_cast<gr_int32>(random() % 20);

    std::vector<TG2Rect> expected;
    for (const TG2Rect& block : grid.rects) {
      if (!block.intersect(rect).isEmpty()) expected.push_back(block);
    }
    std::sort(expected.begin(), expected.end(), [](const TG2Rect& a, const TG2Rect& b) {
      return a.y0 != b.y0 ? a.y0 < b.y0 : a.x0 < b.x0;
    });

    TG2BlockIterator blocks(subband);
    ASSERT_EQ(blocks.start(rect), GR_STATUS_OK);
    std::vector<TG2Rect> walked;
    while (blocks.getBlock() != nullptr) {
      EXPECT_EQ(grid.rects[blocks.getBlock()->getIndex()], blocks.getRect());
      walked.push_back(blocks.getRect());
      ASSERT_EQ(blocks.next(), GR_STATUS_OK);
    }
    EXPECT_EQ(walked, expected);
  }
}

TEST(TG2BlockIteratorTest, HandsUpTheStatusOfABlock) {
  PlainSubband subband({{0, 0, 4, 4}, {5, 0, 9, 4}}, 10, 5);
  TG2BlockIterator blocks(subband);
  subband.refused = 1;
  ASSERT_EQ(blocks.start({0, 0, 9, 4}), GR_STATUS_OK);
  EXPECT_EQ(blocks.next(), TG2_STATUS_READ_ERROR);
  EXPECT_EQ(blocks.getBlock(), nullptr);
  subband.refused = 0;
  EXPECT_EQ(blocks.start({0, 0, 9, 4}), TG2_STATUS_READ_ERROR);
}

// An index of nothing but sizes.
class PlainInfo : public TG2DBInfo {
 public:
  PlainInfo(gr_uint32 width, gr_uint32 height, gr_uint32 numLevels) : TG2DBInfo(nullptr, true) {
    m_width = width;
    m_height = height;
    m_numLevels = numLevels;
    m_supportRect = {0, 0, static_cast<gr_int32>(width - 1), static_cast<gr_int32>(height - 1)};
  }
  void setSupport(const TG2Rect& rect, gr_int32 level) {
    m_hasSupport = true;
    m_supportRect = rect;
    m_supportLevel = level;
  }
  TG2Rect levelSupport(gr_int32 level) const {
    TG2Rect rect;
    EXPECT_EQ(getLevelSupport(level, rect), GR_STATUS_OK);
    return rect;
  }
  std::unique_ptr<TG2DBInfo> clone() override { return nullptr; }
  GR_STATUS openStream() override { return GR_STATUS_OK; }
  GR_STATUS closeStream() override { return GR_STATUS_OK; }
};

TEST(TG2DBInfoTest, GivesTheWindowOfAWholeImageAtEveryLevel) {
  const PlainInfo info(101, 50, 5);
  EXPECT_EQ(info.levelSupport(0), (TG2Rect{0, 0, 100, 49}));
  EXPECT_EQ(info.levelSupport(1), (TG2Rect{0, 0, 50, 24}));
  EXPECT_EQ(info.levelSupport(5), (TG2Rect{0, 0, 3, 1}));
  EXPECT_EQ(info.levelSupport(-1), (TG2Rect{0, 0, 201, 99}));
}

TEST(TG2DBInfoTest, CutsTheWindowOfACropRatherThanRoundingItOutward) {
  PlainInfo info(100, 100, 5);
  info.setSupport({1, 1, 2, 2}, 0);
  EXPECT_EQ(info.levelSupport(1), (TG2Rect{0, 0, 0, 0}));
  info.setSupport({7, 0, 9, 99}, 0);
  EXPECT_EQ(info.levelSupport(1), (TG2Rect{3, 0, 4, 49}));
  EXPECT_EQ(info.levelSupport(-1), (TG2Rect{14, 0, 19, 199}));
}

TEST(TG2DBInfoTest, CutsAnEnlargedCropByTheFinerLevel) {
  PlainInfo info(5, 5, 3);
  info.setSupport({0, 0, 1, 1}, 2);
  EXPECT_EQ(info.levelSupport(-1), (TG2Rect{0, 0, 2, 2}));
  EXPECT_EQ(info.levelSupport(-2), (TG2Rect{0, 0, 4, 4}));
  EXPECT_EQ(info.levelSupport(-3), (TG2Rect{0, 0, 9, 9}));
}

TEST(TG2DBInfoTest, RefusesLevelsWhoseCornersPass31Bits) {
  PlainInfo info(1024, 2, 2);
  EXPECT_EQ(info.levelSupport(-20).x1, (1 << 30) - 1);
  EXPECT_EQ(info.levelSupport(-21).x1, 0x7FFFFFFF);
  TG2Rect rect;
  EXPECT_EQ(info.getLevelSupport(-22, rect), TG2_STATUS_SUPPORT_TOO_LARGE);
  EXPECT_EQ(info.getLevelSupport(-31, rect), TG2_STATUS_SUPPORT_TOO_LARGE);
  EXPECT_EQ(info.getLevelSupport(-32, rect), TG2_STATUS_LEVEL_TOO_LARGE);
  EXPECT_EQ(info.getLevelSupport(32, rect), TG2_STATUS_LEVEL_TOO_LARGE);
}

TEST(TG2DBInfoTest, MapsScenesOfACropToTheWholeImage) {
  PlainInfo info(100, 100, 5);
  info.setSupport({10, 20, 29, 39}, 1);
  TG2Rect rect;
  gr_int32 level = 0;
  ASSERT_EQ(info.getSupport({0, 0, 19, 19}, 0, rect, level), GR_STATUS_OK);
  EXPECT_EQ(rect, (TG2Rect{10, 20, 29, 39}));
  EXPECT_EQ(level, 1);
  ASSERT_EQ(info.getSupport({1, 2, 3, 4}, 1, rect, level), GR_STATUS_OK);
  EXPECT_EQ(rect, (TG2Rect{6, 12, 8, 14}));
  EXPECT_EQ(level, 2);
  EXPECT_EQ(info.getSupport({0, 0, 20, 19}, 0, rect, level), TG2_STATUS_SUPPORT_TOO_LARGE);
  EXPECT_EQ(info.getSupport({0, 0, 19, 20}, 0, rect, level), TG2_STATUS_SUPPORT_TOO_LARGE);
  EXPECT_EQ(info.getSupport({-1, 0, 5, 5}, 0, rect, level), TG2_STATUS_SUPPORT_TOO_LARGE);
  EXPECT_EQ(info.getSupport({0, -1, 5, 5}, 0, rect, level), TG2_STATUS_SUPPORT_TOO_LARGE);
  EXPECT_EQ(info.getSupport({5, 5, 4, 5}, 0, rect, level), TG2_STATUS_SUPPORT_TOO_LARGE);
}

TEST(TG2RectTest, HasASizeOf64Bits) {
  const TG2Rect all = {0, 0, 0x7FFFFFFF, 0x7FFFFFFF};
  EXPECT_EQ(all.getWidth(), gr_int64{1} << 31);
  EXPECT_TRUE(TG2Rect().isEmpty());
  EXPECT_EQ(TG2Rect().getWidth(), 0);
}

}  // namespace
