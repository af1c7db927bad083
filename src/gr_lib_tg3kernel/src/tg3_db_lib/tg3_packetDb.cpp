#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_packetDb.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <tuple>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint8 MAGIC[4] = {'t', 's', 'r', 'a'};
// What the list of packets may take, beyond as many bytes as the stream has. The shortest packet
// has 3 bytes, and real ones have a body: only a file that is made for it comes near.
constexpr gr_uint64 FREE_LIST_BYTES = 0x4000000;
constexpr gr_uint64 BYTES_PER_PACKET = sizeof(DBObjectProxy) + 4 * sizeof(void*);
constexpr TG3Version OWN_VERSION = {3, 0, 26, 't'};

// The order of the index.
std::tuple<gr_uint32, gr_int32, gr_uint32, gr_uint32> indexKey(const TG3PacketType& type) {
  return {type.image, type.type, type.subType, type.subSubType};
}

}  // namespace

std::array<char, 24> TG3Version::toText() const {
  std::array<char, 24> text{};
  static_cast<void>(
      std::snprintf(text.data(), text.size(), "%d.%d.%d.%c", major, minor, revision, letter));
  return text;
}

bool TG3Version::isReadable() const {
  return major == OWN_VERSION.major && minor == OWN_VERSION.minor &&
         revision == OWN_VERSION.revision && letter <= OWN_VERSION.letter;
}

GR_STATUS TG3Version::write(GRIOStreamInf& stream) const {
  const gr_uint8 bytes[8] = {MAGIC[0], MAGIC[1], MAGIC[2], MAGIC[3],
                             major,    minor,    revision, static_cast<gr_uint8>(letter)};
  return stream.write(bytes, sizeof(bytes)) == sizeof(bytes) ? GR_STATUS_OK
                                                             : TG3_STATUS_WRITE_ERROR;
}

GR_STATUS TG3PacketDB::read(GRIOStreamInf& stream) {
  GR_RETURN_IF_FAILED(readPreamble(stream));
  const gr_int64 start = stream.tell();
  if (start < 0) return TG3_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(stream.seek(0, GRIO_SEEK_END));
  const gr_int64 end = stream.tell();
  if (end < start) return TG3_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(stream.seek(start, GRIO_SEEK_BEGIN));

  m_end = static_cast<gr_uint64>(end);
  gr_uint64 position = static_cast<gr_uint64>(start);
  while (position < m_end) {
    if (m_proxies.size() > (FREE_LIST_BYTES + m_end) / BYTES_PER_PACKET) {
      return TG3_STATUS_NO_MEMORY;
    }
    GR_RETURN_IF_FAILED(readPacket(stream, position));
  }
  return makeIndex();
}

GR_STATUS TG3PacketDB::readPreamble(GRIOStreamInf& stream) {
  gr_uint8 bytes[8];
  if (stream.read(bytes, sizeof(bytes)) != sizeof(bytes)) return TG3_STATUS_READ_ERROR;
  if (std::memcmp(bytes, MAGIC, sizeof(MAGIC)) != 0) return TG3_STATUS_BAD_VERSION;
  m_version = {bytes[4], bytes[5], bytes[6], static_cast<gr_int8>(bytes[7])};
  return m_version.isReadable() ? GR_STATUS_OK : TG3_STATUS_BAD_VERSION;
}

GR_STATUS TG3PacketDB::readPacket(GRIOStreamInf& stream, gr_uint64& position) {
  TG3PacketType type;
  TG3PacketPlace place;
  GR_RETURN_IF_FAILED(type.read(stream, place.bodyLength));
  const gr_int64 body = stream.tell();
  if (body < 0) {
    const GR_STATUS reason = stream.getLastError();
    return GR_SUCCESS(reason) ? TG3_STATUS_READ_ERROR : reason;
  }
  place.headerOffset = position;
  place.bodyOffset = static_cast<gr_uint64>(body);
  if (place.bodyOffset <= position || place.bodyOffset > m_end) return TG3_STATUS_READ_ERROR;
  place.streamEnd = m_end;
  place.isOpenEnded = place.bodyLength == TG3PacketType::OPEN_LENGTH;
  if (place.isOpenEnded) place.bodyLength = m_end - place.bodyOffset;
  if (m_proxies.append(type, place) == nullptr) return TG3_STATUS_NO_MEMORY;

  // A body that passes the end of the stream ends the chain; what is missing shows when it's read.
  position = place.getEnd();
  return stream.seek(static_cast<gr_int64>(position), GRIO_SEEK_BEGIN);
}

GR_STATUS TG3PacketDB::makeIndex() {
  if (!GR_SUCCESS(m_index.allocate(m_proxies.size()))) return TG3_STATUS_NO_MEMORY;
  size_t count = 0;
  for (DBObjectProxy& proxy : m_proxies) m_index[count++].proxy = &proxy;
  std::sort(m_index.begin(), m_index.end(), [](const IndexEntry& a, const IndexEntry& b) {
    return indexKey(a.proxy->getType()) < indexKey(b.proxy->getType());
  });
  return GR_STATUS_OK;
}

const TG3PacketDB::IndexEntry* TG3PacketDB::firstFrom(const TG3PacketType& type) const {
  return std::lower_bound(m_index.begin(), m_index.end(), type,
                          [](const IndexEntry& entry, const TG3PacketType& first) {
                            return indexKey(entry.proxy->getType()) < indexKey(first);
                          });
}

bool TG3PacketDB::has(const TG3PacketType& type) const {
  const IndexEntry* const entry = firstFrom(type);
  return entry != m_index.end() && indexKey(entry->proxy->getType()) == indexKey(type);
}

DBObjectProxy* TG3PacketDB::findOne(const TG3PacketType& query) const {
  DBObjectProxy* found = nullptr;
  bool isOnly = true;
  const auto look = [&](const IndexEntry* entry, gr_uint32 image, bool isAnyImage) {
    for (; entry != m_index.end() && isOnly; ++entry) {
      const TG3PacketType& type = entry->proxy->getType();
      if (!isAnyImage && (type.image != image || type.type != query.type)) return;
      if (!query.matches(type)) continue;
      isOnly = found == nullptr;
      found = entry->proxy;
    }
  };
  if (query.image == TG3PacketType::ANY) {
    look(m_index.begin(), 0, true);
  } else {
    // Packets of the image, and packets that stand for any image.
    for (const gr_uint32 image : {query.image, TG3PacketType::ANY}) {
      look(firstFrom(TG3PacketType::query(query.type, 0, 0, image)), image, false);
    }
  }
  return isOnly ? found : nullptr;
}
