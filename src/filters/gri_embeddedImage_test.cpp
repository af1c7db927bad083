#include "filters/gri_embeddedImage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "gr_lib_utils/include/gr_memory.h"
#include "image/gri_imageFilter.h"
#include "tests/support/gri_tileReader.h"

namespace {

constexpr gr_uint8 BEFORE = 200;  // what buffers have before a decode

struct Options {
  gr_uint32 frameWidth = 40;
  gr_uint32 frameHeight = 30;
  double xOffset = 0.0;
  double yOffset = 0.0;
  gr_uint32 stripHeight = 8;
  int background = -1;
  int noData = -1;
};

GRIPixel grayPixel(int value) {
  GRIPixel pixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
  pixel.setAllUint8(static_cast<gr_uint8>(value));
  return pixel;
}

/// An image of 10 x 6 pixels, unless the tile says otherwise, in a frame.
class GRIEmbeddedImageTest : public testing::Test {
 protected:
  GRIEmbeddedImageTest() {
    m_tile.width = 10;
    m_tile.height = 6;
    m_tile.minMagnification = 0.25;
    m_tile.maxMagnification = 4.0;
  }

  GR_STATUS make(const Options& options) {
    auto reader =
        GRUtilSmartPointer<GRITileReader>(gr_makeUnique<GRITileReader>(m_tile, 0, m_log).release());
    EXPECT_EQ(reader->initialize(), 0u);
    m_embedded = GRUtilSmartPointer<GRIEmbeddedImage>(gr_makeUnique<GRIEmbeddedImage>().release());
    const GRIPixel background = grayPixel(options.background);
    const GRIPixel noData = grayPixel(options.noData);
    const GR_STATUS status = m_embedded->initialize(
        reader.detach(), options.frameWidth, options.frameHeight, options.xOffset, options.yOffset,
        0.25, 4.0, options.background < 0 ? nullptr : &background,
        options.noData < 0 ? nullptr : &noData);
    EXPECT_EQ(m_embedded->setStripHeight(options.stripHeight), 0u);
    m_log.calls.clear();
    return status;
  }

  std::vector<gr_uint8> decode(const GRIScene& scene) {
    std::vector<gr_uint8> samples(
        static_cast<size_t>(scene.getNumCols()) * static_cast<size_t>(scene.getNumRows()), BEFORE);
    void* planes[] = {samples.data()};
    GRISceneBuffer buffer(m_embedded->getPixelProps(), static_cast<gr_uint32>(scene.getNumCols()),
                          static_cast<gr_uint32>(scene.getNumRows()), planes);
    EXPECT_EQ(m_embedded->read(scene, buffer), 0u);
    return samples;
  }

  GRITile m_tile;
  GRITileLog m_log;
  GRUtilSmartPointer<GRIEmbeddedImage> m_embedded;
};

using Calls = std::vector<std::string>;

TEST_F(GRIEmbeddedImageTest, HasTheFramesSizeAndPosition) {
  m_tile.xOrigin = 100;
  m_tile.yOrigin = 50;
  m_tile.xResolution = 2;
  m_tile.yResolution = -4;
  ASSERT_EQ(make({.xOffset = 5.5, .yOffset = 3}), 0u);
  EXPECT_EQ(m_embedded->getWidth(), 40u);
  EXPECT_EQ(m_embedded->getHeight(), 30u);
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  EXPECT_EQ(m_embedded->getDimsAtMag(0.25, width, height), 0u);
  EXPECT_EQ(width, 10u);
  EXPECT_EQ(height, 8u);
  EXPECT_EQ(m_embedded->getDimsAtMag(0.125, width, height), 3u);
  EXPECT_EQ(m_embedded->getGeoCoord().getXOrigin(), 100 - 5.5 * 2);
  EXPECT_EQ(m_embedded->getGeoCoord().getYOrigin(), 50 + 3 * 4);
  EXPECT_EQ(m_embedded->getOffsetX(0.5), 2.75);
  EXPECT_EQ(m_embedded->getOffsetY(2.0), 6.0);
}

TEST_F(GRIEmbeddedImageTest, AnImageOutsideOfTheSceneGivesTheBackgroundAndIsNeverBegun) {
  ASSERT_EQ(make({.xOffset = 20, .yOffset = 20, .background = 9}), 0u);
  EXPECT_EQ(decode({0, 0, 15, 15, 1}), std::vector<gr_uint8>(size_t{15} * 15, 9));
  EXPECT_TRUE(m_log.calls.empty());
  EXPECT_FALSE(m_embedded->touchesImage());
}

TEST_F(GRIEmbeddedImageTest, WithoutABackgroundTheBufferStaysAsItWasAroundTheImage) {
  ASSERT_EQ(make({.xOffset = 3, .yOffset = 2}), 0u);
  const std::vector<gr_uint8> samples = decode({0, 0, 40, 30, 1});
  for (int row = 0; row < 30; ++row) {
    for (int col = 0; col < 40; ++col) {
      const bool isInside = col >= 3 && col < 13 && row >= 2 && row < 8;
      ASSERT_EQ(samples[static_cast<size_t>(row * 40 + col)],
                isInside ? m_tile.at(col - 3, row - 2) : BEFORE);
    }
  }
}

TEST_F(GRIEmbeddedImageTest, AnImageCutByTheLeftEdgeLandsAtColumnZeroWithTheCutColumnsDropped) {
  ASSERT_EQ(make({.xOffset = 3, .yOffset = 0}), 0u);
  const std::vector<gr_uint8> samples = decode({7, 0, 10, 1, 1});
  for (int col = 0; col < 6; ++col)
    EXPECT_EQ(samples[static_cast<size_t>(col)], m_tile.at(col + 4, 0));
  for (size_t col = 6; col < 10; ++col) EXPECT_EQ(samples[col], BEFORE);
}

TEST_F(GRIEmbeddedImageTest, PixelsOfNoDataLeaveWhatWasThere) {
  m_tile.samples.assign(60, 1);
  m_tile.samples[3] = 77;
  m_tile.noData = 77;
  ASSERT_EQ(make({.noData = 1}), 0u);  // the image's own counts
  std::vector<gr_uint8> expected(60, 1);
  expected[3] = BEFORE;
  EXPECT_EQ(decode({0, 0, 10, 6, 1}), expected);
  // Without one of its own it's the frame's.
  m_tile.noData = -1;
  ASSERT_EQ(make({.noData = 1}), 0u);
  expected.assign(60, BEFORE);
  expected[3] = 77;
  EXPECT_EQ(decode({0, 0, 10, 6, 1}), expected);
}

TEST_F(GRIEmbeddedImageTest, APixelIsNoDataWhenAllItsBandsAre) {
  m_tile.pixel = GRIPixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  m_tile.samples.assign(60, 10);
  m_tile.noData = 10;  // bands are 10, 11, 12: the first alone is no data
  ASSERT_EQ(make({}), 0u);
  GRISceneBuffer buffer(m_embedded->getPixelProps(), 10, 6, nullptr);
  ASSERT_EQ(m_embedded->read({0, 0, 10, 6, 1}, buffer), 0u);
  EXPECT_EQ(*static_cast<gr_uint8*>(buffer.getSample(4, 4, 0)), 10);
  EXPECT_EQ(*static_cast<gr_uint8*>(buffer.getSample(4, 4, 2)), 12);
}

TEST_F(GRIEmbeddedImageTest, NoDataOfOtherTypesIsRefused) {
  for (const GRIDataType type : {GRI_DATATYPE_SINT8, GRI_DATATYPE_UINT32, GRI_DATATYPE_FLOAT64}) {
    m_tile.pixel = GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, type);
    m_tile.noData = 5;
    ASSERT_EQ(make({}), 0u);
    GRISceneBuffer buffer(m_embedded->getPixelProps(), 10, 6, nullptr);
    EXPECT_EQ(m_embedded->read({0, 0, 10, 6, 1}, buffer), 3u);
    // Without it they are decoded.
    m_tile.noData = -1;
    ASSERT_EQ(make({}), 0u);
    EXPECT_EQ(m_embedded->read({0, 0, 10, 6, 1}, buffer), 0u);
  }
}

TEST_F(GRIEmbeddedImageTest, ABackgroundOfAnotherKindOfPixelIsRefused) {
  m_tile.pixel = GRIPixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  EXPECT_EQ(make({.background = 3}), 50017u);
  m_tile.pixel = GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16);
  EXPECT_EQ(make({.background = 3}), 50016u);
}

TEST_F(GRIEmbeddedImageTest, AnImageInLineWithTheStripsIsDecodedAtOnce) {
  m_tile.height = 20;
  ASSERT_EQ(make({.yOffset = 8}), 0u);
  decode({0, 0, 40, 30, 1});
  EXPECT_EQ(m_log.calls,
            (Calls{"0 begin 0+20", "0 strip 0+8", "0 strip 8+8", "0 strip 16+4", "0 end"}));
}

TEST_F(GRIEmbeddedImageTest, AnImageThatBeginsInsideOfAStripIsDecodedInTwoParts) {
  m_tile.height = 20;
  ASSERT_EQ(make({.yOffset = 5}), 0u);
  const std::vector<gr_uint8> samples = decode({0, 0, 40, 30, 1});
  EXPECT_EQ(m_log.calls, (Calls{"0 begin 0+3", "0 strip 0+3", "0 end", "0 begin 3+17",
                                "0 strip 3+8", "0 strip 11+8", "0 strip 19+1", "0 end"}));
  for (int row = 0; row < 20; ++row) {
    EXPECT_EQ(samples[static_cast<size_t>((row + 5) * 40)], m_tile.at(0, row));
  }
}

TEST_F(GRIEmbeddedImageTest, AnImageInsideOfAStripIsBegunAndEndedThere) {
  ASSERT_EQ(make({.yOffset = 9}), 0u);
  decode({0, 0, 40, 30, 1});
  EXPECT_EQ(m_log.calls, (Calls{"0 begin 0+6", "0 strip 0+6", "0 end"}));
}

TEST_F(GRIEmbeddedImageTest, WindowsAndStripsShowTheSamePixels) {
  m_tile.width = 17;
  m_tile.height = 13;
  for (const double mag : {1.0, 0.5, 0.25, 2.0}) {
    for (const double offset : {0.0, 3.0, 5.0, 6.0, 3.25}) {
      for (const gr_uint32 stripHeight : {1u, 3u, 8u, 64u}) {
        ASSERT_EQ(make({.xOffset = offset, .yOffset = offset + 1, .stripHeight = stripHeight}), 0u);
        gr_uint32 width = 0;
        gr_uint32 height = 0;
        ASSERT_EQ(m_embedded->getDimsAtMag(mag, width, height), 0u);
        const std::vector<gr_uint8> whole = decode({0, 0, double(width), double(height), mag});
        for (gr_uint32 left = 0; left < width; left += 3) {
          const gr_uint32 top = left % height;
          const std::vector<gr_uint8> part =
              decode({double(left), double(top), double(width - left), double(height - top), mag});
          for (gr_uint32 row = top; row < height; ++row) {
            for (gr_uint32 col = left; col < width; ++col) {
              ASSERT_EQ(part[(row - top) * (width - left) + col - left], whole[row * width + col])
                  << mag << " " << offset << " " << stripHeight << ": " << col << ", " << row;
            }
          }
        }
      }
    }
  }
}

TEST_F(GRIEmbeddedImageTest, AFailureOfTheImageIsHandedOnAndTheNextDecodeWorks) {
  m_tile.stripFailure = 4711;
  ASSERT_EQ(make({.yOffset = 5}), 0u);
  GRISceneBuffer buffer(m_embedded->getPixelProps(), 40, 30, nullptr);
  EXPECT_EQ(m_embedded->read({0, 0, 40, 30, 1}, buffer), 4711u);
  EXPECT_EQ(m_log.calls, (Calls{"0 begin 0+3", "0 strip 0+3", "0 end"}));
  EXPECT_EQ(m_embedded->read({0, 0, 40, 3, 1}, buffer), 0u);  // above the image
}

TEST_F(GRIEmbeddedImageTest, MapsASceneToTheImage) {
  ASSERT_EQ(make({.xOffset = 3, .yOffset = 2}), 0u);
  GRIScene clipped;
  EXPECT_TRUE(m_embedded->mapScene({5, 0, 100, 4, 1}, clipped));
  EXPECT_EQ(clipped, GRIScene(2, 0, 8, 2, 1));
  EXPECT_FALSE(m_embedded->mapScene({13, 0, 100, 4, 1}, clipped));
}

/// Can't tell how large it is.
class GRISizelessImage final : public GRIImageFilter {
 public:
  explicit GRISizelessImage(GR_STATUS status) : m_status(status) {}
  GR_STATUS getDimsAtMag(double, gr_uint32&, gr_uint32&) const override { return m_status; }

 private:
  GR_STATUS m_status;
};

TEST_F(GRIEmbeddedImageTest, OnlyAnImageWithoutTheMagnificationShowsNothing) {
  for (const GR_STATUS status : {GR_STATUS{3}, GR_STATUS{8}, GR_STATUS{4711}}) {
    GRUtilSmartPointer<GRIImageFilter> sizeless(gr_makeUnique<GRISizelessImage>(status).release());
    auto reader =
        GRUtilSmartPointer<GRITileReader>(gr_makeUnique<GRITileReader>(m_tile, 0, m_log).release());
    ASSERT_EQ(reader->initialize(), 0u);
    sizeless->initialize(reader.detach());
    m_embedded = GRUtilSmartPointer<GRIEmbeddedImage>(gr_makeUnique<GRIEmbeddedImage>().release());
    ASSERT_EQ(m_embedded->initialize(sizeless.detach(), 40, 30, 0, 0, 0.25, 4.0, nullptr, nullptr),
              0u);
    EXPECT_EQ(m_embedded->decodeBegin({0, 0, 40, 30, 1}), status == 3 ? 0u : status);
    EXPECT_FALSE(m_embedded->touchesImage());
  }
}

}  // namespace
