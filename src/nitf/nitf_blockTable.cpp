#include "nitf/nitf_blockTable.h"

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_sampleKernels.h"
#include "nitf/nitf_readBytes.h"

namespace {

constexpr gr_uint32 ABSENT_ENTRY = 0xFFFFFFFF;

}  // namespace

void NITFBlockTable::setUniform(gr_uint64 count, gr_uint64 blockBytes) {
  m_offsets.clear();
  m_count = count;
  m_blockBytes = blockBytes;
  m_end = gr_saturatingMultiply(count, blockBytes);
}

GR_STATUS NITFBlockTable::read(GRIOStreamInf& stream, gr_uint64 count) {
  GRArray<gr_uint32> offsets;
  GR_RETURN_IF_FAILED(offsets.allocateUninitialized(count));
  GR_RETURN_IF_FAILED(nitf_readBytes(stream, offsets.data(), count * ENTRY_BYTES));
  gri_copyFromBigEndian(offsets.data(), offsets.size(), ENTRY_BYTES, offsets.data());
  m_offsets = std::move(offsets);
  m_count = count;
  m_blockBytes = 0;
  return GR_STATUS_OK;
}

gr_uint64 NITFBlockTable::getOffset(gr_uint64 block) const {
  if (block >= m_count) return ABSENT;
  if (m_offsets.empty()) return gr_saturatingMultiply(block, m_blockBytes);
  const gr_uint32 entry = m_offsets[static_cast<size_t>(block)];
  return entry == ABSENT_ENTRY ? ABSENT : entry;
}

gr_uint64 NITFBlockTable::getNextOffset(gr_uint64 block) const {
  for (gr_uint64 next = block + 1; next < m_count; ++next) {
    if (isPresent(next)) return getOffset(next);
  }
  return m_end;
}
