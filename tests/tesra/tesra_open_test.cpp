// What a host learns when it opens Tesra files of every kind.

#include <gtest/gtest.h>

#include <cstring>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_pixel.h"
#include "tesra/tesra_imageReader.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

TesraBytes preamble(gr_uint8 major, gr_uint8 minor, gr_uint8 revision, char letter) {
  return {'t', 's', 'r', 'a', major, minor, revision, static_cast<gr_uint8>(letter)};
}

GR_STATUS openStatus(const TesraBytes& bytes) {
  TesraHandle handle(bytes);
  EXPECT_EQ(handle.image() == nullptr, handle.status() != 0);
  return handle.status();
}

TesraBytes fileWithGeoref(const TG3TestGeoref& georef) {
  const TG3TestImage image = tesra_grayImage(20, 10, 1);
  TG3Writer writer;
  writer.addImage(image, tesra_noise(image));
  writer.addMetadata(3, 0, 0, tg3_georefBlock(georef));
  return writer.bytes();
}

// A block of records with one scalar of 32 bits.
TesraBytes classicalBlock(const std::string& name, gr_uint32 value) {
  TG3TestBytes block;
  block.put(1, 2).put(0, 2);
  block.put(0, 4).put(name).put(3, 4).put(1, 4).put(1, 4).put(1, 4).put(value, 4);
  block.put(0, 4).put("IMAGE::EOM").put(1, 4).put(1, 4).put(1, 4).put(1, 4).put(0, 1);
  return block.bytes();
}

TesraBytes fileWithClassicalBlock(const TesraBytes& block) {
  const TG3TestImage image = tesra_grayImage(20, 10, 1);
  TG3Writer writer;
  writer.addImage(image, tesra_noise(image));
  writer.addMetadata(1, 0, 0, block);
  return writer.bytes();
}

TEST(TesraOpenTest, RefusesOtherFiles) {
  EXPECT_EQ(openStatus({}), 50607u);
  EXPECT_EQ(openStatus({'t', 's', 'r', 'a'}), 50607u);
  EXPECT_EQ(openStatus({'N', 'I', 'T', 'F', '0', '2', '.', '1', '0'}), 50607u);
}

TEST(TesraOpenTest, RefusesGenerationsThatThereAreNot) {
  EXPECT_EQ(openStatus(preamble(0, 0, 26, 't')), 50607u);
  EXPECT_EQ(openStatus(preamble(4, 0, 26, 't')), 50607u);
}

TEST(TesraOpenTest, ReadsFilesThatBeginWithOneOrTwoAsTheOlderGeneration) {
  EXPECT_EQ(openStatus(preamble(1, 0, 0, 0)), 8101u);
  EXPECT_EQ(openStatus(preamble(1, 2, 0, 0)), 8105u);
  EXPECT_EQ(openStatus(preamble(2, 0, 0, 0)), 8105u);
}

TEST(TesraOpenTest, RefusesVersionsThatCameLater) {
  EXPECT_EQ(openStatus(preamble(3, 0, 26, 'u')), 2006u);
  EXPECT_EQ(openStatus(preamble(3, 0, 25, 't')), 2006u);
}

TEST(TesraOpenTest, FindsNoImageInAFileOfAPreambleAlone) {
  for (char letter = 'o'; letter <= 't'; ++letter) {
    EXPECT_EQ(openStatus(preamble(3, 0, 26, letter)), 3u);
  }
}

TEST(TesraOpenTest, NamesTheFileThatCannotBeOpened) {
  ASSERT_EQ(initializeStatusStrings(), 0u);
  gric_image image = nullptr;
  EXPECT_EQ(gric_openTesraImageFile(&image, "/there/is/no/such.tsra"), 50613u);
  EXPECT_EQ(image, nullptr);
  const std::string message = getLastStatusString(50613);
  EXPECT_NE(message.find("/there/is/no/such.tsra"), std::string::npos) << message;
  EXPECT_NE(message.find("[50613]"), std::string::npos) << message;
  EXPECT_EQ(terminateStatusStrings(), 0u);
}

TEST(TesraOpenTest, ReadsAWrappedImageOfTheOlderGeneration) {
  TG3Writer writer;
  writer.addPacket({.type = 7}, preamble(2, 0, 0, 0));
  EXPECT_EQ(openStatus(writer.bytes()), 8105u);
}

TEST(TesraOpenTest, RefusesTwoHeadersOfOneImage) {
  const TG3TestImage image = tesra_grayImage(8, 8, 1);
  TG3Writer writer;
  writer.addHeader(image);
  writer.addImage(image, tesra_noise(image));
  EXPECT_EQ(openStatus(writer.bytes()), 2010u);
}

TEST(TesraOpenTest, TellsSizeBandsTypesAndMagnifications) {
  TG3TestImage image = tesra_grayImage(21, 10, 3);
  image.numComponents = 3;
  image.imageColorSpace = 10;
  image.domainBits = 15;
  image.dynamicRangeMin = -100;
  TesraHandle handle(tesra_fileOf(image));
  ASSERT_EQ(handle.status(), 0u);
  EXPECT_EQ(gric_getWidth(handle.image()), 21u);
  EXPECT_EQ(gric_getHeight(handle.image()), 10u);
  EXPECT_EQ(gric_getNumBands(handle.image()), 3u);
  EXPECT_EQ(gric_getColorSpace(handle.image()), GRIC_COLORSPACE_RGB);
  EXPECT_EQ(gric_getDataType(handle.image()), GRIC_DATATYPE_SINT16);
  EXPECT_EQ(gric_getMinMagnification(handle.image()), 0.125);
  EXPECT_EQ(gric_getMaxMagnification(handle.image()), 170141183460469231731687303715884105728.0);
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  EXPECT_EQ(gric_getDimsAtMag(handle.image(), 0.125, &width, &height), 0u);
  EXPECT_EQ(width, 3u);
  EXPECT_EQ(height, 2u);
  EXPECT_EQ(gric_getDimsAtMag(handle.image(), 0.1, &width, &height), 3u);
}

TEST(TesraOpenTest, TellsTheVisiblePartOfACroppedImage) {
  TG3TestImage image = tesra_grayImage(20, 20, 2);
  image.virtualSupport = {7, 3, 12, 3, 1};
  TesraHandle handle(tesra_fileOf(image));
  ASSERT_EQ(handle.status(), 0u);
  EXPECT_EQ(gric_getWidth(handle.image()), 3u);
  EXPECT_EQ(gric_getHeight(handle.image()), 1u);
  EXPECT_EQ(gric_getMinMagnification(handle.image()), 0.5);
}

TEST(TesraOpenTest, RefusesColorSpacesFirstAndThenDataTypes) {
  TG3TestImage image = tesra_grayImage(8, 8, 1);
  image.domainBits = 24;
  EXPECT_EQ(openStatus(tesra_fileOf(image)), 50602u);
  image.domainBits = 48;
  EXPECT_EQ(openStatus(tesra_fileOf(image)), 50602u);
  image.imageColorSpace = 2;
  EXPECT_EQ(openStatus(tesra_fileOf(image)), 50601u);
}

TEST(TesraOpenTest, RefusesAColorSpaceOfAnotherBandCount) {
  TG3TestImage image = tesra_grayImage(8, 8, 1);
  for (const gr_uint8 colorSpace : {10, 11}) {
    image.imageColorSpace = colorSpace;
    EXPECT_EQ(openStatus(tesra_fileOf(image)), 50601u);
  }
  image.imageColorSpace = 5;
  EXPECT_EQ(openStatus(tesra_fileOf(image)), 0u);
}

TEST(TesraOpenTest, PlacesAnImageWithoutAPositionByItsRows) {
  TesraHandle handle(tesra_fileOf(tesra_grayImage(20, 10, 1)));
  EXPECT_EQ(gric_getGeoXOrigin(handle.image()), 0.0);
  EXPECT_EQ(gric_getGeoYOrigin(handle.image()), 9.0);
  EXPECT_EQ(gric_getGeoXResolution(handle.image()), 1.0);
  EXPECT_EQ(gric_getGeoYResolution(handle.image()), -1.0);
}

TEST(TesraOpenTest, TakesThePositionOfTheGeoreferenceWithNorthUp) {
  for (const double yRes : {2.5, -2.5}) {
    TesraHandle handle(fileWithGeoref({.geo = {{1000, 2000, 1050, 1975, 2, yRes}}}));
    ASSERT_EQ(handle.status(), 0u);
    EXPECT_EQ(gric_getGeoXOrigin(handle.image()), 1000.0);
    EXPECT_EQ(gric_getGeoYOrigin(handle.image()), 2000.0);
    EXPECT_EQ(gric_getGeoXResolution(handle.image()), 2.0);
    EXPECT_EQ(gric_getGeoYResolution(handle.image()), -2.5);
    EXPECT_EQ(gric_getGeoXRotation(handle.image()), 0.0);
  }
}

TEST(TesraOpenTest, TakesBackgroundAndNoDataFromTheGeoreference) {
  const TesraFile file(fileWithGeoref({.noData = {{7}}, .background = {{200}}}));
  const GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
  ASSERT_EQ(reader->initialize(GRFileSpec(file.path().c_str()), false, TESRA_MEMORY_DEFAULT,
                               TESRA_STREAM_CLOSE),
            0u);
  ASSERT_NE(reader->getBackgroundPixel(), nullptr);
  EXPECT_EQ(reader->getBackgroundPixel()->getSample(0).getValueUint8(), 200);
  ASSERT_NE(reader->getNoDataPixel(), nullptr);
  EXPECT_EQ(reader->getNoDataPixel()->getSample(0).getValueUint8(), 7);
}

TEST(TesraOpenTest, ShowsTheRecordsOfTheFileAndWhereItCameFrom) {
  TesraHandle handle(fileWithClassicalBlock(classicalBlock("IMAGE::WIDTH", 12345)));
  ASSERT_EQ(handle.status(), 0u);
  ASSERT_EQ(gric_getNumMetadataRecords(handle.image()), 2u);
  const char* tag = nullptr;
  gr_int32 dataType = 0;
  gr_uint32 numDims = 0;
  const gr_uint32* dims = nullptr;
  const void* data = nullptr;
  ASSERT_EQ(gric_getMetadataRecord(handle.image(), 0, &tag, &dataType, &numDims, &dims, &data), 0u);
  EXPECT_STREQ(tag, "IMAGE::WIDTH");
  gr_uint32 value = 0;
  std::memcpy(&value, data, sizeof(value));
  EXPECT_EQ(value, 12345u);
  ASSERT_EQ(gric_getMetadataRecord(handle.image(), 1, &tag, &dataType, &numDims, &dims, &data), 0u);
  EXPECT_STREQ(tag, "IMAGE::INPUT_NAME");
  EXPECT_EQ(gric_getMetadataRecord(handle.image(), 2, &tag, &dataType, &numDims, &dims, &data),
            50503u);
}

TEST(TesraOpenTest, RefusesABlockOfRecordsThatEndsEarly) {
  TesraBytes block = classicalBlock("IMAGE::WIDTH", 1);
  block.pop_back();
  EXPECT_EQ(openStatus(fileWithClassicalBlock(block)), 50505u);
}

TEST(TesraOpenTest, TellsWhetherAnImageIsLocked) {
  TG3TestImage image = tesra_grayImage(8, 8, 1);
  TesraHandle open(tesra_fileOf(image));
  EXPECT_EQ(gric_isTesraLocked(open.image()), 0);
  image.isLocked = true;
  TesraHandle locked(tesra_fileOf(image));
  EXPECT_EQ(gric_isTesraLocked(locked.image()), 1);
  EXPECT_EQ(gric_setTesraPassword(locked.image(), "secret"), 0u);
  EXPECT_EQ(gric_setTesraPassword(locked.image(), nullptr), 52001u);
  EXPECT_EQ(gric_isTesraLocked(locked.image()), 1);
}

}  // namespace
