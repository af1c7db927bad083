/// @file
/// GRIMergeScan, which finds the pixels that one scene buffer takes from another.
#pragma once

#include "gr_lib_utils/include/gr_memory.h"
#include "image/gri_dataTypes.h"
#include "image/gri_markKernels.h"
#include "image/gri_sceneBuffer.h"

class GRIPixel;

/// Compares the windows of two scene buffers row by row, for some of their bands together.
class GRIMergeScan {
 public:
  /// @param mode       GRI_MERGE_EXACT, which serves all data types, or another mode, with bands of
  ///                   UINT8, UINT16, SINT16 or FLOAT32
  /// @param threshold  of the fuzzy modes, for all `numBands` bands together
  /// @param own, other  of the same bands and data types; they must outlive the scan
  /// @param noData     a pixel of these bands and data types; null only for the modes that compare
  ///                   `own` with `other`
  /// @param firstBand, numBands  the bands to look at; the modes that compare look at one
  /// @return 0; 8 for memory
  [[nodiscard]] GR_STATUS initialize(GRIMergeMode mode, double threshold, const GRISceneBuffer& own,
                                     const GRISceneBuffer& other, const GRIPixel* noData,
                                     gr_uint16 firstBand, gr_uint16 numBands);

  /// Columns and rows that both windows have.
  gr_uint32 getNumCols() const { return m_numCols; }
  gr_uint32 getNumRows() const { return m_numRows; }

  /// Calls `body(col, numCols)` for each run of pixels of a row that are taken.
  template <typename Body>
  void forEachRun(gr_uint32 row, Body&& body) {
    markRow(row);
    gri_forEachMarkedRun(m_marks.data(), m_numCols, [&](size_t col, size_t numCols) {
      body(static_cast<gr_uint32>(col), static_cast<gr_uint32>(numCols));
    });
  }

 private:
  void markRow(gr_uint32 row);
  void markDifferentTypes();

  GRIMergeMode m_mode = GRI_MERGE_EXACT;
  double m_threshold = 0.0;
  const GRISceneBuffer* m_own = nullptr;
  const GRISceneBuffer* m_other = nullptr;
  gr_uint32 m_numCols = 0;
  gr_uint32 m_numRows = 0;
  gr_uint16 m_firstBand = 0;
  gr_uint16 m_numBands = 0;
  GRIDataType m_type = GRI_DATATYPE_INVALID;  // INVALID where the bands have several
  GRArray<const void*> m_ownRows;             // of each band, the row at hand
  GRArray<const void*> m_otherRows;
  GRArray<GRIDataType> m_types;     // of each band
  GRArray<gr_uint64> m_noData;      // of each band, its bytes in front
  GRArray<const void*> m_noDataAt;  // where these are
  GRArray<gr_uint8> m_marks;        // see gri_markKernels.h
  GRArray<gr_uint8> m_bandMarks;    // those of a single band, where the bands have several types
};
