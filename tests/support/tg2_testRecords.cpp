#include "tests/support/tg2_testRecords.h"

#include <algorithm>
#include <cmath>
#include <numeric>

TG2TestCodedRecord tg2_codeBins(std::span<const gr_int32> bins, const TG2TestCoding& coding) {
  const std::vector<TG2TestSymbol> symbols = tg2_symbolsOf(bins, coding);
  std::array<gr_uint64, 256> counts{};
  for (const TG2TestSymbol& symbol : symbols) ++counts[symbol.symbol];
  const TG2TestTable table = tg2_makeTable(counts, coding);
  return {table, tg2_recordOf(symbols, table)};
}

std::vector<gr_uint8> tg2_recordOf(std::span<const TG2TestSymbol> symbols,
                                   const TG2TestTable& table) {
  std::vector<gr_uint8> bytes = {0xFF, 0xA3};
  const std::vector<gr_uint8> data = tg2_codeRecord(symbols, table, true);
  bytes.insert(bytes.end(), data.begin(), data.end());
  // What follows is another record, or the marker of another part of the file.
  bytes.insert(bytes.end(), {0xFF, 0xAA});
  return bytes;
}

std::vector<gr_int32> tg2_naturalBins(size_t count, double scale, std::mt19937& random) {
  std::vector<gr_int32> bins(count);
  const auto uniform = [&random] { return (random() + 0.5) / 4294967296.0; };
  double drift = 0;
  for (gr_int32& bin : bins) {
    drift = 0.98 * drift + 0.25 * (uniform() - 0.5);
    const double size = -scale * std::exp(2 * drift) * std::log(uniform());
    const auto whole = static_cast<gr_int32>(std::min(size + 0.44, 32767.0));
    bin = random() % 2 == 0 ? whole : -whole;
  }
  return bins;
}

TG2TestTable tg2_anyTable(size_t numCodes, std::mt19937& random) {
  TG2TestTable table;
  // Leaves split at random until there are enough.
  std::vector<gr_uint32> lengths = {1, 1};
  while (lengths.size() < numCodes) {
    gr_uint32& length = lengths[random() % lengths.size()];
    if (length < 16) lengths.push_back(++length);
  }
  if (random() % 4 == 0) lengths.pop_back();
  for (const gr_uint32 length : lengths) {
    if (table.bits[length - 1] < 255) ++table.bits[length - 1];
  }
  table.huffval.resize(256);
  std::iota(table.huffval.begin(), table.huffval.end(), gr_uint8{0});
  std::ranges::shuffle(table.huffval, random);
  table.huffval.resize(std::accumulate(table.bits.begin(), table.bits.end(), size_t{0}));
  tg2_numberCodes(table);
  return table;
}
