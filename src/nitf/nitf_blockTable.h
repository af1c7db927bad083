/// @file
/// NITFBlockTable, where the blocks of an image lie.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// Offsets of blocks, in bytes from the first one of the pixels. They follow from the size of the
/// blocks, or stand in the file, and then blocks may be absent.
class NITFBlockTable {
 public:
  static constexpr gr_uint64 ABSENT = ~gr_uint64{0};
  static constexpr gr_uint64 ENTRY_BYTES = 4;  // in the file

  /// Blocks one behind the other.
  void setUniform(gr_uint64 count, gr_uint64 blockBytes);
  /// Reads `count` entries at the position of an open stream. That many bytes must be there.
  /// @return 0; 51204, or the stream's last error, for a short read; 8
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, gr_uint64 count);
  /// Where the last block of a table that was read ends.
  void setEnd(gr_uint64 end) { m_end = end; }

  gr_uint64 size() const { return m_count; }  ///< blocks
  bool mayBeAbsent() const { return !m_offsets.empty(); }
  bool isPresent(gr_uint64 block) const { return getOffset(block) != ABSENT; }
  /// @return ABSENT for a block that isn't in the file, or is none of the table
  gr_uint64 getOffset(gr_uint64 block) const;
  /// The offset of the next block behind `block` that is in the file, or the end of the last one.
  gr_uint64 getNextOffset(gr_uint64 block) const;

 private:
  gr_uint64 m_count = 0;
  gr_uint64 m_blockBytes = 0;
  GRArray<gr_uint32> m_offsets;  // as read; empty where they follow from the size
  gr_uint64 m_end = 0;
};
