#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_list.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(TG3ListTest, KeepsValuesInTheirOrderAndPlace) {
  TG3List<int> list;
  EXPECT_TRUE(list.empty());
  int* const first = list.append(1);
  for (int i = 2; i <= 5; ++i) ASSERT_NE(list.append(i), nullptr);
  EXPECT_EQ(std::vector<int>(list.begin(), list.end()), (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_EQ(list.size(), 5u);
  EXPECT_EQ(first, &*list.begin());
}

TEST(TG3ListTest, MovesWithItsValues) {
  TG3List<int> list;
  int* const value = list.append(7);
  TG3List<int> other = std::move(list);
  EXPECT_EQ(&*other.begin(), value);
  ASSERT_NE(other.append(8), nullptr);
  EXPECT_EQ(other.size(), 2u);
  list = std::move(other);
  EXPECT_EQ(std::vector<int>(list.begin(), list.end()), (std::vector<int>{7, 8}));
}

TEST(TG3ListTest, GoesAwayWithoutDeepRecursion) {
  TG3List<int> list;
  for (int i = 0; i < 1000000; ++i) ASSERT_NE(list.append(i), nullptr);
  list.clear();
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.begin(), list.end());
}

}  // namespace
