#include "gr_lib_utils/src/gr_unicode.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

std::u32string decoded(std::string_view text) {
  std::u32string codePoints;
  for (size_t i = 0; i < text.size();) codePoints += gr_nextCodePoint(text, i);
  return codePoints;
}

TEST(GrUnicodeTest, EveryCodePointComesBackFromUtf8) {
  for (char32_t codePoint = 1; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
    std::array<char, GR_UTF8_MAX_BYTES> bytes{};
    const size_t count = gr_encodeUtf8(codePoint, bytes.data());
    size_t index = 0;
    ASSERT_EQ(gr_nextCodePoint(std::string_view(bytes.data(), count), index), codePoint);
    ASSERT_EQ(index, count);
  }
}

TEST(GrUnicodeTest, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(decoded("\x80"), U"\uFFFD");
  EXPECT_EQ(decoded("\xC3"), U"\uFFFD");                      // ends inside
  EXPECT_EQ(decoded("\xC3z"), U"\uFFFDz");                    // goes on with something else
  EXPECT_EQ(decoded("\xC0\x80"), U"\uFFFD\uFFFD");            // longer than it needs to be
  EXPECT_EQ(decoded("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD");  // a surrogate
  EXPECT_EQ(decoded("\xF5\x80\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD");  // past the last one
}

TEST(GrUnicodeTest, WritesTwoUnitsWhereOneDoesNotDo) {
  std::array<char16_t, 2> units{};
  EXPECT_EQ(gr_encodeUtf16(0xFFFF, units.data()), 1u);
  EXPECT_EQ(units[0], 0xFFFF);
  EXPECT_EQ(gr_encodeUtf16(0x10000, units.data()), 2u);
  EXPECT_EQ(units[0], 0xD800);
  EXPECT_EQ(units[1], 0xDC00);
  EXPECT_EQ(gr_encodeUtf16(0x10FFFF, units.data()), 2u);
  EXPECT_EQ(units[0], 0xDBFF);
  EXPECT_EQ(units[1], 0xDFFF);
}

}  // namespace
