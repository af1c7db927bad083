/// @file
/// DBObjectProxy, a packet that stays in its stream until someone asks for it.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"
#include "gr_lib_utils/include/gr_ioStream.h"

class DBObjectProxy {
 public:
  DBObjectProxy(const TG3PacketType& type, const TG3PacketPlace& place)
      : m_type(type), m_place(place) {}

  const TG3PacketType& getType() const { return m_type; }
  const TG3PacketPlace& getPlace() const { return m_place; }

  /// Gives the packet, which stays the proxy's; the first success reads it, later ones don't. The
  /// position of the stream is kept.
  /// @param stream  open; the one that the proxy was made from
  /// @return 0; 2010 for a type without a class; 2012 for memory; else the status of the stream or
  ///         of the packet's read. `packet` is null then.
  [[nodiscard]] GR_STATUS fetch(GRIOStreamInf& stream, const TG3Packet*& packet);

 private:
  TG3PacketType m_type;
  TG3PacketPlace m_place;
  std::unique_ptr<TG3Packet> m_packet;
};
