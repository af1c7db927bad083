#include "hosts/gdal/gri_gdalDataset.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/fake_gri.h"

namespace {

/// A data set over a synthetic picture. GDAL's own messages stay quiet.
class Opened {
 public:
  explicit Opened(const FakePicture& picture, const GRIGdalView& view = {}) {
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const FakeDirectory directory;
    picture.writeTo(directory / "picture");
    auto image = std::make_shared<GRIHostImage>();
    EXPECT_FALSE(image->open(directory / "picture"));
    dataset = GRIGdalDataset::create(image, view, error);
  }
  ~Opened() { CPLPopErrorHandler(); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

  GRIGdalDataset* operator->() const { return dataset.get(); }

  /// Samples of one band as doubles, read through the band.
  std::vector<double> read(int band, int column, int row, int columns, int rows) const {
    std::vector<double> samples(static_cast<size_t>(columns) * static_cast<size_t>(rows));
    EXPECT_EQ(
        dataset->GetRasterBand(band)->RasterIO(GF_Read, column, row, columns, rows, samples.data(),
                                               columns, rows, GDT_Float64, 0, 0, nullptr),
        CE_None);
    return samples;
  }

  std::unique_ptr<GRIGdalDataset> dataset;
  GRIHostError error;
};

std::vector<double> expected(gr_uint32 band, gr_uint32 column, gr_uint32 row, gr_uint32 columns,
                             gr_uint32 rows, int level = 0) {
  std::vector<double> samples;
  for (gr_uint32 y = 0; y < rows; ++y) {
    for (gr_uint32 x = 0; x < columns; ++x) {
      samples.push_back(fake_sample(band, column + x, row + y, level));
    }
  }
  return samples;
}

GRIHostError errorOf(const FakePicture& picture, const GRIGdalView& view) {
  const Opened opened(picture, view);
  EXPECT_EQ(opened.dataset, nullptr);
  return opened.error;
}

}  // namespace

TEST(GRIGdalDatasetTest, ShowsSizeBandsTypeAndColours) {
  const Opened opened({.bands = 4,
                       .colorSpace = GRIC_COLORSPACE_RGB | GRIC_COLORSPACE_ALPHA,
                       .dataType = GRIC_DATATYPE_UINT16});
  EXPECT_EQ(opened->GetRasterXSize(), 100);
  EXPECT_EQ(opened->GetRasterYSize(), 80);
  ASSERT_EQ(opened->GetRasterCount(), 4);
  EXPECT_EQ(opened->GetRasterBand(1)->GetRasterDataType(), GDT_UInt16);
  EXPECT_EQ(opened->GetRasterBand(1)->GetColorInterpretation(), GCI_RedBand);
  EXPECT_EQ(opened->GetRasterBand(4)->GetColorInterpretation(), GCI_AlphaBand);
}

TEST(GRIGdalDatasetTest, EverySampleTypeComesThroughWithItsValues) {
  for (gr_int32 type = GRIC_DATATYPE_UINT8; type <= GRIC_DATATYPE_SINT64; ++type) {
    SCOPED_TRACE(type);
    const Opened opened({.dataType = type});
    EXPECT_EQ(opened.read(2, 3, 4, 5, 6), expected(1, 3, 4, 5, 6));
    EXPECT_EQ(opened.read(3, 0, 0, 100, 80), expected(2, 0, 0, 100, 80));
  }
}

TEST(GRIGdalDatasetTest, NarrowWindowsWholeRowsAndBlocksAgree) {
  const Opened opened(
      {.width = 2000, .height = 700, .bands = 9, .colorSpace = GRIC_COLORSPACE_MULTISPECTRAL});
  EXPECT_LT(opened->blockRows(), 700 + 1);
  EXPECT_EQ(opened.read(9, 1990, 0, 10, 700), expected(8, 1990, 0, 10, 700));  // narrow
  EXPECT_EQ(opened.read(9, 0, 350, 2000, 1), expected(8, 0, 350, 2000, 1));    // one row, by block
  EXPECT_EQ(opened.read(1, 0, 0, 2000, 700), expected(0, 0, 0, 2000, 700));    // everything
}

TEST(GRIGdalDatasetTest, AStripIsDecodedOnceForAllBandsAndRows) {
  const Opened opened({});
  const int before = fake_decodeCalls();
  std::vector<gr_uint8> row(300);
  for (int y = 0; y < 80; ++y) {
    ASSERT_EQ(opened->RasterIO(GF_Read, 0, y, 100, 1, row.data(), 100, 1, GDT_Byte, 3, nullptr, 0,
                               0, 0, nullptr),
              CE_None);
    EXPECT_EQ(row[207], fake_sample(2, 7, static_cast<gr_uint32>(y), 0));
  }
  EXPECT_EQ(fake_decodeCalls(), before + 1);
}

TEST(GRIGdalDatasetTest, AViewShowsItsWindowAndBandsInTheirOrder) {
  const Opened opened({}, {.magnification = 0.5, .window = {10, 5, 20, 8}, .bands = {3, 1}});
  EXPECT_EQ(opened->GetRasterXSize(), 20);
  EXPECT_EQ(opened->GetRasterYSize(), 8);
  ASSERT_EQ(opened->GetRasterCount(), 2);
  EXPECT_EQ(opened.read(1, 0, 0, 20, 8), expected(2, 10, 5, 20, 8, 1));
  EXPECT_EQ(opened.read(2, 19, 7, 1, 1), expected(0, 29, 12, 1, 1, 1));
  EXPECT_EQ(opened->GetRasterBand(1)->GetColorInterpretation(), GCI_BlueBand);
}

TEST(GRIGdalDatasetTest, AViewThatDoesntFitIsRefused) {
  const FakePicture picture;
  EXPECT_EQ(errorOf(picture, {.window = {90, 0, 20, 1}}).text,
            "the window lies outside of the picture");
  EXPECT_EQ(errorOf(picture, {.bands = {4}}).text, "the picture has no band of that number");
  EXPECT_EQ(errorOf(picture, {.bands = {0}}).status, GRI_HOST_STATUS_ARGUMENT);
  EXPECT_EQ(errorOf(picture, {.magnification = 2}).status, GRIC_STATUS_OUT_OF_RANGE);
  EXPECT_EQ(errorOf({.width = 3000000000u}, {}).status, GRI_HOST_STATUS_ARGUMENT);
  EXPECT_EQ(errorOf({.dataType = GRIC_DATATYPE_INVALID}, {}).status, GRI_HOST_STATUS_DATATYPE);
}

TEST(GRIGdalDatasetTest, OverviewsAreTheSmallerMagnifications) {
  const Opened opened({.width = 101, .height = 81, .minMagnification = 0.25});
  GDALRasterBand* band = opened->GetRasterBand(2);
  ASSERT_EQ(band->GetOverviewCount(), 2);
  EXPECT_EQ(band->GetOverview(0)->GetXSize(), 51);
  EXPECT_EQ(band->GetOverview(1)->GetYSize(), 21);
  EXPECT_EQ(band->GetOverview(2), nullptr);
  EXPECT_EQ(band->GetOverview(-1), nullptr);
  double sample = 0;
  ASSERT_EQ(band->GetOverview(1)->RasterIO(GF_Read, 3, 4, 1, 1, &sample, 1, 1, GDT_Float64, 0, 0,
                                           nullptr),
            CE_None);
  EXPECT_EQ(sample, fake_sample(1, 3, 4, 2));
}

TEST(GRIGdalDatasetTest, AWindowHasNoOverviews) {
  const Opened opened({}, {.window = {0, 0, 50, 50}});
  EXPECT_EQ(opened->GetRasterBand(1)->GetOverviewCount(), 0);
}

TEST(GRIGdalDatasetTest, TheGeoTransformCountsFromTheOuterCornerOfTheWindow) {
  const std::vector<double> position{100, 200, 2, -4, 0.5, 0.25};
  std::array<double, 6> transform{};
  const Opened whole({.position = position});
  ASSERT_EQ(whole->GetGeoTransform(transform.data()), CE_None);
  EXPECT_EQ(transform, (std::array<double, 6>{98.75, 2, 0.5, 201.875, 0.25, -4}));
  const Opened part({.position = position}, {.magnification = 0.5, .window = {10, 5, 20, 8}});
  ASSERT_EQ(part->GetGeoTransform(transform.data()), CE_None);
  // The centre is 20 columns and 10 rows of the full size further on; pixels are twice as large.
  EXPECT_EQ(transform, (std::array<double, 6>{100 + 20 * 2 + 10 * 0.5 - (4 + 1) / 2.0, 4, 1,
                                              200 + 20 * 0.25 - 10 * 4 - (0.5 - 8) / 2, 0.5, -8}));
}

TEST(GRIGdalDatasetTest, APictureWithoutAPositionHasNoGeoTransform) {
  std::array<double, 6> transform{};
  EXPECT_EQ(Opened({})->GetGeoTransform(transform.data()), CE_Failure);
  EXPECT_EQ(Opened({})->GetSpatialRef(), nullptr);
}

TEST(GRIGdalDatasetTest, TheCoordinateSystemIsShownAndANonsensicalOneIsNot) {
  const Opened good({.wkt = SRS_WKT_WGS84_LAT_LONG});
  ASSERT_NE(good->GetSpatialRef(), nullptr);
  EXPECT_STREQ(good->GetSpatialRef()->GetName(), "WGS 84");
  const Opened bad({.wkt = "what is this"});
  EXPECT_EQ(bad->GetSpatialRef(), nullptr);
}

TEST(GRIGdalDatasetTest, NoDataIsShownForEveryBand) {
  const Opened opened({.dataType = GRIC_DATATYPE_SINT16, .noData = {-1, 2, 3}});
  int isSet = FALSE;
  EXPECT_EQ(opened->GetRasterBand(1)->GetNoDataValue(&isSet), -1);
  EXPECT_TRUE(isSet);
  EXPECT_EQ(opened->GetRasterBand(3)->GetNoDataValue(nullptr), 3);
  Opened({})->GetRasterBand(1)->GetNoDataValue(&isSet);
  EXPECT_FALSE(isSet);
}

TEST(GRIGdalDatasetTest, AFailedDecodeIsAReadErrorWithTheLibrarysStatus) {
  const Opened opened({.damagedFrom = 10, .damagedTo = 20});
  std::vector<gr_uint8> row(100);
  EXPECT_EQ(opened->GetRasterBand(1)->RasterIO(GF_Read, 0, 15, 100, 1, row.data(), 100, 1, GDT_Byte,
                                               0, 0, nullptr),
            CE_Failure);
  EXPECT_EQ(opened->lastError().status, 2005u);
  EXPECT_NE(std::string(CPLGetLastErrorMsg()).find("invalid TG3 format [2005]"), std::string::npos);
}

TEST(GRIGdalDatasetTest, WhatIsLostIsNoDataInEveryType) {
  for (gr_int32 type = GRIC_DATATYPE_UINT8; type <= GRIC_DATATYPE_SINT64; ++type) {
    SCOPED_TRACE(type);
    const Opened opened({.height = 300,
                         .dataType = type,
                         .damagedFrom = 128,
                         .damagedTo = 129,
                         .noData = {7, 8, 9},
                         .noDataType = GRIC_DATATYPE_FLOAT64},
                        {.keepGoing = true});
    EXPECT_EQ(opened.read(3, 0, 128, 100, 1), std::vector<double>(100, 9));
  }
}

TEST(GRIGdalDatasetTest, KeepingOnFillsWhatIsLost) {
  const Opened opened({.height = 300, .damagedFrom = 128, .damagedTo = 129}, {.keepGoing = true});
  EXPECT_EQ(opened.read(1, 0, 127, 100, 1), expected(0, 0, 127, 100, 1));
  EXPECT_EQ(opened.read(1, 0, 128, 100, 1), std::vector<double>(100));
  ASSERT_NE(opened->damage(), nullptr);
  EXPECT_EQ(opened->damage()->first.status, 2005u);
  EXPECT_GT(opened->damage()->decodedPixels, 0u);
}
