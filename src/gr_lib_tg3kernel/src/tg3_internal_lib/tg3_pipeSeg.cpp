#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipeSeg.h"

#include <algorithm>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

GR_STATUS PipeSeg::initialize(const Geometry& geometry, TG3RowSource& source, PipeSeg* below) {
  m_geometry = geometry;
  m_source = &source;
  m_below = below;

  // An output column x takes E[x / 2] when it's even, and E at both sides when it's odd.
  const gr_uint32 evenColumns = (geometry.width + 1) / 2;
  const gr_uint32 oddColumns = geometry.width / 2;
  m_low.first = geometry.columns.first / 2;
  m_low.last = std::min((geometry.columns.last + 1) / 2, evenColumns - 1);
  // E[j] takes the high-pass values j - 1 and j; O[j] takes j. A high half holds m_low.first - 1
  // to m_low.last, of which those at the edges of the image are mirrored.
  if (oddColumns > 0) {
    m_high.first = m_low.first > 0 ? m_low.first - 1 : 0;
    m_high.last = std::min(m_low.last, oddColumns - 1);
    m_highCount = m_high.count();
    m_highOffset = m_low.first > 0 ? 0 : 1;
  }
  m_evenRows = (geometry.height + 1) / 2;
  m_oddRows = geometry.height / 2;
  m_row = firstLowRow();

  const size_t low = m_low.count();
  const size_t high = low + 1;
  for (BandRow* row : {&m_lowRow, &m_correction, &m_highX, &m_highY, &m_highXY}) {
    if (!GR_SUCCESS(row->allocate(geometry.components))) return TG3_STATUS_NO_MEMORY;
  }
  if (!GR_SUCCESS(m_zeros.allocate(high)) || !GR_SUCCESS(m_even.allocate(high)) ||
      !GR_SUCCESS(m_rows.allocate(geometry.components))) {
    return TG3_STATUS_NO_MEMORY;
  }
  for (WorkRows& rows : m_rows) {
    // The high-pass rows of a level without any must be zero, and so must the mirrored columns of
    // a level one column wide.
    if (!GR_SUCCESS(rows.storage.allocate(low + 3 * (low + high) + 2 * low))) {
      return TG3_STATUS_NO_MEMORY;
    }
    gr_int32* next = rows.storage.data();
    const auto take = [&next](size_t count) { return std::exchange(next, next + count); };
    rows.lowSum = take(low);
    for (gr_int32** half : {rows.heldHigh, rows.heldEven, rows.odd}) {
      half[LOW_HALF] = take(low);
      half[HIGH_HALF] = take(high);
    }
    rows.out = take(2 * low);
  }
  return GR_STATUS_OK;
}

GR_STATUS PipeSeg::next(const gr_int32** rows) {
  if (!m_primed) {
    GR_RETURN_IF_FAILED(prime());
    m_primed = true;
  }
  while (!m_oddPending && !m_evenPending) {
    if (m_row < m_evenRows) {
      GR_RETURN_IF_FAILED(step());
    } else if (m_row == m_evenRows && m_oddRows == m_evenRows) {
      stepLastOdd();
    } else {
      return TG3_STATUS_BAD_ARGUMENT;
    }
  }
  bool& pending = m_oddPending ? m_oddPending : m_evenPending;
  emit(m_oddPending, rows);
  pending = false;
  return GR_STATUS_OK;
}

/// Loads the high-pass row above the first low-pass row; at the top edge, the mirrored one.
GR_STATUS PipeSeg::prime() {
  if (m_oddRows == 0) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(readHighRows(m_row > 0 ? m_row - 1 : 0));
  for (gr_uint32 c = 0; c < m_geometry.components; ++c) {
    WorkRows& rows = m_rows[c];
    std::copy_n(orZeros(m_highY[c]), m_low.count(), rows.heldHigh[LOW_HALF]);
    std::copy_n(orZeros(m_highXY[c]), m_highCount, rows.heldHigh[HIGH_HALF] + m_highOffset);
  }
  return GR_STATUS_OK;
}

GR_STATUS PipeSeg::readHighRows(gr_uint32 row) {
  const gr_uint32 band = 4 * m_geometry.level;
  GR_RETURN_IF_FAILED(m_source->getRow(band - 1, row, m_low.first, m_low.last, m_highY.data()));
  if (m_highCount == 0) return GR_STATUS_OK;
  return m_source->getRow(band, row, m_high.first, m_high.last, m_highXY.data());
}

GR_STATUS PipeSeg::step() {
  const gr_uint32 band = 4 * m_geometry.level;
  if (m_below != nullptr) {
    GR_RETURN_IF_FAILED(m_below->next(m_lowRow.data()));
  } else {
    GR_RETURN_IF_FAILED(m_source->getRow(0, m_row, m_low.first, m_low.last, m_lowRow.data()));
  }
  GR_RETURN_IF_FAILED(
      m_source->getRow(band - 3, m_row, m_low.first, m_low.last, m_correction.data()));
  if (m_highCount > 0) {
    GR_RETURN_IF_FAILED(
        m_source->getRow(band - 2, m_row, m_high.first, m_high.last, m_highX.data()));
  }
  // Mirrored: at the top the row above is this one, which prime() has read; at the bottom of an
  // odd height this one is the row above. Either way it is what's held.
  const bool mirrored = m_row == 0 || m_row >= m_oddRows;
  if (!mirrored) GR_RETURN_IF_FAILED(readHighRows(m_row));

  const size_t low = m_low.count();
  for (gr_uint32 c = 0; c < m_geometry.components; ++c) {
    WorkRows& rows = m_rows[c];
    const gr_int32* lowRow = orZeros(m_lowRow[c]);
    if (m_correction[c] != nullptr) {
      tg3_addRows(lowRow, m_correction[c], rows.lowSum, low);
      lowRow = rows.lowSum;
    }
    tg3_lift53Vertical(lowRow, mirrored ? rows.heldHigh[LOW_HALF] : orZeros(m_highY[c]),
                       rows.heldHigh[LOW_HALF], rows.heldEven[LOW_HALF], rows.odd[LOW_HALF], low);
    gr_int32* heldHigh = rows.heldHigh[HIGH_HALF] + m_highOffset;
    tg3_lift53Vertical(orZeros(m_highX[c]), mirrored ? heldHigh : orZeros(m_highXY[c]), heldHigh,
                       rows.heldEven[HIGH_HALF] + m_highOffset, rows.odd[HIGH_HALF] + m_highOffset,
                       m_highCount);
  }
  // The first step only makes E: there is no row above whose O it could finish. E itself isn't
  // wanted where the window begins with an odd row.
  m_oddPending = m_started;
  m_evenPending = m_started || m_geometry.firstRow % 2 == 0;
  m_started = true;
  ++m_row;
  return GR_STATUS_OK;
}

/// The bottom row of an even height.
void PipeSeg::stepLastOdd() {
  for (WorkRows& rows : m_rows) {
    tg3_lift53LastOdd(rows.heldHigh[LOW_HALF], rows.heldEven[LOW_HALF], rows.odd[LOW_HALF],
                      m_low.count());
    tg3_lift53LastOdd(rows.heldHigh[HIGH_HALF] + m_highOffset,
                      rows.heldEven[HIGH_HALF] + m_highOffset, rows.odd[HIGH_HALF] + m_highOffset,
                      m_highCount);
  }
  m_oddPending = true;
  ++m_row;
}

void PipeSeg::mirrorEdges(gr_int32* highHalf) const {
  if (m_highCount == 0) return;
  if (m_highOffset == 1) highHalf[0] = highHalf[1];
  if (m_high.last < m_low.last) {
    const size_t end = m_highOffset + m_highCount;
    highHalf[end] = highHalf[end - 1];
  }
}

void PipeSeg::emit(bool odd, const gr_int32** rows) {
  for (gr_uint32 c = 0; c < m_geometry.components; ++c) {
    WorkRows& work = m_rows[c];
    gr_int32* const* halves = odd ? work.odd : work.heldEven;
    mirrorEdges(halves[HIGH_HALF]);
    tg3_lift53Horizontal(halves[LOW_HALF], halves[HIGH_HALF] + 1, m_even.data(), work.out,
                         m_low.count());
    rows[c] = work.out + (m_geometry.columns.first - 2 * m_low.first);
  }
}
