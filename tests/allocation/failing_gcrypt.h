/// @file
/// libgcrypt's allocations, which fail when those of failing_new.h do.
#pragma once

#include <gcrypt.h>

#include <cerrno>
#include <cstdlib>

#include "gr_lib_utils/include/gr_encryption.h"
#include "tests/allocation/failing_new.h"

namespace failing_new {

// As those of the C library tell that there is no memory.
inline void* alloc(std::size_t bytes) {
  if (!shallFail()) return std::malloc(bytes);
  errno = ENOMEM;
  return nullptr;
}
inline void* realloc(void* block, std::size_t bytes) {
  if (!shallFail()) return std::realloc(block, bytes);
  errno = ENOMEM;
  return nullptr;
}

}  // namespace failing_new

/// Lets the allocations of libgcrypt fail as well, for as long as it lives.
class FailingGcrypt {
 public:
  FailingGcrypt() {
    Encryption().setKey("any");  // its own set-up comes first
    gcry_set_allocation_handler(failing_new::alloc, failing_new::alloc, isSecure,
                                failing_new::realloc, std::free);
  }
  ~FailingGcrypt() {
    gcry_set_allocation_handler(std::malloc, std::malloc, isSecure, std::realloc, std::free);
  }
  FailingGcrypt(const FailingGcrypt&) = delete;
  FailingGcrypt& operator=(const FailingGcrypt&) = delete;

 private:
  static int isSecure(const void*) { return 0; }
};
