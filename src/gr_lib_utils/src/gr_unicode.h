/// @file
/// Code points in and out of UTF-8, UTF-16 and wide text. What isn't a code point reads as U+FFFD.
#pragma once

#include <string_view>

#include "gr_lib_utils/include/gr_types.h"

constexpr size_t GR_UTF8_MAX_BYTES = 4;  // of one code point
constexpr char32_t GR_REPLACEMENT = U'\uFFFD';

/// The code point at `index` of UTF-8 text, which is moved behind it. A byte that doesn't begin a
/// valid sequence is one replacement.
char32_t gr_nextCodePoint(std::string_view text, size_t& index);
/// The same for wide text, whose characters are code points or, also where they could be more,
/// UTF-16 units.
char32_t gr_nextCodePoint(std::wstring_view text, size_t& index);

/// Writes a code point. @return how many units were written: 1 to 4 of UTF-8, 1 or 2 of UTF-16
size_t gr_encodeUtf8(char32_t codePoint, char* out);
size_t gr_encodeUtf16(char32_t codePoint, char16_t* out);
