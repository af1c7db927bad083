/// @file
/// TG3MetadataTool, the blocks of metadata of a container.
#pragma once

#include <memory>
#include <span>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_container.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataDesc.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataSupport.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_georefData.h"
#include "gr_lib_utils/include/gr_ioStream.h"

/// Reads blocks, and writes the container anew with blocks added, changed or taken away. The
/// container itself never changes: what is edited is what apply() writes.
class TG3MetadataTool {
 public:
  /// @param container  initialized; stays the caller's and outlives the tool
  explicit TG3MetadataTool(TG3Container& container) : m_container(container) {}

  /// Whether the container has a block with these keys, after the edits so far.
  bool has(const TG3MetadataDesc& desc) const;
  /// Gives the bytes of a block, which stay the container's.
  /// @return 0; 2009 where there is no such block, or more than one, or where it is yet to be
  ///         written; else the status of reading it
  [[nodiscard]] GR_STATUS get(const TG3MetadataDesc& desc, std::span<const gr_uint8>& data);
  /// Writes the bytes of a block to a stream, which is open.
  /// @return as above; 2002 for a short write
  [[nodiscard]] GR_STATUS get(const TG3MetadataDesc& desc, GRIOStreamInf& stream);
  /// Gives the place of a block in the container's stream, in bytes.
  /// @return as above, but 1 for a block that is yet to be written
  [[nodiscard]] GR_STATUS getPlace(const TG3MetadataDesc& desc, gr_uint64& offset,
                                   gr_uint64& length);
  /// Reads the georeference of an image.
  /// @param data  receives it; emptied where the image has none
  /// @return 0; else the status of get() or of TG3GeorefData::read
  [[nodiscard]] GR_STATUS readGeoref(const TG3ImageInfo& info, TG3GeorefData& data);

  /// The smallest and the largest sample of an image, as its header has them.
  /// @return 0; else the status of TG3Container::getHeader
  [[nodiscard]] GR_STATUS getImageBounds(gr_uint32 image, gr_int64& low, gr_int64& high);
  /// All that samples of an image's data type can be.
  /// @return as above; 2005 for a data type without integers
  [[nodiscard]] GR_STATUS getDefaultRange(gr_uint32 image, gr_int64& low, gr_int64& high);

  /// Begins an edit; an earlier one is forgotten.
  /// @return 0; 2012 for memory
  [[nodiscard]] GR_STATUS beginEdit(TG3MetadataCopyMode mode = TG3_METADATA_COPY_ALL);
  // Each is as in TG3MetadataSupport, or 2010 when no edit has begun.
  [[nodiscard]] GR_STATUS add(const TG3MetadataDesc& desc, TG3MetadataAdderDelegate& delegate);
  [[nodiscard]] GR_STATUS copy(const TG3MetadataDesc& desc);
  [[nodiscard]] GR_STATUS modify(const TG3MetadataDesc& desc,
                                 TG3MetadataModifierDelegate& delegate);
  [[nodiscard]] GR_STATUS remove(const TG3MetadataDesc& desc);
  [[nodiscard]] GR_STATUS apply(GRIOStreamInf& target);

 private:
  GR_STATUS getPacket(const TG3MetadataDesc& desc, const TG3MetadataPacket*& packet);

  TG3Container& m_container;
  std::unique_ptr<TG3MetadataSupport> m_support;  // null while nothing is edited
};
