#include "hosts/gri/gri_arguments.h"

#include <gtest/gtest.h>

TEST(GRIArgumentsTest, AMagnificationIsANumberOrAFraction) {
  EXPECT_EQ(gri_parseMagnification("0.125"), 0.125);
  EXPECT_EQ(gri_parseMagnification("1/8"), 0.125);
  EXPECT_EQ(gri_parseMagnification("2"), 2);
  EXPECT_EQ(gri_parseMagnification("3/2"), 1.5);
}

TEST(GRIArgumentsTest, WhatIsNoPositiveNumberIsNoMagnification) {
  for (const char* text :
       {"", "0", "-1", "1/0", "1/", "/8", "1/2/3", "x", "1x", "nan", "inf", "1e400", " 1", "1 "}) {
    EXPECT_FALSE(gri_parseMagnification(text)) << text;
  }
}

TEST(GRIArgumentsTest, ASizeHasOneSideOrTwo) {
  EXPECT_EQ(gri_parseSize("1000x"), (GRISize{1000, 0}));
  EXPECT_EQ(gri_parseSize("x800"), (GRISize{0, 800}));
  EXPECT_EQ(gri_parseSize("1000x800"), (GRISize{1000, 800}));
  EXPECT_EQ(gri_parseSize("2147483647x1"), (GRISize{2147483647, 1}));
}

TEST(GRIArgumentsTest, WhatIsNoSizeIsRefused) {
  for (const char* text :
       {"", "x", "1000", "0x5", "5x0", "-5x5", "5x5x5", "a x b", "2147483648x", "99999999999x"}) {
    EXPECT_FALSE(gri_parseSize(text)) << text;
  }
}

TEST(GRIArgumentsTest, BandsAreAListOfNumbersFromOne) {
  EXPECT_EQ(gri_parseBands("3,2,1"), (std::vector{3, 2, 1}));
  EXPECT_EQ(gri_parseBands("1"), std::vector{1});
  EXPECT_EQ(gri_parseBands("1,1"), (std::vector{1, 1}));
  for (const char* text : {"", ",", "1,", ",1", "0", "-1", "1;2", "1 2", "a", "99999999999"}) {
    EXPECT_FALSE(gri_parseBands(text)) << text;
  }
}
