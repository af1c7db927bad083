#include "image/gri_mask.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_maskRowBuilder.h"

// --- GRIMaskRow --------------------------------------------------------------------------------

GR_STATUS GRIMaskRow::reserve(gr_uint32 length) {
  assert(length > 0);
  GRArray<GRIMaskRun> runs;
  GR_RETURN_IF_FAILED(runs.allocate(length));
  m_runs = std::move(runs);
  m_count = 0;
  return GR_STATUS_OK;
}

GR_STATUS GRIMaskRow::copyFrom(const GRIMaskRow& other) {
  GRArray<GRIMaskRun> runs;
  if (!other.empty()) {
    GR_RETURN_IF_FAILED(runs.allocate(other.m_count));
    std::copy(other.begin(), other.end(), runs.begin());
  }
  const gr_uint32 count = other.m_count;
  m_runs = std::move(runs);
  m_count = count;
  return GR_STATUS_OK;
}

// --- GRIMask -----------------------------------------------------------------------------------

GR_STATUS GRIMask::setNumRows(gr_uint32 numRows) {
  m_rows.clear();
  return numRows == 0 ? GR_STATUS_OK : m_rows.allocate(numRows);
}

GR_STATUS GRIMask::copyFrom(const GRIMask& other) {
  GRIMask copy;
  GR_RETURN_IF_FAILED(copy.setNumRows(other.getNumRows()));
  for (gr_uint32 row = 0; row < other.getNumRows(); ++row) {
    if (const GRIMaskRow* runs = other.getRow(row)) {
      GR_RETURN_IF_FAILED(copy.m_rows[row].copyFrom(*runs));
    }
  }
  m_rows = std::move(copy.m_rows);
  return GR_STATUS_OK;
}

const GRIMaskRow* GRIMask::getRow(gr_uint32 row) const {
  assert(row < m_rows.size());
  return m_rows[row].empty() ? nullptr : &m_rows[row];
}

void GRIMask::setRow(gr_uint32 row, GRIMaskRow&& runs) {
  assert(row < m_rows.size());
  m_rows[row] = std::move(runs);
}

GR_STATUS GRIMask::unite(const GRIMask& a, const GRIMask& b) {
  GRIMask result;
  GR_RETURN_IF_FAILED(result.setNumRows(std::max(a.getNumRows(), b.getNumRows())));
  for (gr_uint32 row = 0; row < result.getNumRows(); ++row) {
    const GRIMaskRow* rowA = row < a.getNumRows() ? a.getRow(row) : nullptr;
    const GRIMaskRow* rowB = row < b.getNumRows() ? b.getRow(row) : nullptr;
    if (rowA != nullptr && rowB != nullptr) {
      GRIMaskRowBuilder builder;
      try {
        builder.unite(*rowA, *rowB);
      } catch (const GRUtilException& exception) {
        return exception.getStatus();
      }
      result.setRow(row, builder.take());
    } else if (const GRIMaskRow* only = rowA != nullptr ? rowA : rowB) {
      GR_RETURN_IF_FAILED(result.m_rows[row].copyFrom(*only));
    }
  }
  m_rows = std::move(result.m_rows);
  return GR_STATUS_OK;
}

GR_STATUS GRIMask::intersect(const GRIMask& a, const GRIMask& b) {
  GRIMask result;
  GR_RETURN_IF_FAILED(result.setNumRows(std::max(a.getNumRows(), b.getNumRows())));
  const gr_uint32 common = std::min(a.getNumRows(), b.getNumRows());
  for (gr_uint32 row = 0; row < common; ++row) {
    const GRIMaskRow* rowA = a.getRow(row);
    const GRIMaskRow* rowB = b.getRow(row);
    if (rowA == nullptr || rowB == nullptr) continue;
    GRIMaskRowBuilder builder;
    try {
      builder.intersect(*rowA, *rowB);
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
    result.setRow(row, builder.take());
  }
  m_rows = std::move(result.m_rows);
  return GR_STATUS_OK;
}

double GRIMask::getArea() const {
  double area = 0.0;
  for (const GRIMaskRow& row : m_rows) {
    for (const GRIMaskRun& run : row) area += static_cast<double>(run.last) - run.first + 1.0;
  }
  return area;
}

GRIMaskBounds GRIMask::getBounds() const {
  GRIMaskBounds bounds;
  for (gr_uint32 row = 0; row < getNumRows(); ++row) {
    const GRIMaskRow* runs = getRow(row);
    if (runs == nullptr) continue;
    bounds.top = std::min(bounds.top, static_cast<gr_int32>(row));
    bounds.bottom = std::max(bounds.bottom, static_cast<gr_int32>(row));
    bounds.left = std::min(bounds.left, (*runs)[0].first);
    bounds.right = std::max(bounds.right, (*runs)[runs->count() - 1].last);
  }
  return bounds;
}

bool GRIMask::contains(gr_int32 col, gr_int32 row) const {
  if (row < 0 || static_cast<gr_uint32>(row) >= getNumRows()) return false;
  for (const GRIMaskRun& run : m_rows[static_cast<size_t>(row)]) {
    if (run.first > col) return false;
    if (run.last >= col) return true;
  }
  return false;
}
