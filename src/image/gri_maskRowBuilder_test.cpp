#include "image/gri_maskRowBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <vector>

namespace {

using Runs = std::vector<GRIMaskRun>;

constexpr gr_int32 LOWEST = std::numeric_limits<gr_int32>::min();
constexpr gr_int32 HIGHEST = std::numeric_limits<gr_int32>::max();

GRIMaskRow rowOf(const Runs& runs) {
  GRIMaskRowBuilder builder;
  for (const GRIMaskRun& run : runs) builder.addRun(run);
  return builder.take();
}

Runs runsOf(const GRIMaskRow& row) { return Runs(row.begin(), row.end()); }

Runs united(const Runs& a, const Runs& b) {
  GRIMaskRowBuilder builder;
  builder.unite(rowOf(a), rowOf(b));
  return runsOf(builder.row());
}

Runs intersected(const Runs& a, const Runs& b) {
  GRIMaskRowBuilder builder;
  builder.intersect(rowOf(a), rowOf(b));
  return runsOf(builder.row());
}

Runs gaps(const Runs& runs, gr_int32 first, gr_int32 last) {
  GRIMaskRowBuilder builder;
  const GRIMaskRow row = rowOf(runs);
  builder.addGaps(&row, first, last);
  return runsOf(builder.row());
}

TEST(GRIMaskRowBuilderTest, UniteJoinsRunsThatOverlap) {
  EXPECT_EQ(united({{1, 4}}, {{4, 6}}), (Runs{{1, 6}}));
  EXPECT_EQ(united({{1, 9}}, {{2, 3}, {5, 6}, {8, 12}}), (Runs{{1, 12}}));
}

TEST(GRIMaskRowBuilderTest, UniteKeepsRunsThatOnlyTouch) {
  EXPECT_EQ(united({{1, 3}}, {{4, 6}}), (Runs{{1, 3}, {4, 6}}));
  EXPECT_EQ(united({{4, 6}}, {{1, 3}}), (Runs{{1, 3}, {4, 6}}));
}

TEST(GRIMaskRowBuilderTest, UniteWithAnEmptyRowIsACopy) {
  EXPECT_EQ(united({}, {{1, 3}, {5, 6}}), (Runs{{1, 3}, {5, 6}}));
  EXPECT_EQ(united({{1, 3}, {5, 6}}, {}), (Runs{{1, 3}, {5, 6}}));
  EXPECT_EQ(united({}, {}), Runs{});
}

TEST(GRIMaskRowBuilderTest, IntersectKeepsWhatBothRowsHave) {
  EXPECT_EQ(intersected({{1, 10}}, {{0, 2}, {4, 5}, {9, 12}}), (Runs{{1, 2}, {4, 5}, {9, 10}}));
  EXPECT_EQ(intersected({{1, 4}, {6, 9}}, {{3, 4}, {6, 6}}), (Runs{{3, 4}, {6, 6}}));
}

TEST(GRIMaskRowBuilderTest, IntersectOfRowsWithoutACommonColumnIsEmpty) {
  EXPECT_EQ(intersected({{1, 3}}, {{4, 6}}), Runs{});
  EXPECT_EQ(intersected({{1, 3}}, {}), Runs{});
}

TEST(GRIMaskRowBuilderTest, GapsOfANullRowAreTheWholeInterval) {
  GRIMaskRowBuilder builder;

  builder.addGaps(nullptr, 3, 8);

  EXPECT_EQ(runsOf(builder.row()), (Runs{{3, 8}}));
}

TEST(GRIMaskRowBuilderTest, GapsLieBetweenTheRuns) {
  EXPECT_EQ(gaps({{2, 3}, {6, 7}}, 0, 9), (Runs{{0, 1}, {4, 5}, {8, 9}}));
  EXPECT_EQ(gaps({{0, 3}, {6, 9}}, 0, 9), (Runs{{4, 5}}));
  EXPECT_EQ(gaps({{0, 9}}, 0, 9), Runs{});
}

TEST(GRIMaskRowBuilderTest, GapsIgnoreRunsOutsideOfTheInterval) {
  EXPECT_EQ(gaps({{1, 2}, {20, 30}}, 5, 9), (Runs{{5, 9}}));
  EXPECT_EQ(gaps({{1, 6}, {8, 30}}, 5, 9), (Runs{{7, 7}}));
}

TEST(GRIMaskRowBuilderTest, GapsReachTheLimitsOfAColumnNumber) {
  EXPECT_EQ(gaps({{0, HIGHEST}}, LOWEST, HIGHEST), (Runs{{LOWEST, -1}}));
  EXPECT_EQ(gaps({{LOWEST, 0}}, LOWEST, HIGHEST), (Runs{{1, HIGHEST}}));
}

TEST(GRIMaskRowBuilderTest, NormalizeJoinsOverlappingRunsInPlace) {
  GRIMaskRowBuilder builder;
  for (const GRIMaskRun& run : Runs{{1, 5}, {2, 3}, {4, 8}, {9, 10}, {10, 12}, {20, 21}}) {
    builder.addRun(run);
  }

  builder.normalize();

  EXPECT_EQ(runsOf(builder.row()), (Runs{{1, 8}, {9, 12}, {20, 21}}));
}

TEST(GRIMaskRowBuilderTest, NormalizeOfAnEmptyRowLeavesItEmpty) {
  GRIMaskRowBuilder builder;
  builder.normalize();
  EXPECT_TRUE(builder.row().empty());
}

TEST(GRIMaskRowBuilderTest, RoomGrowsInStepsOf256Runs) {
  GRIMaskRowBuilder builder;
  for (gr_int32 i = 0; i < 257; ++i) {
    builder.add(2 * i, 2 * i);
    EXPECT_EQ(builder.row().capacity(), i < 256 ? 256u : 512u);
  }
  EXPECT_EQ(builder.row().count(), 257u);
  EXPECT_EQ(builder.row()[256], (GRIMaskRun{512, 512}));
}

TEST(GRIMaskRowBuilderTest, TakeLeavesTheBuilderEmptyAndUsable) {
  GRIMaskRowBuilder builder;
  builder.add(1, 2);

  const GRIMaskRow first = builder.take();
  builder.addRow(&first);
  builder.add(4, 4);

  EXPECT_EQ(runsOf(first), (Runs{{1, 2}}));
  EXPECT_EQ(runsOf(builder.row()), (Runs{{1, 2}, {4, 4}}));
}

}  // namespace
