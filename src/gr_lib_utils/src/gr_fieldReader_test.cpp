#include "gr_lib_utils/include/gr_fieldReader.h"

#include <gtest/gtest.h>

#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

constexpr GR_STATUS SHORT = 8101;

TEST(GRFieldReaderTest, ReadsBigEndianFieldsOfAnyWidth) {
  const auto stream = memStreamOf({1, 1, 2, 1, 2, 3, 4, 1, 2, 3, 4, 5, 6, 7, 8, 0xFF, 0xFE});
  GRFieldReader fields(*stream, 17);
  gr_uint8 one = 0;
  gr_uint16 two = 0;
  gr_uint32 four = 0;
  gr_uint64 eight = 0;
  gr_int16 negative = 0;
  EXPECT_EQ(fields.read(one), GR_STATUS_OK);
  EXPECT_EQ(fields.read(two), GR_STATUS_OK);
  EXPECT_EQ(fields.read(four), GR_STATUS_OK);
  EXPECT_EQ(fields.read(eight), GR_STATUS_OK);
  EXPECT_EQ(fields.read(negative), GR_STATUS_OK);
  EXPECT_EQ(one, 1);
  EXPECT_EQ(two, 0x0102);
  EXPECT_EQ(four, 0x01020304u);
  EXPECT_EQ(eight, 0x0102030405060708u);
  EXPECT_EQ(negative, -2);
  EXPECT_EQ(fields.left(), 0u);
}

TEST(GRFieldReaderTest, ReadsBigEndianRealNumbers) {
  const auto stream = memStreamOf({0xC0, 0x04, 0, 0, 0, 0, 0, 0, 0x3F, 0x80, 0, 0});
  GRFieldReader fields(*stream, 12);
  double real = 0;
  float half = 0;
  EXPECT_EQ(fields.read(real), GR_STATUS_OK);
  EXPECT_EQ(fields.read(half), GR_STATUS_OK);
  EXPECT_EQ(real, -2.5);
  EXPECT_EQ(half, 1.0F);
}

TEST(GRFieldReaderTest, NeverReadsPastItsRange) {
  const auto stream = memStreamOf(countingBytes(10));
  GRFieldReader fields(*stream, 3, SHORT);
  gr_uint32 four = 77;
  EXPECT_EQ(fields.read(four), SHORT);
  EXPECT_EQ(four, 77u);
  EXPECT_EQ(fields.left(), 3u);
  EXPECT_EQ(stream->tell(), 0);
  EXPECT_EQ(fields.skip(4), SHORT);
  EXPECT_EQ(fields.skip(2), GR_STATUS_OK);
  EXPECT_EQ(fields.left(), 1u);
  EXPECT_EQ(stream->tell(), 2);
}

TEST(GRFieldReaderTest, FailsWhereTheStreamEndsInsideOfTheRange) {
  const auto stream = memStreamOf(countingBytes(3));
  GRFieldReader fields(*stream, 100);
  gr_uint32 four = 0;
  EXPECT_EQ(fields.read(four), TG3_STATUS_READ_ERROR);
}

TEST(GRFieldReaderTest, ReadsRunsOfBytes) {
  const auto stream = memStreamOf(countingBytes(10));
  GRFieldReader fields(*stream, 8);
  gr_uint8 bytes[3] = {};
  EXPECT_EQ(fields.read(bytes, 3), GR_STATUS_OK);
  EXPECT_EQ(bytes[2], 2);
  GRArray<gr_uint8> run;
  EXPECT_EQ(fields.read(run, 5), GR_STATUS_OK);
  EXPECT_EQ(run.size(), 5u);
  EXPECT_EQ(run[4], 7);
}

TEST(GRFieldReaderTest, AllocatesNothingForARunThatTheRangeDoesNotHave) {
  const auto stream = memStreamOf(countingBytes(10));
  GRFieldReader fields(*stream, 8, SHORT);
  GRArray<gr_uint8> run;
  EXPECT_EQ(fields.read(run, 9), SHORT);
  EXPECT_EQ(fields.read(run, ~gr_uint64{0}), SHORT);
  EXPECT_TRUE(run.empty());
}

}  // namespace
