#include "nitf/nitf_treReader.h"

#include "metadata/gri_metadataAcc.h"
#include "nitf/nitf_fileHeader.h"
#include "tests/support/nitf_testFiles.h"

namespace {

std::string tre(const std::string& tag, const std::string& data) {
  std::string length = std::to_string(data.size());
  return tag + std::string(5 - length.size(), '0') + length + data;
}

class NITFTREReaderTest : public NITFFileTest {
 protected:
  /// Gives the image of a file the tags, and opens it.
  GR_STATUS openWithTags(const std::string& user, const std::string& extension,
                         gr_uint32 userOverflow = 0, gr_uint32 extensionOverflow = 0) {
    NITFTestSegment image = nitfTestImage(NITF_TEST_21, {});
    image.header.remove("UDIDL").remove("IXSHDL");
    nitfTestAddArea(image.header, "UDIDL", user, userOverflow);
    nitfTestAddArea(image.header, "IXSHDL", extension, extensionOverflow);
    NITFTestFile file = nitfTestFileOf(image);
    file.data = m_data;
    return openImage(file);
  }
  void addOverflow(const std::string& area, gr_uint32 item, const std::string& tags) {
    NITFTestSegment segment = nitfTestData(NITF_TEST_21, "TRE_OVERFLOW");
    segment.header.set("DESOFLW", area).set("DESITEM", item);
    segment.data = tags;
    m_data.push_back(segment);
  }
  /// The bytes of a record of the reader, or "none".
  std::string bytesOf(const std::string& tag) const {
    std::span<const gr_uint8> bytes;
    const GR_STATUS status =
        GRIMetadataAccConst(m_reader->getMetadata()).getTagVector(tag.c_str(), bytes);
    return GR_SUCCESS(status) ? std::string(bytes.begin(), bytes.end()) : "none";
  }
  /// The tags of the image's extensions, in the order of their records.
  std::vector<std::string> imageTags() const {
    const std::string prefix = "NITF::IM001::TRE_";
    std::vector<std::string> tags;
    for (gr_uint32 i = 0; i < m_reader->getMetadata().getIndexCount(); ++i) {
      const GRIMetadataRecord* record = nullptr;
      EXPECT_EQ(m_reader->getMetadata().getDataByIndex(i, record), GR_STATUS_OK);
      const std::string tag = record->getTagName();
      if (tag.starts_with(prefix)) tags.push_back(tag.substr(prefix.size()));
    }
    return tags;
  }

  std::vector<NITFTestSegment> m_data;
};

TEST_F(NITFTREReaderTest, KeepsTheExtensionsOfBothAreasWholeInOrder) {
  testing::internal::CaptureStderr();
  ASSERT_EQ(openWithTags(tre("J2KLRA", "one") + tre("USE00A", ""), tre("BLOCKA", "two")),
            GR_STATUS_OK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_J2KLRA"), "one");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_USE00A"), "");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_BLOCKA"), "two");
  EXPECT_EQ(imageTags(), (std::vector<std::string>{"J2KLRA", "USE00A", "BLOCKA"}));
}

TEST_F(NITFTREReaderTest, KeepsTheExtensionsOfTheFileHeader) {
  NITFTestFile file = nitfTestFileOf(nitfTestImage(NITF_TEST_21, {}));
  file.areas = {};
  nitfTestAddArea(file.areas, "UDHDL", tre("JITCID", "user"));
  nitfTestAddArea(file.areas, "XHDL", tre("IOMAPA", "more"));
  ASSERT_EQ(openImage(file), GR_STATUS_OK);
  EXPECT_EQ(bytesOf("NITF::FH000::TRE_JITCID"), "user");
  EXPECT_EQ(bytesOf("NITF::FH000::TRE_IOMAPA"), "more");
}

TEST_F(NITFTREReaderTest, TellsOfAnUnknownExtensionAndKeepsIt) {
  testing::internal::CaptureStderr();
  ASSERT_EQ(openWithTags("", tre("NO~ODY", "x") + tre("A\x1B[2J\n", "y")), GR_STATUS_OK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "*** NITF warning: unhandled TRE, NO~ODY\n"
            "*** NITF warning: unhandled TRE, A?[2J?\n");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_NO~ODY"), "x");
}

TEST_F(NITFTREReaderTest, RefusesAnExtensionThatOccursTwice) {
  EXPECT_EQ(openWithTags(tre("JITCID", "1") + tre("JITCID", "2"), ""), GRI_STATUS_TAG_DUPLICATE);
  EXPECT_EQ(openWithTags(tre("JITCID", "1"), tre("JITCID", "1")), GRI_STATUS_TAG_DUPLICATE);
  addOverflow("IXSHD", 1, tre("JITCID", "1"));
  EXPECT_EQ(openWithTags("", tre("JITCID", "1"), 0, 1), GRI_STATUS_TAG_DUPLICATE);
}

TEST_F(NITFTREReaderTest, RefusesExtensionsThatDoNotEndWithTheirArea) {
  const std::string whole = tre("JITCID", "four");
  for (size_t length = 1; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    EXPECT_EQ(openWithTags(whole.substr(0, length), ""), NITF_STATUS_INVALID_FILE);
  }
  EXPECT_EQ(openWithTags(whole + " ", ""), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openWithTags("JITCID-0001", ""), NITF_STATUS_INVALID_FILE);
  EXPECT_EQ(openWithTags("JITCID99999", ""), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFTREReaderTest, TakesTheOverflowAsIfItStoodInTheSegment) {
  addOverflow("UDID", 1, tre("RPC00A", "a") + tre("RPC00B", "b"));
  addOverflow("IXSHD", 1, tre("STDIDC", "c"));
  ASSERT_EQ(openWithTags(tre("PIAIMC", "d"), tre("BLOCKA", "e"), 1, 2), GR_STATUS_OK);
  EXPECT_EQ(imageTags(),
            (std::vector<std::string>{"PIAIMC", "BLOCKA", "RPC00A", "RPC00B", "STDIDC"}));
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_PIAIMC"), "d");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_RPC00A"), "a");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_RPC00B"), "b");
  EXPECT_EQ(bytesOf("NITF::IM001::TRE_STDIDC"), "c");
}

TEST_F(NITFTREReaderTest, RefusesAnOverflowThatIsNotTheSegments) {
  addOverflow("UDID", 1, tre("JITCID", ""));
  EXPECT_EQ(openWithTags("", "", 1, 0), GR_STATUS_OK);
  EXPECT_EQ(openWithTags("", "", 0, 1), NITF_STATUS_INVALID_FILE);  // of the other area
  EXPECT_EQ(openWithTags("", "", 2, 0), NITF_STATUS_INVALID_FILE);  // there are none so many
  m_data.clear();
  addOverflow("UDID", 2, tre("JITCID", ""));
  EXPECT_EQ(openWithTags("", "", 1, 0), NITF_STATUS_INVALID_FILE);  // of another image
  m_data = {nitfTestData(NITF_TEST_21, "OTHER")};
  EXPECT_EQ(openWithTags("", "", 1, 0), NITF_STATUS_INVALID_FILE);  // no overflow segment
}

}  // namespace
