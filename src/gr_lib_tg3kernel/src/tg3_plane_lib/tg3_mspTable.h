/// @file
/// TG3MSPTable, where each subblock's first stored plane lies.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDesc.h"

class TG3FilePlaneReader;

/// A plane in a file. Offsets count from the start of the stream.
struct TG3PlaneLocation {
  TG3PlaneDesc desc;
  gr_uint64 dataOffset = 0;    ///< of what stands in front of the coded bytes
  gr_uint64 lengthOffset = 0;  ///< of the record
};

/// The index of an image: for each subblock that has planes, the most significant one. It is filled
/// once, while all records are read, and memory is in proportion to what is added.
class TG3MSPTable {
 public:
  virtual ~TG3MSPTable() = default;
  TG3MSPTable(const TG3MSPTable&) = delete;
  TG3MSPTable& operator=(const TG3MSPTable&) = delete;

  /// Adds the first stored plane of a subblock. A subblock that is added again keeps its first.
  /// @return 0; 2012 for memory
  [[nodiscard]] virtual GR_STATUS add(const TG3PlaneLocation& location) = 0;
  /// To be called once after the last add().
  virtual void finish() = 0;

  /// Finds the first stored plane of a subblock of the image.
  /// @param reader  the reader of the caller, in case records have to be read
  /// @param found   receives whether the subblock has one
  /// @return 0; the reader's status
  [[nodiscard]] virtual GR_STATUS lookup(gr_uint32 subband, gr_uint32 subblock,
                                         TG3FilePlaneReader& reader, bool& found,
                                         TG3PlaneLocation& location) const = 0;
  /// Whether one of the subblocks `first` to `last`, both included, was added.
  virtual bool hasAny(gr_uint32 subband, gr_uint32 first, gr_uint32 last) const = 0;

 protected:
  TG3MSPTable() = default;
};
