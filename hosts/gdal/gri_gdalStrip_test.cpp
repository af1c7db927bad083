#include "hosts/gdal/gri_gdalStrip.h"

#include <gtest/gtest.h>

#include "tests/support/fake_gri.h"

namespace {

std::shared_ptr<GRIHostImage> open(const FakePicture& picture) {
  const FakeDirectory directory;
  picture.writeTo(directory / "picture");
  auto image = std::make_shared<GRIHostImage>();
  EXPECT_FALSE(image->open(directory / "picture"));
  return image;
}

int sample(const GRIGdalStrip& strip, size_t band, gr_uint32 column, gr_uint32 row) {
  return std::to_integer<int>(*strip.samples(band, column, row));
}

}  // namespace

TEST(GRIGdalStripTest, GivesTheSamplesOfAllBandsOfAWindow) {
  GRIGdalStrip strip(open({}), 0.5, nullptr);
  ASSERT_FALSE(strip.fetch({10, 5, 20, 8}));
  for (gr_uint32 band = 0; band < 3; ++band) {
    EXPECT_EQ(sample(strip, band, 10, 5), fake_sample(band, 10, 5, 1));
    EXPECT_EQ(sample(strip, band, 29, 12), fake_sample(band, 29, 12, 1));
  }
}

TEST(GRIGdalStripTest, WhatLiesInTheKeptWindowIsNotDecodedAgain) {
  GRIGdalStrip strip(open({}), 1, nullptr);
  ASSERT_FALSE(strip.fetch({0, 10, 100, 20}));
  const int before = fake_decodeCalls();
  ASSERT_FALSE(strip.fetch({0, 12, 100, 1}));
  ASSERT_FALSE(strip.fetch({30, 29, 5, 1}));
  EXPECT_EQ(fake_decodeCalls(), before);
  EXPECT_EQ(strip.window(), (GRIHostWindow{0, 10, 100, 20}));
  ASSERT_FALSE(strip.fetch({0, 29, 100, 2}));
  EXPECT_EQ(fake_decodeCalls(), before + 1);
}

TEST(GRIGdalStripTest, AfterAFailureNothingIsKept) {
  GRIGdalStrip strip(open({.damagedFrom = 40, .damagedTo = 41}), 1, nullptr);
  ASSERT_FALSE(strip.fetch({0, 0, 100, 10}));
  EXPECT_EQ(strip.fetch({0, 40, 100, 10}).status, 2005u);
  EXPECT_EQ(strip.window(), GRIHostWindow());
  EXPECT_EQ(strip.fetch({0, 40, 100, 10}).status, 2005u);  // no success from what was kept
}

TEST(GRIGdalStripTest, SalvagingLosesOnlyTheRowsAroundTheDamage) {
  const auto damage = std::make_shared<GRIGdalDamage>();
  GRIGdalStrip strip(open({.width = 300,
                           .height = 1000,
                           .bands = 1,
                           .colorSpace = GRIC_COLORSPACE_GRAYSCALE,
                           .damagedFrom = 500,
                           .damagedTo = 501,
                           .noData = {201}}),
                     1, damage);
  ASSERT_FALSE(strip.fetch({0, 0, 300, 1000}));
  EXPECT_EQ(damage->first.status, 2005u);
  EXPECT_EQ(damage->lostPixels, 300u * 64);  // rows 448 to 511
  EXPECT_EQ(damage->decodedPixels, 300u * (1000 - 64));
  EXPECT_EQ(sample(strip, 0, 7, 447), fake_sample(0, 7, 447, 0));
  EXPECT_EQ(sample(strip, 0, 7, 448), 201);
  EXPECT_EQ(sample(strip, 0, 299, 511), 201);
  EXPECT_EQ(sample(strip, 0, 7, 512), fake_sample(0, 7, 512, 0));
}

TEST(GRIGdalStripTest, SalvagingFillsWithZeroWhereThereIsNoNoDataValue) {
  const auto damage = std::make_shared<GRIGdalDamage>();
  GRIGdalStrip strip(open({.damagedFrom = 0, .damagedTo = 80}), 1, damage);
  ASSERT_FALSE(strip.fetch({0, 0, 100, 80}));
  EXPECT_EQ(damage->decodedPixels, 0u);
  EXPECT_EQ(damage->lostPixels, 100u * 80);
  EXPECT_EQ(sample(strip, 2, 99, 79), 0);
}

TEST(GRIGdalStripTest, MemoryThatRunsOutIsNoDamage) {
  const auto damage = std::make_shared<GRIGdalDamage>();
  GRIGdalStrip strip(open({.throws = FakePicture::Throws::WHEN_DECODED}), 1, damage);
  EXPECT_EQ(strip.fetch({0, 0, 100, 80}).status, 8u);
  EXPECT_EQ(damage->lostPixels, 0u);
}

TEST(GRIGdalStripTest, ALockIsNoDamage) {
  const auto damage = std::make_shared<GRIGdalDamage>();
  GRIGdalStrip strip(open({.isLocked = true}), 1, damage);
  const int before = fake_decodeCalls();
  EXPECT_EQ(strip.fetch({0, 0, 100, 80}).status, 2011u);
  EXPECT_EQ(fake_decodeCalls(), before + 1);
  EXPECT_EQ(damage->lostPixels, 0u);
  EXPECT_FALSE(damage->first);
}

TEST(GRIGdalStripTest, AWindowThatNoMemoryHoldsIsStatus8) {
  constexpr gr_uint32 HUGE_SIZE = 0xFFFFFFFF;
  GRIGdalStrip strip(open({.bands = 60000, .colorSpace = GRIC_COLORSPACE_MULTISPECTRAL}), 1,
                     nullptr);
  EXPECT_EQ(strip.fetch({0, 0, HUGE_SIZE, HUGE_SIZE}).status, 8u);
}
