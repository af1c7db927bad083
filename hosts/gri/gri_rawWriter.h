/// @file
/// Samples without a header.
#pragma once

#include <gdal_priv.h>

#include <filesystem>

#include "hosts/common/gri_hostError.h"

/// How the samples of a pixel lie in the file.
enum class GRIRawLayout {
  BAND,   // band after band, each row after row
  PIXEL,  // pixel after pixel, row after row
};

/// Writes all samples of a data set, little-endian and without any padding: width x height x bands
/// samples. Works in strips.
/// @param dataType  GRIC_DATATYPE_* of the samples; signed 8-bit ones come as 16 bits from GDAL and
///                  are written as 8
/// @param progress  may end it, as may a failed read; the error then has a status of 1 and no text
GRIHostError gri_writeRaw(GDALDataset& picture, gr_int32 dataType, GRIRawLayout layout,
                          const std::filesystem::path& path, GDALProgressFunc progress,
                          void* progressData);
