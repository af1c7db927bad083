/// @file
/// Which kind of picture a file is, told by its first bytes and never by its name.
#pragma once

#include <span>
#include <string>

#include "hosts/common/gri_hostError.h"

enum class GRIHostFormat { UNKNOWN, TESRA, JPEG2000, NITF };

/// What the first bytes of a file say.
struct GRIHostContent {
  GRIHostFormat format = GRIHostFormat::UNKNOWN;
  std::string name;  // for people, with the version where the bytes tell it: "NITF 2.1"
};

/// How many bytes from the beginning of a file gri_hostIdentify looks at.
constexpr size_t GRI_HOST_HEAD_BYTES = 12;

/// @param head  the first bytes of a file: GRI_HOST_HEAD_BYTES, or all where there are fewer
GRIHostContent gri_hostIdentify(std::span<const gr_uint8> head);

/// Reads the first bytes of the file at `path`.
/// @return none; 50004 with the system's reason when it can't be opened; 50006 when it can't be
///         read; 50002 when it is of no kind that the library reads
GRIHostError gri_hostIdentifyFile(const std::string& path, GRIHostContent& content);
