#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStoreClient.h"

#include "gr_lib_utils/include/gr_status.h"

GR_STATUS TG3FilePlaneStoreClient::readSubblock(gr_uint32 subband, gr_uint32 subblock,
                                                TG3SubblockPlanes& planes) {
  planes = {};
  GR_RETURN_IF_FAILED(m_stream->open());
  bool found = false;
  TG3PlaneLocation first;
  GR_RETURN_IF_FAILED(m_store.lookup(subband, subblock, *m_reader, found, first));
  if (!found) return GR_STATUS_OK;
  TG3SubblockPlanes read;
  GR_RETURN_IF_FAILED(m_reader->readSubblock(first, read));
  if (m_info.locked) GR_RETURN_IF_FAILED(decipher(subband, subblock, read));
  planes = read;
  return GR_STATUS_OK;
}

GR_STATUS TG3FilePlaneStoreClient::decipher(gr_uint32 subband, gr_uint32 subblock,
                                            TG3SubblockPlanes planes) {
  // What is deciphered in place isn't what the file has.
  m_reader->forget();
  for (const TG3PlaneData& plane : planes) {
    if (plane.length == 0) continue;
    if (m_lock == nullptr) return TG3_STATUS_SECURITY;
    const TG3PlaneDesc desc = {static_cast<gr_uint8>(subband), subblock, plane.component,
                               plane.plane};
    GR_RETURN_IF_FAILED(m_lock->decipher(desc, {plane.data, plane.length}));
  }
  return GR_STATUS_OK;
}

void TG3FilePlaneStoreClient::endUse() {
  if (!m_leaveOpen) static_cast<void>(m_stream->close());
}
