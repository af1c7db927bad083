#include "gr_lib_utils/include/gr_contentKeys.h"

#include <algorithm>

GR_STATUS GRContentKeys::keep(gr_uint32 number, std::span<const gr_uint8> key) {
  if (number >= m_keys.size()) {
    GRArray<GRSecret> more;
    GR_RETURN_IF_FAILED(more.allocate(gr_uint64{number} + 1));
    std::move(m_keys.begin(), m_keys.end(), more.begin());
    m_keys = std::move(more);
  }
  return m_keys[number].assign(key);
}
