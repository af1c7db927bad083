// Pictures of generation 2 from samples to bytes and back: what the wavelet, the colours and the
// quantiser of an encoder lose is all that is lost, in windows, strips, crops and at every scale.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/tesra_picture.h"
#include "tests/support/tg2_forwardWavelet.h"
#include "tests/support/tg2_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using Samples = std::vector<std::vector<float>>;  // band after band

constexpr gr_uint32 BYTES = 0;
constexpr gr_uint32 FLOATS = 1;
constexpr gr_uint32 WORDS = 2;

size_t bytesPerSample(const TG2TestImage& image) {
  return image.dataType == BYTES ? 1 : image.dataType == WORDS ? 2 : 4;
}

// Samples of a decode as numbers.
std::vector<double> numbersOf(const TG2TestImage& image, const Bytes& bytes) {
  std::vector<double> numbers;
  const size_t width = bytesPerSample(image);
  for (size_t at = 0; at < bytes.size(); at += width) {
    if (image.dataType == FLOATS) {
      float value = 0;
      std::memcpy(&value, &bytes[at], sizeof(value));
      numbers.push_back(double{value});
    } else {
      numbers.push_back(width == 1 ? bytes[at] : bytes[at] + 256 * bytes[at + 1]);
    }
  }
  return numbers;
}

// An image of any kind. Its lowest subband has five rows and columns or more: shorter lines don't
// come back from the wavelet.
TG2TestImage randomImage(std::mt19937& random) {
  TG2TestImage image;
  image.numLevels = random() % 4;
  image.width = (5U << image.numLevels) + random() % 60;
  image.height = (5U << image.numLevels) + random() % 60;
  constexpr gr_uint32 BAND_COUNTS[] = {1, 3, 4};
  image.numBands = BAND_COUNTS[random() % 3];
  constexpr gr_uint32 TYPES[] = {BYTES, FLOATS, WORDS};
  image.dataType = image.numBands == 4 ? (random() % 2 == 0 ? BYTES : WORDS) : TYPES[random() % 3];
  if (random() % 4 != 0) image.blockWidth = 1 + random() % 40;
  if (random() % 4 != 0) image.blockHeight = 1 + random() % 40;
  if (random() % 4 != 0) image.recordWidth = 1 + random() % 20;
  if (random() % 4 != 0) image.recordHeight = 1 + random() % 20;
  image.coding.hasEmptyRecords = random() % 2 == 0;
  image.coding.usesEscapes = random() % 4 == 0;
  image.coding.writesZeros = random() % 4 == 0;
  image.coding.writesNothings = random() % 4 == 0;
  image.coding.overruns = random() % 2 == 0;
  image.coding.padsWithOnes = random() % 2 == 0;
  image.coding.allowsAllOnes = random() % 2 == 0;
  image.coding.hasDeepCodes = random() % 3 == 0;
  image.hasDither = random() % 2 == 0;
  image.noiseOrigin = {static_cast<gr_uint8>(random()), static_cast<gr_uint8>(random())};
  image.hasMetadata = image.dataType != BYTES || !image.hasDither || random() % 2 == 0;
  image.reversesBlocks = random() % 4 == 0;
  return image;
}

// Whole numbers from 0 to 200, smooth or noisy.
Samples randomSamples(const TG2TestImage& image, std::mt19937& random) {
  const bool isNoise = random() % 2 == 0;
  Samples samples(image.numBands);
  for (size_t band = 0; band < samples.size(); ++band) {
    for (gr_uint32 i = 0; i < image.width * image.height; ++i) {
      const gr_uint32 smooth = i % image.width + i / image.width * 2 + random() % 3;
      samples[band].push_back(static_cast<float>((isNoise ? random() : smooth + 50 * band) % 201));
    }
  }
  return samples;
}

std::string describe(int number, const TG2TestImage& image) {
  std::ostringstream text;
  text << "case " << number << ": " << image.width << " x " << image.height << " x "
       << image.numBands << " type " << image.dataType << " levels " << image.numLevels
       << " blocks " << image.blockWidth << " x " << image.blockHeight << " records "
       << image.recordWidth << " x " << image.recordHeight;
  return text.str();
}

void expectNear(const TG2TestImage& image, const Samples& samples, const Bytes& bytes,
                double tolerance) {
  const std::vector<double> numbers = numbersOf(image, bytes);
  const double offset = image.dataType == FLOATS ? 0.5 : 0.0;
  size_t at = 0;
  double worst = 0.0;
  for (const std::vector<float>& band : samples) {
    for (const float sample : band) {
      worst = std::max(worst, std::abs(numbers[at++] - offset - double{sample}));
    }
  }
  EXPECT_EQ(at, numbers.size());
  EXPECT_LE(worst, tolerance);
}

TEST(TG2DecodeTest, GivesBackWhatWasCodedInNarrowBins) {
  std::mt19937 random(201);
  for (int i = 0; i < 80; ++i) {
    TG2TestImage image = randomImage(random);
    // Inks are what is missing from the largest sample, which would need too many narrow bins.
    if (image.numBands == 4) image.dataType = BYTES;
    image.binWidth = image.numBands == 4 ? 0.05F : 0.1F;
    SCOPED_TRACE(describe(i, image));
    const Samples samples = randomSamples(image, random);
    TesraPicture picture(tg2_writeImage(image, samples).bytes);
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    Bytes bytes;
    ASSERT_EQ(picture.decode(1, 0, 0, image.width, image.height, bytes), GR_STATUS_OK);
    // Whole numbers come back as they were; the error of the others is that of the bins.
    expectNear(image, samples, bytes, image.dataType == FLOATS ? 0.3 : 0.0);
  }
}

TEST(TG2DecodeTest, LosesMoreInWiderBinsButNeverMoreThanTheyAllow) {
  std::mt19937 random(202);
  for (int i = 0; i < 20; ++i) {
    TG2TestImage image = randomImage(random);
    image.dataType = WORDS;
    image.hasMetadata = true;
    SCOPED_TRACE(describe(i, image));
    Samples samples = randomSamples(image, random);
    for (std::vector<float>& band : samples) {
      for (float& sample : band) sample *= 300.0F;
    }
    image.binWidth = 30.0F;
    TesraPicture picture(tg2_writeImage(image, samples).bytes);
    Bytes bytes;
    ASSERT_EQ(picture.decode(1, 0, 0, image.width, image.height, bytes), GR_STATUS_OK);
    expectNear(image, samples, bytes, image.numBands == 1 ? 80.0 : 240.0);
  }
}

TEST(TG2DecodeTest, GivesBackEachBandInBinsOfItsOwnWidth) {
  std::mt19937 random(203);
  TG2TestImage image = randomImage(random);
  image.blockWidth = image.blockHeight = 9;
  image.binWidthOf = [](gr_uint32 subband, gr_uint32 block, gr_uint32 band) {
    return 0.05F + 0.01F * static_cast<float>((subband + 2 * block + 3 * band) % 8);
  };
  const Samples samples = randomSamples(image, random);
  TesraPicture picture(tg2_writeImage(image, samples).bytes);
  Bytes bytes;
  ASSERT_EQ(picture.decode(1, 0, 0, image.width, image.height, bytes), GR_STATUS_OK);
  expectNear(image, samples, bytes, image.dataType == FLOATS ? 0.3 : 0.0);
}

TEST(TG2DecodeTest, ShowsAtAReducedScaleTheLowSubbandOfTheEncoder) {
  std::mt19937 random(204);
  for (int i = 0; i < 20; ++i) {
    TG2TestImage image = randomImage(random);
    image.numBands = 1;
    image.dataType = FLOATS;
    image.hasMetadata = true;
    image.binWidth = 0.2F;
    SCOPED_TRACE(describe(i, image));
    Samples samples = randomSamples(image, random);
    for (float& sample : samples[0]) sample += 500.0F;  // no part of the picture is below 0
    TesraPicture picture(tg2_writeImage(image, samples).bytes);
    for (gr_uint32 level = 1; level <= image.numLevels; ++level) {
      SCOPED_TRACE(level);
      std::vector<float> low =
          tg2_forwardWavelet(image.width, image.height, level, samples[0]).front();
      for (float& sample : low) {
        sample = static_cast<float>(double{sample} / std::pow(TG2_TEST_LOW_SCALE, level));
      }
      const TG2TestSubband of = tg2_subbandsOf(image.width, image.height, level).front();
      Bytes bytes;
      ASSERT_EQ(picture.decode(std::ldexp(1.0, -static_cast<int>(level)), 0, 0, of.width, of.height,
                               bytes),
                GR_STATUS_OK);
      expectNear(image, {low}, bytes, 0.6);
    }
  }
}

TEST(TG2DecodeTest, EnlargesAConstantToAConstant) {
  TG2TestImage image;
  image.width = 21;
  image.height = 13;
  image.numLevels = 1;
  image.binWidth = 0.1F;
  TesraPicture picture(tg2_writeImage(image, {std::vector<float>(size_t{21} * 13, 77.0F)}).bytes);
  for (const gr_uint32 factor : {2u, 4u, 8u}) {
    Bytes bytes;
    ASSERT_EQ(picture.decode(factor, 0, 0, 21 * factor, 13 * factor, bytes), GR_STATUS_OK);
    EXPECT_EQ(bytes, Bytes(size_t{21} * 13 * factor * factor, 77));
  }
}

TEST(TG2DecodeTest, GivesInEveryWindowAtEveryScaleTheCropOfTheWhole) {
  std::mt19937 random(205);
  for (int i = 0; i < 25; ++i) {
    TG2TestImage image = randomImage(random);
    image.binWidth = 4.0F;
    SCOPED_TRACE(describe(i, image));
    TesraPicture picture(tg2_writeImage(image, randomSamples(image, random)).bytes);
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    for (int level = -1; level <= static_cast<int>(image.numLevels); ++level) {
      const double mag = std::ldexp(1.0, -level);
      const auto width = static_cast<gr_uint32>(std::ceil(image.width * mag));
      const auto height = static_cast<gr_uint32>(std::ceil(image.height * mag));
      Bytes whole;
      ASSERT_EQ(picture.reader().setStripHeight(height), GR_STATUS_OK);
      ASSERT_EQ(picture.decode(mag, 0, 0, width, height, whole), GR_STATUS_OK);
      for (int window = 0; window < 4; ++window) {
        const gr_uint32 column = random() % width;
        const gr_uint32 row = random() % height;
        const gr_uint32 columns = 1 + random() % (width - column);
        const gr_uint32 rows = 1 + random() % (height - row);
        const gr_uint32 stripHeight = 1 + random() % 70;
        SCOPED_TRACE(testing::Message()
                     << "level " << level << " window " << column << " " << row << " " << columns
                     << " " << rows << " in strips of " << stripHeight);
        ASSERT_EQ(picture.reader().setStripHeight(stripHeight), GR_STATUS_OK);
        Bytes part;
        ASSERT_EQ(picture.decode(mag, column, row, columns, rows, part), GR_STATUS_OK);
        ASSERT_EQ(part, tesra_cropOf(whole, image.numBands, bytesPerSample(image), width, height,
                                     column, row, columns, rows));
      }
    }
  }
}

// The size of a whole image at a level, and its samples there.
struct Level {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  Bytes bytes;
};
Level levelOf(TesraPicture& picture, double mag) {
  Level level;
  EXPECT_EQ(picture.reader().getDimsAtMag(mag, level.width, level.height), GR_STATUS_OK);
  EXPECT_EQ(picture.decode(mag, 0, 0, level.width, level.height, level.bytes), GR_STATUS_OK);
  return level;
}

TEST(TG2DecodeTest, ShowsOfACropTheWindowOfTheWholeAtEveryScale) {
  std::mt19937 random(206);
  for (int i = 0; i < 40; ++i) {
    TG2TestImage image = randomImage(random);
    image.binWidth = 4.0F;
    const TG2TestBins bins = tg2_quantize(image, randomSamples(image, random));
    TesraPicture whole(tg2_writeBins(image, bins).bytes);

    const auto level = static_cast<gr_int32>(random() % (image.numLevels + 1));
    const TG2TestSubband at =
        tg2_subbandsOf(image.width, image.height, static_cast<gr_uint32>(level)).front();
    TG2TestRect rect;
    rect.x0 = static_cast<gr_int32>(random() % at.width);
    rect.y0 = static_cast<gr_int32>(random() % at.height);
    rect.x1 = rect.x0 + static_cast<gr_int32>(random() % (at.width - rect.x0));
    rect.y1 = rect.y0 + static_cast<gr_int32>(random() % (at.height - rect.y0));
    image.crop = TG2TestImage::Crop{rect, level};
    // What only finer levels need is not there.
    const gr_uint32 numKept = 3 * (image.numLevels - static_cast<gr_uint32>(level)) + 1;
    image.isSubbandAbsent = [numKept](gr_uint32 subband) { return subband >= numKept; };
    SCOPED_TRACE(describe(i, image));
    TesraPicture crop(tg2_writeBins(image, bins).bytes);
    ASSERT_EQ(crop.status(), GR_STATUS_OK);
    EXPECT_EQ(crop.reader().getWidth(), static_cast<gr_uint32>(rect.x1 - rect.x0 + 1));
    EXPECT_EQ(crop.reader().getHeight(), static_cast<gr_uint32>(rect.y1 - rect.y0 + 1));
    EXPECT_EQ(crop.reader().getNumLevels(), image.numLevels - static_cast<gr_uint32>(level));

    for (gr_int32 scale = 0; scale + level <= static_cast<gr_int32>(image.numLevels); ++scale) {
      SCOPED_TRACE(scale);
      const Level part = levelOf(crop, std::ldexp(1.0, -scale));
      const Level all = levelOf(whole, std::ldexp(1.0, -scale - level));
      EXPECT_EQ(part.bytes,
                tesra_cropOf(all.bytes, image.numBands, bytesPerSample(image), all.width,
                             all.height, static_cast<size_t>(rect.x0 >> scale),
                             static_cast<size_t>(rect.y0 >> scale), part.width, part.height));
    }
  }
}

Bytes readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(TG2DecodeTest, DecodesAPictureInAPacketAsItDoesWithoutOne) {
  for (const char* const name : {"tg2_024", "tg2_033", "tg2_058", "tg2_060", "tg2_070"}) {
    SCOPED_TRACE(name);
    const Bytes file = readFile(std::string(GRI_TEST_DATA) + "/tesra/" + name + ".tsra");
    TesraPicture plain(file);
    TesraPicture wrapped(tg2_wrap(file));
    ASSERT_EQ(plain.status(), GR_STATUS_OK);
    ASSERT_EQ(wrapped.status(), GR_STATUS_OK);
    EXPECT_EQ(wrapped.reader().getNumLevels(), plain.reader().getNumLevels());
    for (gr_uint32 level = 0; level <= plain.reader().getNumLevels(); ++level) {
      const double mag = std::ldexp(1.0, -static_cast<int>(level));
      EXPECT_EQ(levelOf(wrapped, mag).bytes, levelOf(plain, mag).bytes);
    }
  }
}

TEST(TG2DecodeTest, KeepsNegativeFloatsAtZeroAndAddsAHalfToTheOthers) {
  TG2TestImage image;
  image.width = 8;
  image.height = 8;
  image.numLevels = 0;
  image.dataType = FLOATS;
  image.hasDither = false;
  image.binWidth = 1.0F;
  TG2TestBins bins = {{std::vector<gr_int32>(64, 0)}};
  bins[0][0][0] = 1;     // 0.56 - 0.5 bins above it: 1.06
  bins[0][0][1] = -100;  // below 0
  TesraPicture picture(tg2_writeBins(image, bins).bytes);
  Bytes bytes;
  ASSERT_EQ(picture.decode(1, 0, 0, 8, 8, bytes), GR_STATUS_OK);
  const std::vector<double> numbers = numbersOf(image, bytes);
  EXPECT_NEAR(numbers[0], 1.56, 1e-6);
  EXPECT_EQ(numbers[1], 0.0);
  EXPECT_EQ(numbers[2], 0.5);
}

TEST(TG2DecodeTest, LeavesTheBufferOfFourBandsOfFloatsAsItWas) {
  TG2TestImage image;
  image.width = 9;
  image.height = 70;
  image.numBands = 4;
  image.dataType = FLOATS;
  const size_t numSamples = size_t{image.width} * image.height;
  const TG2TestBins bins = tg2_quantize(image, Samples(4, std::vector<float>(numSamples, 5.0F)));
  TesraPicture picture(tg2_writeBins(image, bins).bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  const std::vector<float> before(numSamples, -3.0F);
  std::vector<std::vector<float>> planes(4, before);
  void* bands[] = {planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data()};
  GRISceneBuffer buffer(picture.reader().getPixelProps(), 9, 70, bands);
  ASSERT_EQ(picture.reader().read(GRIScene(0, 0, 9, 70, 1), buffer), GR_STATUS_OK);
  for (const std::vector<float>& plane : planes) EXPECT_EQ(plane, before);
}

}  // namespace
