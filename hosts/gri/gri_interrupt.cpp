#include "hosts/gri/gri_interrupt.h"

#include <unistd.h>

namespace {

volatile std::sig_atomic_t raisedSignal = 0;

constexpr int EXIT_OF_SIGNALS = 128;

extern "C" void gri_onSignal(int signal) {
  if (raisedSignal != 0) _exit(EXIT_OF_SIGNALS + signal);
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
