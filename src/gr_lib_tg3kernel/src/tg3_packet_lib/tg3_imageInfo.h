/// @file
/// TG3ImageInfo, the geometry of an image: its levels, subbands, subblocks and planes.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

/// A rectangle of columns and rows, all four sides included.
struct TG3Rect {
  gr_int32 left = 0;
  gr_int32 top = 0;
  gr_int32 right = -1;
  gr_int32 bottom = -1;

  gr_int64 width() const { return gr_int64{right} - left + 1; }
  gr_int64 height() const { return gr_int64{bottom} - top + 1; }
  bool isEmpty() const { return right < left || bottom < top; }
  bool operator==(const TG3Rect&) const = default;
};

/// The numbers by which files name data types, and how wide their domain bits are.
enum TG3Datatype : gr_int32 {
  TG3_DATATYPE_INVALID = 0,
  TG3_DATATYPE_UINT8 = 5,
  TG3_DATATYPE_SINT8 = 6,
  TG3_DATATYPE_UINT16 = 7,
  TG3_DATATYPE_SINT16 = 8,
  TG3_DATATYPE_UINT32 = 9,
  TG3_DATATYPE_SINT32 = 10,
  TG3_DATATYPE_UINT64 = 11,
  TG3_DATATYPE_SINT64 = 12,
  TG3_DATATYPE_FLOAT32 = 13,
  TG3_DATATYPE_FLOAT64 = 14,
};

/// The data type that a header's domain bits stand for; TG3_DATATYPE_INVALID for other codes.
TG3Datatype tg3_datatypeOfDomainBits(gr_uint8 domainBits);

constexpr gr_int32 TG3_WAVELET_5_3_HV = 0;
constexpr gr_int32 TG3_BOUNDARY_REFLECTIVE = 0;
constexpr gr_int32 TG3_SUBBLOCK_TG3 = 0;

/// `n` columns or rows at a scale. Scale s > 0 halves s times, each time rounding up; s < 0 doubles
/// -s times. 0 stays 0. What doesn't fit is the largest number.
gr_uint64 tg3_sizeAtScale(gr_uint64 n, gr_int32 scale);
/// A column or row from 0 at a scale, rounded down; what doesn't fit is the largest number.
gr_int64 tg3_coordinateAtScale(gr_int64 n, gr_int32 scale);

/// What a header packet says of an image, and what follows from that. A value: it is copied freely.
///
/// Each component is split `numLevels` times into subbands. Subband 0 is the coarsest low band.
/// Level k, of which 1 is the coarsest, has four: 4k-3 (low in x and y: a correction that is added
/// to the low band), 4k-2 (high in x), 4k-1 (high in y) and 4k (high in both). A subband is a grid
/// of subblocks of `subblockSize` x `subblockSize` samples, smaller at the right and the bottom. A
/// subblock has `numComponents` x `numPlanes` slots for bit-planes.
class TG3ImageInfo {
 public:
  static constexpr gr_uint32 MAX_LEVELS = 31;
  static constexpr gr_uint32 MAX_SUBBANDS = 4 * MAX_LEVELS + 1;
  static constexpr gr_uint32 MAX_PLANES = 32;
  static constexpr gr_uint32 MAX_SIZE = 0x7FFFFFFF;  ///< columns or rows

  gr_uint32 image = 0;  ///< image number
  gr_uint8 numLevels = 0;
  gr_uint32 width = 0;   ///< of the whole image at full size, columns
  gr_uint32 height = 0;  ///< of the whole image at full size, rows
  gr_uint16 subblockSize = 0;
  gr_uint16 numComponents = 0;
  gr_uint8 numPlanes = 0;  ///< slots per component of a subblock; slot p weighs 2^(31-p)
  gr_uint8 domainBits = 0;
  TG3Datatype datatype = TG3_DATATYPE_INVALID;
  gr_int32 dynamicRangeMin = 0;  ///< smallest sample
  gr_int32 dynamicRangeMax = 0;  ///< largest sample
  gr_int32 imageColorSpace = 0;
  gr_int32 waveletColorSpace = 0;
  gr_int32 colorTransform = 0;
  gr_int32 wavelet = TG3_WAVELET_5_3_HV;
  gr_int32 lastHeaderByte = 0;  ///< 1 to 5; has no effect
  gr_int64 boundary = TG3_BOUNDARY_REFLECTIVE;
  gr_int32 subblockType = TG3_SUBBLOCK_TG3;
  TG3Rect virtualSupport;         ///< the visible part of the whole image, at full size
  gr_uint8 numLevelsRemoved = 0;  ///< finest levels that the file lacks
  bool hasVirtualImageProps = false;
  bool locked = false;
  gr_uint8 keyWidth = 0;  ///< bytes of the key in front of each plane: 0, 1, 2 or 4
  bool hasMse = false;    ///< whether two bytes of error measure stand in front of each plane

  /// Checks the sizes, and works out the subbands from them. The fields above that name sizes
  /// aren't changed after this.
  /// @return 0; 2005 for no or more than MAX_SIZE columns or rows, more than MAX_LEVELS levels, no
  ///         components, no or more than MAX_PLANES planes, a subblock size of 0, and a subband
  ///         with more than 65535 subblocks side by side or one below the other
  [[nodiscard]] GR_STATUS initializeSubbands();
  /// Checks the visible part and sets `hasVirtualImageProps`.
  /// @return 0; 2005 for a rectangle that is inverted or leaves the image, or more levels removed
  ///         than there are
  [[nodiscard]] GR_STATUS initializeVirtualSupport(const TG3Rect& support, gr_uint8 levelsRemoved);

  gr_uint32 getNumSubbands() const { return 4U * numLevels + 1; }
  gr_uint64 getTotalSubblocks() const { return m_totalSubblocks; }  ///< each once, of all subbands
  /// The number of planes that the file could hold: all subblocks times their slots.
  gr_uint64 getTotalSlots() const { return m_totalSubblocks * getSlotsPerSubblock(); }
  gr_uint32 getSlotsPerSubblock() const { return gr_uint32{numComponents} * numPlanes; }

  // Of a subband, which is below getNumSubbands(). An empty one has no subblocks.
  gr_uint32 getSubbandColumns(gr_uint32 subband) const { return m_subbands[subband].columns; }
  gr_uint32 getSubbandRows(gr_uint32 subband) const { return m_subbands[subband].rows; }
  gr_uint32 getSubblockColumns(gr_uint32 subband) const {
    return m_subbands[subband].subblockColumns;
  }
  gr_uint32 getSubblockRows(gr_uint32 subband) const { return m_subbands[subband].subblockRows; }
  gr_uint32 getNumSubblocks(gr_uint32 subband) const {
    return gr_uint32{m_subbands[subband].subblockRows} * m_subbands[subband].subblockColumns;
  }
  /// The level that makes use of a subband, 1 for the coarsest; also 1 for subband 0.
  static gr_uint32 getLevel(gr_uint32 subband) { return subband == 0 ? 1 : (subband + 3) / 4; }
  static bool isHighInX(gr_uint32 subband) { return subband != 0 && ((subband - 1) & 1) != 0; }
  static bool isHighInY(gr_uint32 subband) { return subband != 0 && ((subband - 1) & 2) != 0; }

  // Of a subblock, which is below getNumSubblocks(subband), by its row and column and back.
  gr_uint32 getSubblockIndex(gr_uint32 subband, gr_uint32 row, gr_uint32 column) const;
  gr_uint32 getSubblockRow(gr_uint32 subband, gr_uint32 subblock) const;
  gr_uint32 getSubblockColumn(gr_uint32 subband, gr_uint32 subblock) const;
  /// Where a subblock lies in its subband, in samples; width() and height() are its size.
  TG3Rect getSubblockRect(gr_uint32 subband, gr_uint32 subblock) const;

  /// The whole image at a scale that counts the removed levels: 0 is the file's full size, 1 half
  /// of it. Where a side passes 2^31 - 1, it is 2^31 - 1.
  TG3Rect getSupport(gr_int32 actualScale) const;
  /// The visible part at a scale that counts from the visible image's own full size, in the
  /// coordinates of getSupport(scale + numLevelsRemoved). Limited alike.
  TG3Rect getVirtualSupport(gr_int32 visibleScale) const;
  /// Columns of the visible image at its full size.
  gr_uint32 getVisibleWidth() const;
  /// Rows of the visible image at its full size.
  gr_uint32 getVisibleHeight() const;

  /// The bits that the dynamic range takes, with 0 as part of it: 8 for 0 to 255, and for
  /// -128 to 127.
  gr_uint32 getDynamicRangeBits() const;
  /// The levels that an image of `columns` x `rows` is best split into; at least 0.
  static gr_uint32 getMaxLevels(gr_uint32 columns, gr_uint32 rows);

  bool operator==(const TG3ImageInfo&) const = default;

 private:
  struct Subband {
    gr_uint32 columns = 0;
    gr_uint32 rows = 0;
    gr_uint16 subblockRows = 0;
    gr_uint16 subblockColumns = 0;
    bool operator==(const Subband&) const = default;
  };

  GR_STATUS setSubband(gr_uint32 subband, gr_uint32 columns, gr_uint32 rows);

  std::array<Subband, MAX_SUBBANDS> m_subbands{};
  gr_uint64 m_totalSubblocks = 0;
};
