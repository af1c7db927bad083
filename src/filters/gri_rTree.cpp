#include "filters/gri_rTree.h"

#include <cassert>
#include <utility>

#include "filters/gri_rTreeNode.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

// Every level below the root has four nodes or more for each above it, or seven at first: 2^32
// entries are far from this.
constexpr size_t MOST_LEVELS = 32;

GR_STATUS searchNode(const GRIRTreeNode& node, const GRIBox& query,
                     GRIRTree::SearchBBoxCallback& callback) {
  for (size_t i = 0; i < node.count; ++i) {
    const GRIRTreeEntry& entry = node.entries[i];
    if (!entry.box.overlaps(query)) continue;
    GR_RETURN_IF_FAILED(node.isLeaf()
                            ? callback.onBox(entry.value, entry.box, entry.box.cutTo(query))
                            : searchNode(*entry.child, query, callback));
  }
  return GR_STATUS_OK;
}

// The way from the root to the leaf that takes a box, and the entry taken in each node above it.
struct Way {
  std::array<GRIRTreeNode*, MOST_LEVELS> nodes{};
  std::array<size_t, MOST_LEVELS> entries{};
  size_t length = 0;
};

Way findWay(GRIRTreeNode& root, const GRIBox& box) {
  Way way;
  GRIRTreeNode* node = &root;
  while (!node->isLeaf()) {
    assert(way.length + 1 < MOST_LEVELS);
    const size_t entry = node->chooseEntry(box);
    way.nodes[way.length] = node;
    way.entries[way.length++] = entry;
    node = node->entries[entry].child.get();
  }
  way.nodes[way.length++] = node;
  return way;
}

// Nodes for the splits of one insertion, had before anything is changed.
class Spares {
 public:
  GR_STATUS allocate(const Way& way) {
    size_t fullNodes = 0;
    while (fullNodes < way.length && way.nodes[way.length - 1 - fullNodes]->isFull()) ++fullNodes;
    const size_t wanted = fullNodes + (fullNodes == way.length ? 1 : 0);  // a new root
    while (m_count < wanted) {
      std::unique_ptr<GRIRTreeNode> node = gr_makeUnique<GRIRTreeNode>();
      if (node == nullptr) return GRI_STATUS_FILTER_NO_MEMORY;
      m_nodes[m_count++] = std::move(node);
    }
    return GR_STATUS_OK;
  }
  std::unique_ptr<GRIRTreeNode> take() {
    assert(m_count > 0);
    return std::move(m_nodes[--m_count]);
  }

 private:
  std::array<std::unique_ptr<GRIRTreeNode>, MOST_LEVELS + 1> m_nodes;
  size_t m_count = 0;
};

// Takes an entry out of the leaf that has it. Nodes that are left with too few entries leave the
// tree and go to `orphans`, by their level.
// @return whether it was there
bool removeFrom(GRIRTreeNode& node, const GRIBox& box, gr_uint32 value,
                std::array<std::unique_ptr<GRIRTreeNode>, MOST_LEVELS>& orphans) {
  for (size_t i = 0; i < node.count; ++i) {
    GRIRTreeEntry& entry = node.entries[i];
    if (node.isLeaf()) {
      if (entry.value != value || entry.box != box) continue;
      node.take(i);
      return true;
    }
    if (!entry.box.overlaps(box) || !removeFrom(*entry.child, box, value, orphans)) continue;
    if (entry.child->count < GRIRTreeNode::LEAST_ENTRIES) {
      const size_t level = static_cast<size_t>(entry.child->level);
      orphans[level] = node.take(i).child;
    } else {
      entry.box = entry.child->getBounds();
    }
    return true;
  }
  return false;
}

}  // namespace

GRIRTree::GRIRTree() = default;
GRIRTree::~GRIRTree() = default;

GR_STATUS GRIRTree::add(const GRIBox& box, gr_uint32 value) {
  if (m_root == nullptr) {
    m_root = gr_makeUnique<GRIRTreeNode>();
    if (m_root == nullptr) return GRI_STATUS_FILTER_NO_MEMORY;
  }
  GR_RETURN_IF_FAILED(addEntry({box, nullptr, value}));
  ++m_numEntries;
  return GR_STATUS_OK;
}

GR_STATUS GRIRTree::addEntry(GRIRTreeEntry entry) {
  const GRIBox box = entry.box;
  const Way way = findWay(*m_root, box);
  Spares spares;
  GR_RETURN_IF_FAILED(spares.allocate(way));

  bool hasNew = true;  // `entry` is still to be put into the node at hand
  for (size_t i = way.length; i-- > 0;) {
    GRIRTreeNode& node = *way.nodes[i];
    if (i + 1 < way.length) node.entries[way.entries[i]].box = way.nodes[i + 1]->getBounds();
    if (!hasNew) continue;
    if (!node.isFull()) {
      node.append(std::move(entry));  // NOLINT(bugprone-use-after-move): there is one, says hasNew
      hasNew = false;
      continue;
    }
    std::unique_ptr<GRIRTreeNode> added = spares.take();
    node.split(std::move(entry), *added);
    const GRIBox bounds = added->getBounds();
    entry = {bounds, std::move(added), 0};
  }
  if (!hasNew) return GR_STATUS_OK;

  std::unique_ptr<GRIRTreeNode> root = spares.take();
  root->level = m_root->level + 1;
  const GRIBox bounds = m_root->getBounds();
  root->append({bounds, std::move(m_root), 0});
  root->append(std::move(entry));
  m_root = std::move(root);
  return GR_STATUS_OK;
}

GR_STATUS GRIRTree::remove(const GRIBox& box, gr_uint32 value) {
  std::array<std::unique_ptr<GRIRTreeNode>, MOST_LEVELS> orphans;
  if (m_root == nullptr || !removeFrom(*m_root, box, value, orphans)) return GR_STATUS_FAILURE;
  --m_numEntries;
  for (const std::unique_ptr<GRIRTreeNode>& orphan : orphans) {
    if (orphan != nullptr) GR_RETURN_IF_FAILED(addLeaves(*orphan));
  }
  while (!m_root->isLeaf() && m_root->count == 1) m_root = m_root->take(0).child;
  return GR_STATUS_OK;
}

/// Adds all leaf entries below a node that has left the tree.
GR_STATUS GRIRTree::addLeaves(GRIRTreeNode& node) {
  for (size_t i = 0; i < node.count; ++i) {
    GRIRTreeEntry& entry = node.entries[i];
    GR_RETURN_IF_FAILED(node.isLeaf() ? addEntry(std::move(entry)) : addLeaves(*entry.child));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIRTree::search(const GRIBox& query, SearchBBoxCallback& callback) const {
  return m_root == nullptr ? GR_STATUS_OK : searchNode(*m_root, query, callback);
}

GRIBox GRIRTree::getBounds() const {
  return m_root == nullptr || m_root->count == 0 ? GRIBox() : m_root->getBounds();
}
