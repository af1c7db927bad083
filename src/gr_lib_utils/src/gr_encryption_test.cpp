#include "gr_lib_utils/include/gr_encryption.h"

#include <gcrypt.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_secret.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

using Bytes = std::vector<gr_uint8>;

Bytes bytesOf(const std::string& hex) {
  Bytes bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<gr_uint8>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

/// The block cipher alone. The second block of deciphered feedback is the first one, enciphered,
/// XORed with the second.
Bytes encipheredBlock(const Bytes& key, Bytes block) {
  Encryption encryption;
  encryption.setKey(key);
  block.resize(16, 0);
  encryption.decrypt(block);
  return {block.begin() + 8, block.end()};
}

GR_STATUS keyStatus(const std::string& key) {
  Encryption encryption;
  try {
    encryption.setKey(key.c_str());
  } catch (const GRUtilException& exception) {
    EXPECT_FALSE(encryption.isKeySet());
    return exception.getStatus();
  }
  EXPECT_TRUE(encryption.isKeySet());
  return GR_STATUS_OK;
}

// Eric Young's test vectors of Blowfish: key, clear block, enciphered block.
TEST(EncryptionTest, EnciphersThePublishedBlocks) {
  const std::string vectors[][3] = {{"0000000000000000", "0000000000000000", "4EF997456198DD78"},
                                    {"FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF", "51866FD5B85ECB8A"},
                                    {"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
                                    {"1111111111111111", "1111111111111111", "2466DD878B963C9D"},
                                    {"0123456789ABCDEF", "1111111111111111", "61F9C3802281B096"},
                                    {"1111111111111111", "0123456789ABCDEF", "7D0CC630AFDA1EC7"},
                                    {"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
                                    {"7CA110454A1A6E57", "01A1D6D039776742", "59C68245EB05282B"},
                                    {"0131D9619DC1376E", "5CD54CA83DEF57DA", "B1B8CC0B250F09A0"},
                                    {"07A1133E4A0B2686", "0248D43806F67172", "1730E5778BEA1DA4"},
                                    {"3849674C2602319E", "51454B582DDF440A", "A25E7856CF2651EB"},
                                    {"04B915BA43FEB5B6", "42FD443059577FA2", "353882B109CE8F1A"},
                                    {"0113B970FD34F2CE", "059B5E0851CF143A", "48F4D0884C379918"},
                                    {"0170F175468FB5E6", "0756D8E0774761D2", "432193B78951FC98"},
                                    {"43297FAD38E373FE", "762514B829BF486A", "13F04154D69D1AE5"},
                                    {"07A7137045DA2A16", "3BDD119049372802", "2EEDDA93FFD39C79"},
                                    {"04689104C2FD3B2F", "26955F6835AF609A", "D887E0393C2DA6E3"},
                                    {"37D06BB516CB7546", "164D5E404F275232", "5F99D04F5B163969"},
                                    {"1F08260D1AC2465E", "6B056E18759F5CCA", "4A057A3B24D3977B"},
                                    {"584023641ABA6176", "004BD6EF09176062", "452031C1E4FADA8E"},
                                    {"025816164629B007", "480D39006EE762F2", "7555AE39F59B87BD"},
                                    {"49793EBC79B3258F", "437540C8698F3CFA", "53C55F9CB49FC019"},
                                    {"4FB05E1515AB73A7", "072D43A077075292", "7A8E7BFA937E89A3"},
                                    {"49E95D6D4CA229BF", "02FE55778117F12A", "CF9C5D7A4986ADB5"},
                                    {"018310DC409B26D6", "1D9D5C5018F728C2", "D1ABB290658BC778"},
                                    {"1C587F1C13924FEF", "305532286D6F295A", "55CB3774D13EF201"},
                                    {"0101010101010101", "0123456789ABCDEF", "FA34EC4847B268B2"},
                                    {"1F1F1F1F0E0E0E0E", "0123456789ABCDEF", "A790795108EA3CAE"},
                                    {"E0FEE0FEF1FEF1FE", "0123456789ABCDEF", "C39E072D9FAC631D"},
                                    {"0000000000000000", "FFFFFFFFFFFFFFFF", "014933E0CDAFF6E4"},
                                    {"FFFFFFFFFFFFFFFF", "0000000000000000", "F21E9A77B71C49BC"},
                                    {"0123456789ABCDEF", "0000000000000000", "245946885754369A"},
                                    {"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"}};
  for (const auto& [key, clear, enciphered] : vectors) {
    EXPECT_EQ(encipheredBlock(bytesOf(key), bytesOf(clear)), bytesOf(enciphered))
        << key << ' ' << clear;
  }
}

// The same author's vectors of keys that grow byte by byte.
TEST(EncryptionTest, TakesKeysOfEveryPublishedLength) {
  const Bytes key = bytesOf("F0E1D2C3B4A5968778695A4B3C2D1E0F0011223344556677");
  const std::string enciphered[] = {
      "F9AD597C49DB005E", "E91D21C1D961A6D6", "E9C2B70A1BC65CF3", "BE1E639408640F05",
      "B39E44481BDB1E6E", "9457AA83B1928C0D", "8BB77032F960629D", "E87A244E2CC85E82",
      "15750E7A4F4EC577", "122BA70B3AB64AE0", "3A833C9AFFC537F6", "9409DA87A90F6BF2",
      "884F80625060B8B4", "1F85031C19E11968", "79D9373A714CA34F", "93142887EE3BE15C",
      "03429E838CE2D14B", "A4299E27469FF67B", "AFD5AED1C1BC96A8", "10851C0E3858DA9F",
      "E6F51ED79B9DB21F", "64A6E14AFD36B46F", "80C7D7D45A5479AD", "05044B62FA52D080"};
  for (size_t length = 1; length <= key.size(); ++length) {
    const Bytes begin(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(encipheredBlock(begin, bytesOf("FEDCBA9876543210")), bytesOf(enciphered[length - 1]))
        << length;
  }
}

// And the one of feedback of 64 bits. Its own vector goes in as the first enciphered block.
TEST(EncryptionTest, DeciphersThePublishedFeedback) {
  Encryption encryption;
  encryption.setKey(bytesOf("0123456789ABCDEFF0E1D2C3B4A59687"));
  Bytes bytes = bytesOf(
      "FEDCBA9876543210"
      "E73214A2822139CAF26ECF6D2EB9E76E3DA3DE04D1517200519D57A6C3");
  encryption.decrypt(bytes);
  const std::string text = "7654321 Now is the time for ";
  EXPECT_EQ(std::string(bytes.begin() + 8, bytes.end()), text + '\0');
}

TEST(EncryptionTest, BeginsWithTheVectorOfTheFormatAtEachCall) {
  Encryption encryption;
  encryption.setKey("sesame");
  Bytes zeros(16, 0);
  encryption.encrypt(zeros);
  EXPECT_EQ(zeros, bytesOf("A569E671434797630A2A77DDB837040B"));
  Bytes signature(ENCRYPTION_SIGNATURE.begin(), ENCRYPTION_SIGNATURE.end());
  encryption.encrypt(signature);
  EXPECT_EQ(signature, bytesOf("F10C95032267F40C1152D8DFED1058B4DFD9DC3C4ECE6881583B9920127B2A68"));
  encryption.setKey("secret");
  zeros.assign(12, 0);
  encryption.encrypt(zeros);
  EXPECT_EQ(zeros, bytesOf("D83FF6CB4CE20FF47FB2C9C7"));
  encryption.decrypt(zeros);
  EXPECT_EQ(zeros, Bytes(12, 0));
}

TEST(EncryptionTest, DeciphersWhatItEncipheredForEveryLengthOfKeyAndBytes) {
  for (size_t length = Encryption::SHORTEST_KEY; length <= Encryption::LONGEST_KEY; ++length) {
    SCOPED_TRACE(length);
    Encryption encryption;
    Bytes key(length);
    for (size_t i = 0; i < length; ++i) key[i] = static_cast<gr_uint8>(i * 37 + length);
    encryption.setKey(key);
    Bytes clear(length + 13);
    for (size_t i = 0; i < clear.size(); ++i) clear[i] = static_cast<gr_uint8>(i * 11);
    Bytes bytes = clear;
    encryption.encrypt(bytes);
    EXPECT_NE(bytes, clear);
    encryption.decrypt(bytes);
    EXPECT_EQ(bytes, clear);
  }
}

TEST(EncryptionTest, RepeatsAShortKeyAndUsesAllBytesOfALongOne) {
  const Bytes block(8, 0);
  const Bytes key = bytesOf("0123456789ABCDEF0F");  // an eighth of the longest
  Bytes repeated;
  for (int i = 0; i < 8; ++i) repeated.insert(repeated.end(), key.begin(), key.end());
  ASSERT_EQ(repeated.size(), Encryption::LONGEST_KEY);
  EXPECT_EQ(encipheredBlock(key, block), encipheredBlock(repeated, block));
  Bytes other = repeated;
  ++other.back();
  EXPECT_NE(encipheredBlock(other, block), encipheredBlock(repeated, block));
}

TEST(EncryptionTest, RefusesKeysOfOtherLengths) {
  EXPECT_EQ(Encryption::checkKey(0), Encryption::KEY_TOO_SHORT);
  EXPECT_EQ(Encryption::checkKey(1), Encryption::KEY_OK);
  EXPECT_EQ(Encryption::checkKey(72), Encryption::KEY_OK);
  EXPECT_EQ(Encryption::checkKey(73), Encryption::KEY_TOO_LONG);
  EXPECT_EQ(keyStatus(""), GR_STATUS_INVALID_KEY);
  EXPECT_EQ(keyStatus("x"), GR_STATUS_OK);
  EXPECT_EQ(keyStatus(std::string(72, 'x')), GR_STATUS_OK);
  EXPECT_EQ(keyStatus(std::string(73, 'x')), GR_STATUS_INVALID_KEY);
  EXPECT_EQ(GR_STATUS_INVALID_KEY, 4009u);
}

// With this key a table of the schedule has an entry twice, which libgcrypt calls weak.
TEST(EncryptionTest, TakesWeakKeysLikeAllOthers) {
  Encryption encryption;
  encryption.setKey("40663");
  ASSERT_TRUE(encryption.isKeySet());
  Bytes bytes(20, 0);
  encryption.encrypt(bytes);
  EXPECT_NE(bytes, Bytes(20, 0));
  encryption.decrypt(bytes);
  EXPECT_EQ(bytes, Bytes(20, 0));
}

TEST(EncryptionTest, LeavesBytesAloneWithoutAKey) {
  Encryption encryption;
  Bytes bytes = {1, 2, 3};
  encryption.encrypt(bytes);
  encryption.decrypt(bytes);
  EXPECT_EQ(bytes, Bytes({1, 2, 3}));
  encryption.setKey("key");
  encryption.encrypt({});
  encryption.clearKey();
  EXPECT_FALSE(encryption.isKeySet());
  encryption.encrypt(bytes);
  EXPECT_EQ(bytes, Bytes({1, 2, 3}));
}

TEST(EncryptionTest, HasNoKeyAfterABadOne) {
  Encryption encryption;
  encryption.setKey("key");
  EXPECT_THROW(encryption.setKey(""), GRUtilException);
  EXPECT_FALSE(encryption.isKeySet());
}

/// What libgcrypt gives back while one of these lives.
class GcryptWatch {
 public:
  GcryptWatch() {
    Encryption().setKey("any");  // the library's own set-up comes first
    gcry_set_allocation_handler(std::malloc, std::malloc, isSecure, std::realloc, release);
    s_freed.clear();
  }
  ~GcryptWatch() {
    gcry_set_allocation_handler(std::malloc, std::malloc, isSecure, std::realloc, std::free);
  }
  GcryptWatch(const GcryptWatch&) = delete;
  GcryptWatch& operator=(const GcryptWatch&) = delete;

  static const std::vector<Bytes>& freed() { return s_freed; }

 private:
  static int isSecure(const void*) { return 0; }
  static void release(void* block) {
    const auto* const bytes = static_cast<const gr_uint8*>(block);
    if (block != nullptr) s_freed.emplace_back(bytes, bytes + malloc_usable_size(block));
    std::free(block);
  }

  inline static std::vector<Bytes> s_freed;
};

TEST(EncryptionTest, WipesTheScheduleOfAKeyThatGoes) {
  constexpr size_t SCHEDULE_BYTES = size_t{18 + 4 * 256} * 4;
  // In front of a state stands where in its block it begins.
  constexpr size_t FRONT_BYTES = 64;
  const GcryptWatch watch;
  {
    Encryption encryption;
    encryption.setKey("first");
    encryption.setKey("second");
    encryption.clearKey();
    encryption.setKey("third");
  }
  size_t schedules = 0;
  for (const Bytes& block : GcryptWatch::freed()) {
    if (block.size() < SCHEDULE_BYTES) continue;
    ++schedules;
    const auto begin = block.begin() + FRONT_BYTES;
    EXPECT_TRUE(std::all_of(begin, begin + SCHEDULE_BYTES, [](gr_uint8 b) { return b == 0; }));
  }
  EXPECT_EQ(schedules, 3u);
}

TEST(GrSecretTest, WipesMemory) {
  Bytes bytes(100, 7);
  gr_wipe(bytes.data(), 99);
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0), 99);
  EXPECT_EQ(bytes.back(), 7);
  gr_wipe(nullptr, 0);
}

TEST(GrSecretTest, HoldsACopyUntilItIsLetGo) {
  const Bytes bytes = {1, 2, 3};
  GRSecret secret;
  EXPECT_TRUE(secret.empty());
  ASSERT_EQ(secret.assign(bytes), GR_STATUS_OK);
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), secret.span().begin(), secret.span().end()));
  GRSecret other = std::move(secret);
  EXPECT_EQ(other.size(), 3u);
  secret = std::move(other);
  EXPECT_EQ(secret.size(), 3u);
  ASSERT_EQ(secret.assign({}), GR_STATUS_OK);
  EXPECT_TRUE(secret.empty());
}

}  // namespace
