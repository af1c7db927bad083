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
  // NOLINTNEXTLINE(*-member-init): the codes are written before they are read
  TG2HuffmanSteps(TG2HuffmanTable& table, gr_uint32 numCodes)
      : m_steps(table.m_steps.data()), m_cells(table.m_cells.data()) {
    gr_uint32 index = 0;
    for (gr_uint32 length = 1; length <= LOOKUP_BITS; ++length) {
      for (; index < numCodes && table.isCode(index - table.m_offsets[length], length); ++index) {
        const gr_uint32 symbol = table.m_symbols[index];
        const bool literal = tg2_isLiteral(symbol);
        m_codes[index] = {length,
                          symbol,
                          literal ? 1 : tg2_runLength(symbol, 0),
                          static_cast<gr_uint8>(tg2_literalValue(symbol, 0)),
                          literal,
                          tg2_extraBits(symbol) != 0};
      }
    }
    m_numCodes = index;
  }

  void fill() {
    gr_uint32 at = 0;
    for (gr_uint32 i = 0; i < m_numCodes; ++i) {
      const ShortCode& code = m_codes[i];
      const gr_uint32 freeBits = LOOKUP_BITS - code.length;
      Sequence sequence;
      if (append(sequence, code)) {
        extend(sequence, at);
      } else {
        store(at, 1u << freeBits,
              code.length | TG2HuffmanTable::SPECIAL | code.symbol << TG2HuffmanTable::PASSED_SHIFT,
              0);
      }
      at += 1u << freeBits;
    }
    store(at, (1u << LOOKUP_BITS) - at, TG2HuffmanTable::SPECIAL, 0);
  }

 private:
  /// A code of LOOKUP_BITS bits or less.
  struct ShortCode {
    gr_uint32 length;
    gr_uint32 symbol;
    gr_uint32 passes;  ///< coefficients
    gr_uint8 cell;     ///< of a literal
    bool isLiteral;
    bool hasExtraBits;
  };

  struct Sequence {
    gr_uint64 cells = 0;
    gr_uint32 bits = 0;
    gr_uint32 passed = 0;
    gr_uint32 beforeLast = 0;
    gr_uint32 beforeLiteral = NO_LITERAL;

    gr_uint32 step() const {
      return bits | passed << TG2HuffmanTable::PASSED_SHIFT |
             beforeLast << TG2HuffmanTable::BEFORE_LAST_SHIFT |
             (beforeLiteral == NO_LITERAL ? 0
                                          : beforeLiteral << TG2HuffmanTable::BEFORE_LITERAL_SHIFT);
    }
  };
  static constexpr gr_uint32 NO_LITERAL = 0xFFFFFFFF;

  /// Puts a symbol behind the others, unless one step can't hold them all.
  static bool append(Sequence& sequence, const ShortCode& code) {
    if (code.hasExtraBits || sequence.passed + code.passes > MOST_PASSED) return false;
    if (code.isLiteral) {
      const gr_uint32 first =
          sequence.beforeLiteral == NO_LITERAL ? sequence.passed : sequence.beforeLiteral;
      const gr_uint32 cell = sequence.passed - first;
      if (cell >= TG2HuffmanTable::CELLS) return false;
      sequence.beforeLiteral = first;
      sequence.cells |= gr_uint64{code.cell} << (8 * cell);
    }
    sequence.beforeLast = sequence.passed;
    sequence.passed += code.passes;
    sequence.bits += code.length;
    return true;
  }

  void store(gr_uint32 at, gr_uint32 count, gr_uint32 step, gr_uint64 cells) {
    for (gr_uint32 end = at + count; at < end; ++at) {
      m_steps[at] = step;
      m_cells[at] = cells;
    }
  }

  /// Fills the steps that begin with `sequence`, of which `at` is the first.
  // It calls itself for one more symbol, which has one bit or more: LOOKUP_BITS times at most.
  // NOLINTNEXTLINE(misc-no-recursion)
  void extend(const Sequence& sequence, gr_uint32 at) {
    const gr_uint32 freeBits = LOOKUP_BITS - sequence.bits;
    const gr_uint32 end = at + (1u << freeBits);
    const gr_uint32 own = sequence.step();
    for (gr_uint32 i = 0; i < m_numCodes && m_codes[i].length <= freeBits; ++i) {
      const ShortCode& code = m_codes[i];
      const gr_uint32 size = 1u << (freeBits - code.length);
      Sequence longer = sequence;
      if (!append(longer, code)) {
        store(at, size, own, sequence.cells);
      } else if (code.length + m_codes[0].length > freeBits) {
        store(at, size, longer.step(), longer.cells);
      } else {
        extend(longer, at);
      }
      at += size;
    }
    store(at, end - at, own, sequence.cells);
  }

  gr_uint32* m_steps;
  gr_uint64* m_cells;
  gr_uint32 m_numCodes = 0;
  std::array<ShortCode, TG2HuffmanTable::MOST_SYMBOLS> m_codes;
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
