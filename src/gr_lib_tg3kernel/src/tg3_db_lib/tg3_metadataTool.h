/// @file
/// TG3MetadataTool, the blocks of metadata of a container.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_container.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_georefData.h"
#include "gr_lib_utils/include/gr_ioStream.h"

/// The keys of a block of metadata.
struct TG3MetadataDesc {
  gr_uint32 subType = TG3PacketType::ANY;
  gr_uint32 subSubType = TG3PacketType::ANY;
  gr_uint32 image = TG3PacketType::ANY;

  /// The block with an image's records (GRIMetadataClassicalReader).
  static TG3MetadataDesc classical(gr_uint32 image) { return {1, 0, image}; }
  /// The block with an image's georeference (TG3GeorefData).
  static TG3MetadataDesc georef(gr_uint32 image) { return {3, 0, image}; }

  bool operator==(const TG3MetadataDesc&) const = default;
};

class TG3MetadataTool {
 public:
  /// @param container  initialized; stays the caller's and outlives the tool
  explicit TG3MetadataTool(TG3Container& container) : m_container(container) {}

  /// Whether the container has a block with these keys.
  bool has(const TG3MetadataDesc& desc) const;
  /// Gives the bytes of a block, which stay the container's.
  /// @return 0; 2009 where there is no such block, or more than one; else the status of reading it
  [[nodiscard]] GR_STATUS get(const TG3MetadataDesc& desc, std::span<const gr_uint8>& data);
  /// Writes the bytes of a block to a stream, which is open.
  /// @return as above; 2002 for a short write
  [[nodiscard]] GR_STATUS get(const TG3MetadataDesc& desc, GRIOStreamInf& stream);
  /// Gives the place of a block in the container's stream, in bytes.
  /// @return as above
  [[nodiscard]] GR_STATUS getPlace(const TG3MetadataDesc& desc, gr_uint64& offset,
                                   gr_uint64& length);
  /// Reads the georeference of an image.
  /// @param data  receives it; emptied where the image has none
  /// @return 0; else the status of get() or of TG3GeorefData::read
  [[nodiscard]] GR_STATUS readGeoref(const TG3ImageInfo& info, TG3GeorefData& data);

 private:
  GR_STATUS getPacket(const TG3MetadataDesc& desc, const TG3MetadataPacket*& packet);

  TG3Container& m_container;
};
