#include "gr_lib_utils/include/gr_contentKeys.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::span<const gr_uint8> bytesOf(const std::string& text) {
  return {reinterpret_cast<const gr_uint8*>(text.data()), text.size()};
}

std::string found(const GRContentKeys& keys, gr_uint32 number) {
  const std::span<const gr_uint8> key = keys.find(number);
  return {key.begin(), key.end()};
}

TEST(GRContentKeysTest, GiveBackWhatTheyKeepByItsNumber) {
  GRContentKeys keys;
  EXPECT_EQ(found(keys, 0), "");
  ASSERT_EQ(keys.keep(2, bytesOf("third")), GR_STATUS_OK);
  ASSERT_EQ(keys.keep(0, bytesOf("first")), GR_STATUS_OK);
  ASSERT_EQ(keys.keep(5, bytesOf("sixth")), GR_STATUS_OK);
  ASSERT_EQ(keys.keep(2, bytesOf("another")), GR_STATUS_OK);
  EXPECT_EQ(found(keys, 0), "first");
  EXPECT_EQ(found(keys, 1), "");
  EXPECT_EQ(found(keys, 2), "another");
  EXPECT_EQ(found(keys, 5), "sixth");
  EXPECT_EQ(found(keys, 6), "");
}

}  // namespace
