/// @file
/// The four header records of a file of generation 2.
#pragma once

#include <array>
#include <span>

#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

class Encryption;

// All numbers are big-endian, all offsets count from the start of the file, and an offset of 0 says
// that the thing isn't there. Rectangles are x0, y0, x1, y1, with inclusive corners.
//
// A file:
//
//     4  "tsra"
//     3  version
//     4  number of bands B
//     4  number of levels L
//     4  width, and 4 height, of the whole image
//     4  offset of the block table of each subband, 3L + 1 of them
//     .  FF D0 and the offset of the metadata (4), if there is metadata
//     .  FF D2, rectangle (16) and level (4), if the image is a crop
//     2  FF D3
//
// Block table of a subband: FF AC (2), origin in the table of dither (1 and 1), number of blocks
// (4), and for each block the offsets of its bands (4B) and its rectangle (16).
//
// Band of a block: FF AA (2), number of Huffman codes of each length (16), their symbols (N), bin
// width (4), width and height of a record (4 and 4), and the offset of each record (4R).
//
// Record: FF A3 (2) and the coded data. Metadata: FF D1 (2) and a classical block. A file without
// metadata has two bytes behind the last record.

/// What stands at the start of a file.
struct TG2MainHeader {
  static constexpr gr_uint32 MAX_LEVELS = 31;
  static constexpr gr_uint32 MAX_SUBBANDS = 3 * MAX_LEVELS + 1;

  std::array<gr_uint8, 3> version = {1, 0, 1};
  gr_uint32 numBands = 0;
  gr_uint32 numLevels = 0;
  gr_uint32 width = 0;   ///< 1 to 2^31 - 1
  gr_uint32 height = 0;  ///< the same
  gr_uint32 numSubbands = 0;
  gr_uint32 metadataOffset = 0;
  bool hasSupportWindow = false;
  TG2Rect supportRect;  ///< the whole image where the file says nothing
  gr_int32 supportLevel = 0;
  gr_int64 endPosition = 0;  ///< behind FF D3; 0 where the header ends without

  /// The offset of a block table. @param subband  below numSubbands
  gr_uint32 getSubbandOffset(gr_uint32 subband) const;

  /// @param stream  open, at its start; the caller's
  /// @return 0; 8101 when the header ends early; 8104 for another magic, a number of levels above
  ///         31, or a width or height out of bounds; 8105 for a version above 1.1; 8116 or 8117 for
  ///         the level or the window of a crop that isn't in the image
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream);

 private:
  GR_STATUS readFields(GRIOStreamInf& stream);
  GR_STATUS readMarkers(GRIOStreamInf& stream);
  GR_STATUS checkSupport() const;

  std::array<gr_uint32, MAX_SUBBANDS> m_subbandOffsets = {};
};

/// What stands in front of the blocks of a subband.
struct TG2BlockTableHeader {
  static constexpr gr_uint32 SIZE = 8;  // bytes

  gr_uint8 noiseOriginX = 0;
  gr_uint8 noiseOriginY = 0;
  gr_uint32 numBlocks = 0;

  /// @param stream  open, at the table; the caller's
  /// @return 0; 8101 when it ends early; 8106 for another marker
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream);
};

/// A block of a subband.
struct TG2BlockEntry {
  static constexpr gr_uint32 MAX_BANDS = 4;

  TG2Rect rect;

  /// Bytes of an entry.
  static constexpr gr_uint32 getSize(gr_uint32 numBands) { return 4 * numBands + 16; }
  /// Where entry `n` of a table at `tableOffset` stands.
  static constexpr gr_uint64 getPosition(gr_uint64 tableOffset, gr_uint64 n, gr_uint32 numBands) {
    return tableOffset + TG2BlockTableHeader::SIZE + n * getSize(numBands);
  }

  /// The offset of a band; 0 where it isn't coded. @param band  below the number of bands
  gr_uint32 getDataOffset(gr_uint32 band) const;
  /// The first offset at or behind `band` that isn't 0; 0 where there is none.
  gr_uint32 getFirstOffset(gr_uint32 band) const;

  /// @param stream    open, at the entry; the caller's
  /// @param numBands  at most MAX_BANDS
  /// @return 0; 8101 when it ends early
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, gr_uint32 numBands);

 private:
  gr_uint32 m_numBands = 0;
  std::array<gr_uint32, MAX_BANDS> m_dataOffsets = {};
};

/// What stands in front of the records of a band in a block.
class TG2BandHeader {
 public:
  static constexpr size_t NUM_BITS = 16;
  static constexpr size_t MAX_CODES = 256;

  std::span<const gr_uint8, NUM_BITS> getBits() const { return m_bits; }
  std::span<const gr_uint8> getHuffval() const { return {m_huffval.data(), m_numCodes}; }
  float getBinWidth() const { return m_binWidth; }
  gr_int32 getRecordWidth() const { return m_recordWidth; }
  gr_int32 getRecordHeight() const { return m_recordHeight; }
  gr_uint32 getNumRecords() const { return static_cast<gr_uint32>(m_recordOffsets.size()); }
  /// @param record  below getNumRecords()
  gr_uint32 getRecordOffset(gr_uint32 record) const;

  /// @param stream      open, at the header; the caller's
  /// @param bytesLeft   of the stream from here on
  /// @param block       the rectangle of the block, not empty
  /// @param encryption  what deciphers the Huffman table, or null; without a key it does nothing
  /// @return 0; 8101 when it ends early; 8106 for another marker, or a record without samples; 8022
  ///         for more than 256 codes, or a bin width that is negative or no number; 8 for memory
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, gr_uint64 bytesLeft, const TG2Rect& block,
                               Encryption* encryption);

 private:
  std::array<gr_uint8, NUM_BITS> m_bits = {};
  std::array<gr_uint8, MAX_CODES> m_huffval = {};
  size_t m_numCodes = 0;
  float m_binWidth = 0.0F;
  gr_int32 m_recordWidth = 0;
  gr_int32 m_recordHeight = 0;
  GRArray<gr_uint32> m_recordOffsets;
};
