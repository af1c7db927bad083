#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDescIter.h"

GR_STATUS TG3PlaneDescIter::initialize(const TG3ImageInfo& info, TG3Ordering ordering) {
  std::unique_ptr<TG3SubblockIter> subblocks;
  GR_RETURN_IF_FAILED(TG3SubblockIter::make(info, ordering, subblocks));
  m_subblocks = std::move(subblocks);
  m_numPlanes = info.numPlanes;
  m_numComponents = info.numComponents;
  m_left = info.getTotalSlots();
  m_desc = TG3PlaneDesc();
  m_desc.component = 0;
  m_desc.plane = 0;
  readSubblock();
  return GR_STATUS_OK;
}

void TG3PlaneDescIter::advance(gr_uint64 count) {
  if (count >= m_left) {
    m_left = 0;
    m_desc = TG3PlaneDesc();
    return;
  }
  m_left -= count;
  const gr_uint64 plane = m_desc.plane + count;
  if (plane < m_numPlanes) {
    m_desc.plane = static_cast<gr_uint8>(plane);
    return;
  }
  m_desc.plane = static_cast<gr_uint8>(plane % m_numPlanes);
  const gr_uint64 component = m_desc.component + plane / m_numPlanes;
  m_desc.component = static_cast<gr_uint16>(component % m_numComponents);
  if (component < m_numComponents) return;
  m_subblocks->advance(component / m_numComponents);
  readSubblock();
}

void TG3PlaneDescIter::readSubblock() {
  m_desc.subband = static_cast<gr_uint8>(m_subblocks->getSubband());
  m_desc.subblock = m_subblocks->getSubblock();
}
