#include "gr_lib_utils/include/gr_fileSpec.h"

#include <cassert>
#include <cstring>
#include <mutex>
#include <span>
#include <string_view>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/src/gr_unicode.h"

namespace {

bool isSeparator(char character) { return character == '/' || character == '\\'; }

bool isSeparatorBehindColon(std::string_view path, size_t index) {
  return index > 0 && isSeparator(path[index]) && path[index - 1] == ':';
}

/// The index of the first character of the last piece of a path; its trailing separators count as
/// part of the piece, but for one behind a colon ("C:\").
size_t lastPieceBegin(std::string_view path) {
  size_t end = path.size();
  while (end > 0 && isSeparator(path[end - 1]) && !isSeparatorBehindColon(path, end - 1)) --end;
  while (end > 0 && !isSeparator(path[end - 1])) --end;
  return end;
}

template <typename T>
void allocateOrThrow(GRArray<T>& text, size_t count) {
  if (!GR_SUCCESS(text.allocate(count))) throw GRUtilException(GR_STATUS_NO_MEMORY);
}

/// `head` and `tail` in one text, with its zero.
GRArray<char> concatenated(std::string_view head, std::string_view tail) {
  GRArray<char> text;
  allocateOrThrow(text, head.size() + tail.size() + 1);
  if (!head.empty()) std::memcpy(text.data(), head.data(), head.size());
  if (!tail.empty()) std::memcpy(text.data() + head.size(), tail.data(), tail.size());
  return text;
}

GRArray<char> joined(std::string_view head, const char* piece) {
  while (!head.empty() && isSeparator(head.back())) head.remove_suffix(1);
  const GRArray<char> directory = concatenated(head, "\\");
  return concatenated(directory.data(), piece);
}

GRArray<char> joined(std::string_view p1, const char* p2, const char* p3) {
  GRArray<char> path = concatenated(p1, "");
  if (p2 != nullptr) path = joined(path.data(), p2);
  if (p3 != nullptr) path = joined(path.data(), p3);
  return path;
}

/// The UTF-8 form of wide text; of nothing for null.
GRArray<char> toUtf8(const wchar_t* wide) {
  GRArray<char> text;
  if (wide == nullptr) return text;
  const std::wstring_view units(wide);
  allocateOrThrow(text, units.size() * GR_UTF8_MAX_BYTES + 1);
  char* out = text.data();
  for (size_t i = 0; i < units.size();) out += gr_encodeUtf8(gr_nextCodePoint(units, i), out);
  return text;
}

std::mutex& pathMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

GRFileSpec::GRFileSpec(const GRFileSpec& other) {
  if (!other.isEmpty()) m_path8 = concatenated(other.utf8(), "");
}

GRFileSpec& GRFileSpec::operator=(const GRFileSpec& other) {
  if (this != &other) *this = GRFileSpec(other);
  return *this;
}

GRFileSpec::GRFileSpec(const char* p1, const char* p2, const char* p3) {
  assert(p1 != nullptr);
  m_path8 = joined(p1 == nullptr ? "" : p1, p2, p3);
}

GRFileSpec::GRFileSpec(const wchar_t* p1, const wchar_t* p2, const wchar_t* p3) {
  assert(p1 != nullptr);
  const GRArray<char> n1 = toUtf8(p1 == nullptr ? L"" : p1);
  const GRArray<char> n2 = toUtf8(p2);
  const GRArray<char> n3 = toUtf8(p3);
  m_path8 = joined(n1.data(), n2.data(), n3.data());
}

GRFileSpec::GRFileSpec(const GRFileSpec& directory, const char* p2, const char* p3) {
  assert(!directory.isEmpty());
  m_path8 = joined(directory.utf8(), p2, p3);
}

const char* GRFileSpec::utf8() const { return isEmpty() ? "" : m_path8.data(); }

const char* GRFileSpec::local() const { return utf8(); }

const char16_t* GRFileSpec::wide() const {
  if (isEmpty()) return u"";
  const std::scoped_lock lock(pathMutex());
  if (m_path16.empty()) {
    const std::string_view path(m_path8.data());
    GRArray<char16_t> text;
    allocateOrThrow(text, path.size() + 1);  // no byte of UTF-8 makes more than one unit
    char16_t* out = text.data();
    for (size_t i = 0; i < path.size();) out += gr_encodeUtf16(gr_nextCodePoint(path, i), out);
    m_path16 = std::move(text);
  }
  return m_path16.data();
}

bool GRFileSpec::isAbsolute() const {
  const std::string_view path(utf8());
  if (path.starts_with("\\\\")) return true;
  return path.size() >= 3 && path[0] >= 'A' && path[0] <= 'z' && path[1] == ':' && path[2] == '\\';
}

GRFileSpec GRFileSpec::parent() const {
  const std::string_view path(utf8());
  const size_t begin = lastPieceBegin(path);
  GRFileSpec directory;
  if (begin == 0) {
    const bool isRoot = !path.empty() && isSeparator(path[0]);
    directory.m_path8 = concatenated(isRoot ? path.substr(0, 1) : ".", "");
    return directory;
  }
  const std::string_view head = path.substr(0, begin - 1);
  const bool keepsSeparator = head.empty() || head.back() == ':';
  directory.m_path8 = concatenated(path.substr(0, keepsSeparator ? begin : begin - 1), "");
  return directory;
}

const char* GRFileSpec::fileName() const {
  const std::string_view path(utf8());
  if (!path.empty() && isSeparatorBehindColon(path, path.size() - 1)) return path.data();
  return path.data() + lastPieceBegin(path);
}

const char* GRFileSpec::suffix() const {
  const char* const dot = std::strrchr(utf8(), '.');
  return dot == nullptr ? "" : dot + 1;
}

void GRFileSpec::replaceSuffix(const char* suffix) {
  const std::string_view path(utf8());
  const size_t dot = path.rfind('.');
  const GRArray<char> stem = concatenated(path.substr(0, dot), ".");
  m_path8 = concatenated(stem.data(), suffix == nullptr ? "" : suffix);
  m_path16.clear();
}

void GRFileSpec::removeSuffix() {
  const std::string_view path(utf8());
  const size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return;
  m_path8 = concatenated(path.substr(0, dot), "");
  m_path16.clear();
}

bool GRFileSpec::operator==(const GRFileSpec& other) const {
  return isEmpty() == other.isEmpty() && std::strcmp(utf8(), other.utf8()) == 0;
}
