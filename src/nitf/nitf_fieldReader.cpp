#include "nitf/nitf_fieldReader.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "nitf/nitf_readBytes.h"

namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// What is left of a text after white space.
std::string_view trimLeft(std::string_view text) {
  const auto* const first = std::find_if_not(text.begin(), text.end(), isSpace);
  text.remove_prefix(static_cast<size_t>(first - text.begin()));
  return text;
}

/// std::from_chars knows no plus sign.
std::string_view trimPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

gr_int64 scanInt(std::string_view text) {
  text = trimPlus(trimLeft(text));
  gr_int64 value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  using Limits = std::numeric_limits<gr_int64>;
  return text[0] == '-' ? Limits::min() : Limits::max();
}

double scanDouble(std::string_view text) {
  text = trimPlus(trimLeft(text));
  double value = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  // Too small or too large; which of them, only the sign of the exponent tells.
  const double magnitude =
      text.find("e-") != std::string_view::npos || text.find("E-") != std::string_view::npos
          ? 0.0
          : HUGE_VAL;
  return text[0] == '-' ? -magnitude : magnitude;
}

}  // namespace

GR_STATUS NITFFieldReader::initialize(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length) {
  GRArray<char> bytes;
  GR_RETURN_IF_FAILED(bytes.allocateUninitialized(length));
  GRIOStreamOpener opener(stream);
  GR_RETURN_IF_FAILED(opener.open());
  GR_RETURN_IF_FAILED(opener.close(nitf_readBytesAt(stream, offset, bytes.data(), bytes.size())));
  m_bytes = std::move(bytes);
  m_start = offset;
  m_offset = 0;
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::initialize(const void* bytes, size_t length) {
  GRArray<char> copy;
  GR_RETURN_IF_FAILED(copy.allocateUninitialized(length));
  if (length != 0) std::memcpy(copy.data(), bytes, length);
  m_bytes = std::move(copy);
  m_start = 0;
  m_offset = 0;
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::setLength(GRIOStreamInf& stream, gr_uint64 length) {
  if (length < m_offset) return NITF_STATUS_INVALID_FILE;
  const size_t place = m_offset;
  GR_RETURN_IF_FAILED(initialize(stream, m_start, length));
  m_offset = place;
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::readInt(gr_uint32 width, gr_int32& value) {
  assert(width >= 1 && width <= MAX_INT_WIDTH);
  gr_int64 wide = 0;
  GR_RETURN_IF_FAILED(readInt64(width, wide));
  value = static_cast<gr_int32>(wide);
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::readCount(gr_uint32 width, gr_uint32& value) {
  assert(width >= 1 && width <= MAX_INT_WIDTH);
  gr_uint64 wide = 0;
  GR_RETURN_IF_FAILED(readCount64(width, wide));
  value = static_cast<gr_uint32>(wide);
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::readInt64(gr_uint32 width, gr_int64& value) {
  std::string_view text;
  GR_RETURN_IF_FAILED(readText(width, text));
  value = scanInt(text);
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::readCount64(gr_uint32 width, gr_uint64& value) {
  gr_int64 number = 0;
  GR_RETURN_IF_FAILED(readInt64(width, number));
  if (number < 0) return NITF_STATUS_INVALID_FILE;
  value = static_cast<gr_uint64>(number);
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::readDouble(gr_uint32 width, double& value) {
  std::string_view text;
  GR_RETURN_IF_FAILED(readText(width, text));
  value = scanDouble(text);
  return GR_STATUS_OK;
}

GR_STATUS NITFFieldReader::readText(gr_uint32 width, std::string_view& text) {
  if (width > left()) return NITF_STATUS_INVALID_FILE;
  text = {m_bytes.data() + m_offset, width};
  m_offset += width;
  return GR_STATUS_OK;
}

bool NITFFieldReader::match(std::string_view literal) {
  if (!isAhead(0, literal)) return false;
  m_offset += literal.size();
  return true;
}

bool NITFFieldReader::isAhead(size_t ahead, std::string_view literal) const {
  if (ahead > left() || literal.size() > left() - ahead) return false;
  return std::string_view(m_bytes.data() + m_offset + ahead, literal.size()) == literal;
}

GR_STATUS NITFFieldReader::skip(gr_int64 numBytes) {
  const auto place = static_cast<gr_int64>(m_offset);
  const auto length = static_cast<gr_int64>(m_bytes.size());
  if (numBytes < -place || numBytes > length - place) return NITF_STATUS_INVALID_FILE;
  m_offset = static_cast<size_t>(place + numBytes);
  return GR_STATUS_OK;
}

bool NITFFieldReader::isRestBlank() const {
  return std::all_of(m_bytes.begin() + m_offset, m_bytes.end(), [](char c) { return c == ' '; });
}
