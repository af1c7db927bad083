#include "filters/gri_resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "image/gri_pixel.h"
#include "image/gri_sampleTypes.h"
#include "image/gri_scene.h"
#include "image/gri_sceneBuffer.h"
#include "tests/support/gri_patternReader.h"

namespace {

constexpr GRIDataType TYPES[] = {GRI_DATATYPE_UINT8,   GRI_DATATYPE_SINT8,  GRI_DATATYPE_UINT16,
                                 GRI_DATATYPE_SINT16,  GRI_DATATYPE_UINT32, GRI_DATATYPE_SINT32,
                                 GRI_DATATYPE_FLOAT32, GRI_DATATYPE_FLOAT64};

GRIPixel pixelOf(GRIDataType type, gr_uint16 numBands = 1) {
  return GRIPixel(GRI_COLORSPACE_MULTISPECTRAL, numBands, type);
}

template <typename T>
T sampleAt(const GRISceneBuffer& buffer, gr_uint32 col, gr_uint32 row, gr_uint16 band = 0) {
  T value;
  std::memcpy(&value, buffer.getSampleInWindow(col, row, band), sizeof(value));
  return value;
}

template <typename T>
void setSample(GRISceneBuffer& buffer, gr_uint32 col, gr_uint32 row, gr_uint16 band, T value) {
  std::memcpy(buffer.getSampleInWindow(col, row, band), &value, sizeof(value));
}

/// A sample of any value that the type has; of floats, any up to a million.
template <typename T>
T randomSample(std::mt19937& random) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::uniform_real_distribution<T>(-1e6, 1e6)(random);
  } else {
    return static_cast<T>(random());
  }
}

template <typename T>
void fillRandomly(GRISceneBuffer& buffer, std::mt19937& random) {
  for (gr_uint16 band = 0; band < buffer.getNumBands(); ++band) {
    for (gr_uint32 row = 0; row < buffer.getWindowNumRows(); ++row) {
      for (gr_uint32 col = 0; col < buffer.getWindowNumCols(); ++col) {
        setSample<T>(buffer, col, row, band, randomSample<T>(random));
      }
    }
  }
}

/// Calls `body` with a GRITypeTag of each of the eight types.
template <typename Body>
void forEachType(Body&& body) {
  for (const GRIDataType type : TYPES) {
    SCOPED_TRACE(type);
    gri_visitType(
        type,
        [&](auto tag) {
          body(type, tag);
          return 0;
        },
        0);
  }
}

TEST(GRIResamplerTest, ThereAreThreeKindsAndEightTypes) {
  for (const GRIDataType type : TYPES) {
    for (const gr_uint32 kind : {1u, 2u, 3u}) EXPECT_NE(GRIResampler::create(type, kind), nullptr);
    EXPECT_EQ(GRIResampler::create(type, 0), nullptr);
    EXPECT_EQ(GRIResampler::create(type, 4), nullptr);
  }
  for (const GRIDataType type : {GRI_DATATYPE_INVALID, GRI_DATATYPE_UINT64, GRI_DATATYPE_SINT64,
                                 GRI_DATATYPE_COMPLEX32, GRI_DATATYPE_COMPLEX64}) {
    EXPECT_EQ(GRIResampler::create(type, 1), nullptr);
  }
}

TEST(GRIResamplerTest, AScaleOfOneCopiesTheRectangleForEveryKindAndType) {
  std::mt19937 random(3);
  forEachType([&](GRIDataType type, auto tag) {
    using T = typename decltype(tag)::Type;
    for (const gr_uint32 kind : {1u, 2u, 3u}) {
      SCOPED_TRACE(kind);
      const GRIPixel pixel = pixelOf(type, 3);
      GRISceneBuffer source(pixel, 13, 11, nullptr);
      GRISceneBuffer dest(pixel, 13, 11, nullptr);
      fillRandomly<T>(source, random);
      const GRIResampleRect rect{2, 3, 10, 9};
      GRIResampler::create(type, kind)
          ->resample(dest, {1, 1, 9, 7}, source, rect, 0.0F, 3.0F, 1.0F, 1.0F);
      for (gr_uint16 band = 0; band < 3; ++band) {
        for (gr_uint32 row = 0; row < 11; ++row) {
          for (gr_uint32 col = 0; col < 13; ++col) {
            const bool isInside = col >= 1 && col <= 9 && row >= 1 && row <= 7;
            const T expected = isInside ? sampleAt<T>(source, col + 1, row + 2, band) : T{0};
            ASSERT_EQ(sampleAt<T>(dest, col, row, band), expected) << col << ", " << row;
          }
        }
      }
    }
  });
}

TEST(GRIResamplerTest, APositionPastTheEndTakesTheLastSample) {
  const gr_uint8 row[] = {1, 2, 3, 200};
  const std::unique_ptr<GRIRowResampler> rows = GRIRowResampler::create(GRI_DATATYPE_UINT8);
  gr_uint8 nearest[3];
  gr_uint8 linear[3];
  gr_uint8 cubic[3];
  rows->resampleNearest(0, 3, nearest, 3.9F, 1e9F, 4, row);
  rows->resampleLinear(0, 3, linear, 3.9F, 1e9F, 4, row, row);
  rows->resampleCubic(0, 3, cubic, 6.0F, 1e9F, 4, row, row, row, row);
  for (const gr_uint8* result : {nearest, linear, cubic}) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(result[k], 200);
  }
}

TEST(GRIResamplerTest, PositionsThatAreNoNumbersOrFarAwayAreSafe) {
  std::mt19937 random(4);
  forEachType([&](GRIDataType type, auto tag) {
    using T = typename decltype(tag)::Type;
    for (const gr_uint32 kind : {1u, 2u, 3u}) {
      GRISceneBuffer source(pixelOf(type), 5, 5, nullptr);
      GRISceneBuffer dest(pixelOf(type), 5, 5, nullptr);
      fillRandomly<T>(source, random);
      const std::unique_ptr<GRIResampler> resampler = GRIResampler::create(type, kind);
      const float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                           std::numeric_limits<float>::infinity(),
                           -std::numeric_limits<float>::infinity(),
                           3e38F,
                           -3e38F,
                           -0.5F};
      for (const float a : bad) {
        for (const float b : bad) {
          resampler->resample(dest, {0, 0, 4, 4}, source, {0, 0, 4, 4}, a, b, b, a);
        }
      }
    }
  });
}

TEST(GRIResamplerTest, LinearResultsAreTruncatedAndNotRounded) {
  const std::unique_ptr<GRIRowResampler> rows = GRIRowResampler::create(GRI_DATATYPE_UINT8);
  const gr_uint8 row[] = {254, 255};
  gr_uint8 result = 0;
  rows->resampleLinear(0, 1, &result, 0.9F, 1, 2, row, row);
  EXPECT_EQ(result, 254);
  // Toward zero, so upward where samples are negative.
  const gr_int16 negative[] = {-10, -11};
  gr_int16 signedResult = 0;
  GRIRowResampler::create(GRI_DATATYPE_SINT16)
      ->resampleLinear(0, 1, &signedResult, 0.9F, 1, 2, negative, negative);
  EXPECT_EQ(signedResult, -10);
}

TEST(GRIResamplerTest, CubicResultsAreHeldToTheRangeOfTheType) {
  const std::unique_ptr<GRIRowResampler> rows = GRIRowResampler::create(GRI_DATATYPE_UINT8);
  const gr_uint8 hill[] = {0, 255, 255, 0};
  const gr_uint8 valley[] = {255, 0, 0, 255};
  gr_uint8 result = 7;
  rows->resampleCubic(0, 1, &result, 1.5F, 1, 4, hill, hill, hill, hill);  // 318.75
  EXPECT_EQ(result, 255);
  rows->resampleCubic(0, 1, &result, 1.5F, 1, 4, valley, valley, valley, valley);  // -63.75
  EXPECT_EQ(result, 0);
}

TEST(GRIResamplerTest, TheCubicIsTheConvolutionWithParameterMinusOne) {
  const std::unique_ptr<GRIRowResampler> rows = GRIRowResampler::create(GRI_DATATYPE_FLOAT64);
  const double row[] = {0, 0, 100, 100};
  double result = 0;
  rows->resampleCubic(0, 1, &result, 1.5F, 1, 4, row, row, row, row);
  // ((-0 + 0 - 100 + 100) * .5 + ((0 - 0) * 2 + 100 - 100)) * .5 + 100) * .5 + 0
  EXPECT_EQ(result, 50.0);
  const double peak[] = {0, 0, 100, 0};
  rows->resampleCubic(0, 1, &result, 1.5F, 1, 4, peak, peak, peak, peak);
  // ((-100 * .5 + 100) * .5 + 100) * .5; with parameter -0.5 it would be 56.25
  EXPECT_EQ(result, 62.5);
  // And across the rows in the same way.
  const double zeros[] = {0, 0, 0, 0};
  const double hundreds[] = {100, 100, 100, 100};
  rows->resampleCubic(0.5F, 1, &result, 1.0F, 1, 4, zeros, zeros, hundreds, zeros);
  EXPECT_EQ(result, 62.5);
}

/// What the rules say, literally, at one place.
/// @param at  the sample at a column and row of the source, which are inside
template <typename T, typename A>
T byTheRules(gr_uint32 kind, const std::function<T(gr_int64, gr_int64)>& at, A x, float y,
             gr_int64 width, gr_int64 height) {
  const gr_int64 i = static_cast<gr_int64>(std::trunc(x));
  const gr_int64 j = static_cast<gr_int64>(std::trunc(y));
  const A f = x - static_cast<A>(i);
  const A g = y - static_cast<float>(j);
  const auto held = [&](gr_int64 col, gr_int64 row) {
    return static_cast<A>(
        at(std::clamp<gr_int64>(col, 0, width - 1), std::clamp<gr_int64>(row, 0, height - 1)));
  };
  if (kind == 1) {
    return at(std::clamp<gr_int64>(i, 0, width - 1), std::clamp<gr_int64>(j, 0, height - 1));
  }
  if (kind == 2) {
    const A a = held(i, j) + (held(i + 1, j) - held(i, j)) * f;
    const A b = held(i, j + 1) + (held(i + 1, j + 1) - held(i, j + 1)) * f;
    return static_cast<T>((b - a) * g + a);
  }
  const auto c = [](A p0, A p1, A p2, A p3, A t) {
    return (((-p0 + p1 - p2 + p3) * t + ((p0 - p1) * 2 + p2 - p3)) * t + (-p0 + p2)) * t + p1;
  };
  A rows[4];
  for (int r = 0; r < 4; ++r) {
    rows[r] = c(held(i - 1, j + r - 1), held(i, j + r - 1), held(i + 1, j + r - 1),
                held(i + 2, j + r - 1), f);
  }
  const A value = c(rows[0], rows[1], rows[2], rows[3], g);
  const A largest = static_cast<A>(std::numeric_limits<T>::max());
  const A smallest = static_cast<A>(std::numeric_limits<T>::lowest());
  return static_cast<T>(std::max(std::min(value, largest), smallest));
}

TEST(GRIResamplerTest, EveryKindAndTypeFollowsTheRulesToTheBit) {
  std::mt19937 random(9);
  forEachType([&](GRIDataType type, auto tag) {
    using T = typename decltype(tag)::Type;
    constexpr bool IS_DOUBLE = sizeof(T) == 8 || (sizeof(T) == 4 && std::is_integral_v<T>);
    using A = std::conditional_t<IS_DOUBLE, double, float>;
    for (const gr_uint32 kind : {1u, 2u, 3u}) {
      for (const float step : {1.0F, 0.5F, 0.25F, 2.0F, 0.37F, 1.91F}) {
        SCOPED_TRACE(testing::Message() << "kind " << kind << ", step " << step);
        constexpr gr_uint32 COLS = 23;
        constexpr gr_uint32 ROWS = 17;
        GRISceneBuffer source(pixelOf(type), COLS, ROWS, nullptr);
        GRISceneBuffer dest(pixelOf(type), 31, 19, nullptr);
        fillRandomly<T>(source, random);
        const float x0 = static_cast<float>(random() % 16) / 4;
        const float y0 = static_cast<float>(random() % 16) / 4;
        GRIResampler::create(type, kind)
            ->resample(dest, {0, 0, 30, 18}, source, {0, 0, COLS - 1, ROWS - 1}, x0, y0, step,
                       step);
        const auto at = [&](gr_int64 col, gr_int64 row) {
          return sampleAt<T>(source, static_cast<gr_uint32>(col), static_cast<gr_uint32>(row));
        };
        float y = y0;
        for (gr_uint32 row = 0; row < 19; ++row) {
          // The nearest sample of 4 bytes is found in single precision for all three types.
          A x = x0;
          float singleX = x0;
          for (gr_uint32 col = 0; col < 31; ++col) {
            const T expected = kind == 1 && sizeof(T) == 4
                                   ? byTheRules<T, float>(kind, at, singleX, y, COLS, ROWS)
                                   : byTheRules<T, A>(kind, at, x, y, COLS, ROWS);
            ASSERT_EQ(sampleAt<T>(dest, col, row), expected) << col << ", " << row;
            x += step;
            singleX += step;
          }
          y += step;
        }
      }
    }
  });
}

TEST(GRIResamplerTest, TwoBuffersGiveWhatOneOfAllRowsGives) {
  std::mt19937 random(10);
  const GRIPixel pixel = pixelOf(GRI_DATATYPE_UINT16, 2);
  GRISceneBuffer whole(pixel, 20, 24, nullptr);
  fillRandomly<gr_uint16>(whole, random);
  for (const gr_uint32 kind : {1u, 2u, 3u}) {
    const std::unique_ptr<GRIResampler> resampler = GRIResampler::create(GRI_DATATYPE_UINT16, kind);
    for (gr_uint32 seam = 1; seam < 24; ++seam) {
      SCOPED_TRACE(testing::Message() << "kind " << kind << ", seam " << seam);
      const GRISceneBuffer above(whole, 0, 0, 20, seam);
      const GRISceneBuffer below(whole, 0, seam, 20, 24 - seam);
      GRISceneBuffer one(pixel, 31, 40, nullptr);
      GRISceneBuffer two(pixel, 31, 40, nullptr);
      const GRIResampleRect rect{1, 2, 19, 22};
      resampler->resample(one, {0, 0, 30, 39}, whole, rect, 0.3F, 1.1F, 0.61F, 0.57F);
      resampler->resample(two, {0, 0, 30, 39}, above, below, rect, 0.3F, 1.1F, 0.61F, 0.57F);
      for (gr_uint16 band = 0; band < 2; ++band) {
        ASSERT_EQ(std::memcmp(one.getTotalBandData(band), two.getTotalBandData(band),
                              size_t{31} * 40 * 2),
                  0);
      }
    }
  }
}

TEST(GRIResamplerTest, StepsFollowFromTheSceneAndTheWindow) {
  const GRIPixel pixel = pixelOf(GRI_DATATYPE_UINT8);
  GRISceneBuffer source(pixel, 4, 2, nullptr);
  for (gr_uint32 col = 0; col < 4; ++col) {
    for (gr_uint32 row = 0; row < 2; ++row) {
      setSample<gr_uint8>(source, col, row, 0, static_cast<gr_uint8>(10 * row + col));
    }
  }
  GRISceneBuffer dest(pixel, 8, 4, nullptr);
  GRIResampler::create(GRI_DATATYPE_UINT8, 1)
      ->resample(dest, source, GRIScene(0, 0, 4, 2, 1), 0.0F, 0.0F);
  for (gr_uint32 col = 0; col < 8; ++col) {
    for (gr_uint32 row = 0; row < 4; ++row) {
      EXPECT_EQ(sampleAt<gr_uint8>(dest, col, row), 10 * (row / 2) + col / 2);
    }
  }
}

TEST(GRIResamplerTest, TheRequiredSceneReachesAsFarAsTheKernelAndNotPastTheStage) {
  GRUtilSmartPointer<GRIPatternReader> stage(gr_makeUnique<GRIPatternReader>().release());
  ASSERT_EQ(stage->initialize(100, 80, pixelOf(GRI_DATATYPE_UINT8), 0.25, 4.0), 0u);
  const auto required = [&](gr_uint32 kind, const GRIScene& scene) {
    return GRIResampler::create(GRI_DATATYPE_UINT8, kind)->getRequiredScene(*stage, scene);
  };
  const GRIScene inside(10.25, 20.5, 5.5, 6.25, 1.0);
  EXPECT_EQ(required(1, inside), GRIScene(10, 20, 6, 7, 1.0));
  EXPECT_EQ(required(2, inside), GRIScene(10, 20, 7, 8, 1.0));
  EXPECT_EQ(required(3, inside), GRIScene(9, 19, 9, 10, 1.0));
  const GRIScene corner(95.5, 75.5, 4.5, 4.5, 1.0);
  EXPECT_EQ(required(1, corner), GRIScene(95, 75, 5, 5, 1.0));
  EXPECT_EQ(required(2, corner), GRIScene(95, 75, 5, 5, 1.0));
  EXPECT_EQ(required(3, corner), GRIScene(94, 74, 6, 6, 1.0));
  EXPECT_EQ(required(3, GRIScene(0, 0, 2, 2, 1.0)), GRIScene(0, 0, 4, 4, 1.0));
  // The stage's size is that at the magnification.
  EXPECT_EQ(required(3, GRIScene(20, 15, 5, 5, 0.25)), GRIScene(19, 14, 6, 6, 0.25));
}

}  // namespace
