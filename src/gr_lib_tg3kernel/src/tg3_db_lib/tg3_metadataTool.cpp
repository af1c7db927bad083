#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataTool.h"

#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

bool TG3MetadataTool::has(const TG3MetadataDesc& desc) const {
  return m_support != nullptr ? m_support->isCurrent(desc)
                              : m_container.hasMetadata(desc.subType, desc.subSubType, desc.image);
}

GR_STATUS TG3MetadataTool::getPacket(const TG3MetadataDesc& desc,
                                     const TG3MetadataPacket*& packet) {
  if (!has(desc) || (m_support != nullptr && m_support->isAdded(desc))) {
    return TG3_STATUS_BAD_ARGUMENT;
  }
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
  if (m_support != nullptr && m_support->isAdded(desc)) return GR_STATUS_FAILURE;
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

GR_STATUS TG3MetadataTool::getImageBounds(gr_uint32 image, gr_int64& low, gr_int64& high) {
  const TG3HeaderPacket* header = nullptr;
  GR_RETURN_IF_FAILED(m_container.getHeader(image, header));
  low = header->getImageInfo().dynamicRangeMin;
  high = header->getImageInfo().dynamicRangeMax;
  return GR_STATUS_OK;
}

GR_STATUS TG3MetadataTool::getDefaultRange(gr_uint32 image, gr_int64& low, gr_int64& high) {
  const TG3HeaderPacket* header = nullptr;
  GR_RETURN_IF_FAILED(m_container.getHeader(image, header));
  // Odd numbers of domain bits are those of signed types, without the sign.
  constexpr gr_uint32 MOST_BITS = 32;
  const TG3ImageInfo& info = header->getImageInfo();
  const gr_uint32 bits = info.domainBits;
  const bool isSigned = bits % 2 != 0;
  if (info.datatype == TG3_DATATYPE_INVALID || bits > MOST_BITS) return TG3_STATUS_FORMAT_ERROR;
  low = isSigned ? -(gr_int64{1} << bits) : 0;
  high = (gr_int64{1} << bits) - 1;
  return GR_STATUS_OK;
}

GR_STATUS TG3MetadataTool::beginEdit(TG3MetadataCopyMode mode) {
  std::unique_ptr<TG3MetadataSupport> support =
      gr_makeUnique<TG3MetadataSupport>(m_container, mode);
  if (support == nullptr) return TG3_STATUS_NO_MEMORY;
  m_support = std::move(support);
  return GR_STATUS_OK;
}

GR_STATUS TG3MetadataTool::add(const TG3MetadataDesc& desc, TG3MetadataAdderDelegate& delegate) {
  return m_support == nullptr ? TG3_STATUS_BAD_CONTEXT : m_support->add(desc, delegate);
}

GR_STATUS TG3MetadataTool::copy(const TG3MetadataDesc& desc) {
  return m_support == nullptr ? TG3_STATUS_BAD_CONTEXT : m_support->copy(desc);
}

GR_STATUS TG3MetadataTool::modify(const TG3MetadataDesc& desc,
                                  TG3MetadataModifierDelegate& delegate) {
  return m_support == nullptr ? TG3_STATUS_BAD_CONTEXT : m_support->modify(desc, delegate);
}

GR_STATUS TG3MetadataTool::remove(const TG3MetadataDesc& desc) {
  return m_support == nullptr ? TG3_STATUS_BAD_CONTEXT : m_support->remove(desc);
}

GR_STATUS TG3MetadataTool::apply(GRIOStreamInf& target) {
  return m_support == nullptr ? TG3_STATUS_BAD_CONTEXT : m_support->apply(target);
}
