#include "gr_lib_utils/include/gr_ioFileStream.h"

#include <sys/stat.h>

#include <array>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_fileUtils.h"
#include "gr_lib_utils/include/gr_status.h"

static_assert(sizeof(off_t) == sizeof(gr_int64), "files are larger than 4 GB");

namespace {

bool isDirectory(FILE* file) {
  struct stat attributes {};
  return ::fstat(::fileno(file), &attributes) == 0 && S_ISDIR(attributes.st_mode);
}

bool toWhence(GRIOSeekDir origin, int& whence) {
  switch (origin) {
    case GRIO_SEEK_BEGIN:
      whence = SEEK_SET;
      return true;
    case GRIO_SEEK_CURRENT:
      whence = SEEK_CUR;
      return true;
    case GRIO_SEEK_END:
      whence = SEEK_END;
      return true;
  }
  return false;
}

}  // namespace

GR_STATUS GRIOFileStream::initialize(const GRFileSpec& path, const char* mode) {
  if (isOpen()) return GRIO_STATUS_INVALID_STATE;
  if (mode == nullptr || std::strlen(mode) >= sizeof(m_mode)) return GRIO_STATUS_INVALID_ARGUMENT;
  try {
    GRFileSpec copy(path);
    const std::string_view text(copy.utf8());
    const std::string_view scheme = text.find("://") == std::string_view::npos ? "file://" : "";
    GRArray<char> id;
    GR_RETURN_IF_FAILED(id.allocate(scheme.size() + text.size() + 1));
    std::memcpy(id.data(), scheme.data(), scheme.size());
    std::memcpy(id.data() + scheme.size(), text.data(), text.size());

    m_path = std::move(copy);
    m_id = std::move(id);
    std::strncpy(m_mode, mode, sizeof(m_mode) - 1);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIOFileStream::open() {
  if (isOpen()) return GR_STATUS_OK;
  if (m_id.empty()) return GRIO_STATUS_NOT_INITIALIZED;
  try {
    m_file.reset(GRFileUtils::fopen(m_path, m_mode));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  // The C library opens a directory as if it were a file, and fails only at the first read.
  if (isOpen() && isDirectory(m_file.get())) m_file.reset();
  if (!isOpen()) return GRI_STATUS_OPEN_ERROR;
  m_lastOperation = Operation::SEEK;
  return GR_STATUS_OK;
}

GR_STATUS GRIOFileStream::close() {
  if (!isOpen()) return GR_STATUS_OK;
  // After fclose the file is gone, also where it failed.
  return std::fclose(m_file.release()) == 0 ? GR_STATUS_OK : GR_STATUS_FAILURE;
}

bool GRIOFileStream::turnTo(Operation operation) {
  const bool needsSeek = m_lastOperation != operation && m_lastOperation != Operation::SEEK;
  if (needsSeek && ::fseeko(m_file.get(), 0, SEEK_CUR) != 0) return false;
  m_lastOperation = operation;
  return true;
}

gr_uint32 GRIOFileStream::read(gr_uint8* buffer, gr_uint32 length) {
  if (!isOpen() || !turnTo(Operation::READ)) return 0;
  return static_cast<gr_uint32>(std::fread(buffer, 1, length, m_file.get()));
}

gr_uint32 GRIOFileStream::write(const gr_uint8* buffer, gr_uint32 length) {
  if (!isOpen() || !turnTo(Operation::WRITE)) return 0;
  return static_cast<gr_uint32>(std::fwrite(buffer, 1, length, m_file.get()));
}

GR_STATUS GRIOFileStream::seek(gr_int64 offset, GRIOSeekDir origin) {
  if (!isOpen()) return GRIO_STATUS_INVALID_STATE;
  int whence = 0;
  if (!toWhence(origin, whence)) return GR_STATUS_FAILURE;
  if (::fseeko(m_file.get(), offset, whence) != 0) return GR_STATUS_FAILURE;
  m_lastOperation = Operation::SEEK;
  return GR_STATUS_OK;
}

gr_int64 GRIOFileStream::tell() { return isOpen() ? ::ftello(m_file.get()) : -1; }

bool GRIOFileStream::isEOF() { return isOpen() && std::feof(m_file.get()) != 0; }

GR_STATUS GRIOFileStream::getLastError() {
  const bool hasFailed = isOpen() && std::ferror(m_file.get()) != 0;
  return hasFailed ? GR_STATUS_FAILURE : GR_STATUS_OK;
}

const char* GRIOFileStream::getID() { return m_id.empty() ? "file://" : m_id.data(); }

GRIOStreamInf* GRIOFileStream::duplicate() {
  auto copy = gr_makeUnique<GRIOFileStream>();
  if (copy == nullptr || !GR_SUCCESS(copy->initialize(m_path, m_mode))) return nullptr;
  return copy.release();
}
