#include "metadata/gri_tagHash.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The key 00 01 .. 0F and texts 00 01 .. of the reference implementation's test vectors.
constexpr gr_uint64 KEY0 = 0x0706050403020100;
constexpr gr_uint64 KEY1 = 0x0F0E0D0C0B0A0908;

std::string counted(size_t length) {
  std::string text;
  for (size_t i = 0; i < length; ++i) text += static_cast<char>(i);
  return text;
}

TEST(GRITagHashTest, AgreesWithThePublishedVectors) {
  EXPECT_EQ(gri_tagHash(KEY0, KEY1, counted(0)), 0x726FDB47DD0E0E31u);
  EXPECT_EQ(gri_tagHash(KEY0, KEY1, counted(1)), 0x74F839C593DC67FDu);
  EXPECT_EQ(gri_tagHash(KEY0, KEY1, counted(8)), 0x93F5F5799A932462u);
  EXPECT_EQ(gri_tagHash(KEY0, KEY1, counted(15)), 0xA129CA6149BE45E5u);
}

TEST(GRITagHashTest, DependsOnBothKeys) {
  const gr_uint64 hash = gri_tagHash(1, 2, "IMAGE::SOM");
  EXPECT_NE(gri_tagHash(3, 2, "IMAGE::SOM"), hash);
  EXPECT_NE(gri_tagHash(1, 3, "IMAGE::SOM"), hash);
}

}  // namespace
