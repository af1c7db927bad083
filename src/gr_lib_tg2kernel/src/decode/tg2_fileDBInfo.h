/// @file
/// TG2FileDBInfo, the index of an image as it stands in a file.
#pragma once

#include <memory>

#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"
#include "gr_lib_tg2kernel/src/decode/tg2_headerIO.h"
#include "gr_lib_utils/include/gr_growingArray.h"
#include "gr_lib_utils/include/gr_ioStream.h"

/// The bytes of records of a subband, fetched ahead where records are asked for in the order of the
/// file.
class TG2RecordBuffer {
 public:
  /// @param stream  open whenever something is fetched; the caller's
  explicit TG2RecordBuffer(GRIOStreamInf& stream) : m_stream(stream) {}

  /// Fetches `length` bytes at `offset`.
  /// @param end   where the bytes end that may be asked for next
  /// @param data  receives them; they stay until the next call
  /// @return 0; 8101 when the stream ends early; 8103 when the seek fails; 8 for memory
  [[nodiscard]] GR_STATUS fetch(gr_uint64 offset, gr_uint64 length, gr_uint64 end,
                                std::span<const gr_uint8>& data);

 private:
  GR_STATUS read(gr_uint64 offset, gr_uint64 length, gr_uint64 wantedLength);

  GRIOStreamInf& m_stream;
  GRGrowingArray<gr_uint8> m_bytes;  // from m_begin on
  gr_uint64 m_begin = 0;
  gr_uint64 m_nextOffset = 0;   // where the record behind the last one begins
  gr_uint64 m_aheadLength = 0;  // bytes to be read at once
};

/// A band of a block in a file.
class FileBand final : public TG2Band {
 public:
  /// @param stream  open whenever a record is fetched; the caller's, as is the buffer for records
  FileBand(GRIOStreamInf& stream, TG2RecordBuffer& records)
      : m_stream(stream), m_records(records) {}

  /// Reads the header and looks through the offsets of the records.
  /// @param offset        where the header stands; the stream is open
  /// @param end           where the band ends
  /// @param streamLength  bytes of the stream
  /// @return 0; 8101, also for records that aren't in order or pass the end; 8103 when the seek
  ///         fails; else the status of TG2BandHeader::read
  [[nodiscard]] GR_STATUS initialize(gr_uint64 offset, gr_uint64 end, gr_uint64 streamLength,
                                     const TG2Rect& block, Encryption* encryption);

  bool isEmpty() const override { return false; }
  std::span<const gr_uint8, NUM_BITS> getBits() const override { return m_bandData.getBits(); }
  std::span<const gr_uint8> getHuffval() const override { return m_bandData.getHuffval(); }
  float getBinWidth() const override { return m_bandData.getBinWidth(); }
  void getRecordSize(gr_int32& width, gr_int32& height) const override;
  gr_uint32 getNumRecords() const override { return m_bandData.getNumRecords(); }
  gr_uint64 getRecordLength(gr_uint32 i) const override;
  GR_STATUS getRecord(gr_uint32 i, std::span<const gr_uint8>& data) override;

 private:
  bool hasGoodRecords(gr_uint64 streamLength) const;

  GRIOStreamInf& m_stream;
  TG2RecordBuffer& m_records;
  TG2BandHeader m_bandData;
  gr_uint64 m_end = 0;  // bytes from the start of the file
  gr_uint64 m_mostRecordBytes = 0;
};

/// A subband in a file.
class TG2FileSubbandInfo final : public TG2SubbandInfo {
 public:
  /// What all subbands of a file share.
  struct File {
    GRIOStreamInf& stream;  ///< open whenever something is read
    gr_uint64 length;       ///< bytes of the stream
    gr_uint32 numBands;
    Encryption* encryption;  ///< or null
  };
  /// Where the subband's blocks stand.
  struct Place {
    gr_uint64 tableOffset;  ///< of the block table
    gr_uint32 numBlocks;    ///< 1 or more; the stream holds as many entries
    gr_uint64 end;          ///< of the subband's data
  };

  TG2FileSubbandInfo(gr_uint32 subbandIndex, const TG2BlockTableHeader& header, const File& file)
      : TG2SubbandInfo(subbandIndex, header.noiseOriginX, header.noiseOriginY),
        m_file(file),
        m_records(file.stream) {}

  /// Reads the entries of the blocks.
  /// @param width, height  size of the subband
  /// @param cacheBlocks    whether all blocks are kept once they have been read; else only as many
  ///                       as a row of blocks usually has
  /// @return 0; 8101; 8103; 8106 for blocks that aren't in the subband or on no common grid; 8
  [[nodiscard]] GR_STATUS initialize(const Place& place, gr_uint32 width, gr_uint32 height,
                                     bool cacheBlocks);

  GR_STATUS getBlock(gr_uint32 index, TG2Block*& block, std::unique_ptr<TG2Block>& owned) override;

 private:
  GR_STATUS readBlock(gr_uint32 index, std::unique_ptr<TG2Block>& block, gr_uint64& bytes);
  GR_STATUS keep(gr_uint32 index, std::unique_ptr<TG2Block> block, gr_uint64 bytes);
  void forgetBlocks();

  static constexpr gr_uint64 MOST_KEPT_BYTES = 0x100000;

  File m_file;
  gr_uint64 m_tableOffset = 0;
  // Where each block's last band ends: at the first band of a later block, or with the subband.
  GRArray<gr_uint64> m_blockEnds;
  // Strip after strip asks for the same blocks, whose headers would be read each time.
  GRArray<std::unique_ptr<TG2Block>> m_cache;  // one for each block, null where it isn't kept
  GRGrowingArray<gr_uint32> m_kept;            // their indexes
  gr_uint64 m_keptBytes = 0;
  gr_uint64 m_mostKeptBytes = 0;
  TG2RecordBuffer m_records;
};

class TG2FileDBInfo final : public TG2DBInfo {
 public:
  /// @param stream          stays the caller's and outlives the index
  /// @param encryption      as in TG2DBInfo
  /// @param keepStreamOpen  whether the stream stays open once it has been opened
  /// @param cacheBlocks     whether blocks are kept once they have been read
  TG2FileDBInfo(GRIOStreamInf& stream, Encryption* encryption, bool addsNoise, bool keepStreamOpen,
                bool cacheBlocks)
      : TG2DBInfo(encryption, addsNoise),
        m_stream(&stream),
        m_keepStreamOpen(keepStreamOpen),
        m_cacheBlocks(cacheBlocks) {}
  ~TG2FileDBInfo() override;

  /// Reads the index.
  /// @return 0; 50601 for a number of bands other than 1, 3 or 4; 8101, 8103, 8104, 8105, 8106,
  ///         8116 or 8117 for a bad header or block table; 8 for memory; else the stream's status
  [[nodiscard]] GR_STATUS initialize();

  std::unique_ptr<TG2DBInfo> clone() override;
  GR_STATUS openStream() override;
  GR_STATUS closeStream() override;

  bool isClone() const { return m_ownedStream != nullptr; }

 private:
  GR_STATUS readIndex();
  GR_STATUS readSubband(gr_uint32 index, const TG2MainHeader& header);
  GR_STATUS setHeader(const TG2MainHeader& header);
  gr_uint64 findSubbandEnd(gr_uint32 index, const TG2MainHeader& header) const;

  std::unique_ptr<GRIOStreamInf> m_ownedStream;  // of a clone
  GRIOStreamInf* m_stream;
  bool m_keepStreamOpen;
  bool m_cacheBlocks;
  bool m_mustClose = false;        // whether it was us who opened the stream
  gr_uint64 m_length = 0;          // bytes of the stream
  gr_uint64 m_bytesOfEntries = 0;  // of all block tables together
};
