#include "hosts/common/gri_hostMetadata.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "tests/support/gri_commaLocale.h"

TEST(GRIHostMetadataTest, ValuesOfEveryTypeReadAsNumbers) {
  const auto numberOf = [](gr_int32 type, const void* data) {
    const gr_uint32 dims[] = {2};
    return GRIHostRecord{"TAG", type, dims, data}.number(1);
  };
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_UINT8, std::array<gr_uint8, 2>{0, 200}.data()), 200);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_SINT8, std::array<gr_int8, 2>{0, -5}.data()), -5);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_UINT16, std::array<gr_uint16, 2>{0, 60000}.data()),
            60000);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_SINT16, std::array<gr_int16, 2>{0, -6}.data()), -6);
  EXPECT_EQ(
      numberOf(GRIC_METADATA_DATATYPE_UINT32, std::array<gr_uint32, 2>{0, 4000000000u}.data()),
      4000000000.0);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_SINT32, std::array<gr_int32, 2>{0, -7}.data()), -7);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_UINT64, std::array<gr_uint64, 2>{0, 8}.data()), 8);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_SINT64, std::array<gr_int64, 2>{0, -8}.data()), -8);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_FLOAT32, std::array<float, 2>{0, 0.5f}.data()), 0.5);
  EXPECT_EQ(numberOf(GRIC_METADATA_DATATYPE_FLOAT64, std::array<double, 2>{0, 0.1}.data()), 0.1);
  EXPECT_EQ(numberOf(99, nullptr), 0);
}

TEST(GRIHostMetadataTest, WordsKeepAllDigitsOfIntegers) {
  const gr_uint32 dims[] = {1};
  const gr_uint64 large = 18446744073709551615u;
  const gr_int64 small = -9223372036854775807;
  const gr_uint32 plain = 4294967295u;
  const double fraction = 0.1;
  const char* text = "some text";
  const auto words = [&](gr_int32 type, const void* data) {
    return GRIHostRecord{"TAG", type, dims, data}.words(0);
  };
  EXPECT_EQ(words(GRIC_METADATA_DATATYPE_UINT64, &large), "18446744073709551615");
  EXPECT_EQ(words(GRIC_METADATA_DATATYPE_SINT64, &small), "-9223372036854775807");
  EXPECT_EQ(words(GRIC_METADATA_DATATYPE_UINT32, &plain), "4294967295");
  EXPECT_EQ(words(GRIC_METADATA_DATATYPE_FLOAT64, &fraction), "0.1");
  EXPECT_EQ(words(GRIC_METADATA_DATATYPE_ASCII, &text), "some text");
}

TEST(GRIHostMetadataTest, NumbersHaveTwelveDigitsAndAPointInEveryLocale) {
  const auto expectWords = [] {
    EXPECT_EQ(gri_hostNumberWords(0.1), "0.1");
    EXPECT_EQ(gri_hostNumberWords(-2.0 / 3), "-0.666666666667");
    EXPECT_EQ(gri_hostNumberWords(500000.25), "500000.25");
    EXPECT_EQ(gri_hostNumberWords(1e20), "1e+20");
    EXPECT_EQ(gri_hostNumberWords(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(gri_hostNumberWords(-std::numeric_limits<double>::infinity()), "-inf");
  };
  expectWords();
  const GRICommaLocale locale;
  if (!locale.isSet()) GTEST_SKIP() << "needs localedef";
  expectWords();
}

TEST(GRIHostMetadataTest, WhatIsNoUtf8IsTakenAsLatin1) {
  EXPECT_EQ(gri_hostUtf8("plain"), "plain");
  EXPECT_EQ(gri_hostUtf8("caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(gri_hostUtf8("caf\xE9"), "caf\xC3\xA9");
  EXPECT_EQ(gri_hostUtf8("\xF0\x9F\x8C\x8D"), "\xF0\x9F\x8C\x8D");
}

TEST(GRIHostMetadataTest, MalformedUtf8NeverComesThrough) {
  // Overlong, a surrogate, beyond U+10FFFF, cut short, a stray continuation.
  for (const char* bytes : {"\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                            "\xF0\x80\x80\x80", "\xE2\x82", "\x80"}) {
    const std::string text = gri_hostUtf8(bytes);
    EXPECT_NE(text, bytes);
    EXPECT_EQ(gri_hostUtf8(text.c_str()), text);
  }
}

TEST(GRIHostMetadataTest, ATerminalGetsNoControlCharacters) {
  EXPECT_EQ(gri_hostPrintable("a\nb\tc\x1B[31m\x7F"), "a\\nb\\tc\\x1b[31m\\x7f");
  EXPECT_EQ(gri_hostPrintable("\xC2\x9B"
                              "31m"),
            "\\x9b31m");  // the one-byte form of ESC [
  EXPECT_EQ(gri_hostPrintable("caf\xC3\xA9"), "caf\xC3\xA9");
}

TEST(GRIHostMetadataTest, ARecordWithoutExtentsHasNoValues) {
  EXPECT_EQ(GRIHostRecord().count(), 0u);
  EXPECT_FALSE(GRIHostRecord().isScalar());
  EXPECT_STREQ(gri_hostMetadataTypeName(GRIC_METADATA_DATATYPE_ASCII), "text");
  EXPECT_STREQ(gri_hostMetadataTypeName(-3), "unknown");
}
