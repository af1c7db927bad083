/// @file
/// What the tests of this folder share: bytes, streams over them, a directory that goes away.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"

using Bytes = std::vector<gr_uint8>;

/// 0, 1, 2, ... as bytes.
inline Bytes countingBytes(size_t count) {
  Bytes bytes(count);
  std::iota(bytes.begin(), bytes.end(), gr_uint8{0});
  return bytes;
}

/// An open memory stream that holds `bytes`, at its begin.
inline std::unique_ptr<GRIODynamicMemStream> memStreamOf(const Bytes& bytes) {
  auto stream = GRIOStreamUtils::openMemStream();
  const auto length = static_cast<gr_uint32>(bytes.size());
  EXPECT_EQ(stream->write(bytes.data(), length), length);
  EXPECT_EQ(stream->seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  return stream;
}

/// What a read of `length` bytes gives.
inline Bytes readBytes(GRIOStreamInf& stream, gr_uint32 length) {
  Bytes bytes(length);
  bytes.resize(stream.read(bytes.data(), length));
  return bytes;
}

/// An empty directory, which is removed with all that is in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "gr_testXXXXXX").string();
    EXPECT_NE(::mkdtemp(pattern.data()), nullptr);
    m_path = pattern;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() { std::filesystem::remove_all(m_path); }

  const std::string& path() const { return m_path; }
  std::string path(const std::string& name) const { return m_path + "/" + name; }
  /// The path of a new file with this content.
  std::string fileOf(const std::string& name, const Bytes& content) const {
    std::ofstream file(path(name), std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
    return path(name);
  }

 private:
  std::string m_path;
};
