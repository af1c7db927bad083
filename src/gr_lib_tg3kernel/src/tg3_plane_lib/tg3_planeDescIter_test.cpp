#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDescIter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/tg3_testGeometry.h"

namespace {

TG3ImageInfo imageOf(gr_uint32 width, gr_uint32 height, gr_uint8 levels, gr_uint16 blockSize,
                     gr_uint16 components = 2, gr_uint8 planes = 5) {
  TG3ImageInfo info;
  info.width = width;
  info.height = height;
  info.numLevels = levels;
  info.subblockSize = blockSize;
  info.numComponents = components;
  info.numPlanes = planes;
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  return info;
}

// All slots of an image by the rules of the format.
std::vector<TG3PlaneDesc> slotsByTheRules(const TG3ImageInfo& info, TG3Ordering ordering) {
  const TG3TestGeometry rules(info.width, info.height, info.numLevels, info.subblockSize);
  std::vector<std::pair<gr_uint32, gr_uint32>> blocks(rules.totalBlocks());
  for (gr_uint32 band = 0; band < rules.bands().size(); ++band) {
    for (gr_uint32 block = 0; block < rules.bands()[band].numBlocks(); ++block) {
      const gr_uint64 index = ordering == TG3_ORDERING_PIPE ? rules.pipeIndex(band, block)
                                                            : rules.bandIndex(band, block);
      blocks[index] = {band, block};
    }
  }
  std::vector<TG3PlaneDesc> slots;
  for (const auto& [band, block] : blocks) {
    for (gr_uint16 component = 0; component < info.numComponents; ++component) {
      for (gr_uint8 plane = 0; plane < info.numPlanes; ++plane) {
        slots.push_back({static_cast<gr_uint8>(band), block, component, plane});
      }
    }
  }
  return slots;
}

TEST(TG3PlaneDescIterTest, VisitsEverySlotInTheOrderOfTheRules) {
  for (const TG3Ordering ordering : {TG3_ORDERING_PIPE, TG3_ORDERING_SBCP}) {
    const TG3ImageInfo info = imageOf(37, 29, 3, 4);
    const std::vector<TG3PlaneDesc> expected = slotsByTheRules(info, ordering);
    TG3PlaneDescIter slots;
    ASSERT_EQ(slots.initialize(info, ordering), GR_STATUS_OK);
    EXPECT_EQ(slots.getLeft(), expected.size());
    for (const TG3PlaneDesc& slot : expected) {
      ASSERT_FALSE(slots.isAtEnd());
      ASSERT_EQ(slots.get(), slot);
      ASSERT_TRUE(slots.get().isLegal(info));
      slots.advance(1);
    }
    EXPECT_TRUE(slots.isAtEnd());
    EXPECT_FALSE(slots.get().isValid());
  }
}

TEST(TG3PlaneDescIterTest, StepsAnyNumberOfSlotsAtOnce) {
  std::mt19937 random(5);
  for (const TG3Ordering ordering : {TG3_ORDERING_PIPE, TG3_ORDERING_SBCP}) {
    const TG3ImageInfo info = imageOf(61, 40, 2, 5);
    const std::vector<TG3PlaneDesc> expected = slotsByTheRules(info, ordering);
    for (int run = 0; run < 50; ++run) {
      TG3PlaneDescIter slots;
      ASSERT_EQ(slots.initialize(info, ordering), GR_STATUS_OK);
      size_t at = 0;
      while (at < expected.size()) {
        ASSERT_EQ(slots.get(), expected[at]);
        const size_t step = 1 + random() % (1u << (random() % 9));
        slots.advance(step);
        at += step;
      }
      EXPECT_TRUE(slots.isAtEnd());
    }
  }
}

TEST(TG3PlaneDescIterTest, EndsOnASkipThatPassesTheLastSlot) {
  const TG3ImageInfo info = imageOf(8, 8, 1, 8);
  TG3PlaneDescIter slots;
  ASSERT_EQ(slots.initialize(info, TG3_ORDERING_SBCP), GR_STATUS_OK);
  slots.advance(~gr_uint64{0});
  EXPECT_TRUE(slots.isAtEnd());
  EXPECT_EQ(slots.getLeft(), 0u);
}

TEST(TG3PlaneDescIterTest, EndsAfterOneStepInAnImageOfOneSubblock) {
  const TG3ImageInfo info = imageOf(4, 4, 0, 4, 1, 1);
  for (const TG3Ordering ordering : {TG3_ORDERING_PIPE, TG3_ORDERING_SBCP}) {
    TG3PlaneDescIter slots;
    ASSERT_EQ(slots.initialize(info, ordering), GR_STATUS_OK);
    slots.advance(1);
    EXPECT_TRUE(slots.isAtEnd());
  }
}

TEST(TG3PlaneDescIterTest, RefusesImagesThatHaveNoPipelineOrder) {
  TG3PlaneDescIter slots;
  const TG3ImageInfo smallBlocks = imageOf(20, 20, 1, 2);
  EXPECT_EQ(slots.initialize(smallBlocks, TG3_ORDERING_PIPE), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(slots.initialize(smallBlocks, TG3_ORDERING_SBCP), GR_STATUS_OK);
  const TG3ImageInfo narrow = imageOf(2, 20, 2, 8);
  EXPECT_EQ(slots.initialize(narrow, TG3_ORDERING_PIPE), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(slots.initialize(narrow, TG3_ORDERING_SBCP), GR_STATUS_OK);
  EXPECT_EQ(slots.initialize(narrow, static_cast<TG3Ordering>(2)), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3PlaneDescTest, OrdersByTheKeyOfItsFourFields) {
  const TG3PlaneDesc desc = {0x12, 0x3456789A, 0xBCDE, 0xF0};
  EXPECT_EQ(desc.getKey(), 0x123456789ABCDEF0u);
  EXPECT_TRUE(desc.isValid());
  EXPECT_LT((TG3PlaneDesc{1, 2, 3, 4}), (TG3PlaneDesc{1, 3, 0, 0}));
  EXPECT_FALSE((TG3PlaneDesc{0xFF, 0, 0, 0}).isValid());
  EXPECT_FALSE((TG3PlaneDesc{0, 0xFFFFFFFF, 0, 0}).isValid());
  EXPECT_FALSE((TG3PlaneDesc{0, 0, 0xFFFF, 0}).isValid());
  EXPECT_FALSE((TG3PlaneDesc{0, 0, 0, 0xFF}).isValid());
}

}  // namespace
