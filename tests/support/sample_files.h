/// @file
/// The small pictures of tests/data, and what a decode of some of their pixels gives.
#pragma once

#include <string>
#include <vector>

#include "gri_rdk_cdll.h"

using SampleBytes = std::vector<gr_uint8>;

/// A picture that opens.
struct SampleFile {
  std::string name;
  std::string path;
  std::string password;  // empty where it needs none
};

std::vector<SampleFile> tesraSampleFiles();
/// Those of which the list of samples says that they open.
std::vector<SampleFile> nitfSampleFiles();

SampleBytes bytesOf(const SampleFile& file);

/// Decodes the upper left pixels, and those of half the size where the picture has it.
/// @param samples  receives them, band after band; of what failed too. Allocates nothing where it
///                 was used for the same picture before
GR_STATUS decodeCorners(gric_image image, SampleBytes& samples);
