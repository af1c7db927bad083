/// @file
/// TG3HeaderPacket, the description of one image.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"

class TG3HeaderPacket final : public TG3Packet {
 public:
  TG3HeaderPacket(const TG3PacketType& type, const TG3PacketPlace& place)
      : TG3Packet(type, place) {}

  const TG3ImageInfo& getImageInfo() const { return m_info; }

  /// Reads the body and checks every size in it. Colour space, data type, colour transform,
  /// boundary and wavelet are taken as they are: whoever uses them says what it can't do.
  /// @return 0; 2001 for a body that ends early, a version other than 0.0, or a last byte outside
  ///         of 1 to 5; 2005 for sizes that no image can have (TG3ImageInfo), and a dynamic range
  ///         that is empty; 2006 for reserved flags
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream) override;

 private:
  TG3ImageInfo m_info;
};
