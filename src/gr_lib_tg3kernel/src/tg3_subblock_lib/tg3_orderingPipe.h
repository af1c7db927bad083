/// @file
/// The order of the subblocks in a file as a computation: a linear index for each (subband,
/// subblock row, subblock column), and back, without a table of all subblocks.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

/// Where a subblock stands in its image.
struct TG3SubblockPosition {
  gr_uint32 subband = 0;
  gr_uint32 row = 0;     ///< in subblocks
  gr_uint32 column = 0;  ///< in subblocks
  bool operator==(const TG3SubblockPosition&) const = default;
};

/// An order of all subblocks of an image.
class Ordering {
 public:
  virtual ~Ordering() = default;
  /// The place of a subblock of the image in the order, from 0.
  virtual gr_uint64 index(const TG3SubblockPosition& position) const = 0;
  /// The subblock at a place below the image's number of subblocks. Ascending places are cheap.
  virtual TG3SubblockPosition position(gr_uint64 index) = 0;

 protected:
  Ordering() = default;
  Ordering(const Ordering&) = default;
  Ordering& operator=(const Ordering&) = default;
};

/// The order in which a synthesis from top to bottom needs the subblocks, so that a decoder meets
/// its data in file order. First the complete subblock rows of all bands (those of
/// `subblock_size` sample rows), interleaved by the steps of the pipeline; then the tail, the
/// partial last row of each band that has one.
class OrderingPipe final : public Ordering {
 public:
  static constexpr gr_uint32 MAX_LEVELS = 31;

  OrderingPipe() = default;

  /// @return 0; 2009 for blocks of 2 samples or less, for more than MAX_LEVELS levels, for an empty
  ///         image, and when a level would split a width below 2
  [[nodiscard]] GR_STATUS initialize(gr_uint32 subblockSize, gr_uint32 levels, gr_uint32 height,
                                     gr_uint32 width);

  /// The number of subblocks of the image.
  gr_uint64 total() const { return m_total; }

  gr_uint64 index(const TG3SubblockPosition& position) const override;
  TG3SubblockPosition position(gr_uint64 index) override;

 private:
  static constexpr gr_uint32 MAX_BANDS = 4 * MAX_LEVELS + 1;
  struct Band {
    gr_uint64 rows = 0;       ///< sample rows
    gr_uint64 columns = 0;    ///< subblock columns
    gr_uint64 fullRows = 0;   ///< complete subblock rows
    gr_uint64 tailStart = 0;  ///< of the partial row, from the start of the tail
    bool hasTail = false;
  };
  /// The complete row of a band that starts at or before the index last asked for, and where the
  /// row after it starts (NONE when there is none).
  struct Cursor {
    gr_uint64 nextRow = 0;
    gr_uint64 nextStart = 0;
  };

  gr_uint64 rowStart(gr_uint32 band, gr_uint64 row) const;
  TG3SubblockPosition positionInTail(gr_uint64 offset) const;
  gr_uint64 firstRowAfter(gr_uint32 band, gr_uint64 from, gr_uint64 index) const;
  void moveCursors(gr_uint64 index);
  void setNext(gr_uint32 band, gr_uint64 row);

  gr_uint64 m_blockSize = 0;
  gr_uint32 m_levels = 0;
  gr_uint32 m_numBands = 0;
  gr_uint64 m_mainSize = 0;  ///< subblocks before the tail
  gr_uint64 m_total = 0;
  std::array<Band, MAX_BANDS> m_bands{};
  std::array<gr_uint64, MAX_LEVELS + 1> m_perRow{};  ///< subblocks of one row step of a level

  // The run of subblocks of one row that was found last, and where every band stands after it.
  std::array<Cursor, MAX_BANDS> m_cursors{};
  gr_uint32 m_runBand = 0;
  gr_uint64 m_runRow = 0;
  gr_uint64 m_runStart = 0;
  gr_uint64 m_runEnd = 0;  ///< equal to m_runStart: nothing found yet
};
