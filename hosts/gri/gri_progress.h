/// @file
/// The line that says how far a conversion has come.
#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

/// Shows "  42%  118 Mpixel/s  0:12 left" in one line that is rewritten, a few times a second, and
/// wiped at the end.
class GRIProgress {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = Clock::time_point (*)();

  /// @param out     where to; null shows nothing
  /// @param pixels  of the whole output
  /// @param now     tells the time
  GRIProgress(std::ostream* out, double pixels, Now now = Clock::now);
  ~GRIProgress();
  GRIProgress(const GRIProgress&) = delete;
  GRIProgress& operator=(const GRIProgress&) = delete;

  /// @param fraction  done so far, 0 to 1
  void show(double fraction);
  double seconds() const;

  /// The line for a state.
  static std::string line(double fraction, double pixels, double seconds);

 private:
  std::ostream* m_out;
  double m_pixels;
  Now m_now;
  Clock::time_point m_start;
  Clock::time_point m_nextLine;
  bool m_isShown = false;
};
