#include "gr_lib_utils/src/gr_unicode.h"

namespace {

constexpr char32_t MAX_CODE_POINT = 0x10FFFF;
constexpr char32_t FIRST_OF_TWO_UNITS = 0x10000;

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// What a first byte says about its sequence: how many bytes follow, which of its own bits count,
/// and the least code point that needs so many.
struct Sequence {
  size_t following;
  char32_t bits;
  char32_t least;
};

bool sequenceOf(gr_uint8 first, Sequence& sequence) {
  if (first < 0x80) {
    sequence = {0, first, 0};
  } else if ((first & 0xE0) == 0xC0) {
    sequence = {1, first & 0x1FU, 0x80};
  } else if ((first & 0xF0) == 0xE0) {
    sequence = {2, first & 0x0FU, 0x800};
  } else if ((first & 0xF8) == 0xF0) {
    sequence = {3, first & 0x07U, FIRST_OF_TWO_UNITS};
  } else {
    return false;
  }
  return true;
}

}  // namespace

char32_t gr_nextCodePoint(std::string_view text, size_t& index) {
  const size_t begin = index++;
  Sequence sequence{};
  if (!sequenceOf(static_cast<gr_uint8>(text[begin]), sequence)) return GR_REPLACEMENT;
  if (sequence.following >= text.size() - begin) return GR_REPLACEMENT;
  char32_t codePoint = sequence.bits;
  for (size_t i = 1; i <= sequence.following; ++i) {
    const auto byte = static_cast<gr_uint8>(text[begin + i]);
    if ((byte & 0xC0) != 0x80) return GR_REPLACEMENT;
    codePoint = (codePoint << 6) | (byte & 0x3FU);
  }
  const bool isValid = codePoint >= sequence.least && codePoint <= MAX_CODE_POINT &&
                       !isHighSurrogate(codePoint) && !isLowSurrogate(codePoint);
  if (!isValid) return GR_REPLACEMENT;
  index = begin + 1 + sequence.following;
  return codePoint;
}

char32_t gr_nextCodePoint(std::wstring_view text, size_t& index) {
  const auto unit = static_cast<char32_t>(text[index++]);
  if (isHighSurrogate(unit) && index < text.size()) {
    const auto low = static_cast<char32_t>(text[index]);
    if (isLowSurrogate(low)) {
      ++index;
      return FIRST_OF_TWO_UNITS + ((unit & 0x3FFU) << 10) + (low & 0x3FFU);
    }
  }
  const bool isValid = unit <= MAX_CODE_POINT && !isHighSurrogate(unit) && !isLowSurrogate(unit);
  return isValid ? unit : GR_REPLACEMENT;
}

size_t gr_encodeUtf8(char32_t codePoint, char* out) {
  const auto continuation = [](char32_t bits) { return static_cast<char>(0x80U | (bits & 0x3FU)); };
  if (codePoint < 0x80) {
    out[0] = static_cast<char>(codePoint);
    return 1;
  }
  if (codePoint < 0x800) {
    out[0] = static_cast<char>(0xC0U | (codePoint >> 6));
    out[1] = continuation(codePoint);
    return 2;
  }
  if (codePoint < FIRST_OF_TWO_UNITS) {
    out[0] = static_cast<char>(0xE0U | (codePoint >> 12));
    out[1] = continuation(codePoint >> 6);
    out[2] = continuation(codePoint);
    return 3;
  }
  out[0] = static_cast<char>(0xF0U | (codePoint >> 18));
  out[1] = continuation(codePoint >> 12);
  out[2] = continuation(codePoint >> 6);
  out[3] = continuation(codePoint);
  return 4;
}

size_t gr_encodeUtf16(char32_t codePoint, char16_t* out) {
  if (codePoint < FIRST_OF_TWO_UNITS) {
    out[0] = static_cast<char16_t>(codePoint);
    return 1;
  }
  const char32_t bits = codePoint - FIRST_OF_TWO_UNITS;
  out[0] = static_cast<char16_t>(0xD800U | (bits >> 10));
  out[1] = static_cast<char16_t>(0xDC00U | (bits & 0x3FFU));
  return 2;
}
