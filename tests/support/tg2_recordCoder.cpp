// How bins become symbols and symbols bits.

#include <algorithm>
#include <numeric>

#include "tests/support/tg2_writer.h"

namespace {

constexpr gr_uint8 LONGEST_PLAIN_RUN = 100;
constexpr gr_uint8 POSITIVE_8 = 101, NEGATIVE_8 = 102, SIGNED_16 = 103, NEGATED_16 = 104;
constexpr gr_uint8 RUN_8 = 105, RUN_16 = 106;
constexpr gr_int32 FIRST_LITERAL = 107, LITERAL_ZERO = 180, LAST_LITERAL = 255;

void addRun(std::vector<TG2TestSymbol>& symbols, gr_uint64 length, const TG2TestCoding& coding) {
  while (length > 0) {
    const auto step = static_cast<gr_uint32>(std::min<gr_uint64>(length, 0xFFFF));
    if (step <= LONGEST_PLAIN_RUN && !coding.usesEscapes) {
      symbols.push_back({static_cast<gr_uint8>(step)});
    } else if (step <= 0xFF) {
      symbols.push_back({RUN_8, 8, step});
    } else {
      symbols.push_back({RUN_16, 16, step});
    }
    length -= step;
  }
}

TG2TestSymbol literalOf(gr_int32 value, const TG2TestCoding& coding) {
  const gr_int32 symbol = value + LITERAL_ZERO;
  if (!coding.usesEscapes && symbol >= FIRST_LITERAL && symbol <= LAST_LITERAL) {
    return {static_cast<gr_uint8>(symbol)};
  }
  const auto bits = static_cast<gr_uint32>(value);
  if (value >= 0 && value <= 0xFF) return {POSITIVE_8, 8, bits};
  if (value < 0 && value >= -0xFF) return {NEGATIVE_8, 8, -bits};
  // Both reach all values but one; odd ones go the second way for the sake of the test.
  const bool isNegated = value == 32768 || (value % 2 != 0 && value != -32768);
  return isNegated ? TG2TestSymbol{NEGATED_16, 16, -bits & 0xFFFF}
                   : TG2TestSymbol{SIGNED_16, 16, bits & 0xFFFF};
}

// The lengths of the codes of an optimal tree, without a limit; 0 for what never comes.
std::vector<gr_uint32> treeLengths(const std::vector<gr_uint64>& counts) {
  struct Node {
    gr_uint64 count;
    std::vector<size_t> leaves;
  };
  std::vector<Node> nodes;
  for (size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] != 0) nodes.push_back({counts[i], {i}});
  }
  std::vector<gr_uint32> lengths(counts.size(), 0);
  if (nodes.size() == 1) lengths[nodes[0].leaves[0]] = 1;
  const auto isRarer = [](const Node& a, const Node& b) { return a.count < b.count; };
  while (nodes.size() > 1) {
    std::iter_swap(std::min_element(nodes.begin(), nodes.end(), isRarer), nodes.end() - 1);
    std::iter_swap(std::min_element(nodes.begin(), nodes.end() - 1, isRarer), nodes.end() - 2);
    Node rarest = std::move(nodes.back());
    nodes.pop_back();
    Node& joined = nodes.back();
    joined.count += rarest.count;
    joined.leaves.insert(joined.leaves.end(), rarest.leaves.begin(), rarest.leaves.end());
    for (const size_t leaf : joined.leaves) ++lengths[leaf];
  }
  return lengths;
}

// Shortens codes of more than 16 bits: two of the longest ones give up their place, one moves up,
// and the other one goes below a shorter code (as in Annex K.3 of JPEG).
void limitLengths(std::vector<gr_uint32>& numOfLength) {
  for (size_t length = numOfLength.size() - 1; length > 16; --length) {
    while (numOfLength[length] > 0) {
      size_t shorter = length - 2;
      while (numOfLength[shorter] == 0) --shorter;
      numOfLength[length] -= 2;
      ++numOfLength[length - 1];
      numOfLength[shorter + 1] += 2;
      --numOfLength[shorter];
    }
  }
}

}  // namespace

std::vector<TG2TestSymbol> tg2_symbolsOf(std::span<const gr_int32> bins,
                                         const TG2TestCoding& coding) {
  if (coding.hasEmptyRecords &&
      std::all_of(bins.begin(), bins.end(), [](gr_int32 bin) { return bin == 0; })) {
    return {};
  }
  std::vector<TG2TestSymbol> symbols;
  gr_uint64 run = 0;
  for (const gr_int32 bin : bins) {
    if (bin == 0 && !coding.writesZeros) {
      ++run;
      continue;
    }
    addRun(symbols, run, coding);
    run = 0;
    symbols.push_back(literalOf(bin, coding));
    if (coding.writesNothings) symbols.push_back({0});
  }
  if (run > 0 && coding.overruns) run += 3 * bins.size();
  addRun(symbols, run, coding);
  return symbols;
}

TG2TestTable tg2_makeTable(const std::array<gr_uint64, 256>& counts, const TG2TestCoding& coding) {
  // By how often they come, and the code of ones alone, which is the longest, last.
  std::vector<size_t> order(256);
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return counts[a] > counts[b]; });
  std::erase_if(order, [&](size_t symbol) { return counts[symbol] == 0; });
  TG2TestTable table;
  if (order.empty()) return table;

  std::vector<gr_uint64> ranked;
  for (size_t rank = 0; rank < order.size(); ++rank) {
    constexpr size_t STEEPEST = 50;  // halvings, which a sum of 64 bits holds
    ranked.push_back(coding.hasDeepCodes ? gr_uint64{1} << (2 + STEEPEST - std::min(rank, STEEPEST))
                                         : 2 * counts[order[rank]]);
  }
  if (!coding.allowsAllOnes) ranked.push_back(1);
  const std::vector<gr_uint32> lengths = treeLengths(ranked);
  std::vector<gr_uint32> numOfLength(260, 0);
  for (const gr_uint32 length : lengths) ++numOfLength[length];
  limitLengths(numOfLength);
  if (!coding.allowsAllOnes) {
    size_t longest = 16;
    while (numOfLength[longest] == 0) --longest;
    --numOfLength[longest];
  }
  for (size_t length = 1; length <= 16; ++length) {
    table.bits[length - 1] = static_cast<gr_uint8>(numOfLength[length]);
  }
  for (const size_t symbol : order) table.huffval.push_back(static_cast<gr_uint8>(symbol));
  tg2_numberCodes(table);
  return table;
}

void tg2_numberCodes(TG2TestTable& table) {
  gr_uint32 code = 0;
  size_t next = 0;
  for (gr_uint32 length = 1; length <= 16; ++length) {
    for (gr_uint32 i = 0; i < table.bits[length - 1]; ++i) {
      table.codes[table.huffval[next++]] = {code++, length};
    }
    code <<= 1;
  }
}

std::vector<gr_uint8> tg2_codeRecord(std::span<const TG2TestSymbol> symbols,
                                     const TG2TestTable& table, bool padsWithOnes) {
  std::vector<gr_uint8> bytes;
  gr_uint32 held = 0;
  gr_uint32 numHeld = 0;
  const auto putBits = [&](gr_uint32 value, gr_uint32 count) {
    for (gr_uint32 i = count; i-- > 0;) {
      held = held << 1 | (value >> i & 1);
      if (++numHeld < 8) continue;
      bytes.push_back(static_cast<gr_uint8>(held));
      if ((held & 0xFF) == 0xFF) bytes.push_back(0);
      numHeld = 0;
    }
  };
  for (const TG2TestSymbol& symbol : symbols) {
    const TG2TestTable::Code& code = table.codes[symbol.symbol];
    putBits(code.code, code.length);
    putBits(symbol.extra, symbol.numExtraBits);
  }
  while (numHeld != 0) putBits(padsWithOnes ? 1 : 0, 1);
  return bytes;
}
