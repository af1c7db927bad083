#include "filters/gri_multiResFilter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/support/gri_patternReader.h"
#include "tests/support/gri_tileReader.h"

namespace {

using Mode = GRIMultiResFilter::Mode;

struct Options {
  double xScale = 1.0;
  double yScale = 1.0;
  double minMag = 0.125;
  double maxMag = 8.0;
  double magnification = 1.0;
  gr_uint32 stripHeight = 8;
};

class GRIMultiResFilterTest : public testing::Test {
 protected:
  GRIMultiResFilterTest() {
    m_tile.width = 37;
    m_tile.height = 29;
    m_tile.minMagnification = 0.25;
    m_tile.maxMagnification = 16.0;
  }

  GR_STATUS make(const Options& options) {
    auto reader =
        GRUtilSmartPointer<GRITileReader>(gr_makeUnique<GRITileReader>(m_tile, 0, m_log).release());
    EXPECT_EQ(reader->initialize(), 0u);
    m_filter = GRUtilSmartPointer<GRIMultiResFilter>(gr_makeUnique<GRIMultiResFilter>().release());
    const GR_STATUS status =
        m_filter->initialize(reader.detach(), options.xScale, options.yScale, options.minMag,
                             options.maxMag, options.magnification);
    EXPECT_EQ(m_filter->setStripHeight(options.stripHeight), 0u);
    m_log.calls.clear();
    return status;
  }

  std::vector<gr_uint8> decode(const GRIScene& scene) {
    std::vector<gr_uint8> samples(
        static_cast<size_t>(scene.getNumCols()) * static_cast<size_t>(scene.getNumRows()), 0xA5);
    void* planes[] = {samples.data()};
    GRISceneBuffer buffer(m_filter->getPixelProps(), static_cast<gr_uint32>(scene.getNumCols()),
                          static_cast<gr_uint32>(scene.getNumRows()), planes);
    EXPECT_EQ(m_filter->read(scene, buffer), 0u);
    return samples;
  }

  std::vector<gr_uint8> decodeWhole(double mag, gr_uint32& width, gr_uint32& height) {
    EXPECT_EQ(m_filter->getDimsAtMag(mag, width, height), 0u);
    return decode({0, 0, double(width), double(height), mag});
  }

  /// What a pixel of the filter shows, by hand: the image is decoded at `imageMag`.
  gr_uint8 expectedAt(gr_uint32 col, gr_uint32 row, double mag, double imageMag,
                      const Options& options) const {
    const double width = std::ceil(m_tile.width * imageMag);
    const double height = std::ceil(m_tile.height * imageMag);
    // Positions along a row are added up in single precision.
    const float step = static_cast<float>(imageMag / (mag * options.xScale));
    float position = 0.0F;
    for (gr_uint32 i = 0; i < col; ++i) position += step;
    const double x = std::floor(position);
    const double y = std::floor(row * (imageMag / (mag * options.yScale)));
    return m_tile.at(static_cast<gr_int64>(std::min(x, width - 1)),
                     static_cast<gr_int64>(std::min(y, height - 1)), imageMag);
  }

  void expectWhole(double mag, double imageMag, Mode mode, const Options& options) {
    SCOPED_TRACE(testing::Message() << "magnification " << mag << ", scales " << options.xScale
                                    << ", " << options.yScale);
    ASSERT_EQ(make(options), 0u);
    gr_uint32 width = 0;
    gr_uint32 height = 0;
    const std::vector<gr_uint8> samples = decodeWhole(mag, width, height);
    EXPECT_EQ(m_filter->getImageMagnification(), imageMag);
    EXPECT_EQ(m_filter->getMode(), mode);
    for (gr_uint32 row = 0; row < height; ++row) {
      for (gr_uint32 col = 0; col < width; ++col) {
        ASSERT_EQ(samples[size_t{row} * width + col], expectedAt(col, row, mag, imageMag, options))
            << col << ", " << row;
      }
    }
  }

  GRITile m_tile;
  GRITileLog m_log;
  GRUtilSmartPointer<GRIMultiResFilter> m_filter;
};

TEST_F(GRIMultiResFilterTest, HasTheScaledSizeAndResolution) {
  m_tile.xResolution = 6;
  m_tile.yResolution = -9;
  ASSERT_EQ(make({.xScale = 1.5, .yScale = 3}), 0u);
  EXPECT_EQ(m_filter->getWidth(), 56u);  // 55.5
  EXPECT_EQ(m_filter->getHeight(), 87u);
  EXPECT_EQ(m_filter->getGeoCoord().getXResolution(), 4);
  EXPECT_EQ(m_filter->getGeoCoord().getYResolution(), -3);
}

TEST_F(GRIMultiResFilterTest, ItsMagnificationsAreThoseGivenAndTheImagesTimesTheScale) {
  ASSERT_EQ(make({.xScale = 2, .yScale = 8, .minMag = 1, .maxMag = 1}), 0u);
  EXPECT_EQ(m_filter->getMinMagnification(), 1.0);
  EXPECT_EQ(m_filter->getMaxMagnification(), 64.0);
  ASSERT_EQ(make({.xScale = 2, .yScale = 8, .minMag = 0.125, .maxMag = 100}), 0u);
  EXPECT_EQ(m_filter->getMinMagnification(), 0.125);
  EXPECT_EQ(m_filter->getMaxMagnification(), 100.0);
}

TEST_F(GRIMultiResFilterTest, AScaleOfZeroTakesTheMagnificationForBoth) {
  ASSERT_EQ(make({.xScale = 0, .yScale = 5, .magnification = 2}), 0u);
  EXPECT_EQ(m_filter->getWidth(), 74u);
  EXPECT_EQ(m_filter->getHeight(), 58u);
}

TEST_F(GRIMultiResFilterTest, ScalesThatAreNoScalesAreRefused) {
  constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
  constexpr double ENDLESS = std::numeric_limits<double>::infinity();
  for (const double scale : {NO_NUMBER, ENDLESS, -1.0, 1e300, 1e8}) {
    EXPECT_EQ(make({.xScale = scale}), 50211u) << scale;
    EXPECT_EQ(make({.yScale = scale}), 50211u) << scale;
  }
}

TEST_F(GRIMultiResFilterTest, RoundingOfAQuotientAddsNoColumn) {
  EXPECT_EQ(GRIMultiResFilter::scaledSize(1000, 1.0 + 1e-12), 1000u);
  EXPECT_EQ(GRIMultiResFilter::scaledSize(1000, 1.00001), 1001u);
  EXPECT_EQ(GRIMultiResFilter::scaledSize(1, 1e-3), 1u);
  EXPECT_EQ(GRIMultiResFilter::scaledSize(1, 4e9), 0u);
}

TEST_F(GRIMultiResFilterTest, SamplesThatAreNotResampledAreRefused) {
  m_tile.pixel = GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT64);
  EXPECT_EQ(make({}), 50203u);
}

TEST_F(GRIMultiResFilterTest, WhereTheImageHasTheScenesMagnificationItPassesThrough) {
  expectWhole(1.0, 1.0, Mode::PASS, {});
  expectWhole(0.25, 0.25, Mode::PASS, {});
  expectWhole(1.0, 2.0, Mode::PASS, {.xScale = 2, .yScale = 2});
  expectWhole(0.5, 1.0, Mode::PASS, {.xScale = 2, .yScale = 2});
  EXPECT_EQ(m_log.calls.front(), "0 begin 0+29");
  EXPECT_EQ(m_log.calls[1], "0 strip 0+8");
}

TEST_F(GRIMultiResFilterTest, WhereItHasNotItIsResampled) {
  expectWhole(0.125, 0.25, Mode::RESAMPLE, {});
  expectWhole(0.125, 0.25, Mode::RESAMPLE, {.yScale = 2});
  expectWhole(1.0, 1.0, Mode::RESAMPLE, {.xScale = 1.25, .yScale = 1.25});
  expectWhole(1.0, 2.0, Mode::RESAMPLE, {.xScale = 3, .yScale = 2});
  expectWhole(4.0, 16.0, Mode::RESAMPLE, {.xScale = 8, .yScale = 8});
  expectWhole(0.125, 0.25, Mode::RESAMPLE, {.minMag = 0.01, .stripHeight = 1});
}

TEST_F(GRIMultiResFilterTest, AQuotientThatIsNearlyAPowerOfTwoCountsAsOne) {
  m_tile.maxMagnification = 1.0;
  const GRIScene scene(0, 0, 74, 58, 1.0);
  ASSERT_EQ(make({.xScale = 2, .yScale = 2}), 0u);
  const std::vector<gr_uint8> expected = decode(scene);
  for (const double nearly : {2 + 1e-15, 2 - 1e-15, 2 + 1e-11, 2 - 1e-11}) {
    ASSERT_EQ(make({.xScale = nearly, .yScale = nearly}), 0u);
    ASSERT_EQ(m_filter->getWidth(), 74u);
    EXPECT_EQ(decode(scene), expected) << nearly - 2;
    EXPECT_EQ(decode({7, 5, 1, 1, 1.0})[0], expected[5 * 74 + 7]) << nearly - 2;
  }
}

// 37 columns at a scale of a half are 19, and 38 at the double of that: one more than there are.
TEST_F(GRIMultiResFilterTest, ColumnsPastTheImageShowItsLastOnes) {
  m_tile.maxMagnification = 1.0;
  expectWhole(2.0, 1.0, Mode::RESAMPLE, {.xScale = 0.5, .yScale = 0.5});
  const std::vector<gr_uint8> last = decode({37, 0, 1, 1, 2.0});
  EXPECT_EQ(last[0], m_tile.at(36, 0));
  EXPECT_EQ(decode({0, 29, 1, 1, 2.0})[0], m_tile.at(0, 28));
}

TEST_F(GRIMultiResFilterTest, AnImageOfOneMagnificationThatIsMuchReducedIsDecodedRowByRow) {
  m_tile.minMagnification = 1.0;
  m_tile.maxMagnification = 1.0;
  expectWhole(0.25, 1.0, Mode::RESAMPLE, {});  // sixteen to one
  expectWhole(0.125, 1.0, Mode::ROWS, {});
  EXPECT_EQ(m_log.calls,
            (std::vector<std::string>{"0 begin 0+1", "0 strip 0+1", "0 end", "0 begin 8+1",
                                      "0 strip 8+1", "0 end", "0 begin 16+1", "0 strip 16+1",
                                      "0 end", "0 begin 24+1", "0 strip 24+1", "0 end"}));
  // Not so where a part of the image costs as much as the whole.
  m_tile.isSelective = false;
  expectWhole(0.125, 1.0, Mode::RESAMPLE, {});
}

TEST_F(GRIMultiResFilterTest, WindowsAndStripsShowTheSamePixels) {
  for (const Options& scale :
       {Options{}, Options{.xScale = 2, .yScale = 4}, Options{.xScale = 0.5, .yScale = 8}}) {
    for (const double mag : {0.125, 0.25, 1.0, 2.0}) {
      Options options = scale;
      ASSERT_EQ(make(options), 0u);
      gr_uint32 width = 0;
      gr_uint32 height = 0;
      const std::vector<gr_uint8> whole = decodeWhole(mag, width, height);
      for (const gr_uint32 stripHeight : {1u, 5u, 64u}) {
        options.stripHeight = stripHeight;
        ASSERT_EQ(make(options), 0u);
        for (gr_uint32 left = 0; left < width; left += 1 + width / 4) {
          const gr_uint32 top = left % height;
          const gr_uint32 numCols = std::min(11u, width - left);
          const gr_uint32 numRows = std::min(13u, height - top);
          const std::vector<gr_uint8> part =
              decode({double(left), double(top), double(numCols), double(numRows), mag});
          for (gr_uint32 row = 0; row < numRows; ++row) {
            for (gr_uint32 col = 0; col < numCols; ++col) {
              ASSERT_EQ(part[row * numCols + col], whole[(top + row) * width + left + col])
                  << mag << " " << scale.xScale << ": " << left + col << ", " << top + row;
            }
          }
        }
      }
    }
  }
}

TEST_F(GRIMultiResFilterTest, ASceneBesideTheImageIsRefused) {
  ASSERT_EQ(make({.xScale = 2, .yScale = 2}), 0u);
  EXPECT_EQ(m_filter->decodeBegin({74, 0, 5, 5, 1.0}), 50232u);
  EXPECT_EQ(m_filter->decodeBegin({0, 58, 5, 5, 1.0}), 50232u);
  EXPECT_EQ(m_filter->decodeEnd(), 0u);
}

TEST_F(GRIMultiResFilterTest, AFailureOfTheImageIsHandedOnAndTheImageIsEnded) {
  m_tile.stripFailure = 4711;
  for (const double scale : {1.0, 1.25}) {
    ASSERT_EQ(make({.xScale = scale}), 0u);
    GRISceneBuffer buffer(m_filter->getPixelProps(), 20, 20, nullptr);
    EXPECT_EQ(m_filter->read({0, 0, 20, 20, 1.0}, buffer), 4711u);
    EXPECT_EQ(m_log.calls.back(), "0 end");
  }
}

// A tile of 2^30 columns at its one magnification, of which a host asks a few pixels of the whole.
TEST_F(GRIMultiResFilterTest, ARowThatIsTooLongForMemoryIsDecodedInPieces) {
  GRIPatternReader* image = gr_makeUnique<GRIPatternReader>().release();
  GRICallLog log;
  image->logTo(log);
  ASSERT_EQ(image->initialize(1u << 30, 3,
                              GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8), 1.0, 2.0),
            0u);
  m_filter = GRUtilSmartPointer<GRIMultiResFilter>(gr_makeUnique<GRIMultiResFilter>().release());
  ASSERT_EQ(m_filter->initialize(image, 1.0, 1.0, std::ldexp(1.0, -28), 1.0, 1.0), 0u);
  GRISceneBuffer buffer(m_filter->getPixelProps(), 4, 1, nullptr);
  ASSERT_EQ(m_filter->read({0, 0, 4, 1, std::ldexp(1.0, -28)}, buffer), 0u);
  EXPECT_EQ(m_filter->getMode(), Mode::ROWS);
  for (gr_uint32 col = 0; col < 4; ++col) {
    EXPECT_EQ(*static_cast<gr_uint8*>(buffer.getSample(col, 0, 0)),
              GRIPatternReader::valueAt<gr_uint8>(gr_int64{col} << 28, 0, 0));
  }
}

}  // namespace
