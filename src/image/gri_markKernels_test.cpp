#include "image/gri_markKernels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/gr_instructionSets.h"

namespace {

using Bytes = std::vector<gr_uint8>;

constexpr GRIDataType ALL_TYPES[] = {
    GRI_DATATYPE_UINT8,   GRI_DATATYPE_SINT8,   GRI_DATATYPE_UINT16, GRI_DATATYPE_SINT16,
    GRI_DATATYPE_UINT32,  GRI_DATATYPE_SINT32,  GRI_DATATYPE_UINT64, GRI_DATATYPE_SINT64,
    GRI_DATATYPE_FLOAT32, GRI_DATATYPE_FLOAT64,
};
constexpr GRIDataType MERGE_TYPES[] = {GRI_DATATYPE_UINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_SINT16,
                                       GRI_DATATYPE_FLOAT32};
constexpr size_t LENGTHS[] = {0, 1, 7, 8, 63, 64, 65, 127, 128, 200, 256, 321};

template <typename T>
Bytes bytesOf(const std::vector<T>& samples) {
  Bytes bytes(samples.size() * sizeof(T));
  std::memcpy(bytes.data(), samples.data(), bytes.size());
  return bytes;
}

Bytes marksOf(const std::vector<bool>& marked) {
  Bytes marks(gri_markBytes(marked.size()));
  for (size_t i = 0; i < marked.size(); ++i) {
    if (marked[i]) marks[i / 8] = static_cast<gr_uint8>(marks[i / 8] | 1 << (i % 8));
  }
  return marks;
}

/// Rows of a few bands whose samples often are equal, and often no data; behind an odd byte, so
/// that none is aligned.
struct Rows {
  Rows(GRIDataType type, size_t numBands, size_t numPixels, std::mt19937& random) {
    const size_t width = GRIUtils::getNumBytes(type);
    for (size_t band = 0; band < numBands; ++band) {
      bytes.emplace_back(1 + numPixels * width);
      for (size_t i = 0; i < numPixels; ++i) setSample(&bytes[band][1 + i * width], type, random);
    }
    for (const Bytes& row : bytes) pointers.push_back(row.data() + 1);
  }

  static void setSample(gr_uint8* at, GRIDataType type, std::mt19937& random) {
    if (type == GRI_DATATYPE_FLOAT32) {
      constexpr float SAMPLES[] = {0.0f, -0.0f, 3.5f, -2.25f, 1e30f, NAN, INFINITY};
      std::memcpy(at, &SAMPLES[random() % std::size(SAMPLES)], sizeof(float));
    } else if (type == GRI_DATATYPE_FLOAT64) {
      constexpr double SAMPLES[] = {0.0, -0.0, 3.5, -2.25, 1e300, NAN, INFINITY};
      std::memcpy(at, &SAMPLES[random() % std::size(SAMPLES)], sizeof(double));
    } else {
      constexpr gr_uint64 SAMPLES[] = {0, 1, 5, 9, 100, 0x8000, 0xFFFFFFFFFFFFFFFF, 1ull << 63};
      std::memcpy(at, &SAMPLES[random() % std::size(SAMPLES)], GRIUtils::getNumBytes(type));
    }
  }

  std::vector<Bytes> bytes;
  std::vector<const void*> pointers;
};

std::string describe(GRIDataType type, size_t numBands, size_t numPixels) {
  return std::to_string(numPixels) + " pixels of " + std::to_string(numBands) + " bands of type " +
         std::to_string(type);
}

template <typename T>
Bytes differentFrom(T none, GRIDataType type, const std::vector<T>& samples) {
  const Bytes row = bytesOf(samples);
  const void* const rows[] = {row.data()};
  const void* const noData[] = {&none};
  Bytes marks(gri_markBytes(samples.size()), 0xFF);
  gri_markDifferentScalar(rows, noData, 1, type, 0, samples.size(), marks.data());
  return marks;
}

/// Whether `b` should replace `a` in one band, with no data 100.
bool replaces(gr_uint8 b, gr_uint8 a, double threshold) {
  const gr_uint8 none = 100;
  const void *const rowsA[] = {&a}, *const rowsB[] = {&b}, *const noData[] = {&none};
  gr_uint8 marks[8];
  gri_markFuzzyScalar(rowsA, rowsB, noData, 1, GRI_DATATYPE_UINT8, threshold, 0, 1, marks);
  return marks[0] != 0;
}

TEST(MarkKernelsTest, APixelDiffersWhenOneOfItsBandsDoes) {
  const Bytes red = {1, 9, 1, 1}, green = {2, 2, 9, 2}, blue = {3, 3, 3, 3};
  const gr_uint8 none[] = {1, 2, 3};
  const void* const rows[] = {red.data(), green.data(), blue.data()};
  const void* const noData[] = {&none[0], &none[1], &none[2]};
  Bytes marks(8);

  gri_markDifferentScalar(rows, noData, 3, GRI_DATATYPE_UINT8, 0, 4, marks.data());

  EXPECT_EQ(marks, marksOf({false, true, true, false}));
}

TEST(MarkKernelsTest, FloatsAgreeByValueOrByBits) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(differentFrom(0.0f, GRI_DATATYPE_FLOAT32, {0.0f, -0.0f, 1.0f, nan}),
            marksOf({false, false, true, true}));
  EXPECT_EQ(differentFrom(nan, GRI_DATATYPE_FLOAT32, {nan, 0.0f}), marksOf({false, true}));
}

TEST(MarkKernelsTest, MarksBehindTheLastPixelAre0) {
  EXPECT_EQ(differentFrom<gr_uint8>(0, GRI_DATATYPE_UINT8, Bytes(65, 1)),
            marksOf(std::vector<bool>(65, true)));
}

TEST(MarkKernelsTest, NothingIsGreaterThanANaN) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float a[] = {1.0f, nan, 2.0f, 2.0f}, b[] = {nan, 1.0f, 1.0f, 2.0f};
  Bytes marks(8);
  gri_markGreaterScalar(a, b, GRI_DATATYPE_FLOAT32, 0, 4, marks.data());
  EXPECT_EQ(marks, marksOf({false, false, true, false}));
}

TEST(MarkKernelsTest, ASampleThatIsNoDataReplacesNothingWhateverTheThreshold) {
  for (const double threshold : {-1.0, 0.0, 16.0, 1e9}) {
    EXPECT_FALSE(replaces(100, 50, threshold)) << threshold;
    EXPECT_FALSE(replaces(100, 100, threshold)) << threshold;
  }
}

TEST(MarkKernelsTest, NoDataIsReplacedByWhateverIsData) { EXPECT_TRUE(replaces(101, 100, 1e9)); }

TEST(MarkKernelsTest, FarFromNoDataIsTakenAndNearItIsReplaced) {
  EXPECT_TRUE(replaces(105, 50, 16.0));   // db = 25 passes the threshold
  EXPECT_TRUE(replaces(101, 103, 16.0));  // da = 9 is below it
}

TEST(MarkKernelsTest, BetweenTheTwoTheFartherOneWinsByAFactor2) {
  EXPECT_FALSE(replaces(104, 104, 16.0));  // db = da = 16: neither test decides, 32 < 16 fails
  EXPECT_FALSE(replaces(104, 96, 16.0));
  EXPECT_TRUE(replaces(106, 104, 36.0));   // da = 16 is below 36
  EXPECT_FALSE(replaces(104, 106, 20.0));  // db = 16, da = 36: 72 < 16 fails
}

TEST(MarkKernelsTest, LargeDifferencesAreSquaredWithoutOverflow) {
  const gr_uint16 none = 0, a = 65535, b = 65534;
  const void *const rowsA[] = {&a}, *const rowsB[] = {&b}, *const noData[] = {&none};
  gr_uint8 marks[8];
  gri_markFuzzyScalar(rowsA, rowsB, noData, 1, GRI_DATATYPE_UINT16, 4294705155.0, 0, 1, marks);
  EXPECT_EQ(marks[0], 1);  // 65534 squared is one more
}

TEST(MarkKernelsTest, RunsOfMarksComeFromLeftToRight) {
  std::vector<bool> marked(300);
  for (const auto& [first, last] : {std::pair{0, 0}, {2, 5}, {60, 70}, {128, 255}, {299, 299}}) {
    for (int i = first; i <= last; ++i) marked[static_cast<size_t>(i)] = true;
  }
  const Bytes marks = marksOf(marked);
  std::vector<std::pair<size_t, size_t>> runs;

  gri_forEachMarkedRun(marks.data(), marked.size(),
                       [&](size_t first, size_t count) { runs.emplace_back(first, count); });

  EXPECT_THAT(runs, testing::ElementsAre(std::pair{0, 1}, std::pair{2, 4}, std::pair{60, 11},
                                         std::pair{128, 128}, std::pair{299, 1}));
}

TEST(MarkKernelsTest, RunsRepeatTheMarks) {
  std::mt19937 random(3);
  for (size_t n = 0; n < 200; ++n) {
    std::vector<bool> marked(n), repeated(n);
    for (size_t i = 0; i < n; ++i) marked[i] = random() % 4 != 0;
    gri_forEachMarkedRun(marksOf(marked).data(), n, [&](size_t first, size_t count) {
      ASSERT_GT(count, 0u);
      for (size_t i = first; i < first + count; ++i) repeated[i] = true;
    });
    ASSERT_EQ(repeated, marked) << n;
  }
}

TEST(MarkKernelsTest, EveryInstructionSetFindsTheSameDifferencesForAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const GRIDataType type : ALL_TYPES) {
      for (size_t numBands = 1; numBands <= 5; ++numBands) {
        for (const size_t n : LENGTHS) {
          const Rows rows(type, numBands, n, random), none(type, numBands, 1, random);
          Bytes expected(gri_markBytes(n) + 1, 0xA5), actual = expected;

          gri_markDifferentScalar(rows.pointers.data(), none.pointers.data(), numBands, type, 0, n,
                                  expected.data());
          gri_markDifferent(rows.pointers.data(), none.pointers.data(), numBands, type, n,
                            actual.data());

          ASSERT_EQ(actual, expected) << describe(type, numBands, n);
        }
      }
    }
  });
}

TEST(MarkKernelsTest, EveryInstructionSetComparesAlikeForAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const GRIDataType type : MERGE_TYPES) {
      for (const size_t n : LENGTHS) {
        const Rows rows(type, 2, n, random);
        Bytes expected(gri_markBytes(n) + 1, 0xA5), actual = expected;

        gri_markGreaterScalar(rows.pointers[0], rows.pointers[1], type, 0, n, expected.data());
        gri_markGreater(rows.pointers[0], rows.pointers[1], type, n, actual.data());

        ASSERT_EQ(actual, expected) << describe(type, 1, n);
      }
    }
  });
}

TEST(MarkKernelsTest, EveryInstructionSetMeasuresDistancesAlikeForAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const GRIDataType type : MERGE_TYPES) {
      for (size_t numBands = 1; numBands <= 4; ++numBands) {
        for (const size_t n : LENGTHS) {
          const Rows a(type, numBands, n, random), b(type, numBands, n, random);
          const Rows none(type, numBands, 1, random);
          const double threshold = static_cast<double>(random() % 100);
          Bytes expected(gri_markBytes(n) + 1, 0xA5), actual = expected;

          gri_markFuzzyScalar(a.pointers.data(), b.pointers.data(), none.pointers.data(), numBands,
                              type, threshold, 0, n, expected.data());
          gri_markFuzzy(a.pointers.data(), b.pointers.data(), none.pointers.data(), numBands, type,
                        threshold, n, actual.data());

          ASSERT_EQ(actual, expected) << describe(type, numBands, n);
        }
      }
    }
  });
}

}  // namespace
