/// @file
/// GRFileUtils, the file operations on a GRFileSpec.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_types.h"

/// File operations of the system on paths.
///
/// A path made of one piece is taken byte for byte. One that was joined has backslashes where the
/// system wants slashes: when nothing is there under the very name, they are read as slashes.
///
/// Queries never fail, they answer false or an empty value. Where a path has to be put together,
/// every operation can throw GRUtilException(GR_STATUS_NO_MEMORY).
class GRFileUtils {
 public:
  /// Whether there is something under this name.
  static bool fileExists(const GRFileSpec& path);
  static bool isDirectory(const GRFileSpec& path);

  /// A C file, which the caller closes; null on failure.
  static FILE* fopen(const GRFileSpec& path, const char* mode);
  static FILE* freopen(const GRFileSpec& path, const char* mode, FILE* file);

  /// @return 0 or GR_STATUS_DELETE
  static GR_STATUS remove(const GRFileSpec& path);
  static GR_STATUS removeDirectory(const GRFileSpec& path);
  /// @return 0 or GR_STATUS_CREATEDIR
  static GR_STATUS createDirectory(const GRFileSpec& path);
  /// @return 0 or GR_STATUS_MOVE
  static GR_STATUS move(const GRFileSpec& from, const GRFileSpec& to);
  /// Copies the contents; an existing target is overwritten.
  /// @return 0; GR_STATUS_FAILURE when `from` doesn't exist, when both are one file, and when a
  ///         read or write falls short; 50004 when one of the two can't be opened
  static GR_STATUS copy(const GRFileSpec& from, const GRFileSpec& to);

  static gr_uint64 getFileSize(const GRFileSpec& path);  ///< bytes; 0 when there is no such file
  /// Time of the last change in Unix seconds, limited to what fits; 0 when there is no such file.
  static gr_uint32 getFileTime(const GRFileSpec& path);
  /// A time in units of 100 ns since 1601 as Unix seconds: 0 for what lies before 1970, and the
  /// largest number for what lies past the end of the type.
  static gr_uint32 fileTimeToUnix(gr_uint64 fileTime);

  /// The names in a directory, in no order, without "." and "..".
  static std::vector<std::string> listDirectory(const GRFileSpec& path);
  /// The current directory; the empty specification when its name takes 260 bytes or more.
  static GRFileSpec getCurrentDirectory();

  /// Makes a new, empty file with a name that no other has.
  /// @param directory  where; when empty, what the environment variables TMPDIR or TEMP name, or
  ///                   else "/tmp"
  /// @param prefix  how its name begins; null for "gri"
  /// @param path  receives the path of the file; left alone on failure
  /// @return 0; 3034 when the directory doesn't exist or takes no file; 8 for memory
  static GR_STATUS makeTempFile(const GRFileSpec& directory, const char* prefix, GRFileSpec& path);
};
