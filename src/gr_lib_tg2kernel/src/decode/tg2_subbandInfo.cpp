#include <algorithm>
#include <cassert>

#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"

namespace {

// Sorts positions and keeps each once.
GR_STATUS makeCuts(GRArray<gr_int32>& positions, GRArray<gr_int32>& cuts) {
  std::sort(positions.begin(), positions.end());
  const gr_int32* const end = std::unique(positions.begin(), positions.end());
  GR_RETURN_IF_FAILED(cuts.allocateUninitialized(static_cast<gr_uint64>(end - positions.begin())));
  std::copy(static_cast<const gr_int32*>(positions.begin()), end, cuts.begin());
  return GR_STATUS_OK;
}

// The cuts of one axis: 0, and where each block begins and ends.
GR_STATUS gatherCuts(std::span<const TG2Rect> rects, gr_int32 TG2Rect::*first,
                     gr_int32 TG2Rect::*last, GRArray<gr_int32>& cuts) {
  GRArray<gr_int32> positions;
  GR_RETURN_IF_FAILED(positions.allocate(2 * gr_uint64{rects.size()} + 1));
  gr_int32* next = positions.begin() + 1;  // the first one stays 0
  for (const TG2Rect& rect : rects) {
    *next++ = rect.*first;
    *next++ = rect.*last + 1;
  }
  return makeCuts(positions, cuts);
}

// The interval that begins at a cut.
gr_uint32 intervalOf(const GRArray<gr_int32>& cuts, gr_int32 cut) {
  return static_cast<gr_uint32>(std::lower_bound(cuts.begin(), cuts.end(), cut) - cuts.begin());
}

bool isInside(const TG2Rect& rect, gr_uint32 width, gr_uint32 height) {
  return rect.x0 >= 0 && rect.y0 >= 0 && !rect.isEmpty() && gr_int64{rect.x1} < width &&
         gr_int64{rect.y1} < height;
}

}  // namespace

GR_STATUS TG2SubbandInfo::makeGrid(std::span<const TG2Rect> rects, gr_uint32 width,
                                   gr_uint32 height) {
  assert(!rects.empty());
  m_support = rects.front();
  for (const TG2Rect& rect : rects) {
    if (!isInside(rect, width, height)) return TG2_STATUS_BAD_MARKER;
    m_support = m_support.unite(rect);
  }
  GR_RETURN_IF_FAILED(gatherCuts(rects, &TG2Rect::x0, &TG2Rect::x1, m_colCuts));
  GR_RETURN_IF_FAILED(gatherCuts(rects, &TG2Rect::y0, &TG2Rect::y1, m_rowCuts));

  GR_RETURN_IF_FAILED(m_cells.allocateUninitialized(rects.size()));
  for (size_t i = 0; i < rects.size(); ++i) {
    const TG2Rect& rect = rects[i];
    Cell& cell = m_cells[i];
    cell = {.row = intervalOf(m_rowCuts, rect.y0),
            .col = intervalOf(m_colCuts, rect.x0),
            .index = static_cast<gr_uint32>(i)};
    // A block that another one cuts into would be larger than its cell.
    if (m_colCuts[cell.col + 1] != rect.x1 + 1 || m_rowCuts[cell.row + 1] != rect.y1 + 1) {
      return TG2_STATUS_BAD_MARKER;
    }
  }
  return sortCells();
}

GR_STATUS TG2SubbandInfo::sortCells() {
  const auto isBefore = [](const Cell& a, const Cell& b) {
    return a.row != b.row ? a.row < b.row : a.col < b.col;
  };
  const auto isSame = [](const Cell& a, const Cell& b) { return a.row == b.row && a.col == b.col; };
  std::sort(m_cells.begin(), m_cells.end(), isBefore);
  if (std::adjacent_find(m_cells.begin(), m_cells.end(), isSame) != m_cells.end()) {
    return TG2_STATUS_BAD_MARKER;
  }
  GR_RETURN_IF_FAILED(m_slotOfBlock.allocateUninitialized(m_cells.size()));
  GR_RETURN_IF_FAILED(m_firstOfRow.allocate(gr_uint64{getNumRows()} + 1));
  for (size_t slot = 0; slot < m_cells.size(); ++slot) {
    m_slotOfBlock[m_cells[slot].index] = static_cast<gr_uint32>(slot);
    m_firstOfRow[m_cells[slot].row + 1] = static_cast<gr_uint32>(slot + 1);
  }
  // A row without blocks begins where the one before it ends.
  for (size_t row = 1; row < m_firstOfRow.size(); ++row) {
    m_firstOfRow[row] = std::max(m_firstOfRow[row], m_firstOfRow[row - 1]);
  }
  return GR_STATUS_OK;
}

gr_uint32 TG2SubbandInfo::findInterval(std::span<const gr_int32> cuts, gr_int32 position) {
  if (position <= cuts.front()) return 0;
  if (position >= cuts.back()) return static_cast<gr_uint32>(cuts.size() - 2);
  return static_cast<gr_uint32>(std::upper_bound(cuts.begin(), cuts.end(), position) -
                                cuts.begin() - 1);
}

gr_uint32 TG2SubbandInfo::findSlot(gr_uint32 row, gr_uint32 col) const {
  const Cell* const end = m_cells.begin() + m_firstOfRow[row + 1];
  const Cell* const found =
      std::lower_bound(m_cells.begin() + m_firstOfRow[row], end, col,
                       [](const Cell& cell, gr_uint32 column) { return cell.col < column; });
  return static_cast<gr_uint32>(found - m_cells.begin());
}

bool TG2SubbandInfo::getBlockIndex(gr_uint32 row, gr_uint32 col, gr_uint32& index) const {
  const gr_uint32 slot = findSlot(row, col);
  if (slot == m_firstOfRow[row + 1] || m_cells[slot].col != col) return false;
  index = m_cells[slot].index;
  return true;
}

void TG2SubbandInfo::getBlockPosition(gr_uint32 index, gr_uint32& row, gr_uint32& col) const {
  assert(index < getNumBlocks());
  const Cell& cell = m_cells[m_slotOfBlock[index]];
  row = cell.row;
  col = cell.col;
}

TG2Rect TG2SubbandInfo::getBlockRect(gr_uint32 index) const {
  gr_uint32 row = 0;
  gr_uint32 col = 0;
  getBlockPosition(index, row, col);
  return {m_colCuts[col], m_rowCuts[row], m_colCuts[col + 1] - 1, m_rowCuts[row + 1] - 1};
}

GR_STATUS TG2BlockIterator::start(const TG2Rect& rect) {
  assert(!rect.isEmpty());
  m_block = nullptr;
  m_owned.reset();
  const gr_uint32 firstRow = m_subband.findRow(rect.y0);
  m_lastRow = m_subband.findRow(rect.y1);
  m_firstCol = m_subband.findCol(rect.x0);
  m_lastCol = m_subband.findCol(rect.x1);
  const TG2Rect cells = {m_subband.m_colCuts[m_firstCol], m_subband.m_rowCuts[firstRow],
                         m_subband.m_colCuts[m_lastCol + 1] - 1,
                         m_subband.m_rowCuts[m_lastRow + 1] - 1};
  if (cells.intersect(rect).isEmpty()) return GR_STATUS_OK;
  return goTo(firstRow, m_subband.findSlot(firstRow, m_firstCol));
}

GR_STATUS TG2BlockIterator::next() {
  assert(m_block != nullptr);
  return goTo(m_row, m_slot + 1);
}

// Takes the first block at or behind a slot of a row.
GR_STATUS TG2BlockIterator::goTo(gr_uint32 row, gr_uint32 slot) {
  m_block = nullptr;
  m_owned.reset();
  const auto isWalked = [this, &row, &slot] {
    return slot < m_subband.m_firstOfRow[row + 1] && m_subband.m_cells[slot].col <= m_lastCol;
  };
  while (!isWalked()) {
    if (++row > m_lastRow) return GR_STATUS_OK;
    slot = m_subband.findSlot(row, m_firstCol);
  }
  m_row = row;
  m_slot = slot;
  return m_subband.getBlock(m_subband.m_cells[slot].index, m_block, m_owned);
}
