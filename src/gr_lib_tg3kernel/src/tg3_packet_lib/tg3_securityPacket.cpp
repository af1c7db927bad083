#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_securityPacket.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint8 CIPHER_BLOWFISH = 1;
constexpr gr_uint8 DIGEST_SHA1 = 1;
// No lock has more: 256 keys of 64 KiB, and little else.
constexpr gr_uint64 LONGEST_LOCK_DATA = 0x2000000;

}  // namespace

GR_STATUS TG3SecurityPacket::read(GRIOStreamInf& stream) {
  if (m_place.bodyLength > m_place.streamEnd - m_place.bodyOffset) return TG3_STATUS_READ_ERROR;
  GRFieldReader fields(stream, m_place.bodyLength);
  gr_uint8 cipher = 0;
  gr_uint8 digest = 0;
  gr_uint8 kind = 0;
  GR_RETURN_IF_FAILED(fields.read(cipher));
  GR_RETURN_IF_FAILED(fields.read(digest));
  GR_RETURN_IF_FAILED(fields.read(kind));
  if (cipher != CIPHER_BLOWFISH || digest != DIGEST_SHA1 || kind < TG3_LOCK_IMAGE ||
      kind > TG3_LOCK_SCENE) {
    return TG3_STATUS_FORMAT_ERROR;
  }
  const GR_STATUS status = fields.read(m_lockData, std::min(fields.left(), LONGEST_LOCK_DATA));
  if (!GR_SUCCESS(status)) return status == GR_STATUS_NO_MEMORY ? TG3_STATUS_NO_MEMORY : status;
  m_lockKind = static_cast<TG3LockKind>(kind);
  return GR_STATUS_OK;
}
