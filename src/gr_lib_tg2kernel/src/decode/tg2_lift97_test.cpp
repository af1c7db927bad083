#include "gr_lib_tg2kernel/src/decode/tg2_lift97.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/gr_instructionSets.h"

namespace {

using Row = std::vector<float>;

/// Values of all magnitudes, or such as an image has; now and then infinite ones or none at all.
Row randomRow(size_t n, std::mt19937& random) {
  Row row(n);
  const unsigned kind = random() % 4;
  for (float& value : row) {
    const float unit = static_cast<float>(random() % 200001) / 100000.0F - 1.0F;
    value = kind == 0 ? std::ldexp(unit, static_cast<int>(random() % 80) - 40) : 255.0F * unit;
    if (kind == 1 && random() % 10 == 0)
      value = std::bit_cast<float>(static_cast<gr_uint32>(random()));
  }
  return row;
}

/// The bits, with one for all numbers that aren't any.
std::vector<gr_uint32> bitsOf(const Row& row) {
  std::vector<gr_uint32> bits;
  for (const float value : row) {
    bits.push_back(std::isnan(value) ? 0x7FC00000U : std::bit_cast<gr_uint32>(value));
  }
  return bits;
}

constexpr size_t LONGEST = 70;

TEST(TG2Lift97Test, FactorsAreTheFormatsSingles) {
  EXPECT_EQ(std::bit_cast<gr_uint32>(TG2_LIFT97[0]), 0xBEE31354U);
  EXPECT_EQ(std::bit_cast<gr_uint32>(TG2_LIFT97[1]), 0xBF620676U);
  EXPECT_EQ(std::bit_cast<gr_uint32>(TG2_LIFT97[2]), 0x3D5901AEU);
  EXPECT_EQ(std::bit_cast<gr_uint32>(TG2_LIFT97[3]), 0x3FCB0674U);
}

TEST(TG2Lift97Test, StepRoundsOnceFromDouble) {
  // The sum alone would be lost in single precision: 2^24 + 1.
  const float center = 0.0F, a = 16777216.0F, b = 1.0F;
  float out = 0.0F;
  tg2_lift97StepScalar(&center, &a, &b, 1.0F, &out, 1);
  EXPECT_EQ(out, 16777216.0F);
  const float opposite = -16777216.0F;
  tg2_lift97StepScalar(&opposite, &a, &b, 1.0F, &out, 1);
  EXPECT_EQ(out, 1.0F);
}

TEST(TG2Lift97Test, StepAgreesWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      const Row center = randomRow(n, random), a = randomRow(n, random), b = randomRow(n, random);
      for (const float factor : TG2_LIFT97) {
        Row expected(n), actual = center;
        tg2_lift97StepScalar(center.data(), a.data(), b.data(), factor, expected.data(), n);
        tg2_lift97Step(actual.data(), a.data(), b.data(), factor, actual.data(), n);
        EXPECT_EQ(bitsOf(actual), bitsOf(expected));
      }
    }
  });
}

struct Columns {
  Row low, highAbove, high, firstEven, firstOdd, evenAbove, even, odd;

  Columns(size_t n, std::mt19937& random)
      : low(randomRow(n, random)),
        highAbove(randomRow(n, random)),
        high(randomRow(n, random)),
        firstEven(randomRow(n, random)),
        firstOdd(randomRow(n, random)),
        evenAbove(randomRow(n, random)),
        even(n),
        odd(n) {}
  TG2Lift97Rows rows() {
    return {low.data(),      highAbove.data(), high.data(), firstEven.data(),
            firstOdd.data(), evenAbove.data(), even.data(), odd.data()};
  }
};

void expectEqual(const Columns& actual, const Columns& expected) {
  EXPECT_EQ(bitsOf(actual.firstEven), bitsOf(expected.firstEven));
  EXPECT_EQ(bitsOf(actual.firstOdd), bitsOf(expected.firstOdd));
  EXPECT_EQ(bitsOf(actual.even), bitsOf(expected.even));
  EXPECT_EQ(bitsOf(actual.odd), bitsOf(expected.odd));
}

TEST(TG2Lift97Test, VerticalIsTheFourStepsOneBehindTheOther) {
  std::mt19937 random(97);
  for (size_t n = 0; n <= LONGEST; ++n) {
    SCOPED_TRACE(n);
    Columns expected(n, random);
    Columns actual = expected;
    Row firstEven(n), firstOdd(n);
    const Columns& c = expected;
    tg2_lift97StepScalar(c.low.data(), c.highAbove.data(), c.high.data(), TG2_LIFT97[0],
                         firstEven.data(), n);
    tg2_lift97StepScalar(c.highAbove.data(), c.firstEven.data(), firstEven.data(), TG2_LIFT97[1],
                         firstOdd.data(), n);
    tg2_lift97StepScalar(c.firstEven.data(), c.firstOdd.data(), firstOdd.data(), TG2_LIFT97[2],
                         expected.even.data(), n);
    tg2_lift97StepScalar(c.firstOdd.data(), c.evenAbove.data(), c.even.data(), TG2_LIFT97[3],
                         expected.odd.data(), n);
    expected.firstEven = firstEven;
    expected.firstOdd = firstOdd;
    tg2_lift97VerticalScalar(actual.rows(), n);
    expectEqual(actual, expected);
  }
}

TEST(TG2Lift97Test, VerticalAgreesWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t n = 0; n <= LONGEST; ++n) {
      SCOPED_TRACE(n);
      Columns expected(n, random);
      Columns actual = expected;
      tg2_lift97VerticalScalar(expected.rows(), n);
      tg2_lift97Vertical(actual.rows(), n);
      expectEqual(actual, expected);
    }
  });
}

TEST(TG2Lift97Test, HorizontalFollowsTheLiftingEquations) {
  std::mt19937 random(7);
  for (size_t count = 1; count <= LONGEST; ++count) {
    for (const bool startsOdd : {false, true}) {
      SCOPED_TRACE(count);
      SCOPED_TRACE(startsOdd);
      const int m = static_cast<int>(tg2_lift97Evens(startsOdd, count));
      const Row low = randomRow(m + 2, random), high = randomRow(m + 3, random);
      const auto lift = [](float x, float a, float b, size_t step) {
        return static_cast<float>(x + double{TG2_LIFT97[step]} * (double{a} + double{b}));
      };
      // By recursion over single values, which needs no order of the steps.
      const auto l = [&](int n) { return low.at(n + 1); };
      const auto h = [&](int n) { return high.at(n + 2); };
      const auto e1 = [&](int n) { return lift(l(n), h(n - 1), h(n), 0); };
      const auto o2 = [&](int n) { return lift(h(n), e1(n), e1(n + 1), 1); };
      const auto e3 = [&](int n) { return lift(e1(n), o2(n - 1), o2(n), 2); };
      const auto o4 = [&](int n) { return lift(o2(n), e3(n), e3(n + 1), 3); };
      Row expected(count), actual(count), work(2 * m + 3);
      for (size_t i = 0; i < count; ++i) {
        const int position = static_cast<int>(i) + (startsOdd ? 1 : 0);
        expected[i] = position % 2 == 0 ? e3(position / 2) : o4(position / 2);
      }
      tg2_lift97HorizontalScalar(low.data() + 1, high.data() + 2, work.data(), actual.data(),
                                 startsOdd, count);
      EXPECT_EQ(bitsOf(actual), bitsOf(expected));
    }
  }
}

TEST(TG2Lift97Test, HorizontalAgreesWithTheScalarOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    for (size_t i = 0; i <= LONGEST + 40; ++i) {
      const size_t count = i <= LONGEST ? i : 400 + 37 * (i - LONGEST);  // more than one piece too
      for (const bool startsOdd : {false, true}) {
        SCOPED_TRACE(count);
        SCOPED_TRACE(startsOdd);
        const size_t m = tg2_lift97Evens(startsOdd, count);
        const Row low = randomRow(m + 2, random), high = randomRow(m + 3, random);
        Row work(2 * m + 3), expected(count), actual(count);
        tg2_lift97HorizontalScalar(low.data() + 1, high.data() + 2, work.data(), expected.data(),
                                   startsOdd, count);
        tg2_lift97Horizontal(low.data() + 1, high.data() + 2, work.data(), actual.data(), startsOdd,
                             count);
        EXPECT_EQ(bitsOf(actual), bitsOf(expected));
      }
    }
  });
}

}  // namespace
