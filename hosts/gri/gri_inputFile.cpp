#include "hosts/gri/gri_inputFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "hosts/common/gri_hostFormat.h"
#include "hosts/gri/gri_interrupt.h"
#include "hosts/gri/gri_outputFile.h"

namespace {

std::string pathOfDescriptor(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}

bool isRegularFile(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool isPipe(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

}  // namespace

GRIInputFile::~GRIInputFile() {
  if (m_descriptor >= 0) ::close(m_descriptor);
}

GRIHostError GRIInputFile::prepare(const std::string& input) {
  if (input != "-") {
    m_path = input;
    return isPipe(input) ? gatherFrom(input) : GRIHostError();
  }
  if (isRegularFile(STDIN_FILENO)) {
    m_path = pathOfDescriptor(STDIN_FILENO);
    return {};
  }
  return gather(STDIN_FILENO);
}

GRIHostError GRIInputFile::gatherFrom(const std::string& pipe) {
  // Waits for somebody who writes into it.
  const int source = ::open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
  if (source < 0) return {GRI_HOST_STATUS_OPEN, std::strerror(errno)};
  GRIHostError error = gather(source);
  ::close(source);
  return error;
}

GRIHostError GRIInputFile::gather(int source) {
  const auto readError = [] { return GRIHostError{GRI_HOST_STATUS_READ, std::strerror(errno)}; };
  std::string pattern = (gri_temporaryDirectory() / "gri-XXXXXX").string();
  m_descriptor = mkstemp(pattern.data());
  if (m_descriptor < 0) return readError();
  ::unlink(pattern.c_str());
  std::vector<char> buffer(size_t{1} << 18);
  std::vector<gr_uint8> head;
  while (!GRIInterrupt::wasRaised()) {
    const ssize_t count = ::read(source, buffer.data(), buffer.size());
    if (count == 0) break;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return readError();
    for (ssize_t done = 0; done < count;) {
      const ssize_t written =
          ::write(m_descriptor, buffer.data() + done, static_cast<size_t>(count - done));
      if (written < 0 && errno != EINTR) return readError();
      if (written > 0) done += written;
    }
    if (head.size() == GRI_HOST_HEAD_BYTES) continue;
    const size_t missing = GRI_HOST_HEAD_BYTES - head.size();
    head.insert(head.end(), buffer.begin(),
                buffer.begin() + std::min(count, static_cast<ssize_t>(missing)));
    const bool isHead = head.size() == GRI_HOST_HEAD_BYTES;
    if (isHead && gri_hostIdentify(head).format == GRIHostFormat::UNKNOWN) break;
  }
  m_path = pathOfDescriptor(m_descriptor);
  return {};
}
