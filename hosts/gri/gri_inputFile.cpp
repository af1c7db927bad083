#include "hosts/gri/gri_inputFile.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

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

}  // namespace

GRIInputFile::~GRIInputFile() {
  if (m_descriptor >= 0) ::close(m_descriptor);
}

GRIHostError GRIInputFile::prepare(const std::string& input) {
  if (input != "-") {
    m_path = input;
    return {};
  }
  if (isRegularFile(STDIN_FILENO)) {
    m_path = pathOfDescriptor(STDIN_FILENO);
    return {};
  }
  return gather();
}

GRIHostError GRIInputFile::gather() {
  const auto readError = [] { return GRIHostError{GRI_HOST_STATUS_READ, std::strerror(errno)}; };
  std::string pattern = (gri_temporaryDirectory() / "gri-XXXXXX").string();
  m_descriptor = mkstemp(pattern.data());
  if (m_descriptor < 0) return readError();
  ::unlink(pattern.c_str());
  std::vector<char> buffer(size_t{1} << 18);
  while (!GRIInterrupt::wasRaised()) {
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count == 0) break;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return readError();
    for (ssize_t done = 0; done < count;) {
      const ssize_t written =
          ::write(m_descriptor, buffer.data() + done, static_cast<size_t>(count - done));
      if (written < 0 && errno != EINTR) return readError();
      if (written > 0) done += written;
    }
  }
  m_path = pathOfDescriptor(m_descriptor);
  return {};
}
