#include "metadata/gri_mdBox.h"

#include <gtest/gtest.h>

#include <bit>
#include <vector>

namespace {

using Bytes = std::vector<gr_uint8>;

struct Chunk {
  gr_uint8 type;
  Bytes payload;
};

Bytes geoPayload() {
  Bytes payload;
  for (const double number : {2.0, 0.25, -0.5, -3.0, 1000.5, 2000.5}) {
    const gr_uint64 bits = std::bit_cast<gr_uint64>(number);
    for (int i = 0; i < 8; ++i) payload.push_back(static_cast<gr_uint8>(bits >> (8 * i)));
  }
  return payload;
}

Bytes boxOf(const std::vector<Chunk>& chunks, gr_uint8 letter = '1', gr_uint8 major = 0x10) {
  Bytes box = {'Z', 'E', 'B', 'G', letter, major, 1, 2, 3, 4, 5, 6, 7, 8};
  if (letter == '2' && major == 0x10) box.insert(box.end(), 16, 0xEE);
  box.push_back(static_cast<gr_uint8>(chunks.size()));
  box.push_back(0);
  for (const Chunk& chunk : chunks) {
    const gr_uint8 length = static_cast<gr_uint8>(chunk.payload.size());
    box.insert(box.end(), {chunk.type, 0, length, 0, 0, 0});
    box.insert(box.end(), chunk.payload.begin(), chunk.payload.end());
  }
  box.insert(box.end(), {0xFF, 0, 0, 0, 0, 0});
  return box;
}

TEST(MDBoxTest, FindsThePositionAmongOtherChunks) {
  MDBox box;
  ASSERT_EQ(box.parse(boxOf({{1, {9}}, {2, {}}, {3, {1, 2}}, {0, geoPayload()}})), MDBOX_OK);
  ASSERT_TRUE(box.hasGeo());
  EXPECT_EQ(box.getGeo()->xRes, 2.0);
  EXPECT_EQ(box.getGeo()->ySkew, 0.25);
  EXPECT_EQ(box.getGeo()->xSkew, -0.5);
  EXPECT_EQ(box.getGeo()->yRes, -3.0);
  EXPECT_EQ(box.getGeo()->xUpperLeft, 1000.5);
  EXPECT_EQ(box.getGeo()->yUpperLeft, 2000.5);
}

TEST(MDBoxTest, HasNoPositionWithoutItsChunk) {
  MDBox box;
  ASSERT_EQ(box.parse(boxOf({{0, geoPayload()}})), MDBOX_OK);
  EXPECT_EQ(box.parse(boxOf({})), MDBOX_OK);
  EXPECT_FALSE(box.hasGeo());
}

TEST(MDBoxTest, StepsOverTheExtraBlockOfOneVersion) {
  MDBox box;
  EXPECT_EQ(box.parse(boxOf({{0, geoPayload()}}, '2', 0x10)), MDBOX_OK);
  EXPECT_TRUE(box.hasGeo());
  EXPECT_EQ(box.parse(boxOf({{0, geoPayload()}}, '2', 0x11)), MDBOX_OK);
  EXPECT_EQ(box.parse(boxOf({{0, geoPayload()}}, '2', 0x20)), MDBOX_OK);
}

TEST(MDBoxTest, SaysThatItSteppedOverAnUnknownChunk) {
  MDBox box;
  EXPECT_EQ(box.parse(boxOf({{4, {1, 2, 3}}, {0, geoPayload()}})), MDBOX_UNKNOWN_CHUNK);
  EXPECT_EQ(box.parse(boxOf({{255, {}}})), MDBOX_UNKNOWN_CHUNK);
}

TEST(MDBoxTest, RefusesAPositionOfAnotherLength) {
  MDBox box;
  Bytes payload = geoPayload();
  payload.pop_back();
  EXPECT_EQ(box.parse(boxOf({{0, payload}})), MDBOX_BAD_LENGTH);
  EXPECT_FALSE(box.hasGeo());
}

TEST(MDBoxTest, RefusesAChunkThatPassesTheEnd) {
  MDBox box;
  Bytes bytes = boxOf({{1, {1, 2, 3}}});
  for (const size_t at : {18, 19, 20, 21}) {
    Bytes wrong = bytes;
    wrong[at] = 0xFF;
    EXPECT_EQ(box.parse(wrong), MDBOX_BAD_LENGTH);
  }
}

TEST(MDBoxTest, RefusesEveryOtherLength) {
  const Bytes whole = boxOf({{0, geoPayload()}, {1, {5}}});
  MDBox box;
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    EXPECT_EQ(box.parse({whole.data(), length}), length < 4 ? MDBOX_BAD_MAGIC : MDBOX_BAD_LENGTH);
  }
  Bytes longer = whole;
  longer.push_back(0);
  EXPECT_EQ(box.parse(longer), MDBOX_BAD_LENGTH);
}

TEST(MDBoxTest, RefusesAnotherMagic) {
  MDBox box;
  Bytes bytes = boxOf({});
  bytes[3] = 'g';
  EXPECT_EQ(box.parse(bytes), MDBOX_BAD_MAGIC);
}

}  // namespace
