// How GRISceneBuffer takes pixels of another buffer in place of its own.

#include <algorithm>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_mask.h"
#include "image/gri_maskRowBuilder.h"
#include "image/gri_mergeScan.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

/// Below this squared distance from no data, at magnification 1 and in one band, samples of a
/// picture may be no data that a lossy format has blurred.
constexpr double FUZZY_THRESHOLD = 16.0;

bool needsNoData(GRIMergeMode mode) {
  return mode != GRI_MERGE_LESSER && mode != GRI_MERGE_GREATER;
}

bool isForAllBands(GRIMergeMode mode) { return mode == GRI_MERGE_EXACT || mode == GRI_MERGE_FUZZY; }

bool canScan(GRIDataType type, GRIMergeMode mode) {
  return (type == GRI_DATATYPE_UINT8 || type == GRI_DATATYPE_UINT16 ||
          type == GRI_DATATYPE_SINT16 || type == GRI_DATATYPE_FLOAT32) &&
         mode >= GRI_MERGE_EXACT && mode <= GRI_MERGE_FUZZY_PER_BAND;
}

}  // namespace

GR_STATUS GRISceneBuffer::merge(GRIMergeMode mode, double magnification,
                                const GRISceneBuffer& other, const GRIPixel* noData) {
  return mergeMasked(mode, magnification, other, noData, nullptr);
}

GR_STATUS GRISceneBuffer::merge(GRIMergeMode mode, const GRISceneBuffer& other,
                                const GRIPixel* noData) {
  return merge(mode, 1.0, other, noData);
}

GR_STATUS GRISceneBuffer::merge(GRIMergeMode mode, double magnification,
                                const GRISceneBuffer& other, const GRIPixel* noData,
                                GRIMaskSource& source, const GRIScene& scene) {
  GRIMask allowed;
  GR_RETURN_IF_FAILED(source.getMask(scene, allowed));
  return mergeMasked(mode, magnification, other, noData, &allowed);
}

/// @param allowed  the pixels that may be taken; null: all of them
GR_STATUS GRISceneBuffer::mergeMasked(GRIMergeMode mode, double magnification,
                                      const GRISceneBuffer& other, const GRIPixel* noData,
                                      const GRIMask* allowed) {
  GR_RETURN_IF_FAILED(m_pixelProps->checkImpedance(*other.m_pixelProps));
  if (noData == nullptr && needsNoData(mode)) {
    return allowed == nullptr ? copyFrom(other) : copyFrom(other, *allowed);
  }
  GRIMask mask;
  const auto buildMask = [&](gr_uint16 firstBand, gr_uint16 numBands) {
    GR_RETURN_IF_FAILED(
        buildMergeMask(mode, magnification, other, noData, firstBand, numBands, mask));
    return allowed == nullptr ? GR_STATUS_OK : mask.intersect(mask, *allowed);
  };
  if (isForAllBands(mode)) {
    GR_RETURN_IF_FAILED(buildMask(0, m_numBands));
    return copyFrom(other, mask);
  }
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    GR_RETURN_IF_FAILED(buildMask(band, 1));
    GR_RETURN_IF_FAILED(copyBandFrom(band, other, band, mask));
  }
  return GR_STATUS_OK;
}

/// The pixels that the mode takes, by a look at some of the bands.
GR_STATUS GRISceneBuffer::buildMergeMask(GRIMergeMode mode, double magnification,
                                         const GRISceneBuffer& other, const GRIPixel* noData,
                                         gr_uint16 firstBand, gr_uint16 numBands,
                                         GRIMask& mask) const {
  const GRIDataType type = m_pixelProps->getDataType();
  if (!canScan(type, mode)) return GR_STATUS_OUT_OF_RANGE;
  if (needsNoData(mode)) {
    if (noData == nullptr || noData->getNumBands() != m_numBands || noData->getDataType() != type) {
      return GR_STATUS_OUT_OF_RANGE;
    }
  }
  const double threshold = FUZZY_THRESHOLD / std::min(magnification, 1.0) * numBands;
  GRIMergeScan scan;
  GR_RETURN_IF_FAILED(scan.initialize(mode, threshold, *this, other,
                                      needsNoData(mode) ? noData : nullptr, firstBand, numBands));
  GR_RETURN_IF_FAILED(mask.setNumRows(scan.getNumRows()));
  GRIMaskRowBuilder builder;
  for (gr_uint32 row = 0; row < scan.getNumRows(); ++row) {
    builder.clear();
    try {
      scan.forEachRun(row, [&](gr_uint32 col, gr_uint32 numCols) {
        builder.add(static_cast<gr_int32>(col), static_cast<gr_int32>(col + numCols - 1));
      });
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
    GRIMaskRow runs;
    GR_RETURN_IF_FAILED(runs.copyFrom(builder.row()));
    mask.setRow(row, std::move(runs));
  }
  return GR_STATUS_OK;
}
