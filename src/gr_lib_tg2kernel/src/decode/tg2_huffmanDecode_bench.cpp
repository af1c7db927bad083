// Records of 64 x 64 with the statistics of pictures, in coefficients a second. The argument is the
// mean size of the bins in hundredths; the label tells the bits per coefficient.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanCells.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"
#include "tests/support/tg2_testRecords.h"

namespace {

constexpr gr_int32 SIZE = 64;
constexpr size_t CELLS = size_t{SIZE} * SIZE;
constexpr size_t NUM_RECORDS = 16;  // different ones, so that branches can't be learnt by heart

/// Records of one band: they share a code.
struct Band {
  explicit Band(double scale) {
    std::mt19937 random(7);
    const auto bins = tg2_naturalBins(CELLS * NUM_RECORDS, scale, random);
    const TG2TestCodedRecord whole = tg2_codeBins(bins);
    table = whole.table;
    for (size_t i = 0; i < NUM_RECORDS; ++i) {
      const auto symbols = tg2_symbolsOf(std::span(bins).subspan(i * CELLS, CELLS), {});
      // A run at the end of one record may have another length than in the whole.
      bool known = true;
      for (const auto& symbol : symbols) known = known && table.codes[symbol.symbol].length > 0;
      if (known) records.push_back(tg2_recordOf(symbols, table));
    }
    for (const auto& record : records) numBytes += record.size();
  }

  std::string rate() const {
    return std::to_string(static_cast<double>(numBytes) * 8 /
                          static_cast<double>(records.size() * CELLS)) +
           " bits";
  }

  TG2TestTable table;
  std::vector<std::vector<gr_uint8>> records;
  size_t numBytes = 0;
};

void countCells(benchmark::State& state, const Band& band) {
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(CELLS));
  state.SetLabel(band.rate());
}

template <auto DECODE>
void cells(benchmark::State& state) {
  const Band band(static_cast<double>(state.range(0)) / 100);
  const TG2HuffmanTable table(band.table.bits, band.table.huffval);
  std::vector<gr_int32> out(CELLS + TG2_CELLS_SLACK);
  size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto& record = band.records[next++ % band.records.size()];
    TG2RestartState place{3, 0, record[2], 0};
    DECODE(table, record, place, out.data(), CELLS);
    benchmark::DoNotOptimize(out.data());
  }
  countCells(state, band);
}

void coefficients(benchmark::State& state, const TG2NoiseOrigin* noise) {
  const Band band(static_cast<double>(state.range(0)) / 100);
  const TG2HuffmanTable table(band.table.bits, band.table.huffval);
  std::vector<float> out(CELLS);
  const TG2Rect rect{0, 0, SIZE - 1, SIZE - 1};
  const TG2Dequantizer dequantizer(rect, noise);
  size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto& record = band.records[next++ % band.records.size()];
    tg2_huffmanDecode(table, record, dequantizer, 1.5F, out.data(), SIZE, rect, rect, nullptr);
    benchmark::DoNotOptimize(out.data());
  }
  countCells(state, band);
}

void plain(benchmark::State& state) { coefficients(state, nullptr); }

void dithered(benchmark::State& state) {
  const TG2NoiseOrigin noise{17, 90};
  coefficients(state, &noise);
}

void buildTable(benchmark::State& state) {
  const Band band(static_cast<double>(state.range(0)) / 100);
  for ([[maybe_unused]] auto _ : state) {
    const TG2HuffmanTable table(band.table.bits, band.table.huffval);
    benchmark::DoNotOptimize(table.steps());
  }
  state.SetLabel(band.rate());
}

#define RATES Arg(10)->Arg(55)->Arg(150)->Arg(600)->Arg(4000)

BENCHMARK(cells<tg2_huffmanCellsScalar>)->Name("cells/scalar")->RATES;
BENCHMARK(cells<tg2_huffmanCells>)->Name("cells/fast")->RATES;
BENCHMARK(plain)->Name("coefficients")->RATES;
BENCHMARK(dithered)->Name("coefficients/dither")->RATES;
BENCHMARK(buildTable)->Name("table")->RATES;

}  // namespace
