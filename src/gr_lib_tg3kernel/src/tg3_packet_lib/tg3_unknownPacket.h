/// @file
/// TG3UnknownPacket, bytes without a meaning.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"
#include "gr_lib_utils/include/gr_memory.h"

/// A packet of type 0, kept as it is.
class TG3UnknownPacket final : public TG3Packet {
 public:
  TG3UnknownPacket(const TG3PacketType& type, const TG3PacketPlace& place)
      : TG3Packet(type, place) {}

  std::span<const gr_uint8> getData() const { return m_data.span(); }

  /// @return 0; 2001 when the body isn't all there; 2005 for 2^32 - 1 bytes or more; 2012 for
  ///         memory
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream) override;

 private:
  GRArray<gr_uint8> m_data;
};
