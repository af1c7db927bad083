/// @file
/// Ctrl-C while something is being written.
#pragma once

#include <csignal>
#include <string>

/// Catches SIGINT, SIGTERM, SIGHUP and SIGQUIT for as long as it lives: the work then stops at the
/// next look at `wasRaised`, and what is half done is removed. A second signal removes it, too, and
/// ends the program at once. There is one at a time.
class GRIInterrupt {
 public:
  GRIInterrupt();
  ~GRIInterrupt();
  GRIInterrupt(const GRIInterrupt&) = delete;
  GRIInterrupt& operator=(const GRIInterrupt&) = delete;

  /// True from the first signal on.
  static bool wasRaised();
  /// The exit code that tells of it: 128 and the signal's number, 130 for Ctrl-C.
  static int exitCode();
  /// The directory with what is half done, which a second signal removes; empty for none.
  static void setLitter(const std::string& directory);

 private:
  struct sigaction m_oldInt {};
  struct sigaction m_oldTerm {};
  struct sigaction m_oldHup {};
  struct sigaction m_oldQuit {};
  struct sigaction m_oldPipe {};
};
