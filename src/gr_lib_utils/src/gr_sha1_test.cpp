#include "gr_lib_utils/include/gr_sha1.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string digestOf(const std::string& text) {
  const GRSha1Digest digest =
      gr_sha1({reinterpret_cast<const gr_uint8*>(text.data()), text.size()});
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

}  // namespace
