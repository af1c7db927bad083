#include "hosts/gri/gri_passwords.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

#include "hosts/common/gri_hostMetadata.h"
#include "hosts/gri/gri_interrupt.h"

namespace {

constexpr std::string_view OPTION = "--password";

/// Calls visit(index, value) with each value of the option, which is the next argument or stands
/// behind an equals sign, and with the number of the argument that it is in.
template <typename Char, typename Visit>
void forEachPassword(int argc, Char* const* argv, Visit visit) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == OPTION && i + 1 < argc) {
      ++i;
      visit(i, argv[i]);
    } else if (argument.starts_with(std::string(OPTION) + '=')) {
      visit(i, argv[i] + OPTION.size() + 1);
    }
  }
}

/// An open file, closed at its end.
class Descriptor {
 public:
  Descriptor(const char* path, int flags) : m_number(::open(path, flags | O_CLOEXEC)) {}
  ~Descriptor() {
    if (m_number >= 0) ::close(m_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return m_number; }

 private:
  int m_number;
};

/// Keeps the signals that end the process for later, as long as it lives; none of them may leave
/// the terminal silent.
class SignalBlock {
 public:
  SignalBlock() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, &m_before);
  }
  ~SignalBlock() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;

  /// Waits for something to read, with the signals let through.
  /// @return false when a signal came instead
  bool waitFor(int descriptor) const {
    pollfd wanted = {descriptor, POLLIN, 0};
    sigset_t mask = m_before;
    sigaddset(&mask, SIGTSTP);
    return !GRIInterrupt::wasRaised() && ::ppoll(&wanted, 1, nullptr, &mask) > 0;
  }

 private:
  sigset_t m_before{};
};

/// Turns the echo of a terminal off as long as it lives.
class SilentTerminal {
 public:
  explicit SilentTerminal(int descriptor) : m_descriptor(descriptor) {
    m_isTerminal = tcgetattr(descriptor, &m_before) == 0;
    if (!m_isTerminal) return;
    termios silent = m_before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= ICANON | ISIG;
    tcsetattr(descriptor, TCSAFLUSH, &silent);
  }
  ~SilentTerminal() {
    if (m_isTerminal) tcsetattr(m_descriptor, TCSAFLUSH, &m_before);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  int m_descriptor;
  bool m_isTerminal = false;
  termios m_before{};
};

void say(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written < 0 && errno != EINTR) return;
    if (written > 0) text.remove_prefix(static_cast<size_t>(written));
  }
}

enum class Line { READ, NONE, HAS_ZERO };

/// Reads up to the end of a line, byte by byte: what follows isn't ours. A carriage return in front
/// of the end belongs to it.
/// @return NONE when the file ends, or can't be read, before there is anything; HAS_ZERO for a line
///         that no text can be
template <typename Wait>
Line readLine(int descriptor, GRIHostPassword& password, Wait wait) {
  bool isAnything = false;
  bool hasZero = false;
  bool isReturnHeld = false;
  char byte = 0;
  while (wait()) {
    const ssize_t count = ::read(descriptor, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    const bool isEnd = count == 0 && isAnything;
    if (count <= 0 && !isEnd) break;
    if (isEnd || byte == '\n') return hasZero ? Line::HAS_ZERO : Line::READ;
    isAnything = true;
    hasZero = hasZero || byte == '\0';
    if (isReturnHeld) password.append('\r');
    isReturnHeld = byte == '\r';
    if (!isReturnHeld) password.append(byte);
  }
  return Line::NONE;
}

}  // namespace

std::vector<std::string> gri_takeArguments(int argc, char** argv) {
  std::vector<std::string> arguments(argv, argv + argc);
  forEachPassword(argc, argv, [](int, char* value) { explicit_bzero(value, std::strlen(value)); });
  return arguments;
}

std::vector<const char*> gri_setPasswordAside(int argc, const char* const* argv,
                                              GRIHostPassword& password) {
  std::vector<const char*> arguments(argv, argv + argc);
  forEachPassword(argc, argv, [&](int index, const char* value) {
    const bool isWhole = value == argv[index];
    if (isWhole ? *value == '-' : *value == '\0') return;
    arguments[static_cast<size_t>(index)] = isWhole ? "..." : "--password=...";
    password.clear();
    for (; *value != '\0'; ++value) password.append(*value);
  });
  return arguments;
}

std::string gri_withoutPasswords(std::string text, int argc, const char* const* argv) {
  forEachPassword(argc, argv, [&](int, const char* value) {
    const size_t length = std::strlen(value);
    if (length == 0) return;
    for (size_t at = text.find(value); at != std::string::npos; at = text.find(value, at)) {
      text.replace(at, length, "...");
      at += 3;
    }
  });
  return text;
}

GRIHostError gri_readPasswordFile(const std::string& path, GRIHostPassword& password) {
  const Descriptor file(path.c_str(), O_RDONLY);
  if (file.number() < 0) return {GRI_HOST_STATUS_OPEN, std::strerror(errno)};
  password.clear();
  const Line line = readLine(file.number(), password, [] { return true; });
  if (line == Line::HAS_ZERO) {
    return {GRI_HOST_STATUS_READ, "there is a zero byte in its first line, which no password has"};
  }
  if (line == Line::NONE || password.isEmpty()) {
    return {GRI_HOST_STATUS_READ, "there is no password in its first line"};
  }
  return {};
}

bool gri_askForPassword(const std::string& file, bool wasWrong, GRIHostPassword& password) {
  const Descriptor terminal("/dev/tty", O_RDWR | O_NOCTTY);
  if (terminal.number() < 0) return false;
  const std::string name = gri_hostPrintable(gri_hostUtf8(file.c_str()));
  password.clear();
  const SignalBlock signals;
  const SilentTerminal silent(terminal.number());
  say(terminal.number(),
      (wasWrong ? "That doesn't open all of it.\n" : "") + ("Password of " + name) + ": ");
  const Line line =
      readLine(terminal.number(), password, [&] { return signals.waitFor(terminal.number()); });
  say(terminal.number(), "\n");  // the one that was typed isn't shown
  return line == Line::READ && !password.isEmpty();
}
