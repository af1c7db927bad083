#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_dbObjectProxy.h"

#include "gr_lib_utils/include/gr_status.h"

GR_STATUS DBObjectProxy::fetch(GRIOStreamInf& stream, const TG3Packet*& packet) {
  packet = m_packet.get();
  if (packet != nullptr) return GR_STATUS_OK;
  if (!TG3Packet::hasClass(m_type.type)) return TG3_STATUS_BAD_CONTEXT;
  std::unique_ptr<TG3Packet> made = TG3Packet::make(m_type, m_place);
  if (made == nullptr) return TG3_STATUS_NO_MEMORY;

  const gr_int64 before = stream.tell();
  if (before < 0) return TG3_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(stream.seek(static_cast<gr_int64>(m_place.bodyOffset), GRIO_SEEK_BEGIN));
  const GR_STATUS status = made->read(stream);
  const GR_STATUS restored = stream.seek(before, GRIO_SEEK_BEGIN);
  GR_RETURN_IF_FAILED(status);
  GR_RETURN_IF_FAILED(restored);
  m_packet = std::move(made);
  packet = m_packet.get();
  return GR_STATUS_OK;
}
