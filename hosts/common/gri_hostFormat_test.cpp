#include "hosts/common/gri_hostFormat.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string_view>

#include "tests/support/fake_gri.h"

namespace {

using namespace std::literals;

GRIHostContent identify(std::string_view bytes) {
  return gri_hostIdentify({reinterpret_cast<const gr_uint8*>(bytes.data()), bytes.size()});
}

}  // namespace

TEST(GRIHostFormatTest, TellsEveryFormatByItsFirstBytes) {
  EXPECT_EQ(identify("tsra\3\0\0\0abcd"sv).name, "Tesra TG3");
  EXPECT_EQ(identify("tsra\1\2\0\0abcd"sv).name, "Tesra TG2");
  EXPECT_EQ(identify("tsra\2\2\0\0abcd"sv).name, "Tesra TG2");
  EXPECT_EQ(identify("NITF02.10030"sv).name, "NITF 2.1");
  EXPECT_EQ(identify("NITF02.00030"sv).name, "NITF 2.0");
  EXPECT_EQ(identify("NSIF01.00030"sv).name, "NSIF 1.0");
  EXPECT_EQ(identify("\0\0\0\x0CjP  \r\n\x87\n"sv).name, "JP2");
  EXPECT_EQ(identify("\xFF\x4F\xFF\x51\0\x29\0\0\0\0\0\0"sv).name, "JPEG 2000 codestream");
  EXPECT_EQ(identify("tsra"sv).format, GRIHostFormat::TESRA);
  EXPECT_EQ(identify("NSIF"sv).format, GRIHostFormat::NITF);
  EXPECT_EQ(identify("\xFF\x4F\xFF\x51"sv).format, GRIHostFormat::JPEG2000);
}

TEST(GRIHostFormatTest, AnyPrefixOfAHeadIsIdentifiedWithoutReadingPastIt) {
  for (const std::string_view head :
       {"tsra\3\0\0\0"sv, "NITF02.10"sv, "\0\0\0\x0CjP  \r\n\x87\n"sv}) {
    for (size_t length = 0; length < 4; ++length) {
      SCOPED_TRACE(length);
      const std::string exact(head.substr(0, length));  // its end is watched by the sanitizer
      EXPECT_EQ(identify(exact).format, GRIHostFormat::UNKNOWN);
    }
  }
}

TEST(GRIHostFormatTest, TheNameOfTheFilePlaysNoPart) {
  const FakeDirectory directory;
  FakePicture{.format = FakePicture::NITF}.writeTo(directory / "picture.jp2");
  GRIHostContent content;
  EXPECT_FALSE(gri_hostIdentifyFile(directory / "picture.jp2", content));
  EXPECT_EQ(content.format, GRIHostFormat::NITF);
}

TEST(GRIHostFormatTest, AFileThatIsNoPictureIsRefusedInWords) {
  const FakeDirectory directory;
  std::ofstream(directory / "text") << "Hello, world";
  std::ofstream(directory / "empty").flush();
  GRIHostContent content;
  EXPECT_EQ(gri_hostIdentifyFile(directory / "text", content).text,
            "not a Tesra, NITF or JPEG 2000 picture");
  EXPECT_EQ(gri_hostIdentifyFile(directory / "empty", content).text, "the file is empty");
  EXPECT_EQ(gri_hostIdentifyFile(directory / "empty", content).status, GRI_HOST_STATUS_OPERATION);
}

TEST(GRIHostFormatTest, AMissingFileAndADirectoryFailWithTheSystemsReason) {
  const FakeDirectory directory;
  GRIHostContent content;
  const GRIHostError missing = gri_hostIdentifyFile(directory / "missing", content);
  EXPECT_EQ(missing.status, GRI_HOST_STATUS_OPEN);
  EXPECT_EQ(missing.text, "No such file or directory");
  EXPECT_EQ(gri_hostIdentifyFile(directory.path(), content).text, "Is a directory");
}
