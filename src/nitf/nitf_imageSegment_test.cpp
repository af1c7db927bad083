#include "nitf/nitf_imageSegment.h"

#include <cstdlib>
#include <filesystem>

#include "gr_lib_utils/include/gr_ioSubStream.h"
#include "tests/support/nitf_testFiles.h"

namespace {

class NITFImageSegmentTest : public NITFFileTest {
 protected:
  /// The status of an image, in a file that must open.
  GR_STATUS statusOf(const NITFTestSegment& segment, const std::string& version = NITF_TEST_21) {
    EXPECT_EQ(open(nitfTestFileOf(segment, version)), GR_STATUS_OK);
    return image().getStatus();
  }
  GR_STATUS statusWith(const std::string& name, const std::string& value,
                       const NITFTestPixels& pixels = {}) {
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, pixels);
    segment.header.set(name, value);
    return statusOf(segment);
  }
  /// The status of opening a file with such an image.
  GR_STATUS openWith(const std::string& name, const std::string& value,
                     const std::string& version = NITF_TEST_21) {
    NITFTestSegment segment = nitfTestImage(version, {});
    segment.header.set(name, value);
    return open(nitfTestFileOf(segment, version));
  }
  static NITFTestSegment compressed(const std::string& code) {
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set("IC", code);
    segment.header.insertBefore("NBANDS", "COMRAT", "01.0");
    return segment;
  }
  static NITFTestSegment withTable(const std::string& name, gr_uint32 numEntries) {
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set(name, "1");
    segment.header.insertBefore("ISYNC", "NELUT", std::to_string(100000 + numEntries).substr(1));
    segment.header.insertBefore("ISYNC", "LUT", std::string(numEntries, 'L'));
    return segment;
  }
  static NITFTestPixels blocked() {
    return {.numCols = 10, .numRows = 9, .blockCols = 4, .blockRows = 4};
  }
};

TEST_F(NITFImageSegmentTest, AReadableImageHasItsFieldsAndNoStatus) {
  NITFTestPixels pixels = blocked();
  pixels.numBands = 3;
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, pixels);
  segment.header.set("ILOCROW", "00012").set("ILOCCOL", "-0034").set("PJUST", "x");
  ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
  const NITFImageSubheader& header = image().getHeader();
  EXPECT_EQ(header.NCOLS, 10u);
  EXPECT_EQ(header.NROWS, 9u);
  EXPECT_EQ(header.NBPR, 3u);
  EXPECT_EQ(header.NBPC, 3u);
  EXPECT_EQ(header.NBANDS, 3u);
  EXPECT_EQ(header.ilocRow, 12);
  EXPECT_EQ(header.ilocColumn, -34);
  EXPECT_STREQ(header.PJUST.text(), "R");
  EXPECT_EQ(image().getLayout(), NITF_LAYOUT_BLOCK);
  EXPECT_EQ(image().getCompression(), NITF_COMPRESSION_NONE);
  EXPECT_TRUE(image().isBlocked());
  EXPECT_FALSE(image().isMasked());
  EXPECT_EQ(image().getBlockBytes(), 4u * 4 * 3);
  EXPECT_STREQ(image().getIdentifier(), "IMAGE     ");
}

TEST_F(NITFImageSegmentTest, EachCompressionHasItsStatus) {
  const std::pair<const char*, GR_STATUS> codes[] = {
      {"C1", 51215}, {"M1", 51215}, {"C3", 0},     {"M3", 0},     {"C4", 51217}, {"M4", 51217},
      {"C5", 51218}, {"M5", 51218}, {"I1", 51219}, {"C8", 0},     {"M8", 0},     {"C6", 51210},
      {"M6", 51210}, {"C7", 51210}, {"M7", 51210}, {"XX", 51210}, {"  ", 51210}};
  for (const auto& [code, status] : codes) {
    SCOPED_TRACE(code);
    NITFTestSegment segment = compressed(code);
    segment.data = std::string(64, '\0');  // also a mask that says nothing
    EXPECT_EQ(statusOf(segment), status);
  }
}

TEST_F(NITFImageSegmentTest, EachLayoutFitsSomeCompressions) {
  const std::tuple<const char*, const char*, GR_STATUS> cases[] = {
      {"NC", "B", 0},     {"NC", "P", 0},     {"NC", "R", 0},    {"NC", "S", 0},
      {"NC", "X", 51210}, {"C3", "B", 0},     {"C3", "P", 0},    {"C3", "R", 51216},
      {"C3", "S", 51216}, {"C3", "X", 51216}, {"C8", "B", 0},    {"C8", "P", 51210},
      {"C8", "R", 51210}, {"C8", "S", 51210}, {"C8", "X", 51210}};
  for (const auto& [code, mode, status] : cases) {
    SCOPED_TRACE(std::string(code) + mode);
    NITFTestSegment segment = *code == 'N' ? nitfTestImage(NITF_TEST_21, {}) : compressed(code);
    segment.header.set("IMODE", mode);
    EXPECT_EQ(statusOf(segment), status);
  }
}

TEST_F(NITFImageSegmentTest, TheDataTypeFollowsFromThePixelValueTypeAndItsBits) {
  const std::tuple<const char*, gr_uint32, GRIDataType> cases[] = {
      {"INT", 1, GRI_DATATYPE_UINT8},    {"INT", 8, GRI_DATATYPE_UINT8},
      {"INT", 9, GRI_DATATYPE_UINT16},   {"INT", 12, GRI_DATATYPE_UINT16},
      {"INT", 16, GRI_DATATYPE_UINT16},  {"INT", 17, GRI_DATATYPE_UINT32},
      {"INT", 32, GRI_DATATYPE_UINT32},  {"INT", 33, GRI_DATATYPE_INVALID},
      {"INT", 64, GRI_DATATYPE_INVALID}, {"SI ", 8, GRI_DATATYPE_SINT8},
      {"SI ", 16, GRI_DATATYPE_SINT16},  {"SI ", 32, GRI_DATATYPE_SINT32},
      {"SI ", 64, GRI_DATATYPE_INVALID}, {"R  ", 32, GRI_DATATYPE_FLOAT32},
      {"R  ", 16, GRI_DATATYPE_FLOAT32}, {"R  ", 64, GRI_DATATYPE_INVALID},
      {"B  ", 8, GRI_DATATYPE_INVALID},  {"B  ", 1, GRI_DATATYPE_INVALID},
      {"C  ", 32, GRI_DATATYPE_INVALID}, {"SI1", 8, GRI_DATATYPE_INVALID}};
  for (const auto& [type, bits, dataType] : cases) {
    SCOPED_TRACE(type + std::to_string(bits));
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set("PVTYPE", type).set("NBPP", bits).set("ABPP", 1);
    const bool isKnown = dataType != GRI_DATATYPE_INVALID;
    ASSERT_EQ(statusOf(segment), isKnown ? GR_STATUS_OK : NITF_STATUS_UNSUPPORTED_DATATYPE);
    if (isKnown) {
      EXPECT_EQ(image().getPixelProps().getDataType(), dataType);
    }
  }
}

TEST_F(NITFImageSegmentTest, TheActualBitsAreThePrecisionAndMustFitTheType) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {.sampleBytes = 2});
  segment.header.set("NBPP", 12).set("ABPP", 11);
  ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
  EXPECT_EQ(image().getPixelProps().getDataType(), GRI_DATATYPE_UINT16);
  EXPECT_EQ(image().getPixelProps().getSample(0).getPrecision(), 11u);
  segment.header.set("ABPP", 16);
  EXPECT_EQ(statusOf(segment), GR_STATUS_OK);
  segment.header.set("ABPP", 17);
  EXPECT_EQ(statusOf(segment), NITF_STATUS_UNSUPPORTED_DATATYPE);
  EXPECT_EQ(statusWith("ABPP", "00"), NITF_STATUS_UNSUPPORTED_DATATYPE);
  EXPECT_EQ(statusWith("ABPP", "09"), NITF_STATUS_UNSUPPORTED_DATATYPE);
  EXPECT_EQ(statusWith("ABPP", "08"), GR_STATUS_OK);
}

TEST_F(NITFImageSegmentTest, TheColorSpaceFollowsFromTheRepresentation) {
  const auto colorSpace = [this](gr_uint32 numBands, const std::string& representation) {
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {.numBands = numBands});
    segment.header.set("IREP", representation);
    EXPECT_EQ(statusOf(segment), GR_STATUS_OK);
    EXPECT_EQ(image().getPixelProps().getNumBands(), numBands);
    return image().getPixelProps().getColorSpace();
  };
  EXPECT_EQ(colorSpace(1, "MONO    "), GRI_COLORSPACE_GRAYSCALE);
  EXPECT_EQ(colorSpace(2, "MONO    "), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(colorSpace(1, "MONO   X"), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(colorSpace(3, "RGB     "), GRI_COLORSPACE_RGB);
  EXPECT_EQ(colorSpace(4, "RGB     "), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(colorSpace(3, "RGB/LUT "), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(colorSpace(3, "MULTI   "), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(colorSpace(1, "NODISPLY"), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(statusWith("IREP", "YCbCr601"), NITF_STATUS_UNSUPPORTED_COLORSPACE);
}

TEST_F(NITFImageSegmentTest, RGBWithItsBandsInAnotherOrderIsMultispectral) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {.numBands = 3});
  segment.header.set("IREPBAND1", "B ").set("IREPBAND3", "R ");
  ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
  EXPECT_EQ(image().getPixelProps().getColorSpace(), GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(image().getPixelProps().getNumBands(), 3);
}

TEST_F(NITFImageSegmentTest, ManyBandsAreCountedInAFieldOfTheirOwn) {
  ASSERT_EQ(statusOf(nitfTestImage(NITF_TEST_21, {.numBands = 300})), GR_STATUS_OK);
  EXPECT_EQ(image().getPixelProps().getNumBands(), 300);
}

TEST_F(NITFImageSegmentTest, NoBandsAndTooManyAreRefused) {
  const NITFTestSegment none = nitfTestImage(NITF_TEST_20, {.numBands = 0});
  EXPECT_EQ(statusOf(none, NITF_TEST_20), NITF_STATUS_UNSUPPORTED_COLORSPACE);
  EXPECT_EQ(statusOf(nitfTestImage(NITF_TEST_21, {.numBands = 0})),
            NITF_STATUS_UNSUPPORTED_COLORSPACE);
  NITFTestSegment many =
      nitfTestImage(NITF_TEST_21, {.numCols = 1, .numRows = 1, .numBands = 65536});
  EXPECT_EQ(statusOf(many), NITF_STATUS_UNSUPPORTED_COLORSPACE);
  many.header.set("XBANDS", "99999");
  EXPECT_EQ(open(nitfTestFileOf(many)), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFImageSegmentTest, LeftJustifiedSamplesAreRefused) {
  EXPECT_EQ(statusWith("PJUST", "L"), NITF_STATUS_PJUST);
  EXPECT_EQ(statusWith("PJUST", " "), GR_STATUS_OK);
}

TEST_F(NITFImageSegmentTest, LookUpTablesAreRefused) {
  EXPECT_EQ(statusOf(withTable("NLUTS1", 256)), NITF_STATUS_LUTS);
  EXPECT_EQ(open(nitfTestFileOf(withTable("NLUTS1", 257))), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFImageSegmentTest, TheFirstThingThatFailsGivesTheStatus) {
  NITFTestSegment segment = withTable("NLUTS1", 2);
  segment.header.set("IREP", "YCbCr601").set("PJUST", "L").set("IC", "C4");
  segment.header.insertBefore("NBANDS", "COMRAT", "01.0");
  EXPECT_EQ(statusOf(segment), NITF_STATUS_VQ);
  segment.header.set("IC", "C3");
  EXPECT_EQ(statusOf(segment), NITF_STATUS_PJUST);
  segment.header.set("PJUST", "R");
  EXPECT_EQ(statusOf(segment), NITF_STATUS_UNSUPPORTED_COLORSPACE);
  segment.header.set("IREP", "MONO").set("NROWS", 0);
  EXPECT_EQ(statusOf(segment), NITF_STATUS_LUTS);
}

TEST_F(NITFImageSegmentTest, FieldsThatCantBeFailTheFile) {
  const std::pair<const char*, const char*> fields[] = {
      {"IFC1", "X"},   {"IMFLT1", "abc"}, {"ISYNC", "4"},        {"ISYNC", "1"},   {"ICORDS", "C"},
      {"ICORDS", "x"}, {"NICOM", "9"},    {"NROWS", "-0000001"}, {"NBPR", "-001"}, {"NBANDS", "9"}};
  for (const auto& [name, value] : fields) {
    SCOPED_TRACE(std::string(name) + value);
    EXPECT_EQ(openWith(name, value), NITF_STATUS_INVALID_FILE);
  }
  EXPECT_EQ(openWith("ENCRYP", "1"), NITF_STATUS_ENCRYPTED);
  EXPECT_EQ(openWith("ISYNC", "4", NITF_TEST_20), GR_STATUS_OK);
}

TEST_F(NITFImageSegmentTest, CoordinatesAreReadByTheLettersOfTheVersion) {
  const auto openWithCoordinates = [this](const char* version, const char* letter, bool hasText) {
    NITFTestSegment segment = nitfTestImage(version, {});
    segment.header.set("ICORDS", letter);
    if (hasText) segment.header.insertBefore("NICOM", "IGEOLO", std::string(60, 'g'));
    return open(nitfTestFileOf(segment, version));
  };
  for (const char* const letter : {"U", "G", "N", "S", "D"}) {
    SCOPED_TRACE(letter);
    EXPECT_EQ(openWithCoordinates(NITF_TEST_21, letter, true), GR_STATUS_OK);
    EXPECT_STREQ(image().getHeader().ICORDS.text(), letter);
    EXPECT_EQ(image().getHeader().IGEOLO.view(), std::string(60, 'g'));
  }
  EXPECT_EQ(openWithCoordinates(NITF_TEST_21, " ", false), GR_STATUS_OK);
  for (const char* const letter : {"U", "G", "C"}) {
    SCOPED_TRACE(letter);
    EXPECT_EQ(openWithCoordinates(NITF_TEST_20, letter, true), GR_STATUS_OK);
  }
  // In 2.0 "N" says that there are none.
  EXPECT_EQ(openWithCoordinates(NITF_TEST_20, "N", false), GR_STATUS_OK);
  EXPECT_STREQ(image().getHeader().ICORDS.text(), " ");
  EXPECT_EQ(openWithCoordinates(NITF_TEST_20, " ", false), GR_STATUS_OK);
  EXPECT_EQ(openWithCoordinates(NITF_TEST_20, "S", true), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openWithCoordinates(NITF_TEST_20, "D", true), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFImageSegmentTest, CommentsAreKept) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
  segment.header.set("NICOM", 2);
  segment.header.insertBefore("IC", "ICOM1", std::string(80, 'a'));
  segment.header.insertBefore("IC", "ICOM2", std::string(80, 'b'));
  ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
  EXPECT_EQ(image().getHeader().NICOM, 2u);
  EXPECT_EQ(image().getHeader().ICOM[1].view(), std::string(80, 'b'));
}

TEST_F(NITFImageSegmentTest, TheCompressionRateIsMissingOnlyWhenTheManagerSaysSo) {
  for (const char* const code : {"C8", "MB"}) {
    SCOPED_TRACE(code);
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set("IC", code);
    const std::string name = write(nitfTestFileOf(segment).bytes());
    EXPECT_EQ(openFile(name), NITF_STATUS_INVALID_FILE);
    m_manager = NITFManagerPointer(new NITFImageManager);
    m_manager->setCOMRATMissing(true);
    EXPECT_EQ(m_manager->initialize(GRFileSpec(name.c_str()), false), GR_STATUS_OK);
  }
  m_manager = NITFManagerPointer(new NITFImageManager);
  m_manager->setCOMRATMissing(true);
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
  segment.header.set("IC", "M8");
  EXPECT_EQ(
      m_manager->initialize(GRFileSpec(write(nitfTestFileOf(segment).bytes()).c_str()), false),
      NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFImageSegmentTest, BlockSizesOfZeroAreTheSizeOfTheImage) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
  segment.header.set("NPPBH", 0).set("NPPBV", 0);
  ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
  EXPECT_EQ(image().getHeader().NPPBH, 7u);
  EXPECT_EQ(image().getHeader().NPPBV, 5u);
}

TEST_F(NITFImageSegmentTest, BlocksMustCoverTheImage) {
  for (const char* const name : {"NROWS", "NCOLS", "NBPR", "NBPC"}) {
    SCOPED_TRACE(name);
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set(name, 0);
    EXPECT_EQ(statusOf(segment), NITF_STATUS_INVALID_FILE);
  }
  EXPECT_EQ(statusWith("NBPR", "0002", blocked()), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(statusWith("NBPC", "0002", blocked()), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(statusWith("NPPBH", "0003", blocked()), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(statusWith("NPPBV", "0002", blocked()), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(statusWith("NPPBH", "9999", blocked()), GR_STATUS_OK);
}

TEST_F(NITFImageSegmentTest, BlockedSamplesMustBeWholeBytesOfTheirType) {
  const std::tuple<const char*, gr_uint32, GR_STATUS> cases[] = {
      {"INT", 1, 51221},  {"INT", 8, 0},      {"INT", 12, 51221}, {"INT", 16, 0},
      {"INT", 24, 51221}, {"INT", 32, 0},     {"R  ", 32, 0},     {"R  ", 16, 51221},
      {"R  ", 8, 51221},  {"SI ", 13, 51221}, {"SI ", 32, 0}};
  for (const auto& [type, bits, status] : cases) {
    SCOPED_TRACE(type + std::to_string(bits));
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, blocked());
    segment.header.set("PVTYPE", type).set("NBPP", bits).set("ABPP", 1);
    EXPECT_EQ(statusOf(segment), status);
  }
}

TEST_F(NITFImageSegmentTest, WithoutAMaskBlocksFollowOneAnother) {
  ASSERT_EQ(statusOf(nitfTestImage(NITF_TEST_21, blocked())), GR_STATUS_OK);
  const NITFBlockTable& blocks = image().getBlocks();
  ASSERT_EQ(blocks.size(), 9u);
  EXPECT_EQ(blocks.getOffset(0), 0u);
  EXPECT_EQ(blocks.getOffset(8), 8u * 16);
  EXPECT_EQ(blocks.getNextOffset(3), 4u * 16);
  EXPECT_EQ(blocks.getNextOffset(8), 9u * 16);
  EXPECT_FALSE(blocks.isPresent(9));
}

TEST_F(NITFImageSegmentTest, TheOffsetsOfComputedBlocksPassFourGigabytes) {
  NITFTestSegment segment = nitfTestImage(NITF_TEST_21, blocked());
  segment.header.set("NPPBH", 9999).set("NPPBV", 9999).set("NBPR", 9999).set("NBPC", 9999);
  ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
  EXPECT_EQ(image().getBlocks().getOffset(9999ull * 9999 - 1), 99980000ull * 99980001);
}

TEST_F(NITFImageSegmentTest, AMaskTellsWhichBlocksAreThere) {
  NITFTestMask mask = {.absent = {0, 4, 5}, .padCode = "\x12", .hasPadTable = true};
  ASSERT_EQ(statusOf(nitfTestMaskedImage(NITF_TEST_21, blocked(), mask)), GR_STATUS_OK);
  EXPECT_TRUE(image().isMasked());
  const NITFBlockTable& blocks = image().getBlocks();
  ASSERT_EQ(blocks.size(), 9u);
  EXPECT_FALSE(blocks.isPresent(0));
  EXPECT_EQ(blocks.getOffset(1), 0u);
  EXPECT_EQ(blocks.getOffset(3), 2u * 16);
  EXPECT_EQ(blocks.getNextOffset(3), 3u * 16);  // that of block 6
  EXPECT_EQ(blocks.getNextOffset(8), 6u * 16);  // the end of the data
  EXPECT_TRUE(image().getMask().hasPadCode());
  EXPECT_EQ(image().getMask().getPadCode(), 0x12u);
}

TEST_F(NITFImageSegmentTest, ASequentialImageHasAnEntryForEachBlockOfEachBand) {
  NITFTestPixels pixels = blocked();
  pixels.mode = 'S';
  pixels.numBands = 3;
  ASSERT_EQ(statusOf(nitfTestMaskedImage(NITF_TEST_21, pixels, {.absent = {20}})), GR_STATUS_OK);
  EXPECT_EQ(image().getBlocks().size(), 27u);
  EXPECT_FALSE(image().getBlocks().isPresent(20));
}

TEST_F(NITFImageSegmentTest, AMaskWithoutABlockTableLeavesTheBlocksInOrder) {
  NITFTestMask mask = {.hasBlockTable = false, .hasPadTable = true};
  ASSERT_EQ(statusOf(nitfTestMaskedImage(NITF_TEST_21, blocked(), mask)), GR_STATUS_OK);
  EXPECT_FALSE(image().getBlocks().mayBeAbsent());
  EXPECT_EQ(image().getBlocks().getOffset(8), 8u * 16);
  EXPECT_FALSE(image().getMask().hasPadCode());
}

TEST_F(NITFImageSegmentTest, APadCodeIsANumberOfItsLastFourBytes) {
  const std::pair<std::string, gr_uint32> codes[] = {
      {"\x01", 1u},
      {std::string("\x01\x02", 2), 0x0102u},
      {std::string("\x01\x02\x03\x04\x05\x06", 6), 0x03040506u}};
  for (const auto& [code, value] : codes) {
    ASSERT_EQ(statusOf(nitfTestMaskedImage(NITF_TEST_21, blocked(), {.padCode = code})),
              GR_STATUS_OK);
    EXPECT_EQ(image().getMask().getPadCode(), value);
  }
}

TEST_F(NITFImageSegmentTest, APadCodeOfOddBitsTakesWholeBytes) {
  NITFTestSegment segment =
      nitfTestMaskedImage(NITF_TEST_21, blocked(), {.absent = {2}, .padCode = "\x01\x23"});
  for (const auto& [bits, value] : {std::pair{'\x0C', 0x0123u}, std::pair{'\x09', 0x0123u}}) {
    segment.data[9] = bits;
    ASSERT_EQ(statusOf(segment), GR_STATUS_OK);
    EXPECT_EQ(image().getMask().getPadCode(), value);
    EXPECT_FALSE(image().getBlocks().isPresent(2));
    EXPECT_EQ(image().getBlocks().getOffset(3), 2u * 16);
  }
}

TEST_F(NITFImageSegmentTest, MaskLengthsThatDontFitFailTheFile) {
  const auto openMask = [this](const NITFTestMask& mask, const NITFTestPixels& pixels) {
    return open(nitfTestFileOf(nitfTestMaskedImage(NITF_TEST_21, pixels, mask)));
  };
  EXPECT_EQ(openMask({.blockEntryLength = 7}, blocked()), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openMask({.hasPadTable = true, .padEntryLength = 1}, blocked()),
            NITF_STATUS_INVALID_FILE);
  const auto openData = [this](NITFTestSegment segment, const std::string& data) {
    segment.data = data;
    return open(nitfTestFileOf(segment));
  };
  const NITFTestSegment masked = nitfTestMaskedImage(NITF_TEST_21, blocked(), {});
  EXPECT_EQ(openData(masked, ""), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openData(masked, masked.data.substr(0, 9)), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openData(masked, masked.data.substr(0, 10 + 35)), NITF_STATUS_INVALID_FILE);
  std::string behind = masked.data;
  behind.replace(0, 4, std::string("\x00\x00\x7F\xFF", 4));  // IMDATOFF
  EXPECT_EQ(openData(masked, behind), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFImageSegmentTest, TheImageStreamBeginsBehindTheMaskAndIsTheReadersOwn) {
  const NITFTestPixels pixels = blocked();
  ASSERT_EQ(statusOf(nitfTestMaskedImage(NITF_TEST_21, pixels, {.gap = 5})), GR_STATUS_OK);
  std::unique_ptr<GRIOStreamInf> one;
  std::unique_ptr<GRIOStreamInf> two;
  ASSERT_EQ(image().getImageStream(one), GR_STATUS_OK);
  ASSERT_EQ(image().getImageStream(two), GR_STATUS_OK);
  EXPECT_TRUE(one->isOpen());
  const std::string all = pixels.allBlocks();
  EXPECT_EQ(readBytes(*one, 10), Bytes(all.begin(), all.begin() + 10));
  EXPECT_EQ(readBytes(*two, 1000), Bytes(all.begin(), all.end()));
}

TEST_F(NITFImageSegmentTest, AStreamThatCantBeDuplicatedIsReported) {
  class NoDuplicate : public GRIOSubStream {
   public:
    GRIOStreamInf* duplicate() override { return nullptr; }
  };
  const std::string bytes = nitfTestFileOf(nitfTestImage(NITF_TEST_21, {})).bytes();
  ASSERT_EQ(open(bytes), GR_STATUS_OK);
  const auto memory = memStreamOf(Bytes(bytes.begin(), bytes.end()));
  NoDuplicate stream;
  ASSERT_EQ(stream.initialize(memory.get(), 0, static_cast<gr_int64>(bytes.size()), false),
            GR_STATUS_OK);
  NITFImageSegment segment(*m_manager, stream,
                           {.number = 1,
                            .headerOffset = image().getHeaderOffset(),
                            .headerLength = image().getHeaderLength(),
                            .dataOffset = image().getDataOffset(),
                            .dataLength = image().getDataLength()});
  ASSERT_EQ(segment.initialize(), GR_STATUS_OK);
  std::unique_ptr<GRIOStreamInf> imageStream;
  EXPECT_EQ(segment.getImageStream(imageStream), NITF_STATUS_DUPLICATE_STREAM);
  EXPECT_EQ(imageStream, nullptr);
}

TEST_F(NITFImageSegmentTest, ADumpOfThePixelsIsWrittenOnRequest) {
  const NITFTestPixels pixels;
  ASSERT_EQ(statusOf(nitfTestImage(NITF_TEST_21, pixels)), GR_STATUS_OK);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(m_directory.path());
  ASSERT_EQ(::setenv("NITF_DUMP", "", 1), 0);
  std::unique_ptr<GRIOStreamInf> stream;
  const GR_STATUS status = image().getImageStream(stream);
  ::unsetenv("NITF_DUMP");
  std::filesystem::current_path(before);
  ASSERT_EQ(status, GR_STATUS_OK);
  const std::string all = pixels.allBlocks();
  const Bytes expected(all.begin(), all.end());
  EXPECT_EQ(readBytes(*stream, 1000), expected);
  const auto dump = GRIOStreamUtils::openFileStream(path("image.dat").c_str());
  ASSERT_NE(dump, nullptr);
  EXPECT_EQ(readBytes(*dump, 1000), expected);
}

}  // namespace
