/// @file
/// NITFBlockRows, rows of blocks of a picture as they lie in the file.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "nitf/gri_rawSamples.h"
#include "nitf/nitf_imageRect.h"
#include "nitf/nitf_imageSegment.h"

/// Holds some rows of neighbouring blocks, all of one row of blocks, and gives their pixels out
/// from there as often as they are asked for. What follows one another in the file is read at once:
/// a row of whole blocks is a single read.
class NITFBlockRows {
 public:
  /// @param segment  an uncompressed image; must outlive this
  /// @return 0 or 8
  [[nodiscard]] GR_STATUS initialize(const NITFImageSegment& segment);

  /// How a block lies in the file, without its offset; in the sequential layout it has one band.
  const GRIRawSamples& getSamples() const { return m_samples; }
  /// Where a block lies in the file.
  /// @param offset  NITFBlockTable::ABSENT for a block that isn't there
  /// @return 0; 51204 for a block that isn't whole in the file
  [[nodiscard]] GR_STATUS locate(gr_uint64 block, gr_uint64& offset) const;

  /// Bytes that one row of pixels takes, with its neighbours up to the borders of the blocks.
  gr_uint64 getBytesPerRow(gr_uint32 left, gr_uint32 right) const;
  /// Reads the rows of `rect`, which all belong to one row of blocks, from all blocks that it
  /// touches. Takes getBytesPerRow for each row.
  /// @param stream  open, over the pixels
  /// @return 0; 51204, or the stream's last error, for what isn't whole; 51207 for memory; on
  ///         failure nothing is held
  [[nodiscard]] GR_STATUS load(GRIOStreamInf& stream, const NITFImageRect& rect);
  /// The pixels that are held; where blocks are absent, nobody's.
  const NITFImageRect& getHeld() const { return m_held; }
  /// Writes the pixels of `rect`, which are held. Absent blocks leave the buffer as it is.
  /// @param col, row  where the upper left goes, in the buffer's window
  void copyTo(GRISceneBuffer& buffer, gr_uint32 col, gr_uint32 row, const NITFImageRect& rect);

 private:
  // Bytes that follow one another, in the file and here.
  struct Run {
    gr_uint64 offset = 0;  // in the file
    gr_uint64 place = 0;   // in m_bytes
    gr_uint64 length = 0;
  };

  gr_uint32 firstBlock(gr_uint32 left) const { return left / m_blockCols; }
  gr_uint32 endBlock(gr_uint32 right) const { return (right + m_blockCols - 1) / m_blockCols; }
  gr_uint64 blockNumber(gr_uint32 blockCol, gr_uint16 round) const;
  gr_uint64 placeOf(gr_uint32 blockCol, gr_uint16 round) const;
  GR_STATUS readAll(GRIOStreamInf& stream);
  GR_STATUS readBlock(GRIOStreamInf& stream, gr_uint32 blockCol, gr_uint16 round, Run& pending);
  GR_STATUS append(GRIOStreamInf& stream, const Run& run, Run& pending);

  const NITFImageSegment* m_segment = nullptr;
  GRIRawSamples m_samples;
  gr_uint32 m_blockCols = 0;  // pixels
  gr_uint32 m_blockRows = 0;
  gr_uint16 m_numRounds = 0;  // how often a place in the picture has a block: once, or per band
  bool m_isByBand = false;    // whether a block has its bands one behind the other
  NITFImageRect m_held;       // sideways whole blocks, cut to the picture
  GRArray<gr_uint8> m_bytes;  // room for what is held
  GRArray<void*> m_planes;    // for gri_copyRawSamples
};
