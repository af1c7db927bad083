// What a host gets when it decodes: scales, strips, edges, and the statuses of what can't be done.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tesra/tesra_testFile.h"

namespace {

TesraBytes asBytes(const TesraSamples& samples) {
  TesraBytes bytes;
  for (const std::vector<gr_int32>& component : samples) {
    for (const gr_int32 sample : component) bytes.push_back(static_cast<gr_uint8>(sample));
  }
  return bytes;
}

GR_STATUS decodeStatusOf(const TG3TestImage& image) {
  TesraHandle handle(tesra_fileOf(image));
  EXPECT_EQ(handle.status(), 0u);
  return handle.decodeStatus(0, 0, image.width, image.height, 1.0);
}

TEST(TesraDecodeTest, GivesEveryRowWhateverTheLastStripHolds) {
  for (const gr_uint32 height : {1u, 63u, 64u, 65u, 128u, 130u}) {
    SCOPED_TRACE(height);
    const TG3TestImage image = tesra_grayImage(17, height, 2);
    TesraHandle handle(tesra_fileOf(image));
    TesraBytes samples;
    ASSERT_EQ(handle.decode(0, 0, 17, height, 1.0, samples), 0u);
    EXPECT_EQ(samples, asBytes(tesra_noise(image)));
  }
}

TEST(TesraDecodeTest, DecodesAnyOneRow) {
  const TG3TestImage image = tesra_grayImage(17, 70, 2);
  const TesraBytes whole = asBytes(tesra_noise(image));
  TesraHandle handle(tesra_fileOf(image));
  for (gr_uint32 row = 0; row < 70; ++row) {
    SCOPED_TRACE(row);
    TesraBytes samples;
    ASSERT_EQ(handle.decode(0, row, 17, 1, 1.0, samples), 0u);
    EXPECT_TRUE(
        std::equal(samples.begin(), samples.end(), whole.begin() + std::ptrdiff_t{17} * row));
  }
}

TEST(TesraDecodeTest, RefusesAScaleBelowTheLevels) {
  TesraHandle handle(tesra_fileOf(tesra_grayImage(64, 64, 2)));
  EXPECT_EQ(handle.decodeStatus(0, 0, 16, 16, 0.25), 0u);
  EXPECT_EQ(handle.decodeStatus(0, 0, 8, 8, 0.125), 50015u);
}

TEST(TesraDecodeTest, RefusesScenesThatLeaveTheImage) {
  TesraHandle handle(tesra_fileOf(tesra_grayImage(64, 64, 2)));
  EXPECT_EQ(handle.decodeStatus(0, 0, 0, 0, 1.0), 50013u);
  EXPECT_EQ(handle.decodeStatus(64, 0, 8, 8, 1.0), 50013u);
  EXPECT_EQ(handle.decodeStatus(60, 0, 8, 8, 1.0), 50014u);
}

TEST(TesraDecodeTest, TakesTheNearestScaleForAMagnificationBetweenTwo) {
  TesraHandle handle(tesra_fileOf(tesra_grayImage(64, 64, 2)));
  TesraBytes half;
  TesraBytes between;
  ASSERT_EQ(handle.decode(0, 0, 32, 32, 0.5, half), 0u);
  ASSERT_EQ(handle.decode(0, 0, 32, 32, 0.6, between), 0u);
  EXPECT_EQ(between, half);
  // 0.7 of 64 columns are 45; the nearest scale has 32.
  EXPECT_EQ(handle.decodeStatus(0, 0, 45, 45, 0.7), 2009u);
}

TEST(TesraDecodeTest, InterpolatesWhereAnImageIsEnlarged) {
  const TG3TestImage image = tesra_grayImage(4, 3, 0);
  TesraHandle handle(tg3_writeImage(image, {{1, 2, 7, 4, 1, 2, 7, 4, 1, 2, 7, 4}}));
  TesraBytes samples;
  ASSERT_EQ(handle.decode(0, 0, 8, 6, 2.0, samples), 0u);
  const TesraBytes row = {1, 2, 2, 4, 7, 6, 4, 4};
  for (size_t y = 0; y < 6; ++y) {
    SCOPED_TRACE(y);
    EXPECT_TRUE(std::equal(row.begin(), row.end(), samples.begin() + static_cast<long>(y) * 8));
  }
}

TEST(TesraDecodeTest, EnlargesAsFarAs31BitsReach) {
  TesraHandle handle(tesra_fileOf(tesra_grayImage(20, 20, 1)));
  const double most = 67108864.0;  // 2^26
  EXPECT_EQ(handle.decodeStatus(1000, 1000, 3, 3, most), 0u);
  EXPECT_EQ(handle.decodeStatus(1000, 1000, 3, 3, 2 * most), 2009u);
  EXPECT_EQ(handle.decodeStatus(0, 0, 1, 1, gric_getMaxMagnification(handle.image())), 2009u);
}

TEST(TesraDecodeTest, NeedsThreeColumnsAndRowsWhereNothingIsSynthesized) {
  TesraHandle narrow(tesra_fileOf(tesra_grayImage(2, 100, 0)));
  EXPECT_EQ(narrow.decodeStatus(0, 0, 2, 100, 1.0), 2012u);
  EXPECT_EQ(narrow.decodeStatus(0, 0, 4, 200, 2.0), 0u);
  TesraHandle deep(tesra_fileOf(tesra_grayImage(16, 16, 3)));
  EXPECT_EQ(deep.decodeStatus(0, 0, 2, 2, 0.125), 2012u);
  EXPECT_EQ(deep.decodeStatus(0, 0, 4, 4, 0.25), 0u);
}

TEST(TesraDecodeTest, RefusesWideDataTypesWhenItDecodes) {
  TG3TestImage image = tesra_grayImage(8, 8, 1);
  for (const gr_uint8 domainBits : {31, 32, 63, 64}) {
    image.domainBits = domainBits;
    EXPECT_EQ(decodeStatusOf(image), 50001u);
  }
}

TEST(TesraDecodeTest, RefusesWhatItCannotUndoWhenItDecodes) {
  TG3TestImage image = tesra_grayImage(8, 8, 1);
  image.boundary = 1;
  EXPECT_EQ(decodeStatusOf(image), 2005u);
  image.boundary = 0;
  image.wavelet = 1;
  EXPECT_EQ(decodeStatusOf(image), 2005u);
}

TEST(TesraDecodeTest, RefusesAColorTransformOfAnotherBandCount) {
  const TG3TestImage image = tesra_grayImage(8, 8, 1);
  TesraBytes bytes = tesra_fileOf(image);
  // The transform's code: 33 bytes into the body of the header packet, which stands behind the
  // preamble and 10 bytes of packet header.
  constexpr size_t TRANSFORM = 8 + 10 + 33;
  for (const gr_uint8 kind : {0, 2, 4, 7, 10, 13}) {
    SCOPED_TRACE(int{kind});
    bytes[TRANSFORM] = kind;
    TesraHandle handle(bytes);
    ASSERT_EQ(handle.status(), 0u);
    EXPECT_EQ(handle.decodeStatus(0, 0, 8, 8, 1.0), 2005u);
  }
}

TEST(TesraDecodeTest, NeedsTheCodedDataJustOnce) {
  const TG3TestImage image = tesra_grayImage(8, 8, 1);
  TG3Writer none;
  none.addHeader(image);
  TesraHandle without(none.bytes());
  EXPECT_EQ(without.decodeStatus(0, 0, 8, 8, 1.0), 2010u);

  TG3Writer twice;
  twice.addImage(image, tesra_noise(image));
  twice.addPlaneset(image, {});
  TesraHandle doubled(twice.bytes());
  EXPECT_EQ(doubled.decodeStatus(0, 0, 8, 8, 1.0), 2010u);
}

TEST(TesraDecodeTest, RefusesLockedPlanesAndCanBeUsedAgain) {
  TG3TestImage image = tesra_grayImage(8, 8, 1);
  image.isLocked = true;
  TesraHandle handle(tesra_fileOf(image));
  EXPECT_EQ(handle.decodeStatus(0, 0, 8, 8, 1.0), 2011u);
  EXPECT_EQ(gric_setTesraPassword(handle.image(), "secret"), 0u);
  EXPECT_EQ(handle.decodeStatus(0, 0, 8, 8, 1.0), 2011u);
}

TEST(TesraDecodeTest, DecodesAfterADecodeThatFailed) {
  const TG3TestImage image = tesra_grayImage(64, 64, 2);
  TesraHandle handle(tesra_fileOf(image));
  EXPECT_EQ(handle.decodeStatus(0, 0, 45, 45, 0.7), 2009u);
  TesraBytes samples;
  ASSERT_EQ(handle.decode(0, 0, 64, 64, 1.0, samples), 0u);
  EXPECT_EQ(samples, asBytes(tesra_noise(image)));
}

TEST(TesraDecodeTest, TakesAnImageWithoutAnyPlaneForZeros) {
  TG3TestImage image = tesra_grayImage(40, 30, 2);
  image.dynamicRangeMin = 5;
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPlaneset(image, {});
  TesraHandle handle(writer.bytes());
  TesraBytes samples;
  ASSERT_EQ(handle.decode(0, 0, 40, 30, 1.0, samples), 0u);
  EXPECT_EQ(samples, TesraBytes(size_t{40} * 30, 5));  // limited to the range of the header
}

}  // namespace
