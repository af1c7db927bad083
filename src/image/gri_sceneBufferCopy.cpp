// What GRISceneBuffer does to the samples of its window in place, and copies between windows.

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_mask.h"
#include "image/gri_mergeScan.h"
#include "image/gri_pixel.h"
#include "image/gri_sampleKernels.h"
#include "image/gri_sceneBuffer.h"

namespace {

bool isFillable(gr_uint32 bytes) { return bytes == 1 || bytes == 2 || bytes == 4 || bytes == 8; }

template <size_t BYTES>
void fillWith(gr_uint8* to, size_t numSamples, const void* value) {
  for (size_t i = 0; i < numSamples; ++i) std::memcpy(to + i * BYTES, value, BYTES);
}

/// Writes one sample `numSamples` times.
void fillSamples(void* to, size_t numSamples, const void* value, size_t bytes) {
  gr_uint8* const target = static_cast<gr_uint8*>(to);
  gr_uint8 sample[8] = {};  // apart from the target, or each store would reload it
  std::memcpy(sample, value, bytes);
  switch (bytes) {
    case 1:
      if (numSamples != 0) std::memset(target, sample[0], numSamples);
      return;
    case 2:
      return fillWith<2>(target, numSamples, sample);
    case 4:
      return fillWith<4>(target, numSamples, sample);
    default:
      return fillWith<8>(target, numSamples, sample);
  }
}

/// Calls `body(col, numCols)` for each run, as far as it lies between column 0 and `numCols`.
template <typename Body>
void forEachRun(const GRIMaskRow* row, gr_uint32 numCols, Body&& body) {
  if (row == nullptr) return;
  for (const GRIMaskRun& run : *row) {
    const gr_int64 first = std::max<gr_int64>(run.first, 0);
    const gr_int64 last = std::min<gr_int64>(run.last, gr_int64{numCols} - 1);
    if (first > last) continue;
    body(static_cast<gr_uint32>(first), static_cast<gr_uint32>(last - first + 1));
  }
}

}  // namespace

// --- In place ----------------------------------------------------------------------------------

GR_STATUS GRISceneBuffer::fill(const GRIPixel& pixel) {
  assert(pixel.getNumBands() == m_numBands);
  const gr_uint16 numBands = std::min(m_numBands, pixel.getNumBands());
  if (!std::all_of(m_bytesPerSample.begin(), m_bytesPerSample.end(), isFillable)) {
    return GRI_STATUS_UNSUPPORTED_DATATYPE;
  }
  for (gr_uint16 band = 0; band < numBands; ++band) {
    assert(pixel.getSample(band).getNumBytes() == m_bytesPerSample[band]);
    for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
      fillSamples(getSampleInWindow(0, row, band), m_windowNumCols,
                  pixel.getSample(band).getValuePtr(), m_bytesPerSample[band]);
    }
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::fill(const GRIMask& mask, const GRIPixel* pixel) {
  if (mask.getNumRows() == 0) return GR_STATUS_OK;
  std::unique_ptr<GRIPixel> largest;
  if (pixel == nullptr) {
    try {
      largest = gr_makeUnique<GRIPixel>(*m_pixelProps);
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
    if (largest == nullptr) return GR_STATUS_NO_MEMORY;
    largest->setToMax();
    pixel = largest.get();
  } else {
    GR_RETURN_IF_FAILED(m_pixelProps->checkImpedance(*pixel));
  }
  if (!std::all_of(m_bytesPerSample.begin(), m_bytesPerSample.end(), isFillable)) {
    return GRI_STATUS_UNSUPPORTED_DATATYPE;
  }
  const gr_uint32 numRows = std::min(mask.getNumRows(), m_windowNumRows);
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    for (gr_uint32 row = 0; row < numRows; ++row) {
      forEachRun(mask.getRow(row), m_windowNumCols, [&](gr_uint32 col, gr_uint32 numCols) {
        fillSamples(getSampleInWindow(col, row, band), numCols,
                    pixel->getSample(band).getValuePtr(), m_bytesPerSample[band]);
      });
    }
  }
  return GR_STATUS_OK;
}

void GRISceneBuffer::zero() {
  if (m_windowNumCols == 0) return;
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
      std::memset(getSampleInWindow(0, row, band), 0,
                  size_t{m_windowNumCols} * m_bytesPerSample[band]);
    }
  }
}

GR_STATUS GRISceneBuffer::byteSwap() {
  for (const gr_uint32 bytes : m_bytesPerSample) {
    if (bytes != 2 && bytes != 4 && bytes != 8) return GRI_STATUS_UNSUPPORTED_DATATYPE;
  }
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
      void* samples = getSampleInWindow(0, row, band);
      gri_copySwapped(samples, m_windowNumCols, m_bytesPerSample[band], samples);
    }
  }
  return GR_STATUS_OK;
}

// --- From another window -----------------------------------------------------------------------

GR_STATUS GRISceneBuffer::copyFrom(const GRISceneBuffer& other) {
  GR_RETURN_IF_FAILED(m_pixelProps->checkImpedance(*other.m_pixelProps));
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    GR_RETURN_IF_FAILED(copyBandFrom(band, other, band));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::copyFrom(const GRISceneBuffer& other, const GRIMask& mask) {
  GR_RETURN_IF_FAILED(m_pixelProps->checkImpedance(*other.m_pixelProps));
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    GR_RETURN_IF_FAILED(copyBandFrom(band, other, band, mask));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::copyBandFrom(gr_uint16 band, const GRISceneBuffer& other,
                                       gr_uint16 otherBand) {
  const size_t bytes = getBytesPerSample(band);
  if (bytes != other.getBytesPerSample(otherBand)) return GRI_STATUS_IMPEDANCE_DATATYPE;
  const size_t rowBytes = size_t{std::min(m_windowNumCols, other.m_windowNumCols)} * bytes;
  if (rowBytes == 0) return GR_STATUS_OK;
  const gr_uint32 numRows = std::min(m_windowNumRows, other.m_windowNumRows);
  for (gr_uint32 row = 0; row < numRows; ++row) {
    std::memcpy(getSampleInWindow(0, row, band), other.getSampleInWindow(0, row, otherBand),
                rowBytes);
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::copyBandFrom(gr_uint16 band, const GRISceneBuffer& other,
                                       gr_uint16 otherBand, const GRIMask& mask) {
  const size_t bytes = getBytesPerSample(band);
  if (bytes != other.getBytesPerSample(otherBand)) return GRI_STATUS_IMPEDANCE_DATATYPE;
  const gr_uint32 numCols = std::min(m_windowNumCols, other.m_windowNumCols);
  const gr_uint32 numRows = std::min({m_windowNumRows, other.m_windowNumRows, mask.getNumRows()});
  for (gr_uint32 row = 0; row < numRows; ++row) {
    forEachRun(mask.getRow(row), numCols, [&](gr_uint32 col, gr_uint32 runCols) {
      std::memcpy(getSampleInWindow(col, row, band), other.getSampleInWindow(col, row, otherBand),
                  size_t{runCols} * bytes);
    });
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::copyDataFrom(const GRISceneBuffer& other, const GRIPixel& noData) {
  GR_RETURN_IF_FAILED(m_pixelProps->checkImpedance(*other.m_pixelProps));
  if (noData.getNumBands() != m_numBands) return GRI_STATUS_IMPEDANCE_BANDS;
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    if (noData.getSample(band).getDataType() != m_pixelProps->getSample(band).getDataType()) {
      return GRI_STATUS_IMPEDANCE_DATATYPE;
    }
  }
  GRIMergeScan scan;
  GR_RETURN_IF_FAILED(scan.initialize(GRI_MERGE_EXACT, 0.0, *this, other, &noData, 0, m_numBands));
  for (gr_uint32 row = 0; row < scan.getNumRows(); ++row) {
    scan.forEachRun(row, [&](gr_uint32 col, gr_uint32 numCols) {
      for (gr_uint16 band = 0; band < m_numBands; ++band) {
        std::memcpy(getSampleInWindow(col, row, band), other.getSampleInWindow(col, row, band),
                    size_t{numCols} * m_bytesPerSample[band]);
      }
    });
  }
  return GR_STATUS_OK;
}
