#include "gr_lib_utils/include/gr_secret.h"

#include <string.h>  // explicit_bzero is POSIX's, not C++'s

void gr_wipe(void* memory, size_t bytes) {
  if (bytes > 0) explicit_bzero(memory, bytes);
}

GR_STATUS GRSecret::assign(std::span<const gr_uint8> bytes) {
  GRArray<gr_uint8> copy;
  GR_RETURN_IF_FAILED(copy.allocateUninitialized(bytes.size()));
  if (!bytes.empty()) std::memcpy(copy.data(), bytes.data(), bytes.size());
  clear();
  m_bytes = std::move(copy);
  return GR_STATUS_OK;
}

void GRSecret::clear() {
  gr_wipe(m_bytes.data(), m_bytes.size());
  m_bytes.clear();
}
