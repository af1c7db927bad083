#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorTransform.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorRotation.h"
#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_rationalArithmetic.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "tests/support/gr_instructionSets.h"

namespace {

using Colour = std::array<gr_int32, 3>;

TG3ImageInfo imageOf(gr_uint16 numComponents, gr_int32 kind) {
  TG3ImageInfo info;
  info.numComponents = numComponents;
  info.colorTransform = kind;
  return info;
}

GR_STATUS statusOf(gr_uint16 numComponents, gr_int32 kind) {
  TG3ColorTransform transform;
  return transform.initialize(imageOf(numComponents, kind));
}

/// What a file of three components and a kind makes of one colour.
Colour decoded(gr_int32 kind, Colour colour) {
  TG3ColorTransform transform;
  EXPECT_EQ(transform.initialize(imageOf(3, kind)), GR_STATUS_OK);
  gr_int32* const components[] = {&colour[0], &colour[1], &colour[2]};
  transform.apply(components, 1);
  return colour;
}

// Products as the format has them: in two forms, both by truncating division of a dividend that
// an additive constant keeps positive.
gr_int32 smallSum(gr_int32 x, gr_int32 a, gr_int32 y, gr_int32 b) {
  return (x * a + y * b + 0x40002000) / 16384 - 0x10000;
}

gr_int32 largeSum(gr_int32 x, gr_int32 a, gr_int32 y, gr_int32 b) {
  const gr_int32 qx = x / 16384, rx = x - qx * 16384;
  const gr_int32 qy = y / 16384, ry = y - qy * 16384;
  return qx * a + qy * b + (rx * a + ry * b + 0x30002000) / 16384 - 0xC000;
}

gr_int32 anyOf(std::mt19937& random, gr_int32 limit) {
  return std::uniform_int_distribution<gr_int32>(-limit, limit)(random);
}

TEST(TG3RationalArithmeticTest, IsTheSmallFormWithinItsBounds) {
  std::mt19937 random(1);
  for (int run = 0; run < 200000; ++run) {
    const gr_int32 x = anyOf(random, 0x7554), y = anyOf(random, 0x7554);
    ASSERT_EQ(tg3_sumOfProducts(x, TG3_COLOR_C4, y, TG3_COLOR_C5),
              smallSum(x, TG3_COLOR_C4, y, TG3_COLOR_C5));
    const gr_int32 z = anyOf(random, 0xB942);
    for (const gr_int32 k : {TG3_COLOR_C1, TG3_COLOR_C2, TG3_COLOR_C3}) {
      ASSERT_EQ(tg3_product(z, k), smallSum(z, k, 0, 0)) << z << " x " << k;
    }
  }
}

TEST(TG3RationalArithmeticTest, IsTheLargeFormWithinItsBounds) {
  std::mt19937 random(2);
  for (int run = 0; run < 200000; ++run) {
    const gr_int32 x = anyOf(random, 0x3AA98000), y = anyOf(random, 0x3AA98000);
    ASSERT_EQ(tg3_sumOfProducts(x, TG3_COLOR_C4, y, TG3_COLOR_C5),
              largeSum(x, TG3_COLOR_C4, y, TG3_COLOR_C5));
    const gr_int32 z = anyOf(random, 0x5CA04000);
    ASSERT_EQ(tg3_product(z, TG3_COLOR_C2), largeSum(z, TG3_COLOR_C2, 0, 0));
  }
}

TEST(TG3RationalArithmeticTest, RoundsHalvesUpwards) {
  EXPECT_EQ(tg3_product(1, 8192), 1);
  EXPECT_EQ(tg3_product(1, 8191), 0);
  EXPECT_EQ(tg3_product(-1, 8192), 0);
  EXPECT_EQ(tg3_product(-1, 8193), -1);
}

TEST(TG3ColorTransformTest, UndoesKind4WithTheInverseForm) {
  EXPECT_EQ(decoded(4, {130, 86, 89}), (Colour{100, 50, 20}));
  EXPECT_EQ(decoded(4, {255, 0, 0}), (Colour{76, 301, 106}));
}

TEST(TG3ColorTransformTest, UndoesKind10WithTheForwardForm) {
  EXPECT_EQ(decoded(10, {62, 77, 1}), (Colour{100, 50, 20}));
}

TEST(TG3ColorTransformTest, LeavesZerosInTheForwardForm) {
  EXPECT_EQ(decoded(10, {0, 0, 0}), (Colour{0, 0, 0}));
}

TEST(TG3ColorTransformTest, LeavesAnImageOfOneBandAndKind1Alone) {
  TG3ColorTransform transform;
  ASSERT_EQ(transform.initialize(imageOf(1, 1)), GR_STATUS_OK);
  EXPECT_FALSE(transform.needsTransform());
  gr_int32 value = 5;
  gr_int32* const components[] = {&value};
  transform.apply(components, 1);
  EXPECT_EQ(value, 5);
}

TEST(TG3ColorTransformTest, LeavesTheFourthComponentAlone) {
  for (const gr_int32 kind : {7, 13}) {
    TG3ColorTransform transform;
    ASSERT_EQ(transform.initialize(imageOf(4, kind)), GR_STATUS_OK);
    Colour colour = {130, 86, 89};
    gr_int32 fourth = 7;
    gr_int32* const components[] = {&colour[0], &colour[1], &colour[2], &fourth};
    transform.apply(components, 1);
    EXPECT_EQ(colour, decoded(kind - 3, {130, 86, 89}));
    EXPECT_EQ(fourth, 7);
  }
}

TEST(TG3ColorTransformTest, RefusesOtherKindsAndNumbersOfComponents) {
  for (const gr_int32 kind : {0, 2, 3, 5, 6, 8, 9, 11, 12, 14, 0xFE, -1}) {
    EXPECT_EQ(statusOf(3, kind), TG3_STATUS_FORMAT_ERROR) << kind;
  }
  for (const gr_int32 kind : {4, 10}) {
    EXPECT_EQ(statusOf(1, kind), TG3_STATUS_FORMAT_ERROR);
    EXPECT_EQ(statusOf(4, kind), TG3_STATUS_FORMAT_ERROR);
  }
  for (const gr_int32 kind : {7, 13}) EXPECT_EQ(statusOf(3, kind), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(statusOf(9, 1), GR_STATUS_OK);
}

TEST(TG3ColorRotationTest, TheTwoRotationsUndoEachOther) {
  std::mt19937 random(3);
  for (const gr_int32 limit : {300, 20000, 50000, 5000000}) {
    for (int run = 0; run < 20000; ++run) {
      const Colour colour = {anyOf(random, limit), anyOf(random, limit), anyOf(random, limit)};
      Colour there = colour;
      tg3_rotateForwardScalar(&there[0], &there[1], &there[2], 1);
      Colour back = there;
      tg3_rotateInverseScalar(&back[0], &back[1], &back[2], 1);
      ASSERT_EQ(back, colour);
    }
  }
}

TEST(TG3ColorRotationTest, AgreesWithTheDefinitionAroundTheLimitOfTheSmallForm) {
  forEachInstructionSet([](std::mt19937&) {
    for (gr_int32 u = 19909; u <= 19914; ++u) {
      for (const gr_int32 sign : {1, -1}) {
        for (const auto rotate : {0, 1}) {
          std::vector<gr_int32> a(64, sign * u), b(64, 0), c(64, -sign * u);
          auto ea = a, eb = b, ec = c;
          if (rotate == 0) {
            tg3_rotateInverse(a.data(), b.data(), c.data(), a.size());
            tg3_rotateInverseScalar(ea.data(), eb.data(), ec.data(), ea.size());
          } else {
            tg3_rotateForward(a.data(), b.data(), c.data(), a.size());
            tg3_rotateForwardScalar(ea.data(), eb.data(), ec.data(), ea.size());
          }
          ASSERT_EQ(a, ea);
          ASSERT_EQ(b, eb);
          ASSERT_EQ(c, ec);
        }
      }
    }
  });
}

TEST(TG3ColorRotationTest, EveryInstructionSetAgreesWithTheScalarOnAnyValues) {
  forEachInstructionSet([](std::mt19937& random) {
    for (int run = 0; run < 400; ++run) {
      const size_t n = random() % 70;
      const int shift = static_cast<int>(random() % 32);
      const auto row = [&]() {
        std::vector<gr_int32> values(n);
        for (gr_int32& value : values) value = static_cast<gr_int32>(random()) >> shift;
        return values;
      };
      auto a = row(), b = row(), c = row();
      auto ea = a, eb = b, ec = c;
      tg3_rotateInverse(a.data(), b.data(), c.data(), n);
      tg3_rotateInverseScalar(ea.data(), eb.data(), ec.data(), n);
      ASSERT_EQ(a, ea);
      ASSERT_EQ(b, eb);
      ASSERT_EQ(c, ec);
      tg3_rotateForward(a.data(), b.data(), c.data(), n);
      tg3_rotateForwardScalar(ea.data(), eb.data(), ec.data(), n);
      ASSERT_EQ(a, ea);
      ASSERT_EQ(b, eb);
      ASSERT_EQ(c, ec);
    }
  });
}

}  // namespace
