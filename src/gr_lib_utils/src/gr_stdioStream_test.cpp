#include "gr_lib_utils/include/gr_stdioStream.h"

#include <gtest/gtest.h>

#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

File fileOf(const Bytes& bytes) {
  File file(std::tmpfile());
  EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
  std::rewind(file.get());
  return file;
}

TEST(GRSTDIOStreamTest, ReadsWritesAndSeeksAFileOfSomebodyElse) {
  const File file = fileOf(countingBytes(10));
  GRSTDIOStream stream;
  ASSERT_EQ(stream.initialize(file.get()), GR_STATUS_OK);
  EXPECT_EQ(stream.open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(stream, 2), (Bytes{0, 1}));
  EXPECT_EQ(stream.seek(2, GRIO_SEEK_CURRENT), GR_STATUS_OK);
  EXPECT_EQ(readBytes(stream, 1), Bytes{4});
  EXPECT_EQ(stream.seek(-1, GRIO_SEEK_END), GR_STATUS_OK);
  EXPECT_EQ(readBytes(stream, 5), Bytes{9});
  EXPECT_TRUE(stream.isEOF());
  EXPECT_EQ(stream.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  const gr_uint8 byte = 77;
  EXPECT_EQ(stream.write(&byte, 1), 1u);
  EXPECT_EQ(stream.tell(), 1);
  EXPECT_EQ(stream.getLastError(), GR_STATUS_OK);
  EXPECT_STREQ(stream.getID(), "gr_stdiostream:");
}

TEST(GRSTDIOStreamTest, CloseDoesNothing) {
  const File file = fileOf(countingBytes(3));
  GRSTDIOStream stream;
  ASSERT_EQ(stream.initialize(file.get()), GR_STATUS_OK);
  EXPECT_EQ(stream.close(), GR_STATUS_OK);
  EXPECT_TRUE(stream.isOpen());
  EXPECT_EQ(readBytes(stream, 3), countingBytes(3));
}

TEST(GRSTDIOStreamTest, RefusesNull) {
  GRSTDIOStream stream;
  EXPECT_EQ(stream.initialize(nullptr), GR_STATUS_FAILURE);
  EXPECT_EQ(stream.open(), GR_STATUS_FAILURE);
  EXPECT_EQ(stream.duplicate(), nullptr);
  EXPECT_EQ(stream.tell(), -1);
}

TEST(GRSTDIOStreamTest, RefusesABadOriginAndOffsetsOfMoreThan32Bits) {
  const File file = fileOf(countingBytes(10));
  GRSTDIOStream stream;
  ASSERT_EQ(stream.initialize(file.get()), GR_STATUS_OK);
  EXPECT_EQ(stream.seek(0, static_cast<GRIOSeekDir>(5)), GR_STATUS_FAILURE);
  EXPECT_EQ(stream.seek(gr_int64{0x80000000}, GRIO_SEEK_BEGIN), GR_STATUS_FAILURE);
  EXPECT_EQ(stream.seek(-1, GRIO_SEEK_BEGIN), GR_STATUS_FAILURE);
  EXPECT_EQ(stream.tell(), 0);
}

TEST(GRSTDIOStreamTest, ADuplicateWrapsTheSameFile) {
  const File file = fileOf(countingBytes(10));
  GRSTDIOStream stream;
  ASSERT_EQ(stream.initialize(file.get()), GR_STATUS_OK);
  const std::unique_ptr<GRIOStreamInf> copy(stream.duplicate());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(readBytes(*copy, 2), (Bytes{0, 1}));
  EXPECT_EQ(stream.tell(), 2);
}

}  // namespace
