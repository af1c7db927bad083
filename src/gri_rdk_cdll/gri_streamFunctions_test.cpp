#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "gri_rdk_cdll.h"

namespace {

/// A host's stream over bytes, which notes how often it was closed.
struct HostStream {
  std::vector<gr_uint8>* bytes = nullptr;
  gr_int64 position = 0;
  gr_uint8 openAnswer = 0;
  bool isEOF = false;
  int closes = 0;
};

HostStream& hostOf(void* user) { return *static_cast<HostStream*>(user); }

gr_int32 hostOpen(void* user) {
  hostOf(user).openAnswer = 1;
  hostOf(user).position = 0;
  return 0;
}

gr_int32 hostClose(void* user) {
  hostOf(user).openAnswer = 0;
  ++hostOf(user).closes;
  return 0;
}

gr_uint32 hostRead(void* user, gr_uint8* buffer, gr_uint32 length) {
  HostStream& host = hostOf(user);
  const auto left = static_cast<gr_uint32>(host.bytes->size() - static_cast<size_t>(host.position));
  host.isEOF = length > left;
  const gr_uint32 count = host.isEOF ? left : length;
  std::memcpy(buffer, host.bytes->data() + host.position, count);
  host.position += count;
  return count;
}

gr_uint32 hostWrite(void* user, const gr_uint8* buffer, gr_uint32 length) {
  HostStream& host = hostOf(user);
  host.bytes->insert(host.bytes->end(), buffer, buffer + length);
  return length;
}

gr_int32 hostSeek(void* user, gr_int64 offset, gr_int32 origin) {
  HostStream& host = hostOf(user);
  const auto size = static_cast<gr_int64>(host.bytes->size());
  switch (origin) {
    case GRIC_SEEK_BEGIN:
      host.position = offset;
      return 0;
    case GRIC_SEEK_CURRENT:
      host.position += offset;
      return 0;
    case GRIC_SEEK_END:
      host.position = size + offset;
      return 0;
    default:
      return -5;
  }
}

gr_int64 hostTell(void* user) { return hostOf(user).position; }
gr_uint8 hostIsEOF(void* user) { return hostOf(user).isEOF ? 1 : 0; }
gr_uint8 hostIsOpen(void* user) { return user == nullptr ? gr_uint8{0} : hostOf(user).openAnswer; }
void* hostDuplicateNull(void*) { return nullptr; }

class StreamFunctionsTest : public testing::Test {
 public:
  StreamFunctionsTest() { m_host.bytes = &m_bytes; }
  ~StreamFunctionsTest() override { EXPECT_EQ(gr_ioCStreamDestroy(m_stream), 0); }

 protected:
  gr_ioCStream create(gr_ioCDuplicateFunction duplicate) {
    return gr_ioCallbackStreamCreate(hostOpen, hostClose, hostRead, hostWrite, hostSeek, hostTell,
                                     hostIsEOF, hostIsOpen, duplicate, &m_host);
  }

  std::vector<gr_uint8> m_bytes = {0, 1, 2, 3, 4};
  HostStream m_host;
  gr_ioCStream m_stream = create(hostDuplicateNull);
};

TEST_F(StreamFunctionsTest, DestroyingNothingIsHarmless) {
  EXPECT_EQ(gr_ioCStreamDestroy(nullptr), 0);
}

TEST_F(StreamFunctionsTest, AStreamIsMadeClosed) {
  EXPECT_NE(m_stream, nullptr);
  EXPECT_EQ(gr_ioCStreamIsOpen(m_stream), 0);
  EXPECT_EQ(m_host.position, 0);
}

TEST_F(StreamFunctionsTest, EveryFunctionReachesItsCallback) {
  gr_uint8 buffer[8] = {};
  EXPECT_EQ(gr_ioCStreamOpen(m_stream), 0);
  EXPECT_EQ(gr_ioCStreamIsOpen(m_stream), 1);
  EXPECT_EQ(gr_ioCStreamRead(m_stream, buffer, 2), 2u);
  EXPECT_EQ(buffer[1], 1);
  EXPECT_EQ(gr_ioCStreamTell(m_stream), 2);
  EXPECT_EQ(gr_ioCStreamSeek(m_stream, -1, GRIC_SEEK_END), 0);
  EXPECT_EQ(gr_ioCStreamIsEOF(m_stream), 0);
  EXPECT_EQ(gr_ioCStreamRead(m_stream, buffer, 2), 1u);
  EXPECT_EQ(gr_ioCStreamIsEOF(m_stream), 1);
  EXPECT_EQ(gr_ioCStreamWrite(m_stream, buffer, 1), 1u);
  EXPECT_EQ(m_bytes, (std::vector<gr_uint8>{0, 1, 2, 3, 4, 4}));
  EXPECT_EQ(gr_ioCStreamClose(m_stream), 0);
  EXPECT_EQ(gr_ioCStreamIsOpen(m_stream), 0);
  EXPECT_EQ(m_host.closes, 1);
}

TEST_F(StreamFunctionsTest, AStatusOfTheHostComesBackAsItWas) {
  EXPECT_EQ(gr_ioCStreamSeek(m_stream, 0, 5), -5);
}

TEST_F(StreamFunctionsTest, AnAnswerOfTwoMeansNotOpen) {
  m_host.openAnswer = 2;
  EXPECT_EQ(gr_ioCStreamIsOpen(m_stream), 0);
  EXPECT_EQ(gr_ioCStreamClose(m_stream), 0);
  EXPECT_EQ(m_host.closes, 0);
}

TEST_F(StreamFunctionsTest, DestroyingAnOpenStreamClosesIt) {
  HostStream host;
  host.bytes = &m_bytes;
  const gr_ioCStream stream =
      gr_ioCallbackStreamCreate(hostOpen, hostClose, hostRead, hostWrite, hostSeek, hostTell,
                                hostIsEOF, hostIsOpen, hostDuplicateNull, &host);
  EXPECT_EQ(gr_ioCStreamOpen(stream), 0);
  EXPECT_EQ(gr_ioCStreamDestroy(stream), 0);
  EXPECT_EQ(host.closes, 1);
}

TEST_F(StreamFunctionsTest, ADuplicateWithoutAUserStillIsAStream) {
  const gr_ioCStream copy = gr_ioCStreamDuplicate(m_stream);
  EXPECT_NE(copy, nullptr);
  EXPECT_EQ(gr_ioCStreamIsOpen(copy), 0);
  EXPECT_EQ(gr_ioCStreamDestroy(copy), 0);
}

TEST_F(StreamFunctionsTest, WithoutTheCallbackThereIsNoDuplicate) {
  const gr_ioCStream stream = create(nullptr);
  EXPECT_EQ(gr_ioCStreamDuplicate(stream), nullptr);
  EXPECT_EQ(gr_ioCStreamDestroy(stream), 0);
}

TEST_F(StreamFunctionsTest, ADuplicateHasItsOwnPosition) {
  static HostStream second;
  second = m_host;
  const gr_ioCStream stream = create([](void*) -> void* { return &second; });
  const gr_ioCStream copy = gr_ioCStreamDuplicate(stream);
  EXPECT_EQ(gr_ioCStreamOpen(copy), 0);
  EXPECT_EQ(gr_ioCStreamSeek(copy, 3, GRIC_SEEK_BEGIN), 0);
  EXPECT_EQ(gr_ioCStreamTell(copy), 3);
  EXPECT_EQ(gr_ioCStreamTell(stream), 0);
  EXPECT_EQ(gr_ioCStreamDestroy(copy), 0);
  EXPECT_EQ(gr_ioCStreamDestroy(stream), 0);
}

}  // namespace
