/// @file
/// TG3TG2Packet, a whole image file of the older generation.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"

/// Its body is the file; reading it takes no bytes.
class TG3TG2Packet final : public TG3Packet {
 public:
  TG3TG2Packet(const TG3PacketType& type, const TG3PacketPlace& place) : TG3Packet(type, place) {}

  gr_uint64 getBodyStart() const { return m_place.bodyOffset; }  ///< bytes from the stream's start
  /// Behind the last byte of the file. Equal to getBodyStart() for a body with an open end, which
  /// can't be a file of that generation.
  gr_uint64 getBodyEnd() const {
    return m_place.isOpenEnded ? m_place.bodyOffset : m_place.bodyOffset + m_place.bodyLength;
  }

  /// @return 0; 50607 when the body passes the end of the stream
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream) override;
};
