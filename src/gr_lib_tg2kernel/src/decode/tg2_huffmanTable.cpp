#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTable.h"

#include <algorithm>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

namespace {

constexpr gr_uint32 LOOKUP_BITS = TG2HuffmanTable::LOOKUP_BITS;
constexpr gr_uint32 MOST_NODES = 256;  // of the code's tree
constexpr gr_uint32 MOST_PASSED = 255;

}  // namespace

/// Fills the steps of a table: tries every sequence of symbols that fits into the bits of a step.
class TG2HuffmanSteps {
 public:
  TG2HuffmanSteps(TG2HuffmanTable& table, gr_uint32 numCodes) : m_table(table) {
    gr_uint32 index = 0;
    for (gr_uint32 length = 1; length <= LOOKUP_BITS; ++length) {
      while (index < numCodes && table.isCode(codeAt(index, length), length)) {
        m_lengths[index++] = static_cast<gr_uint8>(length);
      }
    }
    m_numShort = index;
  }

  void fill() {
    gr_uint32 at = 0;
    for (gr_uint32 i = 0; i < m_numShort; ++i) {
      const gr_uint32 length = m_lengths[i];
      const gr_uint32 symbol = m_table.m_symbols[i];
      Sequence sequence;
      if (tg2_extraBits(symbol) != 0) {
        store(at, LOOKUP_BITS - length,
              length | TG2HuffmanTable::SPECIAL | symbol << TG2HuffmanTable::PASSED_SHIFT, 0);
      } else if (append(sequence, symbol, length)) {
        extend(sequence, at);
      }
      at += 1u << (LOOKUP_BITS - length);
    }
    const auto rest = m_table.m_steps.span().subspan(at);
    std::ranges::fill(rest, TG2HuffmanTable::SPECIAL);
    std::ranges::fill(m_table.m_cells.span().subspan(at), 0);
  }

 private:
  struct Sequence {
    gr_uint64 cells = 0;
    gr_uint32 bits = 0;
    gr_uint32 passed = 0;
    gr_uint32 beforeLast = 0;
    gr_uint32 beforeLiteral = 0;
    bool hasLiteral = false;
  };

  gr_uint32 codeAt(gr_uint32 index, gr_uint32 length) const {
    return index - m_table.m_offsets[length];
  }

  /// Puts a symbol behind the others, unless one step can't hold them all.
  static bool append(Sequence& sequence, gr_uint32 symbol, gr_uint32 length) {
    if (symbol <= TG2_LONGEST_SHORT_RUN) {
      if (sequence.passed + symbol > MOST_PASSED) return false;
      sequence.beforeLast = sequence.passed;
      sequence.passed += symbol;
    } else {
      if (sequence.passed == MOST_PASSED) return false;
      if (!sequence.hasLiteral) {
        sequence.beforeLiteral = sequence.passed;
        sequence.hasLiteral = true;
      }
      const gr_uint32 cell = sequence.passed - sequence.beforeLiteral;
      if (cell >= TG2HuffmanTable::CELLS) return false;
      const gr_int32 value = tg2_literalValue(symbol, 0);
      sequence.cells |= gr_uint64{static_cast<gr_uint8>(value)} << (8 * cell);
      sequence.beforeLast = sequence.passed;
      ++sequence.passed;
    }
    sequence.bits += length;
    return true;
  }

  void store(gr_uint32 at, gr_uint32 freeBits, gr_uint32 step, gr_uint64 cells) {
    const size_t count = size_t{1} << freeBits;
    std::fill_n(m_table.m_steps.data() + at, count, step);
    std::fill_n(m_table.m_cells.data() + at, count, cells);
  }

  /// Fills the steps that begin with `sequence`, of which `at` is the first.
  // It calls itself for one more symbol, which has one bit or more: 11 times at most.
  // NOLINTNEXTLINE(misc-no-recursion)
  void extend(const Sequence& sequence, gr_uint32 at) {
    const gr_uint32 freeBits = LOOKUP_BITS - sequence.bits;
    const gr_uint32 end = at + (1u << freeBits);
    const gr_uint32 own = sequence.bits | sequence.passed << TG2HuffmanTable::PASSED_SHIFT |
                          sequence.beforeLast << TG2HuffmanTable::BEFORE_LAST_SHIFT |
                          sequence.beforeLiteral << TG2HuffmanTable::BEFORE_LITERAL_SHIFT;
    for (gr_uint32 i = 0; i < m_numShort && m_lengths[i] <= freeBits; ++i) {
      const gr_uint32 size = 1u << (freeBits - m_lengths[i]);
      const gr_uint32 symbol = m_table.m_symbols[i];
      Sequence longer = sequence;
      if (tg2_extraBits(symbol) == 0 && append(longer, symbol, m_lengths[i])) {
        extend(longer, at);
      } else {
        store(at, freeBits - m_lengths[i], own, sequence.cells);
      }
      at += size;
    }
    std::fill_n(m_table.m_steps.data() + at, end - at, own);
    std::fill_n(m_table.m_cells.data() + at, end - at, sequence.cells);
  }

  TG2HuffmanTable& m_table;
  gr_uint32 m_numShort = 0;  ///< codes of LOOKUP_BITS bits or less
  std::array<gr_uint8, TG2HuffmanTable::MOST_SYMBOLS> m_lengths{};
};

TG2HuffmanTable::TG2HuffmanTable(std::span<const gr_uint8, LONGEST_CODE> bits,
                                 std::span<const gr_uint8> huffval) {
  gr_uint32 code = 0;      // the next one, of the length at hand
  gr_uint32 numCodes = 0;  // so far
  gr_uint32 longest = 0;
  bool fits = true;
  std::array<gr_uint32, LONGEST_CODE + 1> inner{};  // by length: the first code that leads on
  for (gr_uint32 length = 1; length <= LONGEST_CODE; ++length) {
    const gr_uint32 count = bits[length - 1];
    code <<= 1;
    m_offsets[length] = numCodes - code;
    code += count;
    numCodes += count;
    if (count != 0) longest = length;
    if (code > 1u << length) fits = false;
    inner[length] = code;
    m_limits[length] = code << (LONGEST_CODE - length);
  }
  if (!fits || numCodes > MOST_SYMBOLS || huffval.size() != numCodes) {
    throw GRUtilException(TG2_STATUS_DECODING);
  }
  // At each depth the tree's inner nodes are those from the first that isn't a code to the one that
  // the last code goes through.
  gr_uint32 nodes = 1;
  for (gr_uint32 depth = 1; depth < longest; ++depth) {
    nodes += ((inner[longest] - 1) >> (longest - depth)) - inner[depth] + 1;
  }
  if (nodes > MOST_NODES) throw GRUtilException(TG2_STATUS_DECODING);

  while (m_shortest < LONGEST_CODE && bits[m_shortest - 1] == 0) ++m_shortest;
  std::ranges::copy(huffval.first(numCodes), m_symbols.begin());
  GR_STATUS status = m_steps.allocateUninitialized(size_t{1} << LOOKUP_BITS);
  if (GR_SUCCESS(status)) status = m_cells.allocateUninitialized(size_t{1} << LOOKUP_BITS);
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
  TG2HuffmanSteps(*this, numCodes).fill();
}
