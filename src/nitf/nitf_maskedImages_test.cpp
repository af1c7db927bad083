// Images with absent blocks and pad pixels, and what shows there.
#include <array>

#include "image/gri_pixel.h"
#include "tests/support/nitf_rawReaderTest.h"

namespace {

using NITFMaskedImagesTest = NITFRawReaderTest;

TEST_F(NITFMaskedImagesTest, ABlockBehindAMaskMustBeWholeToo) {
  const NITFTestPixels pixels = {.numCols = 8, .numRows = 8, .blockCols = 4, .blockRows = 4};
  NITFTestSegment segment = nitfTestMaskedImage(NITF_TEST_21, pixels, {.gap = 3});
  segment.data.pop_back();
  ASSERT_EQ(openImage(segment), GR_STATUS_OK);
  blockReader().setCacheBytes(8);
  NITFBands bands;
  EXPECT_EQ(decode(*m_reader, 4, 4, 4, 1, bands), NITF_STATUS_READ_ERROR);
  expectRectangle(pixels, 0, 0, 8, 4);
}

TEST_F(NITFMaskedImagesTest, EntriesThatPointBehindTheDataFailTheDecode) {
  const NITFTestPixels pixels = {.numCols = 8, .numRows = 8, .blockCols = 4, .blockRows = 4};
  for (const char* const entry : {"\xFF\xFF\xFF\xFE", "\x00\x00\x00\x31", "\x7F\xFF\xFF\xFF"}) {
    NITFTestSegment segment = nitfTestMaskedImage(NITF_TEST_21, pixels, {});
    segment.data.replace(10, 4, std::string(entry, 4));
    ASSERT_EQ(openImage(segment), GR_STATUS_OK);
    NITFBands bands;
    EXPECT_EQ(decode(bands), NITF_STATUS_READ_ERROR);
    expectRectangle(pixels, 0, 4, 8, 4);
  }
}

TEST_F(NITFMaskedImagesTest, EntriesMayPointToAnyPlaceInTheData) {
  const NITFTestPixels pixels = {.numCols = 8, .numRows = 8, .blockCols = 4, .blockRows = 4};
  const std::string data = pixels.allBlocks();
  // Out of order, overlapping, twice the same, and the last place of all.
  const std::array<gr_uint8, 4> places = {33, 7, 7, 48};
  NITFTestSegment segment = nitfTestMaskedImage(NITF_TEST_21, pixels, {});
  for (size_t i = 0; i < 4; ++i) segment.data[10 + 4 * i + 3] = static_cast<char>(places[i]);
  for (const gr_uint64 cacheBytes : {NITFRawBlockReader::CACHE_BYTES, gr_uint64{10}}) {
    ASSERT_EQ(openImage(segment), GR_STATUS_OK);
    blockReader().setCacheBytes(cacheBytes);
    NITFBands bands;
    ASSERT_EQ(decode(bands), GR_STATUS_OK);
    for (size_t row = 0; row < 8; ++row) {
      for (size_t col = 0; col < 8; ++col) {
        const size_t block = places[row / 4 * 2 + col / 4];
        EXPECT_EQ(bands[0][row * 8 + col],
                  static_cast<gr_uint8>(data[block + row % 4 * 4 + col % 4]));
      }
    }
  }
}

TEST_F(NITFMaskedImagesTest, AbsentBlocksShowTheBackgroundInStripsThatAreTooLargeForTheCache) {
  NITFTestPixels pixels = {
      .numCols = 8, .numRows = 8, .numBands = 2, .blockCols = 4, .blockRows = 4};
  for (const char mode : {'B', 'P', 'R', 'S'}) {
    SCOPED_TRACE(mode);
    pixels.mode = mode;
    pixels.sample = NITFTestPixels::defaultSample;
    openCounting(nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {1}}));
    blockReader().setCacheBytes(1);
    pixels.sample = [mode](gr_uint32 band, gr_uint32 row, gr_uint32 col) {
      const bool isAbsent = row < 4 && col >= 4 && (mode != 'S' || band == 0);
      return isAbsent ? 0U : NITFTestPixels::defaultSample(band, row, col);
    };
    expectPixels(pixels);
  }
}

TEST_F(NITFMaskedImagesTest, AbsentBlocksAreNotReadAndShowTheBackground) {
  const NITFTestPixels pixels = {
      .numCols = 8,
      .numRows = 8,
      .blockCols = 4,
      .blockRows = 4,
      .sample = [](gr_uint32, gr_uint32 row, gr_uint32 col) { return 100 + row * 8 + col; }};
  NITFTestFile file = nitfTestFileOf(
      nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {0, 3}, .padCode = "\xC8"}));
  file.header.set("FBKGC", "\x28zz");
  ASSERT_EQ(openImage(file), GR_STATUS_OK);
  NITFBands bands;
  ASSERT_EQ(decode(bands), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < 8; ++row) {
    for (gr_uint32 col = 0; col < 8; ++col) {
      const bool isAbsent = (row < 4) == (col < 4);
      EXPECT_EQ(bands[0][row * 8 + col], isAbsent ? 0x28 : 100 + row * 8 + col);
    }
  }
}

TEST_F(NITFMaskedImagesTest, NothingIsReadForAnAbsentBlock) {
  const NITFTestPixels pixels = {.numCols = 8, .numRows = 8, .blockCols = 4, .blockRows = 4};
  openCounting(nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {1}}));
  NITFBands bands;
  ASSERT_EQ(decode(*m_reader, 4, 0, 4, 4, bands), GR_STATUS_OK);
  EXPECT_EQ(m_count->takeCount(), 0u);
  EXPECT_EQ(bands[0], Bytes(16, 0));
  // What another block left in the cache doesn't show.
  ASSERT_EQ(decode(*m_reader, 0, 0, 4, 4, bands), GR_STATUS_OK);
  ASSERT_EQ(decode(*m_reader, 4, 0, 4, 4, bands), GR_STATUS_OK);
  EXPECT_EQ(bands[0], Bytes(16, 0));
}

TEST_F(NITFMaskedImagesTest, PadPixelsShowTheBackgroundWhereAllBandsAreThePadCode) {
  NITFTestPixels pixels = {
      .numCols = 4, .numRows = 2, .numBands = 3, .mode = 'P', .blockCols = 2, .blockRows = 2};
  // Column 0: all bands are the code; column 1: one of them isn't.
  pixels.sample = [](gr_uint32 band, gr_uint32, gr_uint32 col) {
    return col == 0 || (col == 1 && band != 2) ? 9U : 50U + col;
  };
  NITFTestFile file =
      nitfTestFileOf(nitfTestMaskedImage(NITF_TEST_21, pixels, {.padCode = "\x09"}));
  file.header.set("FBKGC", "\x01\x02\x03");
  ASSERT_EQ(openImage(file), GR_STATUS_OK);
  NITFBands bands;
  ASSERT_EQ(decode(bands), GR_STATUS_OK);
  EXPECT_EQ(bands[0], (Bytes{1, 9, 52, 53, 1, 9, 52, 53}));
  EXPECT_EQ(bands[1], (Bytes{2, 9, 52, 53, 2, 9, 52, 53}));
  EXPECT_EQ(bands[2], (Bytes{3, 51, 52, 53, 3, 51, 52, 53}));
}

TEST_F(NITFMaskedImagesTest, ImagesWithoutABackgroundShowZerosForPadPixelsOfAnyType) {
  const std::pair<const char*, gr_uint32> types[] = {{"INT", 1}, {"INT", 2}, {"INT", 4}, {"SI ", 1},
                                                     {"SI ", 2}, {"SI ", 4}, {"R  ", 4}};
  for (const auto& [type, sampleBytes] : types) {
    SCOPED_TRACE(type + std::to_string(sampleBytes));
    const gr_uint32 code = 0x41200A00 >> (8 * (4 - sampleBytes));
    const NITFTestPixels pixels = {
        .numCols = 4,
        .numRows = 1,
        .numBands = 2,
        .sampleBytes = sampleBytes,
        .blockCols = 2,
        .blockRows = 1,
        .type = type,
        .sample = [code](gr_uint32, gr_uint32, gr_uint32 col) { return col == 1 ? code : 7U; }};
    const std::string padCode = std::string("\x41\x20\x0A\x00", 4).substr(0, sampleBytes);
    ASSERT_EQ(openImage(nitfTestMaskedImage(NITF_TEST_21, pixels, {.padCode = padCode})),
              GR_STATUS_OK);
    NITFTestPixels expected = pixels;
    expected.sample = [](gr_uint32, gr_uint32, gr_uint32 col) { return col == 1 ? 0U : 7U; };
    expectPixels(expected);
  }
}

TEST_F(NITFMaskedImagesTest, AShortPadCodeIsWidenedWithZeros) {
  const NITFTestPixels pixels = {
      .numCols = 4,
      .numRows = 1,
      .sampleBytes = 2,
      .blockCols = 2,
      .blockRows = 1,
      .sample = [](gr_uint32, gr_uint32, gr_uint32 col) { return col == 1 ? 0x00FFU : 0xFFFFU; }};
  ASSERT_EQ(openImage(nitfTestMaskedImage(NITF_TEST_21, pixels, {.padCode = "\xFF"})),
            GR_STATUS_OK);
  EXPECT_EQ(m_reader->getNoDataPixel()->getSample(0).getValueUint16(), 0x00FF);
  NITFBands bands;
  ASSERT_EQ(decode(bands), GR_STATUS_OK);
  EXPECT_EQ(bands[0], (Bytes{0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST_F(NITFMaskedImagesTest, SequentialBlocksMayBeAbsentInSingleBands) {
  const NITFTestPixels pixels = {
      .numCols = 4,
      .numRows = 2,
      .numBands = 2,
      .mode = 'S',
      .blockCols = 2,
      .blockRows = 2,
      .sample = [](gr_uint32 band, gr_uint32, gr_uint32 col) { return 10 * (band + 1) + col; }};
  ASSERT_EQ(
      openImage(nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {1}, .padCode = "\x05"})),
      GR_STATUS_OK);
  NITFBands bands;
  ASSERT_EQ(decode(bands), GR_STATUS_OK);
  EXPECT_EQ(bands[0], (Bytes{10, 11, 5, 5, 10, 11, 5, 5}));
  EXPECT_EQ(bands[1], (Bytes{20, 21, 22, 23, 20, 21, 22, 23}));
}

TEST_F(NITFMaskedImagesTest, AMaskedImageOfOneBlockIsReadAsItIs) {
  const NITFTestPixels pixels;
  ASSERT_EQ(openImage(nitfTestMaskedImage(NITF_TEST_21, pixels, {.padCode = "\x05", .gap = 3})),
            GR_STATUS_OK);
  expectPixels(pixels);
  ASSERT_EQ(openImage(nitfTestMaskedImage(NITF_TEST_21, pixels, {.hasBlockTable = false})),
            GR_STATUS_OK);
  expectPixels(pixels);
  EXPECT_EQ(openImage(nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {0}})),
            GRI_STATUS_RAW_SIZE);
}

TEST_F(NITFMaskedImagesTest, TheBackgroundComesFromTheFileForGreyAndRGBOfUpTo16Bits) {
  const auto background = [this](const NITFTestPixels& pixels) {
    NITFTestFile file = nitfTestFileOf(nitfTestImage(NITF_TEST_21, pixels));
    file.header.set("FBKGC", "\x11\x22\x33");
    EXPECT_EQ(openImage(file), GR_STATUS_OK);
    return m_reader->getBackgroundPixel();
  };
  const GRIPixel* pixel = background({.numBands = 3});
  ASSERT_NE(pixel, nullptr);
  EXPECT_EQ(pixel->getSample(2).getValueUint8(), 0x33);
  pixel = background({.numBands = 3, .sampleBytes = 2});
  ASSERT_NE(pixel, nullptr);
  EXPECT_EQ(pixel->getSample(1).getValueUint16(), 0x2200);
  pixel = background({.sampleBytes = 2});
  ASSERT_NE(pixel, nullptr);
  EXPECT_EQ(pixel->getSample(0).getValueUint16(), 0x1100);
  EXPECT_EQ(background({.numBands = 2}), nullptr);
  EXPECT_EQ(background({.numBands = 3, .sampleBytes = 4}), nullptr);
  EXPECT_EQ(background({.type = "SI "}), nullptr);
}

}  // namespace
