// The readers of uncompressed images, of one block and of many.
#include <filesystem>

#include "image/gri_pixel.h"
#include "nitf/nitf_rawSimpleReader.h"
#include "tests/support/nitf_rawReaderTest.h"

namespace {

using NITFRawReadersTest = NITFRawReaderTest;

TEST_F(NITFRawReadersTest, EveryLayoutAndTypeIsDecodedExactly) {
  const std::pair<const char*, gr_uint32> types[] = {{"INT", 1}, {"INT", 2}, {"INT", 4}, {"SI ", 1},
                                                     {"SI ", 2}, {"SI ", 4}, {"R  ", 4}};
  const std::pair<gr_uint32, gr_uint32> blocks[] = {{0, 0}, {8, 8}, {5, 7}, {33, 4}, {4, 21}};
  for (const char mode : {'B', 'P', 'R', 'S'}) {
    for (const auto& [type, sampleBytes] : types) {
      for (const gr_uint32 numBands : {1U, 2U, 3U, 4U, 7U, 12U}) {
        for (const auto& [blockCols, blockRows] : blocks) {
          SCOPED_TRACE(testing::Message() << mode << ' ' << type << sampleBytes << " bands "
                                          << numBands << " block " << blockCols);
          const NITFTestPixels pixels = {.numCols = 33,
                                         .numRows = 21,
                                         .numBands = numBands,
                                         .sampleBytes = sampleBytes,
                                         .mode = mode,
                                         .blockCols = blockCols,
                                         .blockRows = blockRows,
                                         .type = type};
          ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, pixels)), GR_STATUS_OK);
          ASSERT_NO_FATAL_FAILURE(expectPixels(pixels));
        }
      }
    }
  }
}

TEST_F(NITFRawReadersTest, OneBlockAndManyHaveReadersOfTheirOwn) {
  ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, {})), GR_STATUS_OK);
  EXPECT_NE(dynamic_cast<NITFRawSimpleReader*>(m_reader.get()), nullptr);
  ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, {.blockCols = 4, .blockRows = 5})), GR_STATUS_OK);
  EXPECT_NE(dynamic_cast<NITFRawBlockReader*>(m_reader.get()), nullptr);
}

TEST_F(NITFRawReadersTest, AnyRectangleIsDecodedExactly) {
  for (const char mode : {'B', 'P', 'R', 'S'}) {
    for (const gr_uint32 blockSize : {0U, 16U}) {
      SCOPED_TRACE(testing::Message() << mode << blockSize);
      const NITFTestPixels pixels = {.numCols = 61,
                                     .numRows = 150,
                                     .numBands = 3,
                                     .sampleBytes = 2,
                                     .mode = mode,
                                     .blockCols = blockSize,
                                     .blockRows = blockSize};
      ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, pixels)), GR_STATUS_OK);
      for (const gr_uint32 col : {0U, 15U, 16U, 40U}) {
        for (const gr_uint32 row : {0U, 1U, 63U, 100U}) {
          ASSERT_NO_FATAL_FAILURE(expectRectangle(pixels, col, row, 1, 1));
          ASSERT_NO_FATAL_FAILURE(expectRectangle(pixels, col, row, 61 - col, 50));
          ASSERT_NO_FATAL_FAILURE(expectRectangle(pixels, col, row, 17, 150 - row));
        }
      }
    }
  }
}

TEST_F(NITFRawReadersTest, LinesThatAreLongerThanTheBuffersAreDecodedExactly) {
  for (const char mode : {'B', 'P', 'R', 'S'}) {
    SCOPED_TRACE(mode);
    // A line of a block is 9999 * 2 bytes, with all bands 340 kB.
    const NITFTestPixels pixels = {.numCols = 12000,
                                   .numRows = 3,
                                   .numBands = 17,
                                   .sampleBytes = 2,
                                   .mode = mode,
                                   .blockCols = 9999,
                                   .blockRows = 2};
    ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, pixels)), GR_STATUS_OK);
    for (const gr_uint64 cacheBytes : {NITFRawBlockReader::CACHE_BYTES, gr_uint64{1000}}) {
      blockReader().setCacheBytes(cacheBytes);
      ASSERT_NO_FATAL_FAILURE(expectPixels(pixels));
      ASSERT_NO_FATAL_FAILURE(expectRectangle(pixels, 9990, 1, 20, 2));
    }
  }
}

TEST_F(NITFRawReadersTest, EveryVersionIsDecoded) {
  const NITFTestPixels pixels = {.numCols = 10, .numRows = 9, .blockCols = 4, .blockRows = 4};
  for (const char* const version : {NITF_TEST_20, NITF_TEST_21, NITF_TEST_NSIF}) {
    SCOPED_TRACE(version);
    ASSERT_EQ(openImage(nitfTestImage(version, pixels), version), GR_STATUS_OK);
    expectPixels(pixels);
  }
}

TEST_F(NITFRawReadersTest, APictureOfOneBlockMustHaveItsSize) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
  segment.data.pop_back();
  EXPECT_EQ(openImage(segment), GRI_STATUS_RAW_SIZE);
  segment = nitfTestImage(NITF_TEST_21, {});
  segment.data += "x";
  EXPECT_EQ(openImage(segment), GRI_STATUS_RAW_SIZE);
  // Samples that aren't whole bytes.
  segment = nitfTestImage(NITF_TEST_21, {});
  segment.header.set("NBPP", 12);
  EXPECT_EQ(openImage(segment), GRI_STATUS_RAW_SIZE);
  // A block that is larger than the image, as long as the file is.
  segment = nitfTestImage(NITF_TEST_21, {.blockCols = 8, .blockRows = 5});
  EXPECT_EQ(openImage(segment), GRI_STATUS_RAW_SIZE);
}

TEST_F(NITFRawReadersTest, APictureWithoutPixelsOpensAndDoesntDecode) {
  for (const gr_uint32 blockSize : {0U, 4U}) {
    NITFTestSegment segment =
        nitfTestImage(NITF_TEST_21, {.blockCols = blockSize, .blockRows = blockSize});
    segment.data.clear();
    ASSERT_EQ(openImage(segment), GR_STATUS_OK);
    NITFBands bands;
    EXPECT_EQ(decode(bands), NITF_STATUS_READ_ERROR);
    EXPECT_EQ(decode(*m_reader, 3, 2, 1, 1, bands), NITF_STATUS_READ_ERROR);
  }
}

TEST_F(NITFRawReadersTest, AFileThatShrinksBehindTheReaderFailsTheDecode) {
  for (const gr_uint32 blockSize : {0U, 50U}) {
    // Larger than what a stream reads ahead.
    const NITFTestPixels pixels = {
        .numCols = 200, .numRows = 200, .blockCols = blockSize, .blockRows = blockSize};
    const std::string bytes = nitfTestFileOf(nitfTestImage(NITF_TEST_21, pixels)).bytes();
    const std::string name = write(bytes);
    ASSERT_EQ(openFile(name), GR_STATUS_OK);
    ASSERT_EQ(m_manager->createReader(m_reader, 1), GR_STATUS_OK);
    std::filesystem::resize_file(name, bytes.size() - 1);
    NITFBands bands;
    EXPECT_EQ(decode(bands), NITF_STATUS_READ_ERROR);
    EXPECT_EQ(decode(*m_reader, 199, 199, 1, 1, bands), NITF_STATUS_READ_ERROR);
  }
}

TEST_F(NITFRawReadersTest, ABlockThatIsntWholeFailsAndTheOthersDont) {
  const NITFTestPixels pixels = {.numCols = 8, .numRows = 8, .blockCols = 4, .blockRows = 4};
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, pixels);
  segment.data.pop_back();
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  NITFBands bands;
  EXPECT_EQ(decode(bands), NITF_STATUS_READ_ERROR);
  expectRectangle(pixels, 0, 0, 8, 4);
  expectRectangle(pixels, 0, 4, 4, 4);
  // What failed isn't held for good.
  EXPECT_EQ(decode(*m_reader, 4, 4, 1, 1, bands), NITF_STATUS_READ_ERROR);
  EXPECT_EQ(decode(*m_reader, 4, 4, 1, 1, bands), NITF_STATUS_READ_ERROR);
  expectRectangle(pixels, 0, 4, 4, 4);
  // Nor is any row of it given out, whatever part is read.
  blockReader().setCacheBytes(8);
  EXPECT_EQ(decode(*m_reader, 4, 4, 4, 1, bands), NITF_STATUS_READ_ERROR);
  expectRectangle(pixels, 0, 4, 4, 4);
}

TEST_F(NITFRawReadersTest, AStripInsideOfTheCacheReadsNoBytes) {
  const NITFTestPixels pixels = {.numCols = 300,
                                 .numRows = 300,
                                 .numBands = 3,
                                 .mode = 'P',
                                 .blockCols = 100,
                                 .blockRows = 100};
  openCounting(nitfTestImage(NITF_TEST_21, pixels));
  expectRectangle(pixels, 10, 10, 150, 20);
  EXPECT_EQ(m_count->takeCount(), 2u * 100 * 100 * 3);
  expectRectangle(pixels, 0, 0, 200, 100);
  expectRectangle(pixels, 100, 99, 100, 1);
  EXPECT_EQ(m_count->takeCount(), 0u);
  expectRectangle(pixels, 199, 99, 2, 1);
  EXPECT_NE(m_count->takeCount(), 0u);
}

TEST_F(NITFRawReadersTest, ADecodeReadsEachBlockOnceWhateverTheHeightOfItsStrips) {
  for (const gr_uint32 blockRows : {20U, 64U, 100U}) {
    SCOPED_TRACE(blockRows);
    const NITFTestPixels pixels = {
        .numCols = 200, .numRows = 300, .numBands = 2, .blockCols = 50, .blockRows = blockRows};
    const NITFTestSegment segment = nitfTestImage(NITF_TEST_21, pixels);
    openCounting(segment);
    expectPixels(pixels);
    EXPECT_LE(m_count->takeCount(), segment.data.size());
  }
}

TEST_F(NITFRawReadersTest, RowsOfBlocksThatAreTooLargeAreReadByPartsEachByteOnce) {
  for (const char mode : {'B', 'P', 'R', 'S'}) {
    SCOPED_TRACE(mode);
    const NITFTestPixels pixels = {.numCols = 90,
                                   .numRows = 620,
                                   .numBands = 2,
                                   .mode = mode,
                                   .blockCols = 90,
                                   .blockRows = 610};
    openCounting(nitfTestImage(NITF_TEST_21, pixels));
    blockReader().setCacheBytes(gr_uint64{90} * 2 * 200);  // three strips
    expectPixels(pixels);
    EXPECT_LE(m_count->takeCount(), 90u * 620 * 2);
    expectRectangle(pixels, 80, 500, 10, 120);
  }
}

TEST_F(NITFRawReadersTest, StripsThatAreTooLargeForTheCacheAreRead) {
  // Room for a few rows, and not even for one.
  for (const gr_uint64 cacheBytes : {gr_uint64{2000}, gr_uint64{10}}) {
    for (const char mode : {'B', 'P', 'R', 'S'}) {
      SCOPED_TRACE(testing::Message() << mode << ' ' << cacheBytes);
      NITFTestPixels pixels = {.numCols = 90,
                               .numRows = 150,
                               .numBands = 3,
                               .sampleBytes = 2,
                               .mode = mode,
                               .blockCols = 60,
                               .blockRows = 70};
      openCounting(nitfTestImage(NITF_TEST_21, pixels));
      blockReader().setCacheBytes(cacheBytes);
      expectPixels(pixels);
      expectRectangle(pixels, 55, 60, 10, 20);

      // With a table of blocks, and with pad pixels.
      openCounting(nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {}}));
      blockReader().setCacheBytes(cacheBytes);
      expectPixels(pixels);
      pixels.sample = [](gr_uint32 band, gr_uint32 row, gr_uint32 col) {
        return row % 3 == 0 ? 7U : 100 + band + col;
      };
      openCounting(nitfTestMaskedImage(NITF_TEST_21, pixels, {.padCode = "\x07"}));
      blockReader().setCacheBytes(cacheBytes);
      pixels.sample = [](gr_uint32 band, gr_uint32 row, gr_uint32 col) {
        return row % 3 == 0 ? 0U : 100 + band + col;
      };
      expectPixels(pixels);
    }
  }
}

TEST_F(NITFRawReadersTest, TheRangeOf16BitSamplesFollowsFromThePrecision) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {.sampleBytes = 2});
  segment.header.set("ABPP", 11);
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  EXPECT_EQ(m_reader->getMinDynamicRange().getSample(0).getValueUint16(), 0);
  EXPECT_EQ(m_reader->getMaxDynamicRange().getSample(0).getValueUint16(), 2047);
  segment.header.set("ABPP", 16);
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  EXPECT_EQ(m_reader->getMaxDynamicRange().getSample(0).getValueUint16(), 65535);
  EXPECT_TRUE(m_reader->isFullDynamicRange());
  // Samples of other types have the range of their type.
  segment = nitfTestImage(NITF_TEST_21, {});
  segment.header.set("ABPP", 5);
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  EXPECT_TRUE(m_reader->isFullDynamicRange());
  segment = nitfTestImage(NITF_TEST_21, {.sampleBytes = 2, .type = "SI "});
  segment.header.set("ABPP", 11);
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  EXPECT_TRUE(m_reader->isFullDynamicRange());
}

TEST_F(NITFRawReadersTest, ALocationMovesTheOrigin) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  EXPECT_TRUE(m_reader->isGeoCoordImplicit());
  EXPECT_EQ(m_reader->getGeoCoord().getYOrigin(), 4);
  segment.header.set("ILOCROW", "00012").set("ILOCCOL", "-0034");
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  EXPECT_EQ(m_reader->getGeoCoord().getXOrigin(), -34);
  EXPECT_EQ(m_reader->getGeoCoord().getYOrigin(), 4 - 12);
}

TEST_F(NITFRawReadersTest, TheReaderHasTheRecordsOfTheFileThenThoseOfTheImage) {
  ASSERT_EQ(openImage(nitfTestImage(NITF_TEST_21, {})), GR_STATUS_OK);
  const GRIMetadataDatabase& records = m_reader->getMetadata();
  const GRIMetadataRecord* first = nullptr;
  ASSERT_EQ(records.getDataByIndex(0, first), GR_STATUS_OK);
  EXPECT_STREQ(first->getTagName(), "NITF::FH000::SCLAS");
  EXPECT_TRUE(records.has("NITF::FH000::NUMRES"));
  EXPECT_TRUE(records.has("NITF::IM001::SCLAS"));
  EXPECT_EQ(m_reader->getSourceFileSize(), static_cast<gr_int64>(m_manager->getFileSize()));
  EXPECT_TRUE(m_reader->isSelective());
}

}  // namespace
