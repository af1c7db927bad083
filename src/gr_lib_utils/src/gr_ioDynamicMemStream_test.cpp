#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"

#include <gtest/gtest.h>

#include <limits>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

int g_liveBlocks = 0;
int g_allocationsLeft = 0;
size_t g_lastSize = 0;

void* countedAlloc(size_t bytes) {
  if (g_allocationsLeft-- <= 0) return nullptr;
  ++g_liveBlocks;
  g_lastSize = bytes;
  return std::malloc(bytes);
}

void* countedRealloc(void* block, size_t bytes) {
  if (g_allocationsLeft-- <= 0) return nullptr;
  g_lastSize = bytes;
  return std::realloc(block, bytes);
}

void countedFree(void* block) {
  --g_liveBlocks;
  std::free(block);
}

/// A stream whose allocator fails after the first `allocations`.
GR_STATUS initializeCounted(GRIODynamicMemStream& stream, int allocations, gr_uint32 size,
                            float growth) {
  g_allocationsLeft = allocations;
  const GR_STATUS status =
      stream.initialize(size, countedAlloc, countedRealloc, countedFree, growth);
  return GR_SUCCESS(status) ? stream.open() : status;
}

TEST(GRIODynamicMemStreamTest, ReadsWhatWasWritten) {
  const auto stream = memStreamOf(countingBytes(10));
  EXPECT_EQ(readBytes(*stream, 10), countingBytes(10));
  EXPECT_FALSE(stream->isEOF());
  EXPECT_EQ(stream->getSize(), 10u);
}

TEST(GRIODynamicMemStreamTest, AReadAtTheEndIsShortAndSetsEof) {
  const auto stream = memStreamOf(countingBytes(10));
  ASSERT_EQ(stream->seek(6, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*stream, 10), (Bytes{6, 7, 8, 9}));
  EXPECT_TRUE(stream->isEOF());
  EXPECT_EQ(stream->getLastError(), GR_STATUS_FAILURE);
  ASSERT_EQ(stream->seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_FALSE(stream->isEOF());
}

TEST(GRIODynamicMemStreamTest, ACompleteReadClearsEof) {
  const auto stream = memStreamOf(countingBytes(4));
  EXPECT_EQ(readBytes(*stream, 5).size(), 4u);
  EXPECT_TRUE(stream->isEOF());
  const gr_uint8 byte = 4;
  ASSERT_EQ(stream->write(&byte, 1), 1u);
  ASSERT_EQ(stream->seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*stream, 5), countingBytes(5));
  EXPECT_FALSE(stream->isEOF());
}

TEST(GRIODynamicMemStreamTest, AClosedStreamKeepsItsDataAndGivesNothing) {
  const auto stream = memStreamOf(countingBytes(4));
  EXPECT_EQ(readBytes(*stream, 5).size(), 4u);
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  EXPECT_FALSE(stream->isOpen());
  gr_uint8 byte = 0;
  EXPECT_EQ(stream->read(&byte, 1), 0u);
  EXPECT_TRUE(stream->isEOF());  // unchanged
  EXPECT_EQ(stream->write(&byte, 1), 0u);
  EXPECT_EQ(stream->tell(), -1);
  EXPECT_EQ(stream->seek(0, GRIO_SEEK_BEGIN), GRIO_STATUS_INVALID_STATE);
  ASSERT_EQ(stream->open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*stream, 4), countingBytes(4));
}

TEST(GRIODynamicMemStreamTest, AReadOfAClosedStreamIsNotItsEnd) {
  const auto stream = memStreamOf(countingBytes(4));
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*stream, 1), Bytes{});
  EXPECT_FALSE(stream->isEOF());
}

TEST(GRIODynamicMemStreamTest, OpeningAnOpenStreamMovesNothing) {
  const auto stream = memStreamOf(countingBytes(4));
  ASSERT_EQ(stream->seek(2, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(stream->open(), GR_STATUS_OK);
  EXPECT_EQ(stream->tell(), 2);
}

TEST(GRIODynamicMemStreamTest, SeeksFromBeginCurrentAndEnd) {
  const auto stream = memStreamOf(countingBytes(10));
  EXPECT_EQ(stream->seek(4, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(stream->seek(-1, GRIO_SEEK_CURRENT), GR_STATUS_OK);
  EXPECT_EQ(stream->tell(), 3);
  EXPECT_EQ(stream->seek(-2, GRIO_SEEK_END), GR_STATUS_OK);
  EXPECT_EQ(stream->tell(), 8);
}

TEST(GRIODynamicMemStreamTest, RefusesATargetOfMinusOne) {
  const auto stream = memStreamOf(countingBytes(10));
  ASSERT_EQ(stream->seek(4, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(stream->seek(-1, GRIO_SEEK_BEGIN), GR_STATUS_FAILURE);
  EXPECT_EQ(stream->seek(-5, GRIO_SEEK_CURRENT), GR_STATUS_FAILURE);
  EXPECT_EQ(stream->seek(-11, GRIO_SEEK_END), GR_STATUS_FAILURE);
  EXPECT_EQ(stream->tell(), 4);
}

TEST(GRIODynamicMemStreamTest, RefusesABadOriginAndOffsetsOfMoreThan32Bits) {
  const auto stream = memStreamOf(countingBytes(10));
  EXPECT_EQ(stream->seek(0, static_cast<GRIOSeekDir>(5)), GR_STATUS_FAILURE);
  EXPECT_EQ(stream->seek(gr_int64{0x80000000}, GRIO_SEEK_BEGIN), GRIO_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(stream->seek(-gr_int64{0x80000001}, GRIO_SEEK_BEGIN), GRIO_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(stream->tell(), 0);
}

TEST(GRIODynamicMemStreamTest, APositionPastTheEndReadsAsTheEnd) {
  const auto stream = memStreamOf(countingBytes(10));
  EXPECT_EQ(stream->seek(1000, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(stream->tell(), 1000);
  EXPECT_EQ(readBytes(*stream, 1), Bytes{});
  EXPECT_TRUE(stream->isEOF());
  EXPECT_EQ(stream->tell(), 10);
}

TEST(GRIODynamicMemStreamTest, APositionBeforeTheBeginReadsAsTheEndAndTakesNoWrite) {
  const auto stream = memStreamOf(countingBytes(10));
  const gr_uint8 byte = 0;
  EXPECT_EQ(stream->seek(-2, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(stream->write(&byte, 1), 0u);
  EXPECT_EQ(stream->getLastError(), GRIO_STATUS_NO_MEMORY);
  EXPECT_EQ(readBytes(*stream, 1), Bytes{});
  EXPECT_TRUE(stream->isEOF());
}

TEST(GRIODynamicMemStreamTest, FillsAGapWithZeros) {
  GRIODynamicMemStream stream;
  ASSERT_EQ(stream.initialize(1, 1.0F), GR_STATUS_OK);
  ASSERT_EQ(stream.open(), GR_STATUS_OK);
  ASSERT_EQ(stream.seek(3, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  const gr_uint8 byte = 9;
  EXPECT_EQ(stream.write(&byte, 1), 1u);
  ASSERT_EQ(stream.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(stream, 10), (Bytes{0, 0, 0, 9}));
}

TEST(GRIODynamicMemStreamTest, RefusesToPass31Bits) {
  const auto stream = memStreamOf(countingBytes(1));
  const gr_uint8 byte = 0;
  ASSERT_EQ(stream->seek(0x7FFFFFFF, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(stream->write(&byte, 1), 0u);
  EXPECT_EQ(stream->getLastError(), GRIO_STATUS_NO_MEMORY);
  EXPECT_EQ(stream->getSize(), 1u);
}

TEST(GRIODynamicMemStreamTest, RefusesABadGrowthOrAnOpenStream) {
  GRIODynamicMemStream stream;
  EXPECT_EQ(stream.initialize(16, 2.5F), GRIO_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(stream.initialize(16, 0.5F), GRIO_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(stream.initialize(16, std::numeric_limits<float>::quiet_NaN()),
            GRIO_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(stream.open(), GRIO_STATUS_NOT_INITIALIZED);
  ASSERT_EQ(stream.initialize(16, 2.0F), GR_STATUS_OK);
  ASSERT_EQ(stream.open(), GR_STATUS_OK);
  EXPECT_EQ(stream.initialize(16, 2.0F), GRIO_STATUS_INVALID_STATE);
}

TEST(GRIODynamicMemStreamTest, GrowsByItsFactorOrByWhatIsNeeded) {
  GRIODynamicMemStream stream;
  ASSERT_EQ(initializeCounted(stream, 10, 100, 1.5F), GR_STATUS_OK);
  EXPECT_EQ(g_lastSize, 100u);
  const Bytes bytes = countingBytes(200);
  EXPECT_EQ(stream.write(bytes.data(), 100), 100u);
  EXPECT_EQ(g_lastSize, 100u);
  EXPECT_EQ(stream.write(bytes.data(), 1), 1u);
  EXPECT_EQ(g_lastSize, 150u);
  EXPECT_EQ(stream.write(bytes.data(), 200), 200u);
  EXPECT_EQ(g_lastSize, 301u);
}

TEST(GRIODynamicMemStreamTest, SurvivesAnAllocatorThatFails) {
  {
    GRIODynamicMemStream stream;
    EXPECT_EQ(initializeCounted(stream, 0, 4, 1.0F), GRIO_STATUS_NO_MEMORY);
    ASSERT_EQ(initializeCounted(stream, 1, 4, 1.0F), GR_STATUS_OK);
    const Bytes bytes = countingBytes(5);
    EXPECT_EQ(stream.write(bytes.data(), 4), 4u);
    EXPECT_EQ(stream.write(bytes.data(), 5), 0u);
    EXPECT_EQ(stream.getLastError(), GRIO_STATUS_NO_MEMORY);
    EXPECT_EQ(stream.duplicate(), nullptr);
    ASSERT_EQ(stream.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
    EXPECT_EQ(readBytes(stream, 9), countingBytes(4));
  }
  EXPECT_EQ(g_liveBlocks, 0);
}

TEST(GRIODynamicMemStreamTest, ADuplicateIsClosedAndHasACopyOfTheData) {
  const auto stream = memStreamOf(countingBytes(10));
  const std::unique_ptr<GRIOStreamInf> copy(stream->duplicate());
  ASSERT_NE(copy, nullptr);
  EXPECT_FALSE(copy->isOpen());
  const gr_uint8 byte = 99;
  ASSERT_EQ(stream->write(&byte, 1), 1u);
  ASSERT_EQ(copy->open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*copy, 20), countingBytes(10));
}

TEST(GRIODynamicMemStreamTest, NamesItself) {
  EXPECT_STREQ(GRIODynamicMemStream().getID(), "gr_dynamicmemstream:");
}

}  // namespace
