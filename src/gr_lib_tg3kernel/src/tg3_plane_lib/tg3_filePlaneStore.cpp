#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStore.h"

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneReader.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_fullMspTable.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_partialMspTable.h"
#include "gr_lib_utils/include/gr_memory.h"

GR_STATUS TG3FilePlaneStore::initialize(const TG3ImageInfo& info, TG3MemoryModel model,
                                        TG3FilePlaneReader& reader) {
  if (model == TG3_MEMORY_PARTIAL) {
    m_table = gr_makeUnique<TG3PartialMSPTable>(info);
  } else {
    m_table = gr_makeUnique<TG3FullMSPTable>();
  }
  if (m_table == nullptr) return TG3_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(reader.populate(*this));
  m_table->finish();
  return GR_STATUS_OK;
}

GR_STATUS TG3FilePlaneStore::add(const TG3PlaneLocation& location) {
  if (location.desc.subband == m_lastAdded.subband &&
      location.desc.subblock == m_lastAdded.subblock) {
    return GR_STATUS_OK;
  }
  m_lastAdded = location.desc;
  return m_table->add(location);
}
