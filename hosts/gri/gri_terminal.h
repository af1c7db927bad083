/// @file
/// What the terminal at the other end can show.
#pragma once

#include <string>

/// How text is laid out. Made for a file: no bold, a fixed width.
struct GRITerminal {
  bool isBold = false;
  int width = 120;  // columns

  std::string bold(const std::string& text) const;
  /// UTF-8 text cut to `columns` characters, the last of them "…" when something was cut.
  static std::string cut(const std::string& utf8, int columns);
};

/// The terminal at a file descriptor. NO_COLOR (no-color.org) and TERM=dumb turn bold off.
GRITerminal gri_terminalAt(int descriptor);
