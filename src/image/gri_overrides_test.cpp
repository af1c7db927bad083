#include "image/gri_overrides.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/gri_patternReader.h"

namespace {

const GRIPixel& rgb() {
  static const GRIPixel PIXEL(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  return PIXEL;
}

GRUtilSmartPointer<GRIPatternReader> readerOf(gr_uint32 width, gr_uint32 height) {
  GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  EXPECT_EQ(reader->initialize(width, height, rgb()), GR_STATUS_OK);
  return reader;
}

TEST(GRIImageReaderTest, BeginsWithNeutralProperties) {
  const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  EXPECT_EQ(reader->getBackgroundPixel(), nullptr);
  EXPECT_EQ(reader->getNoDataPixel(), nullptr);
  EXPECT_EQ(reader->getMinMagnification(), 1.0);
  EXPECT_EQ(reader->getMaxMagnification(), 1.0);
  EXPECT_FALSE(reader->isSelective());
  EXPECT_EQ(reader->getStripHeight(), 64u);
  EXPECT_EQ(reader->getPixelLookupTable(), nullptr);
  EXPECT_EQ(reader->getProgressDelegate(), nullptr);
  EXPECT_EQ(reader->getInterruptDelegate(), nullptr);
  EXPECT_EQ(reader->getSourceInfo(), 0u);
}

TEST(GRIImageReaderTest, SizesExistOnlyForMagnificationsInRange) {
  const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  ASSERT_EQ(reader->initialize(5, 7, rgb(), 0.25, 2.0), GR_STATUS_OK);
  gr_uint32 width = 1, height = 2;
  for (const double mag : {0.2, 2.1, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(reader->getDimsAtMag(mag, width, height), GR_STATUS_OUT_OF_RANGE) << mag;
    EXPECT_EQ(width, 1u);
    EXPECT_EQ(height, 2u);
  }
  EXPECT_EQ(reader->getDimsAtMag(0.25, width, height), GR_STATUS_OK);
  EXPECT_EQ(width, 2u);
  EXPECT_EQ(height, 2u);
  EXPECT_EQ(reader->getDimsAtMag(2.0, width, height), GR_STATUS_OK);
  EXPECT_EQ(width, 10u);
  EXPECT_EQ(height, 14u);
}

TEST(GRIImageReaderTest, ASceneCostsItsSamplesInKiB) {
  const auto reader = readerOf(4000, 4000);
  EXPECT_EQ(reader->getSceneCost(GRIScene(0, 0, 1024, 100, 1.0)), 300);
  EXPECT_EQ(reader->getSceneCost(GRIScene(0, 0, 10, 10, 1.0)), 0);
}

TEST(GRIImageReaderTest, TheCostOfTheLargestSceneStaysPositive) {
  const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  const GRIPixel wide(GRI_COLORSPACE_MULTISPECTRAL, 65535, GRI_DATATYPE_FLOAT64);
  ASSERT_EQ(reader->initialize(1, 1, wide), GR_STATUS_OK);
  EXPECT_EQ(reader->getSceneCost(GRIScene(0, 0, 1e10, 1e10, 1.0)),
            static_cast<gr_int64>(std::numeric_limits<gr_uint64>::max() / 1024));
}

TEST(GRIImageReaderTest, AClippedSceneIsGivenAlsoWhenNothingIsLeft) {
  const auto reader = readerOf(40, 30);
  GRIScene out;
  EXPECT_TRUE(reader->getClippedScene(GRIScene(30, 20, 40, 40, 1.0), out));
  EXPECT_TRUE(out == GRIScene(30, 20, 10, 10, 1.0));
  EXPECT_FALSE(reader->getClippedScene(GRIScene(50, 0, 1, 1, 1.0), out));
  EXPECT_TRUE(out == GRIScene(50, 0, 1, 1, 1.0));
}

TEST(GRIOverrideBackgroundPixelTest, KeepsACopyAndForgetsItForNull) {
  const auto reader = readerOf(1, 1);
  GRIPixel pixel(rgb());
  pixel.setAllUint8(9);
  ASSERT_EQ(reader->setBackgroundPixel(&pixel), GR_STATUS_OK);
  ASSERT_EQ(reader->setNoDataPixel(&pixel), GR_STATUS_OK);
  pixel.setAllUint8(1);
  EXPECT_EQ(reader->getBackgroundPixel()->getSample(0).getValueUint8(), 9);
  EXPECT_EQ(reader->getNoDataPixel()->getSample(2).getValueUint8(), 9);
  ASSERT_EQ(reader->setBackgroundPixel(nullptr), GR_STATUS_OK);
  EXPECT_EQ(reader->getBackgroundPixel(), nullptr);
  EXPECT_NE(reader->getNoDataPixel(), nullptr);
  ASSERT_EQ(reader->setNoDataPixel(nullptr), GR_STATUS_OK);
  EXPECT_EQ(reader->getNoDataPixel(), nullptr);
}

TEST(GRIOverrideBackgroundPixelTest, MayBeSetToItself) {
  const auto reader = readerOf(1, 1);
  GRIPixel pixel(rgb());
  pixel.setAllUint8(9);
  ASSERT_EQ(reader->setBackgroundPixel(&pixel), GR_STATUS_OK);
  ASSERT_EQ(reader->setBackgroundPixel(reader->getBackgroundPixel()), GR_STATUS_OK);
  EXPECT_EQ(*reader->getBackgroundPixel(), pixel);
}

TEST(GRIOverrideGeoCoordTest, DefaultCountsRowsUpFromTheBottomAndIsImplicit) {
  const auto reader = readerOf(50, 100);
  const GRIGeoCoord& geo = reader->getGeoCoord();
  EXPECT_TRUE(reader->isGeoCoordImplicit());
  EXPECT_EQ(geo.getXOrigin(), 0.0);
  EXPECT_EQ(geo.getYOrigin(), 99.0);
  EXPECT_EQ(geo.getXResolution(), 1.0);
  EXPECT_EQ(geo.getYResolution(), -1.0);
  EXPECT_EQ(geo.getXRot(), 0.0);
  EXPECT_EQ(geo.getYRot(), 0.0);
  EXPECT_EQ(geo.getWKT(), nullptr);
}

TEST(GRIOverrideGeoCoordTest, IsExplicitOnceItIsSet) {
  const auto reader = readerOf(50, 100);
  ASSERT_EQ(reader->setGeoCoord(GRIGeoCoord(1, 2, 3, -4, 5, 6)), GR_STATUS_OK);
  EXPECT_FALSE(reader->isGeoCoordImplicit());
  EXPECT_TRUE(reader->getGeoCoord() == GRIGeoCoord(1, 2, 3, -4, 5, 6));
}

TEST(GRIOverridePixelPropsTest, ANewPixelHasTheFullRangeOfItsType) {
  const auto reader = readerOf(1, 1);
  EXPECT_TRUE(reader->getMinDynamicRange().isMin());
  EXPECT_TRUE(reader->getMaxDynamicRange().isMax());
  GRIPixel low(rgb()), high(rgb());
  low.setAllUint8(10);
  high.setAllUint8(20);
  ASSERT_EQ(reader->setDynamicRange(low, high), GR_STATUS_OK);
  EXPECT_EQ(reader->getMinDynamicRange(), low);
  EXPECT_EQ(reader->getMaxDynamicRange(), high);
  const GRIPixel wide(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_SINT16);
  ASSERT_EQ(reader->initialize(1, 1, wide), GR_STATUS_OK);  // sets the pixel anew
  EXPECT_EQ(reader->getMinDynamicRange().getSample(0).getValueSint16(), -32768);
  EXPECT_EQ(reader->getMaxDynamicRange().getSample(0).getValueSint16(), 32767);
}

TEST(GRIOverridePixelPropsTest, APrecisionOfZeroLeavesTheSamplesAlone) {
  const auto reader = readerOf(1, 1);
  ASSERT_EQ(reader->setPrecision(0), GR_STATUS_OK);
  EXPECT_EQ(reader->getPixelProps(), rgb());
  ASSERT_EQ(reader->setPrecision(5), GR_STATUS_OK);
  for (gr_uint16 band = 0; band < 3; ++band) {
    EXPECT_EQ(reader->getPixelProps().getSample(band).getPrecision(), 5u);
  }
}

TEST(GRIOverrideStripHeightTest, StoresAnyHeightUntested) {
  const auto reader = readerOf(1, 1);
  for (const gr_uint32 height : {1u, 0u, 0xFFFFFFFFu}) {
    EXPECT_EQ(reader->setStripHeight(height), GR_STATUS_OK);
    EXPECT_EQ(reader->getStripHeight(), height);
  }
}

TEST(GRIOverridePixelLookupTablesTest, KeepsACopyAndForgetsItForNull) {
  const auto reader = readerOf(1, 1);
  const gr_uint8 values[] = {1, 2, 3, 4, 5, 6};
  {
    const GRIPixelLookupTable table(rgb(), 2, values);
    ASSERT_EQ(reader->setPixelLookupTable(&table), GR_STATUS_OK);
  }
  ASSERT_NE(reader->getPixelLookupTable(), nullptr);
  EXPECT_EQ(reader->getPixelLookupTable()->getTableEntry(1)->getSample(2).getValueUint8(), 6);
  ASSERT_EQ(reader->setPixelLookupTable(nullptr), GR_STATUS_OK);
  EXPECT_EQ(reader->getPixelLookupTable(), nullptr);
}

// --- World files ---------------------------------------------------------------------------------

class GRIGeoImageReaderTest : public testing::Test {
 protected:
  GRIGeoImageReaderTest() : reader(readerOf(50, 100)) {}

  GR_STATUS readText(const std::string& text, bool& changed, bool respectFlag) {
    const auto stream = GRIOStreamUtils::openMemStream();
    const std::vector<gr_uint8> bytes(text.begin(), text.end());
    stream->write(bytes.data(), static_cast<gr_uint32>(bytes.size()));
    return reader->readWorldFile(*stream, changed, respectFlag);
  }

  GRUtilSmartPointer<GRIPatternReader> reader;
};

TEST_F(GRIGeoImageReaderTest, TakesThePositionFromAWorldFile) {
  bool changed = false;
  EXPECT_EQ(readText("1 2 3 -4 5 6", changed, false), GR_STATUS_OK);
  EXPECT_TRUE(changed);
  EXPECT_FALSE(reader->isGeoCoordImplicit());
  EXPECT_TRUE(reader->getGeoCoord() == GRIGeoCoord(5, 6, 1, -4, 2, 3));
}

TEST_F(GRIGeoImageReaderTest, RespectsItsFlagWhenAskedTo) {
  bool changed = true;
  EXPECT_EQ(readText("1 2 3 -4 5 6", changed, true), GR_STATUS_OK);
  EXPECT_FALSE(changed);
  EXPECT_TRUE(reader->isGeoCoordImplicit());
  reader->setUseWorldFile(true);
  EXPECT_EQ(readText("1 2 3 -4 5 6", changed, true), GR_STATUS_OK);
  EXPECT_TRUE(changed);
}

TEST_F(GRIGeoImageReaderTest, ABadWorldFileLeavesThePosition) {
  bool changed = true;
  EXPECT_EQ(readText("1 2 3 -4 5", changed, false), GRI_STATUS_READ_ERROR);
  EXPECT_FALSE(changed);
  EXPECT_TRUE(reader->isGeoCoordImplicit());
  EXPECT_EQ(reader->getGeoCoord().getYOrigin(), 99.0);
}

TEST_F(GRIGeoImageReaderTest, FindsTheWorldFileBesideTheImage) {
  std::string folder = testing::TempDir() + "/geoReaderXXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  const GRFileSpec image((folder + "/a.ntf").c_str());
  bool changed = true;
  EXPECT_EQ(reader->readWorldFile(image, changed, false), GR_STATUS_OK);  // there is none yet
  EXPECT_FALSE(changed);
  EXPECT_TRUE(reader->isGeoCoordImplicit());
  std::ofstream(folder + "/a.nfw") << "1\n0\n0\n-1\n7\n8\n";
  EXPECT_EQ(reader->readWorldFile(image, changed, true), GR_STATUS_OK);  // the flag isn't set
  EXPECT_FALSE(changed);
  EXPECT_EQ(reader->readWorldFile(image, changed, false), GR_STATUS_OK);
  EXPECT_TRUE(changed);
  EXPECT_EQ(reader->getGeoCoord().getYOrigin(), 8.0);
  std::filesystem::remove_all(folder);
}

}  // namespace
