/// @file
/// GRIMetadataClassicalReader, which reads the classical block of metadata records.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"

class GRIMetadataDatabase;

/// Reads the block of records that Tesra files carry. All numbers are big-endian:
///
///     2  version, major (signed; 2 and more aren't read)
///     2  version, minor
///     records, until one that is named "IMAGE::EOM" or has an empty name
///
/// and each record:
///
///     4  unused
///     n  name, zero-terminated, at most 99 characters
///     4  type of the values
///     4  number of values
///     4  number of dimensions, 0 to 10; 0 stands for one dimension
///     4  each dimension; their product is the number of values
///     n  the values; texts are zero-terminated
class GRIMetadataClassicalReader {
 public:
  /// @param database  receives the records; the caller's
  /// @param stream    open, at the block; the caller's. Its position is nowhere in particular
  ///                  afterwards.
  /// @param length    bytes that the block may take; it usually ends before
  GRIMetadataClassicalReader(GRIMetadataDatabase& database, GRIOStreamInf& stream, gr_uint64 length)
      : m_database(database), m_stream(stream), m_length(length) {}

  /// Adds the records. A name that is there already gets its new values; "IMAGE::SOM" and
  /// "IMAGE::EOM" aren't added.
  /// @return 0; 50505 for a block that ends early or makes no sense, and then the records in front
  ///         of the fault are there; 8 for memory
  [[nodiscard]] GR_STATUS read();

 private:
  GRIMetadataDatabase& m_database;
  GRIOStreamInf& m_stream;
  gr_uint64 m_length;
};
