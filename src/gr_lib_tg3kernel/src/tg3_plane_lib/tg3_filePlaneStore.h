/// @file
/// TG3FilePlaneStore, the index of the coded planes of an image in a file.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_memoryModel.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_mspTable.h"

/// Filled once by a reader; only read from then on.
class TG3FilePlaneStore {
 public:
  TG3FilePlaneStore() = default;
  TG3FilePlaneStore(const TG3FilePlaneStore&) = delete;
  TG3FilePlaneStore& operator=(const TG3FilePlaneStore&) = delete;

  /// Reads all records of the image.
  /// @param info   the image; the caller's, and it outlives the store
  /// @param model  full or partial
  /// @return 0; 2012 for memory; else the status of TG3FilePlaneReader::populate
  [[nodiscard]] GR_STATUS initialize(const TG3ImageInfo& info, TG3MemoryModel model,
                                     TG3FilePlaneReader& reader);

  /// Adds a stored plane; in a subblock the first one counts. Only for the reader that populates.
  /// @return 0; 2012 for memory
  [[nodiscard]] GR_STATUS add(const TG3PlaneLocation& location);

  /// See TG3MSPTable::lookup.
  [[nodiscard]] GR_STATUS lookup(gr_uint32 subband, gr_uint32 subblock, TG3FilePlaneReader& reader,
                                 bool& found, TG3PlaneLocation& location) const {
    return m_table->lookup(subband, subblock, reader, found, location);
  }
  bool hasAny(gr_uint32 subband, gr_uint32 first, gr_uint32 last) const {
    return m_table->hasAny(subband, first, last);
  }

 private:
  std::unique_ptr<TG3MSPTable> m_table;
  TG3PlaneDesc m_lastAdded;
};
