#include "filters/gri_nearestRow.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/support/gr_instructionSets.h"

namespace {

constexpr gr_uint8 GUARD = 0xA5;

std::vector<gr_uint8> randomBytes(size_t count, std::mt19937& random) {
  std::vector<gr_uint8> bytes(count);
  for (gr_uint8& byte : bytes) byte = static_cast<gr_uint8>(random());
  return bytes;
}

using Nearest = void (*)(const void*, gr_uint32, size_t, float, float, size_t, void*);

/// One byte in front of the row makes it unaligned, one behind what is written shows an overrun.
std::vector<gr_uint8> run(Nearest nearest, const std::vector<gr_uint8>& row, gr_uint32 width,
                          size_t bytes, float x, float step, size_t count) {
  std::vector<gr_uint8> result(1 + count * bytes + 1, GUARD);
  nearest(row.data() + 1, width, bytes, x, step, count, result.data() + 1);
  EXPECT_EQ(result.front(), GUARD);
  EXPECT_EQ(result.back(), GUARD);
  return result;
}

TEST(GRINearestRowTest, TruncatesPositionsAndRepeatsTheSidesOfTheRow) {
  const gr_uint8 row[] = {10, 11, 12, 13};
  gr_uint8 result[8] = {};
  gri_nearestRow(row, 4, 1, -0.75F, 0.75F, 8, result);
  // -0.75, 0, 0.75, 1.5, 2.25, 3, 3.75, 4.5
  const gr_uint8 expected[] = {10, 10, 10, 11, 12, 13, 13, 13};
  EXPECT_EQ(std::vector<gr_uint8>(result, result + 8),
            std::vector<gr_uint8>(expected, expected + 8));
}

TEST(GRINearestRowTest, EveryInstructionSetAgreesWithTheScalarForAnyStep) {
  constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();
  constexpr float HUGE_NUMBER = std::numeric_limits<float>::max();
  forEachInstructionSet([&](std::mt19937& random) {
    for (const size_t bytes : {size_t{1}, size_t{2}, size_t{4}, size_t{8}}) {
      for (const float step : {1.0F, 0.5F, 0.25F, 0.125F, 2.0F, 4.0F, 8.0F, 3.0F, 0.75F, 1.0F / 3,
                               1e-7F, 0.0F, -1.0F, NO_NUMBER, HUGE_NUMBER}) {
        for (const float x : {0.0F, 1.0F, 0.5F, 0.75F, 7.25F, -0.5F, -9.0F, 40.0F, 0.1F, NO_NUMBER,
                              HUGE_NUMBER, -HUGE_NUMBER}) {
          for (const gr_uint32 width : {1u, 2u, 3u, 17u, 64u, 301u}) {
            const size_t count = random() % 300;
            SCOPED_TRACE(testing::Message() << bytes << " bytes, step " << step << ", x " << x
                                            << ", width " << width << ", count " << count);
            const std::vector<gr_uint8> row = randomBytes(1 + width * bytes, random);
            ASSERT_EQ(run(gri_nearestRow, row, width, bytes, x, step, count),
                      run(gri_nearestRowScalar, row, width, bytes, x, step, count));
          }
        }
      }
    }
  });
}

// Rows and counts longer than what is done at once without limits.
TEST(GRINearestRowTest, AgreesWithTheScalarOverLongRows) {
  std::mt19937 random(7);
  for (const size_t bytes : {size_t{1}, size_t{2}, size_t{4}, size_t{8}}) {
    for (const gr_uint32 width : {4095u, 4097u, 20011u}) {
      const std::vector<gr_uint8> row = randomBytes(1 + width * bytes, random);
      for (const float step : {1.0F / 3, 0.999999F, 1.000001F, 1.2F, 2.7F}) {
        for (const float x : {-20.5F, 0.0F, 0.1F, 4000.3F}) {
          for (const size_t count : {size_t{4096}, size_t{4097}, size_t{20050}}) {
            SCOPED_TRACE(testing::Message() << bytes << " bytes, step " << step << ", x " << x
                                            << ", width " << width << ", count " << count);
            ASSERT_EQ(run(gri_nearestRow, row, width, bytes, x, step, count),
                      run(gri_nearestRowScalar, row, width, bytes, x, step, count));
          }
        }
      }
    }
  }
}

// From 2^24 on not every whole number is a float: a sum of ones stands still there.
TEST(GRINearestRowTest, PositionsAreAddedUpInSinglePrecision) {
  constexpr gr_uint32 WIDTH = (1u << 24) + 8;
  std::vector<gr_uint8> row(WIDTH);
  for (gr_uint32 i = 0; i < WIDTH; ++i) row[i] = static_cast<gr_uint8>(i % 251);
  gr_uint8 result[4] = {};
  gri_nearestRow(row.data(), WIDTH, 1, 16777215.0F, 1.0F, 4, result);
  EXPECT_EQ(result[0], 16777215u % 251);
  EXPECT_EQ(result[1], 16777216u % 251);
  EXPECT_EQ(result[2], 16777216u % 251);
  EXPECT_EQ(result[3], 16777216u % 251);
}

}  // namespace
