#include <gtest/gtest.h>

#include <vector>

#include "image/gri_mask.h"
#include "image/gri_maskRowBuilder.h"
#include "image/gri_pixel.h"
#include "image/gri_scene.h"
#include "image/gri_sceneBuffer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

constexpr GRIMergeMode ALL_MODES[] = {
    GRI_MERGE_EXACT,   GRI_MERGE_FUZZY,          GRI_MERGE_LESSER,
    GRI_MERGE_GREATER, GRI_MERGE_EXACT_PER_BAND, GRI_MERGE_FUZZY_PER_BAND,
};

const GRIPixel GRAY8(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
const GRIPixel RGB8(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);

/// A row of pixels: one Bytes for each band.
class Row {
 public:
  Row(const GRIPixel& pixel, std::vector<Bytes> bands)
      : m_bands(std::move(bands)),
        m_planes(pointersTo(m_bands)),
        buffer(pixel, static_cast<gr_uint32>(m_bands[0].size()), 1, m_planes.data()) {}

  const Bytes& band(size_t index) const { return m_bands[index]; }

 private:
  static std::vector<void*> pointersTo(std::vector<Bytes>& bands) {
    std::vector<void*> planes;
    planes.reserve(bands.size());
    for (Bytes& band : bands) planes.push_back(band.data());
    return planes;
  }

  std::vector<Bytes> m_bands;
  std::vector<void*> m_planes;

 public:
  GRISceneBuffer buffer;
};

GRIPixel grayOf(gr_uint8 value) {
  GRIPixel pixel = GRAY8;
  pixel.setSampleUint8(0, value);
  return pixel;
}

GRIPixel rgbOf(const Bytes& values) {
  GRIPixel pixel = RGB8;
  pixel.setValuesUint8(values.data());
  return pixel;
}

/// The gray row `a` after `b` was merged into it, with no data 100.
Bytes merged(GRIMergeMode mode, const Bytes& a, const Bytes& b, double magnification = 1.0) {
  Row into(GRAY8, {a}), from(GRAY8, {b});
  const GRIPixel noData = grayOf(100);
  EXPECT_EQ(into.buffer.merge(mode, magnification, from.buffer, &noData), GR_STATUS_OK);
  return into.band(0);
}

/// Lets the columns of some runs of row 0 through.
class OneRowSource : public GRIMaskSource {
 public:
  explicit OneRowSource(std::vector<GRIMaskRun> runs, GR_STATUS status = GR_STATUS_OK)
      : m_runs(std::move(runs)), m_status(status) {}

  GR_STATUS getMask(const GRIScene&, GRIMask& mask) override {
    GR_RETURN_IF_FAILED(mask.setNumRows(1));
    GRIMaskRowBuilder builder;
    for (const GRIMaskRun& run : m_runs) builder.addRun(run);
    mask.setRow(0, builder.take());
    return m_status;
  }

 private:
  std::vector<GRIMaskRun> m_runs;
  GR_STATUS m_status;
};

TEST(GRISceneBufferMergeTest, ExactTakesWhatIsNotNoData) {
  EXPECT_EQ(merged(GRI_MERGE_EXACT, {1, 2, 3, 100}, {100, 101, 9, 7}), (Bytes{1, 101, 9, 7}));
}

TEST(GRISceneBufferMergeTest, ExactTakesAllBandsWhenOneDiffers) {
  Row into(RGB8, {{1, 1}, {1, 1}, {1, 1}}), from(RGB8, {{5, 5}, {6, 6}, {7, 8}});
  const GRIPixel noData = rgbOf({5, 6, 7});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_EXACT, from.buffer, &noData), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{1, 5}));
  EXPECT_EQ(into.band(1), (Bytes{1, 6}));
  EXPECT_EQ(into.band(2), (Bytes{1, 8}));
}

TEST(GRISceneBufferMergeTest, ExactPerBandTakesTheBandsThatDiffer) {
  Row into(RGB8, {{1}, {1}, {1}}), from(RGB8, {{5}, {9}, {7}});
  const GRIPixel noData = rgbOf({5, 6, 7});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_EXACT_PER_BAND, from.buffer, &noData), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{1}));
  EXPECT_EQ(into.band(1), (Bytes{9}));
  EXPECT_EQ(into.band(2), (Bytes{1}));
}

TEST(GRISceneBufferMergeTest, ExactServesAnyNumberOfBands) {
  const GRIPixel pixel(GRI_COLORSPACE_MULTISPECTRAL, 5, GRI_DATATYPE_UINT8);  // zeros
  Row into(pixel, std::vector<Bytes>(5, {1, 1}));
  Row from(pixel, {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 4}});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_EXACT, from.buffer, &pixel), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{1, 0}));
  EXPECT_EQ(into.band(4), (Bytes{1, 4}));
}

TEST(GRISceneBufferMergeTest, WithoutNoDataAMergeIsAPlainCopyExceptForTheComparisons) {
  for (const GRIMergeMode mode : ALL_MODES) {
    Row into(GRAY8, {{1, 9}}), from(GRAY8, {{5, 5}});
    ASSERT_EQ(into.buffer.merge(mode, from.buffer, nullptr), GR_STATUS_OK);
    const Bytes expected = mode == GRI_MERGE_LESSER    ? Bytes{1, 5}
                           : mode == GRI_MERGE_GREATER ? Bytes{5, 9}
                                                       : Bytes{5, 5};
    EXPECT_EQ(into.band(0), expected) << mode;
  }
}

TEST(GRISceneBufferMergeTest, ComparisonsGoBandByBand) {
  Row into(RGB8, {{5}, {5}, {5}}), from(RGB8, {{4}, {6}, {5}});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_LESSER, from.buffer, nullptr), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{4}));
  EXPECT_EQ(into.band(1), (Bytes{5}));
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_GREATER, from.buffer, nullptr), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{4}));
  EXPECT_EQ(into.band(1), (Bytes{6}));
}

TEST(GRISceneBufferMergeTest, FuzzyNeverTakesNoData) {
  for (const GRIMergeMode mode : {GRI_MERGE_FUZZY, GRI_MERGE_FUZZY_PER_BAND}) {
    EXPECT_EQ(merged(mode, {50, 100}, {100, 100}), (Bytes{50, 100}));
    EXPECT_EQ(merged(mode, {50, 100}, {100, 100}, 1e-6), (Bytes{50, 100}));
  }
}

TEST(GRISceneBufferMergeTest, FuzzyReplacesNoDataAndWhatIsNearIt) {
  for (const GRIMergeMode mode : {GRI_MERGE_FUZZY, GRI_MERGE_FUZZY_PER_BAND}) {
    EXPECT_EQ(merged(mode, {100, 103, 50}, {101, 101, 200}), (Bytes{101, 101, 200}));
  }
}

// Both 104 and 96 are 4 away from no data, 16 when squared: at the threshold of 16 neither is far
// (above it) nor near (below it), and then the one that has a pixel already keeps it.
TEST(GRISceneBufferMergeTest, TheThresholdIs16AtMagnification1AndAbove) {
  for (const double magnification : {1.0, 4.0}) {
    EXPECT_EQ(merged(GRI_MERGE_FUZZY, {96, 96, 97}, {104, 105, 104}, magnification),
              (Bytes{96, 105, 104}))
        << magnification;
  }
}

TEST(GRISceneBufferMergeTest, TheThresholdIs64AtMagnificationAQuarter) {
  // 8 away: 64, 9 away: 81, 7 away: 49.
  EXPECT_EQ(merged(GRI_MERGE_FUZZY, {92, 92, 93}, {108, 109, 108}, 0.25), (Bytes{92, 109, 108}));
}

TEST(GRISceneBufferMergeTest, AllBandsTogetherHaveTheThresholdOfTheirNumber) {
  const GRIPixel noData = rgbOf({100, 100, 100});
  // 3 * 16 is 48: at it, and with 4, 4 and 5 above it.
  Row into(RGB8, {{96, 96}, {96, 96}, {96, 96}}), from(RGB8, {{104, 104}, {104, 104}, {104, 105}});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_FUZZY, from.buffer, &noData), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{96, 104}));
}

TEST(GRISceneBufferMergeTest, BandsByThemselvesHaveTheThresholdOfOne) {
  const GRIPixel noData = rgbOf({100, 100, 100});
  Row into(RGB8, {{96}, {96}, {96}}), from(RGB8, {{104}, {105}, {104}});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_FUZZY_PER_BAND, from.buffer, &noData), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{96}));
  EXPECT_EQ(into.band(1), (Bytes{105}));
}

TEST(GRISceneBufferMergeTest, FloatsAreMeasuredAsDoubles) {
  const GRIPixel pixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_FLOAT32);  // 0 is no data
  float a[] = {50.0f, 1e-30f}, b[] = {1e30f, 0.0f};
  void *planeA[] = {a}, *planeB[] = {b};
  GRISceneBuffer into(pixel, 2, 1, planeA), from(pixel, 2, 1, planeB);
  ASSERT_EQ(into.merge(GRI_MERGE_FUZZY, from, &pixel), GR_STATUS_OK);
  EXPECT_EQ(a[0], 1e30f);  // its square passes what a float holds
  EXPECT_EQ(a[1], 1e-30f);
}

TEST(GRISceneBufferMergeTest, OnlyWhatBothWindowsHaveIsMerged) {
  Row into(GRAY8, {{1, 1, 1}}), from(GRAY8, {{7, 7}});
  const GRIPixel noData = grayOf(0);
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_EXACT, from.buffer, &noData), GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{7, 7, 1}));
}

TEST(GRISceneBufferMergeTest, AnotherDataTypeIsRefused) {
  GRISceneBuffer into(GRAY8, 2, 1, nullptr);
  GRISceneBuffer from(GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16), 2, 1, nullptr);
  for (const GRIMergeMode mode : ALL_MODES) {
    EXPECT_EQ(into.merge(mode, from, &GRAY8), GRI_STATUS_IMPEDANCE_DATATYPE);
    EXPECT_EQ(into.merge(mode, from, nullptr), GRI_STATUS_IMPEDANCE_DATATYPE);
  }
}

TEST(GRISceneBufferMergeTest, FourDataTypesCanBeComparedAndNoOther) {
  for (gr_int32 number = GRI_DATATYPE_UINT8; number <= GRI_DATATYPE_SINT64; ++number) {
    const auto type = static_cast<GRIDataType>(number);
    const bool served = type == GRI_DATATYPE_UINT8 || type == GRI_DATATYPE_UINT16 ||
                        type == GRI_DATATYPE_SINT16 || type == GRI_DATATYPE_FLOAT32;
    const GRIPixel pixel(GRI_COLORSPACE_GRAYSCALE, 1, type);
    GRISceneBuffer into(pixel, 2, 1, nullptr), from(pixel, 2, 1, nullptr);
    for (const GRIMergeMode mode : ALL_MODES) {
      EXPECT_EQ(into.merge(mode, from, &pixel), served ? GR_STATUS_OK : GR_STATUS_OUT_OF_RANGE)
          << "type " << number << ", mode " << mode;
    }
  }
}

TEST(GRISceneBufferMergeTest, AnUnknownModeIsRefused) {
  GRISceneBuffer into(GRAY8, 2, 1, nullptr), from(GRAY8, 2, 1, nullptr);
  for (const gr_int32 mode : {-1, 6}) {
    EXPECT_EQ(into.merge(static_cast<GRIMergeMode>(mode), from, &GRAY8), GR_STATUS_OUT_OF_RANGE);
  }
}

TEST(GRISceneBufferMergeTest, ANoDataPixelOfAnotherKindIsRefused) {
  GRISceneBuffer into(RGB8, 2, 1, nullptr), from(RGB8, 2, 1, nullptr);
  EXPECT_EQ(into.merge(GRI_MERGE_EXACT, from, &GRAY8), GR_STATUS_OUT_OF_RANGE);
}

TEST(GRISceneBufferMergeTest, AMaskSourceNarrowsWhatIsTaken) {
  const GRIPixel noData = grayOf(100);
  const GRIScene scene;
  OneRowSource source({{1, 2}});

  Row exact(GRAY8, {{1, 1, 1, 1}}), from(GRAY8, {{9, 100, 9, 9}});
  ASSERT_EQ(exact.buffer.merge(GRI_MERGE_EXACT, 1.0, from.buffer, &noData, source, scene),
            GR_STATUS_OK);
  EXPECT_EQ(exact.band(0), (Bytes{1, 1, 9, 1}));

  Row greater(GRAY8, {{10, 10, 1, 1}});
  ASSERT_EQ(greater.buffer.merge(GRI_MERGE_GREATER, 1.0, from.buffer, nullptr, source, scene),
            GR_STATUS_OK);
  EXPECT_EQ(greater.band(0), (Bytes{10, 100, 9, 1}));
}

TEST(GRISceneBufferMergeTest, WithoutNoDataTheMaskOfTheSourceIsUsedAsItStands) {
  const GRIScene scene;
  OneRowSource source({{1, 2}});
  Row into(GRAY8, {{1, 1, 1, 1}}), from(GRAY8, {{9, 100, 9, 9}});
  ASSERT_EQ(into.buffer.merge(GRI_MERGE_FUZZY, 1.0, from.buffer, nullptr, source, scene),
            GR_STATUS_OK);
  EXPECT_EQ(into.band(0), (Bytes{1, 100, 9, 1}));
}

TEST(GRISceneBufferMergeTest, AFailureOfTheMaskSourceGoesUp) {
  const GRIScene scene;
  OneRowSource source({{1, 2}}, GRI_STATUS_READ_ERROR);
  Row into(GRAY8, {{1, 1}}), from(GRAY8, {{9, 9}});
  EXPECT_EQ(into.buffer.merge(GRI_MERGE_EXACT, 1.0, from.buffer, nullptr, source, scene),
            GRI_STATUS_READ_ERROR);
  EXPECT_EQ(into.band(0), (Bytes{1, 1}));
}

}  // namespace
