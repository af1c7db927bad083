#include "gr_lib_utils/include/gr_ioSubStream.h"

#include <limits>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

/// sum = a + b; false when that passes 64 bits.
bool addOffset(gr_int64 a, gr_int64 b, gr_int64& sum) {
  const bool isTooLarge = b > 0 && a > std::numeric_limits<gr_int64>::max() - b;
  const bool isTooSmall = b < 0 && a < std::numeric_limits<gr_int64>::min() - b;
  if (isTooLarge || isTooSmall) return false;
  sum = a + b;
  return true;
}

}  // namespace

// An owned stream closes itself; one that isn't stays as it is.
GRIOSubStream::~GRIOSubStream() = default;

GR_STATUS GRIOSubStream::initialize(GRIOStreamInf* stream, gr_int64 begin, gr_int64 end,
                                    bool ownsStream) {
  std::unique_ptr<GRIOStreamInf> owned(ownsStream ? stream : nullptr);  // ours from here on
  if (m_stream != nullptr) static_cast<void>(m_stream->close());
  m_stream = nullptr;
  m_owned.reset();
  m_isEOF = false;
  if (stream == nullptr || begin < 0 || end < begin) return GR_STATUS_FAILURE;
  m_stream = stream;
  m_owned = std::move(owned);
  m_begin = begin;
  m_end = end;
  return GR_STATUS_OK;
}

bool GRIOSubStream::isEOF() { return m_isEOF || (m_stream != nullptr && m_stream->isEOF()); }

bool GRIOSubStream::isOpen() { return m_stream != nullptr && m_stream->isOpen(); }

GR_STATUS GRIOSubStream::open() {
  if (m_stream == nullptr) return GRIO_STATUS_NOT_INITIALIZED;
  m_isEOF = false;
  GR_RETURN_IF_FAILED(m_stream->open());
  return m_stream->seek(m_begin, GRIO_SEEK_BEGIN);
}

GR_STATUS GRIOSubStream::close() { return m_stream == nullptr ? GR_STATUS_OK : m_stream->close(); }

gr_uint32 GRIOSubStream::limit(gr_uint32 length) {
  m_isEOF = false;
  const gr_int64 position = m_stream->tell();
  if (position < 0) return 0;
  if (position < m_begin || position >= m_end) {
    m_isEOF = true;
    return 0;
  }
  const gr_int64 left = m_end - position;
  if (length <= left) return length;
  m_isEOF = true;
  return static_cast<gr_uint32>(left);
}

gr_uint32 GRIOSubStream::read(gr_uint8* buffer, gr_uint32 length) {
  if (!isOpen()) return 0;
  const gr_uint32 limited = limit(length);
  return limited == 0 ? 0 : m_stream->read(buffer, limited);
}

gr_uint32 GRIOSubStream::write(const gr_uint8* buffer, gr_uint32 length) {
  if (!isOpen()) return 0;
  const gr_uint32 limited = limit(length);
  return limited == 0 ? 0 : m_stream->write(buffer, limited);
}

GR_STATUS GRIOSubStream::seek(gr_int64 offset, GRIOSeekDir origin) {
  if (!isOpen()) return GRIO_STATUS_INVALID_STATE;
  gr_int64 base = 0;
  switch (origin) {
    case GRIO_SEEK_BEGIN:
      base = m_begin;
      break;
    case GRIO_SEEK_CURRENT:
      base = m_stream->tell();
      break;
    case GRIO_SEEK_END:
      base = m_end;
      break;
    default:
      return GR_STATUS_FAILURE;
  }
  gr_int64 target = 0;
  const bool isInside =
      base >= 0 && addOffset(base, offset, target) && target >= m_begin && target <= m_end;
  if (!isInside) return GR_STATUS_FAILURE;
  m_isEOF = false;
  return m_stream->seek(target, GRIO_SEEK_BEGIN);
}

gr_int64 GRIOSubStream::tell() {
  if (m_stream == nullptr) return -1;
  const gr_int64 position = m_stream->tell();
  return position < 0 ? position : position - m_begin;
}

GRIOStreamInf* GRIOSubStream::duplicate() {
  if (m_stream == nullptr) return nullptr;
  auto copy = gr_makeUnique<GRIOSubStream>();
  if (copy == nullptr || !GR_SUCCESS(copy->initialize(m_stream, m_begin, m_end, false))) {
    return nullptr;
  }
  return copy.release();
}

GR_STATUS GRIOSubStream::getLastError() {
  return m_stream == nullptr ? GR_STATUS_OK : m_stream->getLastError();
}
