#include "gr_lib_tg2kernel/src/decode/tesra_encrypt.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_keyProvider.h"
#include "gr_lib_utils/include/gr_status.h"
#include "metadata/gri_metadataAcc.h"
#include "metadata/gri_metadataDatabase.h"

namespace {

using Bytes = std::vector<gr_uint8>;

/// Gives one password, and counts.
class CountingProvider : public KeyProviderPwd {
 public:
  explicit CountingProvider(std::string password) : m_password(std::move(password)) {}
  void setPassword(std::string password) { m_password = std::move(password); }
  int timesAsked() const { return m_timesAsked; }
  int timesFailed() const { return m_timesFailed; }

  void reportFailure() override { ++m_timesFailed; }

 protected:
  GR_STATUS askForKey(const char* description, LockDirection direction, GRSecret& text) override {
    EXPECT_STREQ(description, "This Tesra image");
    EXPECT_EQ(direction, 2);
    ++m_timesAsked;
    return text.assign({reinterpret_cast<const gr_uint8*>(m_password.data()), m_password.size()});
  }

 private:
  std::string m_password;
  int m_timesAsked = 0;
  int m_timesFailed = 0;
};

/// The records of a locked image, by default a good one.
struct LockedImage {
  std::optional<gr_uint8> type = 1;
  std::optional<Bytes> key = Bytes(72, 0x5A);  ///< the content key in clear
  std::optional<Bytes> signature = Bytes(ENCRYPTION_SIGNATURE.begin(), ENCRYPTION_SIGNATURE.end());

  GRIMetadataDatabase database(const std::string& password) const {
    GRIMetadataDatabase made;
    GRIMetadataAcc records(made);
    Encryption encryption;
    if (type) {
      EXPECT_EQ(records.setTagScalar(GRI_TAG_IMAGE_FILE_IS_LOCKED, *type), GR_STATUS_OK);
    }
    if (signature) {
      if (key && Encryption::checkKey(key->size()) == Encryption::KEY_OK) encryption.setKey(*key);
      put(records, GRI_TAG_IMAGE_SIGNATURE, *signature, encryption);
    }
    if (key) {
      encryption.setKey(password.c_str());
      put(records, GRI_TAG_IMAGE_KEY, *key, encryption);
    }
    return made;
  }

 private:
  static void put(GRIMetadataAcc& records, gr_int32 tag, Bytes bytes, Encryption& encryption) {
    encryption.encrypt(bytes);
    EXPECT_EQ(records.setTagVector(tag, std::span<const gr_uint8>(bytes)), GR_STATUS_OK);
  }
};

GR_STATUS unlockStatus(const GRIMetadataDatabase& database, const std::string& password) {
  CountingProvider provider(password);
  KeyProviderRegistry providers;
  providers.add(provider);
  Encryption encryption;
  const GR_STATUS status = tesraUnlock(database, encryption, providers);
  EXPECT_EQ(encryption.isKeySet(), status == GR_STATUS_OK);
  EXPECT_EQ(provider.timesFailed(), status == GR_STATUS_WRONG_KEY ? 1 : 0);
  return status;
}

TEST(TesraEncryptTest, TellsALockByItsRecord) {
  EXPECT_FALSE(tesraIsLocked({}));
  EXPECT_TRUE(tesraIsLocked(LockedImage{}.database("sesame")));
  EXPECT_TRUE(tesraIsLocked(LockedImage{.type = 77}.database("sesame")));
  EXPECT_FALSE(tesraIsLocked(LockedImage{.type = std::nullopt}.database("sesame")));
}

TEST(TesraEncryptTest, GetsTheContentKeyByThePassword) {
  const GRIMetadataDatabase database = LockedImage{}.database("sesame");
  CountingProvider provider("sesame");
  KeyProviderRegistry providers;
  providers.add(provider);
  Encryption encryption;
  ASSERT_EQ(tesraUnlock(database, encryption, providers), GR_STATUS_OK);

  Encryption expected;
  expected.setKey(Bytes(72, 0x5A));
  Bytes bytes(40, 3);
  expected.encrypt(bytes);
  encryption.decrypt(bytes);
  EXPECT_EQ(bytes, Bytes(40, 3));
}

TEST(TesraEncryptTest, AsksOnce) {
  const GRIMetadataDatabase database = LockedImage{}.database("sesame");
  CountingProvider provider("sesame");
  KeyProviderRegistry providers;
  providers.add(provider);
  Encryption encryption;
  EXPECT_EQ(tesraUnlock(database, encryption, providers), GR_STATUS_OK);
  provider.setPassword("wrong");
  EXPECT_EQ(tesraUnlock(database, encryption, providers), GR_STATUS_OK);
  EXPECT_EQ(provider.timesAsked(), 1);
}

TEST(TesraEncryptTest, AsksAgainAfterAWrongPassword) {
  const GRIMetadataDatabase database = LockedImage{}.database("sesame");
  CountingProvider provider("wrong");
  KeyProviderRegistry providers;
  providers.add(provider);
  Encryption encryption;
  EXPECT_EQ(tesraUnlock(database, encryption, providers), 4006u);
  EXPECT_FALSE(encryption.isKeySet());
  EXPECT_EQ(provider.timesFailed(), 1);
  provider.setPassword("sesame");
  EXPECT_EQ(tesraUnlock(database, encryption, providers), GR_STATUS_OK);
  EXPECT_EQ(provider.timesAsked(), 2);
}

TEST(TesraEncryptTest, HasAStatusForEachBadPassword) {
  const GRIMetadataDatabase database = LockedImage{}.database("sesame");
  EXPECT_EQ(unlockStatus(database, "sesame"), 0u);
  EXPECT_EQ(unlockStatus(database, ""), 4005u);
  EXPECT_EQ(unlockStatus(database, "sesam"), 4006u);
  EXPECT_EQ(unlockStatus(database, "sesamf"), 4006u);
  EXPECT_EQ(unlockStatus(database, std::string(72, 'x')), 4006u);
  EXPECT_EQ(unlockStatus(database, std::string(73, 'x')), 4009u);
  EXPECT_EQ(unlockStatus(database, std::string(70000, 'x')), 4009u);
  const std::string longest(72, 'y');
  EXPECT_EQ(unlockStatus(LockedImage{}.database(longest), longest), 0u);
}

TEST(TesraEncryptTest, NeedsAProviderOfTheLocksType) {
  for (const gr_uint8 type : {0, 2, 5, 255}) {
    EXPECT_EQ(unlockStatus(LockedImage{.type = type}.database("sesame"), ""), 4011u);
  }
  Encryption encryption;
  EXPECT_EQ(tesraUnlock(LockedImage{}.database("sesame"), encryption, {}), 4011u);
}

TEST(TesraEncryptTest, TakesContentKeysOfOneTo72Bytes) {
  for (const size_t length : {1, 16, 72}) {
    EXPECT_EQ(unlockStatus(LockedImage{.key = Bytes(length, 9)}.database("sesame"), "sesame"), 0u);
  }
  for (const size_t length : {0, 73, 100000}) {
    EXPECT_EQ(unlockStatus(LockedImage{.key = Bytes(length, 9)}.database("sesame"), "sesame"),
              4009u);
  }
}

TEST(TesraEncryptTest, RefusesSignaturesOfOtherLengths) {
  for (const size_t length : {0, 1, 31, 33, 1000}) {
    EXPECT_EQ(unlockStatus(LockedImage{.signature = Bytes(length, 9)}.database("sesame"), "sesame"),
              4006u);
  }
}

TEST(TesraEncryptTest, RefusesLocksWithoutTheirRecords) {
  EXPECT_EQ(unlockStatus(LockedImage{.key = std::nullopt}.database("sesame"), "sesame"), 50503u);
  EXPECT_EQ(unlockStatus(LockedImage{.signature = std::nullopt}.database("sesame"), "sesame"),
            50503u);
}

// In the order in which they are read.
TEST(TesraEncryptTest, NamesTheFirstOfSeveralFaults) {
  LockedImage image = {.type = 9, .key = std::nullopt, .signature = std::nullopt};
  EXPECT_EQ(unlockStatus(image.database("sesame"), ""), 4011u);
  image.type = 1;
  EXPECT_EQ(unlockStatus(image.database("sesame"), ""), 4005u);
  EXPECT_EQ(unlockStatus(image.database("sesame"), std::string(73, 'x')), 4009u);
  EXPECT_EQ(unlockStatus(image.database("sesame"), "wrong"), 50503u);
  image.key = Bytes(0);
  EXPECT_EQ(unlockStatus(image.database("sesame"), "wrong"), 4009u);
  image.key = Bytes(8, 1);
  EXPECT_EQ(unlockStatus(image.database("sesame"), "wrong"), 50503u);
  image.signature = Bytes(5, 1);
  EXPECT_EQ(unlockStatus(image.database("sesame"), "wrong"), 4006u);
}

TEST(TesraEncryptTest, RefusesRecordsOfAnotherTypeOrShape) {
  const Bytes many(32, 1);
  const gr_uint32 square[] = {4, 8};
  for (const gr_int32 tag :
       {GRI_TAG_IMAGE_FILE_IS_LOCKED, GRI_TAG_IMAGE_KEY, GRI_TAG_IMAGE_SIGNATURE}) {
    SCOPED_TRACE(tag);
    GRIMetadataDatabase database = LockedImage{}.database("sesame");
    ASSERT_EQ(database.remove(tag), GR_STATUS_OK);
    ASSERT_EQ(GRIMetadataAcc(database).setTagScalar(tag, gr_uint16{1}), GR_STATUS_OK);
    EXPECT_EQ(unlockStatus(database, "sesame"), 50507u);
    ASSERT_EQ(database.remove(tag), GR_STATUS_OK);
    const char* const name = GRIMetadataUtilities::convertTagToString(tag);
    ASSERT_EQ(
        database.add(GRIMetadataRecord(name, GRI_METADATA_DATATYPE_UINT8, 2, square, many.data())),
        GR_STATUS_OK);
    EXPECT_EQ(unlockStatus(database, "sesame"), 50507u);
  }
}

}  // namespace
