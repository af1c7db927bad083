#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_sceneGeometry.h"

#include <gtest/gtest.h>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_codedSupport.h"

namespace {

TG3ImageInfo imageOf(gr_uint32 width, gr_uint32 height, gr_uint8 levels) {
  TG3ImageInfo info;
  info.width = width;
  info.height = height;
  info.numLevels = levels;
  info.subblockSize = 64;
  info.numComponents = 1;
  info.numPlanes = 32;
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  EXPECT_EQ(info.initializeVirtualSupport(
                {0, 0, static_cast<gr_int32>(width) - 1, static_cast<gr_int32>(height) - 1}, 0),
            GR_STATUS_OK);
  return info;
}

// 20 x 20 with two levels, columns and rows 7 to 12 visible.
TG3ImageInfo croppedImage(gr_uint8 levelsRemoved) {
  TG3ImageInfo info = imageOf(20, 20, 2);
  EXPECT_EQ(info.initializeVirtualSupport({7, 7, 12, 12}, levelsRemoved), GR_STATUS_OK);
  return info;
}

TG3VisibleRect rectOf(gr_int64 left, gr_int64 right) { return {left, left, right, right}; }

struct Columns {
  gr_int32 first;
  gr_int32 last;
  bool operator==(const Columns&) const = default;
};

Columns codedColumns(const TG3ImageInfo& info, gr_uint32 subband) {
  const TG3Rect coded = tg3_codedSupport(info, subband);
  return {coded.left, coded.right};
}

TEST(TG3SceneGeometryTest, PutsAWholeImageAtFullSizeWhereItIs) {
  Pipe::Geometry geometry;
  ASSERT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 19), 0, geometry), GR_STATUS_OK);
  EXPECT_EQ(geometry.width, 20u);
  EXPECT_EQ(geometry.levels, 2u);
  EXPECT_EQ(geometry.scale, 0);
  EXPECT_EQ(geometry.columns.first, 0u);
  EXPECT_EQ(geometry.columns.last, 19u);
}

TEST(TG3SceneGeometryTest, RefusesMoreHalvingsThanThereAreLevels) {
  Pipe::Geometry geometry;
  EXPECT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 0), 2, geometry), GR_STATUS_OK);
  EXPECT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 0), 3, geometry),
            TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(tg3_locateScene(croppedImage(1), rectOf(0, 0), 2, geometry), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3SceneGeometryTest, ShiftsACroppedImageAndCountsItsRemovedLevels) {
  Pipe::Geometry geometry;
  ASSERT_EQ(tg3_locateScene(croppedImage(1), rectOf(0, 2), 0, geometry), GR_STATUS_OK);
  EXPECT_EQ(geometry.scale, 1);
  EXPECT_EQ(geometry.levels, 1u);
  EXPECT_EQ(geometry.width, 10u);
  EXPECT_EQ(geometry.columns.first, 3u);
  EXPECT_EQ(geometry.columns.last, 5u);
}

TEST(TG3SceneGeometryTest, SynthesizesMoreLevelsThanThereAreForAnEnlargedImage) {
  Pipe::Geometry geometry;
  ASSERT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 79), -2, geometry), GR_STATUS_OK);
  EXPECT_EQ(geometry.levels, 4u);
  EXPECT_EQ(geometry.width, 80u);
  EXPECT_EQ(geometry.scale, -2);
}

TEST(TG3SceneGeometryTest, RefusesARectangleThatLeavesTheWholeImage) {
  Pipe::Geometry geometry;
  const TG3ImageInfo cropped = croppedImage(0);
  EXPECT_EQ(tg3_locateScene(cropped, rectOf(0, 12), 0, geometry), GR_STATUS_OK);
  EXPECT_EQ(tg3_locateScene(cropped, rectOf(0, 13), 0, geometry), TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(tg3_locateScene(cropped, rectOf(-7, 0), 0, geometry), GR_STATUS_OK);
  EXPECT_EQ(tg3_locateScene(cropped, rectOf(-8, 0), 0, geometry), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3SceneGeometryTest, RefusesAnInvertedRectangle) {
  Pipe::Geometry geometry;
  EXPECT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(5, 4), 0, geometry),
            TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3SceneGeometryTest, RefusesASizeOfMoreThan31Bits) {
  Pipe::Geometry geometry;
  EXPECT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 0), -26, geometry), GR_STATUS_OK);
  EXPECT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 0), -27, geometry),
            TG3_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(tg3_locateScene(imageOf(20, 20, 2), rectOf(0, 0), -127, geometry),
            TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3CodedSupportTest, IsTheWholeSubbandWhereTheWholeImageIsVisible) {
  const TG3ImageInfo info = imageOf(21, 20, 2);
  EXPECT_EQ(codedColumns(info, 0), (Columns{0, 5}));
  EXPECT_EQ(codedColumns(info, 6), (Columns{0, 9}));
  EXPECT_EQ(codedColumns(info, 7), (Columns{0, 10}));
}

TEST(TG3CodedSupportTest, IsWhatTheVisiblePartReaches) {
  const TG3ImageInfo info = croppedImage(0);
  for (const gr_uint32 subband : {0u, 1u, 3u})
    EXPECT_EQ(codedColumns(info, subband), (Columns{1, 3}));
  for (const gr_uint32 subband : {2u, 4u}) EXPECT_EQ(codedColumns(info, subband), (Columns{0, 3}));
  for (const gr_uint32 subband : {5u, 7u}) EXPECT_EQ(codedColumns(info, subband), (Columns{3, 6}));
  for (const gr_uint32 subband : {6u, 8u}) EXPECT_EQ(codedColumns(info, subband), (Columns{2, 6}));
}

TEST(TG3CodedSupportTest, CountsFromTheVisibleImageWhereLevelsWereRemoved) {
  const TG3ImageInfo info = croppedImage(1);
  for (const gr_uint32 subband : {0u, 1u, 3u})
    EXPECT_EQ(codedColumns(info, subband), (Columns{1, 3}));
  for (const gr_uint32 subband : {2u, 4u}) EXPECT_EQ(codedColumns(info, subband), (Columns{0, 3}));
  EXPECT_EQ(codedColumns(info, 5), (Columns{3, 5}));
}

TEST(TG3CodedSupportTest, IsEmptyForSubbandsOfRemovedLevels) {
  EXPECT_TRUE(tg3_codedSupport(croppedImage(2), 5).isEmpty());
}

TEST(TG3CodedSupportTest, CutsASubblockToThePartThatIsCoded) {
  TG3CodedRange columns;
  TG3CodedRange rows;
  tg3_codedRanges({4, 8, 7, 11}, {5, 0, 20, 9}, columns, rows);
  EXPECT_EQ(columns, (TG3CodedRange{1, 3}));
  EXPECT_EQ(rows, (TG3CodedRange{0, 1}));
  tg3_codedRanges({4, 8, 7, 11}, {8, 0, 20, 7}, columns, rows);
  EXPECT_TRUE(columns.empty());
  EXPECT_TRUE(rows.empty());
}

}  // namespace
