#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_partialMspTable.h"

#include <algorithm>
#include <cassert>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneReader.h"

GR_STATUS TG3PartialMSPTable::add(const TG3PlaneLocation& location) {
  const TG3PlaneDesc& desc = location.desc;
  const gr_uint32 columns = m_info.getSubblockColumns(desc.subband);
  Subband& subband = m_subbands[desc.subband];
  const gr_uint32 key = keyOf(desc.subblock);
  assert(subband.cells.empty() || subband.cells.back().key <= key);
  if (subband.cells.empty() || subband.cells.back().key != key) {
    if (!GR_SUCCESS(subband.cells.append({key, 0}))) return TG3_STATUS_NO_MEMORY;
  }
  subband.cells.back().bits |= 1U << (desc.subblock % CELL_BITS);

  const bool isFirstOfRow =
      subband.rows.empty() || subband.rows.back().subblock / columns != desc.subblock / columns;
  if (!isFirstOfRow) return GR_STATUS_OK;
  const Row row = {location.dataOffset, location.lengthOffset, desc.subblock, desc.component,
                   desc.plane};
  return GR_SUCCESS(subband.rows.append(row)) ? GR_STATUS_OK : TG3_STATUS_NO_MEMORY;
}

bool TG3PartialMSPTable::hasBit(gr_uint32 subband, gr_uint32 subblock) const {
  return hasAny(subband, subblock, subblock);
}

bool TG3PartialMSPTable::hasAny(gr_uint32 subband, gr_uint32 first, gr_uint32 last) const {
  const GRGrowingArray<Cell>& cells = m_subbands[subband].cells;
  const Cell* cell =
      std::lower_bound(cells.begin(), cells.end(), keyOf(first),
                       [](const Cell& candidate, gr_uint32 key) { return candidate.key < key; });
  if (cell != cells.end() && cell->key == keyOf(first)) {
    gr_uint32 bits = cell->bits >> (first % CELL_BITS) << (first % CELL_BITS);
    if (keyOf(last) == keyOf(first)) bits &= ~gr_uint32{0} >> (CELL_BITS - 1 - last % CELL_BITS);
    if (bits != 0) return true;
    ++cell;
  }
  if (cell == cells.end() || cell->key > keyOf(last)) return false;
  if (cell->key < keyOf(last)) return true;
  return (cell->bits & ~gr_uint32{0} >> (CELL_BITS - 1 - last % CELL_BITS)) != 0;
}

const TG3PartialMSPTable::Row* TG3PartialMSPTable::rowOf(gr_uint32 subband,
                                                         gr_uint32 subblock) const {
  const GRGrowingArray<Row>& rows = m_subbands[subband].rows;
  const gr_uint32 columns = m_info.getSubblockColumns(subband);
  const gr_uint32 first = subblock - subblock % columns;
  const Row* const row = std::lower_bound(
      rows.begin(), rows.end(), first,
      [](const Row& candidate, gr_uint32 number) { return candidate.subblock < number; });
  return row != rows.end() && row->subblock - first < columns ? row : nullptr;
}

GR_STATUS TG3PartialMSPTable::lookup(gr_uint32 subband, gr_uint32 subblock,
                                     TG3FilePlaneReader& reader, bool& found,
                                     TG3PlaneLocation& location) const {
  found = false;
  const Row* const row = hasBit(subband, subblock) ? rowOf(subband, subblock) : nullptr;
  if (row == nullptr) return GR_STATUS_OK;

  TG3PlaneLocation candidate;
  candidate.desc = {static_cast<gr_uint8>(subband), row->subblock, row->component, row->plane};
  candidate.dataOffset = row->dataOffset;
  candidate.lengthOffset = row->lengthOffset;
  const TG3PlaneLocation* const memo = reader.getLastWalk();
  if (memo != nullptr && memo->desc.subband == subband && memo->desc.subblock >= row->subblock &&
      memo->desc.subblock <= subblock) {
    candidate = *memo;
  }
  if (candidate.desc.subblock != subblock) {
    GR_RETURN_IF_FAILED(reader.walk(candidate, subblock, found));
    if (!found) return GR_STATUS_OK;
    reader.setLastWalk(candidate);
  }
  found = true;
  location = candidate;
  return GR_STATUS_OK;
}
