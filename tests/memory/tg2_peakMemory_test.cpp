#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <bit>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "tests/support/own_process.h"
#include "tests/support/tg2_forwardWavelet.h"

namespace {

constexpr gr_uint32 SIZE = 30000;       // columns and rows
constexpr long LIMIT_KIB = 96L * 1024;  // above the caller's buffers
constexpr gr_uint32 NUM_BANDS = 3;
constexpr gr_uint32 NUM_LEVELS = 8;

/// Writes a picture record by record, as its samples would never fit: each record is a few bytes
/// that stand for runs of 100 zeros (bit 0) and for ones (bit 1).
class PictureFile {
 public:
  PictureFile(const std::string& path, gr_uint32 blockSize, gr_uint32 recordSize)
      : m_file(path, std::ios::binary), m_blockSize(blockSize), m_recordSize(recordSize) {}

  bool write() {
    put(0x74737261, 4);
    put(0x010001, 3);
    for (const gr_uint32 number : {NUM_BANDS, NUM_LEVELS, SIZE, SIZE}) put(number, 4);
    const std::vector<TG2TestSubband> subbands = tg2_subbandsOf(SIZE, SIZE, NUM_LEVELS);
    gr_uint64 offset = m_length + 4 * subbands.size() + 2;
    for (const TG2TestSubband& of : subbands) {
      put(offset, 4);
      const gr_uint64 numBlocks = count(of.width, m_blockSize) * count(of.height, m_blockSize);
      offset += 8 + numBlocks * ENTRY_BYTES + bytesOfBands(of);
    }
    put(0xFFD3, 2);
    for (const TG2TestSubband& of : subbands) writeSubband(of);
    put(0xFFD9, 2);
    return static_cast<bool>(m_file.flush());
  }

 private:
  static constexpr gr_uint64 ENTRY_BYTES = 4 * NUM_BANDS + 16;
  static constexpr gr_uint64 HEADER_BYTES = 2 + 16 + 2 + 4 + 8;

  static gr_uint64 count(gr_uint64 size, gr_uint64 part) { return (size + part - 1) / part; }

  void put(gr_uint64 value, int numBytes) {
    for (int i = numBytes - 1; i >= 0; --i) m_file.put(static_cast<char>(value >> (8 * i)));
    m_length += static_cast<gr_uint64>(numBytes);
  }

  // Enough for every sample of a record: each bit is worth 50 on average, and this is for 12.
  gr_uint64 recordBytes() const { return 2 + m_recordSize * m_recordSize / 100 + 8; }

  gr_uint64 bytesOfBand(gr_uint64 width, gr_uint64 height) const {
    const gr_uint64 numRecords = count(width, m_recordSize) * count(height, m_recordSize);
    return HEADER_BYTES + numRecords * (4 + recordBytes());
  }

  template <typename Visitor>
  void forEachBlock(const TG2TestSubband& of, const Visitor& visit) const {
    for (gr_uint32 y = 0; y < of.height; y += m_blockSize) {
      for (gr_uint32 x = 0; x < of.width; x += m_blockSize) {
        visit(x, y, std::min(m_blockSize, of.width - x), std::min(m_blockSize, of.height - y));
      }
    }
  }

  gr_uint64 bytesOfBands(const TG2TestSubband& of) const {
    gr_uint64 bytes = 0;
    forEachBlock(of, [&](gr_uint32, gr_uint32, gr_uint32 width, gr_uint32 height) {
      bytes += NUM_BANDS * bytesOfBand(width, height);
    });
    return bytes;
  }

  void writeSubband(const TG2TestSubband& of) {
    const gr_uint64 numBlocks = count(of.width, m_blockSize) * count(of.height, m_blockSize);
    put(0xFFAC0000, 4);
    put(numBlocks, 4);
    gr_uint64 offset = m_length + numBlocks * ENTRY_BYTES;
    forEachBlock(of, [&](gr_uint32 x, gr_uint32 y, gr_uint32 width, gr_uint32 height) {
      for (gr_uint32 band = 0; band < NUM_BANDS; ++band) {
        put(offset, 4);
        offset += bytesOfBand(width, height);
      }
      for (const gr_uint32 corner : {x, y, x + width - 1, y + height - 1}) put(corner, 4);
    });
    forEachBlock(of, [&](gr_uint32, gr_uint32, gr_uint32 width, gr_uint32 height) {
      for (gr_uint32 band = 0; band < NUM_BANDS; ++band) writeBand(width, height);
    });
  }

  void writeBand(gr_uint32 width, gr_uint32 height) {
    constexpr gr_uint8 RUN_100 = 100;
    constexpr gr_uint8 ONE = 181;
    put(0xFFAA, 2);
    put(2, 1);  // two codes of one bit
    for (int length = 2; length <= 16; ++length) put(0, 1);
    put(RUN_100, 1);
    put(ONE, 1);
    put(std::bit_cast<gr_uint32>(8.0F), 4);
    put(m_recordSize, 4);
    put(m_recordSize, 4);
    const gr_uint64 numRecords = count(width, m_recordSize) * count(height, m_recordSize);
    const gr_uint64 first = m_length + 4 * numRecords;
    for (gr_uint64 i = 0; i < numRecords; ++i) put(first + i * recordBytes(), 4);
    for (gr_uint64 i = 0; i < numRecords; ++i) {
      put(0xFFA3, 2);
      for (gr_uint64 k = 2; k < recordBytes(); ++k) put(m_random() & 0x7F, 1);
    }
  }

  std::ofstream m_file;
  gr_uint64 m_length = 0;
  gr_uint32 m_blockSize;
  gr_uint32 m_recordSize;
  std::mt19937 m_random{1};
};

/// Decodes a part of a picture's columns, and the rows at its top, middle and bottom.
/// @return what that took in KiB above the caller's buffers, or a negative status
long memoryOfDecode(const std::string& path, gr_uint32 numCols) {
  constexpr gr_uint32 ROWS = 200;
  std::vector<gr_uint8> samples(std::size_t{NUM_BANDS} * numCols * ROWS, 1);
  void* bands[NUM_BANDS] = {};
  for (gr_uint32 band = 0; band < NUM_BANDS; ++band) {
    bands[band] = samples.data() + std::size_t{band} * numCols * ROWS;
  }
  const long before = process_peakKib();
  gric_image image = nullptr;
  const GR_STATUS opened = gric_openTesraImageFile(&image, path.c_str());
  if (opened != 0) return -static_cast<long>(opened);
  for (const gr_uint32 row : {0U, SIZE / 2, SIZE - ROWS}) {
    const gr_uint32 column = (SIZE - numCols) / 2;
    const GR_STATUS decoded = gric_decode(image, column, row, numCols, ROWS, 1.0, bands);
    if (decoded != 0) return -static_cast<long>(decoded);
  }
  gric_closeImage(image);
  return process_peakKib() - before;
}

class TG2PeakMemoryTest : public testing::Test {
 protected:
  void SetUp() override {
    m_directory = std::filesystem::temp_directory_path() / "tg2_peakMemory.XXXXXX";
    ASSERT_NE(mkdtemp(m_directory.data()), nullptr);
    m_path = m_directory + "/picture.tsra";
  }
  void TearDown() override { std::filesystem::remove_all(m_directory); }

  void write(gr_uint32 blockSize, gr_uint32 recordSize) {
    ASSERT_EQ(process_runApart([&]() -> long {
                return PictureFile(m_path, blockSize, recordSize).write() ? 0 : -1;
              }),
              0);
  }
  long measure(gr_uint32 numCols) {
    const long memory = process_runApart([&] { return memoryOfDecode(m_path, numCols); });
    std::cout << numCols << " columns: " << memory << " KiB above the caller's buffers\n";
    return memory;
  }

 private:
  std::string m_directory;
  std::string m_path;
};

TEST_F(TG2PeakMemoryTest, ALargePictureIsDecodedInLittleMemoryThatGrowsWithTheWindowsWidth) {
  write(1024, 64);
  const long whole = measure(SIZE);
  EXPECT_GE(whole, 0) << "status " << -whole;
  EXPECT_LT(whole, LIMIT_KIB);
  const long narrow = measure(1024);
  EXPECT_GE(narrow, 0) << "status " << -narrow;
  EXPECT_LT(narrow, whole / 4);
}

TEST_F(TG2PeakMemoryTest, BlocksOfASubbandOrOfARecordTakeNoMore) {
  for (const gr_uint32 blockSize : {SIZE, 64U}) {
    write(blockSize, 64);
    const long memory = measure(SIZE);
    EXPECT_GE(memory, 0) << "status " << -memory;
    EXPECT_LT(memory, LIMIT_KIB);
  }
}

}  // namespace
