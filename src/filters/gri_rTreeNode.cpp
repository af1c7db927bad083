#include "filters/gri_rTreeNode.h"

#include <algorithm>
#include <cassert>
#include <span>
#include <utility>

namespace {

constexpr double CIRCLE_OF_UNIT_DIAGONAL = 0.78539825;

constexpr size_t NUM_ENTRIES = GRIRTreeNode::MOST_ENTRIES + 1;  // that a split shares out

double growth(const GRIBox& box, const GRIBox& taken) {
  return GRIRTreeNode::measure(box.unitedWith(taken)) - GRIRTreeNode::measure(box);
}

// Two entries that would waste the most room in one node. The pairs of the first entry don't take
// part, but for the one from which the search starts.
std::pair<size_t, size_t> chooseSeeds(std::span<const GRIRTreeEntry> entries) {
  const auto waste = [&](size_t i, size_t j) {
    return GRIRTreeNode::measure(entries[i].box.unitedWith(entries[j].box)) -
           GRIRTreeNode::measure(entries[i].box) - GRIRTreeNode::measure(entries[j].box);
  };
  std::pair<size_t, size_t> seeds(0, 1);
  double most = waste(0, 1);
  for (size_t i = 1; i < entries.size(); ++i) {
    for (size_t j = i + 1; j < entries.size(); ++j) {
      const double wasted = waste(i, j);
      if (wasted > most) {
        most = wasted;
        seeds = {i, j};
      }
    }
  }
  return seeds;
}

// One of the two nodes of a split, with the box around what it has so far.
struct Half {
  GRIRTreeNode& node;
  GRIBox box;

  void take(GRIRTreeEntry& entry) {
    box = node.count == 0 ? entry.box : box.unitedWith(entry.box);
    node.append(std::move(entry));
  }
};

// Which of the two nodes takes an entry, and how much that matters.
struct Choice {
  double difference;
  bool takesNew;
};

Choice choose(const Half& oldHalf, const Half& newHalf, const GRIBox& box) {
  const double oldGrowth = growth(oldHalf.box, box);
  const double newGrowth = growth(newHalf.box, box);
  if (oldGrowth < newGrowth) return {newGrowth - oldGrowth, false};
  if (newGrowth < oldGrowth) return {oldGrowth - newGrowth, true};
  return {0.0, GRIRTreeNode::measure(newHalf.box) <= GRIRTreeNode::measure(oldHalf.box) &&
                   newHalf.node.count <= oldHalf.node.count};
}

}  // namespace

double GRIRTreeNode::measure(const GRIBox& box) {
  const double width = box.getWidth();
  const double height = box.getHeight();
  return (width * width + height * height) * CIRCLE_OF_UNIT_DIAGONAL;
}

GRIBox GRIRTreeNode::getBounds() const {
  assert(count > 0);
  GRIBox bounds = entries[0].box;
  for (size_t i = 1; i < count; ++i) bounds = bounds.unitedWith(entries[i].box);
  return bounds;
}

size_t GRIRTreeNode::chooseEntry(const GRIBox& box) const {
  assert(count > 0);
  size_t best = 0;
  double leastGrowth = growth(entries[0].box, box);
  double leastMeasure = measure(entries[0].box);
  for (size_t i = 1; i < count; ++i) {
    const double grown = growth(entries[i].box, box);
    const double measured = measure(entries[i].box);
    if (grown < leastGrowth || (grown == leastGrowth && measured < leastMeasure)) {
      best = i;
      leastGrowth = grown;
      leastMeasure = measured;
    }
  }
  return best;
}

GRIRTreeEntry GRIRTreeNode::take(size_t index) {
  assert(index < count);
  GRIRTreeEntry taken = std::move(entries[index]);
  --count;
  if (index != count) entries[index] = std::move(entries[count]);
  return taken;
}

void GRIRTreeNode::split(GRIRTreeEntry extra, GRIRTreeNode& added) {
  assert(isFull() && added.count == 0);
  std::array<GRIRTreeEntry, NUM_ENTRIES> pool;
  std::move(entries.begin(), entries.end(), pool.begin());
  pool[MOST_ENTRIES] = std::move(extra);
  count = 0;
  added.level = level;

  Half oldHalf{*this, {}};
  Half newHalf{added, {}};
  size_t left = pool.size();  // the first ones of the pool, in their order, are not yet shared out
  const auto give = [&](size_t index, Half& half) {
    half.take(pool[index]);
    std::move(pool.begin() + index + 1, pool.begin() + left, pool.begin() + index);
    --left;
  };
  const auto [i, j] = chooseSeeds(pool);
  oldHalf.take(pool[i]);
  give(j, newHalf);
  std::move(pool.begin() + i + 1, pool.begin() + left, pool.begin() + i);
  --left;

  while (left > 0 && count < SPLIT_ENTRIES && added.count < SPLIT_ENTRIES) {
    size_t best = 0;
    Choice bestChoice{-1.0, false};
    for (size_t k = 0; k < left; ++k) {
      const Choice choice = choose(oldHalf, newHalf, pool[k].box);
      if (choice.difference > bestChoice.difference) {
        best = k;
        bestChoice = choice;
      }
    }
    give(best, bestChoice.takesNew ? newHalf : oldHalf);
  }
  Half& rest = added.count <= count ? newHalf : oldHalf;
  while (left > 0) give(0, rest);
}
