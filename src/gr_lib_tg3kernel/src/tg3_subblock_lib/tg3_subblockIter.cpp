#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockIter.h"

#include "gr_lib_utils/include/gr_memory.h"

GR_STATUS TG3SubblockIter::make(const TG3ImageInfo& info, TG3Ordering ordering,
                                std::unique_ptr<TG3SubblockIter>& iter) {
  std::unique_ptr<TG3SubblockIter> made;
  switch (ordering) {
    case TG3_ORDERING_PIPE:
      made = gr_makeUnique<PipeSubblockIter>(info);
      break;
    case TG3_ORDERING_SBCP:
      made = gr_makeUnique<SBCPSubblockIter>(info);
      break;
    default:
      return TG3_STATUS_BAD_ARGUMENT;
  }
  if (made == nullptr) return TG3_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(made->begin());
  iter = std::move(made);
  return GR_STATUS_OK;
}

void TG3SubblockIter::advance(gr_uint64 count) {
  if (count >= m_left) {
    m_left = 0;
    return;
  }
  m_left -= count;
  step(count);
}

GR_STATUS PipeSubblockIter::begin() {
  GR_RETURN_IF_FAILED(
      m_ordering.initialize(m_info.subblockSize, m_info.numLevels, m_info.height, m_info.width));
  step(0);
  return GR_STATUS_OK;
}

void PipeSubblockIter::step(gr_uint64 count) {
  m_index += count;
  const TG3SubblockPosition position = m_ordering.position(m_index);
  m_subband = position.subband;
  m_subblock = m_info.getSubblockIndex(position.subband, position.row, position.column);
}

GR_STATUS SBCPSubblockIter::begin() { return GR_STATUS_OK; }

void SBCPSubblockIter::step(gr_uint64 count) {
  gr_uint64 subblock = m_subblock + count;
  while (subblock >= m_info.getNumSubblocks(m_subband)) {
    subblock -= m_info.getNumSubblocks(m_subband);
    ++m_subband;
  }
  m_subblock = static_cast<gr_uint32>(subblock);
}
