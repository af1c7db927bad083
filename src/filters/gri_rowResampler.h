/// @file
/// GRIRowResampler, which computes one row of an image that is scaled.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"

/// Samples of one row at evenly spaced positions: from the nearest samples of one row of the
/// source, between those of two, or of four.
///
/// All operations give `count` samples. `x` is the position of the first one, in samples from the
/// begin of the rows, and `step` the distance from one to the next. Positions are added up in
/// single precision (in double precision where that is the arithmetic), and truncated to find their
/// sample; what's left of them is the fraction `f`. An index in front of a row or behind it means
/// its first or last sample. Rows have `width` samples, at least one, and need no alignment.
class GRIRowResampler {
 public:
  virtual ~GRIRowResampler() = default;

  /// The row resampler of a data type, which computes in float for samples of 8 and 16 bits and for
  /// FLOAT32, and in double for UINT32, SINT32 and FLOAT64.
  /// @return null for another type, or when memory runs out
  static std::unique_ptr<GRIRowResampler> create(GRIDataType dataType);

  /// The sample in which each position lies; it isn't rounded. Positions of 64-bit samples are
  /// added up in double precision, all others in single precision.
  virtual void resampleNearest(float yFraction, size_t count, void* dest, float x, float step,
                               gr_uint32 width, const void* row) const = 0;
  /// Along each row `s[i] + (s[i + 1] - s[i]) * f`, and the same between the two rows with
  /// `yFraction`; truncated toward zero.
  virtual void resampleLinear(float yFraction, size_t count, void* dest, float x, float step,
                              gr_uint32 width, const void* row0, const void* row1) const = 0;
  /// The cubic convolution with parameter -1, along each row from `i` - 1 to `i` + 2 and then
  /// across the four results with `yFraction`; held to the range of the type and truncated toward
  /// zero.
  virtual void resampleCubic(float yFraction, size_t count, void* dest, float x, float step,
                             gr_uint32 width, const void* row0, const void* row1, const void* row2,
                             const void* row3) const = 0;

 protected:
  GRIRowResampler() = default;
  GRIRowResampler(const GRIRowResampler&) = default;
  GRIRowResampler& operator=(const GRIRowResampler&) = default;
};
