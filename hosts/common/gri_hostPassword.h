/// @file
/// Passwords of locked pictures.
#pragma once

#include <array>
#include <functional>
#include <string_view>

/// A password in memory of its own, wiped when it goes. No lock has one of more than 72 bytes; of
/// longer ones as much is kept as shows that they are too long.
class GRIHostPassword {
 public:
  static constexpr size_t MOST_BYTES = 127;

  GRIHostPassword() = default;
  explicit GRIHostPassword(std::string_view text);
  ~GRIHostPassword() { clear(); }
  GRIHostPassword(const GRIHostPassword&) = delete;
  GRIHostPassword& operator=(const GRIHostPassword&) = delete;

  /// Adds a byte at the end; none behind MOST_BYTES.
  void append(char byte);
  void clear();

  bool isEmpty() const { return m_length == 0; }
  /// With a zero at its end.
  const char* text() const { return m_text.data(); }

 private:
  std::array<char, MOST_BYTES + 1> m_text{};
  size_t m_length = 0;
};

/// Gets a password from somebody.
/// @param wasWrong  whether it got one before, for the same picture, that didn't fit
/// @param password  receives it
/// @return whether there is one; false ends the asking for good
using GRIHostPasswordSource = std::function<bool(bool wasWrong, GRIHostPassword& password)>;
