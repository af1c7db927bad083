// What the exported function says of files whose first image can't be read.
#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>

#include <string>

#include "gr_lib_utils/src/gr_testUtils.h"
#include "tests/support/nitf_writer.h"

namespace {

class NITFOpenTest : public testing::Test {
 protected:
  static NITFTestSegment compressed(const std::string& code) {
    NITFTestSegment segment = nitfTestImage(NITF_TEST_21, {});
    segment.header.set("IC", code);
    segment.header.insertBefore("NBANDS", "COMRAT", "01.0");
    return segment;
  }
  /// The status of opening a file of these images, which leaves no handle on failure.
  GR_STATUS statusOf(const std::vector<NITFTestSegment>& images) {
    NITFTestFile file;
    file.images = images;
    const std::string bytes = file.bytes();
    const std::string name = m_directory.fileOf("file.ntf", Bytes(bytes.begin(), bytes.end()));
    int notNull = 0;
    gric_image image = reinterpret_cast<gric_image>(&notNull);
    const GR_STATUS status = gric_openNITFImageFile(&image, name.c_str());
    if (status == 0) {
      EXPECT_EQ(gric_closeImage(image), 0u);
    } else {
      EXPECT_EQ(image, nullptr);
    }
    return status;
  }

 private:
  TemporaryDirectory m_directory;
};

TEST_F(NITFOpenTest, AFirstImageThatCantBeReadHidesTheOthers) {
  const NITFTestSegment good = nitfTestImage(NITF_TEST_21, {});
  EXPECT_EQ(statusOf({good, compressed("C4")}), 0u);
  const std::pair<const char*, GR_STATUS> codes[] = {{"C1", 51215}, {"C4", 51217}, {"C5", 51218},
                                                     {"I1", 51219}, {"C7", 51210}, {"XX", 51210}};
  for (const auto& [code, status] : codes) {
    SCOPED_TRACE(code);
    EXPECT_EQ(statusOf({compressed(code), good}), status);
  }
}

TEST_F(NITFOpenTest, AFileWithoutImagesIsRefused) { EXPECT_EQ(statusOf({}), 51206u); }

}  // namespace
