#include "image/gri_image.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <limits>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/gri_patternReader.h"

namespace {

/// An object that says when it goes.
class Counted final : public GRIReferenceCountedObject {
 public:
  explicit Counted(bool& isAlive) : m_isAlive(&isAlive) { isAlive = true; }
  ~Counted() override { *m_isAlive = false; }

 private:
  bool* m_isAlive;
};

TEST(GRIReferenceCountedObjectTest, DeletesItselfWithItsLastReference) {
  bool isAlive = false;
  Counted* object = new Counted(isAlive);
  EXPECT_EQ(object->release(), 0);
  EXPECT_FALSE(isAlive);
}

TEST(GRIReferenceCountedObjectTest, ARetainedHandleSurvivesOneRelease) {
  bool isAlive = false;
  Counted* object = new Counted(isAlive);
  object->retain();
  EXPECT_EQ(object->release(), 1);
  EXPECT_TRUE(isAlive);
  EXPECT_EQ(object->release(), 0);
  EXPECT_FALSE(isAlive);
}

TEST(GRIReferenceCountedObjectTest, ASmartPointerHoldsTheReferenceThatItAdopts) {
  bool isAlive = false;
  {
    const GRUtilSmartPointer<Counted> pointer(new Counted(isAlive));
    const GRUtilSmartPointer<Counted> second(pointer.retained());
    EXPECT_EQ(second.get(), pointer.get());
    EXPECT_TRUE(isAlive);
  }
  EXPECT_FALSE(isAlive);
}

#ifndef NDEBUG
TEST(GRIReferenceCountedObjectDeathTest, RefusesToBeDestroyedWhileItIsHeld) {
  EXPECT_DEATH(
      {
        bool isAlive = false;
        const Counted onTheStack(isAlive);
      },
      "m_count");
}
#endif

GRUtilSmartPointer<GRIPatternReader> imageOf(const GRIPixel& pixel, gr_uint32 width = 11,
                                             gr_uint32 height = 21) {
  GRUtilSmartPointer<GRIPatternReader> image(new GRIPatternReader);
  EXPECT_EQ(image->initialize(width, height, pixel), GR_STATUS_OK);
  return image;
}

TEST(GRIImageTest, TakesBandsColorsAndTypeFromItsPixel) {
  const auto image = imageOf(GRIPixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16));
  EXPECT_EQ(image->getNumBands(), 3);
  EXPECT_EQ(image->getColorSpace(), GRI_COLORSPACE_RGB);
  EXPECT_EQ(image->getDataType(), GRI_DATATYPE_UINT16);
  EXPECT_EQ(image->getNumBytes(), 11u * 21u * 6u);
}

TEST(GRIImageTest, CountsTheBytesOfHugeImagesIn64Bits) {
  const GRIPixel gray(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
  EXPECT_EQ(imageOf(gray, 0xFFFFFFFF, 0xFFFFFFFF)->getNumBytes(), 0xFFFFFFFE00000001u);
  const GRIPixel wide(GRI_COLORSPACE_MULTISPECTRAL, 60000, GRI_DATATYPE_FLOAT64);
  EXPECT_EQ(imageOf(wide, 0xFFFFFFFF, 0xFFFFFFFF)->getNumBytes(),
            std::numeric_limits<gr_uint64>::max());
}

TEST(GRIImageTest, AFreshRangeIsFullForTheTypesThatHaveOne) {
  for (const GRIDataType type : {GRI_DATATYPE_UINT8, GRI_DATATYPE_SINT8, GRI_DATATYPE_UINT16,
                                 GRI_DATATYPE_SINT16, GRI_DATATYPE_FLOAT32}) {
    EXPECT_TRUE(imageOf({GRI_COLORSPACE_GRAYSCALE, 1, type})->isFullDynamicRange()) << type;
  }
  for (const GRIDataType type : {GRI_DATATYPE_UINT32, GRI_DATATYPE_SINT32, GRI_DATATYPE_FLOAT64,
                                 GRI_DATATYPE_UINT64, GRI_DATATYPE_SINT64}) {
    EXPECT_FALSE(imageOf({GRI_COLORSPACE_GRAYSCALE, 1, type})->isFullDynamicRange()) << type;
  }
}

TEST(GRIImageTest, ARangeThatFallsShortInOneBandIsNotFull) {
  const GRIPixel rgb(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  const auto image = imageOf(rgb);
  GRIPixel min(rgb), max(rgb);
  min.setToMin();
  max.setToMax();
  max.setSampleUint8(2, 254);
  ASSERT_EQ(image->setDynamicRange(min, max), GR_STATUS_OK);
  EXPECT_FALSE(image->isFullDynamicRange());
  max.setSampleUint8(2, 255);
  min.setSampleUint8(0, 1);
  ASSERT_EQ(image->setDynamicRange(min, max), GR_STATUS_OK);
  EXPECT_FALSE(image->isFullDynamicRange());
}

TEST(GRIImageTest, AFloatRangeMayBeginBelowTheSmallestPositiveValue) {
  const GRIPixel gray(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_FLOAT32);
  const auto image = imageOf(gray);
  GRIPixel min(gray), max(gray);
  min.setAllFloat32(-FLT_MAX);
  max.setAllFloat32(FLT_MAX);
  ASSERT_EQ(image->setDynamicRange(min, max), GR_STATUS_OK);
  EXPECT_TRUE(image->isFullDynamicRange());
  min.setAllFloat32(1.0F);
  ASSERT_EQ(image->setDynamicRange(min, max), GR_STATUS_OK);
  EXPECT_FALSE(image->isFullDynamicRange());
}

TEST(GRIImageTest, KnowsTheGroundPositionOfNinePoints) {
  const auto image = imageOf({GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8});  // 11 x 21
  ASSERT_EQ(image->setGeoCoord(GRIGeoCoord(100, 200, 2, -3, 50, 60)), GR_STATUS_OK);
  struct Point {
    GRIPosition position;
    double x, y;
  };
  for (const Point point :
       {Point{GRI_POSITION_UPPER_LEFT, 100, 200}, Point{GRI_POSITION_UPPER_CENTER, 110, 200},
        Point{GRI_POSITION_UPPER_RIGHT, 120, 200}, Point{GRI_POSITION_LOWER_LEFT, 100, 140},
        Point{GRI_POSITION_LOWER_CENTER, 110, 140}, Point{GRI_POSITION_LOWER_RIGHT, 120, 140},
        Point{GRI_POSITION_CENTER_LEFT, 100, 170}, Point{GRI_POSITION_CENTER, 110, 170},
        Point{GRI_POSITION_CENTER_RIGHT, 120, 170}}) {
    SCOPED_TRACE(point.position);
    double x = 0, y = 0;
    image->getGeoPosition(point.position, x, y);
    EXPECT_EQ(x, point.x);
    EXPECT_EQ(y, point.y);
  }
}

#ifndef NDEBUG
TEST(GRIImageDeathTest, RefusesAnUnknownPosition) {
  const auto image = imageOf({GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8});
  double x = 0, y = 0;
  EXPECT_DEATH(image->getGeoPosition(static_cast<GRIPosition>(10), x, y), "bad position");
}
#endif

TEST(GRIImageTest, BackgroundIsBlackInEveryColorSpace) {
  EXPECT_TRUE(
      imageOf({GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8})->createBackgroundPixel()->isMin());
  EXPECT_TRUE(
      imageOf({GRI_COLORSPACE_CMYK, 4, GRI_DATATYPE_UINT8})->createBackgroundPixel()->isMax());
  const GRISample inks[] = {{GRI_COLOR_CYAN, GRI_DATATYPE_UINT8, nullptr},
                            {GRI_COLOR_MAGENTA, GRI_DATATYPE_UINT8, nullptr},
                            {GRI_COLOR_YELLOW, GRI_DATATYPE_UINT8, nullptr}};
  EXPECT_TRUE(imageOf({inks, 3, GRI_COLORSPACE_CMY})->createBackgroundPixel()->isMax());
  const auto gray = imageOf({GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_FLOAT32});
  EXPECT_EQ(gray->createBackgroundPixel()->getSample(0).getValueFloat32(), FLT_MIN);
}

TEST(GRIImageTest, BackgroundIsOpaque) {
  const auto image = imageOf({GRI_COLORSPACE_RGB_ALPHA, 4, GRI_DATATYPE_UINT8});
  const auto pixel = image->createBackgroundPixel();
  EXPECT_EQ(pixel->getSample(2).getValueUint8(), 0);
  EXPECT_EQ(pixel->getSample(3).getValueUint8(), 255);
}

TEST(GRIImageTest, BackgroundIsACopyOfThePixelThatIsSet) {
  GRIPixel seven(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  seven.setAllUint8(7);
  const auto image = imageOf(seven);
  ASSERT_EQ(image->setBackgroundPixel(&seven), GR_STATUS_OK);
  const auto pixel = image->createBackgroundPixel();
  EXPECT_EQ(*pixel, seven);
  EXPECT_NE(pixel.get(), image->getBackgroundPixel());
}

}  // namespace
