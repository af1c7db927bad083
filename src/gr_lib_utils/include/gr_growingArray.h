/// @file
/// GRGrowingArray, a run of plain values that grows at its end.
#pragma once

#include <memory>
#include <span>
#include <type_traits>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// For tables whose size a file decides. Memory is taken as values come, half as much again each
/// time, so it stays in proportion to them; running out of it is a status. The values move when the
/// array grows.
template <typename T>
class GRGrowingArray {
  static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignof(std::max_align_t));

 public:
  GRGrowingArray() = default;
  GRGrowingArray(GRGrowingArray&& other) noexcept
      : m_data(std::move(other.m_data)),
        m_size(std::exchange(other.m_size, 0)),
        m_room(std::exchange(other.m_room, 0)) {}
  GRGrowingArray& operator=(GRGrowingArray&& other) noexcept {
    m_data = std::move(other.m_data);
    m_size = std::exchange(other.m_size, 0);
    m_room = std::exchange(other.m_room, 0);
    return *this;
  }

  /// @return 0; GR_STATUS_NO_MEMORY, and then the array is as it was
  [[nodiscard]] GR_STATUS append(const T& value) {
    if (m_size == m_room) {
      const T kept = value;  // it may be one of ours
      GR_RETURN_IF_FAILED(reserve(m_size + m_size / 2 + FIRST_ROOM));
      m_data.get()[m_size++] = kept;
      return GR_STATUS_OK;
    }
    m_data.get()[m_size++] = value;
    return GR_STATUS_OK;
  }
  /// Makes room for `count` values in all. @return as above
  [[nodiscard]] GR_STATUS reserve(gr_uint64 count) {
    if (count <= m_room) return GR_STATUS_OK;
    if (count > (SIZE_MAX / 2) / sizeof(T)) return GR_STATUS_NO_MEMORY;
    void* const data = gr_reallocBytes(m_data.get(), static_cast<size_t>(count) * sizeof(T));
    if (data == nullptr) return GR_STATUS_NO_MEMORY;
    // The old block is gone or was extended: the owner must not free it.
    static_cast<void>(m_data.release());
    m_data.reset(static_cast<T*>(data));
    m_room = static_cast<size_t>(count);
    return GR_STATUS_OK;
  }
  /// Counts `count` more values, which have been written behind end() into the room.
  void extend(size_t count) { m_size += count; }
  /// Drops all values from `count` on, which is at most size(); the room stays.
  void truncate(size_t count) { m_size = count; }
  /// Drops all values; the room stays.
  void clear() { m_size = 0; }

  size_t size() const { return m_size; }
  size_t room() const { return m_room; }  ///< values that fit without growing
  bool empty() const { return m_size == 0; }
  T& operator[](size_t index) { return m_data.get()[index]; }
  const T& operator[](size_t index) const { return m_data.get()[index]; }
  T& back() { return m_data.get()[m_size - 1]; }
  const T& back() const { return m_data.get()[m_size - 1]; }
  T* begin() { return m_data.get(); }
  T* end() { return m_data.get() + m_size; }
  const T* begin() const { return m_data.get(); }
  const T* end() const { return m_data.get() + m_size; }
  std::span<T> span() { return {m_data.get(), m_size}; }
  std::span<const T> span() const { return {m_data.get(), m_size}; }

 private:
  static constexpr size_t FIRST_ROOM = 16;
  struct Freer {
    void operator()(T* data) const { gr_freeBytes(data); }
  };

  std::unique_ptr<T[], Freer> m_data;
  size_t m_size = 0;
  size_t m_room = 0;
};
