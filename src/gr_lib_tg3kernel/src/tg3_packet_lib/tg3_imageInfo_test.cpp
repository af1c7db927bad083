#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/tg3_testGeometry.h"

namespace {

TG3ImageInfo imageOf(gr_uint32 width, gr_uint32 height, gr_uint8 levels, gr_uint16 blockSize = 64) {
  TG3ImageInfo info;
  info.width = width;
  info.height = height;
  info.numLevels = levels;
  info.subblockSize = blockSize;
  info.numComponents = 1;
  info.numPlanes = 32;
  return info;
}

TG3ImageInfo madeImage(gr_uint32 width, gr_uint32 height, gr_uint8 levels,
                       gr_uint16 blockSize = 64) {
  TG3ImageInfo info = imageOf(width, height, levels, blockSize);
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  return info;
}

TEST(TG3ImageInfoTest, HasOneSubbandOfTheImagesSizeWithoutLevels) {
  const TG3ImageInfo info = madeImage(7, 9, 0);
  EXPECT_EQ(info.getNumSubbands(), 1u);
  EXPECT_EQ(info.getSubbandColumns(0), 7u);
  EXPECT_EQ(info.getSubbandRows(0), 9u);
}

TEST(TG3ImageInfoTest, SplitsOddSizesInFavourOfTheLowBands) {
  const TG3ImageInfo info = madeImage(5, 3, 1);
  const gr_uint32 sizes[5][2] = {{3, 2}, {3, 2}, {2, 2}, {3, 1}, {2, 1}};
  for (gr_uint32 band = 0; band < 5; ++band) {
    EXPECT_EQ(info.getSubbandColumns(band), sizes[band][0]) << band;
    EXPECT_EQ(info.getSubbandRows(band), sizes[band][1]) << band;
  }
}

TEST(TG3ImageInfoTest, AgreesWithTheRulesOnAnyGeometry) {
  std::mt19937 random(11);
  for (int i = 0; i < 300; ++i) {
    const gr_uint32 width = 1 + random() % 500;
    const gr_uint32 height = 1 + random() % 500;
    const gr_uint8 levels = static_cast<gr_uint8>(random() % 8);
    const gr_uint16 size = static_cast<gr_uint16>(1 + random() % 70);
    SCOPED_TRACE(testing::Message()
                 << width << " x " << height << " levels " << int{levels} << " blocks " << size);
    const TG3ImageInfo info = madeImage(width, height, levels, size);
    const TG3TestGeometry rules(width, height, levels, size);
    EXPECT_EQ(info.getTotalSubblocks(), rules.totalBlocks());
    for (gr_uint32 band = 0; band < info.getNumSubbands(); ++band) {
      const TG3TestGeometry::Band& of = rules.bands()[band];
      ASSERT_EQ(info.getSubbandColumns(band), of.columns);
      ASSERT_EQ(info.getSubbandRows(band), of.rows);
      ASSERT_EQ(info.getNumSubblocks(band), of.numBlocks());
      for (gr_uint32 block = 0; block < of.numBlocks(); ++block) {
        const TG3TestGeometry::Rect expected = rules.blockRect(band, block);
        const TG3Rect rect = info.getSubblockRect(band, block);
        ASSERT_EQ(rect.left, static_cast<gr_int32>(expected.left));
        ASSERT_EQ(rect.top, static_cast<gr_int32>(expected.top));
        ASSERT_EQ(rect.width(), expected.width);
        ASSERT_EQ(rect.height(), expected.height);
        ASSERT_EQ(info.getSubblockIndex(band, info.getSubblockRow(band, block),
                                        info.getSubblockColumn(band, block)),
                  block);
      }
    }
  }
}

TEST(TG3ImageInfoTest, GivesANarrowSubbandOneColumnOfSubblocks) {
  const TG3ImageInfo info = madeImage(2, 40, 1, 16);
  EXPECT_EQ(info.getSubblockColumns(4), 1u);
  EXPECT_EQ(info.getSubblockRect(4, 0).width(), 1);
}

TEST(TG3ImageInfoTest, GivesAnEmptySubbandNoSubblocks) {
  const TG3ImageInfo info = madeImage(1, 1, 1);
  for (const gr_uint32 band : {2, 3, 4}) EXPECT_EQ(info.getNumSubblocks(band), 0u) << band;
  EXPECT_EQ(info.getTotalSubblocks(), 2u);
}

TEST(TG3ImageInfoTest, KnowsLevelsAndFiltersOfSubbands) {
  EXPECT_EQ(TG3ImageInfo::getLevel(0), 1u);
  EXPECT_EQ(TG3ImageInfo::getLevel(1), 1u);
  EXPECT_EQ(TG3ImageInfo::getLevel(4), 1u);
  EXPECT_EQ(TG3ImageInfo::getLevel(5), 2u);
  EXPECT_FALSE(TG3ImageInfo::isHighInX(0) || TG3ImageInfo::isHighInY(0));
  EXPECT_FALSE(TG3ImageInfo::isHighInX(5) || TG3ImageInfo::isHighInY(5));
  EXPECT_TRUE(TG3ImageInfo::isHighInX(6) && !TG3ImageInfo::isHighInY(6));
  EXPECT_TRUE(!TG3ImageInfo::isHighInX(7) && TG3ImageInfo::isHighInY(7));
  EXPECT_TRUE(TG3ImageInfo::isHighInX(8) && TG3ImageInfo::isHighInY(8));
}

TEST(TG3ImageInfoTest, RefusesSizesThatNoImageHas) {
  const auto refuses = [](void (*change)(TG3ImageInfo&)) {
    TG3ImageInfo info = imageOf(100, 100, 3);
    change(info);
    return info.initializeSubbands() == TG3_STATUS_FORMAT_ERROR;
  };
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.width = 0; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.height = 0; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.width = 0x80000000; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.height = 0xFFFFFFFF; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.numLevels = 32; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.numLevels = 255; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.numComponents = 0; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.numPlanes = 0; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.numPlanes = 33; }));
  EXPECT_TRUE(refuses([](TG3ImageInfo& info) { info.subblockSize = 0; }));
}

TEST(TG3ImageInfoTest, RefusesMoreSubblocksThanFieldsOf16BitsHold) {
  TG3ImageInfo info = imageOf(65535, 10, 0, 1);
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  info = imageOf(65536, 10, 0, 1);
  EXPECT_EQ(info.initializeSubbands(), TG3_STATUS_FORMAT_ERROR);
  info = imageOf(0x7FFFFFFF, 0x7FFFFFFF, 31, 32768);
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  EXPECT_EQ(info.getSubbandColumns(0), 1u);
  info = imageOf(0x7FFFFFFF, 1, 1, 16384);
  EXPECT_EQ(info.initializeSubbands(), TG3_STATUS_FORMAT_ERROR);
}

TEST(TG3ImageInfoTest, IsVirtualWhenCroppedOrReduced) {
  TG3ImageInfo info = madeImage(20, 10, 2);
  ASSERT_EQ(info.initializeVirtualSupport({0, 0, 19, 9}, 0), GR_STATUS_OK);
  EXPECT_FALSE(info.hasVirtualImageProps);
  ASSERT_EQ(info.initializeVirtualSupport({0, 0, 19, 9}, 1), GR_STATUS_OK);
  EXPECT_TRUE(info.hasVirtualImageProps);
  ASSERT_EQ(info.initializeVirtualSupport({0, 0, 18, 9}, 0), GR_STATUS_OK);
  EXPECT_TRUE(info.hasVirtualImageProps);
}

TEST(TG3ImageInfoTest, RefusesAVisiblePartOutsideOfTheImage) {
  TG3ImageInfo info = madeImage(20, 10, 2);
  const TG3Rect bad[] = {{-1, 0, 5, 5}, {0, -1, 5, 5}, {0, 0, 20, 5},
                         {0, 0, 5, 10}, {6, 0, 5, 5},  {0, 6, 5, 5}};
  for (const TG3Rect& support : bad) {
    EXPECT_EQ(info.initializeVirtualSupport(support, 0), TG3_STATUS_FORMAT_ERROR);
  }
  EXPECT_EQ(info.initializeVirtualSupport({0, 0, 5, 5}, 3), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(info.initializeVirtualSupport({0, 0, 5, 5}, 2), GR_STATUS_OK);
}

TEST(TG3ImageInfoTest, RoundsVisibleSizesUpAndTheirCornersDown) {
  TG3ImageInfo info = madeImage(20, 20, 3);
  ASSERT_EQ(info.initializeVirtualSupport({7, 0, 12, 19}, 1), GR_STATUS_OK);
  EXPECT_EQ(info.getVisibleWidth(), 3u);
  EXPECT_EQ(info.getVisibleHeight(), 10u);
  EXPECT_EQ(info.getVirtualSupport(0), (TG3Rect{3, 0, 5, 9}));
  EXPECT_EQ(info.getVirtualSupport(-1), (TG3Rect{7, 0, 12, 19}));
  EXPECT_EQ(info.getVirtualSupport(-2), (TG3Rect{14, 0, 25, 39}));
  EXPECT_EQ(info.getSupport(1), (TG3Rect{0, 0, 9, 9}));
  EXPECT_EQ(info.getSupport(3), (TG3Rect{0, 0, 2, 2}));
}

TEST(TG3ImageInfoTest, LimitsEnlargedSupportsTo31Bits) {
  TG3ImageInfo info = madeImage(0x7FFFFFFF, 3, 0, 65535);
  EXPECT_EQ(info.getSupport(-1), (TG3Rect{0, 0, 0x7FFFFFFF, 5}));
  EXPECT_EQ(info.getSupport(-100).right, 0x7FFFFFFF);
  ASSERT_EQ(info.initializeVirtualSupport({1, 0, 2, 2}, 0), GR_STATUS_OK);
  EXPECT_EQ(info.getVirtualSupport(-40).left, 0x7FFFFFFF);
}

TEST(TG3ImageInfoTest, ScalesSizesByRoundingUp) {
  EXPECT_EQ(tg3_sizeAtScale(0, 3), 0u);
  EXPECT_EQ(tg3_sizeAtScale(1, 3), 1u);
  EXPECT_EQ(tg3_sizeAtScale(9, 3), 2u);
  EXPECT_EQ(tg3_sizeAtScale(8, 3), 1u);
  EXPECT_EQ(tg3_sizeAtScale(8, 100), 1u);
  EXPECT_EQ(tg3_sizeAtScale(5, -2), 20u);
  EXPECT_EQ(tg3_sizeAtScale(5, -127), ~gr_uint64{0});
  EXPECT_EQ(tg3_coordinateAtScale(13, 2), 3);
  EXPECT_EQ(tg3_coordinateAtScale(13, -2), 52);
  EXPECT_EQ(tg3_coordinateAtScale(0, -127), 0);
  EXPECT_EQ(tg3_coordinateAtScale(1, -127), 0x7FFFFFFFFFFFFFFF);
}

TEST(TG3ImageInfoTest, CountsTheBitsOfTheDynamicRange) {
  TG3ImageInfo info;
  const auto bits = [&](gr_int32 low, gr_int32 high) {
    info.dynamicRangeMin = low;
    info.dynamicRangeMax = high;
    return info.getDynamicRangeBits();
  };
  EXPECT_EQ(bits(0, 255), 8u);
  EXPECT_EQ(bits(-128, 127), 8u);
  EXPECT_EQ(bits(100, 255), 8u);
  EXPECT_EQ(bits(0, 256), 9u);
  EXPECT_EQ(bits(-2147483647 - 1, 2147483647), 32u);
}

TEST(TG3ImageInfoTest, KnowsTheMostLevelsOfASize) {
  EXPECT_EQ(TG3ImageInfo::getMaxLevels(1, 1), 0u);
  EXPECT_EQ(TG3ImageInfo::getMaxLevels(4, 100), 0u);
  EXPECT_EQ(TG3ImageInfo::getMaxLevels(5, 100), 1u);
  EXPECT_EQ(TG3ImageInfo::getMaxLevels(512, 512), 7u);
  EXPECT_EQ(TG3ImageInfo::getMaxLevels(513, 513), 8u);
  EXPECT_EQ(TG3ImageInfo::getMaxLevels(0xFFFFFFFF, 0xFFFFFFFF), 30u);
}

TEST(TG3ImageInfoTest, KnowsTheDatatypesOfDomainBits) {
  const gr_uint8 codes[] = {8, 7, 16, 15, 32, 31, 64, 63, 24, 48};
  for (gr_uint8 i = 0; i < 10; ++i) EXPECT_EQ(tg3_datatypeOfDomainBits(codes[i]), 5 + i);
  for (const gr_uint8 other : {0, 1, 9, 17, 23, 255}) {
    EXPECT_EQ(tg3_datatypeOfDomainBits(other), TG3_DATATYPE_INVALID);
  }
}

}  // namespace
