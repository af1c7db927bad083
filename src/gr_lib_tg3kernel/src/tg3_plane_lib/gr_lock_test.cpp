#include "gr_lib_tg3kernel/src/tg3_plane_lib/gr_lock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_lockWriter.h"
#include "tests/support/tg3_memoryFile.h"

namespace {

using Bytes = std::vector<gr_uint8>;

/// Gives one password after the other, the last one from then on, and keeps what it was asked.
class ListProvider : public KeyProviderPwd {
 public:
  explicit ListProvider(std::vector<std::string> passwords) : m_passwords(std::move(passwords)) {}
  const std::vector<std::string>& questions() const { return m_questions; }
  int timesFailed() const { return m_timesFailed; }

  void reportFailure() override { ++m_timesFailed; }

 protected:
  GR_STATUS askForKey(const char* description, LockDirection direction, GRSecret& text) override {
    EXPECT_EQ(direction, 2);
    const std::string& password = m_passwords[std::min(m_questions.size(), m_passwords.size() - 1)];
    m_questions.emplace_back(description);
    return text.assign({reinterpret_cast<const gr_uint8*>(password.data()), password.size()});
  }

 private:
  std::vector<std::string> m_passwords;
  std::vector<std::string> m_questions;
  int m_timesFailed = 0;
};

/// A lock that was read from a packet, and who is asked for its keys.
struct ReadLock {
  ReadLock(const TG3TestPacket& packet, const Bytes& body, std::vector<std::string> passwords,
           const TG3ImageInfo& imageInfo = {})
      : info(imageInfo), provider(std::move(passwords)) {
    TG3Writer writer;
    writer.addPacket(packet, body);
    TG3MemoryFile file(writer.bytes());
    const TG3SecurityPacket* security = nullptr;
    status = file.container.getSecurity(packet.image, security);
    if (GR_SUCCESS(status)) status = GRLock::make(*security, info, lock);
    EXPECT_EQ(lock != nullptr, GR_SUCCESS(status));
    providers.add(provider);
    if (lock != nullptr) lock->setKeyProviders(&providers);
  }
  ReadLock(const TG3TestLock& test, std::vector<std::string> passwords,
           const TG3ImageInfo& imageInfo = {})
      : ReadLock(tg3_lockPacket(test), tg3_lockBody(test), std::move(passwords), imageInfo) {}

  GR_STATUS decipher(gr_uint8 subband, Bytes& bytes) {
    return lock->decipher({subband, 0, 0, 10}, bytes);
  }
  GR_STATUS decipher(gr_uint8 subband) {
    Bytes bytes(10, 1);
    return decipher(subband, bytes);
  }

  TG3ImageInfo info;
  ListProvider provider;
  KeyProviderRegistry providers;
  GR_STATUS status = GR_STATUS_OK;
  std::unique_ptr<GRLock> lock;
};

GR_STATUS readStatus(const TG3TestLock& test) { return ReadLock(test, {""}).status; }

gr_int32 keyIndex(GRLock& lock, gr_uint8 subband) {
  gr_int32 index = 99;
  EXPECT_EQ(lock.getKeyIndex({subband, 0, 0, 10}, index), GR_STATUS_OK);
  return index;
}

TEST(GRLockTest, IsOfTheKindThatThePacketNames) {
  const ReadLock image({.kind = 1}, {""});
  ASSERT_EQ(image.status, GR_STATUS_OK);
  EXPECT_EQ(image.lock->getKind(), TG3_LOCK_IMAGE);
  EXPECT_EQ(image.lock->getNumKeys(), 1u);
  EXPECT_STREQ(image.lock->getKeyDescription(0).data(), "this image");
  EXPECT_FALSE(image.lock->usesStoredKeyIndex());
  for (const gr_uint8 kind : {2, 3}) {
    const ReadLock lock({.kind = kind, .scale = 12, .numLevels = 13}, {""});
    ASSERT_EQ(lock.status, GR_STATUS_OK);
    EXPECT_EQ(lock.lock->getKind(), kind);
    EXPECT_EQ(lock.lock->getNumKeys(), 13u);
    EXPECT_STREQ(lock.lock->getKeyDescription(0).data(), "scale 0");
    EXPECT_STREQ(lock.lock->getKeyDescription(12).data(), "scale 12");
    EXPECT_STREQ(lock.lock->GRLock::getKeyDescription(7).data(), "the portion locked with key 7");
    EXPECT_FALSE(lock.lock->usesStoredKeyIndex());
  }
}

TEST(GRLockTest, LocksAWholeImageWithOneKey) {
  const ReadLock read({.kind = 1}, {""});
  for (int subband = 0; subband < 125; ++subband) {
    EXPECT_EQ(keyIndex(*read.lock, static_cast<gr_uint8>(subband)), 0);
  }
}

TEST(GRLockTest, NumbersKeysByTheScaleOfASubband) {
  const ReadLock read({.kind = 2, .scale = 3, .numLevels = 3}, {""});
  const std::vector<gr_int32> expected = {3, 3, 2, 2, 2, 2, 1, 1, 1, 0, 0, 0, 0};
  for (size_t subband = 0; subband < expected.size(); ++subband) {
    EXPECT_EQ(keyIndex(*read.lock, static_cast<gr_uint8>(subband)), expected[subband]) << subband;
  }
}

TEST(GRLockTest, LeavesCoarserScalesOpen) {
  const ReadLock read({.kind = 2, .scale = 1, .numLevels = 3}, {""});
  const std::vector<gr_int32> expected = {-1, -1, -1, -1, -1, -1, 1, 1, 1, 0, 0, 0, 0};
  for (size_t subband = 0; subband < expected.size(); ++subband) {
    EXPECT_EQ(keyIndex(*read.lock, static_cast<gr_uint8>(subband)), expected[subband]) << subband;
  }
}

TEST(GRLockTest, LeavesSubbandsOpenThatItsLevelsDoNotReach) {
  const ReadLock read({.kind = 2, .scale = 1, .numLevels = 1}, {""});
  const std::vector<gr_int32> expected = {1, 0, 0, 0, 0, 0, -1, -1, -1, -1};
  for (size_t subband = 0; subband < expected.size(); ++subband) {
    EXPECT_EQ(keyIndex(*read.lock, static_cast<gr_uint8>(subband)), expected[subband]) << subband;
  }
}

TEST(GRLockTest, RefusesWhatNoWriterMakes) {
  EXPECT_EQ(readStatus({}), GR_STATUS_OK);
  EXPECT_EQ(readStatus({.kind = 0}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.kind = 4}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.cipher = 0}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.cipher = 2}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.digest = 0}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.digest = 2}), TG3_STATUS_FORMAT_ERROR);
  for (const gr_uint8 kind : {2, 3}) {
    EXPECT_EQ(readStatus({.kind = kind, .scale = 3, .numLevels = 3}), GR_STATUS_OK);
    EXPECT_EQ(readStatus({.kind = kind, .scale = 4, .numLevels = 3}), TG3_STATUS_FORMAT_ERROR);
    EXPECT_EQ(readStatus({.kind = kind, .scale = 255, .numLevels = 255}), GR_STATUS_OK);
  }
  EXPECT_EQ(readStatus({.contentKeyLength = 0}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.contentKeyLength = 72, .claimedKeyLength = 73}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.claimedKeyLength = 0xFFFF}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.isLegacy = true}), GR_STATUS_OK);
  EXPECT_EQ(readStatus({.isLegacy = true, .claimedKeyLength = 0}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.isLegacy = true, .claimedKeyLength = 0xFFFF}), GR_STATUS_OK);
  EXPECT_EQ(readStatus({.isLegacy = true, .numConjuncts = 1}), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(readStatus({.isLegacy = true, .usesGuid = 1}), TG3_STATUS_FORMAT_ERROR);
}

TEST(GRLockTest, RefusesEveryBodyThatEndsEarly) {
  for (const bool isLegacy : {false, true}) {
    for (const gr_uint8 kind : {1, 2, 3}) {
      const TG3TestLock test = {.kind = kind, .scale = 1, .numLevels = 2, .isLegacy = isLegacy};
      const Bytes whole = tg3_lockBody(test);
      ASSERT_EQ(ReadLock(tg3_lockPacket(test), whole, {""}).status, GR_STATUS_OK);
      for (size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        const Bytes begin(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(ReadLock(tg3_lockPacket(test), begin, {""}).status,
                  length < 3 ? TG3_STATUS_READ_ERROR : TG3_STATUS_FORMAT_ERROR);
      }
    }
  }
}

TEST(GRLockTest, ReadsAKeyWithoutADigestButCannotUseIt) {
  ReadLock read({.kind = 2, .scale = 1, .numLevels = 2, .providerType = 5}, {"sesame"});
  ASSERT_EQ(read.status, GR_STATUS_OK);
  EXPECT_EQ(read.decipher(8), TG3_STATUS_SECURITY);
  EXPECT_TRUE(read.provider.questions().empty());
}

TEST(GRLockTest, DeciphersWithTheKeyOfThePlane) {
  for (const bool isLegacy : {false, true}) {
    const TG3TestLock test = {.kind = 2,
                              .scale = 1,
                              .numLevels = 3,
                              .isLegacy = isLegacy,
                              .passwords = {"fine", "coarse"}};
    ReadLock read(test, {"coarse", "fine"});
    const Bytes clear = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    for (int turn = 0; turn < 3; ++turn) {
      for (const gr_uint32 key : {1, 0}) {
        Bytes bytes = clear;
        Encryption encryption;
        encryption.setKey(test.contentKey(key));
        encryption.encrypt(bytes);
        ASSERT_EQ(read.decipher(key == 0 ? 12 : 8, bytes), GR_STATUS_OK);
        EXPECT_EQ(bytes, clear);
      }
    }
    Bytes open = clear;
    ASSERT_EQ(read.decipher(4, open), GR_STATUS_OK);
    EXPECT_EQ(open, clear);
    EXPECT_EQ(read.provider.questions(), (std::vector<std::string>{"scale 1", "scale 0"}));
  }
}

TEST(GRLockTest, AsksNobodyForPlanesThatAreOpen) {
  ReadLock read({.kind = 2, .scale = 0, .numLevels = 3}, {"sesame"});
  EXPECT_EQ(read.decipher(0), GR_STATUS_OK);
  EXPECT_EQ(read.decipher(8), GR_STATUS_OK);
  EXPECT_TRUE(read.provider.questions().empty());
  read.lock->setKeyProviders(nullptr);
  EXPECT_EQ(read.decipher(0), GR_STATUS_OK);
  EXPECT_EQ(read.decipher(12), TG3_STATUS_SECURITY);
}

TEST(GRLockTest, ReportsAWrongPasswordOnceAndAsksAgainTheNextTime) {
  ReadLock read({}, {"wrong", "sesame"});
  EXPECT_EQ(read.decipher(0), TG3_STATUS_SECURITY);
  EXPECT_EQ(read.provider.timesFailed(), 1);
  EXPECT_EQ(read.provider.questions().size(), 1u);
  EXPECT_EQ(read.decipher(0), GR_STATUS_OK);
  EXPECT_EQ(read.decipher(0), GR_STATUS_OK);
  EXPECT_EQ(read.provider.questions().size(), 2u);
  EXPECT_EQ(read.provider.timesFailed(), 1);
}

TEST(GRLockTest, AsksThreeTimesForAPasswordThatCanBeAKey) {
  const std::string tooLong(73, 'x');
  ReadLock never({}, {tooLong});
  EXPECT_EQ(never.decipher(0), TG3_STATUS_SECURITY);
  EXPECT_EQ(never.provider.questions().size(), 3u);
  EXPECT_EQ(never.provider.timesFailed(), 0);
  ReadLock third({}, {tooLong, std::string(70000, 'x'), "sesame"});
  EXPECT_EQ(third.decipher(0), GR_STATUS_OK);
}

TEST(GRLockTest, AsksNoMoreWhereThereIsNoPassword) {
  ReadLock read({}, {"", "sesame"});
  EXPECT_EQ(read.decipher(0), TG3_STATUS_SECURITY);
  EXPECT_EQ(read.decipher(0), TG3_STATUS_SECURITY);
  EXPECT_EQ(read.provider.questions().size(), 1u);
  EXPECT_EQ(read.provider.timesFailed(), 0);
  read.lock->allowAsking();
  EXPECT_EQ(read.decipher(0), GR_STATUS_OK);
}

TEST(GRLockTest, HasNobodyToAskForOtherTypesOfKeys) {
  for (const gr_uint8 type : {0, 2, 3, 255}) {
    ReadLock read({.providerType = type}, {"sesame"});
    ASSERT_EQ(read.status, GR_STATUS_OK);
    EXPECT_EQ(read.decipher(0), TG3_STATUS_SECURITY);
    EXPECT_TRUE(read.provider.questions().empty());
  }
}

TEST(GRLockTest, CannotUseAContentKeyOfMoreThan72Bytes) {
  for (const gr_uint16 length : {1, 71, 72}) {
    ReadLock read({.contentKeyLength = length}, {"sesame"});
    EXPECT_EQ(read.decipher(0), GR_STATUS_OK) << length;
  }
  for (const gr_uint16 length : {73, 1000, 65535}) {
    ReadLock read({.contentKeyLength = length}, {"sesame"});
    ASSERT_EQ(read.status, GR_STATUS_OK);
    EXPECT_EQ(read.decipher(0), TG3_STATUS_SECURITY) << length;
  }
}

TG3ImageInfo infoOf(gr_uint32 width, gr_uint32 height, gr_uint8 levels) {
  TG3ImageInfo info;
  info.width = width;
  info.height = height;
  info.numLevels = levels;
  info.numComponents = 1;
  info.numPlanes = 32;
  info.subblockSize = 8;
  EXPECT_EQ(info.initializeSubbands(), GR_STATUS_OK);
  return info;
}

TEST(GRLockTest, LocksTheSubblocksOfARectangle) {
  TG3TestImage image;
  image.width = 100;
  image.height = 70;
  image.numLevels = 3;
  image.blockSize = 8;
  const TG3TestLock test = {.kind = 3, .scale = 2, .numLevels = 3, .rectangle = {30, 10, 55, 40}};
  const ReadLock read(test, {""}, infoOf(100, 70, 3));
  gr_uint32 locked = 0;
  gr_uint32 open = 0;
  for (gr_uint8 subband = 0; subband <= 12; ++subband) {
    const gr_uint64 numBlocks = image.geometry().bands()[subband].numBlocks();
    for (gr_uint32 block = 0; block < numBlocks; ++block) {
      gr_int32 index = 99;
      ASSERT_EQ(read.lock->getKeyIndex({subband, block, 0, 10}, index), GR_STATUS_OK);
      const auto expected = tg3_keyOf(test, image, subband, block);
      EXPECT_EQ(index, expected ? static_cast<gr_int32>(*expected) : GRLock::NOT_LOCKED)
          << int{subband} << ' ' << block;
      ++(index == GRLock::NOT_LOCKED ? open : locked);
    }
  }
  EXPECT_GT(locked, 20u);
  EXPECT_GT(open, 60u);
}

TEST(GRLockTest, CannotUseARectangleThatTheImageHasNot) {
  const TG3ImageInfo info = infoOf(100, 70, 3);
  const std::array<gr_int32, 4> whole = {0, 0, 99, 69};
  struct Fault {
    size_t corner;
    gr_int32 value;
  };
  for (const auto& [corner, value] : std::vector<Fault>{{0, -1},
                                                        {1, -1},
                                                        {2, 100},
                                                        {3, 70},
                                                        {0, 100},
                                                        {2, -1},
                                                        {0, INT32_MIN},
                                                        {1, INT32_MAX},
                                                        {2, INT32_MAX},
                                                        {3, INT32_MIN}}) {
    SCOPED_TRACE(value);
    TG3TestLock test = {.kind = 3, .scale = 1, .numLevels = 3, .rectangle = whole};
    test.rectangle[corner] = value;
    ReadLock read(test, {"sesame"}, info);
    ASSERT_EQ(read.status, GR_STATUS_OK);
    EXPECT_EQ(read.decipher(12), TG3_STATUS_SECURITY);
    EXPECT_EQ(read.decipher(0), GR_STATUS_OK);  // the lock doesn't go so far
  }
  ReadLock good({.kind = 3, .scale = 1, .numLevels = 3, .rectangle = whole}, {"sesame"}, info);
  EXPECT_EQ(good.decipher(12), GR_STATUS_OK);
  ReadLock tooCoarse({.kind = 3, .scale = 4, .numLevels = 5, .rectangle = whole}, {"sesame"}, info);
  ASSERT_EQ(tooCoarse.status, GR_STATUS_OK);
  EXPECT_EQ(tooCoarse.decipher(12), TG3_STATUS_SECURITY);
}

}  // namespace
