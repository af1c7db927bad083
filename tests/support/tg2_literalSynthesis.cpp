#include "tests/support/tg2_literalSynthesis.h"

#include <cstdlib>

namespace {

// A line as an endless signal, and what the steps make of it.
class EndlessLine {
 public:
  EndlessLine(const std::vector<float>& low, const std::vector<float>& high)
      : m_low(low), m_high(high), m_size(static_cast<gr_int64>(low.size() + high.size())) {}

  float sample(gr_int64 position) const {
    return position % 2 == 0 ? secondEven(position / 2) : secondOdd((position - 1) / 2);
  }

 private:
  float read(gr_int64 position) const {
    if (position < 0) position = -position;
    if (position > m_size - 1) position = 2 * (m_size - 1) - position;
    if (position < 0) return 0.0F;
    const auto n = static_cast<size_t>(position / 2);
    return position % 2 == 0 ? m_low.at(n) : m_high.at(n);
  }
  float low(gr_int64 n) const { return read(2 * n); }
  float high(gr_int64 n) const { return read(2 * n + 1); }

  static float rounded(double value) { return static_cast<float>(value); }
  float firstEven(gr_int64 n) const {
    return rounded(low(n) - double{0.44350684F} * (double{high(n - 1)} + double{high(n)}));
  }
  float firstOdd(gr_int64 n) const {
    return rounded(high(n) - double{0.8829111F} * (double{firstEven(n)} + firstEven(n + 1)));
  }
  float secondEven(gr_int64 n) const {
    return rounded(firstEven(n) + double{0.052980117F} * (double{firstOdd(n - 1)} + firstOdd(n)));
  }
  float secondOdd(gr_int64 n) const {
    return rounded(firstOdd(n) + double{1.5861344F} * (double{secondEven(n)} + secondEven(n + 1)));
  }

  const std::vector<float>& m_low;
  const std::vector<float>& m_high;
  gr_int64 m_size;
};

std::vector<float> columnOf(const TG2LiteralPlane& plane, gr_int64 x) {
  std::vector<float> column;
  for (gr_int64 y = 0; y < plane.height; ++y) column.push_back(plane.at(x, y));
  return column;
}

std::vector<float> rowOf(const TG2LiteralPlane& plane, gr_int64 y) {
  std::vector<float> row;
  for (gr_int64 x = 0; x < plane.width; ++x) row.push_back(plane.at(x, y));
  return row;
}

// All columns of two planes that are above each other.
TG2LiteralPlane joinColumns(const TG2LiteralPlane& low, const TG2LiteralPlane& high) {
  TG2LiteralPlane joined = {low.width, low.height + high.height, {}};
  joined.samples.resize(static_cast<size_t>(joined.width * joined.height));
  for (gr_int64 x = 0; x < joined.width; ++x) {
    const std::vector<float> line = tg2_literalLine(columnOf(low, x), columnOf(high, x));
    for (gr_int64 y = 0; y < joined.height; ++y) {
      joined.samples.at(static_cast<size_t>(y * joined.width + x)) =
          line.at(static_cast<size_t>(y));
    }
  }
  return joined;
}

// A child's gain is rounded after each of its two factors.
float times(float gain, bool isHigh) { return gain * (isHigh ? 0.8698644F : 1.1496044F); }

TG2LiteralPlane imageOf(gr_int64 width, gr_int64 height, gr_int32 numLevels, gr_int32 level,
                        float gain, const TG2LiteralSubbands& subbands) {
  if (level == numLevels) return subbands(0, width, height, gain);
  const gr_int32 next = 3 * (numLevels - level);
  const gr_int64 lowWidth = (width + 1) / 2, highWidth = width / 2;
  const gr_int64 lowHeight = (height + 1) / 2, highHeight = height / 2;
  const float lowGain = times(gain, false), highGain = times(gain, true);
  return tg2_literalJoin(
      imageOf(lowWidth, lowHeight, numLevels, level + 1, times(lowGain, false), subbands),
      subbands(next - 2, highWidth, lowHeight, times(highGain, false)),
      subbands(next - 1, lowWidth, highHeight, times(lowGain, true)),
      subbands(next, highWidth, highHeight, times(highGain, true)));
}

}  // namespace

std::vector<float> tg2_literalLine(const std::vector<float>& low, const std::vector<float>& high) {
  const EndlessLine line(low, high);
  std::vector<float> samples;
  for (size_t i = 0; i < low.size() + high.size(); ++i) {
    samples.push_back(line.sample(static_cast<gr_int64>(i)));
  }
  return samples;
}

TG2LiteralPlane tg2_literalJoin(const TG2LiteralPlane& lowLow, const TG2LiteralPlane& highLow,
                                const TG2LiteralPlane& lowHigh, const TG2LiteralPlane& highHigh) {
  const TG2LiteralPlane low = joinColumns(lowLow, lowHigh);
  const TG2LiteralPlane high = joinColumns(highLow, highHigh);
  TG2LiteralPlane joined = {low.width + high.width, low.height, {}};
  for (gr_int64 y = 0; y < joined.height; ++y) {
    const std::vector<float> line = tg2_literalLine(rowOf(low, y), rowOf(high, y));
    joined.samples.insert(joined.samples.end(), line.begin(), line.end());
  }
  return joined;
}

TG2LiteralPlane tg2_literalImage(gr_int64 width, gr_int64 height, gr_int32 numLevels,
                                 gr_int32 level, const TG2LiteralSubbands& subbands) {
  float gain = 1.0F;
  for (gr_int32 i = 0; i < std::abs(level); ++i) {
    gain *= 1.3215904F;
    width = level < 0 ? width * 2 : (width + 1) / 2;
    height = level < 0 ? height * 2 : (height + 1) / 2;
  }
  if (level < 0) gain = 1.0F / gain;
  return imageOf(width, height, numLevels, level, gain, subbands);
}

float tg2_literalStep(gr_int32 level, float gain, float binWidth) {
  double power = 1.0;
  for (gr_int32 i = 0; i < std::abs(level); ++i) power *= 1.5133281569763917;
  const auto normalizer = static_cast<float>(level < 0 ? 1.0 / power : power);
  const float perNormalizer = 1.0F / normalizer;
  const float perGain = perNormalizer / gain;
  return perGain * binWidth;
}

float tg2_literalValue(gr_int32 bin, float step) {
  if (bin == 0) return 0.0F;
  const float half = step / 2.0F;
  const float edge = static_cast<float>(bin) + (bin > 0 ? -0.44F : 0.44F);
  const float value = edge * step;
  return bin > 0 ? value + half : value - half;
}
