#include "hosts/gri/gri_outputFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <system_error>
#include <vector>

#include "hosts/gri/gri_interrupt.h"

namespace fs = std::filesystem;

namespace {

GRIHostError writeError(const std::string& reason) { return {GRI_HOST_STATUS_WRITE, reason}; }
GRIHostError systemError() { return writeError(std::strerror(errno)); }

/// Writes all of the bytes; false with errno set when that fails.
bool writeAll(int descriptor, const char* bytes, size_t count) {
  while (count > 0) {
    const ssize_t written = ::write(descriptor, bytes, count);
    if (written < 0) {
      if (errno == EINTR && !GRIInterrupt::wasRaised()) continue;
      return false;
    }
    bytes += written;
    count -= static_cast<size_t>(written);
  }
  return true;
}

/// A file descriptor that is closed in the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : m_number(number) {}
  ~Descriptor() {
    if (m_number >= 0) ::close(m_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return m_number; }

 private:
  int m_number;
};

/// Whether a path ends with the name of a file, rather than with a directory.
bool isNamed(const fs::path& path) {
  const fs::path name = path.filename();
  return !name.empty() && name != "." && name != "..";
}

/// The path behind symbolic links, also where they lead to nothing yet; empty when they don't end.
fs::path followLinks(fs::path path) {
  constexpr int MOST_LINKS = 40;  // as many as the kernel follows
  std::error_code failed;
  for (int i = 0; i <= MOST_LINKS; ++i) {
    if (!fs::is_symlink(fs::symlink_status(path, failed))) return path;
    path = path.parent_path() / fs::read_symlink(path, failed);  // stays itself if it is absolute
  }
  return {};
}

}  // namespace

bool gri_isSameFile(const std::string& one, const std::string& other) {
  std::error_code failed;
  return fs::equivalent(one, other, failed) && !failed;
}

fs::path gri_temporaryDirectory() {
  std::error_code failed;
  fs::path directory = fs::temp_directory_path(failed);
  return failed ? fs::path("/tmp") : directory;
}

GRIOutputFile::~GRIOutputFile() { removeDirectory(); }

void GRIOutputFile::removeDirectory() {
  if (m_directory.empty()) return;
  std::error_code ignored;
  fs::remove_all(m_directory, ignored);
  m_directory.clear();
  GRIInterrupt::setLitter("");
}

GRIHostError GRIOutputFile::prepare(const std::string& output, bool force) {
  m_output = output;
  m_force = force;
  std::error_code failed;
  const fs::file_status status = fs::status(output, failed);
  if (fs::is_directory(status)) return writeError("Is a directory");
  m_isCopied = output == "-" || (fs::exists(status) && !fs::is_regular_file(status));
  if (!m_isCopied && fs::exists(status) && !force) {
    return writeError("the file exists; --force replaces it");
  }
  fs::path beside = gri_temporaryDirectory();
  m_target = output;
  if (!m_isCopied) {
    // What a link points to is replaced, not the link.
    const fs::path followed = followLinks(output);
    if (followed.empty() && !output.empty()) return writeError(std::strerror(ELOOP));
    if (!isNamed(followed)) return writeError(std::strerror(ENOENT));
    m_target = fs::weakly_canonical(followed, failed);
    if (failed) m_target = fs::absolute(followed);
    beside = m_target.parent_path();
  }
  std::string pattern = (beside / ".gri-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) return systemError();
  m_directory = pattern;
  GRIInterrupt::setLitter(pattern);
  m_path = m_directory / (output == "-" ? "picture" : m_target.filename());
  return {};
}

std::string GRIOutputFile::withoutPlace(std::string text) const {
  if (m_directory.empty()) return text;
  const std::string place = (m_directory / "").string();
  for (size_t at = text.find(place); at != std::string::npos; at = text.find(place, at)) {
    text.erase(at, place.size());
  }
  return text;
}

GRIHostError GRIOutputFile::commit() {
  GRIHostError error;
  std::error_code failed;
  const auto written = std::distance(fs::directory_iterator(m_directory, failed), {});
  if (written == 0 || failed) {
    error = writeError("this format writes no file");
  } else if (m_isCopied && written > 1) {
    error = writeError("this format writes several files, and here is room for one");
  } else if (!m_isCopied) {
    error = moveIntoPlace();
  } else if (m_output == "-") {
    error = copyTo(STDOUT_FILENO);
  } else {
    const Descriptor target(::open(m_output.c_str(), O_WRONLY | O_CLOEXEC));
    error = target.get() < 0 ? systemError() : copyTo(target.get());
  }
  removeDirectory();
  return error;
}

GRIHostError GRIOutputFile::moveIntoPlace() {
  std::error_code failed;
  std::vector<fs::path> written;
  for (const auto& entry : fs::directory_iterator(m_directory, failed)) {
    written.push_back(entry.path());
  }
  if (failed) return writeError(failed.message());
  // The picture itself comes last: when it is there, all is there.
  std::stable_partition(written.begin(), written.end(),
                        [&](const fs::path& path) { return path != m_path; });
  for (const fs::path& path : written) {
    const fs::path place = m_target.parent_path() / path.filename();
    if (!m_force && fs::exists(place, failed)) {
      return writeError(place.filename().string() + " exists beside it; --force replaces it");
    }
  }
  for (const fs::path& path : written) {
    fs::rename(path, m_target.parent_path() / path.filename(), failed);
    if (failed) return writeError(failed.message());
  }
  return {};
}

GRIHostError GRIOutputFile::copyTo(int descriptor) const {
  const Descriptor source(::open(m_path.c_str(), O_RDONLY | O_CLOEXEC));
  if (source.get() < 0) return systemError();
  std::vector<char> buffer(size_t{1} << 18);
  while (true) {
    const ssize_t count = ::read(source.get(), buffer.data(), buffer.size());
    if (count == 0) return {};
    if (count < 0 || !writeAll(descriptor, buffer.data(), static_cast<size_t>(count))) {
      return systemError();
    }
  }
}
