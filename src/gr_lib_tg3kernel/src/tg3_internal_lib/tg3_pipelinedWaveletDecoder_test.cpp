#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipelinedWaveletDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <vector>

namespace {

using Plane = std::vector<gr_int32>;

/// A rectangle of numbers that knows its size.
struct Grid {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  Plane values;

  Grid() = default;
  Grid(gr_uint32 w, gr_uint32 h) : width(w), height(h), values(size_t{w} * h) {}
  gr_int32& at(gr_uint32 x, gr_uint32 y) { return values[size_t{y} * width + x]; }
  gr_int32 at(gr_uint32 x, gr_uint32 y) const { return values[size_t{y} * width + x]; }
};

/// The subbands of one image, one component: random, some of them empty.
class Subbands : public TG3RowSource {
 public:
  Subbands(gr_uint32 width, gr_uint32 height, gr_uint32 levels, gr_uint32 seed)
      : m_width(width), m_height(height), m_levels(levels) {
    std::mt19937 random(seed);
    gr_uint32 w = width, h = height;
    for (gr_uint32 k = levels; k > 0; --k) {
      const gr_uint32 lowW = (w + 1) / 2, lowH = (h + 1) / 2;
      fill(4 * k - 3, lowW, lowH, 3, random);
      fill(4 * k - 2, w / 2, lowH, 40, random);
      fill(4 * k - 1, lowW, h / 2, 40, random);
      fill(4 * k, w / 2, h / 2, 40, random);
      w = lowW;
      h = lowH;
    }
    fill(0, w, h, 500, random);
  }

  GR_STATUS getRow(gr_uint32 band, gr_uint32 row, gr_uint32 firstCol, gr_uint32 lastCol,
                   const gr_int32** components) override {
    components[0] = nullptr;
    if (band > 4 * m_levels) return GR_STATUS_OK;
    const Grid& grid = m_bands.at(band);
    EXPECT_LT(row, grid.height) << band;
    EXPECT_LE(firstCol, lastCol) << band;
    EXPECT_LT(lastCol, grid.width) << band;
    ++reads[{band, row}];
    samplesRead += lastCol - firstCol + 1;
    if (failAt != 0 && --failAt == 0) return TG3_STATUS_READ_ERROR;
    if (std::all_of(grid.values.begin(), grid.values.end(), [](gr_int32 v) { return v == 0; })) {
      return GR_STATUS_OK;
    }
    // A copy, so that what is used after the next request of this band shows.
    m_handedOut[band].assign(&grid.values[size_t{row} * grid.width + firstCol],
                             &grid.values[size_t{row} * grid.width + lastCol] + 1);
    components[0] = m_handedOut[band].data();
    return GR_STATUS_OK;
  }

  /// The whole image at a scale, by the definition: level by level, even rows, odd rows, even
  /// columns, odd columns, over whole planes with mirrored edges.
  Grid reference(gr_int32 scale) const {
    const gr_uint32 levels = static_cast<gr_uint32>(static_cast<gr_int32>(m_levels) - scale);
    Grid low = m_bands.at(0);
    for (gr_uint32 k = 1; k <= levels; ++k) {
      const auto [w, h] = sizeAt(static_cast<gr_int32>(m_levels) - static_cast<gr_int32>(k));
      Grid plane(w, h);
      for (gr_uint32 y = 0; y < h; ++y) {
        for (gr_uint32 x = 0; x < w; ++x) {
          const gr_uint32 position = x % 2 + 2 * (y % 2);
          gr_int32 value = position == 0 ? low.at(x / 2, y / 2) : 0;
          const auto band = m_bands.find(4 * k - 3 + position);
          if (band != m_bands.end()) value += band->second.at(x / 2, y / 2);
          plane.at(x, y) = value;
        }
      }
      synthesize(plane);
      low = plane;
    }
    const auto overflow = m_bands.find(4 * levels + 1);
    if (scale > 0 && overflow != m_bands.end()) {
      for (size_t i = 0; i < low.values.size(); ++i) low.values[i] += overflow->second.values[i];
    }
    return low;
  }

  std::pair<gr_uint32, gr_uint32> sizeAt(gr_int32 scale) const {
    gr_uint32 w = m_width, h = m_height;
    for (gr_int32 s = 0; s < scale; ++s) w = (w + 1) / 2, h = (h + 1) / 2;
    for (gr_int32 s = 0; s > scale; --s) w *= 2, h *= 2;
    return {w, h};
  }

  Grid& band(gr_uint32 number) { return m_bands[number]; }

  std::map<std::pair<gr_uint32, gr_uint32>, int> reads;
  size_t samplesRead = 0;
  int failAt = 0;

 private:
  void fill(gr_uint32 band, gr_uint32 w, gr_uint32 h, gr_int32 most, std::mt19937& random) {
    Grid grid(w, h);
    if (random() % 4 != 0) {
      for (gr_int32& v : grid.values) v = static_cast<gr_int32>(random() % (2 * most + 1)) - most;
    }
    m_bands[band] = grid;
  }

  /// x[i] of a line with mirrored edges.
  template <typename At>
  static void lift(gr_uint32 n, At at) {
    if (n < 2) return;
    const auto mirrored = [n](gr_int64 i) {
      if (i < 0) i = -i;
      if (i >= n) i = 2 * (gr_int64{n} - 1) - i;
      return static_cast<gr_uint32>(i);
    };
    for (gr_int64 i = 0; i < n; i += 2) {
      const double sum = at(mirrored(i - 1)) + at(mirrored(i + 1));
      at(static_cast<gr_uint32>(i)) -= static_cast<gr_int32>(std::nearbyint(sum / 4));
    }
    for (gr_int64 i = 1; i < n; i += 2) {
      const double sum = at(mirrored(i - 1)) + at(mirrored(i + 1));
      at(static_cast<gr_uint32>(i)) += static_cast<gr_int32>(std::nearbyint(sum / 2));
    }
  }

  static void synthesize(Grid& plane) {
    for (gr_uint32 x = 0; x < plane.width; ++x) {
      lift(plane.height, [&](gr_uint32 y) -> gr_int32& { return plane.at(x, y); });
    }
    for (gr_uint32 y = 0; y < plane.height; ++y) {
      lift(plane.width, [&](gr_uint32 x) -> gr_int32& { return plane.at(x, y); });
    }
  }

  gr_uint32 m_width, m_height, m_levels;
  std::map<gr_uint32, Grid> m_bands;
  std::map<gr_uint32, Plane> m_handedOut;
};

Pipe::Geometry geometryOf(const Subbands& bands, gr_uint32 levels, gr_int32 scale, TG3Range columns,
                          TG3Range rows) {
  const auto [w, h] = bands.sizeAt(scale);
  return {.width = w,
          .height = h,
          .levels = static_cast<gr_uint32>(static_cast<gr_int32>(levels) - scale),
          .scale = scale,
          .components = 1,
          .columns = columns,
          .rows = rows};
}

constexpr PipelinedWaveletDecoder::Samples SIGNED16{.low = -32768, .high = 32767, .bytes = 2};

/// Decodes a rectangle in strips of the given height; rows x columns of 16-bit samples.
std::vector<gr_int16> decode(Subbands& bands, const Pipe::Geometry& geometry,
                             gr_uint32 stripHeight) {
  PipelinedWaveletDecoder decoder;
  EXPECT_EQ(decoder.initialize(geometry, SIGNED16, bands), GR_STATUS_OK);
  const gr_uint32 columns = geometry.columns.count(), rows = geometry.rows.count();
  std::vector<gr_int16> samples(size_t{columns} * rows, 12345);
  for (gr_uint32 y = 0; y < rows; y += stripHeight) {
    void* plane = &samples[size_t{y} * columns];
    const gr_uint32 count = std::min(stripHeight, rows - y);
    EXPECT_EQ(decoder.decodeRows(count, {&plane, 1}, columns * sizeof(gr_int16)), GR_STATUS_OK);
  }
  return samples;
}

std::vector<gr_int16> crop(const Grid& grid, TG3Range columns, TG3Range rows) {
  std::vector<gr_int16> samples;
  for (gr_uint32 y = rows.first; y <= rows.last; ++y) {
    for (gr_uint32 x = columns.first; x <= columns.last; ++x) {
      samples.push_back(static_cast<gr_int16>(std::clamp(grid.at(x, y), -32768, 32767)));
    }
  }
  return samples;
}

TG3Range randomRange(gr_uint32 size, std::mt19937& random) {
  const gr_uint32 first = random() % size;
  return {first, first + static_cast<gr_uint32>(random() % (size - first))};
}

TEST(PipelinedWaveletDecoderTest, AnyWindowAtAnyScaleEqualsTheCropOfTheWhole) {
  std::mt19937 random(7);
  for (int turn = 0; turn < 400; ++turn) {
    const gr_uint32 width = 1 + random() % 40, height = 1 + random() % 40;
    const gr_uint32 levels = random() % 6;
    Subbands bands(width, height, levels, random());
    for (gr_int32 scale = -2; scale <= static_cast<gr_int32>(levels); ++scale) {
      const auto [w, h] = bands.sizeAt(scale);
      if (scale == static_cast<gr_int32>(levels) && (w < 3 || h < 3)) continue;
      SCOPED_TRACE(testing::Message()
                   << width << " x " << height << ", " << levels << " levels, scale " << scale);
      const Grid whole = bands.reference(scale);
      ASSERT_EQ(whole.width, w);
      for (int window = 0; window < 4; ++window) {
        const TG3Range columns = window == 0 ? TG3Range{0, w - 1} : randomRange(w, random);
        const TG3Range rows = window == 0 ? TG3Range{0, h - 1} : randomRange(h, random);
        ASSERT_EQ(decode(bands, geometryOf(bands, levels, scale, columns, rows), 1 + random() % 9),
                  crop(whole, columns, rows));
      }
    }
  }
}

TEST(PipelinedWaveletDecoderTest, SplittingIntoStripsOfAnyHeightChangesNothing) {
  Subbands bands(37, 29, 3, 5);
  const Pipe::Geometry geometry = geometryOf(bands, 3, 0, {3, 33}, {5, 28});
  const std::vector<gr_int16> whole = decode(bands, geometry, 24);
  for (gr_uint32 stripHeight = 1; stripHeight < 24; ++stripHeight) {
    SCOPED_TRACE(stripHeight);
    EXPECT_EQ(decode(bands, geometry, stripHeight), whole);
  }
}

TEST(PipelinedWaveletDecoderTest, DecodesTheLastRowAlone) {
  for (const gr_uint32 height : {16u, 17u}) {
    Subbands bands(20, height, 3, 9);
    const TG3Range columns{0, 19}, rows{height - 1, height - 1};
    EXPECT_EQ(decode(bands, geometryOf(bands, 3, 0, columns, rows), 1),
              crop(bands.reference(0), columns, rows));
  }
}

TEST(PipelinedWaveletDecoderTest, LevelsOfOneOrTwoColumnsAndRowsStayValid) {
  for (gr_uint32 width = 1; width <= 5; ++width) {
    for (gr_uint32 height = 1; height <= 5; ++height) {
      SCOPED_TRACE(testing::Message() << width << " x " << height);
      Subbands bands(width, height, 4, width * 8 + height);
      const TG3Range columns{0, width - 1}, rows{0, height - 1};
      EXPECT_EQ(decode(bands, geometryOf(bands, 4, 0, columns, rows), 2),
                crop(bands.reference(0), columns, rows));
    }
  }
}

TEST(PipelinedWaveletDecoderTest, ReadsEachSubbandRowOnce) {
  Subbands bands(64, 64, 4, 3);
  decode(bands, geometryOf(bands, 4, 0, {10, 50}, {12, 60}), 16);
  for (const auto& [bandAndRow, count] : bands.reads) {
    EXPECT_EQ(count, 1) << "band " << bandAndRow.first << ", row " << bandAndRow.second;
  }
}

TEST(PipelinedWaveletDecoderTest, ReadsInProportionToTheWindow) {
  Subbands bands(512, 512, 5, 3);
  decode(bands, geometryOf(bands, 5, 0, {200, 231}, {300, 331}), 16);
  // 32 x 32 samples take as many coefficients and a border of two at each level.
  EXPECT_LT(bands.samplesRead, 32u * 32u * 3u);
}

TEST(PipelinedWaveletDecoderTest, EnlargesByInterpolation) {
  Subbands bands(4, 3, 0, 1);
  for (gr_uint32 y = 0; y < 3; ++y) {
    const Plane row = {1, 2, 7, 4};
    std::copy(row.begin(), row.end(), &bands.band(0).at(0, y));
  }
  const std::vector<gr_int16> samples = decode(bands, geometryOf(bands, 0, -1, {0, 7}, {0, 0}), 1);
  EXPECT_EQ(samples, (std::vector<gr_int16>{1, 2, 2, 4, 7, 6, 4, 4}));
}

TEST(PipelinedWaveletDecoderTest, SynthesizesTheOneLevelExample) {
  Subbands bands(5, 3, 1, 1);
  bands.band(0).values = {5, 134, 1, 161, 68, 116};
  bands.band(1).values.assign(6, 0);
  bands.band(2).values = {-9, -50, 323, 19};
  bands.band(3).values = {82, -37, 79};
  bands.band(4).values = {169, 94};
  EXPECT_EQ(decode(bands, geometryOf(bands, 1, 0, {0, 4}, {0, 2}), 3),
            (std::vector<gr_int16>{10, 12, 200, 7, 9, 3, 250, 14, 80, 81, 0, 255, 33, 34, 90}));
}

TEST(PipelinedWaveletDecoderTest, AddsTheFinerCorrectionBandAtReducedScales) {
  Subbands bands(8, 8, 1, 1);
  bands.band(0).values.assign(16, 100);
  bands.band(1).values.assign(16, 7);
  const std::vector<gr_int16> samples = decode(bands, geometryOf(bands, 1, 1, {0, 3}, {0, 3}), 4);
  EXPECT_EQ(samples, std::vector<gr_int16>(16, 107));
}

TEST(PipelinedWaveletDecoderTest, ClampsToTheRange) {
  Subbands bands(3, 3, 0, 1);
  bands.band(0).values = {-5, 0, 5, 10, 11, 12, 300, 20, 15};
  PipelinedWaveletDecoder decoder;
  ASSERT_EQ(decoder.initialize(geometryOf(bands, 0, 0, {0, 2}, {0, 2}),
                               {.low = 1, .high = 11, .bytes = 1}, bands),
            GR_STATUS_OK);
  std::vector<gr_uint8> samples(9);
  void* plane = samples.data();
  ASSERT_EQ(decoder.decodeRows(3, {&plane, 1}, 3), GR_STATUS_OK);
  EXPECT_EQ(samples, (std::vector<gr_uint8>{1, 1, 5, 10, 11, 11, 11, 11, 11}));
}

TEST(PipelinedWaveletDecoderTest, RefusesAnImageBelowThreeByThreeWithoutLevels) {
  Subbands bands(2, 100, 0, 1);
  PipelinedWaveletDecoder decoder;
  EXPECT_EQ(decoder.initialize(geometryOf(bands, 0, 0, {0, 1}, {0, 99}), SIGNED16, bands),
            TG3_STATUS_NO_MEMORY);
  // Enlarged there is a level.
  PipelinedWaveletDecoder enlarged;
  EXPECT_EQ(enlarged.initialize(geometryOf(bands, 0, -1, {0, 3}, {0, 199}), SIGNED16, bands),
            GR_STATUS_OK);
}

TEST(PipelinedWaveletDecoderTest, RefusesARectangleOutsideTheImage) {
  Subbands bands(20, 10, 2, 1);
  for (const auto& [columns, rows] : std::vector<std::pair<TG3Range, TG3Range>>{
           {{0, 20}, {0, 9}}, {{0, 19}, {0, 10}}, {{5, 4}, {0, 9}}, {{0, 19}, {3, 2}}}) {
    PipelinedWaveletDecoder decoder;
    EXPECT_EQ(decoder.initialize(geometryOf(bands, 2, 0, columns, rows), SIGNED16, bands),
              TG3_STATUS_BAD_ARGUMENT);
  }
}

TEST(PipelinedWaveletDecoderTest, HandsUpTheRowSourcesStatusWhereverItFails) {
  Subbands bands(20, 20, 2, 1);
  const Pipe::Geometry geometry = geometryOf(bands, 2, 0, {0, 19}, {0, 19});
  decode(bands, geometry, 20);
  int reads = 0;
  for (const auto& [bandAndRow, count] : bands.reads) reads += count;
  for (int failAt = 1; failAt <= reads; ++failAt) {
    PipelinedWaveletDecoder decoder;
    ASSERT_EQ(decoder.initialize(geometry, SIGNED16, bands), GR_STATUS_OK);
    std::vector<gr_int16> samples(400);
    void* plane = samples.data();
    bands.failAt = failAt;
    EXPECT_EQ(decoder.decodeRows(20, {&plane, 1}, 40), TG3_STATUS_READ_ERROR) << failAt;
  }
}

}  // namespace
