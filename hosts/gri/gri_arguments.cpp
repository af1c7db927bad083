#include "hosts/gri/gri_arguments.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace {

/// The whole of `text` as a number; nothing when anything is left over.
template <typename T>
std::optional<T> parseWhole(std::string_view text) {
  T value{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return value;
}

constexpr unsigned LARGEST_SIDE = std::numeric_limits<int>::max();

/// A side of a size: empty is 0, and 0 itself is refused.
std::optional<unsigned> parseSide(std::string_view text) {
  if (text.empty()) return 0;
  const auto side = parseWhole<unsigned>(text);
  if (!side || *side == 0 || *side > LARGEST_SIDE) return std::nullopt;
  return side;
}

}  // namespace

std::optional<double> gri_parseMagnification(const std::string& text) {
  const size_t slash = text.find('/');
  const auto numerator = parseWhole<double>(std::string_view(text).substr(0, slash));
  std::optional<double> denominator = 1.0;
  if (slash != std::string::npos) {
    denominator = parseWhole<double>(std::string_view(text).substr(slash + 1));
  }
  if (!numerator || !denominator) return std::nullopt;
  const double value = *numerator / *denominator;
  if (!std::isfinite(value) || !(value > 0)) return std::nullopt;
  return value;
}

std::optional<GRISize> gri_parseSize(const std::string& text) {
  const size_t cross = text.find('x');
  if (cross == std::string::npos || text.size() == 1) return std::nullopt;
  const auto width = parseSide(std::string_view(text).substr(0, cross));
  const auto height = parseSide(std::string_view(text).substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return GRISize{*width, *height};
}

std::optional<std::vector<int>> gri_parseBands(const std::string& text) {
  std::vector<int> bands;
  for (size_t start = 0; start <= text.size();) {
    const size_t comma = std::min(text.find(',', start), text.size());
    const auto band = parseWhole<int>(std::string_view(text).substr(start, comma - start));
    if (!band || *band < 1) return std::nullopt;
    bands.push_back(*band);
    start = comma + 1;
  }
  return bands;
}
