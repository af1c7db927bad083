/// @file
/// Work in a process of its own, for tests of how much memory it takes.
#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

/// The most that the process has had in memory so far, in KiB.
inline long process_peakKib() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

/// What `work` gives in a process of its own, whose peak nothing else has raised.
inline long process_runApart(const std::function<long()>& work) {
  int ends[2] = {};
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const long result = work();
    const bool isWritten = write(ends[1], &result, sizeof(result)) == sizeof(result);
    _exit(isWritten ? 0 : 1);
  }
  close(ends[1]);
  long result = -1;
  if (read(ends[0], &result, sizeof(result)) != sizeof(result)) result = -1;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return result;
}
