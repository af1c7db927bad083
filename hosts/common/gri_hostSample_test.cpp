#include "hosts/common/gri_hostSample.h"

#include <gtest/gtest.h>

#include <limits>

using enum GRIHostColor;

TEST(GRIHostSampleTest, EveryDataTypeHasItsSizeAndName) {
  EXPECT_EQ(gri_hostSampleBytes(GRIC_DATATYPE_UINT8), 1u);
  EXPECT_EQ(gri_hostSampleBytes(GRIC_DATATYPE_SINT16), 2u);
  EXPECT_EQ(gri_hostSampleBytes(GRIC_DATATYPE_FLOAT32), 4u);
  EXPECT_EQ(gri_hostSampleBytes(GRIC_DATATYPE_SINT64), 8u);
  EXPECT_STREQ(gri_hostSampleName(GRIC_DATATYPE_FLOAT64), "float64");
  EXPECT_STREQ(gri_hostSampleWords(GRIC_DATATYPE_UINT16), "16-bit unsigned");
}

TEST(GRIHostSampleTest, NumbersThatAreNoDataTypeHaveNoSize) {
  for (const gr_int32 number : {0, -1, 11, 12, 1000}) {
    EXPECT_EQ(gri_hostSampleBytes(number), 0u) << number;
    EXPECT_STREQ(gri_hostSampleName(number), "mixed") << number;
  }
}

TEST(GRIHostSampleTest, TheAlphaBandIsTheLastOneWithEitherFlag) {
  constexpr gr_int32 FIRST = GRIC_COLORSPACE_ALPHA;
  constexpr gr_int32 BOTH = FIRST | GRIC_COLORSPACE_ALPHA_SECOND_FLAG;
  EXPECT_EQ(gri_hostBandColors(GRIC_COLORSPACE_GRAYSCALE | FIRST, 2), (std::vector{GRAY, ALPHA}));
  EXPECT_EQ(gri_hostBandColors(GRIC_COLORSPACE_RGB | BOTH, 4),
            (std::vector{RED, GREEN, BLUE, ALPHA}));
  EXPECT_EQ(gri_hostColorSpaceName(GRIC_COLORSPACE_RGB | BOTH), "RGB with alpha");
}

TEST(GRIHostSampleTest, BandsBeyondTheColourSpaceAreOther) {
  EXPECT_EQ(gri_hostBandColors(GRIC_COLORSPACE_MULTISPECTRAL, 2), (std::vector{OTHER, OTHER}));
  EXPECT_EQ(gri_hostBandColors(GRIC_COLORSPACE_GRAYSCALE, 3), (std::vector{GRAY, OTHER, OTHER}));
  EXPECT_EQ(gri_hostBandColors(GRIC_COLORSPACE_RGB, 2), (std::vector{RED, GREEN}));
  EXPECT_TRUE(gri_hostBandColors(GRIC_COLORSPACE_RGB, 0).empty());
  EXPECT_EQ(gri_hostColorSpaceName(0x1234), "unknown");
}

TEST(GRIHostSampleTest, EveryColourHasAName) {
  EXPECT_STREQ(gri_hostColorName(OTHER), "other");
  EXPECT_STREQ(gri_hostColorName(CHROMA_RED), "chroma red");
  EXPECT_STREQ(gri_hostColorName(ALPHA), "alpha");
}

TEST(GRIHostSampleTest, AValueIsASampleWhereTheTypeHoldsIt) {
  EXPECT_TRUE(gri_hostIsSample(GRIC_DATATYPE_UINT8, 255));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_UINT8, 256));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_UINT8, -1));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_UINT8, 0.5));
  EXPECT_TRUE(gri_hostIsSample(GRIC_DATATYPE_SINT16, -32768));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_SINT16, 32768));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_UINT64, 0x1p64));
  EXPECT_TRUE(gri_hostIsSample(GRIC_DATATYPE_SINT64, -0x1p63));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_FLOAT32, 1e300));
  EXPECT_TRUE(gri_hostIsSample(GRIC_DATATYPE_FLOAT64, 1e300));
  for (const gr_int32 type : {GRIC_DATATYPE_UINT8, GRIC_DATATYPE_SINT32, GRIC_DATATYPE_UINT64}) {
    EXPECT_FALSE(gri_hostIsSample(type, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(gri_hostIsSample(type, std::numeric_limits<double>::infinity()));
  }
  EXPECT_TRUE(gri_hostIsSample(GRIC_DATATYPE_FLOAT32, std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(gri_hostIsSample(GRIC_DATATYPE_INVALID, 0));
}
