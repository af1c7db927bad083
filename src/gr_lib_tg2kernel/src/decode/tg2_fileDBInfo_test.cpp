// The index of an image: subbands, blocks, bands and records of files, and damaged ones.

#include "gr_lib_tg2kernel/src/decode/tg2_fileDBInfo.h"

#include <gtest/gtest.h>

#include <set>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg2_forwardWavelet.h"
#include "tests/support/tg2_writer.h"
#include "tests/support/tg3_memoryFile.h"

namespace {

using Bytes = std::vector<gr_uint8>;

// Bins without a pattern, most of them small.
TG2TestBins binsOf(const TG2TestImage& image) {
  TG2TestBins bins(image.numBands);
  gr_uint32 state = 1;
  for (auto& band : bins) {
    for (const TG2TestSubband& of : tg2_subbandsOf(image.width, image.height, image.numLevels)) {
      std::vector<gr_int32>& plane = band.emplace_back(size_t{of.width} * of.height);
      for (gr_int32& bin : plane) {
        state = state * 1664525 + 1013904223;
        bin = state >> 30 == 0 ? static_cast<gr_int32>(state >> 20 & 0xFF) - 128 : 0;
      }
    }
  }
  return bins;
}

TG2TestImage smallImage() {
  TG2TestImage image;
  image.width = 50;
  image.height = 40;
  image.numBands = 3;
  image.blockWidth = 10;
  image.blockHeight = 8;
  image.recordWidth = 4;
  image.recordHeight = 5;
  return image;
}

void put32(Bytes& bytes, size_t at, gr_uint32 value) {
  for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<gr_uint8>(value >> (8 * (3 - i)));
}

// A file in memory and its index.
class Index {
 public:
  explicit Index(const Bytes& bytes, bool cacheBlocks = false)
      : m_stream(tg3_memoryStream(bytes)),
        m_info(*m_stream, nullptr, true, true, cacheBlocks),
        m_status(m_info.initialize()) {}

  GR_STATUS status() const { return m_status; }
  TG2FileDBInfo& info() { return m_info; }
  TG2SubbandInfo* subband(gr_uint32 i) { return m_info.getSubband(i); }
  GR_STATUS getBlock(gr_uint32 subbandIndex, gr_uint32 index) {
    return subband(subbandIndex)->getBlock(index, block, owned);
  }

  TG2Block* block = nullptr;
  std::unique_ptr<TG2Block> owned;

 private:
  std::unique_ptr<GRIOStreamInf> m_stream;
  TG2FileDBInfo m_info;
  GR_STATUS m_status;
};

GR_STATUS openStatus(const Bytes& bytes) { return Index(bytes).status(); }

// Where the rectangle of a block's entry stands.
size_t rectAt(const TG2TestImage& image, const TG2TestFile& file, gr_uint32 subband,
              gr_uint32 block) {
  return file.layout.tables[subband] + 8 + size_t{block} * (size_t{4} * image.numBands + 16) +
         size_t{4} * image.numBands;
}

const TG2TestLayout::Band& bandAt(const TG2TestFile& file, gr_uint32 subband, gr_uint32 block,
                                  gr_uint32 band) {
  for (const TG2TestLayout::Band& place : file.layout.bands) {
    if (place.subband == subband && place.block == block && place.band == band) return place;
  }
  ADD_FAILURE() << "no such band";
  return file.layout.bands.front();
}

TEST(TG2FileDBInfoTest, TellsWhatTheHeaderSays) {
  TG2TestImage image = smallImage();
  image.version = {1, 1, 7};
  image.crop = TG2TestImage::Crop{{2, 3, 20, 11}, 1};
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  EXPECT_EQ(index.info().getWidth(), 50u);
  EXPECT_EQ(index.info().getHeight(), 40u);
  EXPECT_EQ(index.info().getNumBands(), 3u);
  EXPECT_EQ(index.info().getNumLevels(), 2u);
  EXPECT_EQ(index.info().getNumSubbands(), 7u);
  EXPECT_EQ(index.info().getVersion().minor, 1);
  EXPECT_EQ(index.info().getVersion().tweak, 7);
  EXPECT_TRUE(index.info().hasSupport());
  EXPECT_EQ(index.info().getSupportRect(), (TG2Rect{2, 3, 20, 11}));
  EXPECT_EQ(index.info().getSupportLevel(), 1);
}

TEST(TG2FileDBInfoTest, KnowsTheSizeOfEverySubband) {
  for (const gr_uint32 width : {1u, 2u, 3u, 17u, 64u, 101u}) {
    for (const gr_uint32 numLevels : {0u, 1u, 4u}) {
      TG2TestImage image;
      image.width = width;
      image.height = 9;
      image.numLevels = numLevels;
      Index index(tg2_writeBins(image, binsOf(image)).bytes);
      ASSERT_EQ(index.status(), GR_STATUS_OK);
      const std::vector<TG2TestSubband> subbands = tg2_subbandsOf(width, 9, numLevels);
      for (gr_uint32 i = 0; i < subbands.size(); ++i) {
        gr_uint32 w = 0;
        gr_uint32 h = 0;
        index.info().getSubbandSize(i, w, h);
        EXPECT_EQ(w, subbands[i].width);
        EXPECT_EQ(h, subbands[i].height);
      }
    }
  }
}

TEST(TG2FileDBInfoTest, HandsOutEveryRecordWithTwoBytesBehindIt) {
  for (const bool hasMetadata : {true, false}) {
    TG2TestImage image = smallImage();
    image.hasMetadata = hasMetadata;
    const TG2TestFile file = tg2_writeBins(image, binsOf(image));
    Index index(file.bytes);
    ASSERT_EQ(index.status(), GR_STATUS_OK);
    size_t number = 0;
    for (const TG2TestLayout::Band& place : file.layout.bands) {
      ++number;
      ASSERT_EQ(index.getBlock(place.subband, place.block), GR_STATUS_OK);
      TG2Band* const band = index.block->getBand(place.band);
      ASSERT_NE(band, nullptr);
      EXPECT_FALSE(band->isEmpty());
      ASSERT_EQ(band->getNumRecords(), place.records.size());
      for (gr_uint32 i = 0; i < band->getNumRecords(); ++i) {
        std::span<const gr_uint8> data;
        ASSERT_EQ(band->getRecord(i, data), GR_STATUS_OK);
        EXPECT_EQ(data.size(), band->getRecordLength(i) + 2u);
        EXPECT_TRUE(std::equal(data.begin(), data.end(),
                               file.bytes.begin() + static_cast<long>(place.records[i])));
        // Behind each record stands a marker: of the next record, band, table, or of the end.
        EXPECT_EQ(data[data.size() - 2], 0xFF);
        const bool isLast = number == file.layout.bands.size() && i + 1 == band->getNumRecords();
        if (!isLast) continue;
        EXPECT_EQ(data.back(), hasMetadata ? 0xD1 : 0xD9);
      }
    }
  }
}

TEST(TG2FileDBInfoTest, EndsABandWhereTheNextCodedOneBegins) {
  TG2TestImage image = smallImage();
  image.isBandAbsent = [](gr_uint32, gr_uint32 block, gr_uint32 band) {
    return block == 1 || block == 2 || (block == 0 && band == 1) || band == 2;
  };
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  Index index(file.bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  for (gr_uint32 subband = 0; subband < 7; ++subband) {
    ASSERT_EQ(index.getBlock(subband, 0), GR_STATUS_OK);
    EXPECT_EQ(index.block->getBand(1), nullptr);
    TG2Band* const first = index.block->getBand(0);
    const TG2TestLayout::Band& place = bandAt(file, subband, 0, 0);
    const size_t end = index.subband(subband)->getNumBlocks() > 3
                           ? bandAt(file, subband, 3, 0).header
                           : file.layout.tables[subband + 1];
    EXPECT_EQ(first->getRecordLength(first->getNumRecords() - 1), end - place.records.back());
  }
}

TEST(TG2FileDBInfoTest, FetchesBlocksWithoutAnyCodedBand) {
  TG2TestImage image = smallImage();
  image.isBandAbsent = [](gr_uint32, gr_uint32, gr_uint32) { return true; };
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  ASSERT_EQ(index.getBlock(0, 0), GR_STATUS_OK);
  for (gr_uint32 band = 0; band < 3; ++band) EXPECT_EQ(index.block->getBand(band), nullptr);
}

TEST(TG2FileDBInfoTest, HasNoSubbandWithoutATableOrWithoutBlocks) {
  TG2TestImage image = smallImage();
  image.isSubbandAbsent = [](gr_uint32 subband) { return subband == 2; };
  image.hasEmptyTable = [](gr_uint32 subband) { return subband == 4; };
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  for (gr_uint32 i = 0; i < 7; ++i) EXPECT_EQ(index.subband(i) == nullptr, i == 2 || i == 4);
}

TEST(TG2FileDBInfoTest, KeepsTheOriginsOfTheDither) {
  TG2TestImage image = smallImage();
  image.noiseOriginOf = [](gr_uint32 subband) {
    return std::array<gr_uint8, 2>{static_cast<gr_uint8>(subband), 127};
  };
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  EXPECT_EQ(index.subband(5)->getNoiseOriginX(), 5);
  EXPECT_EQ(index.subband(5)->getNoiseOriginY(), 127);
}

TEST(TG2FileDBInfoTest, TakesOneThreeOrFourBands) {
  for (gr_uint32 numBands = 0; numBands < 6; ++numBands) {
    TG2TestImage image = smallImage();
    image.numBands = numBands;
    const bool isServed = numBands == 1 || numBands == 3 || numBands == 4;
    EXPECT_EQ(openStatus(tg2_writeBins(image, binsOf(image)).bytes),
              isServed ? GR_STATUS_OK : TESRA_STATUS_UNSUPPORTED_COLORSPACE);
  }
}

// --- Streams -----------------------------------------------------------------------------------

TEST(TG2FileDBInfoTest, ClosesTheStreamThatItOpenedUnlessItIsToStay) {
  const TG2TestImage image = smallImage();
  const Bytes bytes = tg2_writeBins(image, binsOf(image)).bytes;
  for (const bool keepOpen : {false, true}) {
    const std::unique_ptr<GRIOStreamInf> stream = tg3_memoryStream(bytes);
    ASSERT_EQ(stream->close(), GR_STATUS_OK);
    TG2FileDBInfo info(*stream, nullptr, true, keepOpen, false);
    ASSERT_EQ(info.initialize(), GR_STATUS_OK);
    EXPECT_EQ(stream->isOpen(), keepOpen);
    ASSERT_EQ(info.openStream(), GR_STATUS_OK);
    EXPECT_TRUE(stream->isOpen());
    ASSERT_EQ(info.closeStream(), GR_STATUS_OK);
    EXPECT_EQ(stream->isOpen(), keepOpen);
  }
}

TEST(TG2FileDBInfoTest, LeavesAnOpenStreamOpen) {
  const TG2TestImage image = smallImage();
  const std::unique_ptr<GRIOStreamInf> stream =
      tg3_memoryStream(tg2_writeBins(image, binsOf(image)).bytes);
  TG2FileDBInfo info(*stream, nullptr, true, false, false);
  ASSERT_EQ(info.initialize(), GR_STATUS_OK);
  ASSERT_EQ(info.openStream(), GR_STATUS_OK);
  ASSERT_EQ(info.closeStream(), GR_STATUS_OK);
  EXPECT_TRUE(stream->isOpen());
}

// A stream that can't be opened.
class DeadStream : public GRIOStreamInf {
 public:
  bool isEOF() override { return true; }
  bool isOpen() override { return false; }
  GR_STATUS open() override { return GRI_STATUS_OPEN_ERROR; }
  GR_STATUS close() override { return GR_STATUS_OK; }
  gr_uint32 read(gr_uint8*, gr_uint32) override { return 0; }
  gr_uint32 write(const gr_uint8*, gr_uint32) override { return 0; }
  GR_STATUS seek(gr_int64, GRIOSeekDir) override { return GR_STATUS_FAILURE; }
  gr_int64 tell() override { return -1; }
  GRIOStreamInf* duplicate() override { return nullptr; }
  GR_STATUS getLastError() override { return GR_STATUS_FAILURE; }
  const char* getID() override { return ""; }
};

TEST(TG2FileDBInfoTest, HandsUpTheStatusOfAStreamThatDoesNotOpen) {
  DeadStream stream;
  TG2FileDBInfo info(stream, nullptr, true, false, false);
  EXPECT_EQ(info.initialize(), GRI_STATUS_OPEN_ERROR);
  EXPECT_EQ(info.clone(), nullptr);
}

TEST(TG2FileDBInfoTest, ClonesItselfOnAStreamOfItsOwn) {
  const TG2TestImage image = smallImage();
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  index.info().setShared(true);
  const std::unique_ptr<TG2DBInfo> clone = index.info().clone();
  ASSERT_NE(clone, nullptr);
  EXPECT_FALSE(clone->isShared());
  EXPECT_TRUE(clone->addsNoise());
  EXPECT_EQ(clone->getEncryption(), index.info().getEncryption());
  EXPECT_EQ(clone->getNumSubbands(), 7u);

  // Both read in turns, and neither moves the other.
  TG2Block* block = nullptr;
  std::unique_ptr<TG2Block> owned;
  ASSERT_EQ(clone->openStream(), GR_STATUS_OK);
  ASSERT_EQ(clone->getSubband(3)->getBlock(0, block, owned), GR_STATUS_OK);
  ASSERT_EQ(index.getBlock(3, 0), GR_STATUS_OK);
  std::span<const gr_uint8> ours;
  std::span<const gr_uint8> theirs;
  ASSERT_EQ(index.block->getBand(0)->getRecord(0, ours), GR_STATUS_OK);
  ASSERT_EQ(block->getBand(0)->getRecord(0, theirs), GR_STATUS_OK);
  EXPECT_NE(ours.data(), theirs.data());
  EXPECT_TRUE(std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end()));
}

// A stream that counts what is read, and fails when it is told to.
class WatchedStream : public GRIODynamicMemStream {
 public:
  explicit WatchedStream(const Bytes& bytes) {
    EXPECT_EQ(initialize(4096, 1.6F), GR_STATUS_OK);
    EXPECT_EQ(open(), GR_STATUS_OK);
    EXPECT_EQ(write(bytes.data(), static_cast<gr_uint32>(bytes.size())), bytes.size());
  }
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override {
    ++numReads;
    return isShort ? 0 : GRIODynamicMemStream::read(buffer, length);
  }
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override {
    return isStuck ? GR_STATUS_FAILURE : GRIODynamicMemStream::seek(offset, origin);
  }
  size_t numReads = 0;
  bool isShort = false;
  bool isStuck = false;
};

// Fetches a block and tells how often the stream was read for it.
size_t readsForBlock(TG2FileDBInfo& info, WatchedStream& stream, gr_uint32 index) {
  TG2Block* block = nullptr;
  std::unique_ptr<TG2Block> owned;
  stream.numReads = 0;
  EXPECT_EQ(info.getSubband(0)->getBlock(index, block, owned), GR_STATUS_OK);
  EXPECT_EQ(block->getIndex(), index);
  EXPECT_EQ(block->getBand(2)->getNumRecords(), 64u * 64u);
  return stream.numReads;
}

TEST(TG2FileDBInfoTest, KeepsTheBlocksOfARowAndAllWhereItIsAskedTo) {
  TG2TestImage image = smallImage();
  image.width = 512;
  image.height = 256;
  image.numLevels = 0;
  image.blockWidth = image.blockHeight = 64;
  image.recordWidth = image.recordHeight = 1;  // 48 KiB of offsets in each block
  const Bytes bytes = tg2_writeBins(image, binsOf(image)).bytes;
  for (const bool keepsAll : {false, true}) {
    WatchedStream stream(bytes);
    TG2FileDBInfo info(stream, nullptr, true, true, keepsAll);
    ASSERT_EQ(info.initialize(), GR_STATUS_OK);
    for (gr_uint32 index = 0; index < 8; ++index) EXPECT_GT(readsForBlock(info, stream, index), 0u);
    for (gr_uint32 index = 0; index < 8; ++index) EXPECT_EQ(readsForBlock(info, stream, index), 0u);
    for (gr_uint32 index = 8; index < 32; ++index) readsForBlock(info, stream, index);
    EXPECT_EQ(readsForBlock(info, stream, 31), 0u);
    EXPECT_EQ(readsForBlock(info, stream, 0) == 0, keepsAll);
  }
}

TEST(TG2FileDBInfoTest, KeepsTheLastBlockWhateverItsSize) {
  TG2TestImage image = smallImage();
  image.width = 400;
  image.height = 300;
  image.numLevels = 0;
  image.blockWidth = image.blockHeight = 0;
  image.recordWidth = image.recordHeight = 1;  // 1.4 MB of offsets in the one block
  const Bytes bytes = tg2_writeBins(image, binsOf(image)).bytes;
  WatchedStream stream(bytes);
  TG2FileDBInfo info(stream, nullptr, true, true, false);
  ASSERT_EQ(info.initialize(), GR_STATUS_OK);
  TG2Block* block = nullptr;
  std::unique_ptr<TG2Block> owned;
  ASSERT_EQ(info.getSubband(0)->getBlock(0, block, owned), GR_STATUS_OK);
  stream.numReads = 0;
  ASSERT_EQ(info.getSubband(0)->getBlock(0, block, owned), GR_STATUS_OK);
  EXPECT_EQ(block->getBand(0)->getNumRecords(), 400u * 300u);
  EXPECT_EQ(stream.numReads, 0u);
}

TEST(TG2FileDBInfoTest, ReadsAheadWhereRecordsAreAskedForInOrder) {
  TG2TestImage image = smallImage();
  image.numLevels = 0;
  image.blockWidth = image.blockHeight = 0;
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  WatchedStream stream(file.bytes);
  TG2FileDBInfo info(stream, nullptr, true, true, false);
  ASSERT_EQ(info.initialize(), GR_STATUS_OK);
  TG2Block* block = nullptr;
  std::unique_ptr<TG2Block> owned;
  ASSERT_EQ(info.getSubband(0)->getBlock(0, block, owned), GR_STATUS_OK);
  TG2Band& band = *block->getBand(0);
  const auto fetch = [&](gr_uint32 i) {
    std::span<const gr_uint8> data;
    EXPECT_EQ(band.getRecord(i, data), GR_STATUS_OK);
    const size_t begin = file.layout.bands[0].records[i];
    EXPECT_EQ(data.size(), band.getRecordLength(i) + 2u);
    EXPECT_TRUE(
        std::equal(data.begin(), data.end(), file.bytes.begin() + static_cast<long>(begin)));
  };
  stream.numReads = 0;
  for (gr_uint32 i = 0; i < band.getNumRecords(); ++i) fetch(i);
  EXPECT_LT(stream.numReads, 5u);
  for (gr_uint32 i = band.getNumRecords(); i-- > 0;) fetch(i);
  for (gr_uint32 i = 0; i < band.getNumRecords(); i += 3) fetch(i);
}

TEST(TG2FileDBInfoTest, LocksOnlyWhereItIsShared) {
  const TG2TestImage image = smallImage();
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  EXPECT_EQ(index.info().lockIfShared(), GR_STATUS_OK);
  EXPECT_EQ(index.info().lockIfShared(), GR_STATUS_OK);  // it would wait for itself
  EXPECT_EQ(index.info().unlockIfShared(), GR_STATUS_OK);
  index.info().setShared(true);
  EXPECT_EQ(index.info().lockIfShared(), GR_STATUS_OK);
  EXPECT_EQ(index.info().unlockIfShared(), GR_STATUS_OK);
  EXPECT_EQ(index.info().lockIfShared(), GR_STATUS_OK);
  EXPECT_EQ(index.info().unlockIfShared(), GR_STATUS_OK);
}

// --- Damage ------------------------------------------------------------------------------------

TEST(TG2FileDBInfoTest, RefusesTablesThatAreNotInTheStream) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  for (const gr_uint32 offset : {static_cast<gr_uint32>(file.bytes.size() - 7),
                                 static_cast<gr_uint32>(file.bytes.size()), 0xFFFFFFFFu}) {
    Bytes bytes = file.bytes;
    put32(bytes, file.layout.subbandOffsets + size_t{4} * 6, offset);
    EXPECT_EQ(openStatus(bytes), TG2_STATUS_READ_ERROR);
  }
  Bytes bytes = file.bytes;
  put32(bytes, file.layout.subbandOffsets, 1);  // no table stands there
  EXPECT_EQ(openStatus(bytes), TG2_STATUS_BAD_MARKER);
}

TEST(TG2FileDBInfoTest, RefusesMoreBlocksThanTheStreamHolds) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  for (const gr_uint32 count : {100000u, 0x80000000u, 0xFFFFFFFFu}) {
    Bytes bytes = file.bytes;
    put32(bytes, file.layout.tables[0] + 4, count);
    EXPECT_EQ(openStatus(bytes), TG2_STATUS_READ_ERROR);
  }
}

TEST(TG2FileDBInfoTest, RefusesBlocksBeyondTheirSubband) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  const gr_uint32 minusOne = 0xFFFFFFFF;
  // The subband has 13 columns and 10 rows, in blocks of 10 by 8.
  const gr_uint32 wrong[][4] = {
      {minusOne, 0, 9, 7},
      {0, minusOne, 9, 7},
      {9, 0, 8, 7},  // off to the left, empty
      {0, 8, 9, 7},
      {0, 0, 13, 7},
      {0, 0, 9, 10},  // beyond
      {0, 0, 10, 7},
      {0, 0, 8, 7},
      {1, 0, 9, 7},    // off the grid
      {10, 0, 12, 7},  // where there is another one
      {0, 0, 0x7FFFFFFF, 0x7FFFFFFF},
      {0x80000000, 0x80000000, 9, 7},
  };
  for (const auto& rect : wrong) {
    Bytes bytes = file.bytes;
    for (size_t i = 0; i < 4; ++i) put32(bytes, rectAt(image, file, 0, 0) + 4 * i, rect[i]);
    EXPECT_EQ(openStatus(bytes), TG2_STATUS_BAD_MARKER)
        << rect[0] << " " << rect[1] << " " << rect[2] << " " << rect[3];
  }
}

TEST(TG2FileDBInfoTest, TakesAMissingBlockAnywhereInTheGrid) {
  TG2TestImage image = smallImage();
  image.isBlockAbsent = [](gr_uint32, gr_uint32 block) { return block == 0; };
  Index index(tg2_writeBins(image, binsOf(image)).bytes);
  EXPECT_EQ(index.status(), GR_STATUS_OK);
}

TEST(TG2FileDBInfoTest, RefusesTablesThatShareTheirBytesOverAndOver) {
  TG2TestImage image = smallImage();
  image.blockWidth = 1;
  image.blockHeight = 1;
  image.isBandAbsent = [](gr_uint32, gr_uint32, gr_uint32) { return true; };
  image.isSubbandAbsent = [](gr_uint32 subband) { return subband != 4; };
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  EXPECT_EQ(openStatus(file.bytes), GR_STATUS_OK);
  Bytes bytes = file.bytes;
  for (const size_t subband : {5, 6}) {
    put32(bytes, file.layout.subbandOffsets + 4 * subband,
          static_cast<gr_uint32>(file.layout.tables[4]));
  }
  EXPECT_EQ(openStatus(bytes), TG2_STATUS_READ_ERROR);
}

// A diagonal of blocks: as many rows and columns as blocks.
TEST(TG2FileDBInfoTest, IndexesADiagonalOfBlocksInProportionToTheirNumber) {
  constexpr gr_uint32 COUNT = 50000;
  TG2TestImage image;
  image.width = COUNT;
  image.height = COUNT;
  image.numLevels = 0;
  image.hasMetadata = false;
  image.isSubbandAbsent = [](gr_uint32) { return true; };
  TG2TestFile file = tg2_writeBins(image, {{{}}});
  Bytes& bytes = file.bytes;
  put32(bytes, file.layout.subbandOffsets, static_cast<gr_uint32>(bytes.size()));
  bytes.insert(bytes.end(), {0xFF, 0xAC, 0, 0, 0, 0, COUNT >> 8, COUNT & 0xFF});
  for (gr_uint32 i = 0; i < COUNT; ++i) {
    const size_t entry = bytes.size();
    bytes.resize(entry + 20);
    for (size_t corner = 0; corner < 4; ++corner) put32(bytes, entry + 4 + 4 * corner, i);
  }
  bytes.insert(bytes.end(), {0xFF, 0xD9});
  Index index(bytes);
  ASSERT_EQ(index.status(), GR_STATUS_OK);
  EXPECT_EQ(index.subband(0)->getNumRows(), COUNT);
  TG2BlockIterator blocks(*index.subband(0));
  ASSERT_EQ(blocks.start({0, 0, COUNT - 1, COUNT - 1}), GR_STATUS_OK);
  gr_uint32 count = 0;
  while (blocks.getBlock() != nullptr) {
    ++count;
    ASSERT_EQ(blocks.next(), GR_STATUS_OK);
  }
  EXPECT_EQ(count, COUNT);
}

// Fetches a block whose file was changed at some places.
GR_STATUS blockStatus(const TG2TestFile& file, gr_uint32 subband,
                      const std::vector<std::pair<size_t, gr_uint32>>& changes) {
  Bytes bytes = file.bytes;
  for (const auto& [at, value] : changes) put32(bytes, at, value);
  Index index(bytes);
  EXPECT_EQ(index.status(), GR_STATUS_OK);
  const GR_STATUS status = index.getBlock(subband, 0);
  EXPECT_EQ(index.block == nullptr, !GR_SUCCESS(status));
  return status;
}

TEST(TG2FileDBInfoTest, RefusesBandsThatAreNotInTheStream) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  const size_t offset = file.layout.tables[6] + 8;
  EXPECT_EQ(blockStatus(file, 6, {}), GR_STATUS_OK);
  EXPECT_EQ(blockStatus(file, 6, {{offset, 0xFFFFFFFF}}), TG2_STATUS_READ_ERROR);
  EXPECT_EQ(blockStatus(file, 6, {{offset, static_cast<gr_uint32>(file.bytes.size())}}),
            TG2_STATUS_READ_ERROR);
  EXPECT_EQ(blockStatus(file, 6, {{offset, 1}}), TG2_STATUS_BAD_MARKER);
}

TEST(TG2FileDBInfoTest, RefusesRecordsWithoutASizeOrABin) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  const TG2TestLayout::Band& place = bandAt(file, 6, 0, 0);
  EXPECT_EQ(blockStatus(file, 6, {{place.recordSize, 0}}), TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(blockStatus(file, 6, {{place.recordSize + 4, 0x80000000}}), TG2_STATUS_BAD_MARKER);
  EXPECT_EQ(blockStatus(file, 6, {{place.binWidth, 0x7FC00000}}), TG2_STATUS_DECODING);
  EXPECT_EQ(blockStatus(file, 6, {{place.binWidth, 0xBF800000}}), TG2_STATUS_DECODING);
}

TEST(TG2FileDBInfoTest, RefusesRecordsOutOfOrderOrOutOfTheBand) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  const TG2TestLayout::Band& place = bandAt(file, 6, 0, 0);
  const size_t first = place.recordOffsets;
  const size_t last = first + 4 * (place.records.size() - 1);
  EXPECT_EQ(blockStatus(file, 6, {{first, 0}}), TG2_STATUS_READ_ERROR);
  EXPECT_EQ(blockStatus(file, 6, {{first, static_cast<gr_uint32>(place.records[1])}}),
            TG2_STATUS_READ_ERROR);
  EXPECT_EQ(blockStatus(file, 6, {{first + 4, static_cast<gr_uint32>(place.records[0] - 1)}}),
            TG2_STATUS_READ_ERROR);
  EXPECT_EQ(blockStatus(file, 6, {{last, 0xFFFFFFFF}}), TG2_STATUS_READ_ERROR);
  // Behind the begin of the next band, which ends this one.
  EXPECT_EQ(
      blockStatus(file, 6, {{last, static_cast<gr_uint32>(bandAt(file, 6, 0, 1).header + 1)}}),
      TG2_STATUS_READ_ERROR);
}

TEST(TG2FileDBInfoTest, FetchesNoMoreOfALongRecordThanItsSamplesCanNeed) {
  TG2TestImage image = smallImage();
  image.numLevels = 0;
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  // The last band of the file gets everything in front of it as the first of its records.
  const TG2TestLayout::Band& place = file.layout.bands.back();
  Bytes bytes = file.bytes;
  put32(bytes, place.recordOffsets, 8);
  Index index(bytes);
  ASSERT_EQ(index.getBlock(0, place.block), GR_STATUS_OK);
  TG2Band* const band = index.block->getBand(place.band);
  std::span<const gr_uint8> data;
  ASSERT_EQ(band->getRecord(0, data), GR_STATUS_OK);
  EXPECT_GT(band->getRecordLength(0), 7000u);
  EXPECT_EQ(data.size(), 64u * 4 * 5 + 4096);
}

TEST(TG2FileDBInfoTest, TellsWhenARecordIsNoLongerInTheStream) {
  const TG2TestImage image = smallImage();
  const TG2TestFile file = tg2_writeBins(image, binsOf(image));
  WatchedStream stream(file.bytes);
  TG2FileDBInfo info(stream, nullptr, true, true, false);
  ASSERT_EQ(info.initialize(), GR_STATUS_OK);
  TG2Block* block = nullptr;
  std::unique_ptr<TG2Block> owned;
  ASSERT_EQ(info.getSubband(0)->getBlock(0, block, owned), GR_STATUS_OK);
  std::span<const gr_uint8> data;
  stream.isShort = true;
  EXPECT_EQ(block->getBand(0)->getRecord(0, data), TG2_STATUS_READ_ERROR);
  stream.isStuck = true;
  EXPECT_EQ(block->getBand(0)->getRecord(0, data), TG2_STATUS_IO_ERROR);
  std::unique_ptr<TG2Block> second;
  EXPECT_EQ(info.getSubband(0)->getBlock(1, block, second), TG2_STATUS_IO_ERROR);
}

TEST(TG2FileDBInfoTest, EveryTruncationEndsInAStatusOrAnIndex) {
  TG2TestImage image = smallImage();
  image.width = 9;
  image.height = 7;
  const Bytes whole = tg2_writeBins(image, binsOf(image)).bytes;
  for (size_t length = 0; length < whole.size(); ++length) {
    Index index(Bytes(whole.begin(), whole.begin() + static_cast<long>(length)));
    if (!GR_SUCCESS(index.status())) continue;
    for (gr_uint32 i = 0; i < index.info().getNumSubbands(); ++i) {
      if (index.subband(i) == nullptr) continue;
      for (gr_uint32 k = 0; k < index.subband(i)->getNumBlocks(); ++k) {
        if (!GR_SUCCESS(index.getBlock(i, k))) continue;
        for (gr_uint32 b = 0; b < 3; ++b) {
          TG2Band* const band = index.block->getBand(b);
          std::span<const gr_uint8> data;
          for (gr_uint32 r = 0; r < band->getNumRecords(); ++r) {
            EXPECT_EQ(band->getRecord(r, data), GR_STATUS_OK);
          }
        }
      }
    }
  }
}

}  // namespace
