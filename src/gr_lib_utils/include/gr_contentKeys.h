/// @file
/// GRContentKeys, the keys of a locked image that were proved once.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_secret.h"
#include "gr_lib_utils/include/gr_types.h"

/// Content keys by their numbers in a lock. Whoever opens an image several times keeps them between
/// its readers, so that a password is asked for once. They are wiped when this goes.
class GRContentKeys {
 public:
  /// The bytes of a key, valid until the next keep(); none where it isn't known.
  std::span<const gr_uint8> find(gr_uint32 number) const {
    return number < m_keys.size() ? m_keys[number].span() : std::span<const gr_uint8>();
  }
  /// Takes a copy of a key. One of the same number is replaced.
  /// @param number  at most what the file has keys
  /// @return 0; 8 for memory, and then all is as it was
  [[nodiscard]] GR_STATUS keep(gr_uint32 number, std::span<const gr_uint8> key);

 private:
  GRArray<GRSecret> m_keys;  // as far as they are known; empty ones aren't
};
