#include "gr_lib_utils/include/gr_stdioStream.h"

#include <limits>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS GRSTDIOStream::initialize(FILE* file) {
  if (file == nullptr) return GR_STATUS_FAILURE;
  m_file = file;
  return GR_STATUS_OK;
}

bool GRSTDIOStream::isEOF() { return isOpen() && std::feof(m_file) != 0; }

GR_STATUS GRSTDIOStream::open() { return isOpen() ? GR_STATUS_OK : GR_STATUS_FAILURE; }

gr_uint32 GRSTDIOStream::read(gr_uint8* buffer, gr_uint32 length) {
  return isOpen() ? static_cast<gr_uint32>(std::fread(buffer, 1, length, m_file)) : 0;
}

gr_uint32 GRSTDIOStream::write(const gr_uint8* buffer, gr_uint32 length) {
  return isOpen() ? static_cast<gr_uint32>(std::fwrite(buffer, 1, length, m_file)) : 0;
}

GR_STATUS GRSTDIOStream::seek(gr_int64 offset, GRIOSeekDir origin) {
  const bool fits = offset >= std::numeric_limits<gr_int32>::min() &&
                    offset <= std::numeric_limits<gr_int32>::max();
  if (!isOpen() || !fits) return GR_STATUS_FAILURE;
  int whence = SEEK_SET;
  switch (origin) {
    case GRIO_SEEK_BEGIN:
      break;
    case GRIO_SEEK_CURRENT:
      whence = SEEK_CUR;
      break;
    case GRIO_SEEK_END:
      whence = SEEK_END;
      break;
    default:
      return GR_STATUS_FAILURE;
  }
  const bool hasMoved = std::fseek(m_file, static_cast<long>(offset), whence) == 0;
  return hasMoved ? GR_STATUS_OK : GR_STATUS_FAILURE;
}

gr_int64 GRSTDIOStream::tell() { return isOpen() ? std::ftell(m_file) : -1; }

GRIOStreamInf* GRSTDIOStream::duplicate() {
  auto copy = gr_makeUnique<GRSTDIOStream>();
  if (copy == nullptr || !GR_SUCCESS(copy->initialize(m_file))) return nullptr;
  return copy.release();
}

GR_STATUS GRSTDIOStream::getLastError() {
  return isOpen() && std::ferror(m_file) != 0 ? GR_STATUS_FAILURE : GR_STATUS_OK;
}
