#include "hosts/gri/gri_interrupt.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace {

volatile std::sig_atomic_t raisedSignal = 0;

constexpr int EXIT_OF_SIGNALS = 128;

std::array<char, 4096> litter{};  // with a zero at its end; empty for none
volatile std::sig_atomic_t isLitter = 0;

/// Removes a directory and the files in it. Unlike readdir and its kin, a signal handler may call
/// it.
void removeLitter() {
  if (isLitter == 0) return;
  const int directory = ::open(litter.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directory < 0) return;
  // As the kernel lays out struct linux_dirent64.
  constexpr size_t LENGTH_AT = 16;
  constexpr size_t NAME_AT = 19;
  alignas(8) std::array<char, 4096> entries{};
  long count = 0;
  while ((count = ::syscall(SYS_getdents64, directory, entries.data(), entries.size())) > 0) {
    for (size_t at = 0; at < static_cast<size_t>(count);) {
      unsigned short length = 0;
      std::memcpy(&length, entries.data() + at + LENGTH_AT, sizeof length);
      ::unlinkat(directory, entries.data() + at + NAME_AT, 0);
      at += length;
    }
  }
  ::close(directory);
  ::rmdir(litter.data());
}

extern "C" void gri_onSignal(int signal) {
  if (raisedSignal != 0) {
    removeLitter();
    _exit(EXIT_OF_SIGNALS + signal);
  }
  raisedSignal = signal;
}

}  // namespace

GRIInterrupt::GRIInterrupt() {
  raisedSignal = 0;
  struct sigaction action {};
  action.sa_handler = gri_onSignal;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &m_oldInt);
  sigaction(SIGTERM, &action, &m_oldTerm);
  sigaction(SIGHUP, &action, &m_oldHup);
  sigaction(SIGQUIT, &action, &m_oldQuit);
  // A reader of our output that goes away is a failed write.
  action.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &action, &m_oldPipe);
}

GRIInterrupt::~GRIInterrupt() {
  sigaction(SIGINT, &m_oldInt, nullptr);
  sigaction(SIGTERM, &m_oldTerm, nullptr);
  sigaction(SIGHUP, &m_oldHup, nullptr);
  sigaction(SIGQUIT, &m_oldQuit, nullptr);
  sigaction(SIGPIPE, &m_oldPipe, nullptr);
}

bool GRIInterrupt::wasRaised() { return raisedSignal != 0; }

int GRIInterrupt::exitCode() { return EXIT_OF_SIGNALS + raisedSignal; }

void GRIInterrupt::setLitter(const std::string& directory) {
  isLitter = 0;
  if (directory.empty() || directory.size() >= litter.size()) return;
  std::memcpy(litter.data(), directory.c_str(), directory.size() + 1);
  isLitter = 1;
}
