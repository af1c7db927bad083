/// @file
/// TG2Band, the coded samples of one image band in one block of a subband.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// A Huffman table, a bin width and the records, which cover the block row by row from its upper
/// left corner. The last record of a row or column is cut by the block's edge.
class TG2Band {
 public:
  static constexpr size_t NUM_BITS = 16;  ///< the lengths of codes, 1 to 16

  virtual ~TG2Band() = default;
  TG2Band(const TG2Band&) = delete;
  TG2Band& operator=(const TG2Band&) = delete;

  virtual bool isEmpty() const = 0;
  /// How many codes there are of each length.
  virtual std::span<const gr_uint8, NUM_BITS> getBits() const = 0;
  /// The symbols in the order of their codes, as many as the sum of getBits().
  virtual std::span<const gr_uint8> getHuffval() const = 0;
  /// Width of a quantiser bin, finite and not below 0.
  virtual float getBinWidth() const = 0;
  /// The size of a record that no edge cuts, in samples, 1 or more.
  virtual void getRecordSize(gr_int32& width, gr_int32& height) const = 0;
  virtual gr_uint32 getNumRecords() const = 0;
  /// Bytes of record `i`, which is below getNumRecords(), with its marker.
  virtual gr_uint64 getRecordLength(gr_uint32 i) const = 0;

  /// Fetches record `i`, which is below getNumRecords().
  /// @param data  receives the bytes, from the record's marker on and with the two bytes behind the
  ///              record; of a record that is longer than its samples can need only as many as they
  ///              can. They stay until the next record of this subband is fetched.
  /// @return 0; 8101 when the stream ends early; 8103 when a seek fails; 8 for memory
  [[nodiscard]] virtual GR_STATUS getRecord(gr_uint32 i, std::span<const gr_uint8>& data) = 0;

 protected:
  TG2Band() = default;
};
