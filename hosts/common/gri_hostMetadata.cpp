#include "hosts/common/gri_hostMetadata.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>

namespace {

/// Value number `index` of an array of T that need not be aligned.
template <typename T>
T valueAt(const void* data, size_t index) {
  T value;
  std::memcpy(&value, static_cast<const char*>(data) + index * sizeof(T), sizeof(T));
  return value;
}

/// Length of the well-formed UTF-8 sequence at the start of `bytes` (RFC 3629); 0 when there is
/// none.
size_t utf8SequenceLength(std::string_view bytes) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (bytes.size() < length) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  // Longer than needed, surrogates, or beyond U+10FFFF.
  if (lead == 0xE0 && byte(1) < 0xA0) return 0;
  if (lead == 0xED && byte(1) > 0x9F) return 0;
  if (lead == 0xF0 && byte(1) < 0x90) return 0;
  if (lead == 0xF4 && byte(1) > 0x8F) return 0;
  return length;
}

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const size_t length = utf8SequenceLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

}  // namespace

size_t GRIHostRecord::count() const {
  if (dims.empty()) return 0;
  size_t product = 1;
  for (const gr_uint32 extent : dims) product *= extent;
  return product;
}

double GRIHostRecord::number(size_t index) const {
  switch (dataType) {
    case GRIC_METADATA_DATATYPE_UINT8:
      return valueAt<gr_uint8>(data, index);
    case GRIC_METADATA_DATATYPE_SINT8:
      return valueAt<gr_int8>(data, index);
    case GRIC_METADATA_DATATYPE_UINT16:
      return valueAt<gr_uint16>(data, index);
    case GRIC_METADATA_DATATYPE_SINT16:
      return valueAt<gr_int16>(data, index);
    case GRIC_METADATA_DATATYPE_UINT32:
      return valueAt<gr_uint32>(data, index);
    case GRIC_METADATA_DATATYPE_SINT32:
      return valueAt<gr_int32>(data, index);
    case GRIC_METADATA_DATATYPE_UINT64:
      return static_cast<double>(valueAt<gr_uint64>(data, index));
    case GRIC_METADATA_DATATYPE_SINT64:
      return static_cast<double>(valueAt<gr_int64>(data, index));
    case GRIC_METADATA_DATATYPE_FLOAT32:
      return static_cast<double>(valueAt<float>(data, index));
    case GRIC_METADATA_DATATYPE_FLOAT64:
      return valueAt<double>(data, index);
    default:
      return 0;
  }
}

std::string GRIHostRecord::text(size_t index) const {
  if (!isText()) return {};
  const char* bytes = valueAt<const char*>(data, index);
  return bytes == nullptr ? std::string() : gri_hostUtf8(bytes);
}

std::string GRIHostRecord::words(size_t index) const {
  switch (dataType) {
    case GRIC_METADATA_DATATYPE_ASCII:
      return text(index);
    case GRIC_METADATA_DATATYPE_UINT64:
      return std::to_string(valueAt<gr_uint64>(data, index));
    case GRIC_METADATA_DATATYPE_SINT64:
      return std::to_string(valueAt<gr_int64>(data, index));
    default:
      break;
  }
  return gri_hostNumberWords(number(index));
}

std::string gri_hostNumberWords(double number) {
  constexpr int DIGITS = 12;
  std::array<char, 40> words{};
  const auto [end, error] = std::to_chars(words.data(), words.data() + words.size(), number,
                                          std::chars_format::general, DIGITS);
  return error == std::errc() ? std::string(words.data(), end) : std::string();
}

const char* gri_hostMetadataTypeName(gr_int32 dataType) {
  static constexpr std::array<const char*, 12> NAMES{"unknown", "uint8",   "int8",    "uint16",
                                                     "int16",   "uint32",  "int32",   "uint64",
                                                     "int64",   "float32", "float64", "text"};
  const bool isKnown = dataType > 0 && static_cast<size_t>(dataType) < NAMES.size();
  return NAMES[isKnown ? static_cast<size_t>(dataType) : 0];
}

std::string gri_hostUtf8(const char* bytes) {
  const std::string_view source(bytes);
  if (isUtf8(source)) return std::string(source);
  std::string text;
  for (const char byte : source) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | (code >> 6));
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

std::string gri_hostPrintable(const std::string& utf8) {
  std::string shown;
  for (size_t i = 0; i < utf8.size(); ++i) {
    const auto code = static_cast<unsigned char>(utf8[i]);
    const bool isC1 = code == 0xC2 && i + 1 < utf8.size() &&
                      static_cast<unsigned char>(utf8[i + 1]) < 0xA0;  // U+0080 to U+009F
    if (code == '\n') {
      shown += "\\n";
    } else if (code == '\t') {
      shown += "\\t";
    } else if (code < 0x20 || code == 0x7F || isC1) {
      const unsigned number = isC1 ? static_cast<unsigned char>(utf8[++i]) : code;
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02x", number);
      shown += escape.data();
    } else {
      shown += utf8[i];
    }
  }
  return shown;
}
