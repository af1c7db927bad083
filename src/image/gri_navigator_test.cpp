#include "image/gri_navigator.h"

#include <gtest/gtest.h>

#include <limits>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/gri_patternReader.h"

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// An image of 100 columns and 80 rows, for magnifications from 1/8 to 2.
class GRINavigatorTest : public testing::Test {
 protected:
  GRINavigatorTest() : m_image(new GRIPatternReader) {
    const GRIPixel gray(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
    EXPECT_EQ(m_image->initialize(100, 80, gray, 0.125, 2.0), GR_STATUS_OK);
  }

  GRINavigator whole() const { return GRINavigator(*m_image); }
  GRIPatternReader& image() { return *m_image; }

  static void expectScene(const GRIScene& actual, const GRIScene& expected) {
    EXPECT_EQ(actual.getUpperLeftCol(), expected.getUpperLeftCol());
    EXPECT_EQ(actual.getUpperLeftRow(), expected.getUpperLeftRow());
    EXPECT_EQ(actual.getWidth(), expected.getWidth());
    EXPECT_EQ(actual.getHeight(), expected.getHeight());
    EXPECT_EQ(actual.getMag(), expected.getMag());
  }

 private:
  GRUtilSmartPointer<GRIPatternReader> m_image;
};

TEST_F(GRINavigatorTest, BeginsWithTheWholeImage) {
  expectScene(whole(), GRIScene(0, 0, 100, 80, 1.0));
}

TEST_F(GRINavigatorTest, TakesAnySceneStrictly) {
  GRINavigator navigator = whole();
  const GRIScene outside(-500, 900, 1e6, 1e6, 77.0);
  EXPECT_EQ(navigator.setScene(outside, GRI_NAVIGATOR_STRICT), GR_STATUS_OK);
  expectScene(navigator, outside);
}

TEST_F(GRINavigatorTest, ChecksEveryEdgeAndTheMagnification) {
  GRINavigator navigator = whole();
  const auto isValid = [&navigator](const GRIScene& scene) {
    const bool valid = GR_SUCCESS(navigator.setScene(scene, GRI_NAVIGATOR_CHECK));
    expectScene(navigator, scene);  // it stays, valid or not
    return valid;
  };
  EXPECT_TRUE(isValid({0, 0, 100, 80, 1.0}));
  EXPECT_TRUE(isValid({99.5, 79.5, 0.5, 0.5, 1.0}));
  EXPECT_FALSE(isValid({-0.1, 0, 10, 10, 1.0}));
  EXPECT_FALSE(isValid({0, -0.1, 10, 10, 1.0}));
  EXPECT_FALSE(isValid({0, 0, 100.1, 80, 1.0}));
  EXPECT_FALSE(isValid({0, 0, 100, 80.1, 1.0}));
  EXPECT_TRUE(isValid({0, 0, 50, 40, 0.5}));
  EXPECT_FALSE(isValid({0, 0, 51, 40, 0.5}));
  EXPECT_TRUE(isValid({0, 0, 1, 1, 0.125}));  // both ends of the range are in it
  EXPECT_TRUE(isValid({0, 0, 1, 1, 2.0}));
  EXPECT_FALSE(isValid({0, 0, 1, 1, 0.124}));
  EXPECT_FALSE(isValid({0, 0, 1, 1, 2.1}));
}

TEST_F(GRINavigatorTest, AnswersFalseForWhatIsNoNumber) {
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.moveTo(NOT_A_NUMBER, 0, GRI_NAVIGATOR_CHECK), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.moveTo(NOT_A_NUMBER, 0, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.zoomTo(NOT_A_NUMBER, GRI_NAVIGATOR_CHECK), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.zoomTo(NOT_A_NUMBER, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
}

TEST_F(GRINavigatorTest, ClipsToTheImageAtTheScenesMagnification) {
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setScene({-5, -6, 200, 300, 0.5}, GRI_NAVIGATOR_CLIP), GR_STATUS_OK);
  expectScene(navigator, {0, 0, 50, 40, 0.5});
  EXPECT_EQ(navigator.setScene({90, 70, 20, 20, 1.0}, GRI_NAVIGATOR_CLIP), GR_STATUS_OK);
  expectScene(navigator, {90, 70, 10, 10, 1.0});
}

TEST_F(GRINavigatorTest, ClippingLeavesASceneInsideAsItIsToTheBit) {
  GRINavigator navigator = whole();
  const GRIScene inside(0.1, 0.2, 33.3, 44.4, 1.0);
  EXPECT_EQ(navigator.setScene(inside, GRI_NAVIGATOR_CLIP), GR_STATUS_OK);
  expectScene(navigator, inside);
}

TEST_F(GRINavigatorTest, NothingIsLeftOfASceneThatTouchesTheImageAlongOneEdge) {
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setScene({100, 0, 10, 10, 1.0}, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.setScene({0, 80, 10, 10, 1.0}, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.setScene({-10, 0, 10, 10, 1.0}, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.setScene({0, 0, 9e-9, 10, 1.0}, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.setScene({0, 0, 2e-8, 10, 1.0}, GRI_NAVIGATOR_CLIP), GR_STATUS_OK);
}

TEST_F(GRINavigatorTest, NothingIsLeftWhereTheMagnificationIsOutOfRange) {
  GRINavigator navigator = whole();
  const GRIScene scene(0, 0, 10, 10, 4.0);
  EXPECT_EQ(navigator.setScene(scene, GRI_NAVIGATOR_CLIP), GR_STATUS_FAILURE);
  expectScene(navigator, scene);
}

#ifndef NDEBUG
TEST_F(GRINavigatorTest, RefusesAnUnknownStyle) {
  GRINavigator navigator = whole();
  EXPECT_DEATH(navigator.moveTo(0, 0, static_cast<GRINavigatorStyle>(4)), "bad style");
}
#endif

TEST_F(GRINavigatorTest, SetsScenesByCornersCentreAndSize) {
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setSceneAsULWH(1, 2, 3, 4, 0.5), GR_STATUS_OK);
  expectScene(navigator, {1, 2, 3, 4, 0.5});
  EXPECT_EQ(navigator.setSceneAsULLR(10, 20, 19, 39, 1.0), GR_STATUS_OK);
  expectScene(navigator, {10, 20, 10, 20, 1.0});
  EXPECT_EQ(navigator.setSceneAsCWH(50, 40, 20, 10, 1.0), GR_STATUS_OK);
  expectScene(navigator, {40, 35, 20, 10, 1.0});
  EXPECT_EQ(navigator.setSceneAsFullImage(), GR_STATUS_OK);
  expectScene(navigator, {0, 0, 100, 80, 1.0});
  EXPECT_EQ(navigator.setSceneAsMinMag(), GR_STATUS_OK);
  expectScene(navigator, {0, 0, 13, 10, 0.125});
}

TEST_F(GRINavigatorTest, MovesAndZoomsWithoutChangingTheSize) {
  GRINavigator navigator(image(), GRIScene(10, 20, 30, 40, 1.0));
  EXPECT_EQ(navigator.moveBy(5, -5, GRI_NAVIGATOR_CHECK), GR_STATUS_OK);
  expectScene(navigator, {15, 15, 30, 40, 1.0});
  EXPECT_EQ(navigator.moveTo(1, 2, GRI_NAVIGATOR_STRICT), GR_STATUS_OK);
  expectScene(navigator, {1, 2, 30, 40, 1.0});
  EXPECT_EQ(navigator.zoomBy(0.5, GRI_NAVIGATOR_STRICT), GR_STATUS_OK);
  expectScene(navigator, {1, 2, 30, 40, 0.5});
  EXPECT_EQ(navigator.zoomTo(2.0, GRI_NAVIGATOR_STRICT), GR_STATUS_OK);
  expectScene(navigator, {1, 2, 30, 40, 2.0});
  EXPECT_EQ(navigator.moveTo(90, 0, GRI_NAVIGATOR_CLIP), GR_STATUS_OK);
  expectScene(navigator, {90, 0, 30, 40, 2.0});  // 200 columns at 2
  EXPECT_EQ(navigator.moveTo(190, 0, GRI_NAVIGATOR_CLIP), GR_STATUS_OK);
  expectScene(navigator, {190, 0, 10, 40, 2.0});
}

TEST_F(GRINavigatorTest, RoundsItsFourEdges) {
  GRINavigator navigator(image(), GRIScene(-0.5, 0.4, 10.0, 10.2, 1.0));
  navigator.roundScene();
  expectScene(navigator, {0, 0, 10, 11, 1.0});
}

TEST_F(GRINavigatorTest, FitsTheWholeImageInsideByHalving) {
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setSceneAsFitInside(60, 60), GR_STATUS_OK);
  expectScene(navigator, {0, 0, 50, 40, 0.5});
}

TEST_F(GRINavigatorTest, TheWidthMayEqualItsLimitAndTheHeightMayNot) {
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setSceneAsFitInside(200, 161), GR_STATUS_OK);  // 200 x 160 at 2
  expectScene(navigator, {0, 0, 200, 160, 2.0});
  EXPECT_EQ(navigator.setSceneAsFitInside(200, 160), GR_STATUS_OK);
  expectScene(navigator, {0, 0, 100, 80, 1.0});
}

TEST_F(GRINavigatorTest, WhatFitsAtNoMagnificationGivesOneAndKeepsTheScene) {
  GRINavigator navigator(image(), GRIScene(1, 2, 3, 4, 1.0));
  EXPECT_EQ(navigator.setSceneAsFitInside(12, 100), GR_STATUS_FAILURE);  // 13 x 10 is the smallest
  expectScene(navigator, {1, 2, 3, 4, 1.0});
  EXPECT_EQ(navigator.setSceneAsFitInside(0, 0), GR_STATUS_FAILURE);
}

TEST_F(GRINavigatorTest, ScenesOnTheGroundBecomeScenesOfTheImage) {
  ASSERT_EQ(image().setGeoCoord(GRIGeoCoord(1000, 2000, 2, -4, 0, 0)), GR_STATUS_OK);
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setSceneAsGeoULWH(1020, 1960, 40, 80, 0.5), GR_STATUS_OK);
  expectScene(navigator, {5, 5, 10, 10, 0.5});
  EXPECT_EQ(navigator.setSceneAsGeoULLR(1020, 1960, 1060, 1880, 0.5), GR_STATUS_OK);
  expectScene(navigator, {5, 5, 11, 11, 0.5});  // the last pixel is in it
  EXPECT_EQ(navigator.setSceneAsGeoCWH(1040, 1920, 40, 80, 0.5), GR_STATUS_OK);
  expectScene(navigator, {5, 5, 10, 10, 0.5});
}

TEST_F(GRINavigatorTest, CornersOnTheGroundAreFoundInARotatedImage) {
  ASSERT_EQ(image().setGeoCoord(GRIGeoCoord(0, 0, 2, -2, 1, 1)), GR_STATUS_OK);
  GRINavigator navigator = whole();
  // Pixels (5, 6) and (9, 12), by 2 col + row and col - 2 row.
  EXPECT_EQ(navigator.setSceneAsGeoULLR(16, -7, 30, -15, 1.0), GR_STATUS_OK);
  EXPECT_DOUBLE_EQ(navigator.getUpperLeftCol(), 5.0);
  EXPECT_DOUBLE_EQ(navigator.getUpperLeftRow(), 6.0);
  EXPECT_DOUBLE_EQ(navigator.getWidth(), 5.0);
  EXPECT_DOUBLE_EQ(navigator.getHeight(), 7.0);
}

#ifndef NDEBUG
TEST_F(GRINavigatorTest, ASizeOnTheGroundNeedsAnImageWithoutRotation) {
  GRINavigator navigator = whole();
  ASSERT_EQ(image().setGeoCoord(GRIGeoCoord(0, 0, 2, -2, 1, 0)), GR_STATUS_OK);
  EXPECT_DEATH(navigator.setSceneAsGeoULWH(0, 0, 1, 1, 1.0), "geo.getXRot\\(\\) == 0.0");
  ASSERT_EQ(image().setGeoCoord(GRIGeoCoord(0, 0, 2, -2, 0, 1)), GR_STATUS_OK);
  EXPECT_DEATH(navigator.setSceneAsGeoULWH(0, 0, 1, 1, 1.0), "geo.getYRot\\(\\) == 0.0");
}
#endif

TEST_F(GRINavigatorTest, AMapThatCannotBeInvertedGivesOne) {
  ASSERT_EQ(image().setGeoCoord(GRIGeoCoord(0, 0, 0, -1, 0, 0)), GR_STATUS_OK);
  GRINavigator navigator = whole();
  EXPECT_EQ(navigator.setSceneAsGeoULWH(0, 0, 1, 1, 1.0), GR_STATUS_FAILURE);
  EXPECT_EQ(navigator.setSceneAsGeoULLR(0, 0, 1, 1, 1.0), GR_STATUS_FAILURE);
  expectScene(navigator, {0, 0, 100, 80, 1.0});
}

TEST_F(GRINavigatorTest, KnowsTheCoordinateOfItsScene) {
  ASSERT_EQ(image().setGeoCoord(GRIGeoCoord(1000, 2000, 2, -4, 0, 0)), GR_STATUS_OK);
  const GRINavigator navigator(image(), GRIScene(5, 5, 10, 10, 0.5));
  GRIGeoCoord geoCoord;
  navigator.getGeoCoord(geoCoord);
  EXPECT_TRUE(geoCoord == GRIGeoCoord(1020, 1960, 4, -8, 0, 0));
}

}  // namespace
