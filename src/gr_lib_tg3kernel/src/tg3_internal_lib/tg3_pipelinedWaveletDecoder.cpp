#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipelinedWaveletDecoder.h"

#include <cassert>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

GR_STATUS PipelinedWaveletDecoder::initialize(const Pipe::Geometry& geometry,
                                              const Samples& samples, TG3RowSource& source) {
  assert(samples.bytes == 1 || samples.bytes == 2);
  m_samples = samples;
  m_columns = geometry.columns.count();
  if (!GR_SUCCESS(m_rows.allocate(geometry.components))) return TG3_STATUS_NO_MEMORY;
  return m_pipe.initialize(geometry, source);
}

GR_STATUS PipelinedWaveletDecoder::decodeRows(gr_uint32 numRows, std::span<void* const> planes,
                                              size_t rowBytes) {
  assert(planes.size() == m_rows.size());
  for (gr_uint32 y = 0; y < numRows; ++y) {
    GR_RETURN_IF_FAILED(m_pipe.next(m_rows.data()));
    for (size_t c = 0; c < planes.size(); ++c) {
      gr_uint8* row = static_cast<gr_uint8*>(planes[c]) + y * rowBytes;
      if (m_samples.bytes == 1) {
        tg3_clampTo8(m_rows[c], m_samples.low, m_samples.high, row, m_columns);
      } else {
        // A plane of 16-bit samples is aligned for them: the caller's type says so.
        void* samples = row;
        tg3_clampTo16(m_rows[c], m_samples.low, m_samples.high, static_cast<gr_uint16*>(samples),
                      m_columns);
      }
    }
  }
  return GR_STATUS_OK;
}
