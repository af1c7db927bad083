#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_orderingPipe.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

/// Sample rows and columns of a band, split straightforwardly.
struct BandSize {
  gr_uint32 rows;
  gr_uint32 columns;
};

std::vector<BandSize> bandsOf(gr_uint32 levels, gr_uint32 height, gr_uint32 width) {
  std::vector<BandSize> bands(4 * levels + 1);
  for (size_t level = levels; level >= 1; --level) {
    const gr_uint32 lowRows = (height + 1) / 2, lowColumns = (width + 1) / 2;
    bands[4 * level - 3] = {lowRows, lowColumns};
    bands[4 * level - 2] = {lowRows, width / 2};
    bands[4 * level - 1] = {height / 2, lowColumns};
    bands[4 * level] = {height / 2, width / 2};
    height = lowRows;
    width = lowColumns;
  }
  bands[0] = {height, width};
  return bands;
}

bool splitsOnlyWidthsOfTwoOrMore(gr_uint32 levels, gr_uint32 width) {
  for (gr_uint32 level = 0; level < levels; ++level, width = (width + 1) / 2) {
    if (width < 2) return false;
  }
  return true;
}

std::string caseName(gr_uint32 block, gr_uint32 levels, gr_uint32 height, gr_uint32 width) {
  return "block " + std::to_string(block) + ", levels " + std::to_string(levels) + ", " +
         std::to_string(width) + " x " + std::to_string(height);
}

/// Every subblock of the image has a place of its own below the total, both ways; rows rise with
/// the place and the columns of a row follow each other.
void expectBijection(gr_uint32 block, gr_uint32 levels, gr_uint32 height, gr_uint32 width) {
  SCOPED_TRACE(caseName(block, levels, height, width));
  OrderingPipe ordering;
  ASSERT_EQ(ordering.initialize(block, levels, height, width), GR_STATUS_OK);

  std::vector<TG3SubblockPosition> at(ordering.total());
  std::vector<bool> taken(ordering.total());
  gr_uint64 count = 0;
  const auto bands = bandsOf(levels, height, width);
  for (gr_uint32 band = 0; band < bands.size(); ++band) {
    const gr_uint32 rows = (bands[band].rows + block - 1) / block;
    const gr_uint32 columns = (bands[band].columns + block - 1) / block;
    gr_uint64 before = 0;
    for (gr_uint32 row = 0; row < rows; ++row) {
      const gr_uint64 start = ordering.index({band, row, 0});
      ASSERT_TRUE(row == 0 || start > before);
      before = start;
      for (gr_uint32 column = 0; column < columns; ++column, ++count) {
        const gr_uint64 place = ordering.index({band, row, column});
        ASSERT_EQ(place, start + column);
        ASSERT_LT(place, ordering.total());
        ASSERT_FALSE(taken[place]);
        taken[place] = true;
        at[place] = {band, row, column};
      }
    }
  }
  ASSERT_EQ(count, ordering.total());
  for (gr_uint64 place = 0; place < count; ++place) ASSERT_EQ(ordering.position(place), at[place]);

  std::mt19937 random(block + levels + height + width);
  OrderingPipe jumping;
  ASSERT_EQ(jumping.initialize(block, levels, height, width), GR_STATUS_OK);
  for (int jump = 0; jump < 50; ++jump) {
    const gr_uint64 place = random() % count;
    ASSERT_EQ(jumping.position(place), at[place]);
  }
}

TEST(OrderingPipeTest, MapsEverySubblockToAPlaceOfItsOwnAndBack) {
  for (const gr_uint32 block : {3u, 4u, 5u, 7u, 8u, 16u, 64u}) {
    for (gr_uint32 levels = 0; levels <= 7; ++levels) {
      for (const gr_uint32 height :
           {1u,  2u,  3u,  4u,  5u,   6u,   7u,   8u,   9u,   15u,  16u,  17u,  31u,  32u,  33u,
            47u, 63u, 64u, 65u, 100u, 127u, 128u, 129u, 200u, 255u, 256u, 257u, 300u, 511u, 900u}) {
        for (const gr_uint32 width : {2u, 3u, 5u, 8u, 33u, 130u, 300u}) {
          if (!splitsOnlyWidthsOfTwoOrMore(levels, width)) continue;
          ASSERT_NO_FATAL_FAILURE(expectBijection(block, levels, height, width));
        }
      }
    }
  }
}

TEST(OrderingPipeTest, MapsEveryHeightOfASmallImageToPlacesAndBack) {
  for (const gr_uint32 block : {3u, 4u, 5u, 8u}) {
    for (gr_uint32 levels = 1; levels <= 4; ++levels) {
      for (gr_uint32 height = 1; height <= 140; ++height) {
        ASSERT_NO_FATAL_FAILURE(expectBijection(block, levels, height, 20));
      }
    }
  }
}

TEST(OrderingPipeTest, GivesTheOrderOfAnImageOf20By20WithTwoLevels) {
  std::vector<TG3SubblockPosition> expected;
  const auto add = [&expected](gr_uint32 band, gr_uint32 row, gr_uint32 columns) {
    for (gr_uint32 column = 0; column < columns; ++column) expected.push_back({band, row, column});
  };
  for (gr_uint32 row = 0; row < 2; ++row) {
    for (gr_uint32 band = 5; band <= 8; ++band) add(band, row, 3);
  }
  for (gr_uint32 band = 0; band <= 4; ++band) add(band, 0, 2);
  for (gr_uint32 band = 0; band <= 4; ++band) add(band, 1, 2);
  for (gr_uint32 band = 5; band <= 8; ++band) add(band, 2, 3);

  OrderingPipe ordering;
  ASSERT_EQ(ordering.initialize(4, 2, 20, 20), GR_STATUS_OK);
  ASSERT_EQ(ordering.total(), 56u);
  ASSERT_EQ(expected.size(), 56u);
  for (gr_uint64 place = 0; place < 56; ++place) {
    EXPECT_EQ(ordering.position(place), expected[place]) << place;
    EXPECT_EQ(ordering.index(expected[place]), place) << place;
  }
}

TEST(OrderingPipeTest, IsThePlainRasterOfSubblocksWithoutLevels) {
  OrderingPipe ordering;
  ASSERT_EQ(ordering.initialize(8, 0, 20, 30), GR_STATUS_OK);
  ASSERT_EQ(ordering.total(), 12u);
  for (gr_uint32 place = 0; place < 12; ++place) {
    EXPECT_EQ(ordering.position(place), (TG3SubblockPosition{0, place / 4, place % 4}));
  }
}

TEST(OrderingPipeTest, HasNoTailWhenEveryBandEndsOnABlock) {
  OrderingPipe ordering;
  ASSERT_EQ(ordering.initialize(8, 1, 32, 32), GR_STATUS_OK);
  ASSERT_EQ(ordering.total(), 20u);
  EXPECT_EQ(ordering.position(19), (TG3SubblockPosition{4, 1, 1}));
}

TEST(OrderingPipeTest, PutsABandWithoutRowsNowhere) {
  OrderingPipe ordering;
  ASSERT_EQ(ordering.initialize(4, 1, 1, 8), GR_STATUS_OK);
  ASSERT_EQ(ordering.total(), 3u);
  for (gr_uint64 place = 0; place < 3; ++place) EXPECT_LE(ordering.position(place).subband, 2u);
}

TEST(OrderingPipeTest, RefusesBlocksOfTwoAndWidthsThatCannotBeSplit) {
  OrderingPipe ordering;
  EXPECT_EQ(ordering.initialize(2, 1, 20, 20), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ordering.initialize(4, 1, 20, 1), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ordering.initialize(4, 3, 20, 3), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ordering.initialize(4, 32, 20, 20), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ordering.initialize(4, 2, 1, 3), GR_STATUS_OK);
}

TEST(OrderingPipeTest, FindsPlacesOfTheLargestImageThatAHeaderCanClaim) {
  OrderingPipe ordering;
  ASSERT_EQ(ordering.initialize(65535, 30, 0x7FFFFFFF, 0x7FFFFFFF), GR_STATUS_OK);
  std::mt19937_64 random(7);
  for (int jump = 0; jump < 2000; ++jump) {
    const gr_uint64 place = random() % ordering.total();
    ASSERT_EQ(ordering.index(ordering.position(place)), place);
  }
}

}  // namespace
