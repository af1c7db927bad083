// Files that are cut, damaged, or promise more than they hold.
#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "tests/support/nitf_testFiles.h"

namespace {

class NITFHostileFileTest : public NITFFileTest {
 protected:
  /// Within long runs of blanks one place is like the other.
  static bool isInsideOfBlanks(const std::string& bytes, size_t place) {
    constexpr size_t REACH = 4;
    if (place < REACH || place + REACH >= bytes.size()) return false;
    return bytes.substr(place - REACH, 2 * REACH + 1) == std::string(2 * REACH + 1, ' ');
  }

  void damageEveryByte(const std::string& version) {
    const std::string whole = nitfTestFileOfEverything(version).bytes();
    const std::string name = write(whole);
    std::fstream file(name, std::ios::in | std::ios::out | std::ios::binary);
    const auto put = [&file](size_t place, char byte) {
      file.seekp(static_cast<std::streamoff>(place));
      file.put(byte);
      file.flush();
    };
    for (size_t place = 0; place < whole.size(); ++place) {
      if (isInsideOfBlanks(whole, place)) continue;
      for (const char byte : {'0', '9', '-', '\xFF'}) {
        SCOPED_TRACE(testing::Message() << "byte " << place << " is " << int{byte});
        put(place, byte);
        static_cast<void>(openAndDecodeParts(name));
      }
      put(place, whole[place]);
    }
    EXPECT_EQ(openAndDecodeParts(name)[0], GR_STATUS_OK);
  }

  static long peakKiB() {
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }
};

TEST_F(NITFHostileFileTest, EveryTruncationIsRefused) {
  for (const char* const version : {NITF_TEST_20, NITF_TEST_21}) {
    const std::string whole = nitfTestFileOfEverything(version).bytes();
    const std::string name = write(whole);
    ASSERT_EQ(openAndDecodeParts(name)[0], GR_STATUS_OK);
    for (size_t length = whole.size(); length-- > 0;) {
      SCOPED_TRACE(length);
      std::filesystem::resize_file(name, length);
      const GR_STATUS expected = length < 25 ? NITF_STATUS_READ_ERROR : NITF_STATUS_INVALID_FILE;
      ASSERT_EQ(openAndDecodeParts(name)[0], expected);
    }
  }
}

TEST_F(NITFHostileFileTest, EveryTruncationOfAFileWithoutASizeIsRefused) {
  NITFTestFile file = nitfTestFileOfEverything(NITF_TEST_21);
  file.lies.emplace_back("FL", "999999999999");
  const std::string whole = file.bytes();
  const std::string name = write(whole);
  ASSERT_EQ(openAndDecodeParts(name)[0], GR_STATUS_OK);
  for (size_t length = whole.size(); length-- > 0;) {
    SCOPED_TRACE(length);
    std::filesystem::resize_file(name, length);
    ASSERT_FALSE(GR_SUCCESS(openAndDecodeParts(name)[0]));
  }
}

TEST_F(NITFHostileFileTest, NoByteOfThe20HeadersDoesHarm) { damageEveryByte(NITF_TEST_20); }

TEST_F(NITFHostileFileTest, NoByteOfThe21HeadersOrOfTheMaskDoesHarm) {
  damageEveryByte(NITF_TEST_21);
}

TEST_F(NITFHostileFileTest, ManySegmentsThatArentThereAreRefusedAtOnce) {
  for (const char* const count : {"NUMI", "NUMS", "NUML", "NUMT", "NUMDES", "NUMRES"}) {
    SCOPED_TRACE(count);
    NITFTestFile file;
    file.lies.emplace_back(count, "999");
    EXPECT_EQ(open(file), NITF_STATUS_INVALID_FILE);
  }
  // With all their lengths in the tables, but nothing behind.
  std::string bytes = NITFTestFile().bytes();
  std::string table = "999";
  for (int i = 0; i < 999; ++i) table += "9999989999999998";
  bytes.replace(360, 3, table);
  const std::string length = std::to_string(bytes.size());
  bytes.replace(342, 12, std::string(12 - length.size(), '0') + length);
  bytes.replace(354, 6, std::string(6 - length.size(), '0') + length);
  EXPECT_EQ(open(bytes), NITF_STATUS_INVALID_FILE);
}

TEST_F(NITFHostileFileTest, ABillionBlocksNeedNoMemory) {
  const long memoryBefore = peakKiB();
  for (const char mode : {'B', 'P', 'R', 'S'}) {
    SCOPED_TRACE(mode);
    NITFTestSegment segment = nitfTestImage(
        NITF_TEST_21, {.numBands = 300, .mode = mode, .blockCols = 4, .blockRows = 4});
    segment.header.set("NROWS", 99980001).set("NCOLS", 99980001);
    segment.header.set("NPPBH", 9999).set("NPPBV", 9999).set("NBPR", 9999).set("NBPC", 9999);
    ASSERT_EQ(openImage(segment), GR_STATUS_OK);
    NITFBands bands;
    EXPECT_EQ(decode(*m_reader, 99980000, 99980000, 1, 1, bands), NITF_STATUS_READ_ERROR);
    EXPECT_EQ(decode(*m_reader, 0, 0, 64, 64, bands), NITF_STATUS_READ_ERROR);

    NITFTestSegment masked =
        nitfTestMaskedImage(NITF_TEST_21, {.mode = mode, .blockCols = 4, .blockRows = 4}, {});
    masked.header.set("NBPR", 9999).set("NBPC", 9999);
    EXPECT_EQ(open(nitfTestFileOf(masked)), NITF_STATUS_INVALID_FILE);
  }
#ifndef GRI_SANITIZED
  EXPECT_LT(peakKiB() - memoryBefore, 64 * 1024);
#else
  static_cast<void>(memoryBefore);
#endif
}

TEST_F(NITFHostileFileTest, BlocksAsLargeAsTheFormatAllowsAreReadByRows) {
  // 9999 x 9999 pixels of 4 bytes in each of four blocks: 1.6 GB, in a file with holes.
  NITFTestSegment segment =
      nitfTestImage(NITF_TEST_21, {.sampleBytes = 4, .blockCols = 4, .blockRows = 4});
  segment.header.set("NROWS", 19998).set("NCOLS", 19998).set("NPPBH", 9999).set("NPPBV", 9999);
  segment.data.clear();
  NITFTestFile file = nitfTestFileOf(segment);
  constexpr gr_uint64 PIXEL_BYTES = 4ull * 9999 * 9999 * 4;
  file.lies = {{"LI001", "1599680016"}, {"FL", "001600000000"}};
  const size_t headers = file.bytes().size();
  std::string size = std::to_string(headers + PIXEL_BYTES);
  file.lies.back().second = std::string(12 - size.size(), '0') + size;
  const std::string name = write(file.bytes());
  const auto putAt = [&](gr_uint64 place, const std::string& bytes) {
    std::fstream out(name, std::ios::in | std::ios::out | std::ios::binary);
    out.seekp(static_cast<std::streamoff>(place));
    out << bytes;
  };
  putAt(headers + PIXEL_BYTES - 4, std::string("\x01\x02\x03\x04"));
  const long memoryBefore = peakKiB();
  ASSERT_EQ(openFile(name), GR_STATUS_OK);
  ASSERT_EQ(m_manager->createReader(m_reader, 1), GR_STATUS_OK);
  NITFBands bands;
  ASSERT_EQ(decode(*m_reader, 19990, 19900, 8, 98, bands), GR_STATUS_OK);
  EXPECT_EQ(Bytes(bands[0].end() - 5, bands[0].end()), (Bytes{0, 4, 3, 2, 1}));
#ifndef GRI_SANITIZED
  EXPECT_LT(peakKiB() - memoryBefore, 48 * 1024);
#else
  static_cast<void>(memoryBefore);
#endif
}

/// A file of more than 4 GB, nearly all of it a hole.
class NITFLargeFileTest : public NITFHostileFileTest {
 protected:
  /// 70000 x 70000 pixels of a byte; `place` tells where in the file a pixel stands.
  void openLarge(gr_uint32 blockSize, gr_uint32 blocksPerRow) {
    NITFTestSegment segment =
        nitfTestImage(NITF_TEST_21, {.blockCols = blockSize == 0 ? 0 : 4U, .blockRows = 4});
    const gr_uint64 side = SIDE;
    const gr_uint64 stored = blockSize == 0 ? side : gr_uint64{blockSize} * blocksPerRow;
    segment.header.set("NROWS", side).set("NCOLS", side);
    segment.header.set("NPPBH", blockSize).set("NPPBV", blockSize);
    segment.header.set("NBPR", blocksPerRow).set("NBPC", blocksPerRow);
    segment.data.clear();
    NITFTestFile file = nitfTestFileOf(segment);
    m_headers = file.bytes().size();
    const std::string data = std::to_string(stored * stored);
    const std::string size = std::to_string(m_headers + stored * stored);
    file.lies = {{"LI001", std::string(10 - data.size(), '0') + data},
                 {"FL", std::string(12 - size.size(), '0') + size}};
    m_name = write(file.bytes());
    put(stored * stored - 1, '\0');
  }
  void put(gr_uint64 pixelByte, char value) {
    std::fstream out(m_name, std::ios::in | std::ios::out | std::ios::binary);
    out.seekp(static_cast<std::streamoff>(m_headers + pixelByte));
    out.put(value);
  }
  void expectSample(gr_uint32 col, gr_uint32 row, gr_uint8 value) {
    ASSERT_EQ(openFile(m_name), GR_STATUS_OK);
    ASSERT_EQ(m_manager->createReader(m_reader, 1), GR_STATUS_OK);
    EXPECT_GT(m_reader->getSourceFileSize(), gr_int64{1} << 32);
    NITFBands bands;
    ASSERT_EQ(decode(*m_reader, col - 1, row, 2, 1, bands), GR_STATUS_OK);
    EXPECT_EQ(bands[0], (Bytes{0, value}));
  }

  static constexpr gr_uint64 SIDE = 70000;
  size_t m_headers = 0;
  std::string m_name;
};

TEST_F(NITFLargeFileTest, RowsBehindFourGigabytesAreDecoded) {
  openLarge(0, 1);
  put(69000 * SIDE + 12345, '\x55');
  expectSample(12345, 69000, 0x55);
}

TEST_F(NITFLargeFileTest, BlocksBehindFourGigabytesAreDecoded) {
  openLarge(1000, 70);
  const gr_uint64 block = 69ull * 70 + 12;
  put(block * 1000 * 1000 + gr_uint64{500} * 1000 + 345, '\x66');
  expectSample(12345, 69500, 0x66);
}

}  // namespace
