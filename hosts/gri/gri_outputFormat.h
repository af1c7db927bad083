/// @file
/// The formats that a picture can be written in.
#pragma once

#include <gdal_priv.h>

#include <string>
#include <vector>

/// One of GDAL's formats, or raw samples.
struct GRIOutputFormat {
  std::string name;              // "PNG", "raw"
  GDALDriver* driver = nullptr;  // null for raw

  bool isRaw() const { return driver == nullptr; }
};

/// The format that `format` names, in any case; where that is empty, the one that goes by the
/// suffix of `output`.
/// @return what is wrong, in words; empty when nothing is
std::string gri_findFormat(const std::string& format, const std::string& output,
                           GRIOutputFormat& found);

/// Holds a picture against what a format can hold.
/// @return what doesn't fit and what to do about it, in words; empty when all fits
std::string gri_checkFormat(const GRIOutputFormat& format, GDALDataset& picture);

/// Holds options, each NAME=VALUE, against those that a format has.
/// @return what is wrong with them, in words; empty when nothing is
std::string gri_checkCreationOptions(const GRIOutputFormat& format,
                                     const std::vector<std::string>& options);
