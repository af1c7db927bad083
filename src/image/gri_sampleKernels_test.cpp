#include "image/gri_sampleKernels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/gr_instructionSets.h"

namespace {

using Bytes = std::vector<gr_uint8>;

constexpr size_t WIDTHS[] = {1, 2, 4, 8};
constexpr size_t MAX_PIXELS = 300;  // more than two vectors of the widest instruction set
constexpr size_t MAX_BANDS = 9;     // more than two of the groups that many bands are cut into

/// Many bands are made of a few: not every row length is tried again.
size_t stepOf(size_t numBands) { return numBands <= 5 ? 1 : 17; }

Bytes randomBytes(size_t count, std::mt19937& random) {
  Bytes bytes(count);
  for (gr_uint8& byte : bytes) byte = static_cast<gr_uint8>(random());
  return bytes;
}

/// Planes at odd places, so that no sample is aligned, with room behind them that must stay.
struct Planes {
  Planes(size_t numBands, size_t numBytes) : bytes(numBands, Bytes(numBytes + 9, 0xA5)) {
    for (Bytes& plane : bytes) pointers.push_back(plane.data() + 1);
  }
  std::vector<Bytes> bytes;
  std::vector<void*> pointers;
};

TEST(SampleKernelsTest, SplitPutsEachBandOfAPixelIntoItsPlane) {
  const gr_uint8 pixels[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  gr_uint8 red[3], green[3], blue[3];
  void* const planes[] = {red, green, blue};

  gri_splitBandsScalar(pixels, 3, 3, 1, planes);

  EXPECT_THAT(red, testing::ElementsAre(1, 4, 7));
  EXPECT_THAT(green, testing::ElementsAre(2, 5, 8));
  EXPECT_THAT(blue, testing::ElementsAre(3, 6, 9));
}

TEST(SampleKernelsTest, JoinIsTheReverseOfSplit) {
  std::mt19937 random(1);
  for (const size_t width : WIDTHS) {
    for (size_t numBands = 1; numBands <= 6; ++numBands) {
      const Bytes pixels = randomBytes(11 * numBands * width, random);
      Planes planes(numBands, 11 * width);
      Bytes joined(pixels.size());

      gri_splitBandsScalar(pixels.data(), 11, numBands, width, planes.pointers.data());
      gri_joinBandsScalar(planes.pointers.data(), 11, numBands, width, joined.data());

      EXPECT_EQ(joined, pixels) << numBands << " bands of " << width << " bytes";
    }
  }
}

TEST(SampleKernelsTest, SwappingReversesTheBytesOfEachSample) {
  const Bytes bytes = {1, 2, 3, 4, 5, 6, 7, 8};
  Bytes twos(8), fours(8), eights(8);

  gri_copySwappedScalar(bytes.data(), 4, 2, twos.data());
  gri_copySwappedScalar(bytes.data(), 2, 4, fours.data());
  gri_copySwappedScalar(bytes.data(), 1, 8, eights.data());

  EXPECT_EQ(twos, (Bytes{2, 1, 4, 3, 6, 5, 8, 7}));
  EXPECT_EQ(fours, (Bytes{4, 3, 2, 1, 8, 7, 6, 5}));
  EXPECT_EQ(eights, (Bytes{8, 7, 6, 5, 4, 3, 2, 1}));
}

TEST(SampleKernelsTest, BigEndianSamplesArriveInTheOrderOfTheMachine) {
  const Bytes bytes = {0x12, 0x34, 0xAB, 0xCD};
  gr_uint16 samples[2] = {};

  gri_copyFromBigEndian(bytes.data(), 2, 2, samples);

  EXPECT_THAT(samples, testing::ElementsAre(0x1234, 0xABCD));
}

TEST(SampleKernelsTest, EveryInstructionSetSplitsAsTheScalarDoesForAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const size_t width : WIDTHS) {
      for (size_t numBands = 1; numBands <= MAX_BANDS; ++numBands) {
        for (size_t n = 0; n <= MAX_PIXELS; n += stepOf(numBands)) {
          const Bytes pixels = randomBytes(n * numBands * width + 1, random);
          Planes expected(numBands, n * width), actual(numBands, n * width);

          gri_splitBandsScalar(pixels.data() + 1, n, numBands, width, expected.pointers.data());
          gri_splitBands(pixels.data() + 1, n, numBands, width, actual.pointers.data());

          ASSERT_EQ(actual.bytes, expected.bytes)
              << n << " pixels, " << numBands << " bands of " << width << " bytes";
        }
      }
    }
  });
}

TEST(SampleKernelsTest, EveryInstructionSetJoinsAsTheScalarDoesForAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const size_t width : WIDTHS) {
      for (size_t numBands = 1; numBands <= MAX_BANDS; ++numBands) {
        for (size_t n = 0; n <= MAX_PIXELS; n += stepOf(numBands)) {
          std::vector<Bytes> planes;
          std::vector<const void*> pointers;
          for (size_t band = 0; band < numBands; ++band) {
            planes.push_back(randomBytes(n * width + 1, random));
            pointers.push_back(planes.back().data() + 1);
          }
          Bytes expected(n * numBands * width + 9, 0xA5), actual = expected;

          gri_joinBandsScalar(pointers.data(), n, numBands, width, expected.data() + 1);
          gri_joinBands(pointers.data(), n, numBands, width, actual.data() + 1);

          ASSERT_EQ(actual, expected)
              << n << " pixels, " << numBands << " bands of " << width << " bytes";
        }
      }
    }
  });
}

TEST(SampleKernelsTest, AnyNumberOfBandsIsSplitAndJoinedAsTheScalarDoes) {
  struct {
    size_t numBands, numPixels;
  } const cases[] = {{13, 256}, {13, 257}, {64, 600}, {224, 300}, {4099, 20}, {40000, 3}};
  std::mt19937 random(4);
  for (const auto& c : cases) {
    for (const size_t width : WIDTHS) {
      SCOPED_TRACE(std::to_string(c.numPixels) + " pixels, " + std::to_string(c.numBands) +
                   " bands of " + std::to_string(width) + " bytes");
      const Bytes pixels = randomBytes(c.numPixels * c.numBands * width + 1, random);
      Planes expected(c.numBands, c.numPixels * width), actual(c.numBands, c.numPixels * width);
      Bytes joined(pixels.size() + 8, 0xA5);

      gri_splitBandsScalar(pixels.data() + 1, c.numPixels, c.numBands, width,
                           expected.pointers.data());
      gri_splitBands(pixels.data() + 1, c.numPixels, c.numBands, width, actual.pointers.data());
      gri_joinBands(expected.pointers.data(), c.numPixels, c.numBands, width, joined.data() + 1);

      EXPECT_TRUE(actual.bytes == expected.bytes);
      EXPECT_TRUE(std::equal(pixels.begin() + 1, pixels.end(), joined.begin() + 1));
      EXPECT_THAT(Bytes(joined.end() - 8, joined.end()), testing::Each(0xA5));
    }
  }
}

TEST(SampleKernelsTest, EveryInstructionSetSwapsAsTheScalarDoesForAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const size_t width : WIDTHS) {
      for (size_t n = 0; n <= MAX_PIXELS; ++n) {
        SCOPED_TRACE(std::to_string(n) + " samples of " + std::to_string(width) + " bytes");
        const Bytes samples = randomBytes(n * width + 1, random);
        Bytes expected(n * width + 9, 0xA5), actual = expected, inPlace = samples;

        gri_copySwappedScalar(samples.data() + 1, n, width, expected.data() + 1);
        gri_copySwapped(samples.data() + 1, n, width, actual.data() + 1);
        gri_copySwapped(inPlace.data() + 1, n, width, inPlace.data() + 1);

        ASSERT_EQ(actual, expected);
        ASSERT_TRUE(std::equal(inPlace.begin() + 1, inPlace.end(), expected.begin() + 1));
      }
    }
  });
}

}  // namespace
