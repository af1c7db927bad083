#include "gr_lib_tg2kernel/src/decode/tg2_convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_convertConstants.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"
#include "tests/support/gr_instructionSets.h"

namespace {

constexpr float FLOAT_MAX = std::numeric_limits<float>::max();

template <typename Sample>
constexpr float MAX_OF = static_cast<float>(std::numeric_limits<Sample>::max());

using Planes = std::vector<std::vector<float>>;
template <typename Sample>
using Bands = std::vector<std::vector<Sample>>;

template <typename Row>
auto pointersTo(Row& rows) {
  std::vector<decltype(rows[0].data())> pointers;
  pointers.reserve(rows.size());
  for (auto& row : rows) pointers.push_back(row.data());
  return pointers;
}

/// The rows of samples of all pixels. `FAST` tells which variant.
template <bool FAST, typename Sample>
Bands<Sample> convert(const Planes& planes) {
  const size_t n = planes[0].size();
  Bands<Sample> bands(planes.size(), std::vector<Sample>(n));
  const auto from = pointersTo(planes);
  const auto to = pointersTo(bands);
  if (planes.size() == 1) {
    (FAST ? tg2_convertOneBand(from.data(), to.data(), n)
          : tg2_convertOneBandScalar(from.data(), to.data(), n));
  } else if (planes.size() == 3) {
    (FAST ? tg2_convertThreeBands(from.data(), to.data(), n)
          : tg2_convertThreeBandsScalar(from.data(), to.data(), n));
  } else if constexpr (std::is_integral_v<Sample>) {
    (FAST ? tg2_convertFourBands(from.data(), to.data(), n)
          : tg2_convertFourBandsScalar(from.data(), to.data(), n));
  }
  return bands;
}

template <typename Sample>
std::vector<Sample> onePixel(const std::vector<float>& values) {
  Planes planes;
  for (const float value : values) planes.push_back({value});
  std::vector<Sample> pixel;
  for (const auto& band : convert<false, Sample>(planes)) pixel.push_back(band[0]);
  return pixel;
}

/// Values of all kinds: of pictures, near the ends of ranges, and none at all.
Planes anyPlanes(size_t numBands, size_t n, float max, std::mt19937& random) {
  Planes planes(numBands, std::vector<float>(n));
  for (auto& plane : planes) {
    for (float& value : plane) {
      value = static_cast<float>((random() / 4294967296.0 * 1.6 - 0.3) * std::min(max, 1e6F));
      if (random() % 16 == 0) value = static_cast<float>(random() % 4) / 2 - 1;
      if (random() % 16 == 0) value = std::bit_cast<float>(static_cast<gr_uint32>(random()));
    }
  }
  return planes;
}

TEST(TG2ConvertTest, TheColourConstantsAreExactSingles) {
  const gr_uint32 expected[3][2] = {
      {0x3F71F9AE, 0x3F21F9AE}, {0xBE9425ED, 0xBF1A12F7}, {0xBF8CBDA1, 0x3FDB425F}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(std::bit_cast<gr_uint32>(TG2_COLOR_ROWS[i].ofP1), expected[i][0]);
    EXPECT_EQ(std::bit_cast<gr_uint32>(TG2_COLOR_ROWS[i].ofP2), expected[i][1]);
  }
}

TEST(TG2ConvertTest, OneBandIsRoundedAndCut) {
  EXPECT_EQ(onePixel<gr_uint8>({-3.0F}), std::vector<gr_uint8>{0});
  EXPECT_EQ(onePixel<gr_uint8>({0.25F}), std::vector<gr_uint8>{0});
  // 0.5 is added in single precision, which makes it 1.
  EXPECT_EQ(onePixel<gr_uint8>({0.49999997F}), std::vector<gr_uint8>{1});
  EXPECT_EQ(onePixel<gr_uint8>({254.5F}), std::vector<gr_uint8>{255});
  EXPECT_EQ(onePixel<gr_uint8>({1e9F}), std::vector<gr_uint8>{255});
  EXPECT_EQ(onePixel<gr_uint16>({300.6F}), std::vector<gr_uint16>{301});
  EXPECT_EQ(onePixel<gr_uint16>({1e9F}), std::vector<gr_uint16>{65535});
}

TEST(TG2ConvertTest, FloatsKeepTheirFractionAndTheHalf) {
  EXPECT_EQ(onePixel<float>({3.25F}), std::vector<float>{3.75F});
  EXPECT_EQ(onePixel<float>({-0.25F}), std::vector<float>{0.25F});
  EXPECT_EQ(onePixel<float>({-7.0F}), std::vector<float>{0.0F});
  EXPECT_EQ(onePixel<float>({std::numeric_limits<float>::infinity()}),
            std::vector<float>{FLOAT_MAX});
}

TEST(TG2ConvertTest, WhatIsNotANumberBecomesZero) {
  const float none = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(onePixel<gr_uint8>({none}), std::vector<gr_uint8>{0});
  EXPECT_EQ(onePixel<float>({none}), std::vector<float>{0.0F});
  EXPECT_EQ(onePixel<gr_uint16>({5, none, 5}), (std::vector<gr_uint16>{0, 0, 0}));
  // No ink, so no black either.
  EXPECT_EQ(onePixel<gr_uint8>({none, 0, 0, 9}), (std::vector<gr_uint8>{0, 0, 0, 0}));
  // What isn't a number in K is no black to keep.
  EXPECT_EQ(onePixel<gr_uint8>({205, 0, 0, none}), onePixel<gr_uint8>({205, 0, 0, 0}));
}

TEST(TG2ConvertTest, ThreeBandsAreTheColourTransformInSinglePrecision) {
  // In double precision, sums and products of two singles are exact or rounded harmlessly.
  const auto single = [](double value) { return static_cast<float>(value); };
  std::mt19937 random(16);
  const Planes planes = anyPlanes(3, 20000, 65535, random);
  const auto bands = convert<false, gr_uint16>(planes);
  const auto floats = convert<false, float>(planes);
  const double weights[3][2] = {{0.9452160596847534, 0.6327160596847534},
                                {-0.28935185074806213, -0.6018518805503845},
                                {-1.0995370149612427, 1.7129629850387573}};
  for (size_t i = 0; i < planes[0].size(); ++i) {
    for (size_t band = 0; band < 3; ++band) {
      const float first =
          single(double{planes[0][i]} + double{single(weights[band][0] * planes[1][i])});
      const float color = single(double{first} + double{single(weights[band][1] * planes[2][i])});
      const float value = single(double{color} + 0.5);
      const float positive = value > 0 ? value : 0;
      ASSERT_EQ(bands[band][i], static_cast<gr_uint16>(std::min(positive, 65535.0F))) << i;
      ASSERT_EQ(floats[band][i], std::min(positive, FLOAT_MAX)) << i;
    }
  }
}

TEST(TG2ConvertTest, FourBandsTakeWhatIsNotBlackOutOfTheInks) {
  // P1 and P2 of 0 make all colours P0. C = M = Y = 2 * (255 - 205) = 100, K = 30: k = 70.
  EXPECT_EQ(onePixel<gr_uint8>({205, 0, 0, 30}), (std::vector<gr_uint8>{30, 30, 30, 70}));
  // More black than ink leaves the inks alone.
  EXPECT_EQ(onePixel<gr_uint8>({205, 0, 0, 130}), (std::vector<gr_uint8>{100, 100, 100, 0}));
  // A negative K is none: all ink that the colours share is black.
  EXPECT_EQ(onePixel<gr_uint8>({205, 0, 0, -9}), (std::vector<gr_uint8>{0, 0, 0, 100}));
  // Inks reach twice the largest sample, and are cut to it after black is taken out.
  EXPECT_EQ(onePixel<gr_uint8>({-500, 0, 0, 255}), (std::vector<gr_uint8>{255, 255, 255, 255}));
  EXPECT_EQ(onePixel<gr_uint16>({65035, 0, 0, 250}), (std::vector<gr_uint16>{250, 250, 250, 750}));
}

TEST(TG2ConvertTest, FourBandsAreDoubleUpToTheInksAndSingleBehind) {
  const auto single = [](double value) { return static_cast<float>(value); };
  std::mt19937 random(17);
  const Planes planes = anyPlanes(4, 20000, 65535, random);
  const auto bands = convert<false, gr_uint16>(planes);
  for (size_t i = 0; i < planes[0].size(); ++i) {
    float inks[3];
    for (size_t band = 0; band < 3; ++band) {
      const double color = double{planes[0][i]} + double{TG2_COLOR_ROWS[band].ofP1} * planes[1][i] +
                           double{TG2_COLOR_ROWS[band].ofP2} * planes[2][i];
      const float ink = single((65535 - color) * 2);
      inks[band] = ink > 0 ? std::min(ink, 131070.0F) : 0;
    }
    const float least = std::min(std::min(inks[0], inks[1]), inks[2]);
    const float black = planes[3][i] > 0 ? planes[3][i] : 0;
    const float k = single(double{least} - double{std::min(least, black)});
    for (size_t band = 0; band < 4; ++band) {
      const double sum = band < 3 ? double{single(inks[band] + 0.5)} - k : double{k} + 0.5;
      const float value = single(sum);
      ASSERT_EQ(bands[band][i], static_cast<gr_uint16>(std::clamp(value, 0.0F, 65535.0F)))
          << band << " of " << i;
    }
  }
}

template <typename Sample>
void compareVariants(size_t numBands, std::mt19937& random) {
  for (size_t n = 1; n <= 67; ++n) {
    for (int turn = 0; turn < 5; ++turn) {
      SCOPED_TRACE(testing::Message() << numBands << " bands of " << n);
      const Planes planes = anyPlanes(numBands, n, MAX_OF<Sample>, random);
      ASSERT_EQ((convert<true, Sample>(planes)), (convert<false, Sample>(planes)));
    }
  }
}

TEST(TG2ConvertTest, EveryInstructionSetAgreesWithTheScalarOnAnyRowLength) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const size_t numBands : {1, 3}) {
      ASSERT_NO_FATAL_FAILURE(compareVariants<gr_uint8>(numBands, random));
      ASSERT_NO_FATAL_FAILURE(compareVariants<gr_uint16>(numBands, random));
      ASSERT_NO_FATAL_FAILURE(compareVariants<float>(numBands, random));
    }
    ASSERT_NO_FATAL_FAILURE(compareVariants<gr_uint8>(4, random));
    ASSERT_NO_FATAL_FAILURE(compareVariants<gr_uint16>(4, random));
  });
}

/// Converts 5 x 3 pixels to (1, 2) of a window of a larger buffer, and looks at all of it.
template <typename Sample>
void convertIntoAWindow(gr_uint16 numBands, GRIDataType type, GRIColorSpace space) {
  constexpr gr_uint32 COLS = 12, ROWS = 9, WIDTH = 5, HEIGHT = 3;
  constexpr size_t STRIDE = 7;
  std::mt19937 random(18);
  const GRIPixel pixel(space, numBands, type);
  GRISceneBuffer whole(pixel, COLS, ROWS, nullptr);
  whole.zero();
  GRISceneBuffer window(whole, 3, 1, 8, 7);
  const Planes planes = anyPlanes(numBands, STRIDE * HEIGHT, MAX_OF<Sample>, random);
  tg2_convertPlanes(pointersTo(planes).data(), STRIDE, 1, 2, WIDTH, HEIGHT, window);

  const auto expected = convert<false, Sample>(planes);
  const bool converts = numBands != 4 || std::is_integral_v<Sample>;
  for (gr_uint16 band = 0; band < numBands; ++band) {
    for (gr_uint32 row = 0; row < ROWS; ++row) {
      for (gr_uint32 col = 0; col < COLS; ++col) {
        const bool inside = col >= 4 && col < 4 + WIDTH && row >= 3 && row < 3 + HEIGHT && converts;
        const Sample sample =
            static_cast<const Sample*>(whole.getTotalBandData(band))[row * COLS + col];
        ASSERT_EQ(sample, inside ? expected[band][(row - 3) * STRIDE + col - 4] : Sample{0})
            << band << ": " << col << ", " << row;
      }
    }
  }
}

TEST(TG2ConvertTest, WritesThePartOfTheWindowThatItIsTold) {
  convertIntoAWindow<gr_uint8>(1, GRI_DATATYPE_UINT8, GRI_COLORSPACE_GRAYSCALE);
  convertIntoAWindow<gr_uint16>(1, GRI_DATATYPE_UINT16, GRI_COLORSPACE_GRAYSCALE);
  convertIntoAWindow<float>(1, GRI_DATATYPE_FLOAT32, GRI_COLORSPACE_GRAYSCALE);
  convertIntoAWindow<gr_uint8>(3, GRI_DATATYPE_UINT8, GRI_COLORSPACE_RGB);
  convertIntoAWindow<gr_uint16>(3, GRI_DATATYPE_UINT16, GRI_COLORSPACE_RGB);
  convertIntoAWindow<float>(3, GRI_DATATYPE_FLOAT32, GRI_COLORSPACE_RGB);
  convertIntoAWindow<gr_uint8>(4, GRI_DATATYPE_UINT8, GRI_COLORSPACE_CMYK);
  convertIntoAWindow<gr_uint16>(4, GRI_DATATYPE_UINT16, GRI_COLORSPACE_CMYK);
}

TEST(TG2ConvertTest, FourBandsOfFloatsLeaveTheBufferAsItWas) {
  convertIntoAWindow<float>(4, GRI_DATATYPE_FLOAT32, GRI_COLORSPACE_CMYK);
}

}  // namespace
