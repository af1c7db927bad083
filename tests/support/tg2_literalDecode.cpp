#include "tests/support/tg2_literalDecode.h"

#include <stdexcept>

#include "gr_lib_tg2kernel/src/decode/tg2_noiseTable.h"
#include "tests/support/tg2_forwardWavelet.h"

namespace {

// Which block of a subband a sample is in, by its place in the grid.
gr_uint32 blockOf(const TG2TestImage& image, gr_int64 x, gr_int64 y, gr_int64 width) {
  const gr_int64 blockWidth = image.blockWidth != 0 ? image.blockWidth : width;
  const gr_int64 blockHeight = image.blockHeight != 0 ? image.blockHeight : y + 1;
  const gr_int64 across = (width + blockWidth - 1) / blockWidth;
  return static_cast<gr_uint32>(y / blockHeight * across + x / blockWidth);
}

bool isCoded(const TG2TestImage& image, gr_uint32 subband, gr_uint32 block, gr_uint32 band) {
  if (image.isSubbandAbsent && image.isSubbandAbsent(subband)) return false;
  if (image.hasEmptyTable && image.hasEmptyTable(subband)) return false;
  if (image.isBlockAbsent && image.isBlockAbsent(subband, block)) return false;
  return !image.isBandAbsent || !image.isBandAbsent(subband, block, band);
}

float dither(const TG2TestImage& image, gr_uint32 subband, gr_int64 x, gr_int64 y) {
  const auto origin = image.noiseOriginOf ? image.noiseOriginOf(subband) : image.noiseOrigin;
  return tg2_noiseTable.at(static_cast<size_t>((y + origin[1]) % 128))
      .at(static_cast<size_t>((x + origin[0]) % 128));
}

}  // namespace

TG2LiteralPlane tg2_literalPlane(const TG2TestImage& image, const TG2TestBins& bins, gr_uint32 band,
                                 gr_int32 level) {
  const auto numSubbands = static_cast<gr_int32>(3 * image.numLevels + 1);
  const auto coefficients = [&](gr_int32 index, gr_int64 width, gr_int64 height, float gain) {
    TG2LiteralPlane plane = {width, height, std::vector<float>(width * height)};
    if (index >= numSubbands) return plane;  // finer than what the file has
    const auto subband = static_cast<gr_uint32>(index);
    const std::vector<gr_int32>& binsOfBand = bins.at(band).at(subband);
    if (binsOfBand.size() != plane.samples.size()) throw std::logic_error("another size");
    for (gr_int64 i = 0; i < width * height; ++i) {
      const gr_int64 x = i % width, y = i / width;
      const gr_uint32 block = blockOf(image, x, y, width);
      if (!isCoded(image, subband, block, band)) continue;
      const float binWidth =
          image.binWidthOf ? image.binWidthOf(subband, block, band) : image.binWidth;
      const float step = tg2_literalStep(level, gain, binWidth);
      float value = tg2_literalValue(binsOfBand.at(static_cast<size_t>(i)), step);
      if (step == 0.0F) {
        value = 0.0F;
      } else if (band == 0 && image.hasDither) {
        const float noise = dither(image, subband, x, y) * step;
        value = value - noise;
      }
      plane.samples.at(static_cast<size_t>(i)) = value;
    }
    return plane;
  };
  return tg2_literalImage(image.width, image.height, static_cast<gr_int32>(image.numLevels), level,
                          coefficients);
}

std::vector<std::vector<float>> tg2_literalSamples(const std::vector<TG2LiteralPlane>& planes,
                                                   const TG2TestRect& window) {
  const auto finished = [](float value) {
    const float sample = value + 0.5F;
    return sample > 0.0F ? sample : 0.0F;
  };
  const auto sum = [](float p0, float c1, float p1, float c2, float p2) {
    const float first = c1 * p1;
    const float second = c2 * p2;
    const float both = p0 + first;
    return both + second;
  };
  std::vector<std::vector<float>> samples(planes.size());
  for (gr_int64 y = window.y0; y <= window.y1; ++y) {
    for (gr_int64 x = window.x0; x <= window.x1; ++x) {
      const float p0 = planes.at(0).at(x, y);
      if (planes.size() == 1) {
        samples[0].push_back(finished(p0));
        continue;
      }
      const float p1 = planes.at(1).at(x, y), p2 = planes.at(2).at(x, y);
      samples[0].push_back(finished(sum(p0, 0.9452160596847534F, p1, 0.6327160596847534F, p2)));
      samples[1].push_back(finished(sum(p0, -0.28935185074806213F, p1, -0.6018518805503845F, p2)));
      samples[2].push_back(finished(sum(p0, -1.0995370149612427F, p1, 1.7129629850387573F, p2)));
    }
  }
  return samples;
}
