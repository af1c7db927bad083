#include "nitf/nitf_fileHeader.h"

#include "metadata/gri_metadataAcc.h"
#include "nitf/nitf_dataSegment.h"
#include "nitf/nitf_graphicSegment.h"
#include "nitf/nitf_labelSegment.h"
#include "nitf/nitf_textSegment.h"
#include "tests/support/nitf_testFiles.h"

namespace {

class NITFFileHeaderTest : public NITFFileTest {
 protected:
  static NITFTestFile oneImage(const std::string& version = NITF_TEST_21) {
    return nitfTestFileOf(nitfTestImage(version, {}), version);
  }
  GR_STATUS openWithLie(NITFTestFile file, const std::string& name, const std::string& value) {
    file.lies.emplace_back(name, value);
    return open(file);
  }
  GR_STATUS openWith(NITFTestFile file, const std::string& name, const std::string& value) {
    file.header.set(name, value);
    return open(file);
  }
  const NITFFileHeader& header() const { return m_manager->getFileHeader(); }

  /// The records that the header adds, as "name=text".
  std::vector<std::string> records() const {
    GRIMetadataDatabase database;
    EXPECT_EQ(header().addMetadata(database), GR_STATUS_OK);
    std::vector<std::string> all;
    for (gr_uint32 i = 0; i < database.getIndexCount(); ++i) {
      const GRIMetadataRecord* record = nullptr;
      EXPECT_EQ(database.getDataByIndex(i, record), GR_STATUS_OK);
      const bool isText = record->getDataType() == GRI_METADATA_DATATYPE_ASCII;
      const void* const data = record->getScalarData();
      all.push_back(std::string(record->getTagName()) + "=" +
                    (isText ? *static_cast<const char* const*>(data)
                            : std::to_string(*static_cast<const gr_int32*>(data))));
    }
    return all;
  }
};

TEST_F(NITFFileHeaderTest, AcceptsThreeVariantsAndTakesNSIFForNITF21) {
  EXPECT_EQ(open(oneImage(NITF_TEST_21)), GR_STATUS_OK);
  EXPECT_EQ(header().getVersion(), NITF_VERSION_21);
  EXPECT_EQ(open(oneImage(NITF_TEST_20)), GR_STATUS_OK);
  EXPECT_EQ(header().getVersion(), NITF_VERSION_20);
  EXPECT_EQ(open(oneImage(NITF_TEST_NSIF)), GR_STATUS_OK);
  EXPECT_EQ(header().getVersion(), NITF_VERSION_21);
}

TEST_F(NITFFileHeaderTest, RefusesOtherVariants) {
  const std::pair<const char*, GR_STATUS> variants[] = {
      {"NITF01.10", NITF_STATUS_VERSION_11},   {"NSIF02.10", NITF_STATUS_INVALID_FILE},
      {"NITF01.00", NITF_STATUS_INVALID_FILE}, {"NSIF01.10", NITF_STATUS_INVALID_FILE},
      {"NITF02.11", NITF_STATUS_INVALID_FILE}, {"nitf02.10", NITF_STATUS_INVALID_FILE}};
  for (const auto& [variant, status] : variants) {
    SCOPED_TRACE(variant);
    EXPECT_EQ(open(oneImage().bytes().replace(0, 9, variant)), status);
  }
}

TEST_F(NITFFileHeaderTest, RefusesAFileOfAnotherSizeThanItStates) {
  EXPECT_EQ(openWithLie(oneImage(), "FL", "000000000123"), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(open(oneImage().bytes() + "x"), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openWithLie(oneImage(), "FL", "-00000000001"), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFFileHeaderTest, OpensAFileOfAnySizeWhenItStatesNines) {
  NITFTestFile file = oneImage();
  file.lies.emplace_back("FL", "999999999999");
  EXPECT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(open(file.bytes() + "what follows"), GR_STATUS_OK);
}

TEST_F(NITFFileHeaderTest, WantsAllSegmentsInsideOfAFileOfAnySize) {
  NITFTestFile file = oneImage();
  file.lies.emplace_back("FL", "999999999999");
  std::string bytes = file.bytes();
  bytes.pop_back();
  EXPECT_EQ(open(bytes), NITF_STATUS_INVALID_FILE);
  // Nor may the header itself pass the end.
  file.images.clear();
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(openWithLie(file, "HL", "000999"), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFFileHeaderTest, RefusesAnEncryptedFile) {
  EXPECT_EQ(openWith(oneImage(), "ENCRYP", "1"), NITF_STATUS_ENCRYPTED);
}

TEST_F(NITFFileHeaderTest, RefusesAFileInTheMakingByAnyLengthOfNines) {
  NITFTestFile file(NITF_TEST_20);
  file.images.push_back(nitfTestImage(NITF_TEST_20, {}));
  file.graphics.push_back(nitfTestGraphic(NITF_TEST_20));
  file.labels.push_back(nitfTestLabel(NITF_TEST_20, "label"));
  file.texts.push_back(nitfTestText(NITF_TEST_20, "text"));
  file.data.push_back(nitfTestData(NITF_TEST_20, "OTHER"));
  ASSERT_EQ(open(file), GR_STATUS_OK);
  const std::pair<const char*, const char*> lengths[] = {
      {"LISH001", "999999"}, {"LI001", "9999999999"}, {"LSSH001", "9999"}, {"LS001", "999999"},
      {"LLSH001", "9999"},   {"LL001", "999"},        {"LTSH001", "9999"}, {"LT001", "99999"},
      {"LDSH001", "9999"},   {"LD001", "999999999"}};
  for (const auto& [name, nines] : lengths) {
    SCOPED_TRACE(name);
    EXPECT_EQ(openWithLie(file, name, nines), NITF_STATUS_STREAMING);
  }
}

TEST_F(NITFFileHeaderTest, KnowsNoNinesForReservedSegments) {
  NITFTestFile file = oneImage();
  file.reserved.push_back(nitfTestReserved(NITF_TEST_21));
  EXPECT_EQ(openWithLie(file, "LRE001", "9999999"), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openWithLie(file, "LRESH001", "9999"), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFFileHeaderTest, OpensMoreReservedThanDataSegments) {
  NITFTestFile file = oneImage();
  file.data.push_back(nitfTestData(NITF_TEST_21, "OTHER"));
  for (int i = 0; i < 5; ++i) file.reserved.push_back(nitfTestReserved(NITF_TEST_21));
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(m_manager->getNumResSegments(), 5u);
}

TEST_F(NITFFileHeaderTest, ReadsTablesThatAreLongerThanTheFirstRead) {
  NITFTestFile file;
  for (int i = 0; i < 999; ++i) file.texts.push_back(nitfTestText(NITF_TEST_21, "t"));
  for (int i = 0; i < 300; ++i) file.images.push_back(nitfTestImage(NITF_TEST_21, {}));
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(m_manager->getNumImageSegments(), 300u);
  EXPECT_EQ(m_manager->getNumTextSegments(), 999u);
  EXPECT_STREQ(m_manager->getImageSegment(300).getPrefix(), "NITF::IM300::");
}

TEST_F(NITFFileHeaderTest, RefusesHeaderLengthsThatCantBe) {
  for (const char* const length : {"000000", "000360", "000403", "999999", "-00001"}) {
    SCOPED_TRACE(length);
    EXPECT_EQ(openWithLie(oneImage(), "HL", length), NITF_STATUS_INVALID_FILE);
  }
}

TEST_F(NITFFileHeaderTest, RefusesCountsAndLengthsThatCantBe) {
  const std::pair<const char*, const char*> lies[] = {
      {"NUMI", "-01"},         {"NUMI", "999"},         {"NUMT", "999"},
      {"NUMRES", "-01"},       {"LISH001", "-00001"},   {"LISH001", "000000"},
      {"LISH001", "000438"},   {"LI001", "-000000001"}, {"LI001", "9999999998"},
      {"LI001", "0000000036"}, {"LI001", "0000000000"}};
  for (const auto& [name, lie] : lies) {
    SCOPED_TRACE(std::string(name) + " " + lie);
    EXPECT_EQ(openWithLie(oneImage(), name, lie), NITF_STATUS_INVALID_FILE);
  }
}

TEST_F(NITFFileHeaderTest, OpensAFileWithoutImages) {
  ASSERT_EQ(open(NITFTestFile()), GR_STATUS_OK);
  EXPECT_EQ(m_manager->getNumImages(), 0u);
  EXPECT_EQ(m_manager->createReader(m_reader, 1), NITF_STATUS_SEGMENT_NUMBER);
}

TEST_F(NITFFileHeaderTest, TellsTheBackgroundColorThat20LacksToBeBlack) {
  NITFTestFile file = oneImage();
  file.header.set("FBKGC", std::string("\xFF\x80\x01"));
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(header().getBackground(), (NITFFileHeader::Background{0xFF, 0x80, 0x01}));
  ASSERT_EQ(open(oneImage(NITF_TEST_20)), GR_STATUS_OK);
  EXPECT_EQ(header().getBackground(), (NITFFileHeader::Background{0, 0, 0}));
}

TEST_F(NITFFileHeaderTest, AddsItsRecordsInOrder) {
  NITFTestFile file = oneImage();
  file.header.set("SCLSY", "US").set("SCTLN", "number");
  file.texts.push_back(nitfTestText(NITF_TEST_21, "text"));
  ASSERT_EQ(open(file), GR_STATUS_OK);
  const std::string blanks(256, ' ');
  EXPECT_EQ(
      records(),
      (std::vector<std::string>{
          "NITF::FH000::SCLAS=U", "NITF::FH000::SCLSY=US",
          "NITF::FH000::SCTLN=number" + blanks.substr(0, 9), "NITF::FH000::FHDR=NITF",
          "NITF::FH000::FVER=02.10", "NITF::FH000::STYPE=BF01", "NITF::FH000::OSTAID=STATION   ",
          "NITF::FH000::FDT=20240229123456", "NITF::FH000::FTITLE=A file" + blanks.substr(0, 74),
          "NITF::FH000::ONAME=Somebody" + blanks.substr(0, 19), "NITF::FH000::NUMI=1",
          "NITF::FH000::NUMS=0", "NITF::FH000::NUML=0", "NITF::FH000::NUMT=1",
          "NITF::FH000::NUMDES=0", "NITF::FH000::NUMRES=0"}));
}

TEST_F(NITFFileHeaderTest, StoresThe21NameOf24CharactersAs27) {
  NITFTestFile file = oneImage();
  file.header.set("ONAME", std::string(24, 'n'));
  ASSERT_EQ(open(file), GR_STATUS_OK);
  GRIMetadataDatabase database;
  ASSERT_EQ(header().addMetadata(database), GR_STATUS_OK);
  const char* name = nullptr;
  ASSERT_EQ(GRIMetadataAccConst(database).getTagScalar("NITF::FH000::ONAME", name), GR_STATUS_OK);
  EXPECT_EQ(std::string(name), std::string(24, 'n') + "   ");
}

TEST_F(NITFFileHeaderTest, NeverAddsAPhoneNumberAndNoBlankTexts) {
  NITFTestFile file = oneImage(NITF_TEST_20);
  file.header.set("OPHONE", "0123456789").set("FTITLE", "").set("ONAME", "");
  ASSERT_EQ(open(file), GR_STATUS_OK);
  GRIMetadataDatabase database;
  ASSERT_EQ(header().addMetadata(database), GR_STATUS_OK);
  EXPECT_FALSE(database.has("NITF::FH000::OPHONE"));
  EXPECT_FALSE(database.has("NITF::FH000::FTITLE"));
  EXPECT_FALSE(database.has("NITF::FH000::ONAME"));
  EXPECT_TRUE(database.has("NITF::FH000::SECURITY"));
  EXPECT_FALSE(database.has("NITF::FH000::SCLAS"));
}

TEST_F(NITFFileHeaderTest, ReadsTheLongSecurityBlockOf20ByItsDowngradeFieldAlone) {
  std::string block(207, 'x');
  block.replace(161, 6, "999998");
  NITFTestFile file = oneImage(NITF_TEST_20);
  file.header.set("SECURITY", block);
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(records().front(), "NITF::FH000::SECURITY=" + block);

  // The same text elsewhere means nothing.
  block = "999998" + std::string(155, ' ') + "999999";
  file.header = oneImage(NITF_TEST_20).header;
  file.header.set("SECURITY", block);
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(records().front(), "NITF::FH000::SECURITY=" + block);
}

TEST_F(NITFFileHeaderTest, NotesWhereTheExtensionAreasLie) {
  NITFTestFile file = oneImage();
  file.areas = {};
  nitfTestAddArea(file.areas, "UDHDL", "", 0, true);
  nitfTestAddArea(file.areas, "XHDL", "TAGS", 7);
  const std::string bytes = file.bytes();
  ASSERT_EQ(open(bytes), GR_STATUS_OK);
  EXPECT_EQ(header().getUserArea().length, 0u);
  EXPECT_EQ(header().getUserArea().overflow, 0u);
  EXPECT_EQ(header().getExtensionArea().length, 4u);
  EXPECT_EQ(header().getExtensionArea().overflow, 7u);
  EXPECT_EQ(bytes.substr(header().getExtensionArea().offset, 4), "TAGS");
}

TEST_F(NITFFileHeaderTest, LeavesAnAreaOfLengthThreeEmptyWithItsOverflowNumber) {
  NITFTestFile file = oneImage();
  file.areas = {};
  nitfTestAddArea(file.areas, "UDHDL", "", 12, true);
  nitfTestAddArea(file.areas, "XHDL", "");
  ASSERT_EQ(open(file), GR_STATUS_OK);
  EXPECT_EQ(header().getUserArea().length, 0u);
  EXPECT_EQ(header().getUserArea().overflow, 12u);
}

TEST_F(NITFFileHeaderTest, RefusesAreasWithoutRoomForTheirOverflowNumber) {
  for (const char* const length : {"00001", "00002", "00099", "-0001"}) {
    SCOPED_TRACE(length);
    NITFTestFile file = oneImage();
    file.areas.set("XHDL", length);
    EXPECT_EQ(open(file), NITF_STATUS_INVALID_FILE);
  }
}

}  // namespace
