#include "tests/allocation/failing_new.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> g_isCounting{false};
std::atomic<std::size_t> g_tried{0};
std::atomic<std::size_t> g_failingNumber{0};
std::atomic<bool> g_failsAllBehind{false};
std::atomic<std::ptrdiff_t> g_liveBlocks{0};
std::atomic<failing_new::Watcher> g_watcher{nullptr};

void* allocate(std::size_t size) noexcept {
  if (failing_new::shallFail()) return nullptr;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++g_liveBlocks;
  return block;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) noexcept {
  if (failing_new::shallFail()) return nullptr;
  const auto bytes = static_cast<std::size_t>(alignment);
  void* const block = std::aligned_alloc(bytes, (size + bytes) / bytes * bytes);
  if (block != nullptr) ++g_liveBlocks;
  return block;
}

void* orThrow(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void giveBack(void* block) noexcept {
  if (block == nullptr) return;
  --g_liveBlocks;
  if (const failing_new::Watcher watcher = g_watcher) watcher(block, malloc_usable_size(block));
  std::free(block);
}

}  // namespace

namespace failing_new {

Period::Period(std::size_t failingNumber, Extent extent) {
  g_failsAllBehind = extent == Extent::ALL_BEHIND;
  g_tried = 0;
  g_failingNumber = failingNumber;
  g_isCounting = true;
}

void Period::end() { g_isCounting = false; }

std::size_t tried() { return g_tried; }

std::ptrdiff_t liveBlocks() { return g_liveBlocks; }

void setWatcher(Watcher watcher) { g_watcher = watcher; }

bool shallFail() {
  if (!g_isCounting) return false;
  const std::size_t number = ++g_tried;
  if (g_failingNumber == 0 || number < g_failingNumber) return false;
  return number == g_failingNumber || g_failsAllBehind;
}

}  // namespace failing_new

void* operator new(std::size_t size) { return orThrow(allocate(size)); }
void* operator new[](std::size_t size) { return orThrow(allocate(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return orThrow(allocateAligned(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return orThrow(allocateAligned(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocateAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocateAligned(size, alignment);
}
void operator delete(void* block) noexcept { giveBack(block); }
void operator delete[](void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t) noexcept { giveBack(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { giveBack(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { giveBack(block); }
void operator delete(void* block, std::align_val_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::align_val_t) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { giveBack(block); }
