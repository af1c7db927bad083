#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeRecord.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_multiByte.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

GR_STATUS readRecord(const Bytes& bytes, bool is64Bit, TG3PlaneRecord& record) {
  return record.read(bytes, is64Bit);
}

TEST(TG3PlaneRecordTest, ReadsKnownRecords) {
  TG3PlaneRecord record;
  ASSERT_EQ(readRecord({0x37, 0x01}, false, record), GR_STATUS_OK);
  EXPECT_FALSE(record.isLength);
  EXPECT_EQ(record.value, 55u);
  EXPECT_EQ(record.prefixCount, 2u);
  ASSERT_EQ(readRecord({0x82, 0xFF}, false, record), GR_STATUS_OK);
  EXPECT_TRUE(record.isLength && !record.useBypass);
  EXPECT_EQ(record.value, 2u);
  EXPECT_EQ(record.prefixCount, 1u);
  ASSERT_EQ(readRecord({0xC1}, false, record), GR_STATUS_OK);
  EXPECT_TRUE(record.isLength && record.useBypass);
  ASSERT_EQ(readRecord({0x20, 0x05}, false, record), GR_STATUS_OK);
  EXPECT_EQ(record.value, 160u);
}

TEST(TG3PlaneRecordTest, ReadsTheLargestValues) {
  TG3PlaneRecord record;
  ASSERT_EQ(readRecord({0x3F, 0xFF, 0xFF, 0xFF}, false, record), GR_STATUS_OK);
  EXPECT_EQ(record.value, (1u << 27) - 1);
  ASSERT_EQ(readRecord({0x3F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}, true, record),
            GR_STATUS_OK);
  EXPECT_EQ(record.value, (gr_uint64{1} << 54) - 1);
  EXPECT_EQ(record.prefixCount, 8u);
}

TEST(TG3PlaneRecordTest, ReadsWhatWritersWrite) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 20000; ++i) {
    const bool is64Bit = random() % 2 != 0;
    const gr_uint64 value =
        1 + (random() >> (random() % 54 + 10)) % ((gr_uint64{1} << (is64Bit ? 54 : 27)) - 1);
    const bool isLength = random() % 2 != 0;
    const bool useBypass = random() % 2 != 0;
    const Bytes bytes = tg3_planeRecord(isLength, useBypass, value, is64Bit);
    TG3PlaneRecord record;
    ASSERT_EQ(readRecord(bytes, is64Bit, record), GR_STATUS_OK);
    ASSERT_EQ(record.value, value);
    ASSERT_EQ(record.isLength, isLength);
    ASSERT_EQ(record.useBypass, useBypass);
    ASSERT_EQ(record.prefixCount, bytes.size());
    for (size_t length = 0; length < bytes.size(); ++length) {
      ASSERT_EQ(record.read({bytes.data(), length}, is64Bit), TG3_STATUS_READ_ERROR);
    }
  }
}

TEST(TG3PlaneRecordTest, TakesALengthOfZeroButNoEmptySkip) {
  TG3PlaneRecord record;
  EXPECT_EQ(readRecord({0x80}, false, record), GR_STATUS_OK);
  EXPECT_EQ(readRecord({0x00}, false, record), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(readRecord({0x20, 0x80, 0x80, 0x00}, false, record), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(readRecord({0x40}, false, record), TG3_STATUS_READ_ERROR);
}

TEST(TG3PlaneRecordTest, RefusesANinthByte) {
  TG3PlaneRecord record;
  EXPECT_EQ(readRecord({0x20, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x81, 0x01}, true, record),
            TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3MultiByteTest, LeavesReservedBitsAlone) {
  for (gr_uint32 reserved = 0; reserved <= TG3MultiByte::MOST_RESERVED_BITS; ++reserved) {
    SCOPED_TRACE(reserved);
    const gr_uint8 last = static_cast<gr_uint8>((1 << (7 - reserved)) - 1);
    const Bytes bytes = {static_cast<gr_uint8>(~(1 << (7 - reserved)))};
    TG3MultiByte integer;
    ASSERT_EQ(integer.read32(bytes, reserved), GR_STATUS_OK);
    EXPECT_EQ(integer.value, last);
    EXPECT_EQ(integer.reservedBits, (1 << reserved) - 1);
    EXPECT_EQ(integer.count, 1u);
  }
}

}  // namespace
