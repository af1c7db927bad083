/// @file
/// The C library's functions on files, which fail when they are told to. Whatever is linked with
/// failing_files.cpp uses them.
#pragma once

#include <cstddef>

namespace failing_files {

/// Which calls fail, beside the one that is named.
enum class Extent { ALONE, ALL_BEHIND };

/// While it lives, call number `failingNumber` (from 1) to open, read, seek, tell or close a file
/// fails, alone or with all behind it; 0 for none. A read that fails gives half of its bytes. Only
/// one may live at a time.
class Period {
 public:
  Period(std::size_t failingNumber, Extent extent);
  ~Period();
  Period(const Period&) = delete;
  Period& operator=(const Period&) = delete;
};

/// How many calls were made since the last Period began.
std::size_t numCalls();
/// How many files are open.
std::ptrdiff_t numOpen();

}  // namespace failing_files
