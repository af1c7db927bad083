/// @file
/// TG3StreamWindow, a piece of a stream that slides over it.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeData.h"
#include "gr_lib_utils/include/gr_growingArray.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"

/// Holds some contiguous bytes of a stream in memory. What it has isn't read again; memory grows to
/// the longest piece that was asked for, and stays.
class TG3StreamWindow {
 public:
  TG3StreamWindow() = default;
  /// @param readAhead  bytes to read beyond those that are asked for
  explicit TG3StreamWindow(gr_uint32 readAhead) : m_readAhead(readAhead) {}

  void setReadAhead(gr_uint32 readAhead) { m_readAhead = readAhead; }

  /// Gives the bytes at `offset`: `length` of them, or fewer where the stream ends.
  /// @param stream  open; the same one at every call
  /// @param bytes   receives the first byte, valid until the next call. TG3PlaneData::PADDING bytes
  ///                behind the last one can be read, too.
  /// @param available  receives how many there are: at least the smaller of `length` and what is
  ///                   left of the stream
  /// @return 0; 2012 for memory; else the stream's status of a seek
  [[nodiscard]] GR_STATUS peek(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length,
                               gr_uint8*& bytes, gr_uint64& available);
  /// Gives the `length` bytes at `offset`.
  /// @return as above; 2001 where the stream ends before
  [[nodiscard]] GR_STATUS get(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length,
                              gr_uint8*& bytes);

 private:
  GR_STATUS load(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length);

  gr_uint32 m_readAhead = 0;
  gr_uint64 m_offset = 0;            // of the first byte, from the start of the stream
  GRGrowingArray<gr_uint8> m_bytes;  // with room for the padding behind them
};
