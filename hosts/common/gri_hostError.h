/// @file
/// What a host is told when something fails, and the one place where exceptions end.
#pragma once

#include <string>
#include <type_traits>

#include "gri_rdk_cdll.h"

/// Statuses that hosts give by themselves; their words are the library's.
constexpr GR_STATUS GRI_HOST_STATUS_DATATYPE = 50001;   // "unsupported datatype"
constexpr GR_STATUS GRI_HOST_STATUS_OPERATION = 50002;  // "requested operation not supported"
constexpr GR_STATUS GRI_HOST_STATUS_ARGUMENT = 50003;   // "invalid argument to function"
constexpr GR_STATUS GRI_HOST_STATUS_OPEN = 50004;       // "error opening file"
constexpr GR_STATUS GRI_HOST_STATUS_WRITE = 50005;      // "error writing file"
constexpr GR_STATUS GRI_HOST_STATUS_READ = 50006;       // "error reading file"

/// A failure in words and as a number. Converts to true when there is one:
///     if (GRIHostError error = image.open(path)) return report(error);
struct GRIHostError {
  GR_STATUS status = GRIC_STATUS_OK;
  std::string text;  // for people; without the number

  explicit operator bool() const { return status != GRIC_STATUS_OK; }
  /// Whether what fails is a password: there is none, or it doesn't fit.
  bool isOfLock() const;
};

/// The error of a status that the library has just returned, with the library's words; in words of
/// our own for the few statuses that it has none for. A "?" stands for a detail (a path, a reason)
/// that the library hasn't kept. Uses up the details of the message, so it is called once for each
/// failure. A status of 0 gives no error.
GRIHostError gri_hostErrorOf(GR_STATUS status);

/// Calls the library. An exception that crosses its interface (memory that runs out) ends here and
/// the result is `onException`.
template <typename Call>
auto gri_hostCall(const Call& call, std::invoke_result_t<Call> onException) noexcept {
  try {
    return call();
  } catch (...) {
    return onException;
  }
}

/// The same for the functions that return a status: an exception becomes 8, the one status that
/// the library's exceptions carry.
template <typename Call>
GR_STATUS gri_hostStatusOf(const Call& call) noexcept {
  return gri_hostCall(call, GR_STATUS{GRIC_STATUS_NO_MEMORY});
}

/// Keeps the library's filled-in messages on for as long as it lives. A program makes one, first
/// of all.
class GRIHostMessages {
 public:
  GRIHostMessages();
  ~GRIHostMessages();
  GRIHostMessages(const GRIHostMessages&) = delete;
  GRIHostMessages& operator=(const GRIHostMessages&) = delete;

 private:
  bool m_isOurs = false;  // somebody else may have turned them on
};
