// World files: the six numbers of a GRIGeoCoord as text.

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "gr_lib_utils/include/gr_fileUtils.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"

namespace {

constexpr size_t NUM_VALUES = 6;
constexpr gr_int64 TOO_LONG = 0x80000000;  // bytes
constexpr int LEAST_CHARACTERS = 12;       // six digits and six ends of line

using Values = std::array<double, NUM_VALUES>;

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The numbers at the start of a text, by the rules of the "C" locale; what follows is ignored.
bool parse(std::string_view text, Values& values) {
  const char* at = text.data();
  const char* const end = at + text.size();
  for (double& value : values) {
    while (at != end && isSpace(*at)) ++at;
    if (at != end && *at == '+') ++at;  // from_chars takes no plus
    const auto [next, error] = std::from_chars(at, end, value);
    if (error == std::errc::invalid_argument) return false;
    // Out of range: from_chars leaves the value alone, and no such number can place an image.
    if (error != std::errc()) return false;
    at = next;
  }
  return true;
}

bool isCapital(char c) { return c >= 'A' && c <= 'Z'; }

}  // namespace

GR_STATUS GRIGeoCoord::getWorldFileName(const GRFileSpec& path, GRFileSpec& worldFile) {
  if (path.isEmpty()) return GRI_STATUS_WORLD_FILE_NAME;
  worldFile = path;
  const std::string_view suffix = path.suffix();
  if (suffix.size() < 2) {
    worldFile.replaceSuffix("xxx");
    return GR_STATUS_OK;
  }
  const char first = suffix.front();
  const char last = suffix.back();
  const char name[] = {first, last, isCapital(first) && isCapital(last) ? 'W' : 'w', '\0'};
  worldFile.replaceSuffix(name);
  return GR_STATUS_OK;
}

GR_STATUS GRIGeoCoord::writeWorldFile(const GRFileSpec& path, bool deriveName) const {
  GRFileSpec worldFile = path;
  if (deriveName) GR_RETURN_IF_FAILED(getWorldFileName(path, worldFile));
  // "%.15f" of a double takes at most 309 digits, a point and 15 more; to_chars knows no locale.
  std::array<char, NUM_VALUES * 330> text;
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
  return written && closed && length >= LEAST_CHARACTERS ? GR_STATUS_OK : GRI_STATUS_WRITE_ERROR;
}

GR_STATUS GRIGeoCoord::readWorldFile(GRIOStreamInf& stream) {
  const gr_int64 length = GRIOStreamUtils::getStreamLength(stream);
  if (length < 0 || length >= TOO_LONG) return GRI_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(stream.seek(0, GRIO_SEEK_BEGIN));
  GRArray<gr_uint8> bytes;
  GR_RETURN_IF_FAILED(bytes.allocate(static_cast<gr_uint64>(length)));
  if (stream.read(bytes.data(), static_cast<gr_uint32>(length)) != bytes.size()) {
    const GR_STATUS reason = stream.getLastError();
    return GR_SUCCESS(reason) ? GRI_STATUS_READ_ERROR : reason;
  }
  // A text ends at its first zero byte.
  std::string_view text(static_cast<const char*>(static_cast<const void*>(bytes.data())),
                        bytes.size());
  text = text.substr(0, text.find('\0'));
  Values values = {};
  if (!parse(text, values)) return GRI_STATUS_READ_ERROR;
  m_xResolution = values[0];
  m_xRotation = values[1];
  m_yRotation = values[2];
  m_yResolution = values[3];
  m_xOrigin = values[4];
  m_yOrigin = values[5];
  return GR_STATUS_OK;
}

GR_STATUS GRIGeoCoord::readWorldFile(const GRFileSpec& path, bool deriveName, bool& found) {
  found = false;
  GRFileSpec worldFile = path;
  if (deriveName) GR_RETURN_IF_FAILED(getWorldFileName(path, worldFile));
  if (!GRFileUtils::fileExists(worldFile)) return GR_STATUS_OK;
  found = true;
  const std::unique_ptr<GRIOStreamInf> stream = GRIOStreamUtils::openReadStream(worldFile);
  if (stream == nullptr) return GRI_STATUS_READ_ERROR;
  return readWorldFile(*stream);
}
