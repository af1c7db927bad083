#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_unknownPacket.h"

#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS TG3UnknownPacket::read(GRIOStreamInf& stream) {
  if (m_place.bodyLength >= 0xFFFFFFFF) return TG3_STATUS_FORMAT_ERROR;
  GRFieldReader fields(stream, m_place.getEnd() - m_place.bodyOffset);
  const GR_STATUS status = fields.read(m_data, m_place.bodyLength);
  return status == GR_STATUS_NO_MEMORY ? TG3_STATUS_NO_MEMORY : status;
}
