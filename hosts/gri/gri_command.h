/// @file
/// The command line of `gri`.
#pragma once

#include <iosfwd>

/// Runs the command.
/// @param argc, argv  as of main
/// @param out, err    standard output and standard error
/// @return the exit code, see gri_exitCodes.h
int gri_run(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
