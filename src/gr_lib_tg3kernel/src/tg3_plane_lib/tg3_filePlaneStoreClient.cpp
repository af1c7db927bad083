#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStoreClient.h"

#include <cstring>

#include "gr_lib_utils/include/gr_checkedMath.h"
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

/// Deciphers copies of the planes. What the reader holds stays as it is in the file, so that
/// nothing is read anew for it.
GR_STATUS TG3FilePlaneStoreClient::decipher(gr_uint32 subband, gr_uint32 subblock,
                                            TG3SubblockPlanes planes) {
  gr_uint64 numBytes = 0;
  for (const TG3PlaneData& plane : planes) numBytes = gr_saturatingAdd(numBytes, plane.length);
  if (numBytes == 0) return GR_STATUS_OK;
  if (m_lock == nullptr) return TG3_STATUS_SECURITY;
  m_deciphered.clear();
  if (!GR_SUCCESS(m_deciphered.reserve(gr_saturatingAdd(numBytes, TG3PlaneData::PADDING)))) {
    return TG3_STATUS_NO_MEMORY;
  }
  for (TG3PlaneData& plane : planes) {
    if (plane.length == 0) continue;
    gr_uint8* const bytes = m_deciphered.end();
    std::memcpy(bytes, plane.data, plane.length);
    m_deciphered.extend(plane.length);
    plane.data = bytes;
    const TG3PlaneDesc desc = {static_cast<gr_uint8>(subband), subblock, plane.component,
                               plane.plane};
    GR_RETURN_IF_FAILED(m_lock->decipher(desc, {bytes, plane.length}));
  }
  std::memset(m_deciphered.end(), 0, TG3PlaneData::PADDING);
  return GR_STATUS_OK;
}

void TG3FilePlaneStoreClient::endUse() {
  if (!m_leaveOpen) static_cast<void>(m_stream->close());
}
