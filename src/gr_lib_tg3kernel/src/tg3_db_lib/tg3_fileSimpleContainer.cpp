#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_ioSubStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS TG3FileSimpleContainer::readPackets(TG3PacketDB& packets) {
  GRIOStreamOpener opener(m_stream, m_leaveOpen);
  GR_RETURN_IF_FAILED(opener.open());
  GR_RETURN_IF_FAILED(packets.read(m_stream));
  m_endPosition = packets.getEnd();
  return opener.close(GR_STATUS_OK);
}

GR_STATUS TG3FileSimpleContainer::fetch(DBObjectProxy& proxy, const TG3Packet*& packet) {
  GRIOStreamOpener opener(m_stream, m_leaveOpen);
  GR_RETURN_IF_FAILED(opener.open());
  return opener.close(proxy.fetch(m_stream, packet));
}

GR_STATUS TG3FileSimpleContainer::copyBytes(gr_uint64 offset, gr_uint64 length,
                                            GRIOStreamInf& target) {
  const std::lock_guard guard(getLock());
  GRIOStreamOpener opener(m_stream, m_leaveOpen);
  GR_RETURN_IF_FAILED(opener.open());
  GR_RETURN_IF_FAILED(m_stream.seek(static_cast<gr_int64>(offset), GRIO_SEEK_BEGIN));
  return opener.close(copyFromPosition(length, target));
}

GR_STATUS TG3FileSimpleContainer::copyFromPosition(gr_uint64 length, GRIOStreamInf& target) {
  constexpr gr_uint64 MOST_AT_ONCE = 0x10000;
  GRArray<gr_uint8> bytes;
  if (!GR_SUCCESS(bytes.allocateUninitialized(std::min(length, MOST_AT_ONCE)))) {
    return TG3_STATUS_NO_MEMORY;
  }
  while (length > 0) {
    const auto part = static_cast<gr_uint32>(std::min(length, MOST_AT_ONCE));
    if (m_stream.read(bytes.data(), part) != part) return TG3_STATUS_READ_ERROR;
    if (target.write(bytes.data(), part) != part) return TG3_STATUS_WRITE_ERROR;
    length -= part;
  }
  return GR_STATUS_OK;
}

std::unique_ptr<GRIOStreamInf> TG3FileSimpleContainer::duplicateStream() {
  const std::lock_guard guard(getLock());
  return std::unique_ptr<GRIOStreamInf>(m_stream.duplicate());
}

GR_STATUS TG3FileSimpleContainer::makeTG2Stream(gr_uint32 image,
                                                std::unique_ptr<GRIOStreamInf>& stream) {
  const TG3TG2Packet* packet = nullptr;
  GR_RETURN_IF_FAILED(getTG2Image(image, packet));
  std::unique_ptr<GRIOStreamInf> whole = duplicateStream();
  std::unique_ptr<GRIOSubStream> part = gr_makeUnique<GRIOSubStream>();
  if (whole == nullptr || part == nullptr) return TG3_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(part->initialize(whole.release(),
                                       static_cast<gr_int64>(packet->getBodyStart()),
                                       static_cast<gr_int64>(packet->getBodyEnd()), true));
  stream = std::move(part);
  return GR_STATUS_OK;
}
