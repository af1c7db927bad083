#include "gr_lib_utils/include/gr_ioFileStream.h"

#include <gtest/gtest.h>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

constexpr gr_int64 FIVE_GB = gr_int64{5} * 1024 * 1024 * 1024;

class GRIOFileStreamTest : public testing::Test {
 protected:
  GR_STATUS openFile(const std::string& path, const char* mode = "rb") {
    const GR_STATUS status = m_stream.initialize(GRFileSpec(path.c_str()), mode);
    return GR_SUCCESS(status) ? m_stream.open() : status;
  }

  TemporaryDirectory m_directory;
  GRIOFileStream m_stream;
};

TEST_F(GRIOFileStreamTest, ReadsFromItsBeginAndKnowsItsEnd) {
  ASSERT_EQ(openFile(m_directory.fileOf("x", countingBytes(10))), GR_STATUS_OK);
  EXPECT_EQ(m_stream.tell(), 0);
  EXPECT_EQ(readBytes(m_stream, 10), countingBytes(10));
  EXPECT_FALSE(m_stream.isEOF());
  EXPECT_EQ(readBytes(m_stream, 1), Bytes{});
  EXPECT_TRUE(m_stream.isEOF());
  EXPECT_EQ(m_stream.getLastError(), GR_STATUS_OK);  // the end of a file is no error
}

TEST_F(GRIOFileStreamTest, SeeksFromBeginCurrentAndEnd) {
  ASSERT_EQ(openFile(m_directory.fileOf("x", countingBytes(10))), GR_STATUS_OK);
  EXPECT_EQ(m_stream.seek(4, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_stream, 1), Bytes{4});
  EXPECT_EQ(m_stream.seek(2, GRIO_SEEK_CURRENT), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_stream, 1), Bytes{7});
  EXPECT_EQ(m_stream.seek(-1, GRIO_SEEK_END), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_stream, 5), Bytes{9});
  EXPECT_TRUE(m_stream.isEOF());
  EXPECT_EQ(m_stream.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_FALSE(m_stream.isEOF());
}

TEST_F(GRIOFileStreamTest, ABadSeekMovesNothing) {
  ASSERT_EQ(openFile(m_directory.fileOf("x", countingBytes(10))), GR_STATUS_OK);
  ASSERT_EQ(m_stream.seek(4, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(m_stream.seek(0, static_cast<GRIOSeekDir>(5)), GR_STATUS_FAILURE);
  EXPECT_EQ(m_stream.seek(-1, GRIO_SEEK_BEGIN), GR_STATUS_FAILURE);
  EXPECT_EQ(m_stream.tell(), 4);
}

TEST_F(GRIOFileStreamTest, ReachesPositionsPast4GB) {
  const std::string path = m_directory.path("large");
  ASSERT_EQ(openFile(path, "wb"), GR_STATUS_OK);
  ASSERT_EQ(m_stream.seek(FIVE_GB, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  const gr_uint8 mark = 77;
  ASSERT_EQ(m_stream.write(&mark, 1), 1u);
  EXPECT_EQ(m_stream.tell(), FIVE_GB + 1);
  ASSERT_EQ(m_stream.close(), GR_STATUS_OK);

  ASSERT_EQ(openFile(path), GR_STATUS_OK);
  EXPECT_EQ(m_stream.seek(-1, GRIO_SEEK_END), GR_STATUS_OK);
  EXPECT_EQ(m_stream.tell(), FIVE_GB);
  EXPECT_EQ(readBytes(m_stream, 1), Bytes{77});
  EXPECT_EQ(m_stream.seek(-FIVE_GB, GRIO_SEEK_CURRENT), GR_STATUS_OK);
  EXPECT_EQ(m_stream.tell(), 1);
}

TEST_F(GRIOFileStreamTest, TurnsFromReadingToWritingAndBack) {
  ASSERT_EQ(openFile(m_directory.fileOf("x", countingBytes(6)), "r+b"), GR_STATUS_OK);
  const gr_uint8 mark = 77;
  EXPECT_EQ(readBytes(m_stream, 2), (Bytes{0, 1}));
  EXPECT_EQ(m_stream.write(&mark, 1), 1u);
  EXPECT_EQ(readBytes(m_stream, 1), Bytes{3});
  EXPECT_EQ(m_stream.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_stream, 6), (Bytes{0, 1, 77, 3, 4, 5}));
}

TEST_F(GRIOFileStreamTest, AClosedStreamGivesNothing) {
  ASSERT_EQ(m_stream.initialize(GRFileSpec(m_directory.fileOf("x", {1}).c_str()), "rb"),
            GR_STATUS_OK);
  gr_uint8 byte = 0;
  EXPECT_FALSE(m_stream.isOpen());
  EXPECT_EQ(m_stream.read(&byte, 1), 0u);
  EXPECT_EQ(m_stream.write(&byte, 1), 0u);
  EXPECT_EQ(m_stream.seek(0, GRIO_SEEK_BEGIN), GRIO_STATUS_INVALID_STATE);
  EXPECT_EQ(m_stream.tell(), -1);
  EXPECT_FALSE(m_stream.isEOF());
  EXPECT_EQ(m_stream.getLastError(), GR_STATUS_OK);
  EXPECT_EQ(m_stream.close(), GR_STATUS_OK);
}

TEST_F(GRIOFileStreamTest, RefusesMissingFilesAndDirectories) {
  EXPECT_EQ(openFile(m_directory.path("none")), GRI_STATUS_OPEN_ERROR);
  EXPECT_EQ(openFile(m_directory.path()), GRI_STATUS_OPEN_ERROR);
  EXPECT_FALSE(m_stream.isOpen());
}

TEST_F(GRIOFileStreamTest, RefusesWhatCannotBeInitialized) {
  EXPECT_EQ(m_stream.open(), GRIO_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(m_stream.initialize(GRFileSpec("x"), "rb+,ccs=x"), GRIO_STATUS_INVALID_ARGUMENT);
  ASSERT_EQ(openFile(m_directory.fileOf("x", {1})), GR_STATUS_OK);
  EXPECT_EQ(m_stream.initialize(GRFileSpec("y"), "rb"), GRIO_STATUS_INVALID_STATE);
  EXPECT_EQ(m_stream.open(), GR_STATUS_OK);
}

TEST_F(GRIOFileStreamTest, TellsAFailedReadFromTheEnd) {
  ASSERT_EQ(openFile(m_directory.path("x"), "wb"), GR_STATUS_OK);
  gr_uint8 byte = 0;
  EXPECT_EQ(m_stream.read(&byte, 1), 0u);  // open for writing alone
  EXPECT_FALSE(m_stream.isEOF());
  EXPECT_EQ(m_stream.getLastError(), GR_STATUS_FAILURE);
}

TEST_F(GRIOFileStreamTest, ReportsWhatCouldNotBeStoredWhenItCloses) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "needs /dev/full";
  ASSERT_EQ(openFile("/dev/full", "wb"), GR_STATUS_OK);
  const gr_uint8 byte = 0;
  EXPECT_EQ(m_stream.write(&byte, 1), 1u);
  EXPECT_EQ(m_stream.close(), GR_STATUS_FAILURE);
  EXPECT_FALSE(m_stream.isOpen());
}

TEST_F(GRIOFileStreamTest, NamesItselfByItsPath) {
  ASSERT_EQ(m_stream.initialize(GRFileSpec("a/b.tsr"), "rb"), GR_STATUS_OK);
  EXPECT_STREQ(m_stream.getID(), "file://a/b.tsr");
  ASSERT_EQ(m_stream.initialize(GRFileSpec("http://host/b.tsr"), "rb"), GR_STATUS_OK);
  EXPECT_STREQ(m_stream.getID(), "http://host/b.tsr");
}

TEST_F(GRIOFileStreamTest, ADuplicateIsClosedAndHasItsOwnPosition) {
  ASSERT_EQ(openFile(m_directory.fileOf("x", countingBytes(10))), GR_STATUS_OK);
  const std::unique_ptr<GRIOStreamInf> copy(m_stream.duplicate());
  ASSERT_NE(copy, nullptr);
  EXPECT_FALSE(copy->isOpen());
  ASSERT_EQ(copy->open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*copy, 5), countingBytes(5));
  EXPECT_EQ(m_stream.tell(), 0);
  EXPECT_STREQ(copy->getID(), m_stream.getID());
}

}  // namespace
