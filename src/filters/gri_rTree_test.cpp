#include "filters/gri_rTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "filters/gri_rTreeNode.h"

namespace {

struct Item {
  GRIBox box;
  gr_uint32 value;
};

/// Collects what a search finds, and can end it.
class Collector : public GRIRTree::SearchBBoxCallback {
 public:
  explicit Collector(size_t most = std::numeric_limits<size_t>::max()) : m_most(most) {}

  GR_STATUS onBox(gr_uint32 value, const GRIBox& box, const GRIBox& cut) override {
    values.push_back(value);
    boxes.push_back(box);
    cuts.push_back(cut);
    return values.size() >= m_most ? 77 : 0;
  }
  std::vector<gr_uint32> sorted() const {
    std::vector<gr_uint32> result = values;
    std::sort(result.begin(), result.end());
    return result;
  }

  std::vector<gr_uint32> values;
  std::vector<GRIBox> boxes;
  std::vector<GRIBox> cuts;

 private:
  size_t m_most;
};

GRIBox randomBox(std::mt19937& random, double largest) {
  std::uniform_real_distribution<double> place(-1000.0, 1000.0);
  std::uniform_real_distribution<double> size(0.0, largest);
  const double left = place(random);
  const double top = place(random);
  return {left, top, left + size(random), top + size(random)};
}

/// Boxes on a grid share edges and corners.
GRIBox gridBox(std::mt19937& random) {
  const double left = random() % 40;
  const double top = random() % 40;
  return {left, top, left + random() % 4, top + random() % 4};
}

std::vector<gr_uint32> foundIn(const GRIRTree& tree, const GRIBox& query) {
  Collector collector;
  EXPECT_EQ(tree.search(query, collector), 0u);
  return collector.sorted();
}

std::vector<gr_uint32> foundByHand(const std::vector<Item>& items, const GRIBox& query) {
  std::vector<gr_uint32> result;
  for (const Item& item : items) {
    const bool isApart = item.box.right < query.left || query.right < item.box.left ||
                         item.box.bottom < query.top || query.bottom < item.box.top;
    if (!isApart) result.push_back(item.value);
  }
  std::sort(result.begin(), result.end());
  return result;
}

/// Holds the boxes of all nodes, their counts and levels to what a tree promises.
/// @param least  entries that a node must have
void checkNode(const GRIRTreeNode& node, size_t least, size_t& numEntries) {
  EXPECT_GE(node.count, least);
  EXPECT_LE(node.count, GRIRTreeNode::MOST_ENTRIES);
  for (size_t i = 0; i < node.count; ++i) {
    if (node.isLeaf()) {
      ++numEntries;
      continue;
    }
    const GRIRTreeNode& child = *node.entries[i].child;
    EXPECT_EQ(child.level, node.level - 1);
    EXPECT_EQ(node.entries[i].box, child.getBounds());
    checkNode(child, GRIRTreeNode::LEAST_ENTRIES, numEntries);
  }
}

void checkTree(const GRIRTree& tree) {
  if (tree.getRoot() == nullptr) return;
  size_t numEntries = 0;
  checkNode(*tree.getRoot(), tree.getRoot()->isLeaf() ? 0 : 2, numEntries);
  EXPECT_EQ(numEntries, tree.getNumEntries());
}

/// A tree of points on a line, each with its place as its number.
void addPoints(GRIRTree& tree, const std::vector<double>& places) {
  for (const double x : places) {
    ASSERT_EQ(tree.add({x, 5.0, x, 5.0}, static_cast<gr_uint32>(x)), 0u);
  }
}

std::set<gr_uint32> valuesOf(const GRIRTreeNode& node) {
  std::set<gr_uint32> values;
  for (size_t i = 0; i < node.count; ++i) values.insert(node.entries[i].value);
  return values;
}

using Values = std::set<gr_uint32>;

TEST(GRIRTreeTest, AnEmptyTreeFindsNothingAndHasABoundsOfZeros) {
  GRIRTree tree;
  EXPECT_EQ(tree.getBounds(), (GRIBox{0, 0, 0, 0}));
  EXPECT_EQ(tree.getNumEntries(), 0u);
  EXPECT_TRUE(foundIn(tree, {-1e9, -1e9, 1e9, 1e9}).empty());
  EXPECT_NE(tree.remove({0, 0, 1, 1}, 0), 0u);
}

TEST(GRIRTreeTest, MeasuresABoxByTheCircleAroundItsDiagonal) {
  EXPECT_EQ(GRIRTreeNode::measure({1, 2, 4, 6}), 25 * 0.78539825);
  EXPECT_EQ(GRIRTreeNode::measure({1, 2, 1, 2}), 0.0);
  // As long as another box is large: by area it would be nothing.
  EXPECT_EQ(GRIRTreeNode::measure({0, 0, 5, 0}), GRIRTreeNode::measure({0, 0, 3, 4}));
}

TEST(GRIRTreeTest, ASearchCallsWithTheNumberTheBoxAndTheCut) {
  GRIRTree tree;
  ASSERT_EQ(tree.add({0, 0, 10, 10}, 7), 0u);
  Collector collector;
  EXPECT_EQ(tree.search({8, -5, 20, 3}, collector), 0u);
  ASSERT_EQ(collector.values.size(), 1u);
  EXPECT_EQ(collector.values[0], 7u);
  EXPECT_EQ(collector.boxes[0], (GRIBox{0, 0, 10, 10}));
  EXPECT_EQ(collector.cuts[0], (GRIBox{8, 0, 10, 3}));
}

TEST(GRIRTreeTest, BoxesThatOnlyTouchAreFoundWithACutOfNoArea) {
  GRIRTree tree;
  ASSERT_EQ(tree.add({0, 0, 10, 10}, 1), 0u);
  Collector collector;
  EXPECT_EQ(tree.search({10, 2, 20, 3}, collector), 0u);
  ASSERT_EQ(collector.values.size(), 1u);
  EXPECT_EQ(collector.cuts[0], (GRIBox{10, 2, 10, 3}));
}

TEST(GRIRTreeTest, WhatTheCallbackReturnsEndsTheSearch) {
  GRIRTree tree;
  for (gr_uint32 i = 0; i < 50; ++i) ASSERT_EQ(tree.add({0, 0, 1.0 + i, 1}, i), 0u);
  Collector collector(3);
  EXPECT_EQ(tree.search({0, 0, 1, 1}, collector), 77u);
  EXPECT_EQ(collector.values.size(), 3u);
}

TEST(GRIRTreeTest, EverySearchAmongRandomBoxesFindsWhatALookAtEachOfThemFinds) {
  std::mt19937 random(5);
  for (const int kind : {0, 1, 2}) {
    SCOPED_TRACE(kind);
    GRIRTree tree;
    std::vector<Item> items;
    for (gr_uint32 i = 0; i < 1500; ++i) {
      const GRIBox box = kind == 0 ? randomBox(random, 30) : gridBox(random);
      items.push_back({kind == 2 ? GRIBox{1, 2, 3, 4} : box, i});
      ASSERT_EQ(tree.add(items.back().box, i), 0u);
      if (i % 100 != 0) continue;
      const GRIBox query = kind == 0 ? randomBox(random, 300) : gridBox(random);
      ASSERT_EQ(foundIn(tree, query), foundByHand(items, query)) << i;
    }
    checkTree(tree);
    GRIBox bounds = items[0].box;
    for (const Item& item : items) bounds = bounds.unitedWith(item.box);
    EXPECT_EQ(tree.getBounds(), bounds);
    for (int i = 0; i < 500; ++i) {
      const GRIBox query = kind == 0 ? randomBox(random, 300) : gridBox(random);
      ASSERT_EQ(foundIn(tree, query), foundByHand(items, query)) << i;
    }
  }
}

TEST(GRIRTreeTest, RemovedBoxesAreNotFoundAndAllOthersAre) {
  std::mt19937 random(6);
  GRIRTree tree;
  std::vector<Item> items;
  for (gr_uint32 i = 0; i < 700; ++i) {
    items.push_back({i % 2 == 0 ? gridBox(random) : randomBox(random, 50), i});
    ASSERT_EQ(tree.add(items.back().box, i), 0u);
  }
  while (!items.empty()) {
    const size_t index = random() % items.size();
    const Item item = items[index];
    ASSERT_EQ(tree.remove(item.box, item.value), 0u);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
    ASSERT_NE(tree.remove(item.box, item.value), 0u);
    ASSERT_EQ(tree.getNumEntries(), items.size());
    checkTree(tree);
    const GRIBox query = randomBox(random, 400);
    ASSERT_EQ(foundIn(tree, query), foundByHand(items, query));
  }
  ASSERT_TRUE(tree.getRoot()->isLeaf());
  EXPECT_EQ(tree.getBounds(), GRIBox());
  // And it can be filled again.
  ASSERT_EQ(tree.add({1, 1, 2, 2}, 9), 0u);
  EXPECT_EQ(foundIn(tree, {0, 0, 5, 5}), std::vector<gr_uint32>{9});
}

TEST(GRIRTreeTest, RemovesByBoxAndNumberBoth) {
  GRIRTree tree;
  ASSERT_EQ(tree.add({0, 0, 1, 1}, 1), 0u);
  ASSERT_EQ(tree.add({0, 0, 1, 1}, 2), 0u);
  EXPECT_NE(tree.remove({0, 0, 1, 2}, 1), 0u);
  EXPECT_NE(tree.remove({0, 0, 1, 1}, 3), 0u);
  EXPECT_EQ(tree.remove({0, 0, 1, 1}, 1), 0u);
  EXPECT_EQ(foundIn(tree, {0, 0, 1, 1}), std::vector<gr_uint32>{2});
}

// Ten points fill the root. The eleventh splits it, step by step:
//
// The pair that wastes most among those that are compared is 10 and 100; 0 and 100 waste more, but
// pairs with the first entry (other than the first pair) are not compared. 10 stays, 100 goes.
//   old {10}        new {100}        0 differs most (9900): old
//   old {0 10}      new {100}        90 (7900): new
//   old {0 10}      new {90 100}     20 and 80 (6000), the first one: old
//   old {0..20}     new {90 100}     80 (5700): new
//   old {0..20}     new {80..100}    30 and 70 (4000), the first one: old
//   old {0..30}     new {80..100}    70 (3500): new
//   old {0..30}     new {70..100}    40 and 60 (2000), the first one: old
//   old {0..40}     new {70..100}    60 (1300): new
//   old {0..40}     new {60..100}    50 grows both alike; they are equally large and have as many
//                                    entries: new
TEST(GRIRTreeTest, SplitsAFullNodeByTheRule) {
  GRIRTree tree;
  addPoints(tree, {0, 10, 20, 30, 40, 50, 60, 70, 80, 90});
  ASSERT_TRUE(tree.getRoot()->isLeaf());
  addPoints(tree, {100});
  const GRIRTreeNode& root = *tree.getRoot();
  ASSERT_EQ(root.level, 1);
  ASSERT_EQ(root.count, 2u);
  EXPECT_EQ(valuesOf(*root.entries[0].child), (Values{0, 10, 20, 30, 40}));
  EXPECT_EQ(valuesOf(*root.entries[1].child), (Values{50, 60, 70, 80, 90, 100}));
  EXPECT_EQ(root.entries[0].box, (GRIBox{0, 5, 40, 5}));
  EXPECT_EQ(root.entries[1].box, (GRIBox{50, 5, 100, 5}));
}

// 1 and 101 are the seeds; 0, 100 and 2 to 6 follow, and then the old node has seven. What is left
// goes to the new one, however far away it is.
TEST(GRIRTreeTest, ANodeOfSevenEntriesGetsNoMoreInASplit) {
  GRIRTree tree;
  addPoints(tree, {0, 1, 2, 3, 4, 5, 6, 7, 8, 100, 101});
  const GRIRTreeNode& root = *tree.getRoot();
  ASSERT_EQ(root.count, 2u);
  EXPECT_EQ(valuesOf(*root.entries[0].child), (Values{0, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(valuesOf(*root.entries[1].child), (Values{7, 8, 100, 101}));
}

// All growths are equal, and so are the measures: the new node takes an entry when it has no more
// than the old one.
TEST(GRIRTreeTest, EqualBoxesGoToTheNewNodeAndTheOldOneInTurn) {
  GRIRTree tree;
  for (gr_uint32 i = 0; i < 11; ++i) ASSERT_EQ(tree.add({1, 1, 2, 2}, i), 0u);
  const GRIRTreeNode& root = *tree.getRoot();
  ASSERT_EQ(root.count, 2u);
  EXPECT_EQ(valuesOf(*root.entries[0].child), (Values{0, 3, 5, 7, 9}));
  EXPECT_EQ(valuesOf(*root.entries[1].child), (Values{1, 2, 4, 6, 8, 10}));
}

TEST(GRIRTreeTest, ABoxGoesWhereItAddsLeastThenToTheSmallerThenToTheFirst) {
  GRIRTreeNode node;
  node.append({{0, 0, 10, 10}, nullptr, 0});
  node.append({{20, 0, 24, 4}, nullptr, 1});
  node.append({{30, 0, 34, 4}, nullptr, 2});
  EXPECT_EQ(node.chooseEntry({1, 1, 2, 2}), 0u);
  EXPECT_EQ(node.chooseEntry({25, 1, 26, 2}), 1u);
  EXPECT_EQ(node.chooseEntry({29, 1, 30, 2}), 2u);
  node.append({{0, 0, 5, 5}, nullptr, 3});
  EXPECT_EQ(node.chooseEntry({1, 1, 2, 2}), 3u);  // neither grows, and this is the smaller one
  node.append({{0, 0, 5, 5}, nullptr, 4});
  EXPECT_EQ(node.chooseEntry({1, 1, 2, 2}), 3u);
}

TEST(GRIRTreeTest, BoxesWhoseMeasureIsInfiniteAreFoundLikeAllOthers) {
  GRIRTree tree;
  for (gr_uint32 i = 0; i < 100; ++i) {
    ASSERT_EQ(tree.add({-1e300 + i, -1e300, 1e300, 1e300}, i), 0u);
  }
  checkTree(tree);
  EXPECT_EQ(foundIn(tree, {0, 0, 1, 1}).size(), 100u);
}

}  // namespace
