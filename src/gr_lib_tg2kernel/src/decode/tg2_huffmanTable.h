/// @file
/// TG2HuffmanTable, the Huffman code of a coded band in the form in which records are decoded.
#pragma once

#include <array>
#include <span>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

// The alphabet. Symbols up to the longest short run are runs of as many zeros; those from the first
// short literal on are one coefficient each.
constexpr gr_uint32 TG2_LONGEST_SHORT_RUN = 100;
constexpr gr_uint32 TG2_SYMBOL_POSITIVE_8 = 101;    ///< a coefficient, from 8 extra bits
constexpr gr_uint32 TG2_SYMBOL_NEGATIVE_8 = 102;    ///< the same, negated
constexpr gr_uint32 TG2_SYMBOL_SIGNED_16 = 103;     ///< a coefficient, from 16 extra bits with sign
constexpr gr_uint32 TG2_SYMBOL_NEGATED_16 = 104;    ///< the same, negated: -32767 to 32768
constexpr gr_uint32 TG2_SYMBOL_RUN_8 = 105;         ///< a run of zeros, from 8 extra bits
constexpr gr_uint32 TG2_SYMBOL_RUN_16 = 106;        ///< a run of zeros, from 16 extra bits
constexpr gr_uint32 TG2_FIRST_SHORT_LITERAL = 107;  ///< a coefficient of -73; 255 is one of 75
constexpr gr_int32 TG2_LITERAL_ZERO = 180;          ///< the symbol of a coefficient of 0

/// How many extra bits follow the code of a symbol.
constexpr gr_uint32 tg2_extraBits(gr_uint32 symbol) {
  if (symbol < TG2_SYMBOL_POSITIVE_8 || symbol > TG2_SYMBOL_RUN_16) return 0;
  const bool narrow = symbol <= TG2_SYMBOL_NEGATIVE_8 || symbol == TG2_SYMBOL_RUN_8;
  return narrow ? 8 : 16;
}

/// Whether a symbol is one coefficient; it's a run of zeros otherwise.
constexpr bool tg2_isLiteral(gr_uint32 symbol) {
  return symbol > TG2_LONGEST_SHORT_RUN && symbol != TG2_SYMBOL_RUN_8 &&
         symbol != TG2_SYMBOL_RUN_16;
}

/// The coefficient of a literal with its extra bits: -32768 to 32768.
constexpr gr_int32 tg2_literalValue(gr_uint32 symbol, gr_uint32 extra) {
  switch (symbol) {
    case TG2_SYMBOL_POSITIVE_8:
      return static_cast<gr_int32>(extra);
    case TG2_SYMBOL_NEGATIVE_8:
      return -static_cast<gr_int32>(extra);
    case TG2_SYMBOL_SIGNED_16:
      return static_cast<gr_int16>(extra);
    case TG2_SYMBOL_NEGATED_16:
      return -gr_int32{static_cast<gr_int16>(extra)};
    default:
      return static_cast<gr_int32>(symbol) - TG2_LITERAL_ZERO;
  }
}

/// The length of a run with its extra bits.
constexpr gr_uint32 tg2_runLength(gr_uint32 symbol, gr_uint32 extra) {
  return symbol <= TG2_LONGEST_SHORT_RUN ? symbol : extra;
}

/// A canonical Huffman code (as ISO/IEC 10918-1, Annex C, makes it), and a table that tells for the
/// next bits of a record what they decode to, several symbols at once. It takes some microseconds
/// to build and 24 KiB to hold; it's read-only, so any number of threads may use it.
class TG2HuffmanTable {
 public:
  static constexpr gr_uint32 LONGEST_CODE = 16;
  static constexpr gr_uint32 MOST_SYMBOLS = 256;

  /// @param bits  how many codes there are of each length, 1 to 16
  /// @param huffval  the symbols in the order of their codes, as many as the sum of `bits`
  /// Throws GRUtilException: 8022 for more than 256 codes, more codes of a length than fit, a tree
  /// of more than 256 nodes or another number of symbols; 8 when memory runs out. A code that
  /// leaves branches unused is allowed, and one without codes too.
  TG2HuffmanTable(std::span<const gr_uint8, LONGEST_CODE> bits, std::span<const gr_uint8> huffval);

  // What a step of the table holds:
  // - The bits that it takes, 1 to LOOKUP_BITS, in the lowest 6 bits: a shift of 64 bits takes
  //   them as they are.
  // - The coefficients passed, those passed before its last symbol, and those before its first
  //   literal (0 without one).
  // - The coefficients from the first literal on, as bytes with signs, the first in the lowest
  //   byte: CELLS of them, whose rest is zeros.
  // A step that is SPECIAL holds no cells. It's a symbol with extra bits, whose code's length and
  // number it has, or, with a length of 0, a code longer than LOOKUP_BITS or an unused branch.
  static constexpr gr_uint32 LOOKUP_BITS = 11;
  static constexpr gr_uint32 CELLS = 8;
  static constexpr gr_uint32 LENGTH_MASK = 0x3F;
  static constexpr gr_uint32 SPECIAL = 0x80;
  static constexpr gr_uint32 PASSED_SHIFT = 8;  ///< of a special step: the symbol
  static constexpr gr_uint32 BEFORE_LAST_SHIFT = 16;
  static constexpr gr_uint32 BEFORE_LITERAL_SHIFT = 24;

  /// The steps and their cells, by the next LOOKUP_BITS bits.
  const gr_uint32* steps() const { return m_steps.data(); }
  const gr_uint64* cells() const { return m_cells.data(); }

  struct Code {
    gr_uint32 length;  ///< 1 to 16; 0 for an unused branch
    gr_uint32 symbol;
  };
  /// The code at the front of the next 16 bits.
  Code codeOf(gr_uint32 next16) const { return codeFrom(m_shortest, next16); }
  /// The same with the step for these bits.
  Code codeOf(gr_uint32 step, gr_uint32 next16) const {
    if ((step & SPECIAL) == 0) return codeFrom(m_shortest, next16);
    const gr_uint32 length = step & LENGTH_MASK;
    if (length != 0) return {length, step >> PASSED_SHIFT};
    return codeFrom(LOOKUP_BITS + 1, next16);
  }
  /// Whether `code`, of `length` bits and without a shorter code at its front, is one.
  bool isCode(gr_uint32 code, gr_uint32 length) const {
    return (code << (LONGEST_CODE - length)) < m_limits[length];
  }
  /// The symbol of the code of `length` at the front of 16 bits.
  gr_uint32 symbolAt(gr_uint32 next16, gr_uint32 length) const {
    return m_symbols[((next16 >> (LONGEST_CODE - length)) + m_offsets[length]) % MOST_SYMBOLS];
  }

 private:
  friend class TG2HuffmanSteps;

  Code codeFrom(gr_uint32 length, gr_uint32 next16) const {
    for (; length <= LONGEST_CODE; ++length) {
      if (next16 < m_limits[length]) return {length, symbolAt(next16, length)};
    }
    return {0, 0};
  }

  std::array<gr_uint8, MOST_SYMBOLS> m_symbols{};
  /// By length: the end of the codes of up to this length, as 16 bits; 65536 when all are used.
  std::array<gr_uint32, LONGEST_CODE + 1> m_limits{};
  /// By length: what leads from a code to its index in m_symbols, modulo 2^32.
  std::array<gr_uint32, LONGEST_CODE + 1> m_offsets{};
  gr_uint32 m_shortest = 1;
  GRArray<gr_uint32> m_steps;
  GRArray<gr_uint64> m_cells;
};
