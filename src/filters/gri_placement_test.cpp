#include "filters/gri_placement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

GRIPlacement placed(const GRIScene& scene, double xOffset, double yOffset, gr_uint32 width,
                    gr_uint32 height) {
  GRIPlacement placement;
  EXPECT_EQ(placement.initialize(scene, xOffset, yOffset, width, height), 0u);
  return placement;
}

TEST(GRIPlacementTest, AnImageInsideIsShownWhole) {
  const GRIPlacement placement = placed({0, 0, 100, 80, 1}, 10, 20, 30, 40);
  EXPECT_EQ(placement.left, 10);
  EXPECT_EQ(placement.top, 20);
  EXPECT_EQ(placement.numCols, 30);
  EXPECT_EQ(placement.numRows, 40);
  EXPECT_EQ(placement.imageScene, GRIScene(0, 0, 30, 40, 1));
}

TEST(GRIPlacementTest, AnImageCutByTheSceneLandsAtItsSidesWithTheRestDropped) {
  const GRIPlacement placement = placed({15, 25, 5, 100, 1}, 10, 20, 30, 40);
  EXPECT_EQ(placement.left, 0);
  EXPECT_EQ(placement.top, 0);
  EXPECT_EQ(placement.imageScene, GRIScene(5, 5, 5, 35, 1));
}

TEST(GRIPlacementTest, AnImageThatTouchesOrLiesApartShowsNothing) {
  EXPECT_TRUE(placed({0, 0, 10, 10, 1}, 10, 0, 5, 5).isEmpty());
  EXPECT_TRUE(placed({0, 0, 10, 10, 1}, 0, -5, 5, 5).isEmpty());
  EXPECT_TRUE(placed({0, 0, 10, 10, 1}, 50, 50, 5, 5).isEmpty());
  EXPECT_TRUE(placed({0, 0, 10, 10, 1}, 10 - 1e-9, 0, 5, 5).isEmpty());
}

TEST(GRIPlacementTest, OffsetsThatAreNoNumbersShowNothing) {
  constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
  constexpr double ENDLESS = std::numeric_limits<double>::infinity();
  for (const double offset : {NO_NUMBER, ENDLESS, -ENDLESS, 1e300, -1e300}) {
    EXPECT_TRUE(placed({0, 0, 10, 10, 1}, offset, 0, 5, 5).isEmpty());
    EXPECT_TRUE(placed({0, 0, 10, 10, 1}, 0, offset, 5, 5).isEmpty());
  }
}

TEST(GRIPlacementTest, HalfAPixelGoesToTheLeftAndUp) {
  const GRIPlacement placement = placed({0, 0, 50, 50, 0.5}, 18.5, 3.5, 2, 2);
  EXPECT_EQ(placement.left, 18);
  EXPECT_EQ(placement.top, 3);
}

// Columns of both are known for each column of a scene: whatever the scene, they go together.
TEST(GRIPlacementTest, APixelOfTheImageIsAtOnePlaceOfTheFrameInEveryScene) {
  std::mt19937 random(8);
  for (int i = 0; i < 20000; ++i) {
    const double offset = static_cast<double>(random() % 400) / 8 - 10;
    const gr_uint32 size = random() % 20 + 1;
    const double begin = random() % 60;
    const double length = random() % 40 + 1;
    const GRIPlacement placement = placed({begin, 0, length, 1, 0.25}, offset, 0, size, 1);
    const gr_int64 first = static_cast<gr_int64>(std::ceil(offset - 0.5));
    const gr_int64 left = std::max<gr_int64>(first, static_cast<gr_int64>(begin));
    const gr_int64 right = std::min<gr_int64>(first + size, static_cast<gr_int64>(begin + length));
    SCOPED_TRACE(testing::Message()
                 << offset << " + " << size << " in " << begin << " + " << length);
    if (left >= right) {
      // Less than half a pixel may count as one at the end of the scene.
      ASSERT_LE(placement.numCols, 0);
      continue;
    }
    ASSERT_EQ(placement.left, left - static_cast<gr_int64>(begin));
    ASSERT_EQ(placement.numCols, right - left);
    ASSERT_EQ(placement.imageScene.getUpperLeftCol(), static_cast<double>(left - first));
  }
}

TEST(GRIPlacementTest, ScenesBetweenPixelsStayInsideOfTheirBuffer) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> number(-3.0, 60.0);
  for (int i = 0; i < 20000; ++i) {
    const GRIScene scene(std::fabs(number(random)), std::fabs(number(random)),
                         std::fabs(number(random)) / 4, std::fabs(number(random)) / 4, 1.0);
    const gr_uint32 width = random() % 20 + 1;
    const gr_uint32 height = random() % 20 + 1;
    const GRIPlacement placement = placed(scene, number(random), number(random), width, height);
    if (placement.isEmpty()) continue;
    ASSERT_GE(placement.left, 0);
    ASSERT_GE(placement.top, 0);
    ASSERT_LE(placement.left + placement.numCols, scene.getNumCols());
    ASSERT_LE(placement.top + placement.numRows, scene.getNumRows());
    ASSERT_GE(placement.imageScene.getUpperLeftCol(), 0);
    ASSERT_LE(placement.imageScene.getLowerRightCol(), width);
    ASSERT_LE(placement.imageScene.getLowerRightRow(), height);
  }
}

}  // namespace
