#include "nitf/gri_rawSamples.h"

#include <cstring>

#include "image/gri_sampleKernels.h"

namespace {

/// Where the first sample of a band goes.
gr_uint8* firstPlace(GRISceneBuffer& buffer, const GRIRawTarget& target, gr_uint32 band) {
  return static_cast<gr_uint8*>(buffer.getSampleInWindow(
      target.col, target.row, static_cast<gr_uint16>(target.firstBand + band)));
}

void copyInterleaved(const gr_uint8* from, const GRIRawSamples& samples, const GRIRawRect& rect,
                     GRISceneBuffer& buffer, const GRIRawTarget& target, void** planes) {
  const size_t step = buffer.getRowBytes(target.firstBand);
  for (gr_uint32 band = 0; band < samples.numBands; ++band) {
    planes[band] = firstPlace(buffer, target, band);
  }
  for (gr_uint32 row = 0; row < rect.numRows; ++row, from += samples.rowBytes) {
    gri_splitBands(from, rect.numCols, samples.numBands, samples.sampleBytes, planes);
    for (gr_uint32 band = 0; band < samples.numBands; ++band) {
      if (samples.mustSwap) {
        gri_copySwapped(planes[band], rect.numCols, samples.sampleBytes, planes[band]);
      }
      planes[band] = static_cast<gr_uint8*>(planes[band]) + step;
    }
  }
}

void copyBand(const gr_uint8* from, const GRIRawSamples& samples, const GRIRawRect& rect,
              gr_uint8* to, size_t step) {
  const size_t numBytes = size_t{rect.numCols} * samples.sampleBytes;
  for (gr_uint32 row = 0; row < rect.numRows; ++row, from += samples.rowBytes, to += step) {
    if (samples.mustSwap) {
      gri_copySwapped(from, rect.numCols, samples.sampleBytes, to);
    } else {
      std::memcpy(to, from, numBytes);
    }
  }
}

}  // namespace

void gri_copyRawSamples(const gr_uint8* bytes, const GRIRawSamples& samples, const GRIRawRect& rect,
                        GRISceneBuffer& buffer, const GRIRawTarget& target, void** planes) {
  const gr_uint8* const from =
      bytes + samples.offset + rect.row * samples.rowBytes + rect.col * samples.pixelBytes;
  if (samples.pixelBytes != samples.sampleBytes) {
    return copyInterleaved(from, samples, rect, buffer, target, planes);
  }
  for (gr_uint32 band = 0; band < samples.numBands; ++band) {
    copyBand(from + band * samples.bandBytes, samples, rect, firstPlace(buffer, target, band),
             buffer.getRowBytes(target.firstBand));
  }
}
