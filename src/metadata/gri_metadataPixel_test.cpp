#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "image/gri_pixelLookupTable.h"
#include "metadata/gri_metadataAcc.h"

namespace {

using testing::ElementsAre;

GRIPixel pixelOf(gr_int32 colorSpace, gr_uint16 numBands, GRIDataType type) {
  return GRIPixel(static_cast<GRIColorSpace>(colorSpace), numBands, type);
}

GRIPixel grayOf(GRIDataType type) { return pixelOf(GRI_COLORSPACE_GRAYSCALE, 1, type); }

class GRIMetadataPixelTest : public testing::Test {
 protected:
  GRIMetadataDatabase database;
  GRIMetadataAcc acc{database};

  gr_uint32 stored(gr_int32 tag) {
    gr_uint32 value = 0xFFFFFFFF;
    EXPECT_EQ(acc.getTagScalar(tag, value), GR_STATUS_OK);
    return value;
  }

  /// The precision of a pixel of `type` after a dynamic range of that window was read.
  gr_uint32 precisionOfWindow(double window, GRIDataType type = GRI_DATATYPE_UINT16) {
    acc.removeDynamicRange();
    EXPECT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, window), GR_STATUS_OK);
    EXPECT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL, 1.0), GR_STATUS_OK);
    GRIPixel pixel = grayOf(type);
    EXPECT_EQ(acc.getPixelProps(pixel), GR_STATUS_OK);
    return pixel.getSample(0).getPrecision();
  }
};

// --- Pixel properties --------------------------------------------------------------------------

TEST_F(GRIMetadataPixelTest, ColorSpacesHaveTheirStoredNumbersBothWays) {
  struct {
    gr_int32 colorSpace;
    gr_uint16 numBands;
    gr_uint32 number;
  } const cases[] = {{0x0301, 3, 0},    {0x0402, 4, 2},    {0x0101, 1, 3},    {0xFF01, 7, 10},
                     {0x010101, 2, 11}, {0x030101, 2, 12}, {0x010301, 4, 13}, {0x030301, 4, 14},
                     {0x010402, 5, 15}, {0x030402, 5, 16}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.number);
    database.removeAll();
    ASSERT_EQ(acc.setPixelProps(pixelOf(c.colorSpace, c.numBands, GRI_DATATYPE_UINT8), false),
              GR_STATUS_OK);
    EXPECT_EQ(stored(GRI_TAG_IMAGE_COLOR_SCHEME), c.number);
    GRIPixel read = pixelOf(0xFF01, c.numBands, GRI_DATATYPE_UINT8);
    ASSERT_EQ(acc.getPixelProps(read), GR_STATUS_OK);
    EXPECT_TRUE(read == pixelOf(c.colorSpace, c.numBands, GRI_DATATYPE_UINT8));
  }
}

TEST_F(GRIMetadataPixelTest, DataTypesHaveTheirStoredNumbersBothWays) {
  const std::pair<GRIDataType, gr_uint32> cases[] = {
      {GRI_DATATYPE_UINT8, 0},   {GRI_DATATYPE_FLOAT32, 1}, {GRI_DATATYPE_UINT16, 2},
      {GRI_DATATYPE_SINT8, 10},  {GRI_DATATYPE_SINT16, 11}, {GRI_DATATYPE_SINT32, 12},
      {GRI_DATATYPE_SINT64, 13}, {GRI_DATATYPE_UINT32, 14}, {GRI_DATATYPE_UINT64, 15},
      {GRI_DATATYPE_FLOAT64, 16}};
  for (const auto& [type, number] : cases) {
    SCOPED_TRACE(number);
    database.removeAll();
    ASSERT_EQ(acc.setPixelProps(grayOf(type), false), GR_STATUS_OK);
    EXPECT_EQ(stored(GRI_TAG_IMAGE_DATA_TYPE), number);
    GRIPixel read = grayOf(GRI_DATATYPE_UINT8);
    ASSERT_EQ(acc.getPixelProps(read), GR_STATUS_OK);
    EXPECT_TRUE(read == grayOf(type));
  }
}

TEST_F(GRIMetadataPixelTest, AColorSpaceWithoutANumberIsNotWritten) {
  ASSERT_EQ(acc.setPixelProps(pixelOf(GRI_COLORSPACE_YCC, 3, GRI_DATATYPE_UINT8), false),
            GR_STATUS_OK);
  EXPECT_FALSE(database.has(GRI_TAG_IMAGE_COLOR_SCHEME));
  EXPECT_TRUE(database.has(GRI_TAG_IMAGE_DATA_TYPE));
}

TEST_F(GRIMetadataPixelTest, UnknownStoredNumbersLeaveThePixel) {
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_COLOR_SCHEME, gr_uint32{1}), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DATA_TYPE, gr_uint32{3}), GR_STATUS_OK);
  GRIPixel pixel = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16);
  ASSERT_EQ(acc.getPixelProps(pixel), GR_STATUS_OK);
  EXPECT_TRUE(pixel == pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16));
}

TEST_F(GRIMetadataPixelTest, AColorSpaceOfAnotherBandCountIsReportedAndTheRestIsTaken) {
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_COLOR_SCHEME, gr_uint32{0}), GR_STATUS_OK);  // RGB
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DATA_TYPE, gr_uint32{2}), GR_STATUS_OK);
  GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
  EXPECT_EQ(acc.getPixelProps(pixel), TESRA_STATUS_UNSUPPORTED_COLORSPACE);
  EXPECT_TRUE(pixel == grayOf(GRI_DATATYPE_UINT16));
}

TEST_F(GRIMetadataPixelTest, RecordsOfAnotherTypeLeaveThePixel) {
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DATA_TYPE, gr_uint32{2}), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, 11.0), GR_STATUS_OK);
  GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
  EXPECT_EQ(acc.getPixelProps(pixel), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_TRUE(pixel == grayOf(GRI_DATATYPE_UINT8));
}

TEST_F(GRIMetadataPixelTest, FullPrecisionIsWrittenOnlyByForce) {
  ASSERT_EQ(acc.setPixelProps(grayOf(GRI_DATATYPE_UINT16), false), GR_STATUS_OK);
  EXPECT_FALSE(database.has(GRI_TAG_IMAGE_BITS_PER_SAMPLE));
  acc.removePixelProps();
  EXPECT_EQ(database.getIndexCount(), 0u);
  ASSERT_EQ(acc.setPixelProps(grayOf(GRI_DATATYPE_UINT16), true), GR_STATUS_OK);
  gr_uint16 bits = 0;
  ASSERT_EQ(acc.getTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, bits), GR_STATUS_OK);
  EXPECT_EQ(bits, 16);
}

TEST_F(GRIMetadataPixelTest, ReducedPrecisionIsWrittenAndComesBack) {
  GRIPixel pixel = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16);
  pixel.setPrecision(11);
  ASSERT_EQ(acc.setPixelProps(pixel, false), GR_STATUS_OK);
  GRIPixel read = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16);
  ASSERT_EQ(acc.getPixelProps(read), GR_STATUS_OK);
  EXPECT_TRUE(read == pixel);
}

TEST_F(GRIMetadataPixelTest, APrecisionThatTheTypeCannotHaveIsIgnored) {
  for (const gr_uint16 bits : {0, 9, 65535}) {
    database.removeAll();
    ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, bits), GR_STATUS_OK);
    GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
    ASSERT_EQ(acc.getPixelProps(pixel), GR_STATUS_OK);
    EXPECT_EQ(pixel.getSample(0).getPrecision(), 8u);
  }
}

TEST_F(GRIMetadataPixelTest, TheWindowTellsThePrecisionWhereNoBitsAre) {
  EXPECT_EQ(precisionOfWindow(256), 8u);
  EXPECT_EQ(precisionOfWindow(257), 9u);
  EXPECT_EQ(precisionOfWindow(1), 16u);  // 0 bits: stays
  EXPECT_EQ(precisionOfWindow(2048, GRI_DATATYPE_FLOAT32), 11u);
}

TEST_F(GRIMetadataPixelTest, AWindowThatIsNoneIsIgnored) {
  for (const double window : {0.0, -256.0, 0.5, 8589934592.0, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(precisionOfWindow(window), 16u) << window;
  }
  EXPECT_EQ(precisionOfWindow(4294967296.0, GRI_DATATYPE_UINT32), 32u);
  EXPECT_EQ(precisionOfWindow(4294967296.0), 16u);  // 32 bits don't fit
}

TEST_F(GRIMetadataPixelTest, BitsComeBeforeTheWindowExceptForFloats) {
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, gr_uint16{10}), GR_STATUS_OK);
  EXPECT_EQ(precisionOfWindow(4096), 10u);
  EXPECT_EQ(precisionOfWindow(4096, GRI_DATATYPE_FLOAT32), 12u);
}

TEST_F(GRIMetadataPixelTest, RecordsThatDoNotCountMayHaveAnyForm) {
  GRIPixel pixel = grayOf(GRI_DATATYPE_UINT16), real = grayOf(GRI_DATATYPE_FLOAT32);
  // Bits come first, so that nobody asks for the window.
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, gr_uint16{11}), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, "256"), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL, "128"), GR_STATUS_OK);
  EXPECT_EQ(acc.getPixelProps(pixel), GR_STATUS_OK);
  EXPECT_EQ(pixel.getSample(0).getPrecision(), 11u);
  EXPECT_EQ(acc.getPixelProps(real), GRI_STATUS_TAG_BAD_FORMAT);
  // A window without a level isn't a range.
  acc.removeTag(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL);
  EXPECT_EQ(acc.getPixelProps(real), GR_STATUS_OK);
  // Floats have no bits, whether the image was one or becomes one.
  acc.removePixelProps();
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, 11.0), GR_STATUS_OK);
  EXPECT_EQ(acc.getPixelProps(real), GR_STATUS_OK);
  EXPECT_EQ(acc.getPixelProps(pixel), GRI_STATUS_TAG_BAD_FORMAT);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DATA_TYPE, gr_uint32{1}), GR_STATUS_OK);
  EXPECT_EQ(acc.getPixelProps(pixel), GR_STATUS_OK);
  EXPECT_TRUE(pixel == grayOf(GRI_DATATYPE_FLOAT32));
}

// --- Dynamic range -----------------------------------------------------------------------------

TEST_F(GRIMetadataPixelTest, ARangeIsStoredAsWindowAndLevelAndComesBack) {
  ASSERT_EQ(acc.setDynamicRange(0.0, 255.0), GR_STATUS_OK);
  double window = 0, level = 0, min = -1, max = -1;
  ASSERT_EQ(acc.getTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, window), GR_STATUS_OK);
  ASSERT_EQ(acc.getTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL, level), GR_STATUS_OK);
  EXPECT_EQ(window, 256.0);
  EXPECT_EQ(level, 127.5);
  ASSERT_EQ(acc.getDynamicRange(min, max), GR_STATUS_OK);
  EXPECT_EQ(min, 0.0);
  EXPECT_EQ(max, 255.0);
}

TEST_F(GRIMetadataPixelTest, TheRangeOfTwoPixelsIsThatOfAllTheirBands) {
  GRIPixel min = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16), max = min;
  const gr_uint16 mins[] = {20, 10, 30}, maxs[] = {400, 600, 500};
  min.setValuesUint16(mins);
  max.setValuesUint16(maxs);
  ASSERT_EQ(acc.setDynamicRange(min, max), GR_STATUS_OK);

  double least = 0, most = 0;
  ASSERT_EQ(acc.getDynamicRange(least, most), GR_STATUS_OK);
  EXPECT_EQ(least, 10.0);
  EXPECT_EQ(most, 600.0);
  ASSERT_EQ(acc.getDynamicRange(min, max), GR_STATUS_OK);
  for (gr_uint16 band = 0; band < 3; ++band) {
    EXPECT_EQ(min.getSample(band).getValueUint16(), 10);
    EXPECT_EQ(max.getSample(band).getValueUint16(), 600);
  }
}

TEST_F(GRIMetadataPixelTest, ARangeBeyondTheTypeIsClamped) {
  ASSERT_EQ(acc.setDynamicRange(-50.0, 1000.0), GR_STATUS_OK);
  GRIPixel min = grayOf(GRI_DATATYPE_UINT8), max = min;
  ASSERT_EQ(acc.getDynamicRange(min, max), GR_STATUS_OK);
  EXPECT_EQ(min.getSample(0).getValueUint8(), 0);
  EXPECT_EQ(max.getSample(0).getValueUint8(), 255);
}

TEST_F(GRIMetadataPixelTest, ARangeThatIsMissingOrNoneCountsAsAbsent) {
  double min = 1, max = 2;
  EXPECT_EQ(acc.getDynamicRange(min, max), GRI_STATUS_TAG_NOT_FOUND);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, 256.0), GR_STATUS_OK);
  EXPECT_EQ(acc.getDynamicRange(min, max), GRI_STATUS_TAG_NOT_FOUND);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL, std::nan("")), GR_STATUS_OK);
  EXPECT_EQ(acc.getDynamicRange(min, max), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(min, 1.0);
  EXPECT_EQ(max, 2.0);
}

// --- Background and no data --------------------------------------------------------------------

TEST_F(GRIMetadataPixelTest, TheBackgroundOfUint8IsTheNoDataValueAndOfOthersTheDefaultValue) {
  ASSERT_EQ(acc.setBackgroundPixel(grayOf(GRI_DATATYPE_UINT8)), GR_STATUS_OK);
  EXPECT_TRUE(database.has(GRI_TAG_IMAGE_NO_DATA_VALUE));
  EXPECT_FALSE(database.has(GRI_TAG_IMAGE_DEFAULT_DATA_VALUE));
  database.removeAll();
  ASSERT_EQ(acc.setBackgroundPixel(grayOf(GRI_DATATYPE_UINT16)), GR_STATUS_OK);
  EXPECT_FALSE(database.has(GRI_TAG_IMAGE_NO_DATA_VALUE));
  EXPECT_TRUE(database.has(GRI_TAG_IMAGE_DEFAULT_DATA_VALUE));
}

TEST_F(GRIMetadataPixelTest, PixelsReplaceTheirRecordsAndComeBack) {
  GRIPixel pixel = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16);
  const gr_uint16 values[] = {1, 2000, 65535};
  ASSERT_EQ(acc.setNoDataPixel(pixel), GR_STATUS_OK);
  pixel.setValuesUint16(values);
  ASSERT_EQ(acc.setNoDataPixel(pixel), GR_STATUS_OK);
  ASSERT_EQ(acc.setBackgroundPixel(pixel), GR_STATUS_OK);

  std::span<const gr_uint16> record;
  ASSERT_EQ(acc.getTagVector(GRI_TAG_IMAGE_TRANSPARENT_DATA_VALUE, record), GR_STATUS_OK);
  EXPECT_THAT(record, ElementsAre(1, 2000, 65535));
  GRIPixel noData = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16), background = noData;
  bool found = false;
  ASSERT_EQ(acc.getNoDataPixel(noData, &found), GR_STATUS_OK);
  EXPECT_TRUE(found);
  ASSERT_EQ(acc.getBackgroundPixel(background), GR_STATUS_OK);
  EXPECT_TRUE(noData == pixel);
  EXPECT_TRUE(background == pixel);
}

TEST_F(GRIMetadataPixelTest, AMissingPixelIsNoFailureAndLeavesThePixel) {
  GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
  pixel.setAllUint8(7);
  bool found = true;
  EXPECT_EQ(acc.getNoDataPixel(pixel, &found), GR_STATUS_OK);
  EXPECT_FALSE(found);
  EXPECT_EQ(pixel.getSample(0).getValueUint8(), 7);
}

TEST_F(GRIMetadataPixelTest, OnlyTheBandsThatBothHaveAreFilled) {
  const std::vector<gr_uint8> two = {8, 9};
  ASSERT_EQ(acc.setTagVector<gr_uint8>(GRI_TAG_IMAGE_TRANSPARENT_DATA_VALUE, two), GR_STATUS_OK);
  GRIPixel gray = grayOf(GRI_DATATYPE_UINT8);
  GRIPixel rgb = pixelOf(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  ASSERT_EQ(acc.getNoDataPixel(gray), GR_STATUS_OK);
  ASSERT_EQ(acc.getNoDataPixel(rgb), GR_STATUS_OK);
  EXPECT_EQ(gray.getSample(0).getValueUint8(), 8);
  EXPECT_EQ(rgb.getSample(1).getValueUint8(), 9);
  EXPECT_EQ(rgb.getSample(2).getValueUint8(), 0);
}

TEST_F(GRIMetadataPixelTest, APixelRecordWithoutValuesLeavesThePixel) {
  ASSERT_EQ(acc.setTagVector(GRI_TAG_IMAGE_TRANSPARENT_DATA_VALUE, std::span<const gr_uint8>()),
            GR_STATUS_OK);
  GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
  pixel.setAllUint8(7);
  EXPECT_EQ(acc.getNoDataPixel(pixel), GR_STATUS_OK);
  EXPECT_EQ(pixel.getSample(0).getValueUint8(), 7);
}

TEST_F(GRIMetadataPixelTest, APixelRecordThatIsNoVectorOrOfAnotherTypeIsBadFormat) {
  const std::vector<gr_uint32> shape = {1, 1};
  const std::vector<gr_uint8> value = {1};
  GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
  bool found = true;
  ASSERT_EQ(acc.setTagArray<gr_uint8>(GRI_TAG_IMAGE_TRANSPARENT_DATA_VALUE, shape, value),
            GR_STATUS_OK);
  EXPECT_EQ(acc.getNoDataPixel(pixel, &found), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_FALSE(found);
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_NO_DATA_VALUE, 1.0), GR_STATUS_OK);
  EXPECT_EQ(acc.getBackgroundPixel(pixel), GRI_STATUS_TAG_BAD_FORMAT);
}

TEST_F(GRIMetadataPixelTest, APixelOfSeveralTypesHasNoRecord) {
  const GRISample samples[] = {GRISample(GRI_COLOR_OTHER, GRI_DATATYPE_UINT8, nullptr),
                               GRISample(GRI_COLOR_OTHER, GRI_DATATYPE_UINT16, nullptr)};
  const GRIPixel pixel(samples, 2, GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(acc.setNoDataPixel(pixel), GRI_STATUS_METADATA_DATATYPE);
  EXPECT_EQ(database.getIndexCount(), 0u);
}

// --- Palette -----------------------------------------------------------------------------------

TEST_F(GRIMetadataPixelTest, APaletteComesBackWithTheColorSpaceOfItsBands) {
  const std::pair<gr_uint16, GRIColorSpace> cases[] = {{1, GRI_COLORSPACE_GRAYSCALE},
                                                       {2, GRI_COLORSPACE_MULTISPECTRAL},
                                                       {3, GRI_COLORSPACE_RGB},
                                                       {4, GRI_COLORSPACE_CMYK}};
  for (const auto& [numBands, colorSpace] : cases) {
    database.removeAll();
    std::vector<gr_uint8> values(size_t{numBands} * 5);
    for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<gr_uint8>(i);
    const GRIPixelLookupTable table(
        GRIPixel(GRI_COLORSPACE_MULTISPECTRAL, numBands, GRI_DATATYPE_UINT8), 5, values.data());
    ASSERT_EQ(acc.setInputLUT(table), GR_STATUS_OK);

    std::unique_ptr<GRIPixelLookupTable> read;
    ASSERT_EQ(acc.getPixelLookupTable(grayOf(GRI_DATATYPE_UINT8), read), GR_STATUS_OK);

    EXPECT_EQ(read->getNumBands(), numBands);
    EXPECT_EQ(read->getColorSpace(), colorSpace);
    EXPECT_EQ(read->getTableSize(), 5u);
    const auto* entries = static_cast<const gr_uint8*>(read->getTable());
    EXPECT_EQ(std::vector<gr_uint8>(entries, entries + values.size()), values);
  }
}

TEST_F(GRIMetadataPixelTest, APaletteOfAnotherShapeOrTypeIsRefused) {
  const std::vector<gr_uint8> values(6);
  std::unique_ptr<GRIPixelLookupTable> table;
  const GRIPixel pixel = grayOf(GRI_DATATYPE_UINT8);
  EXPECT_EQ(acc.getPixelLookupTable(pixel, table), GRI_STATUS_TAG_NOT_FOUND);
  for (const std::vector<gr_uint32>& shape : std::vector<std::vector<gr_uint32>>{
           {6}, {1, 2, 3}, {0, 5}, {3, 0}, {0x10000, 0}, {0x10000, 1}}) {
    acc.removeTag(GRI_TAG_IMAGE_INPUT_LUT);
    const std::vector<gr_uint8> enough(0x10000);
    ASSERT_EQ(acc.setTagArray<gr_uint8>(GRI_TAG_IMAGE_INPUT_LUT, shape, enough), GR_STATUS_OK);
    EXPECT_EQ(acc.getPixelLookupTable(pixel, table), GRI_STATUS_METADATA_FORMAT);
  }
  acc.removeTag(GRI_TAG_IMAGE_INPUT_LUT);
  const std::vector<gr_uint32> shape = {3, 2};
  ASSERT_EQ(acc.setTagArray<gr_uint8>(GRI_TAG_IMAGE_INPUT_LUT, shape, values), GR_STATUS_OK);
  EXPECT_EQ(acc.getPixelLookupTable(grayOf(GRI_DATATYPE_UINT16), table), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(table, nullptr);
}

}  // namespace
