#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace {

using Row = std::vector<gr_int32>;

void forEachInstructionSet(const std::function<void(std::mt19937&)>& body) {
  const gr_int64 supported = hwy::SupportedTargets();
  for (gr_int64 rest = supported; rest != 0; rest &= rest - 1) {
    const gr_int64 target = rest & -rest;
    SCOPED_TRACE(hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    std::mt19937 random(53);
    body(random);
  }
  hwy::SetSupportedTargetsForTest(0);
}

/// Any values, so that sums wrap too.
Row randomRow(size_t n, std::mt19937& random) {
  Row row(n);
  const bool small = random() % 2 == 0;
  for (gr_int32& value : row) {
    value = static_cast<gr_int32>(random());
    if (small) value %= 1000;
  }
  return row;
}

constexpr size_t LONGEST = 67;

TEST(TG3Lift53Test, RoundsQuartersAndHalvesToNearestWithTiesToEven) {
  EXPECT_EQ(tg3_roundQuarter(2), 0);
  EXPECT_EQ(tg3_roundQuarter(6), 2);
  EXPECT_EQ(tg3_roundQuarter(-2), 0);
  EXPECT_EQ(tg3_roundQuarter(-6), -2);
  EXPECT_EQ(tg3_roundQuarter(3), 1);
  EXPECT_EQ(tg3_roundQuarter(-3), -1);
  EXPECT_EQ(tg3_roundHalf(1), 0);
  EXPECT_EQ(tg3_roundHalf(3), 2);
  EXPECT_EQ(tg3_roundHalf(-1), 0);
  EXPECT_EQ(tg3_roundHalf(-3), -2);
  for (gr_int32 s = -1000; s <= 1000; ++s) {
    EXPECT_EQ(tg3_roundQuarter(s), std::nearbyint(s / 4.0)) << s;
    EXPECT_EQ(tg3_roundHalf(s), std::nearbyint(s / 2.0)) << s;
  }
}

TEST(TG3Lift53Test, VerticalStepAgreesWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row low = randomRow(n, random), high = randomRow(n, random);
      Row heldHigh1 = randomRow(n, random), heldEven1 = randomRow(n, random), odd1(n);
      Row heldHigh2 = heldHigh1, heldEven2 = heldEven1, odd2(n);
      tg3_lift53VerticalScalar(low.data(), high.data(), heldHigh1.data(), heldEven1.data(),
                               odd1.data(), n);
      tg3_lift53Vertical(low.data(), high.data(), heldHigh2.data(), heldEven2.data(), odd2.data(),
                         n);
      EXPECT_EQ(heldHigh2, heldHigh1);
      EXPECT_EQ(heldEven2, heldEven1);
      EXPECT_EQ(odd2, odd1);
    }
  });
}

TEST(TG3Lift53Test, VerticalStepTakesTheHeldHighRowItselfAsTheNewOne) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row low = randomRow(n, random), high = randomRow(n, random);
      Row held = high, even1(n), odd1(n), apart = high, even2(n), odd2(n);
      tg3_lift53VerticalScalar(low.data(), high.data(), apart.data(), even1.data(), odd1.data(), n);
      tg3_lift53Vertical(low.data(), held.data(), held.data(), even2.data(), odd2.data(), n);
      EXPECT_EQ(even2, even1);
      EXPECT_EQ(odd2, odd1);
      EXPECT_EQ(held, high);
    }
  });
}

TEST(TG3Lift53Test, LastOddRowAgreesWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row high = randomRow(n, random), even = randomRow(n, random);
      Row expected(n), actual(n);
      tg3_lift53LastOddScalar(high.data(), even.data(), expected.data(), n);
      tg3_lift53LastOdd(high.data(), even.data(), actual.data(), n);
      EXPECT_EQ(actual, expected);
    }
  });
}

TEST(TG3Lift53Test, HorizontalStepAgreesWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row low = randomRow(n, random), high = randomRow(n + 1, random);
      Row scratch(n + 1), expected(2 * n), actual(2 * n);
      tg3_lift53HorizontalScalar(low.data(), high.data() + 1, scratch.data(), expected.data(), n);
      tg3_lift53Horizontal(low.data(), high.data() + 1, scratch.data(), actual.data(), n);
      EXPECT_EQ(actual, expected);
    }
  });
}

TEST(TG3Lift53Test, ScalarStepsFollowTheLiftingEquations) {
  std::mt19937 random(1);
  for (int turn = 0; turn < 200; ++turn) {
    // One row of 2 n samples, all in 64 bits and by the formulas.
    const size_t n = 1 + random() % 9;
    Row low(n), high(n + 1);
    for (gr_int32& v : low) v = static_cast<gr_int32>(random() % 4001) - 2000;
    for (gr_int32& v : high) v = static_cast<gr_int32>(random() % 4001) - 2000;
    std::vector<double> even(n + 1);
    for (size_t i = 0; i < n; ++i) even[i] = low[i] - std::nearbyint((high[i] + high[i + 1]) / 4.0);
    even[n] = even[n - 1];
    Row scratch(n + 1), out(2 * n);
    tg3_lift53HorizontalScalar(low.data(), high.data() + 1, scratch.data(), out.data(), n);
    for (size_t i = 0; i < n; ++i) {
      EXPECT_EQ(out[2 * i], even[i]);
      EXPECT_EQ(out[2 * i + 1], high[i + 1] + std::nearbyint((even[i] + even[i + 1]) / 2.0));
    }
  }
}

TEST(TG3Lift53Test, SumsAgreeWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row a = randomRow(n, random), b = randomRow(n, random);
      Row expected(n), actual = a;
      tg3_addRowsScalar(a.data(), b.data(), expected.data(), n);
      tg3_addRows(actual.data(), b.data(), actual.data(), n);
      EXPECT_EQ(actual, expected);
    }
  });
}

TEST(TG3Lift53Test, ClampedSamplesAgreeWithTheScalarOnEveryInstructionSet) {
  struct Range {
    gr_int32 low, high;
  };
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row values = randomRow(n, random);
      for (const Range range : {Range{0, 255}, Range{-128, 127}, Range{10, 200}}) {
        std::vector<gr_uint8> expected(n), actual(n);
        tg3_clampTo8Scalar(values.data(), range.low, range.high, expected.data(), n);
        tg3_clampTo8(values.data(), range.low, range.high, actual.data(), n);
        EXPECT_EQ(actual, expected);
      }
      for (const Range range : {Range{0, 65535}, Range{-32768, 32767}, Range{5, 4095}}) {
        std::vector<gr_uint16> expected(n), actual(n);
        tg3_clampTo16Scalar(values.data(), range.low, range.high, expected.data(), n);
        tg3_clampTo16(values.data(), range.low, range.high, actual.data(), n);
        EXPECT_EQ(actual, expected);
      }
    }
  });
}

TEST(TG3Lift53Test, ClampedSignedSamplesKeepTheirBits) {
  const Row values = {-1000, -128, -1, 0, 127, 1000};
  std::vector<gr_uint8> samples(values.size());
  tg3_clampTo8(values.data(), -128, 127, samples.data(), values.size());
  EXPECT_EQ(samples, (std::vector<gr_uint8>{0x80, 0x80, 0xFF, 0, 127, 127}));
}

}  // namespace
