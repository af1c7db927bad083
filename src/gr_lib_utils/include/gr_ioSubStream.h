/// @file
/// GRIOSubStream, a stream over a range of bytes of another one.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_ioStream.h"

/// The bytes from `begin` up to, not including, `end` of another stream, numbered from 0. It shares
/// the position of the other stream with everybody else who uses that, so whoever reads here seeks
/// before each read; who needs a position of its own gives this stream a duplicate to own.
class GRIOSubStream : public GRIOStreamInf {
 public:
  GRIOSubStream() = default;
  ~GRIOSubStream() override;

  /// Sets the window. An earlier one is closed and forgotten first.
  /// @param stream  any initialized stream
  /// @param begin, end  positions in `stream`, bytes
  /// @param ownsStream  whether `stream` is deleted together with this; it becomes ours with this
  ///                    call, also when the call fails
  /// @return 0; 1 when `end` is before `begin` or `begin` negative, or for a null stream
  [[nodiscard]] GR_STATUS initialize(GRIOStreamInf* stream, gr_int64 begin, gr_int64 end,
                                     bool ownsStream);

  bool isEOF() override;
  bool isOpen() override;
  /// Opens the stream below where it isn't, and seeks to the begin of the window.
  GR_STATUS open() override;
  GR_STATUS close() override;  ///< closes the stream below
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override;
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override;
  /// @return 0; 1 for a bad origin or a target outside of [0, size], and then nothing has moved;
  ///         or what the stream below returns
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override;
  gr_int64 tell() override;
  /// A new window of the same range on the same stream below, which it doesn't own: both share
  /// one position.
  GRIOStreamInf* duplicate() override;
  GR_STATUS getLastError() override;
  const char* getID() override { return "gr_substream:"; }

 private:
  // How much of `length` lies inside of the window at the position; sets the EOF flag.
  gr_uint32 limit(gr_uint32 length);

  GRIOStreamInf* m_stream = nullptr;
  std::unique_ptr<GRIOStreamInf> m_owned;  // the same stream, where we own it
  gr_int64 m_begin = 0;
  gr_int64 m_end = 0;
  bool m_isEOF = false;
};
