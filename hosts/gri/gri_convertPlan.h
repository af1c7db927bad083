/// @file
/// From what the user asked for to what is decoded.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "hosts/common/gri_hostImage.h"
#include "hosts/common/gri_hostPassword.h"
#include "hosts/gdal/gri_gdalDataset.h"
#include "hosts/gri/gri_arguments.h"

/// The options of `gri convert`.
struct GRIConvertOptions {
  std::string input;
  std::string output;
  std::optional<std::array<double, 4>> window = {};  // column, row, width, height at full size
  std::optional<std::array<double, 4>> bbox = {};    // west, south, east, north
  std::optional<double> magnification = {};
  std::optional<GRISize> size = {};
  std::vector<int> bands = {};
  std::string format = {};                        // as given; empty: by the name of the output
  std::vector<std::string> creationOptions = {};  // NAME=VALUE
  const GRIHostPassword* password = nullptr;      // the caller's; null: none is given
  std::optional<std::string> passwordFile = {};
  bool wantsWorldFile = false;
  bool keepGoing = false;
  bool force = false;
  bool quiet = false;
};

/// What to decode, and how to resample it.
struct GRIConvertPlan {
  GRIGdalView view;
  /// Size of the output.
  int width = 0;
  int height = 0;
  /// The output has another size than the view: `source` (column, row, width and height in the
  /// view, with fractions) is resampled to it.
  bool isResampled = false;
  std::array<double, 4> source{};
};

/// Holds the options against the picture. A magnification or size that the picture isn't stored in
/// is taken from the next larger one that it is.
/// @return what is wrong with the options, in words; empty when nothing is
std::string gri_planConversion(const GRIHostImage& image, const GRIConvertOptions& options,
                               GRIConvertPlan& plan);
