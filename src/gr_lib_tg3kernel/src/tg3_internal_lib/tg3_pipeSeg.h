/// @file
/// PipeSeg, one level of the 5/3 synthesis as a source of rows.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_rowSource.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

/// A run of columns or rows, both ends included.
struct TG3Range {
  gr_uint32 first = 0;
  gr_uint32 last = 0;

  gr_uint32 count() const { return last - first + 1; }
};

/// Makes the rows of one level from the rows of the level below it and from its own bands, one row
/// at a time from top to bottom. It reads each subband row once and holds a handful of rows of the
/// window's width, whatever the size of the image.
///
/// The two halves of a row, low-pass and high-pass in x, stay apart until the last step: the
/// vertical step works on columns and doesn't mind, and the horizontal one interleaves them.
class PipeSeg {
 public:
  struct Geometry {
    gr_uint32 level = 1;   ///< k of the bands 4k-3 to 4k; 1 is the coarsest
    gr_uint32 width = 0;   ///< of this level's output, in columns
    gr_uint32 height = 0;  ///< of this level's output, in rows
    gr_uint32 components = 0;
    TG3Range columns;        ///< of the output that are wanted
    gr_uint32 firstRow = 0;  ///< of the output that is wanted
  };

  PipeSeg() = default;
  PipeSeg(const PipeSeg&) = delete;
  PipeSeg& operator=(const PipeSeg&) = delete;

  /// @param source  the bands' rows; the caller's, and it outlives this object
  /// @param below  the level below, initialized later with lowColumns() and firstLowRow(); null
  ///               for level 1, which takes band 0
  /// @return 0, or TG3_STATUS_NO_MEMORY
  [[nodiscard]] GR_STATUS initialize(const Geometry& geometry, TG3RowSource& source,
                                     PipeSeg* below);

  /// The columns of the level below that are read: the low-pass columns of the window.
  TG3Range lowColumns() const { return m_low; }
  /// The row of the level below with which reading starts.
  gr_uint32 firstLowRow() const { return m_geometry.firstRow / 2; }

  /// Makes the next output row.
  /// @param rows  receives one pointer per component to the first wanted column; valid until the
  ///              next call
  /// @return 0; the row source's status; TG3_STATUS_BAD_ARGUMENT past the last row
  [[nodiscard]] GR_STATUS next(const gr_int32** rows);

 private:
  static constexpr size_t LOW_HALF = 0;
  static constexpr size_t HIGH_HALF = 1;

  /// The work rows of one component, each a part of one allocation. A high half has one value more
  /// than a low half, at its left.
  struct WorkRows {
    GRArray<gr_int32> storage;
    gr_int32* lowSum = nullptr;  ///< the row below plus its correction band
    gr_int32* heldHigh[2] = {};  ///< H[r], by half
    gr_int32* heldEven[2] = {};  ///< E[r]
    gr_int32* odd[2] = {};       ///< O[r - 1]
    gr_int32* out = nullptr;     ///< the output row
  };
  /// A band's row, one pointer per component; null where it is zero.
  using BandRow = GRArray<const gr_int32*>;

  GR_STATUS prime();
  GR_STATUS step();
  void stepLastOdd();
  GR_STATUS readHighRows(gr_uint32 row);
  void emit(bool odd, const gr_int32** rows);
  void mirrorEdges(gr_int32* highHalf) const;
  const gr_int32* orZeros(const gr_int32* row) const { return row ? row : m_zeros.data(); }

  Geometry m_geometry;
  TG3RowSource* m_source = nullptr;
  PipeSeg* m_below = nullptr;

  TG3Range m_low;   ///< low-pass columns of the window
  TG3Range m_high;  ///< high-pass columns of it, if m_highCount isn't 0
  gr_uint32 m_highCount = 0;
  size_t m_highOffset = 0;   ///< where m_high.first lies in a high half
  gr_uint32 m_evenRows = 0;  ///< low-pass rows of the level
  gr_uint32 m_oddRows = 0;   ///< high-pass rows of the level

  gr_uint32 m_row = 0;  ///< the next low-pass row
  bool m_primed = false;
  bool m_started = false;  ///< E of some row is held
  bool m_oddPending = false;
  bool m_evenPending = false;

  GRArray<WorkRows> m_rows;   ///< one per component
  BandRow m_lowRow;           ///< the level below
  BandRow m_correction;       ///< band 4k-3
  BandRow m_highX;            ///< band 4k-2
  BandRow m_highY;            ///< band 4k-1
  BandRow m_highXY;           ///< band 4k
  GRArray<gr_int32> m_zeros;  ///< a row where a band has nothing
  GRArray<gr_int32> m_even;   ///< the even values of the horizontal step
};
