#include "gr_lib_tg2kernel/src/decode/tg2_synthesisFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "tests/support/gr_instructionSets.h"
#include "tests/support/tg2_literalSynthesis.h"

namespace {

std::vector<gr_uint32> bitsOf(const std::vector<float>& values) {
  std::vector<gr_uint32> bits(values.size());
  std::transform(values.begin(), values.end(), bits.begin(),
                 [](float value) { return std::bit_cast<gr_uint32>(value); });
  return bits;
}

using Bits = std::vector<gr_uint32>;

TEST(TG2LiteralSynthesisTest, GivesKnownLines) {
  EXPECT_EQ(bitsOf(tg2_literalLine({100}, {})), (Bits{0x42B54A10}));
  EXPECT_EQ(bitsOf(tg2_literalLine({100}, {10})), (Bits{0x42957271, 0x42BE53DC}));
  EXPECT_EQ(bitsOf(tg2_literalLine({100, 50}, {10})), (Bits{0x429FA1D9, 0x428593DE, 0x41ECDE85}));
  EXPECT_EQ(bitsOf(tg2_literalLine({100, 50}, {10, -20})),
            (Bits{0x429D2489, 0x4291745A, 0x422803B7, 0x41865C5A}));
  EXPECT_EQ(bitsOf(tg2_literalLine({100, 50, 25}, {10, -20})),
            (Bits{0x429D2489, 0x4293309B, 0x422A33E3, 0x413B465E, 0x41FC3D65}));
}

TEST(TG2LiteralSynthesisTest, ScalesALineOfOneSample) {
  const float lifted = static_cast<float>(-double{0.8829111F} * 100.0);
  const auto expected =
      static_cast<float>(100.0 + double{0.052980117F} * (double{lifted} + double{lifted}));
  EXPECT_EQ(tg2_literalLine({100}, {}).at(0), expected);
  EXPECT_NEAR(expected, 0.9064465 * 100.0, 1e-4);
}

TEST(TG2ChannelSupportTest, HalvesThenWidensThenClips) {
  gr_int64 first = 0, last = 0;
  const auto support = [&](gr_int64 from, gr_int64 to, gr_int64 size, bool isHigh) {
    tg2_channelSupport(from, to, size, isHigh, first, last);
    return std::pair(first, last);
  };
  EXPECT_EQ(support(0, 0, 20, false), std::pair(gr_int64{0}, gr_int64{3}));
  EXPECT_EQ(support(0, 0, 20, true), std::pair(gr_int64{0}, gr_int64{2}));
  EXPECT_EQ(support(10, 13, 40, false), std::pair(gr_int64{4}, gr_int64{8}));
  EXPECT_EQ(support(10, 13, 40, true), std::pair(gr_int64{3}, gr_int64{8}));
  EXPECT_EQ(support(11, 12, 40, false), std::pair(gr_int64{4}, gr_int64{8}));
  EXPECT_EQ(support(11, 30, 40, false), std::pair(gr_int64{4}, gr_int64{16}));
  EXPECT_EQ(support(11, 30, 40, true), std::pair(gr_int64{3}, gr_int64{16}));
  EXPECT_EQ(support(39, 39, 40, true), std::pair(gr_int64{17}, gr_int64{19}));
  EXPECT_EQ(support(0, 0, 1, false), std::pair(gr_int64{0}, gr_int64{0}));
  EXPECT_EQ(support(0, 0, 1, true), std::pair(gr_int64{0}, gr_int64{-1}));
}

TG2LiteralPlane randomPlane(gr_int64 width, gr_int64 height, std::mt19937& random) {
  TG2LiteralPlane plane = {width, height, {}};
  for (gr_int64 i = 0; i < width * height; ++i) {
    plane.samples.push_back(static_cast<float>(static_cast<int>(random() % 60001) - 30000) / 97.0F);
  }
  return plane;
}

/// The four channels of a subband.
struct Subbands {
  TG2LiteralPlane lowLow, highLow, lowHigh, highHigh;

  Subbands(gr_int64 width, gr_int64 height, std::mt19937& random)
      : lowLow(randomPlane((width + 1) / 2, (height + 1) / 2, random)),
        highLow(randomPlane(width / 2, (height + 1) / 2, random)),
        lowHigh(randomPlane((width + 1) / 2, height / 2, random)),
        highHigh(randomPlane(width / 2, height / 2, random)) {}
  TG2LiteralPlane join() const { return tg2_literalJoin(lowLow, highLow, lowHigh, highHigh); }
};

/// What the support rule gives of a channel, with numbers around that aren't any: they would show
/// in whatever is computed from them.
class ChannelWindow {
 public:
  ChannelWindow(const TG2LiteralPlane& plane, const TG2Rect& parent, gr_int64 width,
                gr_int64 height, bool xHigh, bool yHigh) {
    gr_int64 x0 = 0, x1 = 0, y0 = 0, y1 = 0;
    tg2_channelSupport(parent.x0, parent.x1, width, xHigh, x0, x1);
    tg2_channelSupport(parent.y0, parent.y1, height, yHigh, y0, y1);
    if (x1 < x0 || y1 < y0) return;
    m_window = {static_cast<gr_int32>(x0), static_cast<gr_int32>(y0), static_cast<gr_int32>(x1),
                static_cast<gr_int32>(y1)};
    m_stride = static_cast<size_t>(x1 - x0 + 1) + 2 * MARGIN;
    m_samples.assign(m_stride * (static_cast<size_t>(y1 - y0 + 1) + 2 * MARGIN),
                     std::numeric_limits<float>::quiet_NaN());
    for (gr_int64 y = y0; y <= y1; ++y) {
      for (gr_int64 x = x0; x <= x1; ++x) {
        m_samples[(static_cast<size_t>(y - y0) + MARGIN) * m_stride + MARGIN +
                  static_cast<size_t>(x - x0)] = plane.at(x, y);
      }
    }
  }
  TG2Channel get() const {
    if (m_window.isEmpty()) return {};
    return {m_samples.data() + MARGIN * m_stride + MARGIN, m_stride, m_window};
  }

 private:
  static constexpr size_t MARGIN = 6;
  TG2Rect m_window;
  size_t m_stride = 0;
  std::vector<float> m_samples;
};

std::vector<float> filtered(const Subbands& subbands, const TG2Rect& window, gr_int64 width,
                            gr_int64 height, TG2SynthesisFilter& filter) {
  const ChannelWindow lowLow(subbands.lowLow, window, width, height, false, false);
  const ChannelWindow highLow(subbands.highLow, window, width, height, true, false);
  const ChannelWindow lowHigh(subbands.lowHigh, window, width, height, false, true);
  const ChannelWindow highHigh(subbands.highHigh, window, width, height, true, true);
  const GR_STATUS status = filter.begin(
      window, width, height, {lowLow.get(), highLow.get(), lowHigh.get(), highHigh.get()});
  EXPECT_EQ(status, GR_STATUS_OK);
  const auto cols = static_cast<size_t>(window.getWidth());
  std::vector<float> rows(cols * static_cast<size_t>(window.getHeight()));
  for (size_t y = 0; y < rows.size() / cols; ++y) filter.nextRow(rows.data() + y * cols);
  return rows;
}

std::vector<float> cropOf(const TG2LiteralPlane& plane, const TG2Rect& window) {
  std::vector<float> crop;
  for (gr_int64 y = window.y0; y <= window.y1; ++y) {
    for (gr_int64 x = window.x0; x <= window.x1; ++x) crop.push_back(plane.at(x, y));
  }
  return crop;
}

TEST(TG2SynthesisFilterTest, EveryWindowOfSmallSubbandsIsTheCropOfTheWhole) {
  std::mt19937 random(85);
  TG2SynthesisFilter filter;
  for (gr_int32 width = 1; width <= 11; ++width) {
    for (gr_int32 height = 1; height <= 11; ++height) {
      const Subbands subbands(width, height, random);
      const TG2LiteralPlane whole = subbands.join();
      TG2Rect window;
      for (window.x0 = 0; window.x0 < width; ++window.x0) {
        for (window.x1 = window.x0; window.x1 < width; ++window.x1) {
          for (window.y0 = 0; window.y0 < height; ++window.y0) {
            for (window.y1 = window.y0; window.y1 < height; ++window.y1) {
              ASSERT_EQ(bitsOf(filtered(subbands, window, width, height, filter)),
                        bitsOf(cropOf(whole, window)))
                  << width << "x" << height << ", " << window.x0 << "," << window.y0 << " to "
                  << window.x1 << "," << window.y1;
            }
          }
        }
      }
    }
  }
}

TEST(TG2SynthesisFilterTest, AnyWindowIsTheCropOfTheWholeOnEveryInstructionSet) {
  forEachInstructionSet([](std::mt19937& random) {
    TG2SynthesisFilter filter;
    for (int turn = 0; turn < 40; ++turn) {
      const auto width = static_cast<gr_int32>(1 + random() % 90);
      const auto height = static_cast<gr_int32>(1 + random() % 40);
      const Subbands subbands(width, height, random);
      const TG2LiteralPlane whole = subbands.join();
      for (int i = 0; i < 20; ++i) {
        TG2Rect window;
        window.x0 = static_cast<gr_int32>(random() % width);
        window.y0 = static_cast<gr_int32>(random() % height);
        window.x1 = window.x0 + static_cast<gr_int32>(random() % (width - window.x0));
        window.y1 = window.y0 + static_cast<gr_int32>(random() % (height - window.y0));
        ASSERT_EQ(bitsOf(filtered(subbands, window, width, height, filter)),
                  bitsOf(cropOf(whole, window)))
            << width << "x" << height << ", " << window.x0 << "," << window.y0 << " to "
            << window.x1 << "," << window.y1;
      }
    }
  });
}

TEST(TG2SynthesisFilterTest, ChannelsWithoutSamplesAreZeros) {
  std::mt19937 random(5);
  const gr_int32 width = 21, height = 18;
  for (unsigned absent = 0; absent < 16; ++absent) {
    SCOPED_TRACE(absent);
    Subbands subbands(width, height, random);
    const auto zero = [](TG2LiteralPlane& plane) {
      std::fill(plane.samples.begin(), plane.samples.end(), 0.0F);
    };
    TG2LiteralPlane* const planes[] = {&subbands.lowLow, &subbands.highLow, &subbands.lowHigh,
                                       &subbands.highHigh};
    TG2Channel channels[4];
    for (unsigned i = 0; i < 4; ++i) {
      channels[i] = {planes[i]->samples.data(),
                     static_cast<size_t>(planes[i]->width),
                     {0, 0, static_cast<gr_int32>(planes[i]->width - 1),
                      static_cast<gr_int32>(planes[i]->height - 1)}};
      if ((absent >> i) % 2 == 0) continue;
      zero(*planes[i]);
      channels[i].samples = nullptr;
    }
    const TG2LiteralPlane whole = subbands.join();
    TG2SynthesisFilter filter;
    ASSERT_EQ(filter.begin({0, 0, width - 1, height - 1}, width, height,
                           {channels[0], channels[1], channels[2], channels[3]}),
              GR_STATUS_OK);
    const size_t stride = static_cast<size_t>(width);
    std::vector<float> rows(stride * static_cast<size_t>(height));
    for (float* row = rows.data(); row != rows.data() + rows.size(); row += stride) {
      filter.nextRow(row);
    }
    EXPECT_EQ(bitsOf(rows), bitsOf(whole.samples));
  }
}

/// Channels of a window of a 40 x 40 subband that fit each other, to be spoiled.
class TG2SynthesisFilterRefusalTest : public testing::Test {
 protected:
  static constexpr TG2Rect WINDOW = {10, 10, 20, 20};
  GR_STATUS begin() {
    return m_filter.begin(WINDOW, 40, 40, {m_lowLow, m_highLow, m_lowHigh, m_highHigh});
  }

  std::vector<float> m_samples = std::vector<float>(400);
  // Of the support rule: low 4 to 11, high 3 to 11.
  TG2Channel m_lowLow = {m_samples.data(), 20, {4, 4, 11, 11}};
  TG2Channel m_highLow = {m_samples.data(), 20, {3, 4, 11, 11}};
  TG2Channel m_lowHigh = {m_samples.data(), 20, {4, 3, 11, 11}};
  TG2Channel m_highHigh = {m_samples.data(), 20, {3, 3, 11, 11}};
  TG2SynthesisFilter m_filter;
};

TEST_F(TG2SynthesisFilterRefusalTest, TakesChannelsThatFit) { EXPECT_EQ(begin(), GR_STATUS_OK); }

TEST_F(TG2SynthesisFilterRefusalTest, LowColumnsMustBeTheSame) {
  m_lowHigh.window.x1 = 12;
  EXPECT_EQ(begin(), TG2_STATUS_LOW_COLUMNS);
  EXPECT_EQ(TG2_STATUS_LOW_COLUMNS, 8024u);
}

TEST_F(TG2SynthesisFilterRefusalTest, HighColumnsMustBeTheSame) {
  m_highHigh.window.x0 = 2;
  EXPECT_EQ(begin(), TG2_STATUS_HIGH_COLUMNS);
  EXPECT_EQ(TG2_STATUS_HIGH_COLUMNS, 8026u);
}

TEST_F(TG2SynthesisFilterRefusalTest, LowColumnsMustReachFarEnough) {
  m_lowLow.window.y1 = 10;
  EXPECT_EQ(begin(), TG2_STATUS_LOW_LINES);
  m_lowLow.window.y1 = 11;
  m_lowHigh.window.y0 = 4;
  EXPECT_EQ(begin(), TG2_STATUS_LOW_LINES);
  EXPECT_EQ(TG2_STATUS_LOW_LINES, 8025u);
}

TEST_F(TG2SynthesisFilterRefusalTest, HighColumnsMustReachFarEnough) {
  m_highLow.window.y0 = 5;
  EXPECT_EQ(begin(), TG2_STATUS_HIGH_LINES);
  EXPECT_EQ(TG2_STATUS_HIGH_LINES, 8027u);
}

TEST_F(TG2SynthesisFilterRefusalTest, RowsMustReachFarEnough) {
  m_lowLow.window.x0 = m_lowHigh.window.x0 = 5;
  EXPECT_EQ(begin(), TG2_STATUS_ROW_LINES);
  m_lowLow.window.x0 = m_lowHigh.window.x0 = 4;
  m_highLow.window.x1 = m_highHigh.window.x1 = 10;
  EXPECT_EQ(begin(), TG2_STATUS_ROW_LINES);
  EXPECT_EQ(TG2_STATUS_ROW_LINES, 8028u);
}

}  // namespace
