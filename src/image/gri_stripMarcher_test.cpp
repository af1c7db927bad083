#include "image/gri_stripMarcher.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

GRIScene rowsOf(double row, double height) { return {0.25, row, 10.5, height, 0.5}; }

/// The strips' whole rows must follow each other and end with the scene's.
void expectTiling(const GRIScene& scene, gr_int32 stripHeight) {
  SCOPED_TRACE(testing::Message() << std::hexfloat << scene.getUpperLeftRow() << " + "
                                  << scene.getHeight() << " by " << stripHeight);
  const GRIStripMarcher marcher(scene, stripHeight);
  gr_int32 row = scene.getUpperLeftIntRow();
  for (gr_int32 number = 0; number < marcher.getNumStrips(); ++number) {
    const GRIScene strip = marcher.getStripScene(number);
    EXPECT_EQ(strip.getUpperLeftIntRow(), row);
    EXPECT_EQ(strip.getUpperLeftCol(), scene.getUpperLeftCol());
    EXPECT_EQ(strip.getWidth(), scene.getWidth());
    EXPECT_EQ(strip.getMag(), scene.getMag());
    EXPECT_NEAR(strip.getUpperLeftRow(), scene.getUpperLeftRow() + number * 1.0 * stripHeight,
                1e-6);
    const bool isLast = number == marcher.getNumStrips() - 1;
    EXPECT_EQ(strip.getNumRows(), isLast ? scene.getLowerRightIntRow() - row : stripHeight);
    EXPECT_GT(strip.getNumRows(), 0);
    row += strip.getNumRows();
  }
  EXPECT_EQ(row, scene.getLowerRightIntRow());
}

TEST(GRIStripMarcherTest, CutsIntoStripsOfTheHeightAndALastOfTheRest) {
  const GRIStripMarcher marcher(rowsOf(10, 65), 64);
  ASSERT_EQ(marcher.getNumStrips(), 2);
  EXPECT_TRUE(marcher.getStripScene(0) == rowsOf(10, 64));
  EXPECT_TRUE(marcher.getStripScene(1) == rowsOf(74, 1));
  EXPECT_TRUE(marcher.getFullScene() == rowsOf(10, 65));
  EXPECT_EQ(marcher.getStripHeight(), 64);
}

TEST(GRIStripMarcherTest, CountsStripsByWholeRows) {
  EXPECT_EQ(GRIStripMarcher(rowsOf(0, 64), 64).getNumStrips(), 1);
  EXPECT_EQ(GRIStripMarcher(rowsOf(0.4, 64.2), 64).getNumStrips(), 2);  // 65 rows
  EXPECT_EQ(GRIStripMarcher(rowsOf(0, 0.3), 64).getNumStrips(), 0);     // no row
  EXPECT_EQ(GRIStripMarcher(rowsOf(0, 5e9), 1).getNumStrips(), 0x7FFFFFFF);
  EXPECT_EQ(GRIStripMarcher(rowsOf(0, 5e9), 0x7FFFFFFF).getNumStrips(), 1);
}

TEST(GRIStripMarcherTest, OneStripIsTheSceneItself) {
  const GRIScene scene = rowsOf(0.1, 0.7);
  EXPECT_TRUE(GRIStripMarcher(scene, 64).getStripScene(0) == scene);
}

TEST(GRIStripMarcherTest, TilesScenesOfAnyFraction) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> anywhere(0.0, 5000.0);
  for (int i = 0; i < 500; ++i) {
    const double row = anywhere(random);
    const double height = anywhere(random);
    expectTiling(rowsOf(row, height), 1 + static_cast<gr_int32>(random() % 100));
  }
}

TEST(GRIStripMarcherTest, TilesScenesWhoseRowsLieAtTheEdgeOfAHalf) {
  // 0.49999999999999989 rounds to 0, and yet, 64 rows farther, the sum is 64.5, which rounds to 65.
  for (const double half : {-0.5, 0.5, 1.5, 7.5, 12.5, 1023.5, 65535.5}) {
    for (const double end : {64.5, 128.5, 200.5, 1000.5, 70000.5}) {
      for (int steps = -3; steps <= 3; ++steps) {
        double row = half;
        double height = end - half;
        for (int i = 0; i < std::abs(steps); ++i) row = std::nextafter(row, steps < 0 ? -9e9 : 9e9);
        if (row + height < row || row < -0.5) continue;
        for (const gr_int32 stripHeight : {1, 7, 64, 1000}) {
          if (end > 2000 && stripHeight < 64) continue;
          if (height < 0) continue;
          expectTiling(rowsOf(row, height), stripHeight);
          expectTiling(rowsOf(row, std::nextafter(height, 0.0)), stripHeight);
          expectTiling(rowsOf(row, std::nextafter(height, 9e9)), stripHeight);
        }
      }
    }
  }
}

}  // namespace
