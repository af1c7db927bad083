#include "metadata/gri_mdBox.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr gr_uint8 MAGIC[] = {'Z', 'E', 'B', 'G'};
constexpr size_t VERSION_OFFSET = 4;
constexpr size_t CHUNKS_OFFSET = 14;         // of the number of chunks
constexpr size_t EXTRA_BYTES = 16;           // in front of it, in version 1.0 with the letter '2'
constexpr gr_uint32 EXTRA_VERSION = 0x1032;  // major and minor in 4 bits each, and the letter
constexpr size_t COUNT_BYTES = 2;            // the number of chunks and a byte without meaning
constexpr size_t CHUNK_HEADER_BYTES = 6;     // type, a byte without meaning, length
constexpr size_t TRAILER_BYTES = 6;          // counted, not compared
constexpr size_t GEO_BYTES = 6 * sizeof(double);

enum ChunkType : gr_uint8 { GEO = 0, USER = 1, COMMAND_LINE = 2, OPERATING_SYSTEM = 3 };

// A little-endian number.
gr_uint64 numberAt(const gr_uint8* bytes, size_t count) {
  gr_uint64 number = 0;
  for (size_t i = count; i > 0; --i) number = number << 8 | bytes[i - 1];
  return number;
}

}  // namespace

MDBoxResult MDBox::parse(std::span<const gr_uint8> bytes) {
  m_geo.reset();
  if (bytes.size() < sizeof(MAGIC) ||
      !std::equal(std::begin(MAGIC), std::end(MAGIC), bytes.begin())) {
    return MDBOX_BAD_MAGIC;
  }
  if (bytes.size() < CHUNKS_OFFSET) return MDBOX_BAD_LENGTH;
  size_t position = CHUNKS_OFFSET;
  if (numberAt(&bytes[VERSION_OFFSET], 2) == EXTRA_VERSION) position += EXTRA_BYTES;
  if (bytes.size() < position + COUNT_BYTES) return MDBOX_BAD_LENGTH;
  const gr_uint8 count = bytes[position];
  position += COUNT_BYTES;

  MDBoxResult result = MDBOX_OK;
  for (gr_uint8 i = 0; i < count; ++i) {
    if (bytes.size() - position < CHUNK_HEADER_BYTES) return MDBOX_BAD_LENGTH;
    const gr_uint8 type = bytes[position];
    const gr_uint64 length = numberAt(&bytes[position + 2], 4);
    position += CHUNK_HEADER_BYTES;
    if (length > bytes.size() - position) return MDBOX_BAD_LENGTH;
    if (type > OPERATING_SYSTEM) {
      result = MDBOX_UNKNOWN_CHUNK;
    } else if (type == GEO && !parseGeo(bytes.subspan(position, length))) {
      return MDBOX_BAD_LENGTH;
    }
    position += length;
  }
  return bytes.size() - position == TRAILER_BYTES ? result : MDBOX_BAD_LENGTH;
}

bool MDBox::parseGeo(std::span<const gr_uint8> payload) {
  if (payload.size() != GEO_BYTES) return false;
  if (m_geo) return true;
  double numbers[6];
  for (size_t i = 0; i < 6; ++i) {
    numbers[i] = std::bit_cast<double>(numberAt(&payload[8 * i], 8));
  }
  m_geo = GeoMDChunk{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]};
  return true;
}
