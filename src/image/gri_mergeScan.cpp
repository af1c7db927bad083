#include "image/gri_mergeScan.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "image/gri_pixel.h"

GR_STATUS GRIMergeScan::initialize(GRIMergeMode mode, double threshold, const GRISceneBuffer& own,
                                   const GRISceneBuffer& other, const GRIPixel* noData,
                                   gr_uint16 firstBand, gr_uint16 numBands) {
  assert(firstBand + numBands <= own.getNumBands());
  m_mode = mode;
  m_threshold = threshold;
  m_own = &own;
  m_other = &other;
  m_numCols = std::min(own.getWindowNumCols(), other.getWindowNumCols());
  m_numRows = std::min(own.getWindowNumRows(), other.getWindowNumRows());
  m_firstBand = firstBand;
  m_numBands = numBands;
  GR_RETURN_IF_FAILED(m_ownRows.allocate(numBands));
  GR_RETURN_IF_FAILED(m_otherRows.allocate(numBands));
  GR_RETURN_IF_FAILED(m_types.allocate(numBands));
  GR_RETURN_IF_FAILED(m_noData.allocate(numBands));
  GR_RETURN_IF_FAILED(m_noDataAt.allocate(numBands));
  GR_RETURN_IF_FAILED(m_marks.allocate(gri_markBytes(m_numCols)));
  for (gr_uint16 i = 0; i < numBands; ++i) {
    const gr_uint16 band = static_cast<gr_uint16>(firstBand + i);
    m_types[i] = own.getPixelProps().getSample(band).getDataType();
    m_noDataAt[i] = &m_noData[i];
    if (noData == nullptr) continue;
    assert(noData->getSample(band).getDataType() == m_types[i]);
    std::memcpy(&m_noData[i], noData->getSample(band).getValuePtr(), own.getBytesPerSample(band));
  }
  const bool oneType = std::all_of(m_types.begin(), m_types.end(),
                                   [&](GRIDataType type) { return type == m_types[0]; });
  m_type = oneType ? m_types[0] : GRI_DATATYPE_INVALID;
  return oneType ? GR_STATUS_OK : m_bandMarks.allocate(m_marks.size());
}

void GRIMergeScan::markRow(gr_uint32 row) {
  for (gr_uint16 i = 0; i < m_numBands; ++i) {
    const gr_uint16 band = static_cast<gr_uint16>(m_firstBand + i);
    m_ownRows[i] = m_own->getSampleInWindow(0, row, band);
    m_otherRows[i] = m_other->getSampleInWindow(0, row, band);
  }
  switch (m_mode) {
    case GRI_MERGE_LESSER:
      return gri_markGreater(m_ownRows[0], m_otherRows[0], m_type, m_numCols, m_marks.data());
    case GRI_MERGE_GREATER:
      return gri_markGreater(m_otherRows[0], m_ownRows[0], m_type, m_numCols, m_marks.data());
    case GRI_MERGE_FUZZY:
    case GRI_MERGE_FUZZY_PER_BAND:
      return gri_markFuzzy(m_ownRows.data(), m_otherRows.data(), m_noDataAt.data(), m_numBands,
                           m_type, m_threshold, m_numCols, m_marks.data());
    default:
      break;
  }
  if (m_type == GRI_DATATYPE_INVALID) return markDifferentTypes();
  gri_markDifferent(m_otherRows.data(), m_noDataAt.data(), m_numBands, m_type, m_numCols,
                    m_marks.data());
}

/// GRI_MERGE_EXACT for bands of several data types.
void GRIMergeScan::markDifferentTypes() {
  std::fill(m_marks.begin(), m_marks.end(), gr_uint8{0});
  for (gr_uint16 i = 0; i < m_numBands; ++i) {
    gri_markDifferent(&m_otherRows[i], &m_noDataAt[i], 1, m_types[i], m_numCols,
                      m_bandMarks.data());
    for (size_t k = 0; k < m_marks.size(); ++k) {
      m_marks[k] = static_cast<gr_uint8>(m_marks[k] | m_bandMarks[k]);
    }
  }
}
