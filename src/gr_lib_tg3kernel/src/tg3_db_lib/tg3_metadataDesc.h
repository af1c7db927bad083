/// @file
/// TG3MetadataDesc, the keys of a block of metadata.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packetType.h"

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
