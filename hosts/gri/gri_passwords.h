/// @file
/// Where the command gets the passwords of locked pictures from.
#pragma once

#include <string>
#include <vector>

#include "hosts/common/gri_hostError.h"
#include "hosts/common/gri_hostPassword.h"

/// Overwrites the values of --password in the arguments of the process, where every user of the
/// machine can read them.
/// @param argv  those of main, which the system shows
/// @return a copy from before, the caller's to wipe
std::vector<std::string> gri_takeArguments(int argc, char** argv);

/// Sets the value of --password aside, so that whoever parses the arguments makes no copies of it.
/// One that begins with a dash stays unless it stands behind an equals sign: it is an option.
/// @param password  receives the last value, if there is one
/// @return the arguments, with something else in place of the value
std::vector<const char*> gri_setPasswordAside(int argc, const char* const* argv,
                                              GRIHostPassword& password);

/// Blots out the values of --password in a text about arguments.
std::string gri_withoutPasswords(std::string text, int argc, const char* const* argv);

/// Reads the first line of a file.
/// @return the error of reading it; a line without a password is one
GRIHostError gri_readPasswordFile(const std::string& path, GRIHostPassword& password);

/// Asks on the terminal of the process, and doesn't show what is typed.
/// @param file      the picture, as the user named it
/// @return whether there is a password; false without a terminal, for an empty line, and for
///         Ctrl-C, of which GRIInterrupt tells
bool gri_askForPassword(const std::string& file, bool wasWrong, GRIHostPassword& password);
