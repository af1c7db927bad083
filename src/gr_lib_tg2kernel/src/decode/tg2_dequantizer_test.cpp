#include "gr_lib_tg2kernel/src/decode/tg2_dequantizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_dequantize.h"
#include "gr_lib_tg2kernel/src/decode/tg2_noiseTable.h"
#include "tests/support/gr_instructionSets.h"

namespace {

using Bins = std::vector<gr_int32>;

gr_uint32 bitsOf(float value) { return std::bit_cast<gr_uint32>(value); }
float fromBits(gr_uint32 bits) { return std::bit_cast<float>(bits); }

/// Equal bit for bit, where all that isn't a number counts as the same.
void expectSame(const std::vector<float>& actual, const std::vector<float>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (size_t i = 0; i < actual.size(); ++i) {
    if (std::isnan(expected[i]) && std::isnan(actual[i])) continue;
    ASSERT_EQ(bitsOf(actual[i]), bitsOf(expected[i])) << "sample " << i;
  }
}

TEST(TG2NoiseTableTest, HoldsTheValuesOfTheFormat) {
  const gr_uint32 first[8] = {0xBDE621B8, 0xBD2594AF, 0x3DCAF577, 0x3E39C843,
                              0x3D85D851, 0xBE7E6F72, 0xBE3E2004, 0x3E06238E};
  for (size_t i = 0; i < 8; ++i) EXPECT_EQ(bitsOf(tg2_noiseTable[0][i]), first[i]) << i;

  // CRC-32 (ISO 3309) of all of it, least significant bytes first.
  gr_uint32 crc = 0xFFFFFFFF;
  for (const auto& row : tg2_noiseTable) {
    for (const float value : row) {
      for (int byte = 0; byte < 4; ++byte) {
        crc ^= bitsOf(value) >> (8 * byte) & 0xFF;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
      }
    }
  }
  EXPECT_EQ(~crc, 0x1303DCECu);
}

TEST(TG2NoiseTableTest, IsEvenlySpread) {
  double sum = 0;
  double squares = 0;
  for (const auto& row : tg2_noiseTable) {
    for (const float value : row) {
      EXPECT_LE(std::abs(value), 0.25F);
      sum += value;
      squares += double{value} * value;
    }
  }
  const double mean = sum / 16384;
  EXPECT_NEAR(mean, 0.0005, 0.00001);
  EXPECT_NEAR(std::sqrt(squares / 16384 - mean * mean), 0.14431, 0.00001);
}

TEST(TG2DequantizerTest, TheNormaliserIsAPowerInDoublePrecision) {
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(0)), 0x3F800000u);
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(1)), 0x3FC1B4BDu);
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(2)), 0x40129204u);
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(3)), 0x405DCF20u);
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(4)), 0x40A7D5C0u);
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(-1)), 0x3F2929E0u);
  EXPECT_EQ(bitsOf(tg2_levelNormalizer(-2)), 0x3EDF90A1u);
}

TEST(TG2DequantizerTest, TheStepIsRoundedAfterEachOperation) {
  const float one = tg2_levelNormalizer(0);
  EXPECT_EQ(bitsOf(tg2_bandStep(one, 1.0F, 1.0F)), 0x3F800000u);
  EXPECT_EQ(bitsOf(tg2_bandStep(one, fromBits(0x3F41B4BD), 1.0F)), 0x3FA929E0u);
  EXPECT_EQ(bitsOf(tg2_bandStep(one, fromBits(0x3FA929E0), 1.0F)), 0x3F41B4BDu);
  // One of level 1: 1 / 1.5133282 / 1.3215904.
  EXPECT_EQ(bitsOf(tg2_bandStep(tg2_levelNormalizer(1), fromBits(0x3FA929E0), 1.0F)), 0x3F000000u);
  EXPECT_EQ(tg2_bandStep(one, 1.5F, 0.0F), 0.0F);
}

TEST(TG2DequantizerTest, BinsBecomeTheKnownValues) {
  const Bins bins = {0, 1, 2, 46, -1, -2, -46};
  std::vector<float> out(bins.size());
  tg2_dequantizeScalar(bins.data(), out.data(), bins.size(), fromBits(0x3FA4A66E));
  const gr_uint32 expected[7] = {0,          0x3FAE8774, 0x402996F0, 0x426CFE47,
                                 0xBFAE8774, 0xC02996F0, 0xC26CFE47};
  for (size_t i = 0; i < bins.size(); ++i) EXPECT_EQ(bitsOf(out[i]), expected[i]) << bins[i];
}

TEST(TG2DequantizerTest, EachOperationIsRoundedToSinglePrecision) {
  // In double precision, sums and products of two singles are exact or rounded harmlessly.
  const auto single = [](double value) { return static_cast<float>(value); };
  const double point = fromBits(0x3EE147AE);
  std::mt19937 random(14);
  for (int turn = 0; turn < 200; ++turn) {
    const float step =
        single(std::ldexp(1.0 + random() / 4294967296.0, static_cast<int>(random() % 20) - 10));
    for (gr_int32 q = 1; q <= 60; ++q) {
      const float product = single(double{single(q - point)} * step);
      const float expected = single(double{product} + double{step} / 2);
      float out[2];
      const gr_int32 bins[2] = {q, -q};
      tg2_dequantizeScalar(bins, out, 2, step);
      ASSERT_EQ(bitsOf(out[0]), bitsOf(expected)) << q << " by " << step;
      ASSERT_EQ(bitsOf(out[1]), bitsOf(-expected)) << -q << " by " << step;
    }
  }
}

Bins anyBins(size_t n, std::mt19937& random) {
  Bins bins(n);
  for (gr_int32& q : bins) {
    q = static_cast<gr_int32>(random() % 101) - 50;
    if (random() % 3 == 0) q = 0;
    if (random() % 8 == 0) q = static_cast<gr_int32>(random() % 65537) - 32768;
  }
  return bins;
}

TEST(TG2DequantizerTest, EveryInstructionSetAgreesWithTheScalarOnAnyRowLength) {
  const float steps[] = {0.0F, 1.0F, 0.37F, 1e-40F, 3e38F, std::numeric_limits<float>::infinity()};
  forEachInstructionSet([&steps](std::mt19937& random) {
    for (const float step : steps) {
      for (size_t n = 0; n <= 67; ++n) {
        SCOPED_TRACE(testing::Message() << n << " by " << step);
        const Bins bins = anyBins(n, random);
        const float* const noise = tg2_noiseTable[random() % 128].data() + random() % 61;
        std::vector<float> expected(n), actual(n);
        tg2_dequantizeScalar(bins.data(), expected.data(), n, step);
        tg2_dequantize(bins.data(), actual.data(), n, step);
        ASSERT_NO_FATAL_FAILURE(expectSame(actual, expected));
        tg2_dequantizeDitherScalar(bins.data(), noise, expected.data(), n, step);
        tg2_dequantizeDither(bins.data(), noise, actual.data(), n, step);
        ASSERT_NO_FATAL_FAILURE(expectSame(actual, expected));
      }
    }
  });
}

TEST(TG2DequantizerTest, DitherIsTheTableAtThePlaceInTheSubband) {
  std::mt19937 random(15);
  for (const TG2NoiseOrigin origin : {TG2NoiseOrigin{0, 0}, TG2NoiseOrigin{200, 127}}) {
    const TG2Rect rect{100, 1000, 499, 1009};
    const auto width = static_cast<size_t>(rect.getWidth());
    const Bins bins = anyBins(width * 10, random);
    std::vector<float> plain(bins.size()), dithered(bins.size());
    TG2Dequantizer(rect, nullptr).dequantize(bins.data(), plain.data(), 1.7F);
    TG2Dequantizer(rect, &origin).dequantize(bins.data(), dithered.data(), 1.7F);
    for (size_t i = 0; i < bins.size(); ++i) {
      const size_t x = 100 + i % width, y = 1000 + i / width;
      const float noise = tg2_noiseTable[(y + origin.y) % 128][(x + origin.x) % 128] * 1.7F;
      ASSERT_EQ(bitsOf(dithered[i]), bitsOf(plain[i] - noise)) << x << ", " << y;
    }
  }
}

TEST(TG2DequantizerTest, AStepOfZeroGivesZerosWithoutDither) {
  const TG2Rect rect{0, 0, 40, 1};
  const TG2NoiseOrigin origin{3, 4};
  const Bins bins(82, 5);
  std::vector<float> out(82, 1.0F);
  TG2Dequantizer(rect, &origin).dequantize(bins.data(), out.data(), 0.0F);
  EXPECT_EQ(out, std::vector<float>(82));
}

TEST(TG2DequantizerTest, WorksInPlace) {
  forEachInstructionSet([](std::mt19937& random) {
    const TG2Rect rect{5, 6, 105, 16};
    const TG2NoiseOrigin origin{9, 8};
    const Bins bins = anyBins(size_t{101} * 11, random);
    for (const TG2NoiseOrigin* noise : {static_cast<const TG2NoiseOrigin*>(nullptr), &origin}) {
      const TG2Dequantizer dequantizer(rect, noise);
      std::vector<float> expected(bins.size()), cells(bins.size());
      dequantizer.dequantize(bins.data(), expected.data(), 0.9F);
      std::ranges::transform(bins, cells.begin(),
                             [](gr_int32 q) { return std::bit_cast<float>(q); });
      dequantizer.dequantize(reinterpret_cast<const gr_int32*>(cells.data()), cells.data(), 0.9F);
      expectSame(cells, expected);
    }
  });
}

}  // namespace
