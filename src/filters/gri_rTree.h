/// @file
/// GRIRTree, which finds those of many boxes that overlap another box.
#pragma once

#include <memory>

#include "filters/gri_box.h"
#include "gr_lib_utils/include/gr_types.h"

struct GRIRTreeNode;
struct GRIRTreeEntry;

/// An R-tree of up to ten entries a node, which hold boxes with a number each. Boxes are finite;
/// the same box and number may be there more than once.
///
/// How large a box is, is measured by the circle around its diagonal and not by its area, so that
/// long thin boxes count as large.
class GRIRTree {
 public:
  /// Hears of each box that a search finds.
  class SearchBBoxCallback {
   public:
    virtual ~SearchBBoxCallback() = default;
    /// @param cut  the box cut to the query; of no width or height where the two only touch
    /// @return 0; anything else ends the search
    virtual GR_STATUS onBox(gr_uint32 value, const GRIBox& box, const GRIBox& cut) = 0;

   protected:
    SearchBBoxCallback() = default;
    SearchBBoxCallback(const SearchBBoxCallback&) = default;
    SearchBBoxCallback& operator=(const SearchBBoxCallback&) = default;
  };

  GRIRTree();
  ~GRIRTree();
  GRIRTree(const GRIRTree&) = delete;
  GRIRTree& operator=(const GRIRTree&) = delete;

  /// @return 0; 50216 for memory, and then the tree is as it was
  [[nodiscard]] GR_STATUS add(const GRIBox& box, gr_uint32 value);
  /// Removes one entry with just this box and number.
  /// @return 0; 1 when there is none; 50216 for memory, and then entries beside it may be lost
  [[nodiscard]] GR_STATUS remove(const GRIBox& box, gr_uint32 value);
  /// Calls `callback` for each box that overlaps or touches `query`, in no order that means
  /// anything.
  /// @return 0, or what the callback returned to end the search
  GR_STATUS search(const GRIBox& query, SearchBBoxCallback& callback) const;

  /// The least box around all entries; all zeros while there are none.
  GRIBox getBounds() const;
  gr_uint32 getNumEntries() const { return m_numEntries; }
  /// The root, for tests; null while the tree is new.
  const GRIRTreeNode* getRoot() const { return m_root.get(); }

 private:
  GR_STATUS addEntry(GRIRTreeEntry entry);
  GR_STATUS addLeaves(GRIRTreeNode& node);

  std::unique_ptr<GRIRTreeNode> m_root;
  gr_uint32 m_numEntries = 0;
};
