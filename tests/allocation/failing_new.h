/// @file
/// operator new that fails when it is told to. Whatever is linked with failing_new.cpp allocates
/// through it, the shared libraries of the program included.
#pragma once

#include <cstddef>

namespace failing_new {

/// Which allocations fail, beside the one that is named.
enum class Extent { ALONE, ALL_BEHIND };

/// While it lives, allocation number `failingNumber` (from 1) fails, alone or with all behind it;
/// 0 for none. Only one may live at a time.
class Period {
 public:
  Period(std::size_t failingNumber, Extent extent);
  ~Period() { end(); }
  void end();  ///< before it goes
  Period(const Period&) = delete;
  Period& operator=(const Period&) = delete;
};

/// How many allocations were tried since the last Period began.
std::size_t tried();
/// Blocks that were allocated and not given back.
std::ptrdiff_t liveBlocks();
/// For allocators of another kind: whether this allocation is to fail. It counts as one.
bool shallFail();

/// Sees each block that is given back, while its bytes are still there. Null for nobody.
/// Blocks of other allocators may be shown to it as well.
using Watcher = void (*)(const void* block, std::size_t bytes);
void setWatcher(Watcher watcher);

}  // namespace failing_new
