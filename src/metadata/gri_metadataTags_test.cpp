#include "metadata/gri_metadataTags.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(GRIMetadataTagsTest, TheTableHas90TagsInTheOrderOfTheirNumbersAndASentinel) {
  const auto table = gri_metadataTagTable();
  ASSERT_EQ(table.size(), 91u);
  std::set<std::string> texts;
  for (size_t i = 0; i < table.size(); ++i) {
    if (i > 0) {
      EXPECT_LT(table[i - 1].number, table[i].number);
    }
    EXPECT_TRUE(texts.insert(table[i].text).second) << table[i].text;
  }
  EXPECT_EQ(table.back().number, 10000);
  EXPECT_STREQ(table.back().text, "");
}

TEST(GRIMetadataTagsTest, EveryTagOfTheTableConvertsToItsTextAndBack) {
  for (const GRIMetadataTagRow& row : gri_metadataTagTable()) {
    EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(row.number), row.text);
    EXPECT_EQ(GRIMetadataUtilities::convertTagToNumber(row.text), row.number);
  }
}

TEST(GRIMetadataTagsTest, NumbersHaveTheirTexts) {
  EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(0), "(invalid)");
  EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(102), "IMAGE::INPUT_NAME");
  EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(200), "GEO::PCSCitationGeoKey");
  EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(400), "IMG::CLASSNAME:");
  EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(903),
               "IMAGE::STATISTICS:STANDARD_DEVIATION");
}

TEST(GRIMetadataTagsTest, ANumberThatIsNotInTheTableHasNoText) {
  for (const gr_int32 number : {136, 1, 5, -1, 9999, 10001}) {
    EXPECT_EQ(GRIMetadataUtilities::convertTagToString(number), nullptr) << number;
  }
}

TEST(GRIMetadataTagsTest, AKnownTextHasItsNumberAndAnyOtherHas1) {
  EXPECT_EQ(GRIMetadataUtilities::convertTagToNumber("IMAGE::WIDTH"), 113);
  EXPECT_EQ(GRIMetadataUtilities::convertTagToNumber("IMAGE::width"), 1);
  EXPECT_EQ(GRIMetadataUtilities::convertTagToNumber("IMAGE::AOI::1::NAME"), 1);
}

TEST(GRIMetadataTagsTest, TheSentinelTakesPartInTheSearches) {
  EXPECT_EQ(GRIMetadataUtilities::convertTagToNumber(""), 10000);
  EXPECT_STREQ(GRIMetadataUtilities::convertTagToString(10000), "");
}

}  // namespace
