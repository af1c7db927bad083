#include "tests/support/tg2_forwardWavelet.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// The steps of the lifting, in the order of the synthesis. They are what singles make of them.
constexpr double STEPS[4] = {double{0.44350684F}, double{0.8829111F}, double{0.052980117F},
                             double{1.5861344F}};
constexpr double LOW_GAIN = 1.1496044397354126;
constexpr double HIGH_GAIN = 0.8698644206960049;

// Adds `factor` times the sum of both neighbours to every second sample. Edges are mirrored.
void lift(std::vector<double>& line, size_t first, double factor) {
  const size_t n = line.size();
  for (size_t i = first; i < n; i += 2) {
    const double before = i > 0 ? line[i - 1] : line[i + 1];
    const double after = i + 1 < n ? line[i + 1] : line[i - 1];
    line[i] += factor * (before + after);
  }
}

// One line in place: low values at even, high ones at odd places.
void splitLine(std::vector<double>& line) {
  if (line.size() < 2) return;
  lift(line, 1, -STEPS[3]);
  lift(line, 0, -STEPS[2]);
  lift(line, 1, STEPS[1]);
  lift(line, 0, STEPS[0]);
}

// The upper left width x height samples of a plane, rows first: the synthesis goes the other way.
void splitPlane(std::vector<float>& plane, size_t width, size_t height, size_t stride) {
  std::vector<double> line(width);
  for (size_t y = 0; y < height; ++y) {
    float* const row = &plane[y * stride];
    std::copy(row, row + width, line.begin());
    splitLine(line);
    std::transform(line.begin(), line.end(), row, [](double v) { return static_cast<float>(v); });
  }
  // Several columns at once, for the sake of the caches.
  constexpr size_t GROUP = 16;
  std::array<std::vector<double>, GROUP> lines;
  for (std::vector<double>& column : lines) column.resize(height);
  for (size_t x = 0; x < width; x += GROUP) {
    const size_t count = std::min(GROUP, width - x);
    for (size_t y = 0; y < height; ++y) {
      for (size_t i = 0; i < count; ++i) lines[i][y] = plane[y * stride + x + i];
    }
    for (size_t i = 0; i < count; ++i) splitLine(lines[i]);
    for (size_t y = 0; y < height; ++y) {
      for (size_t i = 0; i < count; ++i) {
        plane[y * stride + x + i] = static_cast<float>(lines[i][y]);
      }
    }
  }
}

// Every second sample in both directions.
std::vector<float> take(const std::vector<float>& plane, size_t width, size_t height, size_t stride,
                        size_t firstX, size_t firstY) {
  std::vector<float> taken;
  taken.reserve((width / 2 + 1) * (height / 2 + 1));
  for (size_t y = firstY; y < height; y += 2) {
    for (size_t x = firstX; x < width; x += 2) taken.push_back(plane[y * stride + x]);
  }
  return taken;
}

}  // namespace

std::vector<TG2TestSubband> tg2_subbandsOf(gr_uint32 width, gr_uint32 height, gr_uint32 numLevels) {
  std::vector<TG2TestSubband> subbands(3 * size_t{numLevels} + 1);
  double gain = 1.0;
  for (size_t level = numLevels; level > 0; --level) {
    const gr_uint32 lowWidth = width - width / 2;
    const gr_uint32 lowHeight = height - height / 2;
    subbands[3 * level - 2] = {width / 2, lowHeight, gain * HIGH_GAIN * LOW_GAIN};
    subbands[3 * level - 1] = {lowWidth, height / 2, gain * LOW_GAIN * HIGH_GAIN};
    subbands[3 * level] = {width / 2, height / 2, gain * HIGH_GAIN * HIGH_GAIN};
    gain *= LOW_GAIN * LOW_GAIN;
    width = lowWidth;
    height = lowHeight;
  }
  subbands[0] = {width, height, gain};
  return subbands;
}

std::vector<std::vector<float>> tg2_forwardWavelet(gr_uint32 width, gr_uint32 height,
                                                   gr_uint32 numLevels, std::vector<float> plane) {
  std::vector<std::vector<float>> subbands(3 * size_t{numLevels} + 1);
  for (size_t level = numLevels; level > 0; --level) {
    splitPlane(plane, width, height, width);
    subbands[3 * level - 2] = take(plane, width, height, width, 1, 0);
    subbands[3 * level - 1] = take(plane, width, height, width, 0, 1);
    subbands[3 * level] = take(plane, width, height, width, 1, 1);
    plane = take(plane, width, height, width, 0, 0);
    width -= width / 2;
    height -= height / 2;
  }
  subbands[0] = std::move(plane);
  return subbands;
}

namespace {

// One pixel from red, green and blue: the inverse of
//     R = P0 + a P1 + b P2,  G = P0 - c P1 - d P2,  B = P0 - e P1 + f P2
void splitColor(float& r, float& g, float& b) {
  constexpr double A = 0.9452160596847534, B = 0.6327160596847534;
  constexpr double C = 0.28935185074806213, D = 0.6018518805503845;
  constexpr double E = 1.0995370149612427, F = 1.7129629850387573;
  // The first plane goes out of both differences.
  const double rg = double{r} - double{g};  // (a + c) P1 + (b + d) P2
  const double bg = double{b} - double{g};  // (c - e) P1 + (f + d) P2
  constexpr double DETERMINANT = (A + C) * (F + D) - (B + D) * (C - E);
  const double p1 = (rg * (F + D) - bg * (B + D)) / DETERMINANT;
  const double p2 = (bg * (A + C) - rg * (C - E)) / DETERMINANT;
  r = static_cast<float>(double{g} + C * p1 + D * p2);
  g = static_cast<float>(p1);
  b = static_cast<float>(p2);
}

}  // namespace

void tg2_forwardColor(std::vector<std::vector<float>>& bands, double max) {
  if (bands.size() < 3) return;
  for (size_t i = 0; i < bands[0].size(); ++i) {
    if (bands.size() == 4) {
      // The decoder takes as much of the black out of the colours as the fourth plane lets it.
      const float black = bands[3][i];
      bands[3][i] = std::min({bands[0][i], bands[1][i], bands[2][i]});
      for (size_t band = 0; band < 3; ++band) {
        bands[band][i] = static_cast<float>(max - (double{bands[band][i]} + double{black}) / 2);
      }
    }
    splitColor(bands[0][i], bands[1][i], bands[2][i]);
  }
}
