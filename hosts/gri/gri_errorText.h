/// @file
/// Errors as the command prints them.
#pragma once

#include <iosfwd>
#include <string>

#include "hosts/common/gri_hostError.h"

/// "gri: FILE: text [number]"
void gri_printError(std::ostream& err, const std::string& file, const GRIHostError& error);
