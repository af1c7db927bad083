#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_streamWindow.h"

#include <algorithm>
#include <cstring>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint64 LARGEST_READ = 0x40000000;  // bytes
constexpr gr_uint64 LARGEST_OFFSET = 0x7FFFFFFFFFFFFFFF;

}  // namespace

GR_STATUS TG3StreamWindow::peek(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length,
                                gr_uint8*& bytes, gr_uint64& available) {
  const bool isInside = offset >= m_offset && offset - m_offset <= m_bytes.size() &&
                        length <= m_bytes.size() - (offset - m_offset);
  if (!isInside) GR_RETURN_IF_FAILED(load(stream, offset, length));
  bytes = m_bytes.begin() + (offset - m_offset);
  available = m_bytes.size() - (offset - m_offset);
  return GR_STATUS_OK;
}

GR_STATUS TG3StreamWindow::get(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length,
                               gr_uint8*& bytes) {
  gr_uint64 available = 0;
  GR_RETURN_IF_FAILED(peek(stream, offset, length, bytes, available));
  return available >= length ? GR_STATUS_OK : TG3_STATUS_READ_ERROR;
}

GR_STATUS TG3StreamWindow::load(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length) {
  if (offset > LARGEST_OFFSET) return TG3_STATUS_READ_ERROR;
  gr_uint64 kept = 0;
  if (offset >= m_offset && offset - m_offset < m_bytes.size()) {
    kept = m_bytes.size() - (offset - m_offset);
    if (offset != m_offset) std::memmove(m_bytes.begin(), m_bytes.end() - kept, kept);
  }
  m_bytes.truncate(kept);
  m_offset = offset;

  const gr_uint64 wanted = gr_saturatingAdd(length, m_readAhead);
  // Half as much again, because a subblock asks for more and more of itself.
  const gr_uint64 room = gr_saturatingAdd(wanted, TG3PlaneData::PADDING);
  if (room > m_bytes.room()) {
    if (!GR_SUCCESS(m_bytes.reserve(gr_saturatingAdd(room, room / 2)))) {
      return TG3_STATUS_NO_MEMORY;
    }
  }
  GR_RETURN_IF_FAILED(stream.seek(static_cast<gr_int64>(offset + kept), GRIO_SEEK_BEGIN));
  while (m_bytes.size() < wanted) {
    const gr_uint32 piece = static_cast<gr_uint32>(std::min(wanted - m_bytes.size(), LARGEST_READ));
    const gr_uint32 numRead = stream.read(m_bytes.end(), piece);
    m_bytes.extend(std::min(numRead, piece));
    if (numRead < piece) break;
  }
  std::memset(m_bytes.end(), 0, TG3PlaneData::PADDING);
  return GR_STATUS_OK;
}
