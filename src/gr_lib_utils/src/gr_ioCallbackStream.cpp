#include "gr_lib_utils/include/gr_ioCallbackStream.h"

#include <bit>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

/// A host's word for "yes"; every other number is "no".
constexpr gr_uint8 CALLBACK_TRUE = 1;

GR_STATUS toStatus(gr_int32 result) { return std::bit_cast<GR_STATUS>(result); }

}  // namespace

GRIOCallbackStream::~GRIOCallbackStream() {
  if (m_callbacks.isOpen != nullptr) static_cast<void>(GRIOCallbackStream::close());
}

GR_STATUS GRIOCallbackStream::initialize(const GRIOCallbacks& callbacks, void* user) {
  m_callbacks = callbacks;
  m_user = user;
  return GR_STATUS_OK;
}

bool GRIOCallbackStream::isEOF() { return m_callbacks.isEOF(m_user) == CALLBACK_TRUE; }

bool GRIOCallbackStream::isOpen() { return m_callbacks.isOpen(m_user) == CALLBACK_TRUE; }

GR_STATUS GRIOCallbackStream::open() {
  return isOpen() ? GR_STATUS_OK : toStatus(m_callbacks.open(m_user));
}

GR_STATUS GRIOCallbackStream::close() {
  return isOpen() ? toStatus(m_callbacks.close(m_user)) : GR_STATUS_OK;
}

gr_uint32 GRIOCallbackStream::read(gr_uint8* buffer, gr_uint32 length) {
  const gr_uint32 count = m_callbacks.read(m_user, buffer, length);
  return count <= length ? count : 0;
}

gr_uint32 GRIOCallbackStream::write(const gr_uint8* buffer, gr_uint32 length) {
  const gr_uint32 count = m_callbacks.write(m_user, buffer, length);
  return count <= length ? count : 0;
}

GR_STATUS GRIOCallbackStream::seek(gr_int64 offset, GRIOSeekDir origin) {
  return toStatus(m_callbacks.seek(m_user, offset, origin));
}

gr_int64 GRIOCallbackStream::tell() { return m_callbacks.tell(m_user); }

GRIOStreamInf* GRIOCallbackStream::duplicate() {
  if (m_callbacks.duplicate == nullptr) return nullptr;
  // Allocated first: when memory runs out the host hasn't made a user pointer that nobody knows.
  auto copy = gr_makeUnique<GRIOCallbackStream>();
  if (copy == nullptr) return nullptr;
  if (!GR_SUCCESS(copy->initialize(m_callbacks, m_callbacks.duplicate(m_user)))) return nullptr;
  return copy.release();
}
