#include "tests/support/tg3_forwardWavelet.h"

namespace {

// Quotients rounded to the nearest, ties to even.
gr_int32 quarter(gr_int32 sum) {
  const gr_int32 floor = sum >> 2;
  const gr_int32 rest = sum & 3;
  return floor + (rest == 3 || (rest == 2 && (floor & 1) != 0) ? 1 : 0);
}
gr_int32 half(gr_int32 sum) {
  const gr_int32 floor = sum >> 1;
  return floor + ((sum & 1) != 0 && (floor & 1) != 0 ? 1 : 0);
}

// One line in place: low values at even, high ones at odd places. Edges are mirrored.
void splitLine(std::vector<gr_int32>& line) {
  const size_t n = line.size();
  if (n < 2) return;
  const auto after = [&](size_t i) { return i + 1 < n ? line[i + 1] : line[i - 1]; };
  const auto before = [&](size_t i) { return i > 0 ? line[i - 1] : line[i + 1]; };
  for (size_t i = 1; i < n; i += 2) line[i] -= half(before(i) + after(i));
  for (size_t i = 0; i < n; i += 2) line[i] += quarter(before(i) + after(i));
}

// Columns first across, rows then down: the synthesis goes the other way.
void splitPlane(std::vector<gr_int32>& plane, size_t width, size_t height) {
  std::vector<gr_int32> line(width);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < width; ++x) line[x] = plane[y * width + x];
    splitLine(line);
    for (size_t x = 0; x < width; ++x) plane[y * width + x] = line[x];
  }
  line.resize(height);
  for (size_t x = 0; x < width; ++x) {
    for (size_t y = 0; y < height; ++y) line[y] = plane[y * width + x];
    splitLine(line);
    for (size_t y = 0; y < height; ++y) plane[y * width + x] = line[y];
  }
}

// Every second sample in both directions.
std::vector<gr_int32> take(const std::vector<gr_int32>& plane, size_t width, size_t height,
                           size_t firstX, size_t firstY) {
  std::vector<gr_int32> taken;
  for (size_t y = firstY; y < height; y += 2) {
    for (size_t x = firstX; x < width; x += 2) taken.push_back(plane[y * width + x]);
  }
  return taken;
}

}  // namespace

TG3TestBands tg3_forwardWavelet(const TG3TestGeometry& geometry, gr_uint32 width, gr_uint32 height,
                                std::vector<gr_int32> samples,
                                const TG3TestCorrection& correction) {
  TG3TestBands bands(geometry.bands().size());
  gr_uint32 w = width;
  gr_uint32 h = height;
  for (size_t level = geometry.numLevels(); level > 0; --level) {
    splitPlane(samples, w, h);
    bands[4 * level] = take(samples, w, h, 1, 1);
    bands[4 * level - 1] = take(samples, w, h, 0, 1);
    bands[4 * level - 2] = take(samples, w, h, 1, 0);
    samples = take(samples, w, h, 0, 0);
    w = (w + 1) / 2;
    h = (h + 1) / 2;
    std::vector<gr_int32>& corrections = bands[4 * level - 3];
    corrections.assign(samples.size(), 0);
    if (!correction) continue;
    for (size_t y = 0; y < h; ++y) {
      for (size_t x = 0; x < w; ++x) {
        const size_t i = y * w + x;
        corrections[i] = correction(static_cast<gr_uint32>(level), static_cast<gr_uint32>(x),
                                    static_cast<gr_uint32>(y));
        samples[i] -= corrections[i];
      }
    }
  }
  bands[0] = std::move(samples);
  return bands;
}
