#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneSource.h"

#include <cstdlib>

#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_memory.h"

GR_STATUS TG3FileSimplePlaneSource::initialize(TG3FileSimpleContainer& container, gr_uint32 image,
                                               TesraMemoryUsage usage) {
  const TG3HeaderPacket* header = nullptr;
  GR_RETURN_IF_FAILED(container.getHeader(image, header));
  GR_RETURN_IF_FAILED(container.getPlaneset(image, m_planeset));
  m_info = header->getImageInfo();
  m_model = tg3_chooseMemoryModel(usage, m_info, *m_planeset);
  if (m_model == TG3_MEMORY_NONE) return TG3_STATUS_BAD_ARGUMENT;

  std::unique_ptr<GRIOStreamInf> stream = container.duplicateStream();
  if (stream == nullptr) return TG3_STATUS_NO_MEMORY;
  const bool useBuffers = std::getenv("TG3_USE_STREAM_BUFFERS") != nullptr;
  std::unique_ptr<TG3FilePlaneReader> reader;
  GR_RETURN_IF_FAILED(TG3FilePlaneReader::make(m_info, *m_planeset, *stream, useBuffers, reader));
  {
    GRIOStreamOpener opener(*stream, container.leavesOpen());
    GR_RETURN_IF_FAILED(opener.open());
    GR_RETURN_IF_FAILED(opener.close(m_store.initialize(m_info, m_model, *reader)));
  }
  if (m_info.locked) GR_RETURN_IF_FAILED(makeLock(container, image));
  m_client = gr_makeUnique<TG3FilePlaneStoreClient>(
      m_info, m_store, m_lock.get(), std::move(stream), std::move(reader), container.leavesOpen());
  return m_client == nullptr ? TG3_STATUS_NO_MEMORY : GR_STATUS_OK;
}

GR_STATUS TG3FileSimplePlaneSource::makeLock(TG3FileSimpleContainer& container, gr_uint32 image) {
  const TG3SecurityPacket* security = nullptr;
  GR_RETURN_IF_FAILED(container.getSecurity(image, security));
  return security == nullptr ? GR_STATUS_OK : GRLock::make(*security, m_info, m_lock);
}
