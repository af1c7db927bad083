#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_planesetPacket.h"

#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS TG3PlanesetPacket::read(GRIOStreamInf& stream) {
  if (m_type.versionMajor != 0 || m_type.versionMinor > 1) return TG3_STATUS_BAD_VERSION;
  GRFieldReader fields(stream, m_place.bodyLength);
  gr_uint8 ordering = 0;
  gr_uint8 storage = 0;
  gr_uint64 numPlanes = 0;
  GR_RETURN_IF_FAILED(fields.read(ordering));
  GR_RETURN_IF_FAILED(fields.read(storage));
  GR_RETURN_IF_FAILED(fields.read(numPlanes));
  if (ordering != TG3_ORDERING_PIPE && ordering != TG3_ORDERING_SBCP) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
  if (storage != TG3_STORAGE_INTERLEAVED && storage != TG3_STORAGE_DATA_FIRST &&
      storage != TG3_STORAGE_RASTER_BLOCK) {
    return TG3_STATUS_FORMAT_ERROR;
  }
  m_ordering = static_cast<TG3Ordering>(ordering);
  m_storage = static_cast<TG3Storage>(storage);
  m_numPlanes = numPlanes;
  return GR_STATUS_OK;
}
