#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <tuple>

namespace {

using Key = HDRestartInfo::Key;

TG2RestartState stateAt(gr_uint64 offset) { return {offset, 5, 6, 7}; }

TEST(TG2RestartListTest, KeepsReplacesAndForgetsThePlaceOfARecord) {
  TG2RestartList list;
  const Key key{1, 2, 3, 4};
  EXPECT_EQ(list.find(key), nullptr);
  list.update(key, std::nullopt);
  EXPECT_EQ(list.size(), 0u);
  list.update(key, stateAt(10));
  ASSERT_NE(list.find(key), nullptr);
  EXPECT_EQ(*list.find(key), stateAt(10));
  list.update(key, stateAt(20));
  EXPECT_EQ(*list.find(key), stateAt(20));
  EXPECT_EQ(list.size(), 1u);
  list.update(key, std::nullopt);
  EXPECT_EQ(list.find(key), nullptr);
  EXPECT_EQ(list.size(), 0u);
}

TEST(TG2RestartListTest, ARecordIsTheSameOnlyWhenAllFourNumbersAre) {
  TG2RestartList list;
  const Key keys[] = {{1, 2, 3, 4}, {0, 2, 3, 4}, {1, 0, 3, 4}, {1, 2, 0, 4}, {1, 2, 3, 0}};
  for (gr_uint64 i = 0; i < std::size(keys); ++i) list.update(keys[i], stateAt(i));
  for (gr_uint64 i = 0; i < std::size(keys); ++i) {
    ASSERT_NE(list.find(keys[i]), nullptr);
    EXPECT_EQ(*list.find(keys[i]), stateAt(i));
  }
  list.clear();
  for (const Key& key : keys) EXPECT_EQ(list.find(key), nullptr);
}

TEST(TG2RestartListTest, DoesWhatAMapDoesWithAnyCalls) {
  std::mt19937 random(13);
  for (const gr_uint32 variety : {3u, 12u, 40u}) {
    TG2RestartList list;
    std::map<std::tuple<gr_uint32, gr_uint32, gr_uint32, gr_uint32>, TG2RestartState> map;
    for (gr_uint64 turn = 0; turn < 30000; ++turn) {
      const Key key{
          static_cast<gr_uint32>(random() % 2), static_cast<gr_uint32>(random() % variety),
          static_cast<gr_uint32>(random() % 3), static_cast<gr_uint32>(random() % variety)};
      const auto itsKey = std::tuple(key.band, key.block, key.subband, key.record);
      if (random() % 2 == 0) {
        list.update(key, stateAt(turn));
        map[itsKey] = stateAt(turn);
      } else {
        const TG2RestartState* const found = list.find(key);
        const auto expected = map.find(itsKey);
        ASSERT_EQ(found != nullptr, expected != map.end());
        if (found != nullptr) {
          ASSERT_EQ(*found, expected->second);
          list.update(key, std::nullopt);
          map.erase(itsKey);
        }
      }
      ASSERT_EQ(list.size(), map.size());
    }
  }
}

}  // namespace
