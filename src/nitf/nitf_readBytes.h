/// @file
/// Exact reads from a stream, with the NITF readers' status for a short one.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"

/// Reads exactly `length` bytes at the position of an open stream.
/// @return 0; for a short read the stream's last error, or 51204 where that is 0 (the end)
[[nodiscard]] GR_STATUS nitf_readBytes(GRIOStreamInf& stream, void* bytes, gr_uint64 length);

/// The same at `offset`. An offset that can't be reached counts as a short read.
[[nodiscard]] GR_STATUS nitf_readBytesAt(GRIOStreamInf& stream, gr_uint64 offset, void* bytes,
                                         gr_uint64 length);
