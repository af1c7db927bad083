#include "nitf/nitf_readBytes.h"

#include <algorithm>
#include <limits>

#include "gr_lib_utils/include/gr_status.h"

namespace {

GR_STATUS shortReadStatus(GRIOStreamInf& stream) {
  const GR_STATUS status = stream.getLastError();
  return GR_SUCCESS(status) ? NITF_STATUS_READ_ERROR : status;
}

}  // namespace

GR_STATUS nitf_readBytes(GRIOStreamInf& stream, void* bytes, gr_uint64 length) {
  auto* to = static_cast<gr_uint8*>(bytes);
  while (length > 0) {
    constexpr gr_uint64 MAX_READ = std::numeric_limits<gr_int32>::max();
    const auto step = static_cast<gr_uint32>(std::min(length, MAX_READ));
    if (stream.read(to, step) != step) return shortReadStatus(stream);
    to += step;
    length -= step;
  }
  return GR_STATUS_OK;
}

GR_STATUS nitf_readBytesAt(GRIOStreamInf& stream, gr_uint64 offset, void* bytes, gr_uint64 length) {
  constexpr gr_uint64 MAX_OFFSET = std::numeric_limits<gr_int64>::max();
  if (offset > MAX_OFFSET) return NITF_STATUS_READ_ERROR;
  if (!GR_SUCCESS(stream.seek(static_cast<gr_int64>(offset), GRIO_SEEK_BEGIN))) {
    return shortReadStatus(stream);
  }
  return nitf_readBytes(stream, bytes, length);
}
