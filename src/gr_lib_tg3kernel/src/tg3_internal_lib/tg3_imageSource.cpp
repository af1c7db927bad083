#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_imageSource.h"

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataTool.h"

GR_STATUS TG3FileSimpleImageSource::initialize() {
  const TG3HeaderPacket* header = nullptr;
  GR_RETURN_IF_FAILED(m_container.getHeader(m_imageNumber, header));
  m_info = header->getImageInfo();
  return TG3MetadataTool(m_container).readGeoref(m_info, m_georef);
}
