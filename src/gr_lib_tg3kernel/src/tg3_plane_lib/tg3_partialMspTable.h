/// @file
/// TG3PartialMSPTable, the index with an entry for each row of subblocks.
#pragma once

#include <array>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_mspTable.h"
#include "gr_lib_utils/include/gr_growingArray.h"

/// For each row of subblocks the first one that has planes, and which others have some: a bit or
/// two for each. The place of the others is found by walking over the records of the row, from the
/// last one found in it (the reader keeps that). Only for files in which the subblocks of a row
/// follow one another.
class TG3PartialMSPTable final : public TG3MSPTable {
 public:
  /// @param info  the image; the caller's, and it outlives the table
  explicit TG3PartialMSPTable(const TG3ImageInfo& info) : m_info(info) {}

  /// Subblocks of a subband are added in ascending order.
  [[nodiscard]] GR_STATUS add(const TG3PlaneLocation& location) override;
  void finish() override {}
  [[nodiscard]] GR_STATUS lookup(gr_uint32 subband, gr_uint32 subblock, TG3FilePlaneReader& reader,
                                 bool& found, TG3PlaneLocation& location) const override;
  bool hasAny(gr_uint32 subband, gr_uint32 first, gr_uint32 last) const override;

 private:
  /// The first subblock of a row that has planes.
  struct Row {
    gr_uint64 dataOffset;
    gr_uint64 lengthOffset;
    gr_uint32 subblock;
    gr_uint16 component;
    gr_uint8 plane;
  };
  /// The bits of 32 subblocks, of which some have planes. Cells without any aren't kept: a row of
  /// 65535 subblocks with one plane would take 8 KiB for a few bytes in the file.
  struct Cell {
    gr_uint32 key;
    gr_uint32 bits;
  };
  struct Subband {
    GRGrowingArray<Row> rows;
    GRGrowingArray<Cell> cells;
  };
  static constexpr gr_uint32 CELL_BITS = 32;

  static gr_uint32 keyOf(gr_uint32 subblock) { return subblock / CELL_BITS; }
  bool hasBit(gr_uint32 subband, gr_uint32 subblock) const;
  const Row* rowOf(gr_uint32 subband, gr_uint32 subblock) const;

  const TG3ImageInfo& m_info;
  std::array<Subband, TG3ImageInfo::MAX_SUBBANDS> m_subbands;
};
