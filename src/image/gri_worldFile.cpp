// World files: the six numbers of a GRIGeoCoord as text.

#include <array>
#include <charconv>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_fileUtils.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"

namespace {

constexpr size_t NUM_VALUES = 6;
constexpr gr_int64 TOO_LONG = 0x80000000;  // bytes

using Values = std::array<double, NUM_VALUES>;

/// The numbers at the start of a text, by the rules of the "C" locale, as sscanf takes them; what
/// follows is ignored.
bool parse(const char* text, Values& values) {
  static const locale_t C_LOCALE = newlocale(LC_ALL_MASK, "C", nullptr);
  if (C_LOCALE == nullptr) return false;
  for (double& value : values) {
    char* end = nullptr;
    value = strtod_l(text, &end, C_LOCALE);
    if (end == text) return false;
    text = end;
  }
  return true;
}

bool isCapital(char c) { return c >= 'A' && c <= 'Z'; }

}  // namespace

GR_STATUS GRIGeoCoord::getWorldFileName(const GRFileSpec& path, GRFileSpec& worldFile) try {
  if (path.isEmpty()) return GRI_STATUS_WORLD_FILE_NAME;
  GRFileSpec name = path;
  const std::string_view suffix = path.suffix();
  if (suffix.size() < 2) {
    name.replaceSuffix("xxx");
  } else {
    const char first = suffix.front();
    const char last = suffix.back();
    const char world = isCapital(first) && isCapital(last) ? 'W' : 'w';
    name.replaceSuffix(std::array<char, 4>{first, last, world, '\0'}.data());
  }
  worldFile = std::move(name);
  return GR_STATUS_OK;
} catch (const GRUtilException& exception) {
  return exception.getStatus();
}

GR_STATUS GRIGeoCoord::writeWorldFile(const GRFileSpec& path, bool deriveName) const try {
  GRFileSpec derived;
  if (deriveName) GR_RETURN_IF_FAILED(getWorldFileName(path, derived));
  const GRFileSpec& worldFile = deriveName ? derived : path;
  // "%.15f" of a double takes at most 309 digits, a point and 15 more; to_chars knows no locale.
  std::array<char, NUM_VALUES* 330> text = {};
  char* at = text.data();
  char* const end = at + text.size();
  for (const double value :
       {m_xResolution, m_xRotation, m_yRotation, m_yResolution, m_xOrigin, m_yOrigin}) {
    at = std::to_chars(at, end - 1, value, std::chars_format::fixed, 15).ptr;
    *at++ = '\n';
  }
  FILE* file = GRFileUtils::fopen(worldFile, "w");
  if (file == nullptr) return GRI_STATUS_WRITE_ERROR;
  const size_t length = static_cast<size_t>(at - text.data());
  const bool written = std::fwrite(text.data(), 1, length, file) == length;
  const bool closed = std::fclose(file) == 0;
  return written && closed ? GR_STATUS_OK : GRI_STATUS_WRITE_ERROR;
} catch (const GRUtilException& exception) {
  return exception.getStatus();
}

GR_STATUS GRIGeoCoord::readWorldFile(GRIOStreamInf& stream) {
  const gr_int64 length = GRIOStreamUtils::getStreamLength(stream);
  if (length < 0 || length >= TOO_LONG) return GRI_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(stream.seek(0, GRIO_SEEK_BEGIN));
  // Not cleared: memory is used only for bytes that the stream has, whatever it says of its length.
  GRArray<gr_uint8> text;
  GR_RETURN_IF_FAILED(text.allocateUninitialized(static_cast<gr_uint64>(length) + 1));
  const gr_uint32 textLength = static_cast<gr_uint32>(length);
  if (stream.read(text.data(), textLength) != textLength) {
    const GR_STATUS reason = stream.getLastError();
    return GR_SUCCESS(reason) ? GRI_STATUS_READ_ERROR : reason;
  }
  text[textLength] = 0;
  Values values = {};
  if (!parse(static_cast<const char*>(static_cast<const void*>(text.data())), values)) {
    return GRI_STATUS_READ_ERROR;
  }
  m_xResolution = values[0];
  m_xRotation = values[1];
  m_yRotation = values[2];
  m_yResolution = values[3];
  m_xOrigin = values[4];
  m_yOrigin = values[5];
  return GR_STATUS_OK;
}

GR_STATUS GRIGeoCoord::readWorldFile(const GRFileSpec& path, bool deriveName, bool& found) try {
  found = false;
  GRFileSpec derived;
  if (deriveName) GR_RETURN_IF_FAILED(getWorldFileName(path, derived));
  const GRFileSpec& worldFile = deriveName ? derived : path;
  if (!GRFileUtils::fileExists(worldFile)) return GR_STATUS_OK;
  found = true;
  const std::unique_ptr<GRIOStreamInf> stream = GRIOStreamUtils::openReadStream(worldFile);
  if (stream == nullptr) return GRI_STATUS_READ_ERROR;
  return readWorldFile(*stream);
} catch (const GRUtilException& exception) {
  return exception.getStatus();
}
