#include "gr_lib_utils/include/gr_ioStreamUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "gr_lib_utils/include/gr_fileUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

/// A memory stream that takes at most `limit` bytes with each write, and gives `error` for it.
class Reluctant : public GRIODynamicMemStream {
 public:
  Reluctant(gr_uint32 limit, GR_STATUS error) : m_limit(limit), m_error(error) {
    EXPECT_EQ(initialize(16, 1.5F), GR_STATUS_OK);
    EXPECT_EQ(open(), GR_STATUS_OK);
  }
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override {
    ++writes;
    return GRIODynamicMemStream::write(buffer, std::min(length, m_limit));
  }
  GR_STATUS getLastError() override { return m_error; }

  int writes = 0;

 private:
  gr_uint32 m_limit;
  GR_STATUS m_error;
};

/// A memory stream that reads no farther than to a place in the middle, and doesn't go back there.
class Damaged : public GRIODynamicMemStream {
 public:
  static constexpr GR_STATUS REASON = 77;
  Damaged(const Bytes& bytes, gr_int64 place) : m_place(place) {
    EXPECT_EQ(initialize(16, 1.5F), GR_STATUS_OK);
    EXPECT_EQ(open(), GR_STATUS_OK);
    EXPECT_EQ(write(bytes.data(), static_cast<gr_uint32>(bytes.size())), bytes.size());
    EXPECT_EQ(GRIODynamicMemStream::seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  }
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override {
    const auto left = static_cast<gr_uint32>(std::max<gr_int64>(m_place - tell(), 0));
    return GRIODynamicMemStream::read(buffer, std::min(length, left));
  }
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override {
    if (origin == GRIO_SEEK_BEGIN && offset == m_place) return REASON;
    return GRIODynamicMemStream::seek(offset, origin);
  }
  GR_STATUS getLastError() override { return REASON; }

 private:
  gr_int64 m_place;
};

Bytes contentOf(GRIODynamicMemStream& stream) {
  return {stream.getData(), stream.getData() + stream.getSize()};
}

TEST(GRIOStreamUtilsTest, OpensFilesToReadWriteAndAppend) {
  const TemporaryDirectory directory;
  const GRFileSpec path(directory.path("x").c_str());
  const Bytes bytes = countingBytes(4);
  EXPECT_EQ(GRIOStreamUtils::openFileStream(path), nullptr);
  EXPECT_EQ(GRIOStreamUtils::openWriteStream(path)->write(bytes.data(), 4), 4u);
  EXPECT_EQ(GRIOStreamUtils::openAppendStream(path)->write(bytes.data(), 2), 2u);
  EXPECT_EQ(readBytes(*GRIOStreamUtils::openFileStream(path), 9), (Bytes{0, 1, 2, 3, 0, 1}));
  EXPECT_EQ(readBytes(*GRIOStreamUtils::openFileStream(path.utf8()), 1), Bytes{0});
  EXPECT_EQ(GRIOStreamUtils::openStream(path, "not a mode"), nullptr);
}

TEST(GRIOStreamUtilsTest, ClosesAndDeletes) {
  GRIOStreamInf* stream = memStreamOf({1}).release();
  GRIOStreamUtils::closeAndDelete(stream);
  EXPECT_EQ(stream, nullptr);
  GRIOStreamUtils::closeAndDelete(stream);
  EXPECT_EQ(stream, nullptr);
}

TEST(GRIOStreamUtilsTest, CopiesFromThePositionsToTheEnd) {
  const Bytes bytes = countingBytes(200000);
  const auto source = memStreamOf(bytes);
  const auto target = memStreamOf({7, 7});
  ASSERT_EQ(source->seek(1, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  ASSERT_EQ(target->seek(1, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(GRIOStreamUtils::copy(*target, *source), GR_STATUS_OK);
  Bytes expected = bytes;
  expected[0] = 7;
  EXPECT_EQ(contentOf(*target), expected);
}

TEST(GRIOStreamUtilsTest, CopyFailsWhenAWriteFallsShort) {
  const auto source = memStreamOf(countingBytes(100));
  Reluctant target(10, 77);
  EXPECT_EQ(GRIOStreamUtils::copy(target, *source), GR_STATUS_FAILURE);
}

TEST(GRIOStreamUtilsTest, CopiesAGivenNumberOfBytes) {
  const auto source = memStreamOf(countingBytes(200000));
  const auto target = GRIOStreamUtils::openMemStream();
  EXPECT_EQ(GRIOStreamUtils::copy(*target, *source, 150000), GR_STATUS_OK);
  EXPECT_EQ(contentOf(*target), countingBytes(150000));
  EXPECT_EQ(source->tell(), 150000);
  EXPECT_EQ(GRIOStreamUtils::copy(*target, *source, 0), GR_STATUS_OK);
  EXPECT_EQ(GRIOStreamUtils::copy(*target, *source, -1), GR_STATUS_OK);
  EXPECT_EQ(GRIOStreamUtils::copy(*target, *source, 1000000), GR_STATUS_OK);  // up to the end
  EXPECT_EQ(target->getSize(), 200000u);
}

TEST(GRIOStreamUtilsTest, CopyReportsWhyTheSourceFellShort) {
  const auto source = memStreamOf(countingBytes(10));
  const auto target = GRIOStreamUtils::openMemStream();
  ASSERT_EQ(source->close(), GR_STATUS_OK);
  EXPECT_EQ(GRIOStreamUtils::copy(*target, *source, 5), GR_STATUS_FAILURE);
}

TEST(GRIOStreamUtilsTest, CopyGoesOnWhileTheTargetAsksForPatience) {
  for (const GR_STATUS patience : {4u, 11u}) {
    const auto source = memStreamOf(countingBytes(100));
    Reluctant target(7, patience);
    EXPECT_EQ(GRIOStreamUtils::copy(target, *source, 100), GR_STATUS_OK);
    EXPECT_EQ(contentOf(target), countingBytes(100));
  }
}

TEST(GRIOStreamUtilsTest, CopyReportsWhyTheTargetFellShort) {
  const auto source = memStreamOf(countingBytes(100));
  Reluctant target(7, 77);
  EXPECT_EQ(GRIOStreamUtils::copy(target, *source, 100), 77u);
  EXPECT_EQ(target.writes, 1);
}

TEST(GRIOStreamUtilsTest, CopyLosesItsPatienceAfterAThousandEmptyWrites) {
  const auto source = memStreamOf(countingBytes(100));
  Reluctant target(0, 11);
  EXPECT_EQ(GRIOStreamUtils::copy(target, *source, 100), 11u);
  EXPECT_EQ(target.writes, 1000);
}

TEST(GRIOStreamUtilsTest, ComparesFromTheBeginAndRestoresPositions) {
  const auto a = memStreamOf(countingBytes(100000));
  const auto b = memStreamOf(countingBytes(100000));
  const auto shorter = memStreamOf(countingBytes(99999));
  Bytes changed = countingBytes(100000);
  changed[99999] ^= 1;
  const auto other = memStreamOf(changed);
  ASSERT_EQ(a->seek(5, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_TRUE(GRIOStreamUtils::compare(*a, *b));
  EXPECT_FALSE(GRIOStreamUtils::compare(*a, *shorter));
  EXPECT_FALSE(GRIOStreamUtils::compare(*shorter, *a));
  EXPECT_FALSE(GRIOStreamUtils::compare(*a, *other));
  EXPECT_EQ(a->tell(), 5);
  EXPECT_EQ(b->tell(), 0);
}

TEST(GRIOStreamUtilsTest, StreamsThatCannotBeReadAreNotEqual) {
  Damaged a(countingBytes(100), 50), b(countingBytes(100), 50);
  const auto half = memStreamOf(countingBytes(50));
  EXPECT_FALSE(GRIOStreamUtils::compare(a, b));
  EXPECT_FALSE(GRIOStreamUtils::compare(a, *half));
  EXPECT_FALSE(GRIOStreamUtils::compare(*half, a));
}

TEST(GRIOStreamUtilsTest, ACopyToAFileReportsWhyTheStreamCannotBeRead) {
  const TemporaryDirectory directory;
  Damaged stream(countingBytes(100), 50);
  EXPECT_EQ(GRIOStreamUtils::copyToFile(stream, GRFileSpec(directory.path("x").c_str())),
            Damaged::REASON);
}

TEST(GRIOStreamUtilsTest, CopiesAllToAFileAndRestoresThePosition) {
  const TemporaryDirectory directory;
  const GRFileSpec path(directory.path("x").c_str());
  const auto stream = memStreamOf(countingBytes(100));
  ASSERT_EQ(stream->seek(50, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(GRIOStreamUtils::copyToFile(*stream, path), GR_STATUS_OK);
  EXPECT_EQ(stream->tell(), 50);
  EXPECT_TRUE(GRIOStreamUtils::compare(*stream, *GRIOStreamUtils::openFileStream(path)));
  EXPECT_EQ(GRIOStreamUtils::copyToFile(*stream, GRFileSpec(directory.path("no/x").c_str())),
            GRI_STATUS_OPEN_ERROR);
}

TEST(GRIOStreamUtilsTest, KnowsTheLengthOfAStreamAndRestoresThePosition) {
  const auto stream = memStreamOf(countingBytes(100));
  ASSERT_EQ(stream->seek(50, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(GRIOStreamUtils::getStreamLength(*stream), 100);
  EXPECT_EQ(stream->tell(), 50);
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  EXPECT_LT(GRIOStreamUtils::getStreamLength(*stream), 0);
}

TEST(GRIOStreamUtilsTest, AStreamThatDoesNotGoBackHasNoLength) {
  Damaged stream(countingBytes(100), 50);
  EXPECT_EQ(GRIOStreamUtils::getStreamLength(stream), 100);
  EXPECT_EQ(readBytes(stream, 50).size(), 50u);
  EXPECT_LT(GRIOStreamUtils::getStreamLength(stream), 0);
}

TEST(GRIOStreamUtilsTest, ADuplicateIsOpenWhereTheStreamIsOpen) {
  const auto stream = memStreamOf(countingBytes(100));
  ASSERT_EQ(stream->seek(50, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  const auto copy = GRIOStreamUtils::duplicateAt(*stream);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(readBytes(*copy, 1), Bytes{50});
  EXPECT_EQ(stream->tell(), 50);
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  const auto closed = GRIOStreamUtils::duplicateAt(*stream);
  ASSERT_NE(closed, nullptr);
  EXPECT_FALSE(closed->isOpen());
}

TEST(GRIOStreamUtilsTest, WritesFormattedTextOfAnyLength) {
  const auto stream = GRIOStreamUtils::openMemStream();
  EXPECT_EQ(GRIOStreamUtils::printf(*stream, "%d %s", 5, "x"), GR_STATUS_OK);
  EXPECT_EQ(contentOf(*stream), (Bytes{'5', ' ', 'x'}));
  const std::string text(5000, 'y');
  EXPECT_EQ(GRIOStreamUtils::printf(*stream, "%s", text.c_str()), GR_STATUS_OK);
  EXPECT_EQ(stream->getSize(), 5003u);
  // NOLINTNEXTLINE(bugprone-string-constructor): the first length that is refused.
  const std::string tooLong(0x2000000, 'z');
  EXPECT_EQ(GRIOStreamUtils::printf(*stream, "%s", tooLong.c_str()), GR_STATUS_FAILURE);
  EXPECT_EQ(stream->getSize(), 5003u);
  Reluctant target(2, 77);
  EXPECT_EQ(GRIOStreamUtils::printf(target, "abc"), 77u);
}

}  // namespace
