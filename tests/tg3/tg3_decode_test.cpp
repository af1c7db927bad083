// Pictures from bytes to samples: files of another encoder, of both generations, and of TG3 round
// trips, windows, layouts.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tesra_picture.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using Samples = std::vector<std::vector<gr_int32>>;  // band after band

using Picture = TesraPicture;

gr_uint32 crc32Of(const Bytes& bytes) {
  gr_uint32 crc = 0xFFFFFFFF;
  for (const gr_uint8 byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

TEST(TesraFilesTest, DecodesTheFilesOfAnotherEncoderExactly) {
  const std::string folder = std::string(GRI_TEST_DATA) + "/tesra/";
  std::ifstream list(folder + "decodes.txt");
  std::string line;
  size_t count = 0;
  while (std::getline(list, line)) {
    SCOPED_TRACE(line);
    std::istringstream fields(line);
    std::string file;
    double mag = 0;
    gr_uint32 column = 0;
    gr_uint32 row = 0;
    gr_uint32 columns = 0;
    gr_uint32 rows = 0;
    gr_uint32 crc = 0;
    fields >> file >> mag >> column >> row >> columns >> rows >> std::hex >> crc;
    ASSERT_TRUE(fields);
    for (const TesraMemoryUsage usage : {TESRA_MEMORY_SMALL, TESRA_MEMORY_LARGE}) {
      Picture picture(GRIOStreamUtils::openFileStream((folder + file).c_str()), usage);
      ASSERT_EQ(picture.status(), GR_STATUS_OK);
      Bytes bytes;
      ASSERT_EQ(picture.decode(mag, column, row, columns, rows, bytes), GR_STATUS_OK);
      EXPECT_EQ(crc32Of(bytes), crc);
    }
    ++count;
  }
  EXPECT_GT(count, 300u);
}

struct Type {
  gr_uint8 domainBits;
  gr_int32 low;
  gr_int32 high;
};
constexpr Type TYPES[] = {{8, 0, 255}, {7, -128, 127}, {16, 0, 65535}, {15, -32768, 32767}};

// A picture of any kind that can be decoded without loss at full size.
TG3TestImage randomImage(std::mt19937& random) {
  TG3TestImage image;
  image.width = 3 + random() % 120;
  image.height = 3 + random() % 120;
  image.numLevels = static_cast<gr_uint8>(random() % 6);
  constexpr gr_uint16 BLOCKS[] = {3, 4, 5, 8, 16, 31, 64, 128};
  image.blockSize = BLOCKS[random() % 8];
  const Type& type = TYPES[random() % 4];
  image.domainBits = type.domainBits;
  image.dynamicRangeMin = type.low;
  image.dynamicRangeMax = type.high;
  constexpr std::array<std::array<gr_uint8, 3>, 9> KINDS = {{{1, 1, 1},
                                                             {3, 10, 1},
                                                             {3, 10, 4},
                                                             {3, 10, 10},
                                                             {4, 11, 1},
                                                             {4, 11, 7},
                                                             {4, 11, 13},
                                                             {2, 5, 1},
                                                             {5, 5, 1}}};
  const auto& kind = KINDS[random() % KINDS.size()];
  image.numComponents = kind[0];
  image.imageColorSpace = kind[1];
  image.colorTransform = kind[2];
  constexpr gr_uint8 STORAGES[] = {0, 2, 3};
  image.storage = STORAGES[random() % 3];
  image.numRegions = 1 + random() % 3;
  image.is64Bit = random() % 2 != 0;
  const bool canBePiped = (image.width - 1) >> image.numLevels > 0;
  image.ordering = canBePiped && random() % 2 != 0 ? 1 : 5;
  image.hasMse = random() % 2 != 0;
  if (random() % 3 == 0) image.bypassPlanes = ~gr_uint32{0} << (22 + random() % 10);
  if (random() % 3 == 0) image.longestSkip = 1 + random() % 50;
  if (random() % 3 == 0) {
    image.correction = [](gr_uint32 level, gr_uint32 x, gr_uint32 y) {
      return static_cast<gr_int32>((x * 7 + y * 13 + level) % 31) - 15;
    };
  }
  return image;
}

Samples randomSamples(const TG3TestImage& image, std::mt19937& random) {
  const gr_int64 span = gr_int64{image.dynamicRangeMax} - image.dynamicRangeMin + 1;
  const bool isNoise = random() % 2 != 0;
  Samples samples(image.numComponents);
  for (size_t band = 0; band < samples.size(); ++band) {
    for (gr_uint32 i = 0; i < image.width * image.height; ++i) {
      const gr_int64 smooth =
          (i % image.width) * (band + 1) + size_t{i} / image.width * 2 + random() % 3;
      const gr_int64 value = isNoise ? static_cast<gr_int64>(random()) : smooth;
      samples[band].push_back(static_cast<gr_int32>(image.dynamicRangeMin + value % span));
    }
  }
  return samples;
}

// A window of samples as decodes give them.
Bytes windowOf(const TG3TestImage& image, const Samples& samples, gr_uint32 column, gr_uint32 row,
               gr_uint32 columns, gr_uint32 rows) {
  Bytes bytes;
  for (const std::vector<gr_int32>& band : samples) {
    for (gr_uint32 y = row; y < row + rows; ++y) {
      for (gr_uint32 x = column; x < column + columns; ++x) {
        const gr_uint32 bits = static_cast<gr_uint32>(band[y * image.width + x]);
        bytes.push_back(static_cast<gr_uint8>(bits));
        if (image.domainBits > 8) bytes.push_back(static_cast<gr_uint8>(bits >> 8));
      }
    }
  }
  return bytes;
}

std::string describe(int number, const TG3TestImage& image) {
  std::ostringstream text;
  text << "case " << number << ": " << image.width << " x " << image.height << " x "
       << image.numComponents << " levels " << int{image.numLevels} << " block " << image.blockSize
       << " bits " << int{image.domainBits} << " kind " << int{image.colorTransform} << " order "
       << int{image.ordering} << " storage " << int{image.storage};
  return text.str();
}

TEST(TG3DecodeTest, GivesBackWhatWasCodedWithoutLoss) {
  std::mt19937 random(101);
  for (int i = 0; i < 60; ++i) {
    const TG3TestImage image = randomImage(random);
    SCOPED_TRACE(describe(i, image));
    const Samples samples = randomSamples(image, random);
    Picture picture(tg3_writeImage(image, samples));
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    Bytes bytes;
    ASSERT_EQ(picture.decode(1, 0, 0, image.width, image.height, bytes), GR_STATUS_OK);
    ASSERT_EQ(bytes, windowOf(image, samples, 0, 0, image.width, image.height));
  }
}

TEST(TG3DecodeTest, GivesBackTheVisiblePartOfACroppedPicture) {
  std::mt19937 random(102);
  for (int i = 0; i < 60; ++i) {
    TG3TestImage image = randomImage(random);
    SCOPED_TRACE(describe(i, image));
    const gr_int32 left = static_cast<gr_int32>(random() % (image.width - 2));
    const gr_int32 top = static_cast<gr_int32>(random() % (image.height - 2));
    const gr_uint32 columns = 1 + random() % (image.width - static_cast<gr_uint32>(left));
    const gr_uint32 rows = 1 + random() % (image.height - static_cast<gr_uint32>(top));
    image.virtualSupport = {left, top, left + static_cast<gr_int32>(columns) - 1,
                            top + static_cast<gr_int32>(rows) - 1, 0};
    const Samples samples = randomSamples(image, random);
    Picture picture(tg3_writeImage(image, samples));
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    Bytes bytes;
    ASSERT_EQ(picture.decode(1, 0, 0, columns, rows, bytes), GR_STATUS_OK);
    ASSERT_EQ(bytes, windowOf(image, samples, static_cast<gr_uint32>(left),
                              static_cast<gr_uint32>(top), columns, rows));
  }
}

TEST(TG3DecodeTest, GivesInEveryWindowAtEveryScaleTheCropOfTheWhole) {
  std::mt19937 random(103);
  for (int i = 0; i < 40; ++i) {
    TG3TestImage image = randomImage(random);
    image.lastPlane = 26 + random() % 6;
    SCOPED_TRACE(describe(i, image));
    Picture picture(tg3_writeImage(image, randomSamples(image, random)));
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    for (int scale = -1; scale <= image.numLevels; ++scale) {
      const double mag = std::ldexp(1.0, -scale);
      const gr_uint32 width = static_cast<gr_uint32>(std::ceil(image.width * mag));
      const gr_uint32 height = static_cast<gr_uint32>(std::ceil(image.height * mag));
      Bytes whole;
      const GR_STATUS status = picture.decode(mag, 0, 0, width, height, whole);
      if (scale == image.numLevels && (width < 3 || height < 3)) {
        EXPECT_EQ(status, TG3_STATUS_NO_MEMORY);
        continue;
      }
      ASSERT_EQ(status, GR_STATUS_OK) << "scale " << scale;
      for (int window = 0; window < 4; ++window) {
        const gr_uint32 column = random() % width;
        const gr_uint32 row = random() % height;
        const gr_uint32 columns = 1 + random() % (width - column);
        const gr_uint32 rows = 1 + random() % (height - row);
        SCOPED_TRACE(testing::Message() << "scale " << scale << " window " << column << " " << row
                                        << " " << columns << " " << rows);
        Bytes part;
        ASSERT_EQ(picture.decode(mag, column, row, columns, rows, part), GR_STATUS_OK);
        ASSERT_EQ(part, tesra_cropOf(whole, image.numComponents, image.domainBits > 8 ? 2 : 1,
                                     width, height, column, row, columns, rows));
      }
    }
  }
}

TEST(TG3DecodeTest, GivesTheSameInEveryLayoutAndMemoryModel) {
  std::mt19937 random(104);
  TG3TestImage image = randomImage(random);
  image.width = 90;
  image.height = 70;
  image.numLevels = 3;
  image.blockSize = 8;
  const Samples samples = randomSamples(image, random);
  const Bytes expected = windowOf(image, samples, 5, 6, 80, 60);
  const std::vector<TG3TestBands> bands = tg3_transform(image, samples);
  const std::vector<TG3TestSubblock> subblocks = tg3_encode(image, bands);
  for (const gr_uint8 storage : {0, 2, 3}) {
    for (const gr_uint8 ordering : {1, 5}) {
      for (const bool is64Bit : {false, true}) {
        image.storage = storage;
        image.ordering = ordering;
        image.is64Bit = is64Bit;
        TG3Writer writer;
        writer.addHeader(image);
        writer.addPlaneset(image, subblocks);
        for (const TesraMemoryUsage usage :
             {TESRA_MEMORY_DEFAULT, TESRA_MEMORY_SMALL, TESRA_MEMORY_NORMAL, TESRA_MEMORY_LARGE}) {
          SCOPED_TRACE(describe(usage, image));
          Picture picture(writer.bytes(), usage);
          Bytes bytes;
          ASSERT_EQ(picture.decode(1, 5, 6, 80, 60, bytes), GR_STATUS_OK);
          ASSERT_EQ(bytes, expected);
        }
      }
    }
  }
}

TEST(TG3DecodeTest, DecodesASmallWindowOfAHugeClaimInProportionToTheWindow) {
  TG3TestImage image;
  image.width = 0x7FFFFFFF;
  image.height = 0x7FFFFFFF;
  image.numLevels = 31;
  image.blockSize = 32768;
  image.storage = 2;
  image.is64Bit = true;
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPlaneset(image, {});
  Picture picture(writer.bytes());
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  Bytes bytes;
  const GR_STATUS status = picture.decode(1, 1000000000, 1000000000, 50, 50, bytes);
  EXPECT_EQ(status, GR_STATUS_OK);
  EXPECT_EQ(bytes, Bytes(2500));
}

}  // namespace
