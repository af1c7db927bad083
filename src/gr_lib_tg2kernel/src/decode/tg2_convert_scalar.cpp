#include <algorithm>
#include <limits>
#include <type_traits>

#include "gr_lib_tg2kernel/src/decode/tg2_convert.h"
#include "gr_lib_tg2kernel/src/decode/tg2_convertConstants.h"

namespace {

template <typename Sample>
Sample cut(float value) {
  constexpr auto MAX = static_cast<float>(std::numeric_limits<Sample>::max());
  if (!(value > 0)) value = 0;  // numbers that aren't any, too
  return static_cast<Sample>(std::min(value, MAX));
}

template <typename Sample>
void oneBand(const float* const* planes, Sample* const* bands, size_t n) {
  for (size_t i = 0; i < n; ++i) bands[0][i] = cut<Sample>(planes[0][i] + 0.5F);
}

/// One colour of a pixel, in the precision of its operands.
template <typename Real>
Real colorOf(const TG2ColorRow& row, Real p0, Real p1, Real p2) {
  return p0 + Real{row.ofP1} * p1 + Real{row.ofP2} * p2;
}

template <typename Sample>
void threeBands(const float* const* planes, Sample* const* bands, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    for (size_t band = 0; band < 3; ++band) {
      const float color = colorOf(TG2_COLOR_ROWS[band], planes[0][i], planes[1][i], planes[2][i]);
      bands[band][i] = cut<Sample>(color + 0.5F);
    }
  }
}

template <typename Sample>
void fourBands(const float* const* planes, Sample* const* bands, size_t n) {
  constexpr auto MAX = static_cast<float>(std::numeric_limits<Sample>::max());
  for (size_t i = 0; i < n; ++i) {
    float inks[3];
    for (size_t band = 0; band < 3; ++band) {
      const double color =
          colorOf<double>(TG2_COLOR_ROWS[band], planes[0][i], planes[1][i], planes[2][i]);
      const auto ink = static_cast<float>((double{MAX} - color) * 2);
      inks[band] = !(ink > 0) ? 0 : std::min(ink, 2 * MAX);
    }
    const float black = !(planes[3][i] > 0) ? 0 : planes[3][i];
    const float least = std::min({inks[0], inks[1], inks[2]});
    const float k = least - std::min(least, black);
    for (size_t band = 0; band < 3; ++band) bands[band][i] = cut<Sample>(inks[band] + 0.5F - k);
    bands[3][i] = cut<Sample>(k + 0.5F);
  }
}

}  // namespace

void tg2_convertOneBandScalar(const float* const* planes, gr_uint8* const* bands, size_t n) {
  oneBand(planes, bands, n);
}
void tg2_convertOneBandScalar(const float* const* planes, gr_uint16* const* bands, size_t n) {
  oneBand(planes, bands, n);
}
void tg2_convertOneBandScalar(const float* const* planes, float* const* bands, size_t n) {
  oneBand(planes, bands, n);
}

void tg2_convertThreeBandsScalar(const float* const* planes, gr_uint8* const* bands, size_t n) {
  threeBands(planes, bands, n);
}
void tg2_convertThreeBandsScalar(const float* const* planes, gr_uint16* const* bands, size_t n) {
  threeBands(planes, bands, n);
}
void tg2_convertThreeBandsScalar(const float* const* planes, float* const* bands, size_t n) {
  threeBands(planes, bands, n);
}

void tg2_convertFourBandsScalar(const float* const* planes, gr_uint8* const* bands, size_t n) {
  fourBands(planes, bands, n);
}
void tg2_convertFourBandsScalar(const float* const* planes, gr_uint16* const* bands, size_t n) {
  fourBands(planes, bands, n);
}
