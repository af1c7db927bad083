/// @file
/// GRIRTreeNode, the nodes of a GRIRTree, and how a full one is split.
#pragma once

#include <array>
#include <memory>

#include "filters/gri_box.h"
#include "gr_lib_utils/include/gr_types.h"

struct GRIRTreeNode;

/// A box, and what is in it: a node, or in a leaf the user's number.
struct GRIRTreeEntry {
  GRIBox box;
  std::unique_ptr<GRIRTreeNode> child;
  gr_uint32 value = 0;
};

struct GRIRTreeNode {
  static constexpr size_t MOST_ENTRIES = 10;
  static constexpr size_t LEAST_ENTRIES = 4;  ///< of a node below the root after a removal
  static constexpr size_t SPLIT_ENTRIES = 7;  ///< a node that has as many gets no more in a split

  /// How large a box is: the area of the circle around its diagonal.
  static double measure(const GRIBox& box);

  bool isLeaf() const { return level == 0; }
  bool isFull() const { return count == MOST_ENTRIES; }
  /// The box around all entries, of which there is one at least.
  GRIBox getBounds() const;
  /// The entry that grows least by taking `box` in; among equals the smaller one, then the first.
  size_t chooseEntry(const GRIBox& box) const;
  /// Adds to a node that isn't full.
  void append(GRIRTreeEntry entry) { entries[count++] = std::move(entry); }
  /// Takes an entry out; the last one takes its place.
  GRIRTreeEntry take(size_t index);
  /// Shares the entries of this node, which is full, and one more between it and `added`, a node
  /// without entries.
  void split(GRIRTreeEntry extra, GRIRTreeNode& added);

  gr_int32 level = 0;  ///< 0 is a leaf
  size_t count = 0;
  std::array<GRIRTreeEntry, MOST_ENTRIES> entries;
};
