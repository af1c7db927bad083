/// @file
/// Uncompressed 8-bit NITF 2.1 files for tests and benchmarks, as large as one likes.
#pragma once

#include <cstdint>
#include <string>

/// The one image of a file. (MIL-STD-2500C, table A-3, has the fields.)
struct NITFRawFile {
  std::uint32_t numCols = 0;
  std::uint32_t numRows = 0;
  std::uint32_t numBands = 1;   // 1, or 3 for RGB
  std::uint32_t blockCols = 0;  // at most 8192, as of blockRows; the image's own size for one block
  std::uint32_t blockRows = 0;
  char mode = 'B';  // B, P, R or S

  std::uint32_t blocksPerRow() const { return (numCols + blockCols - 1) / blockCols; }
  std::uint32_t blocksPerCol() const { return (numRows + blockRows - 1) / blockRows; }
  /// Bytes of the pixels with their padding.
  std::uint64_t pixelBytes() const;
  /// The sample that the file has at a place.
  static std::uint8_t sampleAt(std::uint32_t col, std::uint32_t row, std::uint32_t band);

  /// Writes the file with the samples of sampleAt. @return whether that worked
  bool write(const std::string& path) const;
  /// The same with zeros, which take no room on the disk.
  bool writeSparse(const std::string& path) const;

 private:
  std::string headers() const;
};
