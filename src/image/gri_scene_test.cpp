#include "image/gri_scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

GRIScene columnsOf(double column, double width) { return {column, 0.0, width, 1.0, 1.0}; }

TEST(GRISceneTest, IsNoSceneAtFirst) {
  const GRIScene scene;
  EXPECT_EQ(scene.getWidth(), 0.0);
  EXPECT_EQ(scene.getHeight(), 0.0);
  EXPECT_EQ(scene.getUpperLeftCol(), 0.0);
  EXPECT_EQ(scene.getUpperLeftRow(), 0.0);
  EXPECT_EQ(scene.getMag(), -1.0);
}

TEST(GRISceneTest, IsEqualOnlyInAllFiveNumbers) {
  const GRIScene scene(1, 2, 3, 4, 0.5);
  EXPECT_TRUE(scene == GRIScene(1, 2, 3, 4, 0.5));
  EXPECT_FALSE(scene == GRIScene(std::nextafter(1.0, 2.0), 2, 3, 4, 0.5));
  EXPECT_FALSE(scene == GRIScene(1, 2.5, 3, 4, 0.5));
  EXPECT_FALSE(scene == GRIScene(1, 2, 3.5, 4, 0.5));
  EXPECT_FALSE(scene == GRIScene(1, 2, 3, 4.5, 0.5));
  EXPECT_FALSE(scene == GRIScene(1, 2, 3, 4, 0.25));
}

TEST(GRISceneTest, RoundsHalvesUp) {
  EXPECT_EQ(GRIScene::round(-0.5), 0);
  EXPECT_EQ(GRIScene::round(-0.6), -1);
  EXPECT_EQ(GRIScene::round(0.5), 1);
  EXPECT_EQ(GRIScene::round(2.5), 3);
  EXPECT_EQ(GRIScene::round(-1.5), -1);
}

TEST(GRISceneTest, RoundingStaysIn32BitsWhateverTheNumber) {
  EXPECT_EQ(GRIScene::round(1e300), std::numeric_limits<gr_int32>::max());
  EXPECT_EQ(GRIScene::round(-1e300), std::numeric_limits<gr_int32>::min());
  EXPECT_EQ(GRIScene::round(INF), std::numeric_limits<gr_int32>::max());
  EXPECT_EQ(GRIScene::round(-INF), std::numeric_limits<gr_int32>::min());
  EXPECT_EQ(GRIScene::round(NOT_A_NUMBER), 0);
  EXPECT_EQ(GRIScene::round(2147483647.0), 2147483647);
  EXPECT_EQ(GRIScene::round(2147483648.0), 2147483647);
}

TEST(GRISceneTest, CountsTheColumnsBetweenItsRoundedEdges) {
  EXPECT_EQ(columnsOf(0.4, 1.0).getNumCols(), 1);
  EXPECT_EQ(columnsOf(0.5, 0.5).getNumCols(), 0);
  EXPECT_EQ(columnsOf(0.4, 0.2).getNumCols(), 1);
  EXPECT_EQ(GRIScene(0.0, 0.4, 1.0, 0.2, 1.0).getNumRows(), 1);
  EXPECT_EQ(GRIScene(0.0, 0.5, 1.0, 0.5, 1.0).getNumRows(), 0);
}

TEST(GRISceneTest, CountsOfHugeScenesSaturate) {
  EXPECT_EQ(columnsOf(-2e9, 1e300).getNumCols(), std::numeric_limits<gr_int32>::max());
  EXPECT_EQ(columnsOf(0.0, INF).getNumCols(), std::numeric_limits<gr_int32>::max());
  EXPECT_EQ(columnsOf(2e9, 1e10).getLowerRightIntCol(), std::numeric_limits<gr_int32>::max());
}

TEST(GRISceneTest, NeighboursTileWithoutGapsOrOverlaps) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> anywhere(0.0, 1000.0);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(i);
    const double left = anywhere(random), width = anywhere(random), next = anywhere(random);
    const GRIScene first(left, left, width, width, 1.0);
    const GRIScene second(left + width, left + width, next, next, 1.0);
    EXPECT_EQ(first.getLowerRightIntCol(), second.getUpperLeftIntCol());
    EXPECT_EQ(first.getLowerRightIntRow(), second.getUpperLeftIntRow());
  }
}

TEST(GRISceneTest, GivesItsPointsAsDoublesAndAsWholeNumbers) {
  const GRIScene scene(1.6, 2.4, 3.0, 5.0, 1.0);
  EXPECT_EQ(scene.getUpperRightCol(), 4.6);
  EXPECT_EQ(scene.getUpperRightRow(), 2.4);
  EXPECT_EQ(scene.getLowerLeftCol(), 1.6);
  EXPECT_EQ(scene.getLowerLeftRow(), 7.4);
  EXPECT_EQ(scene.getCenterCol(), 3.1);
  EXPECT_EQ(scene.getCenterRow(), 4.9);
  EXPECT_EQ(scene.getCenterIntCol(), 3);
  EXPECT_EQ(scene.getCenterIntRow(), 5);
  gr_int32 column = 0, row = 0;
  scene.getUpperLeft(column, row);
  EXPECT_EQ(column, 2);
  EXPECT_EQ(row, 2);
  scene.getLowerRight(column, row);  // one past the last pixel
  EXPECT_EQ(column, 5);
  EXPECT_EQ(row, 7);
  scene.getSize(column, row);
  EXPECT_EQ(column, 3);
  EXPECT_EQ(row, 5);
  double x = 0, y = 0;
  scene.getLowerRight(x, y);
  EXPECT_EQ(x, 4.6);
  EXPECT_EQ(y, 7.4);
  scene.getUpperLeft(x, y);
  EXPECT_EQ(x, 1.6);
  EXPECT_EQ(y, 2.4);
  scene.getSize(x, y);
  EXPECT_EQ(x, 3.0);
  EXPECT_EQ(y, 5.0);
}

TEST(GRISceneTest, ClipsEveryEdgeAndKeepsTheMagnification) {
  EXPECT_TRUE(GRIScene(-2, -3, 20, 30, 0.5).clip(10, 11) == GRIScene(0, 0, 10, 11, 0.5));
  EXPECT_TRUE(GRIScene(2, 3, 4, 5, 0.5).clip(10, 11) == GRIScene(2, 3, 4, 5, 0.5));
  EXPECT_TRUE(GRIScene(8, 9, 4, 5, 0.5).clip(10, 11) == GRIScene(8, 9, 2, 2, 0.5));
}

TEST(GRISceneTest, AClipOfWhatLiesOutsideHasNoSize) {
  for (const GRIScene& outside : {GRIScene(20, 20, 4, 4, 1.0), GRIScene(-20, -20, 4, 4, 1.0)}) {
    EXPECT_EQ(outside.clip(10, 10).getWidth(), 0.0);
    EXPECT_EQ(outside.clip(10, 10).getHeight(), 0.0);
  }
}

TEST(GRISceneTest, AClipToNothingOrOfInfinityIsAScene) {
  const GRIScene nothing = GRIScene(1, 1, 4, 4, 1.0).clip(-3, NOT_A_NUMBER);
  EXPECT_EQ(nothing.getWidth(), 0.0);
  EXPECT_GE(nothing.getHeight(), 0.0);
  EXPECT_TRUE(GRIScene(-1e300, 0, INF, INF, 1.0).clip(10, 11) == GRIScene(0, 0, 10, 11, 1.0));
}

#ifndef NDEBUG
TEST(GRISceneDeathTest, RefusesNegativeSizesAndMagnificationsNotAboveZero) {
  EXPECT_DEATH(GRIScene(0, 0, -1, 1, 1), "width");
  EXPECT_DEATH(GRIScene(0, 0, 1, -1, 1), "height");
  EXPECT_DEATH(GRIScene(0, 0, 1, 1, 0), "mag");
}
#endif

}  // namespace
