/// @file
/// What every fuzz target does with bytes: make them a file, open it through the exported
/// functions, ask everything, decode a little.
#pragma once

#include <gri_rdk_cdll.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fuzz {

/// Bytes as a file without a disk: an anonymous file of the kernel's, removed with the object.
class MemoryFile {
 public:
  explicit MemoryFile(std::span<const std::uint8_t> bytes);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  const std::string& path() const { return m_path; }

 private:
  int m_descriptor = -1;
  std::string m_path;
};

/// Asks an open image everything that the interface offers, decodes small windows at several
/// magnifications, and closes it. A picture and a status are both right; what is wrong is left to
/// the sanitizers.
void exercise(gric_image image);

}  // namespace fuzz
