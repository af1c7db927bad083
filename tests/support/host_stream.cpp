#include "tests/support/host_stream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

/// The nine functions. The user pointer is a Cursor, or null where `duplicate` refused: a stream
/// that can do nothing.
struct HostStream::Callbacks {
  static Cursor& cursorOf(void* user) { return *static_cast<Cursor*>(user); }
  /// How this answer is to be; counts it.
  static HostFault next(void* user) {
    return user == nullptr ? HostFault::REFUSAL : cursorOf(user).host->nextAnswer();
  }

  static gr_int32 open(void* user) {
    if (next(user) == HostFault::REFUSAL) return REFUSED;
    cursorOf(user).isOpen = true;
    ++cursorOf(user).numOpenings;
    cursorOf(user).position = 0;
    return 0;
  }

  // As a file it is closed also where that fails.
  static gr_int32 close(void* user) {
    const HostFault fault = next(user);
    if (user != nullptr) cursorOf(user).isOpen = false;
    return fault == HostFault::REFUSAL ? REFUSED : 0;
  }

  static gr_uint32 read(void* user, gr_uint8* buffer, gr_uint32 length) {
    const HostFault fault = next(user);
    if (fault == HostFault::REFUSAL) return 0;
    Cursor& cursor = cursorOf(user);
    HostStream& host = *cursor.host;
    if (!cursor.isOpen) host.m_wasUsedClosed = true;
    const gr_uint64 size = host.m_bytes.size();
    const gr_uint64 left = size - std::min(cursor.position, size);
    auto count = static_cast<gr_uint32>(std::min<gr_uint64>(length, left));
    if (fault == HostFault::CUT_READ) count /= 2;
    if (count != 0) std::memcpy(buffer, host.m_bytes.data() + cursor.position, count);
    cursor.position += count;
    cursor.isEOF = count < length;
    return fault == HostFault::NONSENSE ? length + 1 : count;
  }

  static gr_uint32 write(void* user, const gr_uint8*, gr_uint32 length) {
    if (user != nullptr) cursorOf(user).host->m_wasWritten = true;
    return length;
  }

  static gr_int32 seek(void* user, gr_int64 offset, gr_int32 origin) {
    const HostFault fault = next(user);
    if (fault == HostFault::REFUSAL) return REFUSED;
    Cursor& cursor = cursorOf(user);
    HostStream& host = *cursor.host;
    if (!cursor.isOpen) host.m_wasUsedClosed = true;
    const auto size = static_cast<gr_int64>(host.m_bytes.size());
    gr_int64 target = 0;
    if (origin == GRIC_SEEK_CURRENT) target = static_cast<gr_int64>(cursor.position);
    if (origin == GRIC_SEEK_END) target = size;
    if (__builtin_add_overflow(target, offset, &target) || target < 0) return REFUSED;
    cursor.position = static_cast<gr_uint64>(fault == HostFault::NONSENSE ? size / 2 : target);
    return 0;
  }

  static gr_int64 tell(void* user) {
    switch (next(user)) {
      case HostFault::REFUSAL:
        return -1;
      case HostFault::NONSENSE:
        return std::numeric_limits<gr_int64>::max();
      default:
        return static_cast<gr_int64>(cursorOf(user).position);
    }
  }

  static gr_uint8 isEOF(void* user) {
    if (next(user) == HostFault::NONSENSE) return 2;
    return user != nullptr && cursorOf(user).isEOF ? 1 : 0;
  }

  static gr_uint8 isOpen(void* user) {
    if (next(user) == HostFault::NONSENSE) return 2;
    return user != nullptr && cursorOf(user).isOpen ? 1 : 0;
  }

  static void* duplicate(void* user) {
    if (next(user) == HostFault::REFUSAL) return nullptr;
    try {
      return cursorOf(user).host->addCursor();
    } catch (const std::bad_alloc&) {
      return nullptr;
    }
  }
};

HostStream::HostStream(std::span<const gr_uint8> bytes) : m_bytes(bytes) {
  using C = Callbacks;
  m_handle = gr_ioCallbackStreamCreate(C::open, C::close, C::read, C::write, C::seek, C::tell,
                                       C::isEOF, C::isOpen, C::duplicate, addCursor());
}

HostStream::~HostStream() { gr_ioCStreamDestroy(m_handle); }

void HostStream::failAt(size_t number, HostFault fault, HostExtent extent) {
  m_numAnswers = 0;
  m_wrongNumber = number;
  m_fault = fault;
  m_extent = extent;
}

HostFault HostStream::nextAnswer() {
  ++m_numAnswers;
  const bool isWrong =
      m_wrongNumber != 0 && (m_numAnswers == m_wrongNumber ||
                             (m_numAnswers > m_wrongNumber && m_extent == HostExtent::ALL_BEHIND));
  return isWrong ? m_fault : HostFault::NONE;
}

HostStream::Cursor* HostStream::addCursor() {
  m_cursors.push_back(std::make_unique<Cursor>(Cursor{.host = this}));
  return m_cursors.back().get();
}

size_t HostStream::numOpen() const {
  return static_cast<size_t>(std::count_if(m_cursors.begin(), m_cursors.end(),
                                           [](const auto& cursor) { return cursor->isOpen; }));
}
