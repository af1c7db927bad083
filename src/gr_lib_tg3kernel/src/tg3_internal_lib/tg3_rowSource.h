/// @file
/// TG3RowSource, where the synthesis gets rows of subband coefficients from.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// Hands out rows of wavelet coefficients, subband by subband. The synthesis asks for each row of
/// a subband once, from top to bottom, always with the same columns.
class TG3RowSource {
 public:
  virtual ~TG3RowSource() = default;

  /// Gives row `row` of a subband, columns `firstCol` to `lastCol`, both included.
  /// @param band  0 is the low-pass band; level k has 4k-3 (correction), 4k-2 (high in x), 4k-1
  ///              (high in y) and 4k (high in both). A number past the image's bands is no
  ///              failure: its rows are zero.
  /// @param components  one pointer per component; receives the coefficient at `firstCol`, or null
  ///                    where the whole row is zero. It stays valid until the next row of the
  ///                    same band is asked for.
  /// @return 0, or the status of what failed below
  virtual GR_STATUS getRow(gr_uint32 band, gr_uint32 row, gr_uint32 firstCol, gr_uint32 lastCol,
                           const gr_int32** components) = 0;

 protected:
  TG3RowSource() = default;
  TG3RowSource(const TG3RowSource&) = default;
  TG3RowSource& operator=(const TG3RowSource&) = default;
};
