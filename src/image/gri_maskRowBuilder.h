/// @file
/// GRIMaskRowBuilder, the growing row from which masks are made.
#pragma once

#include "image/gri_mask.h"

/// Collects the runs of one row. Its room grows in steps of 256 runs, and only ever grows.
///
/// Every operation that adds throws GRUtilException(8) when memory runs out; the builder is then
/// empty and can be used again.
class GRIMaskRowBuilder {
 public:
  GRIMaskRowBuilder() = default;

  /// Appends a run as it is. @param first, last  columns, `first` <= `last`
  void add(gr_int32 first, gr_int32 last);
  void addRun(const GRIMaskRun& run) { add(run.first, run.last); }
  /// Appends what `row` leaves uncovered between `first` and `last`.
  /// @param row  null counts as empty
  void addGaps(const GRIMaskRow* row, gr_int32 first, gr_int32 last);
  /// Appends all runs of `row`. @param row  null counts as empty
  void addRow(const GRIMaskRow* row);
  /// Appends the union of two rows; runs that only touch stay two runs.
  void unite(const GRIMaskRow& a, const GRIMaskRow& b);
  /// Appends the intersection of two rows.
  void intersect(const GRIMaskRow& a, const GRIMaskRow& b);

  /// Joins runs that overlap. They must be sorted by first column.
  void normalize();

  const GRIMaskRow& row() const { return m_row; }
  /// Hands the row out and starts again with an empty one.
  GRIMaskRow take();
  /// Forgets the runs and keeps the room, for the next row.
  void clear() { m_row.m_count = 0; }

 private:
  void ensureRoom(gr_uint64 count);

  GRIMaskRow m_row;
};
