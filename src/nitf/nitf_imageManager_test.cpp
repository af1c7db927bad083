#include "nitf/nitf_imageManager.h"

#include "image/gri_geoCoord.h"
#include "metadata/gri_metadataDatabase.h"
#include "tests/support/nitf_testFiles.h"

namespace {

class NITFImageManagerTest : public NITFFileTest {
 protected:
  static NITFTestSegment vectorQuantized() {
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set("IC", "C4");
    segment.header.insertBefore("NBANDS", "COMRAT", "01.0");
    return segment;
  }
};

TEST_F(NITFImageManagerTest, AFileThatCantBeOpenedIsReported) {
  EXPECT_EQ(openFile(path("no such file")), NITF_STATUS_OPEN_ERROR);
  EXPECT_EQ(openFile(m_directory.path()), NITF_STATUS_OPEN_ERROR);
}

TEST_F(NITFImageManagerTest, AFileWithoutItsFirstBytesIsReported) {
  EXPECT_EQ(open(""), NITF_STATUS_READ_ERROR);
  EXPECT_EQ(open(std::string("NITF02.10") + std::string(15, ' ')), NITF_STATUS_READ_ERROR);
  EXPECT_EQ(open(std::string("NITF02.10") + std::string(16, ' ')), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFImageManagerTest, TheFirstBytesStayWhateverFails) {
  NITFTestFile file = nitfTestFileOf(vectorQuantized());
  const std::string bytes = file.bytes();
  ASSERT_EQ(open(bytes), GR_STATUS_OK);
  EXPECT_EQ(m_manager->createReader(m_reader, 1), NITF_STATUS_VQ);
  const NITFImageManager::FirstBytes& first = m_manager->getFirstBytes();
  EXPECT_EQ(std::string(first.begin(), first.end()), bytes.substr(0, 25));
}

TEST_F(NITFImageManagerTest, AnImageNumberThatIsntThereIsReported) {
  ASSERT_EQ(open(nitfTestFileOf(nitfTestImage(NITF_TEST_21, {}))), GR_STATUS_OK);
  EXPECT_EQ(m_manager->createReader(m_reader, 0), NITF_STATUS_SEGMENT_NUMBER);
  EXPECT_EQ(m_manager->createReader(m_reader, 2), NITF_STATUS_SEGMENT_NUMBER);
  EXPECT_FALSE(m_reader);
  GRIImageStage* stage = nullptr;
  EXPECT_EQ(m_manager->createImageStage(1, stage), NITF_STATUS_SEGMENT_NUMBER);
  EXPECT_EQ(m_manager->createImageStage(0xFFFFFFFF, stage), NITF_STATUS_SEGMENT_NUMBER);
  EXPECT_EQ(stage, nullptr);
  ASSERT_EQ(m_manager->createImageStage(0, stage), GR_STATUS_OK);
  EXPECT_EQ(stage->getWidth(), 7u);
  stage->release();
}

TEST_F(NITFImageManagerTest, AnImageThatCantBeReadFailsAloneWhereverItStands) {
  NITFTestFile file;
  file.images = {vectorQuantized(), nitfTestImage(NITF_TEST_21, {})};
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(m_manager->createReader(m_reader, 1), NITF_STATUS_VQ);
  ASSERT_EQ(m_manager->createReader(m_reader, 2), GR_STATUS_OK);
  expectPixels({});
}

TEST_F(NITFImageManagerTest, CompressionsWithoutAReaderAreReported) {
  NITFTestSegment segment = vectorQuantized();
  segment.header.set("IC", "C3");
  EXPECT_EQ(openImage(segment), NITF_STATUS_JPEG);
  segment.header.set("IC", "C8");
  EXPECT_EQ(openImage(segment), NITF_STATUS_IC);
}

TEST_F(NITFImageManagerTest, TheRecordsOfAllImagesCanBeMerged) {
  NITFTestFile file;
  file.images = {nitfTestImage(NITF_TEST_21, {}), nitfTestImage(NITF_TEST_21, {})};
  ASSERT_EQ(open(file), GR_STATUS_OK);
  GRIMetadataDatabase database;
  ASSERT_EQ(m_manager->mergeMetadata(database), GR_STATUS_OK);
  EXPECT_TRUE(database.has("NITF::IM001::SCLAS"));
  EXPECT_TRUE(database.has("NITF::IM002::SCLAS"));
  EXPECT_FALSE(database.has("NITF::FH000::SCLAS"));
  EXPECT_EQ(m_manager->mergeMetadata(database), GRI_STATUS_TAG_DUPLICATE);

  file.images.push_back(vectorQuantized());
  ASSERT_EQ(open(file), GR_STATUS_OK);
  GRIMetadataDatabase other;
  EXPECT_EQ(m_manager->mergeMetadata(other), NITF_STATUS_VQ);
}

TEST_F(NITFImageManagerTest, AWorldFilePlacesTheFirstImageAlone) {
  NITFTestFile file;
  file.images = {nitfTestImage(NITF_TEST_21, {}), nitfTestImage(NITF_TEST_21, {})};
  file.images[0].header.set("ILOCROW", "00010");
  const std::string name = write(file.bytes(), "picture.ntf");
  const std::string world = "2\n0\n0\n-3\n1000\n2000\n";
  m_directory.fileOf("picture.nfw", Bytes(world.begin(), world.end()));
  ASSERT_EQ(openFile(name), GR_STATUS_OK);
  ASSERT_EQ(m_manager->createReader(m_reader, 1), GR_STATUS_OK);
  EXPECT_FALSE(m_reader->isGeoCoordImplicit());
  EXPECT_EQ(m_reader->getGeoCoord().getXOrigin(), 1000);
  EXPECT_EQ(m_reader->getGeoCoord().getYOrigin(), 2000 - 3 * 10);
  ASSERT_EQ(m_manager->createReader(m_reader, 2), GR_STATUS_OK);
  EXPECT_TRUE(m_reader->isGeoCoordImplicit());

  ASSERT_EQ(openFile(name, false), GR_STATUS_OK);
  ASSERT_EQ(m_manager->createReader(m_reader, 1), GR_STATUS_OK);
  EXPECT_EQ(m_reader->getGeoCoord().getXOrigin(), 0);
}

TEST_F(NITFImageManagerTest, ABadWorldFileFailsTheReader) {
  const std::string name = write(nitfTestFileOf(nitfTestImage(NITF_TEST_21, {})).bytes());
  m_directory.fileOf("file.nfw", {'1', ' ', '2'});
  ASSERT_EQ(openFile(name), GR_STATUS_OK);
  EXPECT_EQ(m_manager->createReader(m_reader, 1), GRI_STATUS_READ_ERROR);
}

TEST_F(NITFImageManagerTest, AReaderKeepsItsManagerAliveAndNotTheReverse) {
  ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, {})), GR_STATUS_OK);
  m_manager.reset();
  expectPixels({});
}

TEST_F(NITFImageManagerTest, TwoReadersOfOneFileWorkSideBySide) {
  const NITFTestPixels pixels = {.numCols = 200, .numRows = 200, .blockCols = 64, .blockRows = 64};
  ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, pixels)), GR_STATUS_OK);
  NITFReaderPointer other;
  ASSERT_EQ(m_manager->createReader(other, 1), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < 200; row += 10) {
    NITFBands one;
    NITFBands two;
    ASSERT_EQ(decode(*m_reader, 0, row, 200, 10, one), GR_STATUS_OK);
    ASSERT_EQ(decode(*other, 0, row, 200, 10, two), GR_STATUS_OK);
    EXPECT_EQ(one, two);
  }
}

}  // namespace
