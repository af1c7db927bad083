/// @file
/// TG2HuffmanTableCache, the tables of the codes that were met last.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTable.h"

/// Every strip meets the bands of the strip above it again, so their tables are kept: as many as
/// take some 12 MiB. They are found by the code itself, so equal codes share a table wherever they
/// stand. Belongs to one decoder and one thread.
class TG2HuffmanTableCache {
 public:
  TG2HuffmanTableCache() = default;

  /// The table of a code, good until the next call. Throws as the table's constructor does.
  const TG2HuffmanTable& get(std::span<const gr_uint8, TG2HuffmanTable::LONGEST_CODE> bits,
                             std::span<const gr_uint8> huffval);
  void clear();

 private:
  static constexpr size_t NUM_SETS = 64;  // a code belongs to one of them, by its hash
  static constexpr size_t NUM_WAYS = 8;   // tables of a set, of which the least used one gives way

  struct Entry {
    Entry(gr_uint64 itsHash, std::span<const gr_uint8, TG2HuffmanTable::LONGEST_CODE> itsBits,
          std::span<const gr_uint8> itsHuffval);
    bool isOf(gr_uint64 otherHash,
              std::span<const gr_uint8, TG2HuffmanTable::LONGEST_CODE> otherBits,
              std::span<const gr_uint8> otherHuffval) const;

    gr_uint64 hash;
    TG2HuffmanTable table;
    std::array<gr_uint8, TG2HuffmanTable::LONGEST_CODE> bits{};
    std::array<gr_uint8, TG2HuffmanTable::MOST_SYMBOLS> huffval{};
    size_t numSymbols;
  };
  using Set = std::array<std::unique_ptr<Entry>, NUM_WAYS>;  // the one used last first

  std::array<Set, NUM_SETS> m_sets;
};
