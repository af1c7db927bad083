/// @file
/// The version of the library.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

constexpr gr_uint32 GRI_VERSION_MAJOR = 7;
constexpr gr_uint32 GRI_VERSION_MINOR = 0;
constexpr gr_uint32 GRI_VERSION_TWEAK = 0;
constexpr gr_uint32 GRI_VERSION_BUILD = 2181;
constexpr char GRI_VERSION_BRANCH[] = "HEAD";
