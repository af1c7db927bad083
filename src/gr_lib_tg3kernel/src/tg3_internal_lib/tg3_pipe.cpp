#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipe.h"

#include <algorithm>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

namespace {

bool isInside(const TG3Range& range, gr_uint32 size) {
  return range.first <= range.last && range.last < size;
}

}  // namespace

GR_STATUS Pipe::initialize(const Geometry& geometry, TG3RowSource& source) {
  if (!isInside(geometry.columns, geometry.width) || !isInside(geometry.rows, geometry.height) ||
      geometry.levels > MOST_LEVELS || geometry.components == 0) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  if (geometry.levels == 0 && (geometry.width < 3 || geometry.height < 3)) {
    return TG3_STATUS_NO_MEMORY;
  }
  m_geometry = geometry;
  m_source = &source;
  m_row = geometry.rows.first;

  PipeSeg::Geometry level{.level = geometry.levels,
                          .width = geometry.width,
                          .height = geometry.height,
                          .components = geometry.components,
                          .columns = geometry.columns,
                          .firstRow = geometry.rows.first};
  if (!GR_SUCCESS(m_segments.allocate(geometry.levels))) return TG3_STATUS_NO_MEMORY;
  for (; level.level > 0; --level.level) {
    PipeSeg& segment = m_segments[level.level - 1];
    PipeSeg* below = level.level > 1 ? &m_segments[level.level - 2] : nullptr;
    GR_RETURN_IF_FAILED(segment.initialize(level, source, below));
    level.width = (level.width + 1) / 2;
    level.height = (level.height + 1) / 2;
    level.columns = segment.lowColumns();
    level.firstRow = segment.firstLowRow();
  }
  const gr_uint64 samples = gr_uint64{geometry.components} * geometry.columns.count();
  if (!GR_SUCCESS(m_overflow.allocate(geometry.components)) ||
      !GR_SUCCESS(m_sums.allocate(samples))) {
    return TG3_STATUS_NO_MEMORY;
  }
  return GR_STATUS_OK;
}

GR_STATUS Pipe::next(const gr_int32** rows) {
  if (m_row > m_geometry.rows.last) return TG3_STATUS_BAD_ARGUMENT;
  if (m_segments.empty()) {
    GR_RETURN_IF_FAILED(lowPassRow(rows));
  } else {
    GR_RETURN_IF_FAILED(m_segments[m_segments.size() - 1].next(rows));
  }
  // What a reduced image lacks of the full one's low-pass values is coded apart.
  if (m_geometry.scale > 0) GR_RETURN_IF_FAILED(addOverflow(rows));
  ++m_row;
  return GR_STATUS_OK;
}

/// Without levels to synthesize the low-pass band is the image.
GR_STATUS Pipe::lowPassRow(const gr_int32** rows) {
  GR_RETURN_IF_FAILED(
      m_source->getRow(0, m_row, m_geometry.columns.first, m_geometry.columns.last, rows));
  for (gr_uint32 c = 0; c < m_geometry.components; ++c) {
    if (rows[c] != nullptr) continue;
    const size_t width = m_geometry.columns.count();
    gr_int32* zeros = m_sums.data() + c * width;
    std::fill_n(zeros, width, 0);
    rows[c] = zeros;
  }
  return GR_STATUS_OK;
}

GR_STATUS Pipe::addOverflow(const gr_int32** rows) {
  GR_RETURN_IF_FAILED(m_source->getRow(4 * m_geometry.levels + 1, m_row, m_geometry.columns.first,
                                       m_geometry.columns.last, m_overflow.data()));
  const size_t width = m_geometry.columns.count();
  for (gr_uint32 c = 0; c < m_geometry.components; ++c) {
    if (m_overflow[c] == nullptr) continue;
    gr_int32* sum = m_sums.data() + c * width;
    tg3_addRows(rows[c], m_overflow[c], sum, width);
    rows[c] = sum;
  }
  return GR_STATUS_OK;
}
