/// @file
/// `gri info`
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "hosts/common/gri_hostImage.h"
#include "hosts/gri/gri_terminal.h"

/// Describes pictures, for people or as JSON: an object for each file, with the file's name as
/// "file", then the keys of gri_hostInfoJson; for one that can't be read, "error": {"status",
/// "text"}.
/// @param files     paths; "-" for standard input
/// @param terminal  how `out` shows text
/// @return the exit code: 1 when any file could not be read
int gri_runInfo(const std::vector<std::string>& files, bool isJson, const GRITerminal& terminal,
                std::ostream& out, std::ostream& err);

/// What people read about a picture, a line for each property.
std::string gri_describe(const GRIHostImage& image, const GRITerminal& terminal);
