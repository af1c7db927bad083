/// @file
/// GRIMask, a set of pixels held as runs of columns, row by row.
#pragma once

#include <utility>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// The columns from `first` to `last`, both in the run.
struct GRIMaskRun {
  gr_int32 first;
  gr_int32 last;

  bool operator==(const GRIMaskRun&) const = default;
};

/// The runs of one row: ascending, and none overlaps another. Runs may touch.
class GRIMaskRow {
 public:
  GRIMaskRow() = default;  // an empty row, without memory
  GRIMaskRow(GRIMaskRow&& other) noexcept
      : m_runs(std::move(other.m_runs)), m_count(std::exchange(other.m_count, 0)) {}
  GRIMaskRow& operator=(GRIMaskRow&& other) noexcept {
    m_runs = std::move(other.m_runs);
    m_count = std::exchange(other.m_count, 0);
    return *this;
  }

  /// Makes room for `length` runs, of which none is there yet.
  /// @param length  above 0
  /// @return 0; 8 for memory, and then the row is as it was
  [[nodiscard]] GR_STATUS reserve(gr_uint32 length);
  /// Becomes a copy. @return 0; 8 for memory, and then the row is as it was
  [[nodiscard]] GR_STATUS copyFrom(const GRIMaskRow& other);

  gr_uint32 count() const { return m_count; }
  bool empty() const { return m_count == 0; }
  gr_uint32 capacity() const { return static_cast<gr_uint32>(m_runs.size()); }
  const GRIMaskRun& operator[](gr_uint32 index) const { return m_runs[index]; }
  const GRIMaskRun* begin() const { return m_runs.data(); }
  const GRIMaskRun* end() const { return m_runs.data() + m_count; }

 private:
  friend class GRIMaskRowBuilder;

  GRArray<GRIMaskRun> m_runs;  // as many as the row has room for
  gr_uint32 m_count = 0;       // of them in use
};

/// The rectangle around a set of pixels, all four inside of it. Around nothing it's inverted: left
/// and top are the largest number, right and bottom the smallest.
struct GRIMaskBounds {
  gr_int32 left = 0x7FFFFFFF;
  gr_int32 top = 0x7FFFFFFF;
  gr_int32 right = -0x7FFFFFFF - 1;
  gr_int32 bottom = -0x7FFFFFFF - 1;

  bool operator==(const GRIMaskBounds&) const = default;
};

/// The connected part that each run of a mask belongs to; made by GRIMask::getRunLabels.
class GRIMaskRunLabels {
 public:
  /// The label of run `run` of row `row`; both must be there.
  gr_uint32 get(gr_uint32 row, gr_uint32 run) const { return m_labels[m_rowStart[row] + run]; }

 private:
  friend class GRIMask;

  GRArray<gr_uint32> m_labels;  // of all runs of all rows, one after the other
  GRArray<size_t> m_rowStart;   // where each row begins in m_labels
};

/// A set of pixels in a fixed number of rows. No operation touches single pixels: what it costs
/// depends on the runs.
class GRIMask {
 public:
  GRIMask() = default;

  /// Empties the mask and gives it `numRows` empty rows.
  /// @return 0; 8 for memory, and then the mask has no rows
  [[nodiscard]] GR_STATUS setNumRows(gr_uint32 numRows);
  gr_uint32 getNumRows() const { return static_cast<gr_uint32>(m_rows.size()); }

  /// Becomes a copy. @return 0; 8 for memory, and then the mask is as it was
  [[nodiscard]] GR_STATUS copyFrom(const GRIMask& other);

  /// The runs of a row, or null for a row without any.
  /// @param row  below getNumRows()
  const GRIMaskRow* getRow(gr_uint32 row) const;
  /// Takes `runs` over, in place of what the row had.
  /// @param row  below getNumRows()
  void setRow(gr_uint32 row, GRIMaskRow&& runs);

  /// Becomes what is in `a` or in `b`, with the rows of the longer one. Runs that only touch stay
  /// two runs. `a` or `b` may be this mask.
  /// @return 0; 8 for memory, and then the mask is as it was
  [[nodiscard]] GR_STATUS unite(const GRIMask& a, const GRIMask& b);
  /// Becomes what is in `a` and in `b`, with as many rows as the longer one has. `a` or `b` may be
  /// this mask.
  /// @return 0; 8 for memory, and then the mask is as it was
  [[nodiscard]] GR_STATUS intersect(const GRIMask& a, const GRIMask& b);

  /// The number of pixels.
  double getArea() const;
  GRIMaskBounds getBounds() const;
  bool contains(gr_int32 col, gr_int32 row) const;

  /// Numbers the connected parts from 0. Two runs of neighbouring rows belong together when they
  /// share a column; to meet at a corner isn't enough, and runs of one row don't meet directly.
  /// @return 0; 8 for memory
  [[nodiscard]] GR_STATUS getRunLabels(GRIMaskRunLabels& labels, gr_uint32& numLabels) const;
  /// Drops each connected part of at most `threshold` pixels.
  /// @return 0; 8 for memory, and then the mask is as it was
  [[nodiscard]] GR_STATUS removeSmallParts(gr_uint32 threshold);

 private:
  GRArray<GRIMaskRow> m_rows;
};
