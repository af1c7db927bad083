/// @file
/// Array2D, a few planes of one size, and the store of memory from which they come.
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <memory>
#include <utility>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// Keeps the memory of arrays that are gone for those that come, strip after strip: fresh memory
/// costs more than what is done in it. Outlives the arrays that take from it.
template <typename T>
class Array2DPool {
 public:
  /// Memory for at least `count` values, whatever they are.
  /// @return 0; 8
  [[nodiscard]] GR_STATUS take(gr_uint64 count, GRArray<T>& memory) {
    GRArray<T>* best = nullptr;
    GRArray<T>* largest = nullptr;
    for (GRArray<T>& kept : m_kept) {
      if (kept.size() >= count && kept.size() / 2 <= count) {
        if (best == nullptr || kept.size() < best->size()) best = &kept;
      }
      if (largest == nullptr || kept.size() > largest->size()) largest = &kept;
    }
    if (best != nullptr && !best->empty()) {
      memory = std::move(*best);
      return GR_STATUS_OK;
    }
    // What is too small now will be too small in the next strip, too.
    if (largest != nullptr && largest->size() < count) largest->clear();
    return memory.allocateUninitialized(gr_saturatingAdd(count, count / 16));
  }

  /// Takes memory back.
  void give(GRArray<T> memory) {
    if (memory.size() < SMALLEST) return;
    GRArray<T>* const smallest =
        std::min_element(m_kept.begin(), m_kept.end(),
                         [](const auto& a, const auto& b) { return a.size() < b.size(); });
    if (smallest->size() < memory.size()) *smallest = std::move(memory);
  }

  void clear() {
    for (GRArray<T>& kept : m_kept) kept.clear();
  }

 private:
  static constexpr size_t SMALLEST = 4096;  // values; below, allocating is cheap
  std::array<GRArray<T>, 64> m_kept;
};

/// Up to four planes of `getWidth()` columns and `getHeight()` rows, either its own or someone
/// else's. Without planes it stands for planes of zeros.
template <typename T>
class Array2D {
 public:
  static constexpr gr_uint32 MAX_PLANES = 4;

  Array2D() = default;
  ~Array2D() { release(); }
  Array2D(const Array2D&) = delete;
  Array2D& operator=(const Array2D&) = delete;

  /// Makes planes of its own.
  /// @param width, height  1 or more
  /// @param clear  whether the samples are set to 0; they are anything else
  /// @param pool   where the memory comes from and goes to; null: from nowhere
  /// @return 0; 8 when memory runs out, and then there are no planes
  [[nodiscard]] GR_STATUS allocate(gr_uint32 numPlanes, gr_int64 width, gr_int64 height, bool clear,
                                   Array2DPool<T>* pool) {
    assert(numPlanes <= MAX_PLANES && width > 0 && height > 0);
    release();
    const gr_uint64 stride = strideOf(static_cast<gr_uint64>(width));
    const gr_uint64 plane = gr_saturatingMultiply(stride, static_cast<gr_uint64>(height));
    const gr_uint64 count = gr_saturatingAdd(gr_saturatingMultiply(plane, numPlanes), ALIGNMENT);
    GR_RETURN_IF_FAILED(pool != nullptr ? pool->take(count, m_memory)
                                        : m_memory.allocateUninitialized(count));
    m_pool = pool;
    const size_t beyond = reinterpret_cast<std::uintptr_t>(m_memory.data()) / sizeof(T) % ALIGNMENT;
    T* const first = m_memory.data() + (beyond == 0 ? 0 : ALIGNMENT - beyond);
    for (gr_uint32 i = 0; i < numPlanes; ++i) m_planes[i] = first + i * static_cast<size_t>(plane);
    if (clear) std::fill_n(first, static_cast<size_t>(plane) * numPlanes, T{});
    setSize(static_cast<size_t>(stride), width, height);
    return GR_STATUS_OK;
  }

  /// Takes planes that stay the caller's.
  /// @param planes  pointers to the first samples, `numPlanes` of them
  /// @param stride  from one row to the next, in samples
  void wrap(T* const* planes, gr_uint32 numPlanes, size_t stride, gr_int64 width, gr_int64 height) {
    assert(numPlanes <= MAX_PLANES);
    release();
    std::copy_n(planes, numPlanes, m_planes.begin());
    setSize(stride, width, height);
  }

  /// Gives the planes away; their size stays.
  void release() {
    m_planes.fill(nullptr);
    if (m_pool != nullptr) m_pool->give(std::move(m_memory));
    m_memory.clear();
    m_pool = nullptr;
  }

  bool hasPlanes() const { return m_planes[0] != nullptr; }
  gr_int64 getWidth() const { return m_width; }
  gr_int64 getHeight() const { return m_height; }
  size_t getStride() const { return m_stride; }  ///< from one row to the next, in samples
  /// The first sample of a row of a plane, which there is.
  T* getRow(gr_uint32 plane, gr_int64 y) const {
    return m_planes[plane] + static_cast<size_t>(y) * m_stride;
  }

 private:
  // Rows begin where cache lines do; columns of rows don't all fall onto the same few of them.
  static constexpr size_t ALIGNMENT = 64 / sizeof(T);
  static constexpr size_t PAGE = 4096 / sizeof(T);
  static gr_uint64 strideOf(gr_uint64 width) {
    const gr_uint64 stride = gr_ceilDivide(width, ALIGNMENT) * ALIGNMENT;
    return stride % PAGE == 0 ? stride + ALIGNMENT : stride;
  }
  void setSize(size_t stride, gr_int64 width, gr_int64 height) {
    m_stride = stride;
    m_width = width;
    m_height = height;
  }

  std::array<T*, MAX_PLANES> m_planes{};
  size_t m_stride = 0;
  gr_int64 m_width = 0;
  gr_int64 m_height = 0;
  GRArray<T> m_memory;  // of the planes, when they are its own
  Array2DPool<T>* m_pool = nullptr;
};
