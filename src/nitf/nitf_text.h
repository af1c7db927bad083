/// @file
/// NITFText, a text field of a NITF header.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

/// A text of exactly WIDTH characters, kept with its blanks; all blanks at first.
template <size_t WIDTH>
class NITFText {
 public:
  NITFText() {
    m_characters.fill(' ');
    m_characters[WIDTH] = '\0';
  }

  /// @return 0; 51223 for a text of another length, and then nothing has changed
  [[nodiscard]] GR_STATUS set(std::string_view text) {
    if (text.size() != WIDTH) return NITF_STATUS_BAD_STRING;
    std::copy(text.begin(), text.end(), m_characters.begin());
    return GR_STATUS_OK;
  }

  /// Zero-terminated; where a file holds a zero inside of the field, it ends there.
  const char* text() const { return m_characters.data(); }
  std::string_view view() const { return {m_characters.data(), WIDTH}; }
  bool operator==(std::string_view text) const { return view() == text; }

 private:
  std::array<char, WIDTH + 1> m_characters;
};
