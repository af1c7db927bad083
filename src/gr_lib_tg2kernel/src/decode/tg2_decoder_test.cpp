// Scenes decoded strip by strip, held to a literal decode of the whole image.

#include "gr_lib_tg2kernel/src/decode/tg2_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <new>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_fileDBInfo.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "image/gri_delegates.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"
#include "tests/support/tg2_forwardWavelet.h"
#include "tests/support/tg2_literalDecode.h"
#include "tests/support/tg2_writer.h"
#include "tests/support/tg3_memoryFile.h"

namespace {

/// Bins that are mostly small, of an image that is mostly light.
TG2TestBins randomBins(const TG2TestImage& image, std::mt19937& random) {
  TG2TestBins bins(image.numBands);
  for (gr_uint32 band = 0; band < image.numBands; ++band) {
    for (const TG2TestSubband& of : tg2_subbandsOf(image.width, image.height, image.numLevels)) {
      const bool isLowest = bins[band].empty() && band == 0;
      std::vector<gr_int32>& plane = bins[band].emplace_back(size_t{of.width} * of.height);
      for (gr_int32& bin : plane) {
        bin = static_cast<gr_int32>(random() % (random() % 3 == 0 ? 61 : 3));
        if (random() % 2 == 0) bin = -bin;
        if (isLowest) bin += 100;
      }
    }
  }
  return bins;
}

GRIPixel floatPixel(gr_uint32 numBands) {
  return {numBands == 1   ? GRI_COLORSPACE_GRAYSCALE
          : numBands == 3 ? GRI_COLORSPACE_RGB
                          : GRI_COLORSPACE_CMYK,
          static_cast<gr_uint16>(numBands), GRI_DATATYPE_FLOAT32};
}

/// A scene's samples of single precision.
struct Scene {
  Scene(gr_uint32 numBands, gr_uint32 cols, gr_uint32 rows, float initial)
      : m_pixel(floatPixel(numBands)), m_cols(cols), m_rows(rows) {
    samples.assign(numBands, std::vector<float>(size_t{cols} * rows, initial));
    for (auto& plane : samples) m_planes.push_back(plane.data());
  }
  /// A window on some rows of the scene.
  std::unique_ptr<GRISceneBuffer> strip(gr_uint32 row, gr_uint32 rows) {
    return std::make_unique<GRISceneBuffer>(m_pixel, m_cols, m_rows, 0, row, m_cols,
                                            std::min(rows, m_rows - row), m_planes.data());
  }

  std::vector<std::vector<float>> samples;

 private:
  GRIPixel m_pixel;
  gr_uint32 m_cols;
  gr_uint32 m_rows;
  std::vector<void*> m_planes;
};

/// A file in memory with its decoder.
class Picture {
 public:
  Picture(const TG2TestImage& image, const TG2TestBins& bins)
      : Picture(image, tg2_writeBins(image, bins).bytes) {}
  Picture(const TG2TestImage& image, const std::vector<gr_uint8>& bytes)
      : m_numBands(image.numBands),
        m_stream(tg3_memoryStream(bytes)),
        m_db(*m_stream, nullptr, image.hasDither, true, false),
        m_status(m_db.initialize()),
        m_decoder(m_db) {
    EXPECT_EQ(m_status, GR_STATUS_OK);
  }

  /// Decodes a scene; ends it whatever comes.
  GR_STATUS decode(const TG2Rect& window, gr_int32 level, gr_uint32 stripHeight, Scene& scene) {
    GR_RETURN_IF_FAILED(m_decoder.decodeBegin(window, level, stripHeight));
    const GR_STATUS status = decodeStrips(window, stripHeight, scene);
    const GR_STATUS endStatus = m_decoder.decodeEnd();
    return GR_SUCCESS(status) ? endStatus : status;
  }
  GR_STATUS decodeStrips(const TG2Rect& window, gr_uint32 stripHeight, Scene& scene) {
    const auto rows = static_cast<gr_uint32>(window.getHeight());
    for (gr_uint32 row = 0; row < rows; row += stripHeight) {
      GR_RETURN_IF_FAILED(m_decoder.decodeStrip(*scene.strip(row, stripHeight)));
    }
    return GR_STATUS_OK;
  }
  Scene sceneFor(const TG2Rect& window, float initial = -1.0F) const {
    return {m_numBands, static_cast<gr_uint32>(window.getWidth()),
            static_cast<gr_uint32>(window.getHeight()), initial};
  }
  TG2Decoder& decoder() { return m_decoder; }
  TG2DBInfo& db() { return m_db; }

 private:
  gr_uint32 m_numBands;
  std::unique_ptr<GRIOStreamInf> m_stream;
  TG2FileDBInfo m_db;
  GR_STATUS m_status;
  TG2Decoder m_decoder;
};

using BandBits = std::vector<std::vector<gr_uint32>>;
BandBits bitsOf(const std::vector<std::vector<float>>& bands) {
  BandBits bits;
  for (const auto& band : bands) {
    std::vector<gr_uint32>& out = bits.emplace_back();
    for (const float value : band) out.push_back(std::bit_cast<gr_uint32>(value));
  }
  return bits;
}

/// The image as it is at a level, all bands.
std::vector<TG2LiteralPlane> literal(const TG2TestImage& image, const TG2TestBins& bins,
                                     gr_int32 level) {
  std::vector<TG2LiteralPlane> planes;
  for (gr_uint32 band = 0; band < image.numBands; ++band) {
    planes.push_back(tg2_literalPlane(image, bins, band, level));
  }
  return planes;
}

TG2TestRect testRect(const TG2Rect& rect) { return {rect.x0, rect.y0, rect.x1, rect.y1}; }

void expectCrop(Picture& picture, const std::vector<TG2LiteralPlane>& whole, const TG2Rect& window,
                gr_int32 level, gr_uint32 stripHeight) {
  SCOPED_TRACE(testing::Message() << "level " << level << ", strips of " << stripHeight
                                  << ", window " << window.x0 << "," << window.y0 << " to "
                                  << window.x1 << "," << window.y1);
  Scene scene = picture.sceneFor(window);
  ASSERT_EQ(picture.decode(window, level, stripHeight, scene), GR_STATUS_OK);
  ASSERT_EQ(bitsOf(scene.samples), bitsOf(tg2_literalSamples(whole, testRect(window))));
}

TG2Rect randomWindow(const TG2LiteralPlane& whole, std::mt19937& random) {
  const auto width = static_cast<gr_int32>(whole.width);
  const auto height = static_cast<gr_int32>(whole.height);
  TG2Rect window;
  window.x0 = static_cast<gr_int32>(random() % width);
  window.y0 = static_cast<gr_int32>(random() % height);
  window.x1 = window.x0 + static_cast<gr_int32>(random() % (width - window.x0));
  window.y1 = window.y0 + static_cast<gr_int32>(random() % (height - window.y0));
  return window;
}

TG2TestImage randomImage(std::mt19937& random) {
  TG2TestImage image;
  image.width = 1 + random() % 60;
  image.height = 1 + random() % 60;
  image.numBands = random() % 2 == 0 ? 1 : 3;
  image.numLevels = random() % 5;
  if (random() % 2 == 0) image.blockWidth = image.blockHeight = 3 + random() % 20;
  if (random() % 4 != 0) {
    image.recordWidth = 1 + random() % 16;
    image.recordHeight = 1 + random() % 16;
  }
  image.hasDither = random() % 2 == 0;
  image.noiseOrigin = {static_cast<gr_uint8>(random()), static_cast<gr_uint8>(random())};
  image.binWidth = 1.0F + static_cast<float>(random() % 100) / 64.0F;
  return image;
}

TEST(TG2DecoderTest, AnyWindowInStripsOfAnyHeightIsTheCropOfTheWhole) {
  std::mt19937 random(841);
  for (int turn = 0; turn < 60; ++turn) {
    const TG2TestImage image = randomImage(random);
    SCOPED_TRACE(testing::Message() << "image " << turn << ", " << image.width << "x"
                                    << image.height << ", levels " << image.numLevels);
    const TG2TestBins bins = randomBins(image, random);
    Picture picture(image, bins);
    for (gr_int32 level = -2; level <= static_cast<gr_int32>(image.numLevels); ++level) {
      const std::vector<TG2LiteralPlane> whole = literal(image, bins, level);
      for (const gr_uint32 stripHeight : {1U, 2U, 3U, 7U, 16U, 64U}) {
        ASSERT_NO_FATAL_FAILURE(
            expectCrop(picture, whole, randomWindow(whole[0], random), level, stripHeight));
      }
      const TG2Rect all = {0, 0, static_cast<gr_int32>(whole[0].width - 1),
                           static_cast<gr_int32>(whole[0].height - 1)};
      ASSERT_NO_FATAL_FAILURE(expectCrop(picture, whole, all, level, 1 + random() % 20));
    }
  }
}

TEST(TG2DecoderTest, EveryWindowOfSmallImagesIsTheCropOfTheWhole) {
  std::mt19937 random(11);
  for (const auto& [width, height] :
       {std::pair(1, 1), std::pair(1, 7), std::pair(6, 1), std::pair(2, 5), std::pair(7, 8)}) {
    TG2TestImage image;
    image.width = static_cast<gr_uint32>(width);
    image.height = static_cast<gr_uint32>(height);
    image.recordWidth = image.recordHeight = 3;
    const TG2TestBins bins = randomBins(image, random);
    Picture picture(image, bins);
    for (gr_int32 level = -1; level <= 2; ++level) {
      const std::vector<TG2LiteralPlane> whole = literal(image, bins, level);
      TG2Rect window;
      for (window.x0 = 0; window.x0 < whole[0].width; window.x0 += level < 0 ? 3 : 1) {
        for (window.x1 = window.x0; window.x1 < whole[0].width; ++window.x1) {
          for (window.y0 = 0; window.y0 < whole[0].height; window.y0 += level < 0 ? 3 : 1) {
            for (window.y1 = window.y0; window.y1 < whole[0].height; ++window.y1) {
              ASSERT_NO_FATAL_FAILURE(expectCrop(picture, whole, window, level, 2));
            }
          }
        }
      }
    }
  }
}

TEST(TG2DecoderTest, WhatIsNotCodedIsZerosWithoutDither) {
  std::mt19937 random(8);
  for (int turn = 0; turn < 30; ++turn) {
    SCOPED_TRACE(turn);
    TG2TestImage image = randomImage(random);
    image.width += 20;
    image.height += 20;
    image.hasDither = true;
    image.blockWidth = image.blockHeight = 6;
    const auto every = [&random](gr_uint32 n) { return random() % n; };
    image.isSubbandAbsent = [absent = every(20)](gr_uint32 subband) { return subband == absent; };
    image.hasEmptyTable = [empty = every(20)](gr_uint32 subband) { return subband == empty; };
    // The last block of a row leaves the support smaller than the subband.
    image.isBandAbsent = [rest = every(3)](gr_uint32 subband, gr_uint32 block, gr_uint32 band) {
      return (subband + 2 * block + band) % 3 == rest;
    };
    const TG2TestBins bins = randomBins(image, random);
    Picture picture(image, bins);
    for (gr_int32 level = 0; level <= static_cast<gr_int32>(image.numLevels); ++level) {
      const std::vector<TG2LiteralPlane> whole = literal(image, bins, level);
      for (const gr_uint32 stripHeight : {4U, 64U}) {
        ASSERT_NO_FATAL_FAILURE(
            expectCrop(picture, whole, randomWindow(whole[0], random), level, stripHeight));
      }
    }
  }
}

TEST(TG2DecoderTest, BlocksThatAreMissingLeaveZeros) {
  std::mt19937 random(9);
  for (gr_uint32 missing = 0; missing < 9; ++missing) {
    SCOPED_TRACE(missing);
    TG2TestImage image;
    image.width = image.height = 30;
    image.numLevels = 1;
    image.blockWidth = image.blockHeight = 5;
    image.recordWidth = 2;
    image.recordHeight = 3;
    image.numBands = 3;
    image.isBlockAbsent = [missing](gr_uint32, gr_uint32 block) { return block == missing; };
    const TG2TestBins bins = randomBins(image, random);
    // The literal decode numbers blocks by their place, the file without the missing ones.
    TG2TestImage literalImage = image;
    Picture picture(image, bins);
    const std::vector<TG2LiteralPlane> whole = literal(literalImage, bins, 0);
    ASSERT_NO_FATAL_FAILURE(expectCrop(picture, whole, {0, 0, 29, 29}, 0, 8));
    ASSERT_NO_FATAL_FAILURE(expectCrop(picture, whole, {5, 8, 22, 29}, 0, 5));
  }
}

TG2TestImage smallImage() {
  TG2TestImage image;
  image.width = 40;
  image.height = 50;
  image.recordWidth = image.recordHeight = 8;
  return image;
}

class TG2DecoderSceneTest : public testing::Test {
 protected:
  std::mt19937 m_random{77};
  TG2TestImage m_image = smallImage();
  TG2TestBins m_bins = randomBins(m_image, m_random);
  Picture m_picture{m_image, m_bins};
  std::vector<TG2LiteralPlane> m_whole = literal(m_image, m_bins, 0);
  static constexpr TG2Rect ALL = {0, 0, 39, 49};
};

TEST_F(TG2DecoderSceneTest, ASceneBeyondTheImageIsCut) {
  const TG2Rect window = {30, 40, 49, 69};
  Scene scene = m_picture.sceneFor(window);
  ASSERT_EQ(m_picture.decode(window, 0, 16, scene), GR_STATUS_OK);
  const auto inside = bitsOf(tg2_literalSamples(m_whole, {30, 40, 39, 49}));
  const auto actual = bitsOf(scene.samples);
  for (size_t y = 0; y < 30; ++y) {
    for (size_t x = 0; x < 20; ++x) {
      const bool isInside = x < 10 && y < 10;
      EXPECT_EQ(actual[0][y * 20 + x],
                isInside ? inside[0][y * 10 + x] : std::bit_cast<gr_uint32>(-1.0F))
          << x << "," << y;
    }
  }
}

TEST_F(TG2DecoderSceneTest, CountsItsStripsAndStopsBehindTheLast) {
  TG2Decoder& decoder = m_picture.decoder();
  ASSERT_EQ(decoder.decodeBegin(ALL, 0, 16), GR_STATUS_OK);
  EXPECT_EQ(decoder.getNumStrips(), 4u);
  Scene scene = m_picture.sceneFor(ALL);
  ASSERT_EQ(m_picture.decodeStrips(ALL, 16, scene), GR_STATUS_OK);
  EXPECT_EQ(decoder.getCurrentStrip(), 4u);
  Scene untouched = m_picture.sceneFor(ALL);
  EXPECT_EQ(decoder.decodeStrip(*untouched.strip(0, 16)), GR_STATUS_OK);
  EXPECT_EQ(untouched.samples[0], std::vector<float>(size_t{40} * 50, -1.0F));
  EXPECT_EQ(decoder.decodeEnd(), GR_STATUS_OK);
}

TEST_F(TG2DecoderSceneTest, KeepsNothingForANextStripWhereThereIsNone) {
  TG2Decoder& decoder = m_picture.decoder();
  Scene scene = m_picture.sceneFor(ALL);
  ASSERT_EQ(decoder.decodeBegin(ALL, 0, 50), GR_STATUS_OK);
  ASSERT_EQ(decoder.decodeStrip(*scene.strip(0, 50)), GR_STATUS_OK);
  EXPECT_FALSE(decoder.keepsForNextStrip());
  ASSERT_EQ(decoder.decodeBegin(ALL, 0, 25), GR_STATUS_OK);
  ASSERT_EQ(decoder.decodeStrip(*scene.strip(0, 25)), GR_STATUS_OK);
  EXPECT_TRUE(decoder.keepsForNextStrip());
  ASSERT_EQ(decoder.decodeStrip(*scene.strip(25, 25)), GR_STATUS_OK);
  EXPECT_FALSE(decoder.keepsForNextStrip());
  EXPECT_EQ(decoder.decodeEnd(), GR_STATUS_OK);
}

TEST_F(TG2DecoderSceneTest, ANewSceneClearsAnUnfinishedOne) {
  m_picture.db().setShared(true);  // its mutex would hang if it were locked twice
  TG2Decoder& decoder = m_picture.decoder();
  ASSERT_EQ(decoder.decodeBegin(ALL, 0, 16), GR_STATUS_OK);
  ASSERT_EQ(decoder.decodeBegin(ALL, 0, 16), GR_STATUS_OK);
  Scene scene = m_picture.sceneFor(ALL);
  ASSERT_EQ(decoder.decodeStrip(*scene.strip(0, 16)), GR_STATUS_OK);
  ASSERT_EQ(decoder.decodeStrip(*scene.strip(16, 16)), GR_STATUS_OK);
  // Records would go on where the unfinished scene left them.
  ASSERT_NO_FATAL_FAILURE(expectCrop(m_picture, m_whole, {3, 5, 38, 44}, 0, 9));
  EXPECT_EQ(m_picture.db().lock(), GR_STATUS_OK);  // the scene's end has unlocked it
  EXPECT_EQ(m_picture.db().unlock(), GR_STATUS_OK);
}

TEST_F(TG2DecoderSceneTest, ADecoderThatGoesAwayUnlocksASharedIndex) {
  m_picture.db().setShared(true);
  {
    TG2Decoder decoder(m_picture.db());
    ASSERT_EQ(decoder.decodeBegin(ALL, 0, 16), GR_STATUS_OK);
  }
  EXPECT_EQ(m_picture.db().lock(), GR_STATUS_OK);
  EXPECT_EQ(m_picture.db().unlock(), GR_STATUS_OK);
}

/// Stops, or throws something, when it has been asked so many times.
class Interrupt : public GRIInterruptDelegate {
 public:
  explicit Interrupt(int atPoll) : m_left(atPoll) {}
  GR_STATUS getInterruptStatus() override {
    if (m_left-- > 0) return 0;
    if (throws == 1) throw 42;
    if (throws == 2) throw std::bad_alloc();
    return 7;
  }
  int throws = 0;

 private:
  int m_left;
};

TEST_F(TG2DecoderSceneTest, AnInterruptStopsItAtAnyPoint) {
  int polls = 0;
  for (;; ++polls) {
    Interrupt interrupt(polls);
    m_picture.decoder().setInterrupt(&interrupt);
    Scene scene = m_picture.sceneFor(ALL);
    const GR_STATUS status = m_picture.decode(ALL, 0, 16, scene);
    if (status == GR_STATUS_OK) break;
    ASSERT_EQ(status, 8040u) << polls;
  }
  // Around each record, and at each row of each level.
  EXPECT_GT(polls, 2 * 4 * 6);
  m_picture.decoder().setInterrupt(nullptr);
  ASSERT_NO_FATAL_FAILURE(expectCrop(m_picture, m_whole, ALL, 0, 16));
}

TEST_F(TG2DecoderSceneTest, TheStripBehindOneThatFailedIsWhole) {
  TG2Decoder& decoder = m_picture.decoder();
  const auto expected = bitsOf(tg2_literalSamples(m_whole, {0, 32, 39, 49}));
  for (int polls = 0;; ++polls) {
    SCOPED_TRACE(polls);
    Scene scene = m_picture.sceneFor(ALL);
    ASSERT_EQ(decoder.decodeBegin(ALL, 0, 16), GR_STATUS_OK);
    ASSERT_EQ(decoder.decodeStrip(*scene.strip(0, 16)), GR_STATUS_OK);
    Interrupt interrupt(polls);
    decoder.setInterrupt(&interrupt);
    const GR_STATUS status = decoder.decodeStrip(*scene.strip(16, 16));
    decoder.setInterrupt(nullptr);
    if (status == GR_STATUS_OK) break;
    ASSERT_EQ(status, 8040u);
    ASSERT_EQ(decoder.decodeStrip(*scene.strip(32, 16)), GR_STATUS_OK);
    ASSERT_EQ(decoder.decodeStrip(*scene.strip(48, 16)), GR_STATUS_OK);
    const auto actual = bitsOf(scene.samples);
    for (size_t band = 0; band < actual.size(); ++band) {
      const auto rows =
          std::vector(actual[band].begin() + std::ptrdiff_t{32} * 40, actual[band].end());
      ASSERT_EQ(rows, expected[band]) << "band " << band;
    }
  }
  EXPECT_EQ(decoder.decodeEnd(), GR_STATUS_OK);
}

TEST_F(TG2DecoderSceneTest, OtherExceptionsBecomeStatuses) {
  Interrupt interrupt(10);
  interrupt.throws = 1;
  m_picture.decoder().setInterrupt(&interrupt);
  Scene scene = m_picture.sceneFor(ALL);
  EXPECT_EQ(m_picture.decode(ALL, 0, 16, scene), 8114u);
  Interrupt outOfMemory(10);
  outOfMemory.throws = 2;
  m_picture.decoder().setInterrupt(&outOfMemory);
  EXPECT_EQ(m_picture.decode(ALL, 0, 16, scene), 8u);
  m_picture.decoder().setInterrupt(nullptr);
  ASSERT_NO_FATAL_FAILURE(expectCrop(m_picture, m_whole, ALL, 0, 16));
}

TEST_F(TG2DecoderSceneTest, FourBandsOfSinglePrecisionLeaveTheBufferAsItWas) {
  m_image.numBands = 4;
  Picture picture(m_image, randomBins(m_image, m_random));
  Scene scene = picture.sceneFor(ALL, 3.0F);
  EXPECT_EQ(picture.decode(ALL, 0, 16, scene), GR_STATUS_OK);
  EXPECT_EQ(scene.samples, std::vector(4, std::vector<float>(size_t{40} * 50, 3.0F)));
}

TEST_F(TG2DecoderSceneTest, ADamagedRecordIsReportedAndTheRestDecodes) {
  TG2TestFile file = tg2_writeBins(m_image, m_bins);
  const auto band = std::ranges::find(file.layout.bands, 4u, &TG2TestLayout::Band::subband);
  ASSERT_NE(band, file.layout.bands.end());
  // A finest subband is 20 x 25: records 0 to 2 are at its top, 9 to 11 at its bottom.
  file.bytes[band->records.at(9) + 1] = 0xA4;
  Picture picture(m_image, file.bytes);
  Scene scene = picture.sceneFor(ALL);
  EXPECT_EQ(picture.decode(ALL, 0, 16, scene), 8021u);
  ASSERT_NO_FATAL_FAILURE(expectCrop(picture, m_whole, {0, 0, 39, 30}, 0, 16));
  ASSERT_NO_FATAL_FAILURE(expectCrop(picture, literal(m_image, m_bins, 1), {0, 0, 19, 24}, 1, 16));
}

/// An index of an image without any data, whose operations fail as told.
class EmptyDBInfo : public TG2DBInfo {
 public:
  EmptyDBInfo(gr_uint32 width, gr_uint32 height, gr_uint32 numLevels) : TG2DBInfo(nullptr, true) {
    m_width = width;
    m_height = height;
    m_numLevels = numLevels;
    m_numBands = 1;
    EXPECT_EQ(m_subbands.allocate(getNumSubbands()), GR_STATUS_OK);
  }
  std::unique_ptr<TG2DBInfo> clone() override { return nullptr; }
  GR_STATUS lock() override { return lockStatus; }
  GR_STATUS unlock() override { return unlockStatus; }
  GR_STATUS openStream() override { return openStatus; }
  GR_STATUS closeStream() override { return closeStatus; }

  GR_STATUS lockStatus = 0, unlockStatus = 0, openStatus = 0, closeStatus = 0;
};

TEST(TG2DecoderStreamTest, ReportsWhatFailsAroundAStrip) {
  EmptyDBInfo db(10, 10, 1);
  db.setShared(true);
  TG2Decoder decoder(db);
  Scene scene(1, 10, 10, -1.0F);
  const TG2Rect all = {0, 0, 9, 9};

  db.lockStatus = 11;
  EXPECT_EQ(decoder.decodeBegin(all, 0, 5), 11u);
  db.lockStatus = 0;
  ASSERT_EQ(decoder.decodeBegin(all, 0, 5), GR_STATUS_OK);
  db.openStatus = 12;
  EXPECT_EQ(decoder.decodeStrip(*scene.strip(0, 5)), 12u);
  EXPECT_EQ(decoder.getCurrentStrip(), 0u);
  db.openStatus = 0;
  EXPECT_EQ(decoder.decodeStrip(*scene.strip(0, 5)), GR_STATUS_OK);
  db.closeStatus = 13;
  EXPECT_EQ(decoder.decodeStrip(*scene.strip(5, 5)), 13u);
  EXPECT_EQ(decoder.getCurrentStrip(), 2u);
  db.unlockStatus = 14;
  EXPECT_EQ(decoder.decodeEnd(), 14u);
}

TEST(TG2DecoderStreamTest, NeedsNoMemoryForAnImageThatIsOnlyClaimed) {
  const gr_uint32 size = 0x7FFFFFFF;
  EmptyDBInfo db(size, size, 31);
  TG2Decoder decoder(db);
  const auto last = static_cast<gr_int32>(size - 1);
  Scene scene(1, 10, 10, -1.0F);
  for (const gr_int32 level : {0, 1, 15, 31, -1, -20}) {
    SCOPED_TRACE(level);
    const gr_int32 end = level > 0 ? last >> level : last;
    const gr_int32 first = std::max(end - 9, 0);
    std::ranges::fill(scene.samples[0], -1.0F);
    ASSERT_EQ(decoder.decodeBegin({first, first, end, end}, level, 4), GR_STATUS_OK);
    EXPECT_EQ(decoder.getNumStrips(), static_cast<gr_uint32>(end - first) / 4 + 1);
    for (gr_uint32 row = 0; row < 10; row += 4) {
      ASSERT_EQ(decoder.decodeStrip(*scene.strip(row, 4)), GR_STATUS_OK);
    }
    EXPECT_EQ(scene.samples[0][0], 0.5F);
  }
}

}  // namespace
