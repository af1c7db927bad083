/// @file
/// Allocation that reports instead of throwing: objects through gr_makeUnique, everything whose
/// size a file or a host decides through GRArray. `new (std::nothrow)` stands here and nowhere
/// else.
#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

/// Blocks of bytes for what has to grow in place; the functions of the C library.
inline void* gr_allocBytes(size_t bytes) { return std::malloc(bytes); }
inline void* gr_reallocBytes(void* block, size_t bytes) { return std::realloc(block, bytes); }
inline void gr_freeBytes(void* block) { std::free(block); }

/// A new T, or null when memory runs out.
template <typename T, typename... Args>
[[nodiscard]] std::unique_ptr<T> gr_makeUnique(Args&&... args) {
  return std::unique_ptr<T>(new (std::nothrow) T(std::forward<Args>(args)...));
}

/// A fixed run of values on the heap whose allocation can fail with a status. It moves, and is
/// never copied by accident.
template <typename T>
class GRArray {
 public:
  GRArray() = default;
  GRArray(GRArray&& other) noexcept
      : m_data(std::move(other.m_data)), m_size(std::exchange(other.m_size, 0)) {}
  GRArray& operator=(GRArray&& other) noexcept {
    m_data = std::move(other.m_data);
    m_size = std::exchange(other.m_size, 0);
    return *this;
  }

  /// Makes room for `count` values, each value-initialised (numbers are 0).
  /// @return 0; GR_STATUS_NO_MEMORY, and then the array is as it was
  [[nodiscard]] GR_STATUS allocate(gr_uint64 count) { return make(count, true); }

  /// The same without clearing; for numbers that are all written before they are read.
  [[nodiscard]] GR_STATUS allocateUninitialized(gr_uint64 count) {
    static_assert(std::is_trivially_default_constructible_v<T>);
    return make(count, false);
  }

  void clear() {
    m_data.reset();
    m_size = 0;
  }

  /// Hands the values over, for an interface that gives out a raw pointer; a
  /// std::unique_ptr<T[]> takes them back.
  [[nodiscard]] T* release() {
    m_size = 0;
    return m_data.release();
  }

  size_t size() const { return m_size; }
  bool empty() const { return m_size == 0; }
  T* data() { return m_data.get(); }
  const T* data() const { return m_data.get(); }
  T& operator[](size_t index) { return m_data[index]; }
  const T& operator[](size_t index) const { return m_data[index]; }
  T* begin() { return m_data.get(); }
  T* end() { return m_data.get() + m_size; }
  const T* begin() const { return m_data.get(); }
  const T* end() const { return m_data.get() + m_size; }
  std::span<T> span() { return {m_data.get(), m_size}; }
  std::span<const T> span() const { return {m_data.get(), m_size}; }

 private:
  GR_STATUS make(gr_uint64 count, bool clear) {
    // A count whose bytes pass half of the address space can't be had; new[] would throw for it.
    if (count > (SIZE_MAX / 2) / sizeof(T)) return GR_STATUS_NO_MEMORY;
    const size_t n = static_cast<size_t>(count);
    std::unique_ptr<T[]> data(clear ? new (std::nothrow) T[n]() : new (std::nothrow) T[n]);
    if (data == nullptr) return GR_STATUS_NO_MEMORY;
    m_data = std::move(data);
    m_size = n;
    return GR_STATUS_OK;
  }

  std::unique_ptr<T[]> m_data;
  size_t m_size = 0;
};
