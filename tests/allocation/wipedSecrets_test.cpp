// Passwords and keys don't outlive their use: no block of memory is given back with one inside.
#include <gcrypt.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gri_rdk_cdll.h"
#include "tests/allocation/failing_new.h"
#include "tests/support/tg2_lockWriter.h"
#include "tests/support/tg3_lockWriter.h"

namespace {

// Where nobody gives them back. Longer than what a needle may be by chance.
constexpr const char* PASSWORD = "open sesame, and quickly";
constexpr const char* WRONG = "close sesame, and quickly";
const std::string TOO_LONG(100, '~');

/// Looks for secrets in all blocks that are given back while it lives, also those of libgcrypt.
class SecretWatch {
 public:
  explicit SecretWatch(const std::vector<gr_uint8>& contentKey) {
    Encryption().setKey("any");  // libgcrypt's own set-up comes first
    s_contentKey = contentKey;
    s_numBlocks = 0;
    s_numSecrets = 0;
    gcry_set_allocation_handler(std::malloc, std::malloc, isSecure, std::realloc, release);
    failing_new::setWatcher(look);
  }
  ~SecretWatch() {
    failing_new::setWatcher(nullptr);
    gcry_set_allocation_handler(std::malloc, std::malloc, isSecure, std::realloc, std::free);
  }
  SecretWatch(const SecretWatch&) = delete;
  SecretWatch& operator=(const SecretWatch&) = delete;

  static size_t numBlocks() { return s_numBlocks; }
  static size_t numSecrets() { return s_numSecrets; }

 private:
  static bool holds(const void* block, size_t bytes, const void* secret, size_t length) {
    return length > 0 && memmem(block, bytes, secret, length) != nullptr;
  }
  static void look(const void* block, size_t bytes) {
    ++s_numBlocks;
    for (const char* secret : {PASSWORD, WRONG, TOO_LONG.c_str()}) {
      if (holds(block, bytes, secret, 16)) ++s_numSecrets;
    }
    if (holds(block, bytes, s_contentKey.data(), std::min<size_t>(s_contentKey.size(), 16))) {
      ++s_numSecrets;
    }
  }
  static int isSecure(const void*) { return 0; }
  static void release(void* block) {
    if (block != nullptr) look(block, malloc_usable_size(block));
    std::free(block);
  }

  inline static std::vector<gr_uint8> s_contentKey;
  inline static size_t s_numBlocks = 0;
  inline static size_t s_numSecrets = 0;
};

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::vector<gr_uint8>& bytes)
      : m_path(testing::TempDir() + "wiped_" + std::to_string(getpid()) + ".tsra") {
    std::ofstream(m_path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { std::filesystem::remove(m_path); }

  const char* path() const { return m_path.c_str(); }

 private:
  std::string m_path;
};

constexpr gr_uint32 SIDE = 40;

/// Opens an image with one password after the other, and closes it.
void tryAllPasswords(const char* path) {
  static std::array<gr_uint8, size_t{SIDE} * SIDE> samples;
  void* band = samples.data();
  gric_image image = nullptr;
  ASSERT_EQ(gric_openTesraImageFile(&image, path), 0u);
  for (const char* password : {WRONG, TOO_LONG.c_str(), PASSWORD, WRONG}) {
    ASSERT_EQ(gric_setTesraPassword(image, password), 0u);
    static_cast<void>(gric_decode(image, 0, 0, SIDE, SIDE, 1.0, &band));
  }
  EXPECT_EQ(gric_decode(image, 0, 0, SIDE, SIDE, 1.0, &band), 0u);
  EXPECT_EQ(gric_closeImage(image), 0u);
}

void expectNothingLeft(const std::vector<gr_uint8>& file, const std::vector<gr_uint8>& contentKey) {
  const TemporaryFile onDisk(file);
  const SecretWatch watch(contentKey);
  tryAllPasswords(onDisk.path());
  EXPECT_GT(SecretWatch::numBlocks(), 20u);
  EXPECT_EQ(SecretWatch::numSecrets(), 0u);
}

TEST(WipedSecretsTest, AreSeenWhereTheyAreLeft) {
  const SecretWatch watch({});
  {
    GRArray<gr_uint8> careless;
    ASSERT_EQ(careless.allocate(100), GR_STATUS_OK);
    std::memcpy(&careless[7], PASSWORD, std::strlen(PASSWORD));
  }
  EXPECT_EQ(SecretWatch::numSecrets(), 1u);
}

TEST(WipedSecretsTest, AreGoneWithAnImageOfGeneration3) {
  TG3TestImage image;
  image.width = SIDE;
  image.height = SIDE;
  image.numLevels = 2;
  const std::vector<gr_int32> samples(size_t{SIDE} * SIDE, 9);
  for (const bool isLegacy : {false, true}) {
    const TG3TestLock lock = {
        .kind = 2, .scale = 2, .numLevels = 2, .isLegacy = isLegacy, .passwords = {PASSWORD}};
    expectNothingLeft(tg3_writeLockedImage(image, lock, {samples}),
                      isLegacy ? std::vector<gr_uint8>() : lock.contentKey(0));
  }
}

TEST(WipedSecretsTest, AreGoneWithAnImageOfGeneration2) {
  TG2TestImage image;
  image.width = SIDE;
  image.height = SIDE;
  const TG2TestLock lock = {.password = PASSWORD};
  expectNothingLeft(
      tg2_writeImage(tg2_locked(image, lock), {std::vector<float>(size_t{SIDE} * SIDE, 9.0F)})
          .bytes,
      lock.contentKey());
}

// The keys of its tiles outlive the readers that prove them.
TEST(WipedSecretsTest, AreGoneWithAMosaic) {
  const TG3TestLock lock = {.passwords = {PASSWORD}};
  constexpr gr_uint32 TILE = SIDE / 2;
  TG3Writer writer;
  for (gr_uint32 number = 0; number < 2; ++number) {
    TG3TestImage image;
    image.image = number;
    image.width = TILE;
    image.height = SIDE;
    image.numLevels = 1;
    const double left = double{TILE} * number;
    writer.addMetadata(
        3, 0, number, tg3_georefBlock({.geo = {{left, double{SIDE}, left + TILE, 0.0, 1.0, 1.0}}}));
    writer.addImage(tg3_locked(image, lock), {std::vector<gr_int32>(size_t{TILE} * SIDE, 9)});
    writer.addPacket(tg3_lockPacket(lock, number), tg3_lockBody(lock));
  }
  expectNothingLeft(writer.bytes(), lock.contentKey(0));
}

}  // namespace
