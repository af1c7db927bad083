// The segments that aren't images.
#include "nitf/nitf_segment.h"

#include "metadata/gri_metadataAcc.h"
#include "nitf/nitf_dataSegment.h"
#include "nitf/nitf_graphicSegment.h"
#include "nitf/nitf_labelSegment.h"
#include "nitf/nitf_resSegment.h"
#include "nitf/nitf_textSegment.h"
#include "tests/support/nitf_testFiles.h"

namespace {

class NITFSegmentTest : public NITFFileTest {
 protected:
  GR_STATUS openGraphic(const NITFTestSegment& graphic, const std::string& version) {
    NITFTestFile file(version);
    file.graphics.push_back(graphic);
    return open(file);
  }
  GR_STATUS openText(const NITFTestSegment& text) {
    NITFTestFile file;
    file.texts.push_back(text);
    return open(file);
  }
  GR_STATUS openData(const NITFTestSegment& data) {
    NITFTestFile file;
    file.data.push_back(data);
    return open(file);
  }
};

std::string textOf(const GRArray<gr_uint8>& data) { return {data.begin(), data.end()}; }

TEST_F(NITFSegmentTest, EveryKindIsReadAndKnowsItsPlace) {
  for (const char* const version : {NITF_TEST_20, NITF_TEST_21}) {
    SCOPED_TRACE(version);
    NITFTestFile file(version);
    file.images = {nitfTestImage(version, {}), nitfTestImage(version, {})};
    file.graphics = {nitfTestGraphic(version)};
    file.labels = {nitfTestLabel(version, "a label")};
    file.texts = {nitfTestText(version, "one"), nitfTestText(version, "two")};
    file.data = {nitfTestData(version, "OTHER")};
    file.reserved = {nitfTestReserved(version)};
    const std::string bytes = file.bytes();
    ASSERT_EQ(open(bytes), GR_STATUS_OK);
    EXPECT_EQ(m_manager->getNumImages(), 2u);
    EXPECT_STREQ(m_manager->getSegmentIdentifier(2), "IMAGE     ");
    EXPECT_STREQ(m_manager->getGraphicSegment(1).getIdentifier(), "GRAPHIC   ");
    EXPECT_STREQ(m_manager->getLabelSegment(1).getIdentifier(), "LABEL     ");
    EXPECT_EQ(textOf(m_manager->getLabelSegment(1).getData()), "a label");
    const NITFTextSegment& text = m_manager->getTextSegment(2);
    EXPECT_EQ(textOf(text.getData()), "two");
    EXPECT_STREQ(text.getPrefix(), "NITF::TE002::");
    EXPECT_STREQ(text.getCode(), "TE");
    EXPECT_EQ(text.getNumber(), 2u);
    EXPECT_EQ(bytes.substr(text.getHeaderOffset(), 9), "TETEXT001");
    EXPECT_EQ(bytes.substr(text.getDataOffset(), text.getDataLength()), "two");
    EXPECT_STREQ(m_manager->getDataSegment(1).getPrefix(), "NITF::DE001::");
    EXPECT_STREQ(m_manager->getResSegment(1).getPrefix(), "NITF::RE001::");
  }
}

TEST_F(NITFSegmentTest, WantsItsCodeInFrontOfEverySubheader) {
  NITFTestFile file(NITF_TEST_21);
  file.images = {nitfTestImage(NITF_TEST_21, {})};
  file.graphics = {nitfTestGraphic(NITF_TEST_21)};
  file.labels = {nitfTestLabel(NITF_TEST_21, "a")};
  file.texts = {nitfTestText(NITF_TEST_21, "a")};
  file.data = {nitfTestData(NITF_TEST_21, "OTHER")};
  file.reserved = {nitfTestReserved(NITF_TEST_21)};
  ASSERT_EQ(open(file), GR_STATUS_OK);
  const std::pair<const char*, std::vector<NITFTestSegment> NITFTestFile::*> kinds[] = {
      {"IM", &NITFTestFile::images}, {"SY", &NITFTestFile::graphics},
      {"LA", &NITFTestFile::labels}, {"TE", &NITFTestFile::texts},
      {"DE", &NITFTestFile::data},   {"RE", &NITFTestFile::reserved}};
  for (const auto& [code, list] : kinds) {
    SCOPED_TRACE(code);
    NITFTestFile bad = file;
    (bad.*list)[0].header.set(code, "XX");
    EXPECT_EQ(open(bad), NITF_STATUS_INVALID_FILE);
  }
}

TEST_F(NITFSegmentTest, EncryptedSegmentsAreRefused) {
  NITFTestSegment graphic = nitfTestGraphic(NITF_TEST_21);
  graphic.header.set("ENCRYP", "1");
  EXPECT_EQ(openGraphic(graphic, NITF_TEST_21), NITF_STATUS_ENCRYPTED);
  NITFTestSegment text = nitfTestText(NITF_TEST_21, "text");
  text.header.set("ENCRYP", "1");
  EXPECT_EQ(openText(text), NITF_STATUS_ENCRYPTED);
  NITFTestFile file(NITF_TEST_20);
  file.labels = {nitfTestLabel(NITF_TEST_20, "label")};
  file.labels[0].header.set("ENCRYP", " ");
  EXPECT_EQ(open(file), NITF_STATUS_ENCRYPTED);
}

TEST_F(NITFSegmentTest, AGraphicHasOneOfThreeFormats) {
  for (const char* const version : {NITF_TEST_20, NITF_TEST_21}) {
    for (const char* const format : {"C", "B", "O", "X", " "}) {
      SCOPED_TRACE(std::string(version) + format);
      NITFTestSegment graphic = nitfTestGraphic(version);
      graphic.header.set("SFMT", format);
      const bool isKnown = *format != 'X' && *format != ' ';
      EXPECT_EQ(openGraphic(graphic, version),
                isKnown ? GR_STATUS_OK : NITF_STATUS_GRAPHIC_VERSION);
    }
  }
}

TEST_F(NITFSegmentTest, ABitmapSymbolHasAColorTableByItsColor) {
  const std::tuple<const char*, const char*, size_t> cases[] = {
      {"B", "C", 6}, {"B", "G", 2}, {"B", "N", 0}, {"C", "C", 0}, {"O", "G", 0}};
  for (const auto& [format, color, tableBytes] : cases) {
    SCOPED_TRACE(std::string(format) + color);
    NITFTestSegment graphic = nitfTestGraphic(NITF_TEST_20);
    graphic.header.set("SFMT", format).set("SCOLOR", color).set("NELUT", 2);
    graphic.header.insertBefore("SXSHDL", "TABLE", std::string(tableBytes, '\x7F'));
    EXPECT_EQ(openGraphic(graphic, NITF_TEST_20), GR_STATUS_OK);
    graphic.header.set("TABLE", std::string(tableBytes + 1, '\x7F'));
    EXPECT_EQ(openGraphic(graphic, NITF_TEST_20), NITF_STATUS_INVALID_FILE);
  }
}

TEST_F(NITFSegmentTest, SubheadersMayEndInBlanksButInNothingElse) {
  NITFTestSegment text = nitfTestText(NITF_TEST_21, "text");
  text.header.add("REST", "   ");
  EXPECT_EQ(openText(text), GR_STATUS_OK);
  text.header.set("REST", " 0 ");
  EXPECT_EQ(openText(text), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFSegmentTest, ATextAddsItsFieldsAndItsData) {
  ASSERT_EQ(openText(nitfTestText(NITF_TEST_21, "The text")), GR_STATUS_OK);
  GRIMetadataDatabase database;
  ASSERT_EQ(m_manager->getTextSegment(1).addMetadata(database), GR_STATUS_OK);
  const GRIMetadataAccConst records(database);
  const char* id = nullptr;
  std::span<const gr_uint8> data;
  ASSERT_EQ(records.getTagScalar("NITF::TE001::TEXTID", id), GR_STATUS_OK);
  EXPECT_STREQ(id, "TEXT001");
  for (const char* const tag : {"SCLAS", "TXTALVL", "TXTDT", "TXTITL"}) {
    EXPECT_TRUE(database.has((std::string("NITF::TE001::") + tag).c_str())) << tag;
  }
  ASSERT_EQ(records.getTagVector("NITF::TE001::DATA", data), GR_STATUS_OK);
  EXPECT_EQ(std::string(data.begin(), data.end()), "The text");
}

TEST_F(NITFSegmentTest, DataAndReservedSegmentsMayHaveSubheadersOfTheirOwn) {
  NITFTestSegment data = nitfTestData(NITF_TEST_21, "OTHER");
  data.header.set("DESSHL", 5);
  data.header.add("DESSHF", "five!");
  EXPECT_EQ(openData(data), GR_STATUS_OK);
  data.header.set("DESSHL", 6);
  EXPECT_EQ(openData(data), NITF_STATUS_INVALID_FILE);

  NITFTestFile file;
  file.reserved = {nitfTestReserved(NITF_TEST_21)};
  file.reserved[0].header.set("RESSHL", 5);
  file.reserved[0].header.add("RESSHF", "five!");
  EXPECT_EQ(open(file), GR_STATUS_OK);
}

TEST_F(NITFSegmentTest, ThreeTagsWithTheirBlanksMakeAnOverflowSegment) {
  for (const char* const tag : {"TRE_OVERFLOW", "Registered Extensions", "Controlled Extensions"}) {
    SCOPED_TRACE(tag);
    ASSERT_EQ(openData(nitfTestData(NITF_TEST_21, tag)), GR_STATUS_OK);
    EXPECT_TRUE(m_manager->getDataSegment(1).isOverflow());
  }
  ASSERT_EQ(openData(nitfTestData(NITF_TEST_21, "TRE_OVERFLOW1")), GR_STATUS_OK);
  EXPECT_FALSE(m_manager->getDataSegment(1).isOverflow());
  EXPECT_EQ(m_manager->getDataSegment(1).verifyIsOverflow("FH", true, 0), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFSegmentTest, AnOverflowSegmentBelongsToOneAreaOfOneSegment) {
  struct Case {
    const char* area;
    const char* code;
    bool isUser;
    gr_uint32 number;
  };
  const Case cases[] = {{"UDHD", "FH", true, 0},   {"UDID", "IM", true, 3},
                        {"XHD", "FH", false, 0},   {"IXSHD", "IM", false, 3},
                        {"SXSHD", "SY", false, 3}, {"TXSHD", "TE", false, 3}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.area);
    NITFTestSegment segment = nitfTestData(NITF_TEST_21, "TRE_OVERFLOW");
    segment.header.set("DESOFLW", c.area).set("DESITEM", 3);
    ASSERT_EQ(openData(segment), GR_STATUS_OK);
    const NITFDataSegment& data = m_manager->getDataSegment(1);
    EXPECT_EQ(data.verifyIsOverflow(c.code, c.isUser, c.number), GR_STATUS_OK);
    EXPECT_EQ(data.verifyIsOverflow(c.code, !c.isUser, c.number), NITF_STATUS_INVALID_FILE);
    EXPECT_EQ(data.verifyIsOverflow(c.code, c.isUser, c.number + 1), NITF_STATUS_INVALID_FILE);
    EXPECT_EQ(data.verifyIsOverflow("LA", c.isUser, c.number), NITF_STATUS_INVALID_FILE);
  }
}

TEST_F(NITFSegmentTest, AnOverflowOfAnUnknownAreaBelongsToAnySegment) {
  NITFTestSegment segment = nitfTestData(NITF_TEST_21, "TRE_OVERFLOW");
  segment.header.set("DESOFLW", "OTHER ");
  ASSERT_EQ(openData(segment), GR_STATUS_OK);
  EXPECT_EQ(m_manager->getDataSegment(1).verifyIsOverflow("IM", true, 9), GR_STATUS_OK);
}

}  // namespace
