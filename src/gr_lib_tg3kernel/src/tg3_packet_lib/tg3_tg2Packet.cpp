#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_tg2Packet.h"

#include "gr_lib_utils/include/gr_status.h"

GR_STATUS TG3TG2Packet::read(GRIOStreamInf& /*stream*/) {
  const bool isInside = m_place.bodyLength <= m_place.streamEnd - m_place.bodyOffset;
  return isInside ? GR_STATUS_OK : TESRA_STATUS_INVALID_FORMAT;
}
