#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_headerPacket.h"

#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint64 bit(int number) { return gr_uint64{1} << number; }

constexpr gr_uint64 HAS_MSE = bit(2);
constexpr gr_uint64 IS_LOCKED = bit(3);
constexpr gr_uint64 KEY_WIDTH_HIGH = bit(4);
constexpr gr_uint64 KEY_WIDTH_LOW = bit(5);
constexpr gr_uint64 HAS_VIRTUAL_PROPS = bit(15);
// Bits 0, 6, 8 to 14 and 18 to 63. Bits 1, 7 and 16 are set by some writers and mean nothing.
constexpr gr_uint64 RESERVED = bit(0) | bit(6) | (bit(15) - bit(8)) | ~gr_uint64{0} << 18;
constexpr gr_uint64 RESERVED_LATE = bit(17);  // refused, but only once the body has been read

gr_uint8 keyWidthOf(gr_uint64 flags) {
  if ((flags & IS_LOCKED) == 0) return 0;
  if ((flags & KEY_WIDTH_HIGH) == 0) return (flags & KEY_WIDTH_LOW) == 0 ? 0 : 1;
  return (flags & KEY_WIDTH_LOW) == 0 ? 2 : 4;
}

template <typename Stored, typename T>
GR_STATUS readAs(GRFieldReader& fields, T& value) {
  Stored stored = 0;
  GR_RETURN_IF_FAILED(fields.read(stored));
  value = stored;
  return GR_STATUS_OK;
}

GR_STATUS readFields(GRFieldReader& fields, TG3ImageInfo& info) {
  GR_RETURN_IF_FAILED(fields.read(info.width));
  GR_RETURN_IF_FAILED(fields.read(info.height));
  GR_RETURN_IF_FAILED(fields.read(info.numLevels));
  GR_RETURN_IF_FAILED(fields.read(info.numComponents));
  GR_RETURN_IF_FAILED(fields.read(info.numPlanes));
  GR_RETURN_IF_FAILED(fields.read(info.subblockSize));
  GR_RETURN_IF_FAILED(fields.read(info.domainBits));
  GR_RETURN_IF_FAILED(fields.read(info.dynamicRangeMin));
  GR_RETURN_IF_FAILED(fields.read(info.dynamicRangeMax));
  GR_RETURN_IF_FAILED(readAs<gr_uint8>(fields, info.imageColorSpace));
  GR_RETURN_IF_FAILED(readAs<gr_uint8>(fields, info.waveletColorSpace));
  GR_RETURN_IF_FAILED(readAs<gr_uint8>(fields, info.colorTransform));
  GR_RETURN_IF_FAILED(readAs<gr_uint32>(fields, info.boundary));
  GR_RETURN_IF_FAILED(readAs<gr_uint8>(fields, info.wavelet));
  GR_RETURN_IF_FAILED(readAs<gr_uint8>(fields, info.lastHeaderByte));
  const bool isLastByteGood = info.lastHeaderByte >= 1 && info.lastHeaderByte <= 5;
  return isLastByteGood ? GR_STATUS_OK : TG3_STATUS_READ_ERROR;
}

GR_STATUS readVirtualProps(GRFieldReader& fields, TG3Rect& support, gr_uint8& levelsRemoved) {
  GR_RETURN_IF_FAILED(fields.read(support.left));
  GR_RETURN_IF_FAILED(fields.read(support.top));
  GR_RETURN_IF_FAILED(fields.read(support.right));
  GR_RETURN_IF_FAILED(fields.read(support.bottom));
  return fields.read(levelsRemoved);
}

}  // namespace

GR_STATUS TG3HeaderPacket::read(GRIOStreamInf& stream) {
  GRFieldReader fields(stream, m_place.bodyLength);
  gr_uint64 flags = 0;
  GR_RETURN_IF_FAILED(fields.read(flags));
  if ((flags & RESERVED) != 0) return TG3_STATUS_BAD_VERSION;

  TG3ImageInfo info;
  info.image = m_type.image;
  GR_RETURN_IF_FAILED(readFields(fields, info));
  if (m_type.versionMajor != 0 || m_type.versionMinor != 0) return TG3_STATUS_READ_ERROR;
  TG3Rect support;
  gr_uint8 levelsRemoved = 0;
  const bool hasVirtualProps = (flags & HAS_VIRTUAL_PROPS) != 0;
  if (hasVirtualProps) GR_RETURN_IF_FAILED(readVirtualProps(fields, support, levelsRemoved));
  if ((flags & RESERVED_LATE) != 0) return TG3_STATUS_BAD_VERSION;

  info.datatype = tg3_datatypeOfDomainBits(info.domainBits);
  info.hasMse = (flags & HAS_MSE) != 0;
  info.locked = (flags & IS_LOCKED) != 0;
  info.keyWidth = keyWidthOf(flags);
  GR_RETURN_IF_FAILED(info.initializeSubbands());
  if (info.dynamicRangeMin >= info.dynamicRangeMax) return TG3_STATUS_FORMAT_ERROR;
  if (hasVirtualProps) {
    GR_RETURN_IF_FAILED(info.initializeVirtualSupport(support, levelsRemoved));
  }
  m_info = info;
  return GR_STATUS_OK;
}
