/// @file
/// The values of the command's options, from their text.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// A size in pixels; a side of 0 follows from the other one and the picture's shape.
struct GRISize {
  unsigned width = 0;
  unsigned height = 0;

  bool operator==(const GRISize&) const = default;
};

/// "0.125", "1/8" or "2" as a number above zero; nothing for any other text.
std::optional<double> gri_parseMagnification(const std::string& text);

/// "1000x", "x800" or "1000x800"; nothing for any other text, nor for sides above 2^31 - 1.
std::optional<GRISize> gri_parseSize(const std::string& text);

/// "3,2,1" as numbers from 1; nothing for any other text.
std::optional<std::vector<int>> gri_parseBands(const std::string& text);
