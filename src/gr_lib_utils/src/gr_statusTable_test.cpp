#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "gr_lib_utils/include/gr_statusStrings.h"

namespace {

/// FNV-1a of "number<tab>message<newline>" of all rows in their order.
gr_uint64 digestOfTable() {
  gr_uint64 digest = 0xCBF29CE484222325;
  for (const GRStatusRow& row : gr_statusTable()) {
    for (const char byte : std::to_string(row.status) + "\t" + row.message + "\n") {
      digest = (digest ^ static_cast<gr_uint8>(byte)) * 0x100000001B3;
    }
  }
  return digest;
}

bool isBaseRow(const GRStatusRow& row) {
  const std::string_view message(row.message);
  const std::string_view lastWord = message.substr(message.rfind(' ') + 1);
  return (lastWord == "base" || lastWord == "BASE") && row.status % 100 == 0;
}

TEST(StatusTableTest, HasEachOfThePublishedRowsInTheirOrder) {
  EXPECT_EQ(gr_statusTable().size(), 651u);
  // Computed from the published list of numbers and messages, not from the table.
  EXPECT_EQ(digestOfTable(), 0xB22E740E957EDC5Eu);
}

TEST(StatusTableTest, HasOneStretchForEachLibraryInTheOrderOfTheList) {
  std::vector<gr_uint32> bases;
  for (const GRStatusRow& row : gr_statusTable()) {
    if (isBaseRow(row)) bases.push_back(row.status);
  }
  const std::vector<gr_uint32> expected = {50800, 16000, 4000,  145000, 8000,  9000,  2000,
                                           50000, 51300, 50200, 7000,   50300, 51100, 50400,
                                           50900, 50500, 50600, 50700,  51200, 3000};
  EXPECT_EQ(bases, expected);
  EXPECT_EQ(gr_statusTable().front().status, 50800u);
  EXPECT_EQ(gr_statusTable().back().status, 3110u);
}

TEST(StatusTableTest, HasThreeNumbersTwiceAndNoOther) {
  std::map<gr_uint32, int> rows;
  for (const GRStatusRow& row : gr_statusTable()) ++rows[row.status];
  std::map<gr_uint32, int> repeated;
  for (const auto& [status, count] : rows) {
    if (count > 1) repeated[status] = count;
  }
  EXPECT_EQ(repeated, (std::map<gr_uint32, int>{{7801, 2}, {50000, 2}, {504131, 2}}));
}

TEST(StatusTableTest, GivesEachNumberOfARangeARow) {
  for (gr_uint32 status = 8008; status <= 8021; ++status) {
    SCOPED_TRACE(status);
    EXPECT_STREQ(gr_rawStatusString(status), "tg2d internal error");
  }
  EXPECT_STREQ(gr_rawStatusString(8022), "Error decoding image");
}

TEST(StatusTableTest, CountsTheFirstRowOfANumber) {
  EXPECT_STREQ(gr_rawStatusString(7801), "Images have incompatible widths");
  EXPECT_STREQ(gr_rawStatusString(50000), "gr_lib_tesra_core base");
  EXPECT_STREQ(gr_rawStatusString(504131), "GeoTIFF: unable to set key");
}

TEST(StatusTableTest, HasNoRowForTheNumbersThatStandForThemselves) {
  for (const gr_uint32 status : {2u, 3u, 7u, 8u, 52001u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(status);
    EXPECT_STREQ(gr_rawStatusString(status), "unknown status");
  }
}

}  // namespace
