/// @file
/// NITFImageMask, the table in front of the pixels of a masked image.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"
#include "nitf/nitf_blockTable.h"

/// What MIL-STD-2500C, table A-3(A) tells: where the pixels begin, which blocks are in the file,
/// and the value of pixels that hold nothing.
class NITFImageMask {
 public:
  /// Reads the table at the begin of the data area of an image.
  /// @param stream  may be closed, and is left as it was
  /// @param dataOffset, dataLength  the data area, bytes
  /// @param numBlocks  as many as the tables have entries
  /// @param table  receives the table of blocks, if there is one
  /// @return 0; 51210 when the lengths don't fit; 51204, or the stream's last error, for a short
  ///         read; 8
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, gr_uint64 dataOffset, gr_uint64 dataLength,
                               gr_uint64 numBlocks, NITFBlockTable& table);

  /// Of the first pixel byte, from the begin of the data area.
  gr_uint32 getPixelOffset() const { return m_pixelOffset; }
  bool hasPadCode() const { return m_hasPadCode; }
  /// The last four bytes of the code as a number.
  gr_uint32 getPadCode() const { return m_padCode; }

 private:
  GR_STATUS readTables(GRIOStreamInf& stream, gr_uint64 dataLength, gr_uint64 numBlocks,
                       NITFBlockTable& table);
  GR_STATUS readPadCode(GRIOStreamInf& stream, gr_uint32 numBytes);

  gr_uint32 m_pixelOffset = 0;  // bytes
  bool m_hasPadCode = false;
  gr_uint32 m_padCode = 0;
};
