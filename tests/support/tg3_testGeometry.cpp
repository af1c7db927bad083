#include "tests/support/tg3_testGeometry.h"

#include <algorithm>

TG3TestGeometry::TG3TestGeometry(gr_uint32 width, gr_uint32 height, gr_uint32 numLevels,
                                 gr_uint32 blockSize)
    : m_numLevels(numLevels), m_blockSize(blockSize), m_bands(4 * numLevels + 1) {
  const auto set = [&](gr_uint32 band, gr_uint32 columns, gr_uint32 rows) {
    m_bands[band] = {columns, rows, (columns + blockSize - 1) / blockSize,
                     (rows + blockSize - 1) / blockSize};
  };
  gr_uint32 w = width;
  gr_uint32 h = height;
  for (gr_uint32 level = numLevels; level > 0; --level) {
    set(4 * level, w / 2, h / 2);
    set(4 * level - 1, (w + 1) / 2, h / 2);
    set(4 * level - 2, w / 2, (h + 1) / 2);
    w = (w + 1) / 2;
    h = (h + 1) / 2;
    set(4 * level - 3, w, h);
  }
  set(0, w, h);
}

gr_uint64 TG3TestGeometry::totalBlocks() const {
  gr_uint64 total = 0;
  for (const Band& band : m_bands) total += band.numBlocks();
  return total;
}

TG3TestGeometry::Rect TG3TestGeometry::blockRect(gr_uint32 band, gr_uint64 block) const {
  const Band& of = m_bands[band];
  const gr_uint32 left = static_cast<gr_uint32>(block % of.blockColumns) * m_blockSize;
  const gr_uint32 top = static_cast<gr_uint32>(block / of.blockColumns) * m_blockSize;
  return {left, top, std::min(m_blockSize, of.columns - left),
          std::min(m_blockSize, of.rows - top)};
}

gr_uint64 TG3TestGeometry::bandIndex(gr_uint32 band, gr_uint64 block) const {
  gr_uint64 index = block;
  for (gr_uint32 before = 0; before < band; ++before) index += m_bands[before].numBlocks();
  return index;
}

gr_uint64 TG3TestGeometry::pipeIndex(gr_uint32 band, gr_uint64 block) const {
  const gr_uint64 row = block / m_bands[band].blockColumns;
  const gr_uint64 column = block % m_bands[band].blockColumns;
  if (m_numLevels == 0) return block;
  const auto columns = [&](gr_uint64 of) { return gr_uint64{m_bands[of].blockColumns}; };
  const auto rows = [&](gr_uint64 of) { return gr_uint64{m_bands[of].rows}; };
  const auto perRow = [&](gr_uint64 level) {
    gr_uint64 sum = level == 1 ? columns(0) : 0;
    for (gr_uint64 of = 4 * level - 3; of <= 4 * level; ++of) sum += columns(of);
    return sum;
  };
  const gr_uint64 size = m_blockSize;

  // Partial last rows stand behind all complete ones.
  if (row >= rows(band) / size) {
    gr_uint64 index = column;
    for (gr_uint64 of = 0; of < m_bands.size(); ++of) {
      index += rows(of) / size * columns(of);
      if (of < band && rows(of) % size != 0) index += columns(of);
    }
    return index;
  }

  // The complete rows of its own level in front of it,
  const gr_uint64 level = (band + 4 - (band != 0 ? 1 : 0)) / 4;
  const gr_uint64 place = band + 4 - 4 * level;
  gr_uint64 index = row * perRow(level) + column;
  if (level == 1 && band != 0) index += columns(0);
  for (gr_uint64 of = 1; of < place; ++of) index += columns(4 * level - 4 + of);
  // those that the finer levels can make from what was there before,
  const gr_uint64 behind = (row + 1) * size;
  gr_uint64 last = behind - 1;
  if (place > 2 && behind < rows(band - 2)) last = behind;
  gr_uint64 line = last;
  for (gr_uint64 finer = level + 1; finer <= m_numLevels; ++finer) {
    line = std::min(2 * line + 3, rows(4 * finer - 3));
    index += line / size * perRow(finer);
    if (line % size == 0 &&
        (line < rows(4 * finer - 3) || rows(4 * finer - 1) < rows(4 * finer - 3))) {
      index -= columns(4 * finer - 1) + columns(4 * finer);
    }
  }
  // and those of the coarser levels that its own rows need.
  line = last;
  for (gr_uint64 coarser = level - 1; coarser > 0 && line > 2; --coarser) {
    const gr_uint64 needed = (line - 3) / 2;
    index += (needed + 1) / size * perRow(coarser);
    if ((needed + 1) % size == 0) index -= columns(4 * coarser - 1) + columns(4 * coarser);
    line = needed;
  }
  return index;
}
