#include "hosts/gri/gri_terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int NARROWEST = 40;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string GRITerminal::bold(const std::string& text) const {
  return isBold && !text.empty() ? "\x1B[1m" + text + "\x1B[0m" : text;
}

std::string GRITerminal::cut(const std::string& utf8, int columns) {
  const auto characters =
      std::count_if(utf8.begin(), utf8.end(), [](char byte) { return !isContinuation(byte); });
  if (characters <= columns) return utf8;
  size_t end = 0;
  for (int left = columns; end < utf8.size(); ++end) {
    if (!isContinuation(utf8[end]) && --left == 0) break;
  }
  return utf8.substr(0, end) + "…";
}

GRITerminal gri_terminalAt(int descriptor) {
  GRITerminal terminal;
  if (isatty(descriptor) == 0) return terminal;
  const char* noColor = std::getenv("NO_COLOR");
  const char* term = std::getenv("TERM");
  const bool isDumb = term == nullptr || std::string_view(term) == "dumb";
  terminal.isBold = (noColor == nullptr || *noColor == '\0') && !isDumb;
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    terminal.width = std::max<int>(size.ws_col, NARROWEST);
  }
  return terminal;
}
