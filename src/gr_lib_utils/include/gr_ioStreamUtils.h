/// @file
/// GRIOStreamUtils, what is done with streams everywhere.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStream.h"

class GRIOStreamUtils {
 public:
  /// An open stream over a file, from its begin; null on any failure, also of memory.
  static std::unique_ptr<GRIOStreamInf> openFileStream(const GRFileSpec& path);    ///< to read
  static std::unique_ptr<GRIOStreamInf> openFileStream(const char* path);          ///< to read
  static std::unique_ptr<GRIOStreamInf> openReadStream(const GRFileSpec& path);    ///< mode "rb"
  static std::unique_ptr<GRIOStreamInf> openWriteStream(const GRFileSpec& path);   ///< mode "wb"
  static std::unique_ptr<GRIOStreamInf> openAppendStream(const GRFileSpec& path);  ///< mode "ab"
  static std::unique_ptr<GRIOStreamInf> openStream(const GRFileSpec& path, const char* mode);

  /// An open memory stream of 4096 bytes that grows by 1.6; null when memory runs out.
  static std::unique_ptr<GRIODynamicMemStream> openMemStream();

  /// Closes a stream, deletes it and makes the pointer null; null does nothing.
  static void closeAndDelete(GRIOStreamInf*& stream);
  static void closeAndDelete(std::unique_ptr<GRIOStreamInf>& stream);

  /// Copies from the positions of both to the end of `source`.
  /// @return 0; 1 when a write falls short; 8 for memory
  [[nodiscard]] static GR_STATUS copy(GRIOStreamInf& destination, GRIOStreamInf& source);
  /// Copies at most `numBytes` bytes from the positions of both; fewer where `source` ends.
  /// A short write is continued as long as its reason is "try again" (4, 11), but not for more
  /// than 1000 writes in a row that take nothing.
  /// @return 0; the last error of `source` or `destination` otherwise, 1 where that is 0; 8 for
  ///         memory
  [[nodiscard]] static GR_STATUS copy(GRIOStreamInf& destination, GRIOStreamInf& source,
                                      gr_int64 numBytes);
  /// Whether two open streams hold the same bytes, from begin to end; not where one can't be read
  /// to its end. Their positions are restored.
  static bool compare(GRIOStreamInf& a, GRIOStreamInf& b);
  /// Writes all of an open stream to a new file; the position is restored.
  /// @return 0; 50004 when the file can't be made; the stream's last error, or 1 where that is 0,
  ///         when it can't be read to its end; else as copy()
  [[nodiscard]] static GR_STATUS copyToFile(GRIOStreamInf& stream, const GRFileSpec& path);
  /// The length of an open stream in bytes; negative on failure. The position is restored.
  static gr_int64 getStreamLength(GRIOStreamInf& stream);
  /// A duplicate that is open at the same position where the stream is open; null on failure.
  static std::unique_ptr<GRIOStreamInf> duplicateAt(GRIOStreamInf& stream);

  /// Writes formatted text of up to 32 MiB.
  /// @return 0; 1 for a bad format or longer text; the last error of the stream, or 1 where that
  ///         is 0, for a short write; 8 for memory
  [[nodiscard]] static GR_STATUS printf(GRIOStreamInf& stream, const char* format, ...)
      __attribute__((format(printf, 2, 3)));
};
