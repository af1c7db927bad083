#include "gr_lib_utils/include/gr_statusStrings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_statusData.h"

namespace {

constexpr size_t MESSAGE_BYTES = 4096;  // the longest message with its zero
constexpr char FAILED_POP[] = "?";

/// Text of a limited length: what doesn't fit is cut.
class BoundedText {
 public:
  BoundedText(char* buffer, size_t capacity) : m_buffer(buffer), m_left(capacity - 1) {
    *m_buffer = 0;
  }

  void append(char character) { append(&character, 1); }
  void append(const char* text) { append(text, std::strlen(text)); }
  void append(const char* text, size_t length) {
    const size_t taken = length < m_left ? length : m_left;
    std::memcpy(m_buffer, text, taken);
    m_buffer += taken;
    m_left -= taken;
    *m_buffer = 0;
  }

 private:
  char* m_buffer;  // the end of the text, where its zero stands
  size_t m_left;   // bytes that can still be appended
};

template <typename T>
void appendFormatted(BoundedText& text, const char* format, T value) {
  std::array<char, 512> scratch{};  // "%f" takes at most 317 characters
  static_cast<void>(std::snprintf(scratch.data(), scratch.size(), format, value));
  text.append(scratch.data());
}

bool isPlaceholder(char character) {
  return character != 0 && std::strchr("Fdfsu", character) != nullptr;
}

/// Takes one record from the frame that is being read; one that isn't of the wanted type stays.
void appendRecord(BoundedText& text, char placeholder) {
  switch (placeholder) {
    case 'd': {
      gr_int32 value = 0;
      if (!GR_SUCCESS(GRUtilStatusData::popInt32(value))) break;
      return appendFormatted(text, "%d", value);
    }
    case 'u': {
      gr_uint32 value = 0;
      if (!GR_SUCCESS(GRUtilStatusData::popUint32(value))) break;
      return appendFormatted(text, "%u", value);
    }
    case 'f': {
      double value = 0;
      if (!GR_SUCCESS(GRUtilStatusData::popDouble(value))) break;
      return appendFormatted(text, "%f", value);
    }
    case 's': {
      GRArray<char> value;
      if (!GR_SUCCESS(GRUtilStatusData::popString(value))) break;
      return value.empty() ? void() : text.append(value.data());
    }
    default: {
      GRFileSpec value;
      if (!GR_SUCCESS(GRUtilStatusData::popFileSpec(value))) break;
      return text.append(value.utf8());
    }
  }
  text.append(FAILED_POP);
}

/// The first row of the number counts.
const char* messageOf(GR_STATUS status) {
  for (const GRStatusRow& row : gr_statusTable()) {
    if (row.status == status) return row.message;
  }
  return "unknown status";
}

/// Puts a text and the number behind it into the one buffer that callers look into. The number
/// always has its place; a long text is cut before it.
const char* giveOut(const char* text, GR_STATUS status) {
  static std::array<char, MESSAGE_BYTES> buffer;
  std::array<char, 16> number{};
  const int numberLength =
      std::snprintf(number.data(), number.size(), " [%d]", static_cast<gr_int32>(status));
  const size_t room = buffer.size() - 1 - static_cast<size_t>(numberLength);
  BoundedText all(buffer.data(), buffer.size());
  all.append(text, std::min(std::strlen(text), room));
  all.append(number.data());
  return buffer.data();
}

}  // namespace

GR_STATUS gr_expandStatusMessage(GR_STATUS status, const char* message, char* output,
                                 size_t capacity) {
  BoundedText text(output, capacity);
  bool isFrameTaken = false;
  for (; *message != 0; ++message) {
    if (*message != '%') {
      text.append(*message);
      continue;
    }
    const char placeholder = *++message;
    if (placeholder == 0) break;
    if (!isPlaceholder(placeholder)) {
      text.append(placeholder);
      continue;
    }
    if (!isFrameTaken) {
      GR_STATUS frameStatus = GR_STATUS_OK;
      GR_RETURN_IF_FAILED(GRUtilStatusData::popStatus(frameStatus));
      if (frameStatus != status) return GR_STATUS_FAILURE;
      isFrameTaken = true;
    }
    appendRecord(text, placeholder);
  }
  return isFrameTaken ? GRUtilStatusData::popEnd() : GR_STATUS_OK;
}

const char* gr_rawStatusString(GR_STATUS status) {
  const char* const message = messageOf(status);
  static_cast<void>(giveOut(message, status));  // takes the place of the last text, and isn't seen
  return message;
}

const char* gr_lastStatusString(GR_STATUS status) {
  const char* const message = messageOf(status);
  if (!GRUtilStatusData::exists()) return giveOut(message, status);
  std::array<char, MESSAGE_BYTES> text{};
  const GR_STATUS result = gr_expandStatusMessage(status, message, text.data(), text.size());
  if (!GR_SUCCESS(result)) {
    static_cast<void>(std::snprintf(text.data(), text.size(), "error retrieving status string (%d)",
                                    static_cast<gr_int32>(result)));
  }
  return giveOut(text.data(), status);
}
