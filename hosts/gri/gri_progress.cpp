#include "hosts/gri/gri_progress.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace {

constexpr auto FIRST_LINE_AFTER = std::chrono::milliseconds(300);
constexpr auto BETWEEN_LINES = std::chrono::milliseconds(100);
constexpr double SECONDS_OF_AN_HOUR = 3600;

/// "0:12", "3:05" or "1:02:03".
std::string durationWords(double seconds) {
  const auto whole = static_cast<long>(std::ceil(seconds));
  std::array<char, 32> text{};
  if (seconds >= SECONDS_OF_AN_HOUR) {
    std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60,
                  whole % 60);
  } else {
    std::snprintf(text.data(), text.size(), "%ld:%02ld", whole / 60, whole % 60);
  }
  return text.data();
}

}  // namespace

GRIProgress::GRIProgress(std::ostream* out, double pixels, Now now)
    : m_out(out),
      m_pixels(pixels),
      m_now(now),
      m_start(now()),
      m_nextLine(m_start + FIRST_LINE_AFTER) {}

GRIProgress::~GRIProgress() {
  if (m_isShown) *m_out << "\r\x1B[K" << std::flush;
}

double GRIProgress::seconds() const {
  return std::chrono::duration<double>(m_now() - m_start).count();
}

std::string GRIProgress::line(double fraction, double pixels, double seconds) {
  const double rate = seconds > 0 ? fraction * pixels / seconds / 1e6 : 0;
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%3.0f%%  %.*f Mpixel/s", std::floor(fraction * 100),
                rate < 10 ? 1 : 0, rate);
  std::string line = text.data();
  // The first moments tell nothing of the rest.
  constexpr double TELLING_FRACTION = 0.01;
  if (fraction >= TELLING_FRACTION) {
    line += "  " + durationWords(seconds * (1 - fraction) / fraction) + " left";
  }
  return line;
}

void GRIProgress::show(double fraction) {
  if (m_out == nullptr || m_now() < m_nextLine) return;
  m_nextLine = m_now() + BETWEEN_LINES;
  m_isShown = true;
  *m_out << "\r\x1B[K" << line(fraction, m_pixels, seconds()) << std::flush;
}
