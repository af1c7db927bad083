/// @file
/// GRSTDIOStream, a stream over a FILE* of somebody else.
#pragma once

#include <cstdio>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_status.h"

/// A thin wrapper of a C file that it doesn't own: never opens it, never closes it. Positions are
/// limited to 31 bits.
class GRSTDIOStream : public GRIOStreamInf {
 public:
  GRSTDIOStream() = default;
  ~GRSTDIOStream() override = default;

  /// @return 0; 1 for null
  [[nodiscard]] GR_STATUS initialize(FILE* file);

  bool isEOF() override;
  bool isOpen() override { return m_file != nullptr; }
  GR_STATUS open() override;  ///< 0; 1 without a file
  GR_STATUS close() override { return GR_STATUS_OK; }
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override;
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override;
  /// @return 0; 1 for an offset of more than 32 bits, a bad origin or a failure of the file
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override;
  gr_int64 tell() override;
  GRIOStreamInf* duplicate() override;  ///< a new wrapper of the same file, with one position
  GR_STATUS getLastError() override;    ///< 1 after a failed read or write, else 0
  const char* getID() override { return "gr_stdiostream:"; }

 private:
  FILE* m_file = nullptr;
};
