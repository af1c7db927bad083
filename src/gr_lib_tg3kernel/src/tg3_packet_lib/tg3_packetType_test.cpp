#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packetType.h"

#include <gtest/gtest.h>

#include <vector>

#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"

namespace {

struct ReadHeader {
  GR_STATUS status = GR_STATUS_OK;
  TG3PacketType type;
  gr_uint64 length = 0;
  gr_int64 position = 0;
};

ReadHeader readHeader(const std::vector<gr_uint8>& bytes) {
  const auto stream = tg3_memoryStream(bytes);
  ReadHeader header;
  header.status = header.type.read(*stream, header.length);
  header.position = stream->tell();
  return header;
}

TEST(TG3PacketTypeTest, ReadsTheShortestHeader) {
  const ReadHeader header = readHeader({0x01, 0x00, 0x2A});
  EXPECT_EQ(header.status, GR_STATUS_OK);
  EXPECT_EQ(header.type.type, TG3_PACKET_TYPE_HEADER);
  EXPECT_EQ(header.type.subType, 0u);
  EXPECT_EQ(header.type.image, 0u);
  EXPECT_EQ(header.type.versionMajor, 0);
  EXPECT_EQ(header.length, 0x2Au);
  EXPECT_EQ(header.position, 3);
}

TEST(TG3PacketTypeTest, ReadsEveryFieldInItsWidestForm) {
  const ReadHeader header = readHeader({0x45, 0xFF, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08,
                                        0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10, 0x01, 0x02,
                                        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x99, 0xEE});
  EXPECT_EQ(header.status, GR_STATUS_OK);
  EXPECT_EQ(header.type.type, TG3_PACKET_TYPE_SECURITY);
  EXPECT_EQ(header.type.subType, 0x01020304u);
  EXPECT_EQ(header.type.subSubType, 0x05060708u);
  EXPECT_EQ(header.type.sequence, 0x090A0B0Cu);
  EXPECT_EQ(header.type.image, 0x0D0E0F10u);
  EXPECT_EQ(header.type.versionMajor, 1);
  EXPECT_EQ(header.type.versionMinor, 2);
  EXPECT_EQ(header.length, 0x99u);
  EXPECT_EQ(header.position, 28);
}

TEST(TG3PacketTypeTest, ReadsSubtypesOfOneAndTwoBytes) {
  const ReadHeader header = readHeader({0x02, 0x61, 0x07, 0x01, 0x02, 0x03, 0x04});
  EXPECT_EQ(header.status, GR_STATUS_OK);
  EXPECT_EQ(header.type.subType, 0x07u);
  EXPECT_EQ(header.type.subSubType, 0x0102u);
  EXPECT_EQ(header.length, 0x0304u);
}

TEST(TG3PacketTypeTest, FailsOnEveryTruncation) {
  const std::vector<gr_uint8> whole = {0x45, 0xFF, 1,  2,  3, 4, 5, 6, 7, 8, 9, 10, 11, 12,
                                       13,   14,   15, 16, 1, 2, 0, 0, 0, 0, 0, 0,  0,  9};
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    EXPECT_EQ(readHeader({whole.begin(), whole.begin() + static_cast<int>(length)}).status,
              TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3PacketTypeTest, RefusesReservedBitsOnlyAfterTheWholeHeader) {
  for (const gr_uint8 bit : {0x80, 0x20, 0x10}) {
    const gr_uint8 typeByte = static_cast<gr_uint8>(0x01 | bit);
    const ReadHeader whole = readHeader({typeByte, 0x05, 0, 0, 0, 7, 0, 40});
    EXPECT_EQ(whole.status, TG3_STATUS_BAD_VERSION);
    EXPECT_EQ(whole.position, 8);
    EXPECT_EQ(readHeader({typeByte, 0x05, 0, 0, 0, 7, 0}).status, TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3PacketTypeTest, MatchesAnyValueInAQuery) {
  TG3PacketType header;
  header.type = TG3_PACKET_TYPE_METADATA;
  header.subType = 1;
  header.image = 5;
  const gr_uint32 any = TG3PacketType::ANY;
  EXPECT_TRUE(TG3PacketType::query(2, any, any, 5).matches(header));
  EXPECT_TRUE(TG3PacketType::query(2, any, any, any).matches(header));
  EXPECT_TRUE(TG3PacketType::query(TG3PacketType::ANY_TYPE, 1, 0, 5).matches(header));
  EXPECT_TRUE(TG3PacketType::query(2, 1, 0, 5).matches(header));
  EXPECT_FALSE(TG3PacketType::query(1, 1, 0, 5).matches(header));
  EXPECT_FALSE(TG3PacketType::query(2, 0, 0, 5).matches(header));
  EXPECT_FALSE(TG3PacketType::query(2, 1, 1, 5).matches(header));
  EXPECT_FALSE(TG3PacketType::query(2, 1, 0, 4).matches(header));
}

TEST(TG3PacketTypeTest, MatchesAnyValueInAFile) {
  TG3PacketType header;
  header.subType = TG3PacketType::ANY;
  EXPECT_TRUE(TG3PacketType::query(0, 7, 0, 0).matches(header));
}

TEST(TG3PacketTypeTest, IgnoresVersionAndSequenceInAMatch) {
  TG3PacketType header;
  header.sequence = 9;
  header.versionMajor = 3;
  EXPECT_TRUE(TG3PacketType::query(0, 0, 0, 0).matches(header));
}

TEST(TG3PacketTypeTest, KnowsTheSizeThatAWriterTakes) {
  TG3PacketType type;
  EXPECT_EQ(type.getWrittenSize(), 10u);
  type.subType = 0xFF;
  type.subSubType = 0x100;
  EXPECT_EQ(type.getWrittenSize(), 13u);
  type.subSubType = 0x10000;
  type.image = 1;
  type.sequence = 1;
  type.versionMinor = 1;
  EXPECT_EQ(type.getWrittenSize(), 2u + 1 + 4 + 4 + 4 + 2 + 8);
}

}  // namespace
