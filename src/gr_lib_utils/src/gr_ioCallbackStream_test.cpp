#include "gr_lib_utils/include/gr_ioCallbackStream.h"

#include <gtest/gtest.h>

#include <memory>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

/// What a host keeps behind its user pointer: answers to give, and a note of what was called.
struct Host {
  gr_uint8 isOpen = 0;
  gr_uint8 isEOF = 0;
  gr_int32 status = 0;
  gr_uint32 count = 0;
  Host* duplicate = nullptr;
  int opens = 0;
  int closes = 0;
  gr_int64 seekOffset = 0;
  gr_int32 seekOrigin = 0;
};

Host& hostOf(void* user) { return *static_cast<Host*>(user); }

GRIOCallbacks callbacks() {
  GRIOCallbacks functions;
  functions.open = [](void* user) { return ++hostOf(user).opens, hostOf(user).status; };
  functions.close = [](void* user) { return ++hostOf(user).closes, hostOf(user).status; };
  functions.read = [](void* user, gr_uint8*, gr_uint32) { return hostOf(user).count; };
  functions.write = [](void* user, const gr_uint8*, gr_uint32) { return hostOf(user).count; };
  functions.seek = [](void* user, gr_int64 offset, gr_int32 origin) {
    hostOf(user).seekOffset = offset;
    hostOf(user).seekOrigin = origin;
    return hostOf(user).status;
  };
  functions.tell = [](void*) -> gr_int64 { return 0x123456789A; };
  functions.isEOF = [](void* user) { return hostOf(user).isEOF; };
  functions.isOpen = [](void* user) -> gr_uint8 {
    return user == nullptr ? gr_uint8{0} : hostOf(user).isOpen;
  };
  functions.duplicate = [](void* user) -> void* { return hostOf(user).duplicate; };
  return functions;
}

class GRIOCallbackStreamTest : public testing::Test {
 protected:
  GRIOCallbackStreamTest() { EXPECT_EQ(m_stream.initialize(callbacks(), &m_host), GR_STATUS_OK); }

  Host m_host;
  GRIOCallbackStream m_stream;
};

TEST_F(GRIOCallbackStreamTest, OnlyExactlyOneMeansTrue) {
  for (const gr_uint8 answer : Bytes{0, 2, 255}) {
    m_host.isOpen = answer;
    m_host.isEOF = answer;
    EXPECT_FALSE(m_stream.isOpen());
    EXPECT_FALSE(m_stream.isEOF());
  }
  m_host.isOpen = 1;
  m_host.isEOF = 1;
  EXPECT_TRUE(m_stream.isOpen());
  EXPECT_TRUE(m_stream.isEOF());
}

TEST_F(GRIOCallbackStreamTest, CallsOpenAndCloseOnlyWhereTheyAreNeeded) {
  EXPECT_EQ(m_stream.close(), GR_STATUS_OK);
  EXPECT_EQ(m_host.closes, 0);
  EXPECT_EQ(m_stream.open(), GR_STATUS_OK);
  EXPECT_EQ(m_host.opens, 1);
  m_host.isOpen = 1;
  EXPECT_EQ(m_stream.open(), GR_STATUS_OK);
  EXPECT_EQ(m_host.opens, 1);
  EXPECT_EQ(m_stream.close(), GR_STATUS_OK);
  EXPECT_EQ(m_host.closes, 1);
  m_host.isOpen = 0;
}

TEST_F(GRIOCallbackStreamTest, HandsStatusesAndPositionsThroughBitForBit) {
  m_host.status = -1;
  EXPECT_EQ(m_stream.open(), 0xFFFFFFFFu);
  EXPECT_EQ(m_stream.seek(-0x1234567890, GRIO_SEEK_END), 0xFFFFFFFFu);
  EXPECT_EQ(m_host.seekOffset, -0x1234567890);
  EXPECT_EQ(m_host.seekOrigin, 4);
  EXPECT_EQ(m_stream.tell(), 0x123456789A);
}

TEST_F(GRIOCallbackStreamTest, TakesACountAboveTheLengthForNothing) {
  gr_uint8 bytes[4] = {};
  m_host.count = 4;
  EXPECT_EQ(m_stream.read(bytes, 4), 4u);
  EXPECT_EQ(m_stream.write(bytes, 4), 4u);
  m_host.count = 5;
  EXPECT_EQ(m_stream.read(bytes, 4), 0u);
  EXPECT_EQ(m_stream.write(bytes, 4), 0u);
}

TEST_F(GRIOCallbackStreamTest, TheReasonOfAFailureIsAlwaysOne) {
  EXPECT_EQ(m_stream.getLastError(), GR_STATUS_FAILURE);
  EXPECT_STREQ(m_stream.getID(), "gr_cbStream:");
}

TEST_F(GRIOCallbackStreamTest, ADuplicateHasTheSameFunctionsAndItsOwnUser) {
  Host second;
  second.count = 3;
  m_host.duplicate = &second;
  const std::unique_ptr<GRIOStreamInf> copy(m_stream.duplicate());
  ASSERT_NE(copy, nullptr);
  gr_uint8 bytes[4] = {};
  EXPECT_EQ(copy->read(bytes, 4), 3u);
}

TEST_F(GRIOCallbackStreamTest, ADuplicateOfNullStillIsAStream) {
  const std::unique_ptr<GRIOStreamInf> copy(m_stream.duplicate());
  EXPECT_NE(copy, nullptr);
}

TEST_F(GRIOCallbackStreamTest, WithoutTheFunctionThereIsNoDuplicate) {
  GRIOCallbacks functions = callbacks();
  functions.duplicate = nullptr;
  ASSERT_EQ(m_stream.initialize(functions, &m_host), GR_STATUS_OK);
  EXPECT_EQ(m_stream.duplicate(), nullptr);
}

TEST(GRIOCallbackStreamLifeTest, ClosesAnOpenStreamWhenItGoes) {
  Host host;
  host.isOpen = 1;
  {
    GRIOCallbackStream stream;
    ASSERT_EQ(stream.initialize(callbacks(), &host), GR_STATUS_OK);
  }
  EXPECT_EQ(host.closes, 1);
  host.isOpen = 0;
  {
    GRIOCallbackStream stream;
    ASSERT_EQ(stream.initialize(callbacks(), &host), GR_STATUS_OK);
  }
  EXPECT_EQ(host.closes, 1);
  { GRIOCallbackStream never; }
}

}  // namespace
