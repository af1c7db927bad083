#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"

#include <algorithm>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_headerPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_metadataPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_planesetPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_securityPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_tg2Packet.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_unknownPacket.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_memory.h"

gr_uint64 TG3PacketPlace::getEnd() const {
  return std::min(gr_saturatingAdd(bodyOffset, bodyLength), streamEnd);
}

std::unique_ptr<TG3Packet> TG3Packet::make(const TG3PacketType& type, const TG3PacketPlace& place) {
  switch (type.type) {
    case TG3_PACKET_TYPE_INVALID:
      return gr_makeUnique<TG3UnknownPacket>(type, place);
    case TG3_PACKET_TYPE_HEADER:
      return gr_makeUnique<TG3HeaderPacket>(type, place);
    case TG3_PACKET_TYPE_METADATA:
      return gr_makeUnique<TG3MetadataPacket>(type, place);
    case TG3_PACKET_TYPE_PLANESET:
      return gr_makeUnique<TG3PlanesetPacket>(type, place);
    case TG3_PACKET_TYPE_SECURITY:
      return gr_makeUnique<TG3SecurityPacket>(type, place);
    case TG3_PACKET_TYPE_TG2_IMAGE:
      return gr_makeUnique<TG3TG2Packet>(type, place);
    default:
      return nullptr;
  }
}

bool TG3Packet::hasClass(gr_int32 type) {
  return type >= TG3_PACKET_TYPE_INVALID && type <= TG3_PACKET_TYPE_TG2_IMAGE &&
         type != TG3_PACKET_TYPE_INDEX && type != TG3_PACKET_TYPE_CONTENTS;
}
