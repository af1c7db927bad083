#include "gr_lib_utils/include/gr_fieldReader.h"

#include <algorithm>
#include <bit>
#include <limits>

GR_STATUS GRFieldReader::read(double& value) {
  gr_uint64 bits = 0;
  GR_RETURN_IF_FAILED(read(bits));
  value = std::bit_cast<double>(bits);
  return GR_STATUS_OK;
}

GR_STATUS GRFieldReader::read(float& value) {
  gr_uint32 bits = 0;
  GR_RETURN_IF_FAILED(read(bits));
  value = std::bit_cast<float>(bits);
  return GR_STATUS_OK;
}

GR_STATUS GRFieldReader::read(gr_uint8* bytes, gr_uint64 length) {
  if (length > m_left) return m_shortStatus;
  while (length > 0) {
    constexpr gr_uint64 MAX_READ = std::numeric_limits<gr_uint32>::max();
    const auto step = static_cast<gr_uint32>(std::min(length, MAX_READ));
    const gr_uint32 count = m_stream.read(bytes, step);
    m_left -= count;
    if (count != step) return m_shortStatus;
    bytes += step;
    length -= step;
  }
  return GR_STATUS_OK;
}

GR_STATUS GRFieldReader::read(GRArray<gr_uint8>& bytes, gr_uint64 length) {
  if (length > m_left) return m_shortStatus;
  GRArray<gr_uint8> made;
  GR_RETURN_IF_FAILED(made.allocateUninitialized(length));
  GR_RETURN_IF_FAILED(read(made.data(), length));
  bytes = std::move(made);
  return GR_STATUS_OK;
}

GR_STATUS GRFieldReader::skip(gr_uint64 length) {
  constexpr gr_uint64 MAX_SKIP = std::numeric_limits<gr_int64>::max();
  if (length > m_left || length > MAX_SKIP) return m_shortStatus;
  if (!GR_SUCCESS(m_stream.seek(static_cast<gr_int64>(length), GRIO_SEEK_CURRENT))) {
    return m_shortStatus;
  }
  m_left -= length;
  return GR_STATUS_OK;
}
