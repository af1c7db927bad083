// Files with several images, of which some or all are of generation 2.

#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "tests/support/tg2_writer.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

constexpr gr_uint32 SIZE = 40;  // columns and rows of an image

TG2TestRecord numbersRecord(const std::string& name, const std::vector<double>& numbers) {
  constexpr gr_uint32 FLOAT64 = 7;
  TG2TestRecord record = {name,
                          FLOAT64,
                          static_cast<gr_uint32>(numbers.size()),
                          {static_cast<gr_uint32>(numbers.size())},
                          {}};
  for (const double number : numbers) {
    const gr_uint64 bits = std::bit_cast<gr_uint64>(number);
    for (int shift = 56; shift >= 0; shift -= 8) {
      record.values.push_back(static_cast<gr_uint8>(bits >> shift));
    }
  }
  return record;
}

/// A file of generation 2 that lies at a place on the ground.
TesraBytes tg2File(double x, double y, unsigned seed) {
  TG2TestImage image;
  image.width = SIZE;
  image.height = SIZE;
  image.hasDither = false;
  image.records = {numbersRecord("IMAGE::XY_ORIGIN", {x, y}),
                   numbersRecord("IMAGE::X_RESOLUTION", {1.0}),
                   numbersRecord("IMAGE::Y_RESOLUTION", {-1.0})};
  std::mt19937 random(seed);
  std::vector<float> samples(size_t{SIZE} * SIZE);
  for (float& sample : samples) sample = static_cast<float>(random() % 256);
  return tg2_writeImage(image, {samples}).bytes;
}

TesraBytes decoded(const TesraHandle& handle, double x, double y, gr_uint32 width, gr_uint32 height,
                   double magnification) {
  TesraBytes samples;
  EXPECT_EQ(handle.status(), 0u);
  EXPECT_EQ(handle.decode(x, y, width, height, magnification, samples), 0u);
  return samples;
}

/// The two images side by side, each as it decodes by itself.
TesraBytes sideBySide(const TesraBytes& left, const TesraBytes& right, gr_uint32 size) {
  TesraBytes picture;
  for (gr_uint32 row = 0; row < size; ++row) {
    for (const TesraBytes* half : {&left, &right}) {
      const auto begin = half->begin() + std::ptrdiff_t{row} * size;
      picture.insert(picture.end(), begin, begin + size);
    }
  }
  return picture;
}

TEST(TesraTG2MosaicTest, WrappedImagesLieWhereTheirRecordsPutThem) {
  const TesraBytes left = tg2File(500, 70, 1);
  const TesraBytes right = tg2File(500 + SIZE, 70, 2);
  TG3Writer writer;
  writer.addPacket({.type = 7, .image = 4}, left);
  writer.addPacket({.type = 7, .image = 9}, right);
  const TesraHandle mosaic(writer.bytes());
  ASSERT_EQ(mosaic.status(), 0u);
  EXPECT_EQ(gric_getWidth(mosaic.image()), 2 * SIZE);
  EXPECT_EQ(gric_getHeight(mosaic.image()), SIZE);
  EXPECT_EQ(gric_getGeoXOrigin(mosaic.image()), 500.0);
  EXPECT_EQ(gric_getGeoYOrigin(mosaic.image()), 70.0);
  for (const double mag : {1.0, 0.5, 0.25, 2.0}) {
    SCOPED_TRACE(mag);
    const gr_uint32 size = static_cast<gr_uint32>(SIZE * mag);
    EXPECT_EQ(decoded(mosaic, 0, 0, 2 * size, size, mag),
              sideBySide(decoded(TesraHandle(left), 0, 0, size, size, mag),
                         decoded(TesraHandle(right), 0, 0, size, size, mag), size));
  }
}

TEST(TesraTG2MosaicTest, ImagesOfBothGenerationsShowAsOne) {
  const TesraBytes left = tg2File(0, 0, 3);
  TG3TestImage right = tesra_grayImage(SIZE, SIZE, 2);
  right.image = 1;
  TG3TestGeoref georef;
  georef.geo = {double(SIZE), 0, 2.0 * SIZE, -1.0 * SIZE, 1, 1};
  TG3Writer writer;
  writer.addPacket({.type = 7, .image = 0}, left);
  writer.addMetadata(3, 0, 1, tg3_georefBlock(georef));
  writer.addImage(right, tesra_noise(right));
  const TesraSamples samples = tesra_noise(right);
  const TesraBytes rightSamples(samples[0].begin(), samples[0].end());
  EXPECT_EQ(decoded(TesraHandle(writer.bytes()), 0, 0, 2 * SIZE, SIZE, 1.0),
            sideBySide(decoded(TesraHandle(left), 0, 0, SIZE, SIZE, 1.0), rightSamples, SIZE));
}

TEST(TesraTG2MosaicTest, AWrappedImageThatIsDamagedRefusesTheFile) {
  TG3Writer writer;
  writer.addPacket({.type = 7, .image = 0}, tg2File(0, 0, 1));
  TesraBytes damaged = tg2File(SIZE, 0, 1);
  damaged.resize(20);
  writer.addPacket({.type = 7, .image = 1}, damaged);
  EXPECT_NE(TesraHandle(writer.bytes()).status(), 0u);
}

}  // namespace
