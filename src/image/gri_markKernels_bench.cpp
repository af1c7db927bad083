// Rows of an 8192 pixel wide image; the rates are pixels per second.

#include <benchmark/benchmark.h>

#include <vector>

#include "image/gri_markKernels.h"

namespace {

constexpr size_t NUM_PIXELS = 8192;

struct Rows {
  explicit Rows(const benchmark::State& state)
      : numBands(static_cast<size_t>(state.range(0))),
        type(static_cast<GRIDataType>(state.range(1))),
        samples(2 * numBands, std::vector<gr_uint8>(NUM_PIXELS * GRIUtils::getNumBytes(type))),
        marks(gri_markBytes(NUM_PIXELS)) {
    gr_uint32 noise = 1;
    for (auto& row : samples) {
      for (gr_uint8& byte : row) {
        noise = noise * 1664525u + 1013904223u;
        byte = static_cast<gr_uint8>((noise >> 24) & 0x33);
      }
      (a.size() < numBands ? a : b).push_back(row.data());
    }
    none.assign(numBands, noDataBytes);
  }
  size_t numBands;
  GRIDataType type;
  std::vector<std::vector<gr_uint8>> samples;
  std::vector<const void*> a, b, none;
  gr_uint8 noDataBytes[8] = {};
  std::vector<gr_uint8> marks;
};

void report(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<gr_int64>(NUM_PIXELS) *
                          static_cast<gr_int64>(state.iterations()));
}

void BM_DifferentScalar(benchmark::State& state) {
  Rows rows(state);
  for ([[maybe_unused]] auto _ : state) {
    gri_markDifferentScalar(rows.b.data(), rows.none.data(), rows.numBands, rows.type, 0,
                            NUM_PIXELS, rows.marks.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void BM_Different(benchmark::State& state) {
  Rows rows(state);
  for ([[maybe_unused]] auto _ : state) {
    gri_markDifferent(rows.b.data(), rows.none.data(), rows.numBands, rows.type, NUM_PIXELS,
                      rows.marks.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void BM_GreaterScalar(benchmark::State& state) {
  Rows rows(state);
  for ([[maybe_unused]] auto _ : state) {
    gri_markGreaterScalar(rows.a[0], rows.b[0], rows.type, 0, NUM_PIXELS, rows.marks.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void BM_Greater(benchmark::State& state) {
  Rows rows(state);
  for ([[maybe_unused]] auto _ : state) {
    gri_markGreater(rows.a[0], rows.b[0], rows.type, NUM_PIXELS, rows.marks.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void BM_FuzzyScalar(benchmark::State& state) {
  Rows rows(state);
  for ([[maybe_unused]] auto _ : state) {
    gri_markFuzzyScalar(rows.a.data(), rows.b.data(), rows.none.data(), rows.numBands, rows.type,
                        300.0, 0, NUM_PIXELS, rows.marks.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void BM_Fuzzy(benchmark::State& state) {
  Rows rows(state);
  for ([[maybe_unused]] auto _ : state) {
    gri_markFuzzy(rows.a.data(), rows.b.data(), rows.none.data(), rows.numBands, rows.type, 300.0,
                  NUM_PIXELS, rows.marks.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void arguments(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"bands", "type"})
      ->ArgsProduct({{1, 3, 4}, {GRI_DATATYPE_UINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_FLOAT32}});
}

void oneBand(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"bands", "type"})
      ->ArgsProduct({{1}, {GRI_DATATYPE_UINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_FLOAT32}});
}

BENCHMARK(BM_DifferentScalar)->Apply(arguments);
BENCHMARK(BM_Different)->Apply(arguments);
BENCHMARK(BM_GreaterScalar)->Apply(oneBand);
BENCHMARK(BM_Greater)->Apply(oneBand);
BENCHMARK(BM_FuzzyScalar)->Apply(arguments);
BENCHMARK(BM_Fuzzy)->Apply(arguments);

}  // namespace
