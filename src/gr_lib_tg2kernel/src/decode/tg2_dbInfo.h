/// @file
/// TG2DBInfo, the index of an image: its size and the blocks of its subbands.
#pragma once

#include <array>
#include <memory>
#include <mutex>

#include "gr_lib_tg2kernel/src/decode/tg2_band.h"
#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

class Encryption;
class TG2DBInfo;

/// A rectangle of a subband with the coded bands in it.
class TG2Block {
 public:
  static constexpr gr_uint32 MAX_BANDS = 4;

  TG2Block(gr_uint32 numBands, gr_uint32 index, const TG2Rect& rect)
      : m_numBands(numBands), m_index(index), m_rect(rect) {}

  gr_uint32 getNumBands() const { return m_numBands; }
  gr_uint32 getIndex() const { return m_index; }     ///< in its subband
  const TG2Rect& getRect() const { return m_rect; }  ///< in the subband's coordinates
  /// Null where the band isn't coded.
  TG2Band* getBand(gr_uint32 band) const { return m_bands[band].get(); }
  void setBand(gr_uint32 band, std::unique_ptr<TG2Band> coded) { m_bands[band] = std::move(coded); }

 private:
  gr_uint32 m_numBands;
  gr_uint32 m_index;
  TG2Rect m_rect;
  std::array<std::unique_ptr<TG2Band>, MAX_BANDS> m_bands;
};

/// The blocks of one subband, which fill cells of a grid of rows and columns. Cells may be empty.
class TG2SubbandInfo {
 public:
  virtual ~TG2SubbandInfo() = default;
  TG2SubbandInfo(const TG2SubbandInfo&) = delete;
  TG2SubbandInfo& operator=(const TG2SubbandInfo&) = delete;

  gr_uint32 getSubbandIndex() const { return m_subbandIndex; }
  // Where the subband's upper left sample lies in the table of dither.
  gr_uint8 getNoiseOriginX() const { return m_noiseOriginX; }
  gr_uint8 getNoiseOriginY() const { return m_noiseOriginY; }
  const TG2Rect& getSupport() const { return m_support; }  ///< holds all blocks

  gr_uint32 getNumBlocks() const { return static_cast<gr_uint32>(m_slotOfBlock.size()); }
  gr_uint32 getNumRows() const { return static_cast<gr_uint32>(m_rowCuts.size() - 1); }
  gr_uint32 getNumCols() const { return static_cast<gr_uint32>(m_colCuts.size() - 1); }

  /// The row of the grid that holds `y`; the first or the last one for a `y` outside. The same for
  /// columns.
  gr_uint32 findRow(gr_int32 y) const { return findInterval(m_rowCuts.span(), y); }
  gr_uint32 findCol(gr_int32 x) const { return findInterval(m_colCuts.span(), x); }

  /// Finds the block in a cell. @return whether there is one
  virtual bool getBlockIndex(gr_uint32 row, gr_uint32 col, gr_uint32& index) const;
  /// The cell of block `index`, which is below getNumBlocks().
  virtual void getBlockPosition(gr_uint32 index, gr_uint32& row, gr_uint32& col) const;
  /// The rectangle of that block.
  TG2Rect getBlockRect(gr_uint32 index) const;

  /// Fetches block `index`, which is below getNumBlocks().
  /// @param block  receives the block, which stays until the next one of this subband is fetched
  /// @param owned  receives its owner, or null for a block that is the subband's
  /// @return 0; 8101, 8103 or 8106 for a file that is damaged there; 8022 for a bad Huffman table
  ///         or bin width; 8 for memory; on failure both are null
  [[nodiscard]] virtual GR_STATUS getBlock(gr_uint32 index, TG2Block*& block,
                                           std::unique_ptr<TG2Block>& owned) = 0;

 protected:
  TG2SubbandInfo(gr_uint32 subbandIndex, gr_uint8 noiseOriginX, gr_uint8 noiseOriginY)
      : m_subbandIndex(subbandIndex), m_noiseOriginX(noiseOriginX), m_noiseOriginY(noiseOriginY) {}

  /// Makes the grid of the blocks' rectangles, of which there is at least one.
  /// @param size  of the subband
  /// @return 0; 8106 for blocks beyond the subband or off a common grid; 8 for memory
  [[nodiscard]] GR_STATUS makeGrid(std::span<const TG2Rect> rects, gr_uint32 width,
                                   gr_uint32 height);

 private:
  friend class TG2BlockIterator;

  // A block's cell. Only the cells with a block are kept: a file can place its blocks such that
  // rows times columns is the square of their number.
  struct Cell {
    gr_uint32 row;
    gr_uint32 col;
    gr_uint32 index;
  };

  GR_STATUS sortCells();
  static gr_uint32 findInterval(std::span<const gr_int32> cuts, gr_int32 position);
  /// The slot of the first cell at or behind a column in a row, or of the first of the next row.
  gr_uint32 findSlot(gr_uint32 row, gr_uint32 col) const;

  gr_uint32 m_subbandIndex;
  gr_uint8 m_noiseOriginX;
  gr_uint8 m_noiseOriginY;
  TG2Rect m_support;
  GRArray<gr_int32> m_rowCuts;       // ascending; row r spans m_rowCuts[r] to m_rowCuts[r + 1] - 1
  GRArray<gr_int32> m_colCuts;       // the same for columns
  GRArray<Cell> m_cells;             // by row, then by column
  GRArray<gr_uint32> m_firstOfRow;   // slot in m_cells; getNumRows() + 1 of them
  GRArray<gr_uint32> m_slotOfBlock;  // by block index
};

/// The index of an image, filled once and only read afterwards.
class TG2DBInfo {
 public:
  /// The version bytes of the file.
  struct Version {
    gr_uint8 major = 1;
    gr_uint8 minor = 0;
    gr_uint8 tweak = 1;
  };

  virtual ~TG2DBInfo();
  TG2DBInfo(const TG2DBInfo&) = delete;
  TG2DBInfo& operator=(const TG2DBInfo&) = delete;

  // A shared index is used by several readers: around each scene they hold its mutex.
  virtual GR_STATUS lockIfShared();
  virtual GR_STATUS unlockIfShared();
  virtual GR_STATUS lock();
  virtual GR_STATUS unlock();
  /// A second index on a stream of its own, not shared; null on failure.
  virtual std::unique_ptr<TG2DBInfo> clone() = 0;
  /// Opens the stream where it is closed, and closes it unless it is to stay open.
  virtual GR_STATUS openStream() = 0;
  virtual GR_STATUS closeStream() = 0;

  gr_uint32 getWidth() const { return m_width; }    ///< at full resolution, of the whole image
  gr_uint32 getHeight() const { return m_height; }  ///< the same
  gr_uint32 getNumLevels() const { return m_numLevels; }
  gr_uint32 getNumBands() const { return m_numBands; }
  const Version& getVersion() const { return m_version; }
  gr_uint32 getNumSubbands() const { return 3 * m_numLevels + 1; }
  /// Null for a subband without data.
  /// @param i  below getNumSubbands()
  TG2SubbandInfo* getSubband(gr_uint32 i) const { return m_subbands[i].get(); }

  /// Whether the image is a crop.
  bool hasSupport() const { return m_hasSupport; }
  /// The image's window in the whole image at level getSupportLevel().
  const TG2Rect& getSupportRect() const { return m_supportRect; }
  gr_int32 getSupportLevel() const { return m_supportLevel; }

  /// What deciphers the Huffman tables, or null.
  Encryption* getEncryption() const { return m_encryption; }
  bool addsNoise() const { return m_addsNoise; }  ///< whether decoding adds dither
  bool isShared() const { return m_isShared; }
  void setShared(bool isShared) { m_isShared = isShared; }

  /// The image's window at a level, in the coordinates of the whole image at that level.
  /// @param level  halvings below the image's full size; negative for a magnification above 1
  /// @return 0; 8116 for a level that no image has; 8117 when a corner passes 31 bits
  [[nodiscard]] GR_STATUS getLevelSupport(gr_int32 level, TG2Rect& rect) const;
  /// Maps a scene of the image to the whole image.
  /// @param sceneRect   in the image's coordinates at `level`
  /// @param rect        receives it in the coordinates of the whole image at that level
  /// @param totalLevel  receives the level counted from the whole image's full size
  /// @return 0; 8117 when the scene isn't all in the image; 8116
  [[nodiscard]] GR_STATUS getSupport(const TG2Rect& sceneRect, gr_int32 level, TG2Rect& rect,
                                     gr_int32& totalLevel) const;

  /// The size of a subband in the whole image; 0 by 0 for an index past getNumSubbands().
  void getSubbandSize(gr_uint32 i, gr_uint32& width, gr_uint32& height) const;

 protected:
  /// @param encryption  the caller's, who keeps it as long as the index; or null
  TG2DBInfo(Encryption* encryption, bool addsNoise)
      : m_encryption(encryption), m_addsNoise(addsNoise) {}

  gr_uint32 m_width = 0;
  gr_uint32 m_height = 0;
  gr_uint32 m_numLevels = 0;
  gr_uint32 m_numBands = 0;
  bool m_hasSupport = false;
  TG2Rect m_supportRect;
  gr_int32 m_supportLevel = 0;
  Encryption* m_encryption;
  bool m_addsNoise;
  bool m_isShared = false;
  Version m_version;
  GRArray<std::unique_ptr<TG2SubbandInfo>> m_subbands;

 private:
  std::mutex m_mutex;
};

/// Walks the blocks of a subband that meet a rectangle, row by row of the grid.
///
///     TG2BlockIterator blocks(subband);
///     GR_RETURN_IF_FAILED(blocks.start(window));
///     while (TG2Block* block = blocks.getBlock()) {
///       ...
///       GR_RETURN_IF_FAILED(blocks.next());
///     }
class TG2BlockIterator {
 public:
  /// @param subband  stays the caller's and outlives the iterator
  explicit TG2BlockIterator(TG2SubbandInfo& subband) : m_subband(subband) {}

  /// Goes to the first block that meets `rect`, which isn't empty.
  /// @return 0, also when there is none; else the status of TG2SubbandInfo::getBlock
  [[nodiscard]] GR_STATUS start(const TG2Rect& rect);
  /// The current block, which lives until next(); null behind the last one.
  TG2Block* getBlock() const { return m_block; }
  /// The rectangle of the current block.
  const TG2Rect& getRect() const { return m_block->getRect(); }
  /// Goes to the next block. @return as start()
  [[nodiscard]] GR_STATUS next();

 private:
  GR_STATUS goTo(gr_uint32 row, gr_uint32 slot);

  TG2SubbandInfo& m_subband;
  gr_uint32 m_row = 0;  // of the current block
  gr_uint32 m_lastRow = 0;
  gr_uint32 m_firstCol = 0;
  gr_uint32 m_lastCol = 0;
  gr_uint32 m_slot = 0;  // of the current block
  TG2Block* m_block = nullptr;
  std::unique_ptr<TG2Block> m_owned;
};
