#include "hosts/common/gri_hostError.h"

#include <string_view>

namespace {

/// Words for the statuses that have no row in the library's table; null for all others.
const char* ownWords(GR_STATUS status) {
  switch (status) {
    case GRIC_STATUS_OUT_OF_RANGE:
      return "number out of range";
    case GRIC_STATUS_NO_MEMORY:
      return "not enough memory";
    case GRIC_STATUS_NULL_ARGUMENT:
      return "required argument missing";
    default:
      return nullptr;
  }
}

/// The text that the library has for a status.
template <typename Call>
std::string textOf(const Call& call) {
  const char* const text = gri_hostCall(call, static_cast<const char*>(nullptr));
  return text == nullptr ? "unknown status" : text;
}

/// A message of the library's table, with a question mark for each detail.
std::string withoutDetails(std::string_view message) {
  constexpr std::string_view PLACEHOLDERS = "dufsF";
  std::string text;
  for (size_t i = 0; i < message.size(); ++i) {
    if (message[i] != '%') {
      text += message[i];
    } else if (++i < message.size()) {
      text += PLACEHOLDERS.find(message[i]) == std::string_view::npos ? message[i] : '?';
    }
  }
  return text;
}

}  // namespace

bool GRIHostError::isOfLock() const {
  constexpr GR_STATUS TG3_SECURITY = 2011;
  constexpr GR_STATUS NO_KEY = 4005;
  constexpr GR_STATUS WRONG_KEY = 4006;
  constexpr GR_STATUS INVALID_KEY = 4009;
  return status == TG3_SECURITY || status == NO_KEY || status == WRONG_KEY || status == INVALID_KEY;
}

GRIHostError gri_hostErrorOf(GR_STATUS status) {
  if (status == GRIC_STATUS_OK) return {};
  if (const char* words = ownWords(status)) return {status, words};
  const std::string raw = textOf([&] { return getRawStatusString(status); });
  std::string text = textOf([&] { return getLastStatusString(status); });
  // The number has a place of its own. The library prints it with a sign.
  const std::string number = " [" + std::to_string(static_cast<gr_int32>(status)) + "]";
  if (text.ends_with(number)) text.resize(text.size() - number.size());
  // Nobody keeps details, or another failure has taken their place.
  if (text == raw || text.starts_with("error retrieving status string")) text = withoutDetails(raw);
  return {status, text};
}

GRIHostMessages::GRIHostMessages() {
  m_isOurs = gri_hostStatusOf([] { return initializeStatusStrings(); }) == GRIC_STATUS_OK;
}

GRIHostMessages::~GRIHostMessages() {
  if (m_isOurs) gri_hostStatusOf([] { return terminateStatusStrings(); });
}
