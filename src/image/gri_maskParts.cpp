// The connected parts of a mask: labels for its runs, and the removal of small parts.

#include <algorithm>
#include <cassert>
#include <numeric>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_mask.h"
#include "image/gri_maskRowBuilder.h"

namespace {

/// Groups that turn out to be one are united; the smaller number stands for both.
class GroupMap {
 public:
  /// @param maxGroups  how many groups may be made
  GR_STATUS initialize(size_t maxGroups) { return m_map.allocate(maxGroups); }

  gr_uint32 newGroup() {
    assert(m_nextGroup < m_map.size());
    m_map[m_nextGroup] = m_nextGroup;
    return m_nextGroup++;
  }

  gr_uint32 unite(gr_uint32 a, gr_uint32 b) {
    assert(a < m_nextGroup && b < m_nextGroup);
    const gr_uint32 root = std::min(rootOf(a), rootOf(b));
    pointTo(a, root);
    pointTo(b, root);
    return root;
  }

  /// Numbers the roots from 0 and gives each group its root's number.
  /// @return how many roots there are
  gr_uint32 renumber() {
    gr_uint32 count = 0;
    // A root is the smallest of its groups, so it has its number before they ask for it.
    for (gr_uint32 group = 0; group < m_nextGroup; ++group) {
      const gr_uint32 parent = m_map[group];
      assert(parent <= group);
      m_map[group] = parent == group ? count++ : m_map[parent];
      assert(m_map[group] < count);
    }
    return count;
  }

  gr_uint32 operator[](gr_uint32 group) const { return m_map[group]; }

 private:
  gr_uint32 rootOf(gr_uint32 group) const {
    while (m_map[group] != group) group = m_map[group];
    return group;
  }

  void pointTo(gr_uint32 group, gr_uint32 root) {
    while (group != root) {
      const gr_uint32 next = m_map[group];
      m_map[group] = root;
      if (next == group) return;  // it was the other root
      group = next;
    }
  }

  GRArray<gr_uint32> m_map;  // of each group another one of the same part, or itself at the root
  gr_uint32 m_nextGroup = 0;
};

/// Labels the runs of a row from those of the row above.
void labelRow(const GRIMaskRow& row, gr_uint32* labels, const GRIMaskRow* above,
              gr_uint32* labelsAbove, GroupMap& groups) {
  gr_uint32 firstAbove = 0;  // runs before it end left of the current run
  for (gr_uint32 i = 0; i < row.count(); ++i) {
    bool labelled = false;
    const gr_uint32 countAbove = above == nullptr ? 0 : above->count();
    while (firstAbove < countAbove && (*above)[firstAbove].last < row[i].first) ++firstAbove;
    for (gr_uint32 j = firstAbove; j < countAbove && (*above)[j].first <= row[i].last; ++j) {
      labels[i] = labelled ? groups.unite(labels[i], labelsAbove[j]) : labelsAbove[j];
      labelsAbove[j] = labels[i];
      labelled = true;
    }
    if (!labelled) labels[i] = groups.newGroup();
  }
}

}  // namespace

GR_STATUS GRIMask::getRunLabels(GRIMaskRunLabels& labels, gr_uint32& numLabels) const {
  GRIMaskRunLabels result;
  GR_RETURN_IF_FAILED(result.m_rowStart.allocate(m_rows.size()));
  size_t numRuns = 0;
  for (size_t row = 0; row < m_rows.size(); ++row) {
    result.m_rowStart[row] = numRuns;
    numRuns += m_rows[row].count();
  }
  GR_RETURN_IF_FAILED(result.m_labels.allocate(numRuns));
  GroupMap groups;
  GR_RETURN_IF_FAILED(groups.initialize(numRuns));

  for (gr_uint32 row = 0; row < getNumRows(); ++row) {
    gr_uint32* own = result.m_labels.data() + result.m_rowStart[row];
    const GRIMaskRow* above = row == 0 ? nullptr : getRow(row - 1);
    gr_uint32* labelsAbove =
        row == 0 ? nullptr : result.m_labels.data() + result.m_rowStart[row - 1];
    labelRow(m_rows[row], own, above, labelsAbove, groups);
  }
  numLabels = groups.renumber();
  for (gr_uint32& label : result.m_labels) label = groups[label];
  labels = std::move(result);
  return GR_STATUS_OK;
}

GR_STATUS GRIMask::removeSmallParts(gr_uint32 threshold) {
  GRIMaskRunLabels labels;
  gr_uint32 numLabels = 0;
  GR_RETURN_IF_FAILED(getRunLabels(labels, numLabels));
  GRArray<gr_uint64> pixels;  // of each part
  GR_RETURN_IF_FAILED(pixels.allocate(numLabels));
  for (gr_uint32 row = 0; row < getNumRows(); ++row) {
    for (gr_uint32 i = 0; i < m_rows[row].count(); ++i) {
      const GRIMaskRun& run = m_rows[row][i];
      pixels[labels.get(row, i)] += static_cast<gr_uint64>(gr_int64{run.last} - run.first + 1);
    }
  }

  GRIMask result;
  GR_RETURN_IF_FAILED(result.setNumRows(getNumRows()));
  for (gr_uint32 row = 0; row < getNumRows(); ++row) {
    GRIMaskRowBuilder builder;
    try {
      for (gr_uint32 i = 0; i < m_rows[row].count(); ++i) {
        if (pixels[labels.get(row, i)] > threshold) builder.addRun(m_rows[row][i]);
      }
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
    result.setRow(row, builder.take());
  }
  m_rows = std::move(result.m_rows);
  return GR_STATUS_OK;
}
