/// @file
/// The versions of the file format.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

enum NITFVersion : gr_int32 {
  NITF_VERSION_NONE = 0,
  NITF_VERSION_20 = 2,
  NITF_VERSION_21 = 3,  ///< also NSIF 1.0, which is the same
};
