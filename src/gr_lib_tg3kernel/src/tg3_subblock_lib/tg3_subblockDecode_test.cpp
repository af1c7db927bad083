#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockDecode.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/support/gr_instructionSets.h"
#include "tests/support/tg3_literalSubblock.h"

namespace {

using Samples = std::vector<gr_int32>;
using Planes = std::vector<TG3LiteralPlane>;

TG3SubblockShape shapeOf(const TG3LiteralShape& shape) {
  return {shape.subband,
          shape.width,
          shape.height,
          {shape.firstColumn, shape.lastColumn},
          {shape.firstRow, shape.lastRow}};
}

/// Decodes one component with the class under test, into a window wider than the subblock.
Samples decodeWith(SubblockDecode& decoder, const TG3LiteralShape& shape, const Planes& planes) {
  std::vector<TG3CodedPlane> coded;
  for (const TG3LiteralPlane& plane : planes) {
    coded.push_back({plane.bytes, plane.hasData, plane.useBypass});
  }
  constexpr gr_int32 UNTOUCHED = 0x5A5A5A5A;
  const size_t stride = shape.width + 3;
  Samples window(stride * shape.height, UNTOUCHED);
  gr_int32* component = window.data() + 2;
  EXPECT_EQ(decoder.decode(shapeOf(shape), coded, static_cast<gr_uint32>(planes.size()),
                           std::span(&component, 1), stride),
            GR_STATUS_OK);
  Samples samples;
  for (size_t at = 0; at < window.size(); ++at) {
    if (at % stride >= 2 && at % stride < shape.width + 2) {
      samples.push_back(window[at]);
    } else {
      EXPECT_EQ(window[at], UNTOUCHED);
    }
  }
  return samples;
}

Samples decode(const TG3LiteralShape& shape, const Planes& planes) {
  SubblockDecode decoder;
  return decodeWith(decoder, shape, planes);
}

/// Arithmetically coded planes from number `first`.
Planes planesFrom(gr_uint32 first, const std::vector<std::vector<gr_uint8>>& bytes) {
  Planes planes(32);
  for (const auto& plane : bytes) planes[first++] = {plane, true, false};
  return planes;
}

/// Coefficients as a subband of an image has them: mostly small, a few large, in patches.
Samples randomSamples(const TG3LiteralShape& shape, std::mt19937& random) {
  Samples samples(size_t{shape.width} * shape.height);
  const unsigned bits = 1 + random() % 12;
  const unsigned density = 1 + random() % 20;
  for (gr_int32& sample : samples) {
    if (random() % density != 0) continue;
    const auto magnitude = static_cast<gr_int32>((random() % (1u << bits)) >> (random() % bits));
    sample = random() % 2 == 0 ? magnitude : -magnitude;
  }
  return samples;
}

TG3LiteralShape randomShape(std::mt19937& random) {
  static constexpr gr_uint32 WIDTHS[] = {1,  2,  3,  7,   31,  32,  33, 63,
                                         64, 65, 66, 100, 128, 130, 200};
  return tg3_literalShape(random() % 9, WIDTHS[random() % std::size(WIDTHS)], 1 + random() % 12);
}

/// A coded rectangle inside of the subblock.
void crop(TG3LiteralShape& shape, std::mt19937& random) {
  shape.firstColumn = random() % shape.width;
  shape.lastColumn = shape.firstColumn + random() % (shape.width - shape.firstColumn);
  shape.firstRow = random() % shape.height;
  shape.lastRow = shape.firstRow + random() % (shape.height - shape.firstRow);
}

const TG3LiteralShape SMALL = tg3_literalShape(0, 4, 3);
const Samples SMALL_SAMPLES = {5, -3, 0, 1, 0, 0, -2, 0, 9, 0, 0, -1};
const std::vector<std::vector<gr_uint8>> SMALL_BYTES = {
    {0x19}, {0x07, 0x7F}, {0x6D, 0x8A}, {0x28, 0x5F}};

TEST(SubblockDecodeTest, DecodesASmallSubblockOfTheLowPassBand) {
  EXPECT_EQ(decode(SMALL, planesFrom(28, SMALL_BYTES)), SMALL_SAMPLES);
}

TEST(SubblockDecodeTest, PutsSamplesInTheMiddleOfWhatMissingPlanesLeaveOpen) {
  const auto firstPlanes = [](size_t count) {
    return decode(SMALL, planesFrom(28, {SMALL_BYTES.begin(), SMALL_BYTES.begin() + count}));
  };
  EXPECT_EQ(firstPlanes(3), (Samples{4, -3, 0, 0, 0, 0, -2, 0, 8, 0, 0, 0}));
  EXPECT_EQ(firstPlanes(2), (Samples{5, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}));
  EXPECT_EQ(firstPlanes(1), (Samples{0, 0, 0, 0, 0, 0, 0, 0, 11, 0, 0, 0}));
}

TEST(SubblockDecodeTest, DecodesRawPlanesBehindArithmeticOnes) {
  Planes planes = planesFrom(28, SMALL_BYTES);
  planes[30] = {{0x61, 0x80}, true, true};
  planes[31] = {{0xD0, 0x4C}, true, true};
  EXPECT_EQ(decode(SMALL, planes), SMALL_SAMPLES);
}

TEST(SubblockDecodeTest, TakesTheContextsOfTheSubband) {
  TG3LiteralShape shape = SMALL;
  shape.subband = 2;
  Planes planes = planesFrom(28, SMALL_BYTES);
  planes[30].bytes = {0x6D, 0x87};
  planes[31].bytes = {0x28, 0x7F};
  EXPECT_EQ(decode(shape, planes), SMALL_SAMPLES);
  shape.subband = 4;
  planes[30].bytes = {0x6E, 0x99};
  planes[31].bytes = {0x26, 0x67};
  EXPECT_EQ(decode(shape, planes), SMALL_SAMPLES);
}

TEST(SubblockDecodeTest, ASubblockWithoutPlanesIsZero) {
  EXPECT_EQ(decode(SMALL, Planes(32)), Samples(12));
}

TEST(SubblockDecodeTest, AFirstPlaneOf31IsOnePlaneOfWeightOne) {
  const Samples samples = {0, 1, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0};
  const Planes planes = tg3_literalEncode(SMALL, samples);
  EXPECT_FALSE(planes[30].hasData);
  EXPECT_EQ(decode(SMALL, planes), samples);
}

TEST(SubblockDecodeTest, PlanesBehindAGapAreNotUsed) {
  Planes planes = planesFrom(28, SMALL_BYTES);
  planes[30] = {};
  EXPECT_EQ(decode(SMALL, planes), (Samples{5, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}));
}

TEST(SubblockDecodeTest, APlaneWithoutBytesEndsTheComponentButCountsForTheMidpoint) {
  Planes planes = planesFrom(28, SMALL_BYTES);
  planes[30].bytes.clear();
  // Plane 31 is stored, so there is no midpoint: 4 and 8 are what planes 28 and 29 hold.
  EXPECT_EQ(decode(SMALL, planes), (Samples{4, 0, 0, 0, 0, 0, 0, 0, 8, 0, 0, 0}));
}

TEST(SubblockDecodeTest, FewerThan32SlotsAreTheUpperPlanes) {
  Planes planes = planesFrom(28, SMALL_BYTES);
  planes.resize(30);
  EXPECT_EQ(decode(SMALL, planes), (Samples{5, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}));
}

TEST(SubblockDecodeTest, AnEmptyCodedRectangleIsZeroWhateverIsStored) {
  TG3LiteralShape shape = SMALL;
  shape.firstColumn = 1;
  shape.lastColumn = 0;
  EXPECT_EQ(decode(shape, planesFrom(28, SMALL_BYTES)), Samples(12));
}

TEST(SubblockDecodeTest, GivesBackWhatWasEncoded) {
  forEachInstructionSet([](std::mt19937& random) {
    SubblockDecode decoder;
    for (int run = 0; run < 300; ++run) {
      SCOPED_TRACE(run);
      const TG3LiteralShape shape = randomShape(random);
      const Samples samples = randomSamples(shape, random);
      const auto bypassed = static_cast<gr_uint32>(random() % 3 == 0 ? random() : 0);
      const Planes planes = tg3_literalEncode(shape, samples, 31, bypassed);
      ASSERT_EQ(decodeWith(decoder, shape, planes), samples);
    }
  });
}

TEST(SubblockDecodeTest, AgreesWithTheLiteralRulesOnCutPlanes) {
  forEachInstructionSet([](std::mt19937& random) {
    SubblockDecode decoder;
    for (int run = 0; run < 300; ++run) {
      SCOPED_TRACE(run);
      TG3LiteralShape shape = randomShape(random);
      if (run % 2 == 0) crop(shape, random);
      Planes planes = tg3_literalEncode(shape, randomSamples(shape, random),
                                        24 + static_cast<gr_uint32>(random() % 8));
      for (TG3LiteralPlane& plane : planes) {
        if (random() % 3 == 0) plane.bytes.resize(random() % (plane.bytes.size() + 1));
      }
      ASSERT_EQ(decodeWith(decoder, shape, planes), tg3_literalDecode(shape, planes));
    }
  });
}

TEST(SubblockDecodeTest, AgreesWithTheLiteralRulesOnAnyBytes) {
  forEachInstructionSet([](std::mt19937& random) {
    SubblockDecode decoder;
    for (int run = 0; run < 1500; ++run) {
      SCOPED_TRACE(run);
      TG3LiteralShape shape = randomShape(random);
      if (run % 2 == 0) crop(shape, random);
      Planes planes(32);
      const unsigned style = random() % 4;
      const auto last = static_cast<gr_uint32>(random() % 32);
      for (gr_uint32 slot = random() % (last + 1); slot <= last; ++slot) {
        planes[slot].hasData = true;
        planes[slot].useBypass = random() % 6 == 0;
        planes[slot].bytes.resize(1 + random() % 60);
        for (gr_uint8& byte : planes[slot].bytes) {
          byte = static_cast<gr_uint8>(random());
          if (style == 1 && random() % 3 == 0) byte = 0xFF;
          if (style == 2 && random() % 4 != 0) byte = 0;
        }
      }
      ASSERT_EQ(decodeWith(decoder, shape, planes), tg3_literalDecode(shape, planes));
    }
  });
}

TEST(SubblockDecodeTest, ComponentsStartAfresh) {
  const TG3LiteralShape shape = tg3_literalShape(3, 20, 10);
  std::mt19937 random(5);
  std::vector<TG3CodedPlane> coded;
  std::vector<Planes> planes;
  std::vector<Samples> samples;
  for (int c = 0; c < 3; ++c) {
    samples.push_back(randomSamples(shape, random));
    planes.push_back(tg3_literalEncode(shape, samples.back()));
  }
  for (const Planes& component : planes) {
    for (const TG3LiteralPlane& plane : component) {
      coded.push_back({plane.bytes, plane.hasData, plane.useBypass});
    }
  }
  std::vector<Samples> decoded(3, Samples(200, 77));
  gr_int32* const components[] = {decoded[0].data(), decoded[1].data(), decoded[2].data()};
  SubblockDecode decoder;
  ASSERT_EQ(decoder.decode(shapeOf(shape), coded, 32, components, 20), GR_STATUS_OK);
  EXPECT_EQ(decoded, samples);
}

}  // namespace
