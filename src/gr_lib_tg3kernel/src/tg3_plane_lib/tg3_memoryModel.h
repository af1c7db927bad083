/// @file
/// How much of an image's index stays in memory.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_planesetPacket.h"
#include "image/tesra_imageReaderInterface.h"

enum TG3MemoryModel : gr_int32 {
  TG3_MEMORY_NONE = 0,     ///< no planes can be read
  TG3_MEMORY_FULL = 2,     ///< an entry for each subblock
  TG3_MEMORY_PARTIAL = 3,  ///< an entry for each row of subblocks
  TG3_MEMORY_DEFAULT = 4,  ///< one of the two, by an estimate
};

/// Below this many bytes, by the estimate, an index is kept in full.
constexpr double TG3_LARGEST_FULL_INDEX = 0x10000000;

/// The bytes that a full index is estimated at. It counts on what the file says of itself.
double tg3_estimateIndexBytes(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset);

/// What a value of GR_TG3_MEMORY_MODEL makes of a model; null for a variable that isn't set. Only
/// the first characters count: six of "partial", all of "full" and of "default"; other values
/// change nothing.
TG3MemoryModel tg3_overrideMemoryModel(TG3MemoryModel model, const char* variable);

/// The model for an image, by the reader's memory usage, then the environment variable
/// GR_TG3_MEMORY_MODEL, then the estimate, and what the layout of the planes allows.
/// @return full or partial; none for a memory usage that isn't one
TG3MemoryModel tg3_chooseMemoryModel(TesraMemoryUsage usage, const TG3ImageInfo& info,
                                     const TG3PlanesetPacket& planeset);
