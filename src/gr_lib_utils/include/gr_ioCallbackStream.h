/// @file
/// GRIOCallbackStream, a stream over functions of the host.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"

/// The functions of a callback stream. Each gets the user pointer of its stream.
struct GRIOCallbacks {
  gr_int32 (*open)(void* user) = nullptr;   ///< returns a status
  gr_int32 (*close)(void* user) = nullptr;  ///< returns a status
  gr_uint32 (*read)(void* user, gr_uint8* buffer, gr_uint32 length) = nullptr;
  gr_uint32 (*write)(void* user, const gr_uint8* buffer, gr_uint32 length) = nullptr;
  gr_int32 (*seek)(void* user, gr_int64 offset, gr_int32 origin) = nullptr;  ///< returns a status
  gr_int64 (*tell)(void* user) = nullptr;
  gr_uint8 (*isEOF)(void* user) = nullptr;   ///< 1 means true, all else false
  gr_uint8 (*isOpen)(void* user) = nullptr;  ///< 1 means true, all else false
  void* (*duplicate)(void* user) = nullptr;  ///< the user pointer of a new stream
};

/// A stream whose work is done by functions of the host, on the thread of the caller. It is closed
/// when it is destroyed; the user pointer is never freed.
class GRIOCallbackStream final : public GRIOStreamInf {
 public:
  GRIOCallbackStream() = default;
  ~GRIOCallbackStream() override;

  /// Stores the functions and the user pointer untested. @return 0
  [[nodiscard]] GR_STATUS initialize(const GRIOCallbacks& callbacks, void* user);

  bool isEOF() override;
  bool isOpen() override;
  GR_STATUS open() override;   ///< 0 at once where isOpen(), else the callback's status
  GR_STATUS close() override;  ///< 0 at once where not isOpen(), else the callback's status
  /// The callback's result; one above `length` can't be true and counts as 0.
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override;
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override;
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override;
  gr_int64 tell() override;
  /// A stream with the same functions on a user pointer from the callback; null when there is no
  /// such callback, or no memory.
  GRIOStreamInf* duplicate() override;
  /// 1: a host has no way to give a reason.
  GR_STATUS getLastError() override { return 1; }
  const char* getID() override { return "gr_cbStream:"; }

 private:
  GRIOCallbacks m_callbacks;
  void* m_user = nullptr;
};
