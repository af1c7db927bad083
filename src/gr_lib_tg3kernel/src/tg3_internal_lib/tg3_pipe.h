/// @file
/// Pipe, the levels of the 5/3 synthesis chained.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipeSeg.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_rowSource.h"

/// Makes the rows of a rectangle of an image at one scale, from top to bottom.
///
/// Every level is a PipeSeg that pulls rows from the one below, so that memory is a few rows of
/// the rectangle's width per level, and the cost is in proportion to the rectangle.
class Pipe {
 public:
  /// More levels than any image can have: 31 of its own, and enlargement while the size fits 31
  /// bits.
  static constexpr gr_uint32 MOST_LEVELS = 62;

  struct Geometry {
    gr_uint32 width = 0;   ///< of the whole image at this scale, in columns
    gr_uint32 height = 0;  ///< of the whole image at this scale, in rows
    gr_uint32 levels = 0;  ///< to synthesize
    gr_int32 scale = 0;    ///< 0 is the file's full size, 1 half of it, -1 twice
    gr_uint32 components = 0;
    TG3Range columns;  ///< the rectangle
    TG3Range rows;
  };

  Pipe() = default;
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  /// @param source  the bands' rows; the caller's, and it outlives this object
  /// @return 0; TG3_STATUS_BAD_ARGUMENT when the rectangle isn't inside the image, or there are
  ///         too many levels; TG3_STATUS_NO_MEMORY, also for an image below 3 x 3 without levels
  ///         to synthesize
  [[nodiscard]] GR_STATUS initialize(const Geometry& geometry, TG3RowSource& source);

  /// Makes the next row of the rectangle.
  /// @param rows  receives one pointer per component to the rectangle's first column; valid until
  ///              the next call
  /// @return 0; the row source's status; TG3_STATUS_BAD_ARGUMENT past the last row
  [[nodiscard]] GR_STATUS next(const gr_int32** rows);

 private:
  GR_STATUS lowPassRow(const gr_int32** rows);
  GR_STATUS addOverflow(const gr_int32** rows);

  Geometry m_geometry;
  TG3RowSource* m_source = nullptr;
  gr_uint32 m_row = 0;                  ///< the next output row
  GRArray<PipeSeg> m_segments;          ///< index 0 is level 1, the coarsest
  GRArray<const gr_int32*> m_overflow;  ///< the finer level's correction band
  GRArray<gr_int32> m_sums;             ///< one row per component
};
