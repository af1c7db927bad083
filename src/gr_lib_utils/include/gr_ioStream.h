/// @file
/// GRIOStreamInf, the one abstract stream through which all file access goes.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// Where a seek counts from.
enum GRIOSeekDir : gr_int32 {
  GRIO_SEEK_BEGIN = 2,
  GRIO_SEEK_CURRENT = 3,
  GRIO_SEEK_END = 4,
};

/// A sequence of bytes with a position. A stream is made in three steps: construct, initialize
/// (each concrete class has its own), open. It has no lock: two users share its position, so a
/// reader that needs one of its own takes a duplicate.
class GRIOStreamInf {
 public:
  virtual ~GRIOStreamInf() = default;

  virtual bool isEOF() = 0;  ///< whether the last read ran past the end
  virtual bool isOpen() = 0;
  virtual GR_STATUS open() = 0;   ///< 0 at once on an open stream
  virtual GR_STATUS close() = 0;  ///< 0 at once on a closed stream

  /// Reads up to `length` bytes.
  /// @return how many were read; fewer than asked at the end or on failure (see getLastError),
  ///         0 on a closed stream
  virtual gr_uint32 read(gr_uint8* buffer, gr_uint32 length) = 0;
  /// @return how many bytes were written
  virtual gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) = 0;

  virtual GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) = 0;
  virtual gr_int64 tell() = 0;  ///< the position in bytes, negative on failure

  /// A new stream on the same data, closed, which the caller owns; null on failure.
  virtual GRIOStreamInf* duplicate() = 0;
  /// The status that explains a short read or write; may be 0 where a file simply ended.
  virtual GR_STATUS getLastError() = 0;
  virtual const char* getID() = 0;  ///< an identifying text, the stream's own

 protected:
  GRIOStreamInf() = default;
  GRIOStreamInf(const GRIOStreamInf&) = default;
  GRIOStreamInf& operator=(const GRIOStreamInf&) = default;
};
