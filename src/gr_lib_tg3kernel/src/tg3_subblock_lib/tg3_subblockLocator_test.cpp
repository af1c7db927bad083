#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockLocator.h"

#include <gtest/gtest.h>

namespace {

TG3ImageInfo imageOf(gr_uint32 width, gr_uint32 height, gr_uint8 levels, gr_uint16 block) {
  TG3ImageInfo info;
  info.width = width;
  info.height = height;
  info.numLevels = levels;
  info.subblockSize = block;
  info.numComponents = 1;
  info.numPlanes = 32;
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  return info;
}

template <typename Visit>
void forEachSubblock(const TG3ImageInfo& info, Visit visit) {
  for (gr_uint32 subband = 0; subband < info.getNumSubbands(); ++subband) {
    for (gr_uint32 subblock = 0; subblock < info.getNumSubblocks(subband); ++subblock) {
      visit(subband, subblock);
    }
  }
}

TEST(TG3SubblockLocatorTest, EverySubblockMeetsTheWholeImageAndNoneLiesPartlyOut) {
  const TG3ImageInfo info = imageOf(37, 21, 3, 4);
  const TG3SubblockLocator locator(info);
  TG3SubblockRectLocator rectLocator(info);
  ASSERT_EQ(rectLocator.initialize({0, 0, 36, 20}, 0, 3), GR_STATUS_OK);
  forEachSubblock(info, [&](gr_uint32 subband, gr_uint32 subblock) {
    EXPECT_TRUE(locator.meets(subband, subblock));
    EXPECT_FALSE(locator.meetsPartly(subband, subblock));
    EXPECT_TRUE(rectLocator.meets(subband, subblock)) << subband << " " << subblock;
    EXPECT_FALSE(rectLocator.meetsPartly(subband, subblock)) << subband << " " << subblock;
  });
}

TEST(TG3SubblockLocatorTest, APixelMeetsTheSubblocksThatItIsMadeOf) {
  const TG3ImageInfo info = imageOf(64, 64, 1, 4);
  TG3SubblockRectLocator locator(info);
  // Column 8 is low-pass sample 4, made of it and of high-pass samples 3 and 4.
  ASSERT_EQ(locator.initialize({8, 8, 8, 8}, 0, 1), GR_STATUS_OK);
  const auto meets = [&](gr_uint32 subband, gr_uint32 row, gr_uint32 column) {
    return locator.meets(subband, info.getSubblockIndex(subband, row, column));
  };
  for (const gr_uint32 lowLow : {0u, 1u}) {
    EXPECT_TRUE(meets(lowLow, 1, 1));
    EXPECT_FALSE(meets(lowLow, 0, 1));
    EXPECT_FALSE(meets(lowLow, 1, 2));
  }
  EXPECT_TRUE(meets(2, 1, 0));
  EXPECT_TRUE(meets(2, 1, 1));
  EXPECT_FALSE(meets(2, 0, 1));
  EXPECT_TRUE(meets(3, 0, 1));
  EXPECT_FALSE(meets(3, 0, 0));
  EXPECT_TRUE(meets(4, 0, 0));
  EXPECT_FALSE(meets(4, 2, 0));
  EXPECT_TRUE(locator.meetsPartly(4, 0));
}

TEST(TG3SubblockLocatorTest, ContributionRisesWithCoverage) {
  const TG3ImageInfo info = imageOf(64, 64, 1, 8);
  float before = 0;
  for (gr_int32 last = 0; last < 14; last += 2) {
    TG3SubblockRectLocator locator(info);
    ASSERT_EQ(locator.initialize({0, 0, last, 63}, 0, 1), GR_STATUS_OK);
    const float contribution = locator.getContribution(4, 0);
    EXPECT_GT(contribution, before);
    before = contribution;
  }
  const TG3SubblockLocator whole(info);
  EXPECT_EQ(whole.getContribution(4, 0), 1.0F);
}

TEST(TG3SubblockLocatorTest, SubbandsOutsideTheScalesAnswerNo) {
  const TG3ImageInfo info = imageOf(64, 64, 3, 8);
  TG3SubblockRectLocator locator(info);
  ASSERT_EQ(locator.initialize({0, 0, 31, 31}, 1, 1), GR_STATUS_OK);
  for (gr_uint32 subband = 0; subband <= 4; ++subband) EXPECT_FALSE(locator.meets(subband, 0));
  for (gr_uint32 subband = 5; subband <= 8; ++subband) EXPECT_TRUE(locator.meets(subband, 0));
  for (gr_uint32 subband = 9; subband <= 12; ++subband) EXPECT_FALSE(locator.meets(subband, 0));
}

TEST(TG3SubblockLocatorTest, WithoutLevelsTheRectangleIsTheSupport) {
  const TG3ImageInfo info = imageOf(20, 20, 0, 8);
  TG3SubblockRectLocator locator(info);
  ASSERT_EQ(locator.initialize({8, 0, 15, 7}, 0, 0), GR_STATUS_OK);
  EXPECT_FALSE(locator.meets(0, 0));
  EXPECT_TRUE(locator.meets(0, 1));
  EXPECT_FALSE(locator.meetsPartly(0, 1));
  EXPECT_FALSE(locator.meets(0, 2));
}

TEST(TG3SubblockLocatorTest, CountsRectangleAndScalesFromTheVisibleImage) {
  TG3ImageInfo info = imageOf(64, 64, 2, 8);
  ASSERT_EQ(info.initializeVirtualSupport({32, 32, 63, 63}, 1), GR_STATUS_OK);
  TG3SubblockRectLocator locator(info);
  // At full size of the visible image its corner is pixel (16, 16) of level 1's output.
  ASSERT_EQ(locator.initialize({2, 2, 3, 3}, 0, 0), GR_STATUS_OK);
  EXPECT_TRUE(locator.meets(1, info.getSubblockIndex(1, 1, 1)));
  EXPECT_FALSE(locator.meets(1, 0));
  EXPECT_FALSE(locator.meets(8, 0));
  EXPECT_EQ(locator.initialize({2, 2, 16, 16}, 0, 0), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(locator.initialize({2, 2, 3, 3}, 0, 2), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3SubblockLocatorTest, RefusesRectanglesOutsideTheImageAndScalesItHasNot) {
  const TG3ImageInfo info = imageOf(20, 10, 2, 8);
  TG3SubblockRectLocator locator(info);
  for (const TG3Rect& bad :
       {TG3Rect{-1, 0, 3, 3}, TG3Rect{0, -1, 3, 3}, TG3Rect{0, 0, 20, 3}, TG3Rect{0, 0, 3, 10},
        TG3Rect{3, 0, 2, 3}, TG3Rect{0, 0, 0x7FFFFFFF, 0x7FFFFFFF}}) {
    EXPECT_EQ(locator.initialize(bad, 0, 2), TG3_STATUS_BAD_ARGUMENT);
  }
  EXPECT_EQ(locator.initialize({0, 0, 1, 1}, 1, 0), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(locator.initialize({0, 0, 1, 1}, 0, 3), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(locator.initialize({0, 0, 1, 1}, -1, 0), TG3_STATUS_BAD_ARGUMENT);
}

}  // namespace
