#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packetType.h"

#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint8 TYPE_MASK = 0x0F;
constexpr gr_uint8 TYPE_RESERVED = 0xB0;
constexpr gr_uint8 HAS_VERSION = 0x40;
constexpr gr_uint8 HAS_SEQUENCE = 0x08;
constexpr gr_uint8 HAS_IMAGE = 0x04;
constexpr gr_uint32 LARGEST_HEADER = 2 + 4 + 4 + 4 + 4 + 2 + 8;  // bytes

// Bytes of a subtype, and of a length, by their two bits in the layout byte.
constexpr gr_uint32 SUBTYPE_WIDTH[4] = {0, 1, 2, 4};
constexpr gr_uint32 LENGTH_WIDTH[4] = {1, 2, 4, 8};

gr_uint32 writtenWidth(gr_uint32 subType) {
  if (subType == 0) return 0;
  if (subType < 0x100) return 1;
  return subType < 0x10000 ? 2 : 4;
}

// Takes the next `width` bytes as a big-endian number.
gr_uint64 take(const gr_uint8*& bytes, gr_uint32 width) {
  gr_uint64 value = 0;
  for (gr_uint32 i = 0; i < width; ++i) value = value << 8 | *bytes++;
  return value;
}

// Puts a number as `width` big-endian bytes.
void put(gr_uint8*& bytes, gr_uint64 value, gr_uint32 width) {
  for (gr_uint32 i = width; i > 0; --i) *bytes++ = static_cast<gr_uint8>(value >> 8 * (i - 1));
}

// The two bits that stand for the width of a subtype.
gr_uint32 layoutBits(gr_uint32 width) { return width == 4 ? 3 : width; }

bool isEqualOrAny(gr_uint32 a, gr_uint32 b) {
  return a == b || a == TG3PacketType::ANY || b == TG3PacketType::ANY;
}

}  // namespace

TG3PacketType TG3PacketType::query(gr_int32 type, gr_uint32 subType, gr_uint32 subSubType,
                                   gr_uint32 image) {
  TG3PacketType query;
  query.type = type;
  query.subType = subType;
  query.subSubType = subSubType;
  query.image = image;
  query.versionMajor = 0xFF;
  query.versionMinor = 0xFF;
  return query;
}

bool TG3PacketType::matches(const TG3PacketType& other) const {
  return (type == other.type || type == ANY_TYPE || other.type == ANY_TYPE) &&
         isEqualOrAny(subType, other.subType) && isEqualOrAny(subSubType, other.subSubType) &&
         isEqualOrAny(image, other.image);
}

GR_STATUS TG3PacketType::read(GRIOStreamInf& stream, gr_uint64& length) {
  gr_uint8 bytes[LARGEST_HEADER];
  if (stream.read(bytes, 2) != 2) return TG3_STATUS_READ_ERROR;
  const gr_uint8 typeByte = bytes[0];
  const gr_uint8 layout = bytes[1];
  const gr_uint32 subTypeWidth = SUBTYPE_WIDTH[layout >> 6];
  const gr_uint32 subSubTypeWidth = SUBTYPE_WIDTH[layout >> 4 & 3];
  const gr_uint32 sequenceWidth = (layout & HAS_SEQUENCE) != 0 ? 4 : 0;
  const gr_uint32 imageWidth = (layout & HAS_IMAGE) != 0 ? 4 : 0;
  const gr_uint32 versionWidth = (typeByte & HAS_VERSION) != 0 ? 1 : 0;
  const gr_uint32 lengthWidth = LENGTH_WIDTH[layout & 3];

  const gr_uint32 left =
      subTypeWidth + subSubTypeWidth + sequenceWidth + imageWidth + 2 * versionWidth + lengthWidth;
  if (stream.read(bytes, left) != left) return TG3_STATUS_READ_ERROR;
  const gr_uint8* next = bytes;
  type = typeByte & TYPE_MASK;
  subType = static_cast<gr_uint32>(take(next, subTypeWidth));
  subSubType = static_cast<gr_uint32>(take(next, subSubTypeWidth));
  sequence = static_cast<gr_uint32>(take(next, sequenceWidth));
  image = static_cast<gr_uint32>(take(next, imageWidth));
  versionMajor = static_cast<gr_uint8>(take(next, versionWidth));
  versionMinor = static_cast<gr_uint8>(take(next, versionWidth));
  length = take(next, lengthWidth);
  // All ones mean an open end in the width that holds every length, not in a narrower one.
  return (typeByte & TYPE_RESERVED) == 0 ? GR_STATUS_OK : TG3_STATUS_BAD_VERSION;
}

GR_STATUS TG3PacketType::write(GRIOStreamInf& stream, gr_uint64 length) const {
  constexpr gr_uint8 LENGTH_OF_8_BYTES = 3;
  const bool hasVersion = versionMajor != 0 || versionMinor != 0;
  const gr_uint32 subTypeWidth = writtenWidth(subType);
  const gr_uint32 subSubTypeWidth = writtenWidth(subSubType);
  gr_uint8 bytes[LARGEST_HEADER];
  gr_uint8* next = bytes;
  put(next, (static_cast<gr_uint32>(type) & TYPE_MASK) | (hasVersion ? HAS_VERSION : 0U), 1);
  put(next,
      layoutBits(subTypeWidth) << 6 | layoutBits(subSubTypeWidth) << 4 |
          (sequence != 0 ? HAS_SEQUENCE : 0U) | (image != 0 ? HAS_IMAGE : 0U) | LENGTH_OF_8_BYTES,
      1);
  put(next, subType, subTypeWidth);
  put(next, subSubType, subSubTypeWidth);
  put(next, sequence, sequence != 0 ? 4 : 0);
  put(next, image, image != 0 ? 4 : 0);
  put(next, versionMajor, hasVersion ? 1 : 0);
  put(next, versionMinor, hasVersion ? 1 : 0);
  put(next, length, 8);
  const auto written = static_cast<gr_uint32>(next - bytes);
  return stream.write(bytes, written) == written ? GR_STATUS_OK : TG3_STATUS_WRITE_ERROR;
}

gr_uint32 TG3PacketType::getWrittenSize() const {
  const bool hasVersion = versionMajor != 0 || versionMinor != 0;
  return 2 + writtenWidth(subType) + writtenWidth(subSubType) + (image != 0 ? 4 : 0) +
         (sequence != 0 ? 4 : 0) + (hasVersion ? 2 : 0) + 8;
}
