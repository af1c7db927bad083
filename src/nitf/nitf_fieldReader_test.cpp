#include "nitf/nitf_fieldReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

NITFFieldReader readerOf(const std::string& text) {
  NITFFieldReader fields;
  EXPECT_EQ(fields.initialize(text.data(), text.size()), GR_STATUS_OK);
  return fields;
}

gr_int32 intOf(const std::string& text) {
  gr_int32 value = 77;
  EXPECT_EQ(readerOf(text).readInt(static_cast<gr_uint32>(text.size()), value), GR_STATUS_OK);
  return value;
}

double doubleOf(const std::string& text) {
  double value = 77;
  EXPECT_EQ(readerOf(text).readDouble(static_cast<gr_uint32>(text.size()), value), GR_STATUS_OK);
  return value;
}

TEST(NITFFieldReaderTest, ScansNumbersAsTheCLibraryDoesWithAWidth) {
  EXPECT_EQ(intOf("00042"), 42);
  EXPECT_EQ(intOf("   42"), 42);
  EXPECT_EQ(intOf("42   "), 42);
  EXPECT_EQ(intOf("-0042"), -42);
  EXPECT_EQ(intOf("+0042"), 42);
  EXPECT_EQ(intOf("4 2  "), 4);
  EXPECT_EQ(intOf("12x45"), 12);
  EXPECT_EQ(intOf("99999999"), 99999999);
  EXPECT_EQ(intOf("7"), 7);
}

TEST(NITFFieldReaderTest, TakesAFieldWithoutDigitsAsZero) {
  EXPECT_EQ(intOf("     "), 0);
  EXPECT_EQ(intOf("abcde"), 0);
  EXPECT_EQ(intOf("-----"), 0);
  EXPECT_EQ(intOf("+-5"), 0);
  EXPECT_EQ(intOf(std::string(4, '\0')), 0);
  EXPECT_EQ(doubleOf("    "), 0.0);
}

TEST(NITFFieldReaderTest, NeverRunsIntoTheNextField) {
  NITFFieldReader fields = readerOf("   123");
  gr_int32 value = 77;
  ASSERT_EQ(fields.readInt(3, value), GR_STATUS_OK);
  EXPECT_EQ(value, 0);
  ASSERT_EQ(fields.readInt(3, value), GR_STATUS_OK);
  EXPECT_EQ(value, 123);
}

TEST(NITFFieldReaderTest, RefusesANegativeCount) {
  gr_uint32 count = 77;
  gr_uint64 wideCount = 77;
  EXPECT_EQ(readerOf("-01").readCount(3, count), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(readerOf("-000000001").readCount64(10, wideCount), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(readerOf("-00").readCount(3, count), GR_STATUS_OK);
  EXPECT_EQ(count, 0u);
}

TEST(NITFFieldReaderTest, ReadsWideNumbersAndLimitsThem) {
  gr_int64 value = 0;
  ASSERT_EQ(readerOf("999999999999").readInt64(12, value), GR_STATUS_OK);
  EXPECT_EQ(value, 999999999999);
  ASSERT_EQ(readerOf("99999999999999999999").readInt64(20, value), GR_STATUS_OK);
  EXPECT_EQ(value, INT64_MAX);
  ASSERT_EQ(readerOf("-9999999999999999999").readInt64(20, value), GR_STATUS_OK);
  EXPECT_EQ(value, INT64_MIN);
}

TEST(NITFFieldReaderTest, ReadsRealNumbers) {
  EXPECT_EQ(doubleOf("+1.5"), 1.5);
  EXPECT_EQ(doubleOf(" -12.25e1"), -122.5);
  EXPECT_EQ(doubleOf("1.5x"), 1.5);
  EXPECT_EQ(doubleOf("1e999"), HUGE_VAL);
  EXPECT_EQ(doubleOf("-1e999"), -HUGE_VAL);
  EXPECT_EQ(doubleOf("1e-999"), 0.0);
}

TEST(NITFFieldReaderTest, ReadsTextsWithTheirBlanks) {
  NITFFieldReader fields = readerOf(" ab rest");
  NITFText<4> text;
  ASSERT_EQ(fields.readText(text), GR_STATUS_OK);
  EXPECT_STREQ(text.text(), " ab ");
  EXPECT_EQ(fields.left(), 4u);
}

TEST(NITFFieldReaderTest, RefusesAFieldThatRunsPastTheRange) {
  NITFFieldReader fields = readerOf("abc");
  std::string_view text;
  NITFText<4> holder;
  gr_int32 value = 0;
  EXPECT_EQ(fields.readText(4, text), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(fields.readText(holder), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(fields.readInt(4, value), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(fields.skip(4), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(fields.skip(-1), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(fields.skip(INT64_MAX), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(fields.skip(INT64_MIN), NITF_STATUS_INVALID_FILE);
  EXPECT_TRUE(fields.checkOffset(0));
  EXPECT_EQ(fields.readText(3, text), GR_STATUS_OK);
}

TEST(NITFFieldReaderTest, ConsumesALiteralOnlyWhenItIsThere) {
  NITFFieldReader fields = readerOf("IMabc");
  EXPECT_FALSE(fields.match("SY"));
  EXPECT_TRUE(fields.checkOffset(0));
  EXPECT_TRUE(fields.match("IM"));
  EXPECT_TRUE(fields.checkOffset(2));
  EXPECT_TRUE(fields.isAhead(1, "bc"));
  EXPECT_FALSE(fields.isAhead(2, "cd"));
  EXPECT_FALSE(fields.match("abcd"));
}

TEST(NITFFieldReaderTest, SkipsBothWays) {
  NITFFieldReader fields = readerOf("abcdef");
  ASSERT_EQ(fields.skip(4), GR_STATUS_OK);
  ASSERT_EQ(fields.skip(-2), GR_STATUS_OK);
  EXPECT_EQ(fields.offset(), 2u);
  EXPECT_FALSE(fields.isRestBlank());
  EXPECT_TRUE(readerOf("   ").isRestBlank());
}

TEST(NITFFieldReaderTest, ReadsARangeOfAStreamAndLeavesTheStreamAsItWas) {
  const auto stream = memStreamOf({'x', 'x', 'a', 'b', 'c'});
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  NITFFieldReader fields;
  ASSERT_EQ(fields.initialize(*stream, 2, 2), GR_STATUS_OK);
  EXPECT_FALSE(stream->isOpen());
  EXPECT_TRUE(fields.match("a"));
  EXPECT_EQ(fields.filePosition(), 3u);
  ASSERT_EQ(fields.setLength(*stream, 3), GR_STATUS_OK);
  EXPECT_TRUE(fields.match("bc"));
  EXPECT_EQ(fields.setLength(*stream, 2), NITF_STATUS_INVALID_FILE);
}

TEST(NITFFieldReaderTest, ReportsAShortRead) {
  const auto stream = memStreamOf({'a', 'b', 'c'});
  NITFFieldReader fields;
  EXPECT_FALSE(GR_SUCCESS(fields.initialize(*stream, 1, 3)));
  EXPECT_FALSE(GR_SUCCESS(fields.initialize(*stream, 100, 1)));
}

TEST(NITFTextTest, TakesOnlyTextsOfItsWidth) {
  NITFText<3> text;
  EXPECT_STREQ(text.text(), "   ");
  EXPECT_EQ(text.set("ab"), NITF_STATUS_BAD_STRING);
  EXPECT_EQ(text.set("abcd"), NITF_STATUS_BAD_STRING);
  EXPECT_STREQ(text.text(), "   ");
  EXPECT_EQ(text.set("abc"), GR_STATUS_OK);
  EXPECT_TRUE(text == "abc");
}

}  // namespace
