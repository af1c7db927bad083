#include "gr_lib_utils/include/gr_fileUtils.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr size_t CURRENT_DIRECTORY_BYTES = 260;

bool existsVerbatim(const char* path) {
  struct stat attributes {};
  return ::stat(path, &attributes) == 0;
}

/// The name that a path has for the system.
///
/// A path that was joined has backslashes as its separators, but a name of the system may itself
/// contain some. What exists under the very text of the path is that; else its backslashes are
/// read as slashes. For a file that is yet to be made, the directory decides: when it is there
/// with slashes, or, as it stands, up to the last separator, the file goes into it.
class NativePath {
 public:
  enum class Use { EXISTING, CREATING };

  explicit NativePath(const GRFileSpec& path, Use use = Use::EXISTING) : m_path(path) {
    const char* const text = path.utf8();
    if (std::strchr(text, '\\') == nullptr || existsVerbatim(text)) return;
    const GRFileSpec directory = path.parent();
    const size_t kept = use == Use::CREATING && existsVerbatim(directory.utf8())
                            ? std::strlen(directory.utf8())
                            : 0;
    const size_t size = std::strlen(text) + 1;
    GRArray<char> slashed;
    if (!GR_SUCCESS(slashed.allocate(size))) throw GRUtilException(GR_STATUS_NO_MEMORY);
    std::memcpy(slashed.data(), text, size);
    for (size_t i = kept; i < size; ++i) {
      if (slashed[i] == '\\') slashed[i] = '/';
    }
    if (use == Use::CREATING && !existsVerbatim(GRFileSpec(slashed.data()).parent().utf8())) return;
    m_slashed = std::move(slashed);
  }

  const char* get() const { return m_slashed.empty() ? m_path.utf8() : m_slashed.data(); }

 private:
  const GRFileSpec& m_path;
  GRArray<char> m_slashed;  // empty where the path is used as it stands
};

bool getAttributes(const GRFileSpec& path, struct stat& attributes) {
  return ::stat(NativePath(path).get(), &attributes) == 0;
}

NativePath::Use useOf(const char* mode) {
  return mode[0] == 'r' ? NativePath::Use::EXISTING : NativePath::Use::CREATING;
}

struct DirectoryCloser {
  void operator()(DIR* directory) const { static_cast<void>(::closedir(directory)); }
};

std::vector<std::string> namesIn(const char* path) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir(path));
  if (directory == nullptr) return names;
  while (const dirent* entry = ::readdir(directory.get())) {
    const std::string name = static_cast<const char*>(entry->d_name);
    if (name != "." && name != "..") names.push_back(name);
  }
  return names;
}

const char* temporaryDirectory() {
  for (const char* variable : {"TMPDIR", "TEMP"}) {
    if (const char* directory = std::getenv(variable)) return directory;
  }
  return "/tmp";
}

}  // namespace

bool GRFileUtils::fileExists(const GRFileSpec& path) {
  struct stat attributes {};
  return getAttributes(path, attributes);
}

bool GRFileUtils::isDirectory(const GRFileSpec& path) {
  struct stat attributes {};
  return getAttributes(path, attributes) && S_ISDIR(attributes.st_mode);
}

FILE* GRFileUtils::fopen(const GRFileSpec& path, const char* mode) {
  return std::fopen(NativePath(path, useOf(mode)).get(), mode);
}

FILE* GRFileUtils::freopen(const GRFileSpec& path, const char* mode, FILE* file) {
  return std::freopen(NativePath(path, useOf(mode)).get(), mode, file);
}

GR_STATUS GRFileUtils::remove(const GRFileSpec& path) {
  return ::unlink(NativePath(path).get()) == 0 ? GR_STATUS_OK : GR_STATUS_DELETE;
}

GR_STATUS GRFileUtils::removeDirectory(const GRFileSpec& path) {
  return ::rmdir(NativePath(path).get()) == 0 ? GR_STATUS_OK : GR_STATUS_DELETE;
}

GR_STATUS GRFileUtils::createDirectory(const GRFileSpec& path) {
  const NativePath name(path, NativePath::Use::CREATING);
  return ::mkdir(name.get(), 0777) == 0 ? GR_STATUS_OK : GR_STATUS_CREATEDIR;
}

GR_STATUS GRFileUtils::move(const GRFileSpec& from, const GRFileSpec& to) {
  const NativePath source(from);
  const NativePath target(to, NativePath::Use::CREATING);
  return std::rename(source.get(), target.get()) == 0 ? GR_STATUS_OK : GR_STATUS_MOVE;
}

GR_STATUS GRFileUtils::copy(const GRFileSpec& from, const GRFileSpec& to) {
  struct stat source {};
  struct stat target {};
  if (!getAttributes(from, source)) return GR_STATUS_FAILURE;
  // To open a file for writing empties it, which mustn't happen to the one that is read.
  const bool isSameFile =
      getAttributes(to, target) && source.st_dev == target.st_dev && source.st_ino == target.st_ino;
  if (isSameFile) return GR_STATUS_FAILURE;
  const auto stream = GRIOStreamUtils::openReadStream(from);
  return stream == nullptr ? GRI_STATUS_OPEN_ERROR : GRIOStreamUtils::copyToFile(*stream, to);
}

gr_uint64 GRFileUtils::getFileSize(const GRFileSpec& path) {
  struct stat attributes {};
  if (!getAttributes(path, attributes) || attributes.st_size < 0) return 0;
  return static_cast<gr_uint64>(attributes.st_size);
}

gr_uint32 GRFileUtils::getFileTime(const GRFileSpec& path) {
  struct stat attributes {};
  if (!getAttributes(path, attributes) || attributes.st_mtime < 0) return 0;
  constexpr gr_int64 LAST = std::numeric_limits<gr_uint32>::max();
  const gr_int64 seconds = attributes.st_mtime;
  return static_cast<gr_uint32>(seconds < LAST ? seconds : LAST);
}

gr_uint32 GRFileUtils::fileTimeToUnix(gr_uint64 fileTime) {
  constexpr gr_uint64 UNIX_EPOCH = 0x19DB1DED53E8000;  // 1970 in units of 100 ns since 1601
  constexpr gr_uint64 UNITS_PER_SECOND = 10000000;
  constexpr gr_uint64 LAST = std::numeric_limits<gr_uint32>::max();
  if (fileTime < UNIX_EPOCH) return 0;
  const gr_uint64 seconds = (fileTime - UNIX_EPOCH) / UNITS_PER_SECOND;
  return static_cast<gr_uint32>(seconds < LAST ? seconds : LAST);
}

std::vector<std::string> GRFileUtils::listDirectory(const GRFileSpec& path) {
  const NativePath name(path);
  try {
    return namesIn(name.get());
  } catch (const std::bad_alloc&) {
    throw GRUtilException(GR_STATUS_NO_MEMORY);
  }
}

GRFileSpec GRFileUtils::getCurrentDirectory() {
  std::array<char, CURRENT_DIRECTORY_BYTES> buffer{};
  if (::getcwd(buffer.data(), buffer.size()) == nullptr) return {};
  return GRFileSpec(buffer.data());
}

GR_STATUS GRFileUtils::makeTempFile(const GRFileSpec& directory, const char* prefix,
                                    GRFileSpec& path) {
  try {
    const GRFileSpec parent = directory.isEmpty() ? GRFileSpec(temporaryDirectory()) : directory;
    if (!isDirectory(parent)) return GR_STATUS_TEMPNAM;
    const GRFileSpec stem(parent, prefix == nullptr ? "gri" : prefix);
    const NativePath name(stem, NativePath::Use::CREATING);
    constexpr std::string_view RANDOM = "XXXXXX";
    const size_t length = std::strlen(name.get());
    GRArray<char> pattern;
    GR_RETURN_IF_FAILED(pattern.allocate(length + RANDOM.size() + 1));
    std::memcpy(pattern.data(), name.get(), length);
    std::memcpy(pattern.data() + length, RANDOM.data(), RANDOM.size());
    const int file = ::mkstemp(pattern.data());
    if (file < 0) return GR_STATUS_TEMPNAM;
    static_cast<void>(::close(file));
    path = GRFileSpec(pattern.data());
    return GR_STATUS_OK;
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}
