/// @file
/// `gri convert`
#pragma once

#include <iosfwd>

#include "hosts/gri/gri_convertPlan.h"

/// Writes a picture, or a part of it, in another format.
/// @param progress  where to show how far it has come; null shows nothing
/// @return the exit code, see gri_exitCodes.h
int gri_runConvert(const GRIConvertOptions& options, std::ostream* progress, std::ostream& err);
