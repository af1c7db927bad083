#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_metadataPacket.h"

#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS TG3MetadataPacket::read(GRIOStreamInf& stream) {
  // A body can't hold more than its stream does, whatever the packet's header says.
  GRFieldReader fields(stream, m_place.getEnd() - m_place.bodyOffset);
  gr_uint32 length = 0;
  GR_RETURN_IF_FAILED(fields.read(length));
  const GR_STATUS status = fields.read(m_data, length);
  return status == GR_STATUS_NO_MEMORY ? TG3_STATUS_NO_MEMORY : status;
}
