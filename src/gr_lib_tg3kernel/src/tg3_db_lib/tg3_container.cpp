#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_container.h"

#include <algorithm>
#include <utility>

#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint32 ANY = TG3PacketType::ANY;

// An image with its place in the file.
struct PlacedImage {
  TG3ImageDesc desc;
  size_t place = 0;
};

}  // namespace

GR_STATUS TG3Container::initialize() {
  const std::lock_guard guard(m_lock);
  if (m_isInitialized) return TG3_STATUS_BAD_CONTEXT;
  m_isInitialized = true;
  GR_RETURN_IF_FAILED(readPackets(m_packets));
  return makeImages();
}

GR_STATUS TG3Container::makeImages() {
  GRArray<PlacedImage> found;
  if (!GR_SUCCESS(found.allocate(m_packets.count()))) return TG3_STATUS_NO_MEMORY;
  size_t count = 0;
  for (const DBObjectProxy& proxy : std::as_const(m_packets).getProxies()) {
    const TG3PacketType& type = proxy.getType();
    if (type.type == TG3_PACKET_TYPE_HEADER) {
      found[count] = {{type.image, TG3_IMAGE_TG3}, count};
      ++count;
    } else if (type.type == TG3_PACKET_TYPE_TG2_IMAGE) {
      found[count] = {{type.image, TG3_IMAGE_TG2}, count};
      ++count;
    }
  }

  // Of several with one number the first one counts. Sorting keeps this cheap for many.
  const auto byNumber = [](const PlacedImage& a, const PlacedImage& b) {
    return std::pair(a.desc.image, a.place) < std::pair(b.desc.image, b.place);
  };
  const auto byPlace = [](const PlacedImage& a, const PlacedImage& b) { return a.place < b.place; };
  const auto haveOneNumber = [](const PlacedImage& a, const PlacedImage& b) {
    return a.desc.image == b.desc.image;
  };
  PlacedImage* const begin = found.begin();
  std::sort(begin, begin + count, byNumber);
  PlacedImage* const end = std::unique(begin, begin + count, haveOneNumber);
  const size_t numImages = static_cast<size_t>(end - begin);

  GRArray<TG3ImageDesc> images;
  if (!GR_SUCCESS(images.allocate(numImages))) return TG3_STATUS_NO_MEMORY;
  std::transform(begin, end, images.begin(), [](const PlacedImage& image) { return image.desc; });
  std::sort(begin, end, byPlace);
  for (const PlacedImage* image = begin; image != end; ++image) {
    if (m_images.append(image->desc) == nullptr) return TG3_STATUS_NO_MEMORY;
    m_hasTG2Image = m_hasTG2Image || image->desc.kind == TG3_IMAGE_TG2;
  }
  m_imagesByNumber = std::move(images);
  return GR_STATUS_OK;
}

GR_STATUS TG3Container::getDesc(gr_uint32 image, TG3ImageDesc& desc) const {
  const TG3ImageDesc* const found = std::lower_bound(
      m_imagesByNumber.begin(), m_imagesByNumber.end(), image,
      [](const TG3ImageDesc& candidate, gr_uint32 number) { return candidate.image < number; });
  if (found == m_imagesByNumber.end() || found->image != image) return TG3_STATUS_BAD_ARGUMENT;
  desc = *found;
  return GR_STATUS_OK;
}

GR_STATUS TG3Container::getPacket(const TG3PacketType& query, const TG3Packet*& packet) {
  const std::lock_guard guard(m_lock);
  packet = nullptr;
  DBObjectProxy* const proxy = m_packets.findOne(query);
  return proxy == nullptr ? GR_STATUS_OK : fetch(*proxy, packet);
}

template <typename PacketClass>
GR_STATUS TG3Container::getPacketOf(const TG3PacketType& query, const PacketClass*& packet) {
  packet = nullptr;
  const TG3Packet* found = nullptr;
  GR_RETURN_IF_FAILED(getPacket(query, found));
  packet = static_cast<const PacketClass*>(found);  // the type in the query has this class
  return GR_STATUS_OK;
}

GR_STATUS TG3Container::getHeader(gr_uint32 image, const TG3HeaderPacket*& packet) {
  GR_RETURN_IF_FAILED(
      getPacketOf(TG3PacketType::query(TG3_PACKET_TYPE_HEADER, ANY, ANY, image), packet));
  return packet == nullptr ? TG3_STATUS_BAD_CONTEXT : GR_STATUS_OK;
}

GR_STATUS TG3Container::getPlaneset(gr_uint32 image, const TG3PlanesetPacket*& packet) {
  GR_RETURN_IF_FAILED(
      getPacketOf(TG3PacketType::query(TG3_PACKET_TYPE_PLANESET, ANY, ANY, image), packet));
  return packet == nullptr ? TG3_STATUS_BAD_CONTEXT : GR_STATUS_OK;
}

GR_STATUS TG3Container::getSecurity(gr_uint32 image, const TG3SecurityPacket*& packet) {
  return getPacketOf(TG3PacketType::query(TG3_PACKET_TYPE_SECURITY, ANY, ANY, image), packet);
}

GR_STATUS TG3Container::getTG2Image(gr_uint32 image, const TG3TG2Packet*& packet) {
  GR_RETURN_IF_FAILED(
      getPacketOf(TG3PacketType::query(TG3_PACKET_TYPE_TG2_IMAGE, ANY, ANY, image), packet));
  return packet == nullptr ? TG3_STATUS_BAD_CONTEXT : GR_STATUS_OK;
}

bool TG3Container::hasMetadata(gr_uint32 subType, gr_uint32 subSubType, gr_uint32 image) const {
  return m_packets.has(TG3PacketType::query(TG3_PACKET_TYPE_METADATA, subType, subSubType, image));
}

GR_STATUS TG3Container::getMetadata(gr_uint32 subType, gr_uint32 subSubType, gr_uint32 image,
                                    const TG3MetadataPacket*& packet) {
  return getPacketOf(TG3PacketType::query(TG3_PACKET_TYPE_METADATA, subType, subSubType, image),
                     packet);
}
