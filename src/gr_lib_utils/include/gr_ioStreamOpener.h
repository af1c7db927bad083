/// @file
/// GRIOStreamOpener, which opens a stream for a while.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_status.h"

/// Opens a stream and, when it goes, leaves the stream as it was: a stream that was open stays
/// open, one that was closed is closed again. So a host's file is only open while it is used.
///
///     GRIOStreamOpener opener(stream, keepOpen);
///     GR_RETURN_IF_FAILED(opener.open());
///     return opener.close(readSomething(stream));
class GRIOStreamOpener {
 public:
  /// @param stream    stays the caller's and outlives this
  /// @param keepOpen  whether a stream that was closed stays open from here on
  explicit GRIOStreamOpener(GRIOStreamInf& stream, bool keepOpen = false)
      : m_stream(stream), m_keepOpen(keepOpen) {}
  ~GRIOStreamOpener() { static_cast<void>(close(GR_STATUS_OK)); }
  GRIOStreamOpener(const GRIOStreamOpener&) = delete;
  GRIOStreamOpener& operator=(const GRIOStreamOpener&) = delete;

  /// @return 0, also for a stream that is open already; else the stream's status
  [[nodiscard]] GR_STATUS open() {
    if (m_stream.isOpen()) return GR_STATUS_OK;
    GR_RETURN_IF_FAILED(m_stream.open());
    m_mustClose = !m_keepOpen;
    return GR_STATUS_OK;
  }

  /// Ends the use early, for those who want to know how the closing went.
  /// @return `status`, or where that is 0 the status of closing
  GR_STATUS close(GR_STATUS status) {
    if (!m_mustClose) return status;
    m_mustClose = false;
    const GR_STATUS closed = m_stream.close();
    return GR_SUCCESS(status) ? closed : status;
  }

 private:
  GRIOStreamInf& m_stream;
  bool m_keepOpen;
  bool m_mustClose = false;
};
