#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_orderingPipe.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace {

constexpr gr_uint64 NONE = std::numeric_limits<gr_uint64>::max();

}  // namespace

GR_STATUS OrderingPipe::initialize(gr_uint32 subblockSize, gr_uint32 levels, gr_uint32 height,
                                   gr_uint32 width) {
  if (subblockSize <= 2 || levels > MAX_LEVELS || height == 0 || width == 0) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  OrderingPipe made;
  made.m_blockSize = subblockSize;
  made.m_levels = levels;
  made.m_numBands = 4 * levels + 1;
  const auto blocksOf = [subblockSize](gr_uint64 samples) {
    return (samples + subblockSize - 1) / subblockSize;
  };

  gr_uint64 h = height;
  gr_uint64 w = width;
  for (gr_uint32 level = levels; level >= 1; --level) {
    if (w < 2) return TG3_STATUS_BAD_ARGUMENT;
    for (gr_uint32 place = 0; place < 4; ++place) {
      const bool highColumns = (place & 1) != 0;
      const bool highRows = (place & 2) != 0;
      Band& band = made.m_bands[4 * level - 3 + place];
      band.rows = highRows ? h >> 1 : (h + 1) >> 1;
      band.columns = blocksOf(highColumns ? w >> 1 : (w + 1) >> 1);
      made.m_perRow[level] += band.columns;
    }
    h = (h + 1) >> 1;
    w = (w + 1) >> 1;
  }
  made.m_bands[0].rows = h;  // what is left has the size of band 1
  made.m_bands[0].columns = blocksOf(w);
  if (levels > 0) made.m_perRow[1] += made.m_bands[0].columns;

  gr_uint64 tail = 0;
  for (gr_uint32 number = 0; number < made.m_numBands; ++number) {
    Band& band = made.m_bands[number];
    band.fullRows = band.rows / subblockSize;
    band.hasTail = band.rows % subblockSize != 0;
    band.tailStart = tail;
    if (band.hasTail) tail += band.columns;
    made.m_mainSize += band.fullRows * band.columns;
  }
  made.m_total = made.m_mainSize + tail;
  for (gr_uint32 number = 0; number < made.m_numBands; ++number) made.setNext(number, 0);
  *this = made;
  return GR_STATUS_OK;
}

gr_uint64 OrderingPipe::index(const TG3SubblockPosition& position) const {
  const Band& band = m_bands[position.subband];
  if (position.row >= band.fullRows) return m_mainSize + band.tailStart + position.column;
  return rowStart(position.subband, position.row) + position.column;
}

/// The index of the first subblock of a complete row: what lies before it in its own level, then
/// what the finer and the coarser levels have delivered when the pipeline comes to it.
gr_uint64 OrderingPipe::rowStart(gr_uint32 bandNumber, gr_uint64 blockRow) const {
  if (m_levels == 0) return blockRow * m_bands[0].columns;
  const gr_uint32 level = bandNumber == 0 ? 1 : (bandNumber + 3) / 4;
  const gr_uint32 first = 4 * level - 3;
  gr_uint64 start = blockRow * m_perRow[level];
  if (level == 1 && bandNumber != 0) start += m_bands[0].columns;
  for (gr_uint32 number = first; number < bandNumber; ++number) start += m_bands[number].columns;

  // The last sample row that the step needs, in rows of the level's low band.
  const gr_uint64 rowsDone = (blockRow + 1) * m_blockSize;
  gr_uint64 row = rowsDone - 1;
  if (bandNumber > first + 1 && rowsDone < m_bands[bandNumber - 2].rows) row = rowsDone;

  const gr_uint64 lowestRow = row;
  for (size_t finer = level + 1; finer <= m_levels; ++finer) {
    const gr_uint64 lowRows = m_bands[4 * finer - 3].rows;
    const gr_uint64 highRows = m_bands[4 * finer - 1].rows;
    row = std::min(2 * row + 3, lowRows);
    start += (row / m_blockSize) * m_perRow[finer];
    if (row % m_blockSize == 0 && (row < lowRows || highRows < lowRows)) {
      start -= m_bands[4 * finer - 1].columns + m_bands[4 * finer].columns;
    }
  }
  row = lowestRow;
  for (size_t coarser = level - 1; coarser >= 1 && row > 2; --coarser) {
    row = (row - 3) >> 1;
    start += ((row + 1) / m_blockSize) * m_perRow[coarser];
    if ((row + 1) % m_blockSize == 0) {
      start -= m_bands[4 * coarser - 1].columns + m_bands[4 * coarser].columns;
    }
  }
  return start;
}

TG3SubblockPosition OrderingPipe::position(gr_uint64 index) {
  assert(index < m_total);
  if (index >= m_mainSize) return positionInTail(index - m_mainSize);
  if (index < m_runStart || index >= m_runEnd) moveCursors(index);
  return {m_runBand, static_cast<gr_uint32>(m_runRow), static_cast<gr_uint32>(index - m_runStart)};
}

TG3SubblockPosition OrderingPipe::positionInTail(gr_uint64 offset) const {
  for (gr_uint32 number = 0; number < m_numBands; ++number) {
    const Band& band = m_bands[number];
    if (band.hasTail && offset - band.tailStart < band.columns) {
      return {number, static_cast<gr_uint32>(band.fullRows),
              static_cast<gr_uint32>(offset - band.tailStart)};
    }
  }
  return {};
}

/// Finds the row that holds `index`. Every band's rows rise with the index, so the row is the last
/// one of its band that starts at or before it, and the one that is long enough.
void OrderingPipe::moveCursors(gr_uint64 index) {
  const bool forward = index >= m_runEnd;
  for (gr_uint32 number = 0; number < m_numBands; ++number) {
    Cursor& cursor = m_cursors[number];
    if (!forward || cursor.nextStart <= index) {
      setNext(number, firstRowAfter(number, forward ? cursor.nextRow : 0, index));
    } else {
      continue;  // nothing of this band lies between the last run and the index
    }
    if (cursor.nextRow == 0) continue;
    const gr_uint64 start = rowStart(number, cursor.nextRow - 1);
    if (index - start < m_bands[number].columns) {
      m_runBand = number;
      m_runRow = cursor.nextRow - 1;
      m_runStart = start;
    }
  }
  m_runEnd = m_runStart + m_bands[m_runBand].columns;
}

/// The first complete row at or after `from` that starts after `index`, or the number of complete
/// rows. Near rows are found first: most searches go forward by one.
gr_uint64 OrderingPipe::firstRowAfter(gr_uint32 band, gr_uint64 from, gr_uint64 index) const {
  const gr_uint64 end = m_bands[band].fullRows;
  gr_uint64 low = from;  // the answer is at or after it
  gr_uint64 high = from;
  for (gr_uint64 step = 1; high < end && rowStart(band, high) <= index; step *= 2) {
    low = high + 1;
    high += step;
  }
  high = std::min(high, end);
  while (low < high) {
    const gr_uint64 middle = low + (high - low) / 2;
    if (rowStart(band, middle) <= index) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

void OrderingPipe::setNext(gr_uint32 band, gr_uint64 row) {
  m_cursors[band].nextRow = row;
  m_cursors[band].nextStart = row < m_bands[band].fullRows ? rowStart(band, row) : NONE;
}
