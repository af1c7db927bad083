#include "hosts/common/gri_hostPosition.h"

#include <gtest/gtest.h>

#include <limits>

TEST(GRIHostPositionTest, TheOriginIsTheCentreOfTheUpperLeftPixel) {
  const GRIHostPosition position{
      .xOrigin = 100, .yOrigin = 200, .xResolution = 2, .yResolution = -4};
  double x = 0;
  double y = 0;
  position.toGround(0, 0, x, y);
  EXPECT_EQ(x, 100);
  EXPECT_EQ(y, 200);
  position.toGround(3, 2, x, y);
  EXPECT_EQ(x, 106);
  EXPECT_EQ(y, 192);
}

TEST(GRIHostPositionTest, TheWayToTheGroundAndBackLeadsToTheSamePoint) {
  const GRIHostPosition position{.xOrigin = 1000,
                                 .yOrigin = -50,
                                 .xResolution = 0.5,
                                 .yResolution = -0.25,
                                 .xRotation = 0.125,
                                 .yRotation = 0.0625};
  double x = 0;
  double y = 0;
  double column = 0;
  double row = 0;
  position.toGround(12.5, 7.25, x, y);
  ASSERT_TRUE(position.toPicture(x, y, column, row));
  EXPECT_NEAR(column, 12.5, 1e-9);
  EXPECT_NEAR(row, 7.25, 1e-9);
}

TEST(GRIHostPositionTest, ADegeneratePositionHasNoWayBack) {
  const GRIHostPosition position{.xResolution = 0};
  double column = 5;
  double row = 6;
  EXPECT_FALSE(position.toPicture(1, 1, column, row));
  EXPECT_EQ(column, 5);
  EXPECT_EQ(row, 6);
  EXPECT_FALSE(GRIHostPosition{.yRotation = std::numeric_limits<double>::quiet_NaN()}.isFinite());
}
