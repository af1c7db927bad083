/// @file
/// What every fuzz target does with bytes: make them a file or a stream, open it through the
/// exported functions, ask everything, decode a little.
#pragma once

#include <gri_rdk_cdll.h>

#include <cstddef>
#include <cstdint>
#include <memory>
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

struct StreamDestroyer {
  void operator()(gr_ioCStream stream) const { gr_ioCStreamDestroy(stream); }
};
using Stream = std::unique_ptr<std::remove_pointer_t<gr_ioCStream>, StreamDestroyer>;

/// A callback stream over `bytes`, which must outlive it. Its user objects are freed when the
/// library closes them for the last time or the process ends.
class MemoryStream {
 public:
  explicit MemoryStream(std::span<const std::uint8_t> bytes);
  ~MemoryStream();
  MemoryStream(const MemoryStream&) = delete;
  MemoryStream& operator=(const MemoryStream&) = delete;

  gr_ioCStream get() const { return m_stream.get(); }

  struct Shared;

 private:
  std::unique_ptr<Shared> m_shared;
  Stream m_stream;
};

/// Asks an open image everything that the interface offers, decodes small windows at several
/// magnifications, and closes it. A picture and a status are both right; what is wrong is left to
/// the sanitizers.
void exercise(gric_image image);

}  // namespace fuzz
