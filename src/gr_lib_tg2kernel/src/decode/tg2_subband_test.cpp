// The shape of the tree, and what its operations refuse.

#include "gr_lib_tg2kernel/src/decode/tg2_subband.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

namespace {

gr_uint32 gainBits(const TG2Subband& node) { return std::bit_cast<gr_uint32>(node.getGain()); }

/// The status that something throws; 0 when it doesn't.
template <typename Body>
GR_STATUS thrownBy(Body&& body) {
  try {
    body();
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  return GR_STATUS_OK;
}

TEST(TG2SubbandTest, RootsHaveTheGainsOfTheirLevels) {
  const gr_uint32 up[] = {0x3F800000, 0x3FA929E0, 0x3FDF90A1, 0x4013BB0C, 0x40433D4A};
  for (gr_int32 level = 0; level < 5; ++level) {
    EXPECT_EQ(gainBits(TG2Subband(100, 100, 1, 6, level, {0, 0, 1, 1})), up[level]) << level;
  }
  const gr_uint32 down[] = {0x3F41B4BD, 0x3F129204, 0x3EDDCF20};
  for (gr_int32 level = 1; level <= 3; ++level) {
    EXPECT_EQ(gainBits(TG2Subband(100, 100, 1, 6, -level, {0, 0, 1, 1})), down[level - 1]) << level;
  }
}

TEST(TG2SubbandTest, ChildrenHaveTheirParentsGainTimesTwoFactors) {
  const TG2Subband root(100, 100, 1, 3, 0, {0, 0, 99, 99});
  EXPECT_EQ(gainBits(*root.getChild(1, 0)), 0x3F800000u);
  EXPECT_EQ(gainBits(*root.getChild(0, 1)), 0x3F800000u);
  EXPECT_EQ(gainBits(*root.getChild(1, 1)), 0x3F41B4BDu);
  const TG2Subband* node = root.getChild(0, 0);
  EXPECT_EQ(gainBits(*node), 0x3FA929E0u);
  node = node->getChild(0, 0);
  EXPECT_EQ(gainBits(*node), 0x3FDF90A0u);
  node = node->getChild(0, 0);
  EXPECT_EQ(gainBits(*node), 0x4013BB0Bu);
  EXPECT_TRUE(node->isLeaf());
}

TEST(TG2SubbandTest, SizesAreHalvedUpForLowAndDownForHighChannels) {
  const TG2Subband root(21, 10, 1, 4, 1, {0, 0, 10, 4});
  EXPECT_EQ(root.getFullWidth(), 11);
  EXPECT_EQ(root.getFullHeight(), 5);
  EXPECT_EQ(root.getChild(0, 0)->getFullWidth(), 6);
  EXPECT_EQ(root.getChild(1, 0)->getFullWidth(), 5);
  EXPECT_EQ(root.getChild(0, 1)->getFullHeight(), 2);
  EXPECT_EQ(root.getChild(0, 0)->getFullHeight(), 3);
  const TG2Subband larger(21, 10, 1, 0, -2, {0, 0, 83, 39});
  EXPECT_EQ(larger.getFullWidth(), 84);
  EXPECT_EQ(larger.getFullHeight(), 40);
}

TEST(TG2SubbandTest, LeavesAreNumberedAsTheFileHasThem) {
  for (gr_int32 level = -2; level <= 3; ++level) {
    SCOPED_TRACE(level);
    TG2Subband root(64, 64, 1, 3, level, {0, 0, 3, 3});
    gr_int32 count = 0;
    for (TG2Subband* leaf = root.getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
      EXPECT_TRUE(leaf->isLeaf());
      EXPECT_EQ(leaf->getIndex(), count++);
    }
    EXPECT_EQ(count, 3 * (3 - level) + 1);
    // Of the three leaves below a node, whatever the root's level.
    const TG2Subband* node = &root;
    for (gr_int32 nodeLevel = level; nodeLevel < 3; ++nodeLevel) {
      const gr_int32 last = 3 * (3 - nodeLevel);
      EXPECT_EQ(node->getChild(1, 0)->getIndex(), last - 2);
      EXPECT_EQ(node->getChild(0, 1)->getIndex(), last - 1);
      EXPECT_EQ(node->getChild(1, 1)->getIndex(), last);
      node = node->getChild(0, 0);
    }
    EXPECT_EQ(node->getIndex(), 0);
  }
}

TEST(TG2SubbandTest, ChildrensWindowsHoldWhatTheFilterReads) {
  const TG2Subband root(200, 100, 1, 2, 0, {50, 0, 57, 0});
  EXPECT_EQ(root.getChild(0, 0)->getWindow(), (TG2Rect{24, 0, 30, 3}));
  EXPECT_EQ(root.getChild(1, 0)->getWindow(), (TG2Rect{23, 0, 30, 3}));
  EXPECT_EQ(root.getChild(0, 1)->getWindow(), (TG2Rect{24, 0, 30, 2}));
  EXPECT_EQ(root.getChild(1, 1)->getWindow(), (TG2Rect{23, 0, 30, 2}));
}

TEST(TG2SubbandTest, ChildrenWithoutSizeHaveNoWindow) {
  const TG2Subband root(5, 1, 1, 1, 0, {0, 0, 4, 0});
  constexpr TG2Rect NOTHING = {0, 1, -1, 0};
  EXPECT_EQ(root.getChild(0, 1)->getWindow(), NOTHING);
  EXPECT_EQ(root.getChild(1, 1)->getWindow(), NOTHING);
  EXPECT_EQ(root.getChild(1, 0)->getWindow(), (TG2Rect{0, 0, 1, 0}));
  // However deep the tree is.
  EXPECT_EQ(thrownBy([] { TG2Subband(1, 1, 1, 31, -20, {0, 0, 0, 0}); }), GR_STATUS_OK);
  EXPECT_EQ(thrownBy([] { TG2Subband(1, 1, 1, 31, 0, {0, 0, 0, 0}); }), GR_STATUS_OK);
}

TEST(TG2SubbandTest, LargestSizesFit) {
  constexpr gr_int32 LAST = std::numeric_limits<gr_int32>::max();
  const TG2Subband root(0x7FFFFFFF, 0x7FFFFFFF, 1, 31, -20, {LAST - 5, LAST - 5, LAST, LAST});
  EXPECT_EQ(root.getFullWidth(), gr_int64{0x7FFFFFFF} << 20);
  EXPECT_EQ(root.getChild(1, 1)->getWindow().x1, (gr_int64{LAST} + 3) / 2);
}

TEST(TG2SubbandTest, RefusesWindowsThatArentInside) {
  const auto build = [](const TG2Rect& rect) {
    return thrownBy([&] { TG2Subband(10, 10, 1, 1, 0, rect); });
  };
  EXPECT_EQ(build({0, 0, 9, 9}), GR_STATUS_OK);
  for (const TG2Rect& bad : {TG2Rect{-1, 0, 9, 9}, TG2Rect{0, -1, 9, 9}, TG2Rect{0, 0, 10, 9},
                             TG2Rect{0, 0, 9, 10}, TG2Rect{5, 0, 4, 9}, TG2Rect{0, 5, 9, 4}}) {
    EXPECT_EQ(build(bad), 8008u);
  }
  EXPECT_EQ(TG2_STATUS_WINDOW, 8008u);
}

TEST(TG2SubbandTest, RefusesALevelAboveTheFiles) {
  EXPECT_EQ(thrownBy([] { TG2Subband(10, 10, 1, 1, 2, {0, 0, 1, 1}); }), 8009u);
  EXPECT_EQ(TG2_STATUS_TREE_LEVEL, 8009u);
}

/// A tree whose leaves hold random samples.
void fill(TG2Subband& root, std::mt19937& random, TG2PlanePool* pool) {
  for (TG2Subband* leaf = root.getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    const TG2Rect& window = leaf->getWindow();
    if (window.isEmpty()) continue;
    ASSERT_EQ(
        leaf->allocate(leaf->getNumBands(), window.getWidth(), window.getHeight(), false, pool),
        GR_STATUS_OK);
    for (gr_uint32 band = 0; band < leaf->getNumBands(); ++band) {
      for (gr_int64 y = 0; y < window.getHeight(); ++y) {
        for (gr_int64 x = 0; x < window.getWidth(); ++x) {
          leaf->getRow(band, y)[x] = static_cast<float>(random() % 1000);
        }
      }
    }
  }
}

/// Whether both leaves hold the same in a rectangle that lies in both.
void expectEqualIn(const TG2Rect& rect, const TG2Subband& a, const TG2Subband& b) {
  for (gr_uint32 band = 0; band < a.getNumBands(); ++band) {
    for (gr_int32 y = rect.y0; y <= rect.y1; ++y) {
      for (gr_int32 x = rect.x0; x <= rect.x1; ++x) {
        ASSERT_EQ(a.getRow(band, y - a.getWindow().y0)[x - a.getWindow().x0],
                  b.getRow(band, y - b.getWindow().y0)[x - b.getWindow().x0])
            << x << "," << y;
      }
    }
  }
}

constexpr TG2Rect UPPER = {5, 0, 40, 15};
constexpr TG2Rect LOWER = {5, 16, 40, 31};

std::unique_ptr<TG2Subband> makeTree(const TG2Rect& rect, gr_uint32 numBands = 2,
                                     gr_int32 numLevels = 2) {
  return std::make_unique<TG2Subband>(50, 60, numBands, numLevels, 0, rect);
}

TEST(TG2SubbandTest, NeighbouringStripsShareTheirTreesCommonRows) {
  std::mt19937 random(2);
  TG2PlanePool pool;
  const auto upper = makeTree(UPPER);
  const auto lower = makeTree(LOWER);
  fill(*upper, random, &pool);
  const auto shared = TG2Subband::sharedPart(*upper, *lower);
  ASSERT_NE(shared, nullptr);
  TG2Subband* a = upper->getFirstLeaf();
  TG2Subband* b = lower->getFirstLeaf();
  for (TG2Subband* leaf = shared->getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    EXPECT_EQ(leaf->getWindow(), a->getWindow().intersect(b->getWindow()));
    EXPECT_EQ(leaf->getIndex(), a->getIndex());
    ASSERT_NO_FATAL_FAILURE(expectEqualIn(leaf->getWindow(), *leaf, *a));
    a = a->getNextLeaf();
    b = b->getNextLeaf();
  }

  // The rest are the rows below, and both together are all.
  const auto rest = TG2Subband::remainder(*lower, *shared);
  ASSERT_NE(rest, nullptr);
  b = lower->getFirstLeaf();
  TG2Subband* held = shared->getFirstLeaf();
  for (TG2Subband* leaf = rest->getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    EXPECT_EQ(leaf->getWindow().y0, held->getWindow().y1 + 1);
    EXPECT_EQ(leaf->getWindow().y1, b->getWindow().y1);
    EXPECT_EQ(leaf->getWindow().x0, b->getWindow().x0);
    EXPECT_EQ(leaf->getWindow().x1, b->getWindow().x1);
    b = b->getNextLeaf();
    held = held->getNextLeaf();
  }
  fill(*rest, random, &pool);
  lower->merge(*shared);
  b = lower->getFirstLeaf();
  for (TG2Subband* leaf = shared->getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    ASSERT_NO_FATAL_FAILURE(expectEqualIn(leaf->getWindow(), *leaf, *b));
    b = b->getNextLeaf();
  }
}

TEST(TG2SubbandTest, WhatHoldsEverythingLeavesNoRemainder) {
  const auto whole = makeTree(UPPER);
  const auto same = TG2Subband::sharedPart(*whole, *whole);
  EXPECT_EQ(TG2Subband::remainder(*whole, *same), nullptr);
}

TEST(TG2SubbandTest, LeavesAloneShareNothingWithTheNextStrip) {
  const auto upper = makeTree(UPPER, 1, 0);
  const auto lower = makeTree(LOWER, 1, 0);
  EXPECT_EQ(TG2Subband::sharedPart(*upper, *lower), nullptr);
}

TEST(TG2SubbandTest, MergingALeafWithoutSamplesClearsWhatIsThere) {
  std::mt19937 random(4);
  const auto target = makeTree(UPPER, 1, 0);
  fill(*target, random, nullptr);
  const auto source = makeTree({7, 3, 9, 4}, 1, 0);
  target->merge(*source);
  EXPECT_EQ(target->getRow(0, 3)[2], 0.0F);
  EXPECT_EQ(target->getRow(0, 4)[4], 0.0F);
  // And the other way round: what isn't covered is zeros.
  const auto empty = makeTree(UPPER, 1, 0);
  fill(*source, random, nullptr);
  empty->merge(*source);
  EXPECT_EQ(empty->getRow(0, 3)[2], source->getRow(0, 0)[0]);
  EXPECT_EQ(empty->getRow(0, 2)[2], 0.0F);
  EXPECT_EQ(empty->getRow(0, 15)[35], 0.0F);
}

TEST(TG2SubbandTest, SharingRefusesTreesThatDontBelongTogether) {
  const auto upper = makeTree(UPPER);
  const auto shareWith = [&](const TG2Subband& other) {
    return thrownBy([&] { static_cast<void>(TG2Subband::sharedPart(*upper, other)); });
  };
  EXPECT_EQ(shareWith(*makeTree(LOWER)), GR_STATUS_OK);
  EXPECT_EQ(shareWith(*makeTree(LOWER, 3)), 8012u);
  EXPECT_EQ(shareWith(*makeTree(LOWER, 2, 3)), 8013u);
  EXPECT_EQ(shareWith(*makeTree({5, 50, 40, 59})), 8014u);  // too far away
  EXPECT_EQ(TG2_STATUS_SHARED_BANDS, 8012u);
  EXPECT_EQ(TG2_STATUS_SHARED_SHAPE, 8013u);
  EXPECT_EQ(TG2_STATUS_SHARED_NOTHING, 8014u);
}

TEST(TG2SubbandTest, TheRemainderRefusesTreesThatDontBelongTogether) {
  const auto lower = makeTree(LOWER);
  const auto without = [&](const TG2Subband& overlap) {
    return thrownBy([&] { static_cast<void>(TG2Subband::remainder(*lower, overlap)); });
  };
  EXPECT_EQ(without(*TG2Subband::sharedPart(*makeTree(UPPER), *lower)), GR_STATUS_OK);
  EXPECT_EQ(without(*makeTree({6, 16, 30, 20})), 8014u);  // other columns
  EXPECT_EQ(without(*makeTree({5, 24, 40, 31})), 8014u);  // not the upper rows
  EXPECT_EQ(without(*makeTree({5, 16, 40, 45})), 8014u);  // more rows
  EXPECT_EQ(without(*makeTree(LOWER, 1)), 8015u);
  EXPECT_EQ(without(*makeTree(LOWER, 2, 1)), 8016u);
  EXPECT_EQ(TG2_STATUS_REMAINDER_WINDOW, 8014u);
  EXPECT_EQ(TG2_STATUS_REMAINDER_BANDS, 8015u);
  EXPECT_EQ(TG2_STATUS_REMAINDER_SHAPE, 8016u);
}

TEST(TG2SubbandTest, MergingRefusesTreesThatDontBelongTogether) {
  const auto target = makeTree(UPPER);
  const auto take = [&](const TG2Subband& source) {
    return thrownBy([&] { target->merge(source); });
  };
  EXPECT_EQ(take(*makeTree({10, 3, 30, 9})), GR_STATUS_OK);
  EXPECT_EQ(take(*makeTree(UPPER, 2, 3)), 8011u);
  EXPECT_EQ(take(*makeTree(UPPER, 3, 2)), 8011u);
  EXPECT_EQ(take(*makeTree(LOWER)), 8023u);
  EXPECT_EQ(TG2_STATUS_MERGE_SHAPE, 8011u);
  EXPECT_EQ(TG2_STATUS_MERGE_WINDOW, 8023u);
}

TEST(TG2SubbandTest, ASynthesisedRootHasPlanesAndNoChildren) {
  std::mt19937 random(6);
  const auto root = makeTree(UPPER);
  fill(*root, random, nullptr);
  root->synthesize(nullptr);
  EXPECT_TRUE(root->isLeaf());
  ASSERT_TRUE(root->hasPlanes());
  EXPECT_EQ(root->getWidth(), 36);
  EXPECT_EQ(root->getHeight(), 16);
  // Whatever it is made of: nothing at all gives zeros, which need no planes.
  const auto empty = makeTree(UPPER);
  empty->synthesize(nullptr);
  EXPECT_TRUE(empty->isLeaf());
  EXPECT_FALSE(empty->hasPlanes());
}

TEST(Array2DTest, RefusesWhatMemoryCannotHold) {
  Array2D<float> planes;
  EXPECT_EQ(planes.allocate(3, gr_int64{1} << 31, gr_int64{1} << 31, false, nullptr), 8u);
  EXPECT_FALSE(planes.hasPlanes());
  TG2PlanePool pool;
  EXPECT_EQ(planes.allocate(4, gr_int64{1} << 60, gr_int64{1} << 60, false, &pool), 8u);
  EXPECT_FALSE(planes.hasPlanes());
  EXPECT_EQ(planes.allocate(2, 5, 7, true, &pool), 0u);
  EXPECT_EQ(planes.getRow(1, 6)[4], 0.0F);
}

TEST(Array2DTest, WrapsWhatIsSomeoneElses) {
  std::vector<float> samples(20, 3.0F);
  float* const first = samples.data();
  Array2D<float> planes;
  planes.wrap(&first, 1, 5, 4, 4);
  planes.getRow(0, 2)[1] = 7.0F;
  planes.release();
  EXPECT_FALSE(planes.hasPlanes());
  EXPECT_EQ(samples[11], 7.0F);
}

TEST(Array2DTest, RowsDontFallOntoTheSameCacheLines) {
  Array2D<float> planes;
  ASSERT_EQ(planes.allocate(1, 1024, 3, false, nullptr), GR_STATUS_OK);
  EXPECT_GT(planes.getStride(), 1024u);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(planes.getRow(0, 2)) % 64, 0u);
}

TEST(Array2DTest, ThePoolHandsMemoryOutAgain) {
  TG2PlanePool pool;
  const float* before = nullptr;
  {
    Array2D<float> planes;
    ASSERT_EQ(planes.allocate(1, 1000, 100, false, &pool), GR_STATUS_OK);
    before = planes.getRow(0, 0);
  }
  Array2D<float> planes;
  ASSERT_EQ(planes.allocate(1, 990, 100, false, &pool), GR_STATUS_OK);
  EXPECT_EQ(planes.getRow(0, 0), before);
  Array2D<float> others;
  ASSERT_EQ(others.allocate(1, 990, 100, false, &pool), GR_STATUS_OK);
  EXPECT_NE(others.getRow(0, 0), before);
}

}  // namespace
