#include "image/gri_pixel.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_pixelLookupTable.h"

namespace {

GRISample sampleOf(GRIDataType type) { return {GRI_COLOR_GRAY, type, nullptr}; }

constexpr GRIDataType ALL_TYPES[] = {
    GRI_DATATYPE_UINT8,  GRI_DATATYPE_SINT8,  GRI_DATATYPE_UINT16,  GRI_DATATYPE_SINT16,
    GRI_DATATYPE_UINT32, GRI_DATATYPE_SINT32, GRI_DATATYPE_FLOAT32, GRI_DATATYPE_FLOAT64,
    GRI_DATATYPE_UINT64, GRI_DATATYPE_SINT64};

TEST(GRIUtilsTest, TellsBytesSignAndFloatOfEveryType) {
  struct Row {
    GRIDataType type;
    gr_uint32 bytes;
    bool isSigned, isFloat;
  };
  for (const Row row :
       {Row{GRI_DATATYPE_UINT8, 1, false, false}, Row{GRI_DATATYPE_SINT8, 1, true, false},
        Row{GRI_DATATYPE_UINT16, 2, false, false}, Row{GRI_DATATYPE_SINT16, 2, true, false},
        Row{GRI_DATATYPE_UINT32, 4, false, false}, Row{GRI_DATATYPE_SINT32, 4, true, false},
        Row{GRI_DATATYPE_FLOAT32, 4, true, true}, Row{GRI_DATATYPE_FLOAT64, 8, true, true},
        Row{GRI_DATATYPE_UINT64, 8, false, false}, Row{GRI_DATATYPE_SINT64, 8, true, false},
        Row{GRI_DATATYPE_COMPLEX32, 8, true, true}, Row{GRI_DATATYPE_COMPLEX64, 16, true, true}}) {
    SCOPED_TRACE(row.type);
    EXPECT_EQ(GRIUtils::getNumBytes(row.type), row.bytes);
    EXPECT_EQ(GRIUtils::isSigned(row.type), row.isSigned);
    EXPECT_EQ(GRIUtils::isFloat(row.type), row.isFloat);
  }
}

TEST(GRIUtilsTest, SwapsOnlyBigEndianValuesOfSeveralBytesOnALittleEndianMachine) {
  EXPECT_FALSE(GRIUtils::needsSwapping(GRI_DATATYPE_UINT8, GRI_ENDIAN_BIG));
  EXPECT_FALSE(GRIUtils::needsSwapping(GRI_DATATYPE_UINT16, GRI_ENDIAN_HOST));
  EXPECT_NE(GRIUtils::needsSwapping(GRI_DATATYPE_UINT16, GRI_ENDIAN_BIG),
            GRIUtils::needsSwapping(GRI_DATATYPE_UINT16, GRI_ENDIAN_LITTLE));
}

TEST(GRIUtilsTest, ReadsBandCountAndAlphaFromAColorSpace) {
  EXPECT_EQ(GRIUtils::getNumBands(GRI_COLORSPACE_MULTISPECTRAL), 0);
  EXPECT_EQ(GRIUtils::getNumBands(GRI_COLORSPACE_GRAYSCALE), 1);
  EXPECT_EQ(GRIUtils::getNumBands(GRI_COLORSPACE_CMYK), 4);
  EXPECT_EQ(GRIUtils::getNumBands(GRI_COLORSPACE_RGB_ALPHA), 4);
  EXPECT_EQ(GRIUtils::getNumBands(GRI_COLORSPACE_RGB_ALPHA_2), 4);
  EXPECT_TRUE(GRIUtils::hasAlpha(GRI_COLORSPACE_CMYK_ALPHA_2));
  EXPECT_FALSE(GRIUtils::hasAlpha(GRI_COLORSPACE_CMYK));
  EXPECT_EQ(GRIUtils::stripAlpha(GRI_COLORSPACE_GRAYSCALE_ALPHA_2), GRI_COLORSPACE_GRAYSCALE);
}

TEST(GRIUtilsTest, SizesAtAMagnificationRoundUpAndSaturate) {
  gr_uint32 w = 0, h = 0;
  GRIUtils::getDimsAtMag(5, 5, 0.5, w, h);
  EXPECT_EQ(w, 3u);
  EXPECT_EQ(h, 3u);
  GRIUtils::getDimsAtMag(0xFFFFFFFF, 3, 1.0, w, h);
  EXPECT_EQ(w, 0xFFFFFFFFu);
  GRIUtils::getDimsAtMag(5, 1, std::ldexp(1.0, 127), w, h);
  EXPECT_EQ(w, 0xFFFFFFFFu);
  GRIUtils::getDimsAtMag(5, 1, std::nan(""), w, h);
  EXPECT_EQ(w, 0u);
}

TEST(GRISampleTest, StartsAsAnUnsignedByteOfValueZero) {
  const GRISample sample;
  EXPECT_EQ(sample.getDataType(), GRI_DATATYPE_UINT8);
  EXPECT_EQ(sample.getColor(), GRI_COLOR_OTHER);
  EXPECT_EQ(sample.getNumBytes(), 1u);
  EXPECT_EQ(sample.getPrecision(), 8u);
  EXPECT_EQ(sample.getValueUint8(), 0);
}

TEST(GRISampleTest, SmallestFloatIsTheTinyPositiveOne) {
  GRISample sample = sampleOf(GRI_DATATYPE_FLOAT32);
  EXPECT_FALSE(sample.isMin());  // a zero isn't
  sample.setToMin();
  EXPECT_EQ(sample.getValueFloat32(), 1.1754943508222875e-38F);
  EXPECT_TRUE(sample.isMin());
  sample.setToMax();
  EXPECT_EQ(sample.getValueFloat32(), FLT_MAX);
  GRISample wide = sampleOf(GRI_DATATYPE_FLOAT64);
  wide.setToMin();
  EXPECT_EQ(wide.getValueFloat64(), DBL_MIN);
}

TEST(GRISampleTest, ReachesTheLimitsOfEveryType) {
  struct Row {
    GRIDataType type;
    double min, max;
  };
  for (const Row row : {Row{GRI_DATATYPE_UINT8, 0, 255}, Row{GRI_DATATYPE_SINT8, -128, 127},
                        Row{GRI_DATATYPE_UINT16, 0, 65535}, Row{GRI_DATATYPE_SINT16, -32768, 32767},
                        Row{GRI_DATATYPE_UINT32, 0, 4294967295.0},
                        Row{GRI_DATATYPE_SINT32, -2147483648.0, 2147483647.0},
                        Row{GRI_DATATYPE_UINT64, 0, 18446744073709551615.0},
                        Row{GRI_DATATYPE_SINT64, -9223372036854775808.0, 9223372036854775807.0}}) {
    SCOPED_TRACE(row.type);
    GRISample sample = sampleOf(row.type);
    sample.setToMin();
    EXPECT_TRUE(sample.isMin());
    EXPECT_EQ(sample.getValueAsDouble(), row.min);
    sample.setToMax();
    EXPECT_TRUE(sample.isMax());
    EXPECT_EQ(sample.getValueAsDouble(), row.max);
    EXPECT_FALSE(sample.isMin());
  }
}

TEST(GRISampleTest, TakesTheNearestValueOfADoubleAndSaturates) {
  GRISample sample = sampleOf(GRI_DATATYPE_SINT16);
  sample.setValueFromDouble(-2.4);
  EXPECT_EQ(sample.getValueSint16(), -2);
  sample.setValueFromDouble(1e30);
  EXPECT_EQ(sample.getValueSint16(), 32767);
  sample.setValueFromDouble(std::nan(""));
  EXPECT_EQ(sample.getValueSint16(), 0);
  for (const GRIDataType type : ALL_TYPES) {
    SCOPED_TRACE(type);
    GRISample wide = sampleOf(type);
    wide.setValueFromDouble(std::numeric_limits<double>::infinity());
    EXPECT_TRUE(wide.isMax());
    wide.setValueFromDouble(-1e300);
    EXPECT_LE(wide.getValueAsDouble(), 0.0);
    wide.setValueFromDouble(std::nan(""));
    EXPECT_EQ(wide.getValueAsDouble(), 0.0);
  }
  GRISample real = sampleOf(GRI_DATATYPE_FLOAT32);
  real.setValueFromDouble(-1e300);
  EXPECT_EQ(real.getValueFloat32(), -FLT_MAX);
}

TEST(GRISampleTest, KeepsTheLesserAndTheGreaterByTheTypesOwnOrder) {
  GRISample a = sampleOf(GRI_DATATYPE_SINT8), b = sampleOf(GRI_DATATYPE_SINT8);
  a.setValueSint8(-1);
  b.setValueSint8(1);
  GRISample lesser = b, greater = a;
  lesser.setToLesser(a);
  greater.setToGreater(b);
  EXPECT_EQ(lesser.getValueSint8(), -1);
  EXPECT_EQ(greater.getValueSint8(), 1);
}

TEST(GRISampleTest, IsEqualInColorTypePrecisionAndValue) {
  const GRISample gray = sampleOf(GRI_DATATYPE_UINT16);
  EXPECT_TRUE(gray == sampleOf(GRI_DATATYPE_UINT16));
  EXPECT_FALSE(gray == sampleOf(GRI_DATATYPE_SINT16));
  EXPECT_FALSE(gray == GRISample(GRI_COLOR_RED, GRI_DATATYPE_UINT16, nullptr));
  GRISample other = gray;
  other.setPrecision(11);
  EXPECT_FALSE(gray == other);
  other = gray;
  other.setValueUint16(1);
  EXPECT_FALSE(gray == other);
}

#ifndef NDEBUG
TEST(GRISampleDeathTest, RefusesMoreBitsThanTheTypeHas) {
  GRISample sample = sampleOf(GRI_DATATYPE_UINT8);
  EXPECT_DEATH(sample.setPrecision(9), "");
  EXPECT_DEATH(sample.setPrecision(0), "");
  EXPECT_DEATH(sample.setValueUint16(1), "m_dataType");
}

TEST(GRIPixelDeathTest, RefusesCmyWithoutSamples) {
  EXPECT_DEATH(GRIPixel(GRI_COLORSPACE_CMY, 3, GRI_DATATYPE_UINT8), "bad colorspace");
}
#endif

TEST(GRIPixelTest, TakesItsColorsFromTheColorSpaceAndAlphaLast) {
  const GRIPixel rgb(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  EXPECT_EQ(rgb.getSample(0).getColor(), GRI_COLOR_RED);
  EXPECT_EQ(rgb.getSample(1).getColor(), GRI_COLOR_GREEN);
  EXPECT_EQ(rgb.getSample(2).getColor(), GRI_COLOR_BLUE);
  const GRIPixel rgba(GRI_COLORSPACE_RGB_ALPHA, 4, GRI_DATATYPE_UINT8);
  EXPECT_EQ(rgba.getSample(2).getColor(), GRI_COLOR_BLUE);
  EXPECT_EQ(rgba.getSample(3).getColor(), GRI_COLOR_ALPHA);
  const GRIPixel cmyk(GRI_COLORSPACE_CMYK, 4, GRI_DATATYPE_UINT8);
  EXPECT_EQ(cmyk.getSample(3).getColor(), GRI_COLOR_BLACK);
  const GRIPixel many(GRI_COLORSPACE_MULTISPECTRAL, 300, GRI_DATATYPE_SINT16);
  EXPECT_EQ(many.getSample(299).getColor(), GRI_COLOR_OTHER);
}

TEST(GRIPixelTest, KnowsWhatFitsTogether) {
  EXPECT_TRUE(GRIPixel::fits(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(GRI_COLORSPACE_RGB, 4, GRI_DATATYPE_UINT8));
  EXPECT_TRUE(GRIPixel::fits(GRI_COLORSPACE_RGB_ALPHA, 4, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(GRI_COLORSPACE_CMY, 3, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(GRI_COLORSPACE_MULTISPECTRAL, 0, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(GRI_COLORSPACE_MULTISPECTRAL, 0x10000, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_COMPLEX32));
  // A pixel with alpha has more than one band.
  EXPECT_FALSE(GRIPixel::fits(static_cast<GRIColorSpace>(0x01FF01), 1, GRI_DATATYPE_UINT8));
  EXPECT_TRUE(GRIPixel::fits(static_cast<GRIColorSpace>(0x01FF01), 2, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(static_cast<GRIColorSpace>(0x0304), 3, GRI_DATATYPE_UINT8));
  EXPECT_FALSE(GRIPixel::fits(static_cast<GRIColorSpace>(0x40301), 3, GRI_DATATYPE_UINT8));
}

TEST(GRIPixelTest, HasNoDataTypeWhereItsBandsDiffer) {
  const GRISample samples[] = {sampleOf(GRI_DATATYPE_UINT8), sampleOf(GRI_DATATYPE_UINT16)};
  const GRIPixel pixel(samples, 2, GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(pixel.getDataType(), GRI_DATATYPE_INVALID);
  EXPECT_EQ(pixel.getNumBytes(), 3u);
  EXPECT_EQ(pixel.getMaxBytesPerSample(), 2u);
}

TEST(GRIPixelTest, ReportsTheFirstImpedanceMismatch) {
  const GRIPixel rgb8(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  const GRIPixel gray16(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16);
  const GRIPixel gray8(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
  const GRIPixel two(GRI_COLORSPACE_MULTISPECTRAL, 2, GRI_DATATYPE_UINT8);
  const GRIPixel three(GRI_COLORSPACE_MULTISPECTRAL, 3, GRI_DATATYPE_UINT8);
  EXPECT_EQ(rgb8.checkImpedance(gray16), GRI_STATUS_IMPEDANCE_DATATYPE);
  EXPECT_EQ(rgb8.checkImpedance(gray8), GRI_STATUS_IMPEDANCE_COLORSPACE);
  EXPECT_EQ(two.checkImpedance(three), GRI_STATUS_IMPEDANCE_BANDS);
  EXPECT_EQ(rgb8.checkImpedance(rgb8), GR_STATUS_OK);
}

TEST(GRIPixelTest, AFloatPixelOfZerosIsNotItsMinimum) {
  GRIPixel pixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_FLOAT32);
  EXPECT_FALSE(pixel.isMin());
  pixel.setToMin();
  EXPECT_TRUE(pixel.isMin());
  pixel.setToMax();
  EXPECT_TRUE(pixel.isMax());
}

TEST(GRIPixelTest, CopiesAreDeepAndAssignmentTakesBandsAndColorsOver) {
  GRIPixel gray(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16);
  const GRIPixel rgb(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  GRIPixel copy(rgb);
  copy.setSampleUint8(1, 7);
  EXPECT_EQ(rgb.getSample(1).getValueUint8(), 0);
  gray = copy;
  EXPECT_TRUE(gray == copy);
  EXPECT_EQ(gray.getNumBands(), 3);
  EXPECT_TRUE(*copy.clone() == copy);
}

TEST(GRIPixelTest, SetsOneValueAnArrayOrABand) {
  GRIPixel rgb(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  rgb.setAllUint8(9);
  EXPECT_EQ(rgb.getSample(2).getValueUint8(), 9);
  const gr_uint8 values[] = {1, 2, 3};
  rgb.setValuesUint8(values);
  EXPECT_EQ(rgb.getSample(2).getValueUint8(), 3);
  const gr_uint8 byte = 200;
  rgb.setSampleValueBytes(0, &byte);
  EXPECT_EQ(rgb.getSample(0).getValueUint8(), 200);
}

TEST(GRIPixelLookupTableTest, LaysEntriesOutByBand) {
  const GRIPixel rgb(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  GRIPixelLookupTable table(rgb, 4, nullptr);
  GRIPixel entry(rgb);
  const gr_uint8 values[] = {10, 20, 30};
  entry.setValuesUint8(values);
  table.setTableEntry(2, entry);
  const gr_uint8 expected[] = {0, 0, 10, 0, 0, 0, 20, 0, 0, 0, 30, 0};
  EXPECT_EQ(std::memcmp(table.getTable(), expected, sizeof(expected)), 0);
  EXPECT_TRUE(*table.getTableEntry(2) == entry);
  const GRIPixelLookupTable copy(table);
  EXPECT_EQ(copy.getTableSize(), 4u);
  EXPECT_NE(copy.getTable(), table.getTable());
  EXPECT_EQ(std::memcmp(copy.getTable(), expected, sizeof(expected)), 0);
}

}  // namespace
