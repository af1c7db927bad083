// GRIGeoCoord and its records.

#include <gtest/gtest.h>

#include <array>

#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"
#include "metadata/gri_metadataAcc.h"

namespace {

const GRIGeoCoord GEO(10.5, 20.25, 0.5, -0.25, 0.125, 0.0625);

void addOriginAndResolutions(GRIMetadataDatabase& database) {
  GRIMetadataAcc records(database);
  const std::array<double, 2> origin = {3.0, 4.0};
  ASSERT_EQ(records.setTagVector(GRI_TAG_IMAGE_XY_ORIGIN, std::span<const double>(origin)), 0u);
  ASSERT_EQ(records.setTagScalar(GRI_TAG_IMAGE_X_RESOLUTION, 2.0), 0u);
  ASSERT_EQ(records.setTagScalar(GRI_TAG_IMAGE_Y_RESOLUTION, -2.0), 0u);
}

TEST(GRIGeoCoordMetadataTest, ComesBackFromItsRecords) {
  for (const char* wkt : {static_cast<const char*>(nullptr), "GEOGCS[\"WGS 84\"]"}) {
    GRIGeoCoord written(GEO);
    written.setWKT(wkt);
    GRIMetadataDatabase database;
    ASSERT_EQ(written.writeToMetadata(database), GR_STATUS_OK);
    GRIGeoCoord read;
    bool found = false;
    ASSERT_EQ(read.readFromMetadata(database, found), GR_STATUS_OK);
    EXPECT_TRUE(found);
    EXPECT_TRUE(read == written);
  }
}

TEST(GRIGeoCoordMetadataTest, WritingAgainReplacesTheRecords) {
  GRIGeoCoord withWkt(GEO);
  withWkt.setWKT("x");
  GRIMetadataDatabase database;
  ASSERT_EQ(withWkt.writeToMetadata(database), GR_STATUS_OK);
  ASSERT_EQ(GEO.writeToMetadata(database), GR_STATUS_OK);
  EXPECT_EQ(database.getIndexCount(), 5u);
  EXPECT_FALSE(database.has(GRI_TAG_IMAGE_WKT));
}

TEST(GRIGeoCoordMetadataTest, AMissingTagIsNoFailureAndChangesNothing) {
  for (const gr_int32 tag :
       {GRI_TAG_IMAGE_XY_ORIGIN, GRI_TAG_IMAGE_X_RESOLUTION, GRI_TAG_IMAGE_Y_RESOLUTION}) {
    GRIMetadataDatabase database;
    addOriginAndResolutions(database);
    ASSERT_EQ(database.remove(tag), GR_STATUS_OK);
    GRIGeoCoord geo(GEO);
    bool found = true;
    EXPECT_EQ(geo.readFromMetadata(database, found), GR_STATUS_OK);
    EXPECT_FALSE(found);
    EXPECT_TRUE(geo == GEO);
  }
}

TEST(GRIGeoCoordMetadataTest, AbsentRotationsAreZero) {
  GRIMetadataDatabase database;
  addOriginAndResolutions(database);
  GRIGeoCoord geo(GEO);
  bool found = false;
  ASSERT_EQ(geo.readFromMetadata(database, found), GR_STATUS_OK);
  EXPECT_TRUE(geo == GRIGeoCoord(3.0, 4.0, 2.0, -2.0, 0.0, 0.0));
}

TEST(GRIGeoCoordMetadataTest, TakesFloatsAndRefusesOtherTypesAndShapes) {
  GRIMetadataDatabase floats;
  addOriginAndResolutions(floats);
  GRIMetadataAcc records(floats);
  ASSERT_EQ(records.setTagScalar(GRI_TAG_IMAGE_X_ROTATION, 0.5F), GR_STATUS_OK);
  GRIGeoCoord geo;
  bool found = false;
  ASSERT_EQ(geo.readFromMetadata(floats, found), GR_STATUS_OK);
  EXPECT_EQ(geo.getXRot(), 0.5);

  records.removeTag(GRI_TAG_IMAGE_X_ROTATION);
  ASSERT_EQ(records.setTagScalar(GRI_TAG_IMAGE_X_ROTATION, gr_uint32{1}), GR_STATUS_OK);
  EXPECT_EQ(geo.readFromMetadata(floats, found), GRI_STATUS_TAG_BAD_FORMAT);

  records.removeTag(GRI_TAG_IMAGE_X_ROTATION);
  records.removeTag(GRI_TAG_IMAGE_XY_ORIGIN);
  ASSERT_EQ(records.setTagScalar(GRI_TAG_IMAGE_XY_ORIGIN, 1.0), GR_STATUS_OK);
  EXPECT_EQ(geo.readFromMetadata(floats, found), GRI_STATUS_TAG_BAD_FORMAT);
}

}  // namespace
