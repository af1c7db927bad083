#include "gr_lib_utils/include/gr_sha1.h"

#include <gcrypt.h>
#include <gtest/gtest.h>
#include <ucontext.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_status.h"

namespace {

std::string digestOf(const std::string& text) {
  GRSha1Digest digest{};
  EXPECT_EQ(gr_sha1({reinterpret_cast<const gr_uint8*>(text.data()), text.size()}, digest),
            GR_STATUS_OK);
  std::string hex;
  for (const gr_uint8 byte : digest) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    hex += DIGITS[byte >> 4];
    hex += DIGITS[byte & 15];
  }
  return hex;
}

// The examples of FIPS 180.
TEST(GrSha1Test, GivesThePublishedDigests) {
  EXPECT_EQ(digestOf("abc"), "A9993E364706816ABA3E25717850C26C9CD0D89D");
  EXPECT_EQ(digestOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "84983E441C3BD26EBAAE4AA1F95129E5E54670F1");
  EXPECT_EQ(digestOf(std::string(1000000, 'a')), "34AA973CD4C4DAA4F61EEB2BDBAD27316534016F");
  EXPECT_EQ(digestOf(""), "DA39A3EE5E6B4B0D3255BFEF95601890AFD80709");
}

TEST(GrSha1Test, TakesAPasswordWithoutItsZero) {
  EXPECT_EQ(digestOf("secret"), "E5E9FA1BA31ECD1AE84F75CAAA474F3A663F05F4");
}

/// A stack that stays to be looked at.
class VisibleStack {
 public:
  /// Calls a function on it.
  explicit VisibleStack(void (*function)()) : m_memory(SIZE) {
    ucontext_t here{};
    ucontext_t there{};
    EXPECT_EQ(getcontext(&there), 0);
    there.uc_stack.ss_sp = m_memory.data();
    there.uc_stack.ss_size = SIZE;
    there.uc_link = &here;
    makecontext(&there, function, 0);
    EXPECT_EQ(swapcontext(&here, &there), 0);
  }
  /// Whether a text was left there.
  __attribute__((no_sanitize("address"))) bool holds(const char* text, size_t length) const {
    const volatile char* const memory = m_memory.data();
    for (size_t at = 0; at + length <= SIZE; ++at) {
      size_t same = 0;
      while (same < length && memory[at + same] == text[same]) ++same;
      if (same == length) return true;
    }
    return false;
  }

 private:
  static constexpr size_t SIZE = size_t{1} << 20;
  std::vector<char> m_memory;
};

std::string& longPassword() {
  static std::string password = "a password of more than 20 bytes, with its end here";
  return password;
}
constexpr size_t END_LENGTH = 14;

bool leavesItsEnd(void (*function)()) {
  const VisibleStack stack(function);
  const std::string& password = longPassword();
  return stack.holds(password.data() + password.size() - END_LENGTH, END_LENGTH);
}

TEST(GrSha1Test, LeavesNothingOfAPasswordOnTheStack) {
  EXPECT_TRUE(leavesItsEnd([] {  // what the search finds
    std::array<char, 100> copy{};
    longPassword().copy(copy.data(), copy.size());
    asm volatile("" : : "r"(copy.data()) : "memory");  // keeps it from being optimised away
  }));
  // The first call of a library's function saves all registers on the stack, with what was copied
  // through them last.
  ASSERT_NE(digestOf("secret"), "");
  EXPECT_FALSE(leavesItsEnd([] { EXPECT_NE(digestOf(longPassword()), ""); }));
}

TEST(GrSha1Test, SaysWhenThereIsNoMemory) {
  GRSha1Digest digest{};
  ASSERT_EQ(gr_sha1({}, digest), GR_STATUS_OK);  // libgcrypt's own set-up comes first
  const auto none = [](size_t) -> void* {
    errno = ENOMEM;
    return nullptr;
  };
  const auto isSecure = [](const void*) { return 0; };
  gcry_set_allocation_handler(none, none, isSecure, std::realloc, std::free);
  const GR_STATUS status = gr_sha1({}, digest);
  gcry_set_allocation_handler(std::malloc, std::malloc, isSecure, std::realloc, std::free);
  EXPECT_EQ(status, GR_STATUS_NO_MEMORY);
}

}  // namespace
