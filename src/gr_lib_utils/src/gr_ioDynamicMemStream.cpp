#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint64 MAX_BYTES = 0x7FFFFFFF;
constexpr double MAX_ALLOCATION = 4294967296.0;  // bytes

}  // namespace

GR_STATUS GRIODynamicMemStream::initialize(gr_uint32 initialSize, float growth) {
  return initialize(initialSize, gr_allocBytes, gr_reallocBytes, gr_freeBytes, growth);
}

GR_STATUS GRIODynamicMemStream::initialize(gr_uint32 initialSize, GRIOAllocFunction allocFunc,
                                           GRIOReallocFunction reallocFunc,
                                           GRIOFreeFunction freeFunc, float growth) {
  if (m_isOpen) return GRIO_STATUS_INVALID_STATE;
  if (!(growth >= 1.0F && growth <= 2.0F)) return GRIO_STATUS_INVALID_ARGUMENT;
  assert(m_data == nullptr);
  // An allocation of nothing may give null, which isn't a failure.
  const gr_uint64 bytes = std::max<gr_uint64>(initialSize, 1);
  std::unique_ptr<gr_uint8, Deleter> data(static_cast<gr_uint8*>(allocFunc(bytes)),
                                          Deleter(freeFunc));
  if (data == nullptr) return GRIO_STATUS_NO_MEMORY;
  m_data = std::move(data);
  m_allocated = bytes;
  m_size = 0;
  m_alloc = allocFunc;
  m_realloc = reallocFunc;
  m_growth = growth;
  return GR_STATUS_OK;
}

GR_STATUS GRIODynamicMemStream::open() {
  if (m_isOpen) return GR_STATUS_OK;
  if (m_data == nullptr) return GRIO_STATUS_NOT_INITIALIZED;
  m_isOpen = true;
  m_position = 0;
  m_isEOF = false;
  return GR_STATUS_OK;
}

GR_STATUS GRIODynamicMemStream::close() {
  m_isOpen = false;
  m_position = NO_POSITION;
  return GR_STATUS_OK;
}

gr_uint32 GRIODynamicMemStream::read(gr_uint8* buffer, gr_uint32 length) {
  m_lastError = GR_STATUS_FAILURE;
  if (!m_isOpen) return 0;
  if (m_position >= m_size) {
    m_position = m_size;
    m_isEOF = true;
    return 0;
  }
  const auto position = static_cast<gr_uint32>(m_position);
  const gr_uint32 count = std::min(length, m_size - position);
  std::memcpy(buffer, m_data.get() + position, count);
  m_position += count;
  m_isEOF = count < length;
  return count;
}

gr_uint32 GRIODynamicMemStream::write(const gr_uint8* buffer, gr_uint32 length) {
  if (!m_isOpen) return 0;
  // A position before the begin is held as one far behind the end.
  if (m_position > MAX_BYTES || !grow(m_position + length)) {
    m_lastError = GRIO_STATUS_NO_MEMORY;
    return 0;
  }
  const auto position = static_cast<gr_uint32>(m_position);
  if (position > m_size) std::memset(m_data.get() + m_size, 0, position - m_size);
  if (length > 0) std::memcpy(m_data.get() + position, buffer, length);
  m_position += length;
  m_size = std::max(m_size, position + length);
  return length;
}

bool GRIODynamicMemStream::grow(gr_uint64 end) {
  if (end > MAX_BYTES) return false;
  if (end <= m_allocated) return true;
  const double grown = std::min(static_cast<double>(m_allocated) * m_growth, MAX_ALLOCATION);
  const gr_uint64 bytes = std::max(end, static_cast<gr_uint64>(grown));
  const Deleter deleter = m_data.get_deleter();
  gr_uint8* const old = m_data.release();
  auto* const data = static_cast<gr_uint8*>(m_realloc(old, bytes));
  // Where realloc fails the old block stays.
  m_data = std::unique_ptr<gr_uint8, Deleter>(data == nullptr ? old : data, deleter);
  if (data == nullptr) return false;
  m_allocated = bytes;
  return true;
}

GR_STATUS GRIODynamicMemStream::seek(gr_int64 offset, GRIOSeekDir origin) {
  if (!m_isOpen) return GRIO_STATUS_INVALID_STATE;
  if (offset < std::numeric_limits<gr_int32>::min() ||
      offset > std::numeric_limits<gr_int32>::max()) {
    return GRIO_STATUS_INVALID_ARGUMENT;
  }
  gr_uint64 base = 0;
  switch (origin) {
    case GRIO_SEEK_BEGIN:
      break;
    case GRIO_SEEK_CURRENT:
      base = m_position;
      break;
    case GRIO_SEEK_END:
      base = m_size;
      break;
    default:
      return GR_STATUS_FAILURE;
  }
  const gr_uint64 target = base + static_cast<gr_uint64>(offset);
  if (target == NO_POSITION) return GR_STATUS_FAILURE;
  m_position = target;
  m_isEOF = false;
  return GR_STATUS_OK;
}

gr_int64 GRIODynamicMemStream::tell() {
  m_lastError = GR_STATUS_FAILURE;
  return static_cast<gr_int64>(m_position);
}

GRIOStreamInf* GRIODynamicMemStream::duplicate() {
  if (m_data == nullptr) return nullptr;
  auto copy = gr_makeUnique<GRIODynamicMemStream>();
  if (copy == nullptr) return nullptr;
  const GR_STATUS status =
      copy->initialize(m_size, m_alloc, m_realloc, m_data.get_deleter().giveBack, m_growth);
  if (!GR_SUCCESS(status)) return nullptr;
  std::memcpy(copy->m_data.get(), m_data.get(), m_size);
  copy->m_size = m_size;
  return copy.release();
}
