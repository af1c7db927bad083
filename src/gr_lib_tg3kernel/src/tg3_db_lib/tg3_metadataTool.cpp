#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataTool.h"

#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

bool TG3MetadataTool::has(const TG3MetadataDesc& desc) const {
  return m_container.hasMetadata(desc.subType, desc.subSubType, desc.image);
}

GR_STATUS TG3MetadataTool::getPacket(const TG3MetadataDesc& desc,
                                     const TG3MetadataPacket*& packet) {
  if (!has(desc)) return TG3_STATUS_BAD_ARGUMENT;
  GR_RETURN_IF_FAILED(m_container.getMetadata(desc.subType, desc.subSubType, desc.image, packet));
  return packet == nullptr ? TG3_STATUS_BAD_ARGUMENT : GR_STATUS_OK;
}

GR_STATUS TG3MetadataTool::get(const TG3MetadataDesc& desc, std::span<const gr_uint8>& data) {
  const TG3MetadataPacket* packet = nullptr;
  GR_RETURN_IF_FAILED(getPacket(desc, packet));
  data = packet->getData();
  return GR_STATUS_OK;
}

GR_STATUS TG3MetadataTool::get(const TG3MetadataDesc& desc, GRIOStreamInf& stream) {
  std::span<const gr_uint8> data;
  GR_RETURN_IF_FAILED(get(desc, data));
  const gr_uint32 length = static_cast<gr_uint32>(data.size());  // a 32-bit field in the file
  return stream.write(data.data(), length) == length ? GR_STATUS_OK : TG3_STATUS_WRITE_ERROR;
}

GR_STATUS TG3MetadataTool::getPlace(const TG3MetadataDesc& desc, gr_uint64& offset,
                                    gr_uint64& length) {
  const TG3MetadataPacket* packet = nullptr;
  GR_RETURN_IF_FAILED(getPacket(desc, packet));
  offset = packet->getDataOffset();
  length = packet->getData().size();
  return GR_STATUS_OK;
}

GR_STATUS TG3MetadataTool::readGeoref(const TG3ImageInfo& info, TG3GeorefData& data) {
  const TG3MetadataDesc desc = TG3MetadataDesc::georef(info.image);
  data = TG3GeorefData();
  if (!has(desc)) return GR_STATUS_OK;
  const std::unique_ptr<GRIODynamicMemStream> memory = GRIOStreamUtils::openMemStream();
  if (memory == nullptr) return TG3_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(get(desc, *memory));
  const gr_uint32 length = memory->getSize();
  GR_RETURN_IF_FAILED(memory->seek(0, GRIO_SEEK_BEGIN));
  return data.read(*memory, length, info);
}
