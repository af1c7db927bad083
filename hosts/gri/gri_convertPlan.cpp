#include "hosts/gri/gri_convertPlan.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// A rectangle with fractions, in pixels of the full size.
struct Area {
  double column = 0;
  double row = 0;
  double width = 0;
  double height = 0;
};

// What counts as on the edge of a pixel: positions are computed, not exact.
constexpr double EDGE_TOLERANCE = 1e-4;

std::string sizeWords(const GRIHostImageInfo& info) {
  return std::to_string(info.width) + " x " + std::to_string(info.height) + " pixels";
}

std::string areaOfWindow(const GRIHostImageInfo& info, const std::array<double, 4>& window,
                         Area& area) {
  for (const double number : window) {
    if (!(number >= 0 && number == std::floor(number))) {
      return "--window takes whole numbers of pixels";
    }
  }
  area = {window[0], window[1], window[2], window[3]};
  if (area.width == 0 || area.height == 0) return "the window is empty";
  if (area.column + area.width > info.width || area.row + area.height > info.height) {
    return "the window reaches beyond the picture of " + sizeWords(info);
  }
  return {};
}

/// The pixels that a rectangle on the ground touches, cut to the picture.
std::string areaOfBox(const GRIHostImageInfo& info, const std::array<double, 4>& box, Area& area) {
  const auto& [west, south, east, north] = box;
  if (!info.position) return "--bbox needs a picture with a position, and this one states none";
  const auto isNumber = [](double side) { return std::isfinite(side); };
  if (!std::all_of(box.begin(), box.end(), isNumber) || !(west < east && south < north)) {
    return "--bbox takes west, south, east and north";
  }
  double left = std::numeric_limits<double>::infinity();
  double top = left;
  double right = -left;
  double bottom = -left;
  for (const double x : {west, east}) {
    for (const double y : {south, north}) {
      double column = 0;
      double row = 0;
      if (!info.position->toPicture(x, y, column, row)) {
        return "the picture's position is degenerate";
      }
      // Columns count from the centres of pixels, edges lie half a pixel before.
      left = std::min(left, column + 0.5);
      right = std::max(right, column + 0.5);
      top = std::min(top, row + 0.5);
      bottom = std::max(bottom, row + 0.5);
    }
  }
  left = std::max(0.0, std::floor(left + EDGE_TOLERANCE));
  top = std::max(0.0, std::floor(top + EDGE_TOLERANCE));
  right = std::min<double>(info.width, std::ceil(right - EDGE_TOLERANCE));
  bottom = std::min<double>(info.height, std::ceil(bottom - EDGE_TOLERANCE));
  if (!(left < right && top < bottom)) return "the box lies outside of the picture";
  area = {left, top, right - left, bottom - top};
  return {};
}

/// Pixels of a side at a magnification: the next whole number above, but for what products are off
/// by; 0 when there are too many to count.
unsigned sideAt(double side, double magnification) {
  constexpr double PRODUCT_TOLERANCE = 1e-12;
  constexpr double LARGEST = std::numeric_limits<int>::max();
  const double exact = side * magnification;
  const double pixels = std::max(1.0, std::ceil(exact - exact * PRODUCT_TOLERANCE));
  return pixels <= LARGEST ? static_cast<unsigned>(pixels) : 0;
}

bool isPowerOfTwo(double value) {
  int exponent = 0;
  return std::frexp(value, &exponent) == 0.5;
}

/// The size that the user asked for; a missing side follows from the shape of the area.
GRISize outputSize(const Area& area, const GRISize& asked) {
  const auto side = [](double value) {
    return static_cast<unsigned>(
        std::clamp<double>(std::round(value), 1, std::numeric_limits<int>::max()));
  };
  if (asked.width == 0) return {side(asked.height * area.width / area.height), asked.height};
  if (asked.height == 0) return {asked.width, side(asked.width * area.height / area.width)};
  return asked;
}

/// The smallest level in which the area has at least the size asked for; else the largest.
GRIHostLevel bestLevel(const GRIHostImageInfo& info, const Area& area, const GRISize& size) {
  GRIHostLevel best = info.levels.front();
  for (const GRIHostLevel& level : info.levels) {
    const bool isEnough = area.width * level.magnification >= size.width &&
                          area.height * level.magnification >= size.height;
    if (isEnough) best = level;
  }
  return best;
}

/// The area at a magnification, in whole pixels that cover it.
GRIHostWindow windowAt(const Area& area, const GRIHostLevel& level) {
  const auto whole = [&](double from, double size, gr_uint32 limit, gr_uint32& start,
                         gr_uint32& count) {
    const double first = std::floor(from * level.magnification);
    const double end = std::min<double>(std::ceil((from + size) * level.magnification), limit);
    start = static_cast<gr_uint32>(std::min<double>(first, limit - 1.0));
    count = static_cast<gr_uint32>(std::max(1.0, end - start));
  };
  GRIHostWindow window;
  whole(area.column, area.width, level.width, window.column, window.width);
  whole(area.row, area.height, level.height, window.row, window.height);
  return window;
}

}  // namespace

std::string gri_planConversion(const GRIHostImage& image, const GRIConvertOptions& options,
                               GRIConvertPlan& plan) {
  const GRIHostImageInfo& info = image.info();
  if (info.levels.empty() || info.width == 0 || info.height == 0) return "the picture is empty";
  for (const int band : options.bands) {
    if (static_cast<size_t>(band) > info.bands.size()) {
      return "the picture has no band " + std::to_string(band) + ", only " +
             std::to_string(info.bands.size());
    }
  }
  Area area{0, 0, static_cast<double>(info.width), static_cast<double>(info.height)};
  std::string wrong;
  if (options.window) wrong = areaOfWindow(info, *options.window, area);
  if (options.bbox) wrong = areaOfBox(info, *options.bbox, area);
  if (!wrong.empty()) return wrong;

  GRIHostLevel level = info.levels.front();
  std::optional<GRISize> size;
  if (options.magnification) {
    const double asked = *options.magnification;
    const GRISize asSize{sideAt(area.width, asked), sideAt(area.height, asked)};
    if (asSize.width == 0 || asSize.height == 0) return "the magnification is too large";
    // A picture that is too large there as a whole may still be resampled in part.
    const bool isCountable = sideAt(info.width, asked) != 0 && sideAt(info.height, asked) != 0;
    GRIHostLevel served{asked, 0, 0};
    const bool isServed =
        isCountable && isPowerOfTwo(asked) && !image.sizeAt(asked, served.width, served.height);
    if (isServed) {
      level = served;
    } else {
      size = asSize;
    }
  } else if (options.size) {
    size = outputSize(area, *options.size);
  }
  if (size) level = bestLevel(info, area, *size);

  plan = {};
  plan.view.magnification = level.magnification;
  plan.view.window = windowAt(area, level);
  plan.view.bands = options.bands;
  plan.view.keepGoing = options.keepGoing;
  plan.width = static_cast<int>(size ? size->width : plan.view.window.width);
  plan.height = static_cast<int>(size ? size->height : plan.view.window.height);
  const double m = level.magnification;
  const GRIHostWindow window = plan.view.window;
  const double column = std::max(0.0, area.column * m - window.column);
  const double row = std::max(0.0, area.row * m - window.row);
  plan.source = {column, row, std::min(area.width * m, window.width - column),
                 std::min(area.height * m, window.height - row)};
  plan.isResampled = static_cast<gr_uint32>(plan.width) != window.width ||
                     static_cast<gr_uint32>(plan.height) != window.height;
  const bool isWhole = window == GRIHostWindow{0, 0, level.width, level.height};
  // As it stands in the file, a picture brings its smaller magnifications along as overviews.
  if (isWhole && !plan.isResampled) plan.view.window = {};
  return {};
}
