/// @file
/// TG3MetadataPacket, a block of metadata.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"
#include "gr_lib_utils/include/gr_memory.h"

/// A block of bytes; the subtypes and the image in the packet's header say which.
class TG3MetadataPacket final : public TG3Packet {
 public:
  TG3MetadataPacket(const TG3PacketType& type, const TG3PacketPlace& place)
      : TG3Packet(type, place) {}

  std::span<const gr_uint8> getData() const { return m_data.span(); }
  /// Where the block lies in the stream, in bytes; it has getData().size() of them.
  gr_uint64 getDataOffset() const { return m_place.bodyOffset + LENGTH_BYTES; }

  /// @return 0; 2001 when the block isn't all there; 2012 for memory
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream) override;

 private:
  static constexpr gr_uint64 LENGTH_BYTES = 4;

  GRArray<gr_uint8> m_data;
};
