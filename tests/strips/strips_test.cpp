// A decode in strips of any height gives what a decode in one strip gives, and writes nothing else.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_imageFilter.h"
#include "image/gri_navigator.h"
#include "image/gri_sceneBuffer.h"
#include "nitf/nitf_imageManager.h"
#include "nitf/nitf_imageReader.h"
#include "tesra/tesra_imageReader.h"
#include "tests/support/gri_patternReader.h"
#include "tests/support/tg3_writer.h"

namespace {

constexpr gr_uint8 UNTOUCHED = 0xA5;
constexpr gr_uint32 ONE_STRIP = 0x7FFFFFFF;
constexpr gr_uint32 STRIP_HEIGHTS[] = {1, 2, 3, 7, 16, 63, 64, 65, 1000};

/// A scene's pixels with a margin around them, which no decode may touch.
class Picture {
 public:
  Picture(const GRIPixel& pixelProps, const GRIScene& scene)
      : m_numCols(static_cast<gr_uint32>(scene.getNumCols())),
        m_numRows(static_cast<gr_uint32>(scene.getNumRows())),
        m_buffer(pixelProps, m_numCols + 3, m_numRows + 3, nullptr) {
    for (gr_uint16 band = 0; band < m_buffer.getNumBands(); ++band) {
      std::memset(m_buffer.getTotalBandData(band), UNTOUCHED, planeBytes(band));
    }
  }

  GR_STATUS decode(GRIImageStage& stage, const GRIScene& scene, gr_uint32 stripHeight) {
    GR_RETURN_IF_FAILED(stage.setStripHeight(stripHeight));
    GRISceneBuffer window(m_buffer, 1, 2, m_numCols, m_numRows);
    return stage.read(scene, window);
  }

  bool operator==(const Picture& other) const {
    for (gr_uint16 band = 0; band < m_buffer.getNumBands(); ++band) {
      if (std::memcmp(m_buffer.getTotalBandData(band), other.m_buffer.getTotalBandData(band),
                      planeBytes(band)) != 0) {
        return false;
      }
    }
    return true;
  }

  bool isMarginUntouched() const {
    for (gr_uint16 band = 0; band < m_buffer.getNumBands(); ++band) {
      const gr_uint32 bytes = m_buffer.getBytesPerSample(band);
      for (gr_uint32 row = 0; row < m_numRows + 3; ++row) {
        for (gr_uint32 col = 0; col < m_numCols + 3; ++col) {
          const bool isInside = col >= 1 && col <= m_numCols && row >= 2 && row < m_numRows + 2;
          const auto* sample = static_cast<const gr_uint8*>(m_buffer.getSample(col, row, band));
          if (isInside) continue;
          if (std::any_of(sample, sample + bytes, [](gr_uint8 b) { return b != UNTOUCHED; })) {
            return false;
          }
        }
      }
    }
    return true;
  }

  template <typename T>
  T at(gr_uint32 col, gr_uint32 row, gr_uint16 band) const {
    T value;
    std::memcpy(&value, m_buffer.getSample(col + 1, row + 2, band), sizeof(value));
    return value;
  }

 private:
  size_t planeBytes(gr_uint16 band) const {
    return size_t{m_numCols + 3} * (m_numRows + 3) * m_buffer.getBytesPerSample(band);
  }

  gr_uint32 m_numCols;
  gr_uint32 m_numRows;
  GRISceneBuffer m_buffer;
};

/// A rectangle inside the image at a power-of-two magnification, with fractions, at least one pixel
/// large.
GRIScene randomScene(const GRIImageStage& stage, std::mt19937& random) {
  const double least = stage.getMinMagnification();
  const double most = std::min(stage.getMaxMagnification(), 4.0);
  const auto numHalvings = static_cast<unsigned>(std::log2(most / least));
  const double mag = std::ldexp(least, static_cast<int>(random() % (numHalvings + 1)));
  gr_uint32 width = 0, height = 0;
  EXPECT_EQ(stage.getDimsAtMag(mag, width, height), GR_STATUS_OK);
  const auto between = [&random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  const double left = between(0.0, width - 1.0), top = between(0.0, height - 1.0);
  const double right = between(left + 1.0, width), bottom = between(top + 1.0, height);
  return {left, top, right - left, bottom - top, mag};
}

void expectStripsToAgree(GRIImageStage& stage, const GRIScene& scene) {
  SCOPED_TRACE(testing::Message() << scene.getUpperLeftCol() << ", " << scene.getUpperLeftRow()
                                  << " size " << scene.getWidth() << " x " << scene.getHeight()
                                  << " at " << scene.getMag());
  Picture whole(stage.getPixelProps(), scene);
  ASSERT_EQ(whole.decode(stage, scene, ONE_STRIP), GR_STATUS_OK);
  EXPECT_TRUE(whole.isMarginUntouched());
  for (const gr_uint32 stripHeight : STRIP_HEIGHTS) {
    SCOPED_TRACE(stripHeight);
    Picture strips(stage.getPixelProps(), scene);
    ASSERT_EQ(strips.decode(stage, scene, stripHeight), GR_STATUS_OK);
    EXPECT_TRUE(strips == whole);
  }
}

void expectStripsToAgree(GRIImageStage& stage) {
  std::mt19937 random(1);
  expectStripsToAgree(stage, GRINavigator(stage));
  for (int i = 0; i < 12; ++i) expectStripsToAgree(stage, randomScene(stage, random));
}

// --- Sources -------------------------------------------------------------------------------------

TEST(StripsTest, OfAKnownFunctionAgreeForEveryTypeThroughFilters) {
  for (const GRIDataType type :
       {GRI_DATATYPE_UINT8, GRI_DATATYPE_SINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_SINT16,
        GRI_DATATYPE_UINT32, GRI_DATATYPE_SINT32, GRI_DATATYPE_FLOAT32, GRI_DATATYPE_FLOAT64,
        GRI_DATATYPE_UINT64, GRI_DATATYPE_SINT64}) {
    SCOPED_TRACE(type);
    GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
    ASSERT_EQ(reader->initialize(90, 150, {GRI_COLORSPACE_MULTISPECTRAL, 2, type}, 0.25, 2.0),
              GR_STATUS_OK);
    const GRUtilSmartPointer<GRIImageFilter> inner(new GRIImageFilter);
    const GRUtilSmartPointer<GRIImageFilter> outer(new GRIImageFilter);
    inner->initialize(reader.detach());
    outer->initialize(inner.retained());
    expectStripsToAgree(*outer);
  }
}

TEST(StripsTest, OfAKnownFunctionHoldTheFunction) {
  const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  ASSERT_EQ(reader->initialize(90, 150, {GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16}),
            GR_STATUS_OK);
  const GRIScene scene(10.4, 20.6, 50, 100, 1.0);
  Picture picture(reader->getPixelProps(), scene);
  ASSERT_EQ(picture.decode(*reader, scene, 7), GR_STATUS_OK);
  for (gr_uint16 band = 0; band < 3; ++band) {
    for (gr_uint32 row = 0; row < 100; ++row) {
      for (gr_uint32 col = 0; col < 50; ++col) {
        ASSERT_EQ(picture.at<gr_uint16>(col, row, band),
                  GRIPatternReader::valueAt<gr_uint16>(col + 10, row + 21, band));
      }
    }
  }
}

TEST(StripsTest, OfANitfFileAgree) {
  const GRUtilSmartPointer<NITFImageManager> manager(new NITFImageManager);
  ASSERT_EQ(manager->initialize(GRFileSpec(GRI_SAMPLE), false), GR_STATUS_OK);
  GRUtilSmartPointer<NITFImageReader> reader;
  ASSERT_EQ(manager->createReader(reader, 1), GR_STATUS_OK);
  expectStripsToAgree(*reader);
}

/// A TG3 file of an image of random rectangles, on which every strip differs.
class TesraStripsTest : public testing::Test {
 protected:
  void open(const TG3TestImage& image) {
    m_samples.assign(image.numComponents,
                     std::vector<gr_int32>(size_t{image.width} * image.height));
    std::mt19937 random(2);
    for (auto& plane : m_samples) {
      for (gr_uint32 i = 0; i < plane.size(); ++i) {
        plane[i] = static_cast<gr_int32>(
            (i % image.width / 5 + i / image.width / 3 * 7 + random() % 4) % 256);
      }
    }
    m_stream = GRIOStreamUtils::openMemStream();
    const std::vector<gr_uint8> bytes = tg3_writeImage(image, m_samples);
    ASSERT_EQ(m_stream->write(bytes.data(), static_cast<gr_uint32>(bytes.size())), bytes.size());
    ASSERT_EQ(m_stream->seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
    m_reader = GRUtilSmartPointer<TesraImageReader>(new TesraImageReader);
    ASSERT_EQ(m_reader->initialize(*m_stream, nullptr, TESRA_MEMORY_DEFAULT, TESRA_STREAM_CLOSE),
              GR_STATUS_OK);
  }
  TesraImageReader& reader() { return *m_reader; }
  const std::vector<std::vector<gr_int32>>& samples() const { return m_samples; }

 private:
  std::vector<std::vector<gr_int32>> m_samples;
  std::unique_ptr<GRIODynamicMemStream> m_stream;  // outlives the reader
  GRUtilSmartPointer<TesraImageReader> m_reader;
};

TEST_F(TesraStripsTest, AgreeAtEveryMagnification) {
  open({.width = 157, .height = 203, .numLevels = 3, .blockSize = 32});
  expectStripsToAgree(reader());
}

TEST_F(TesraStripsTest, HoldWhatWasCoded) {
  open({.width = 100, .height = 130, .numLevels = 2, .blockSize = 32});
  const GRIScene scene(0, 0, 100, 130, 1.0);
  Picture picture(reader().getPixelProps(), scene);
  ASSERT_EQ(picture.decode(reader(), scene, 5), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < 130; ++row) {
    for (gr_uint32 col = 0; col < 100; ++col) {
      ASSERT_EQ(picture.at<gr_uint8>(col, row, 0), samples()[0][row * 100 + col])
          << col << ", " << row;
    }
  }
}

}  // namespace
