/// @file
/// GRSecret, bytes that nobody shall find in memory afterwards: passwords and keys.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_memory.h"

/// Overwrites memory with zeros, also where a compiler sees that nobody reads it any more.
void gr_wipe(void* memory, size_t bytes);

/// Bytes on the heap that are wiped before they are given back. They move, and are never copied
/// by accident.
class GRSecret {
 public:
  GRSecret() = default;
  ~GRSecret() { clear(); }
  GRSecret(GRSecret&& other) noexcept = default;
  GRSecret& operator=(GRSecret&& other) noexcept {
    if (this != &other) {
      clear();
      m_bytes = std::move(other.m_bytes);
    }
    return *this;
  }

  /// Takes a copy of `bytes`, which may not be this secret's own.
  /// @return 0; 8 for memory, and then the secret is as it was
  [[nodiscard]] GR_STATUS assign(std::span<const gr_uint8> bytes);
  void clear();

  bool empty() const { return m_bytes.empty(); }
  size_t size() const { return m_bytes.size(); }
  std::span<gr_uint8> span() { return m_bytes.span(); }
  std::span<const gr_uint8> span() const { return m_bytes.span(); }

 private:
  GRArray<gr_uint8> m_bytes;
};
