/// @file
/// What the programs that make pictures for the benchmarks read.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"

/// A picture of one or three components, each width x height samples.
struct EncodePicture {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  gr_uint32 largest = 0;  ///< sample
  std::vector<std::vector<gr_int32>> components;
};

/// Reads a binary PPM or PGM of 8 or 16 bits. @return whether it is one
bool encode_readPicture(const std::string& path, EncodePicture& picture);

/// The numbers of a world file: x resolution, two rotations, y resolution, and the origin.
/// @return whether there are six of them
bool encode_readWorldFile(const std::string& path, std::array<double, 6>& numbers);

/// Writes a file. @return whether that succeeded
bool encode_writeFile(const std::string& path, const std::vector<gr_uint8>& bytes);
