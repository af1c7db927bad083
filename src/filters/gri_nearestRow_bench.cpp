// Rows of 8192 samples; the rates are bytes written per second.

#include <benchmark/benchmark.h>

#include <vector>

#include "filters/gri_nearestRow.h"

namespace {

constexpr size_t NUM_SAMPLES = 8192;

using Nearest = void (*)(const void*, gr_uint32, size_t, float, float, size_t, void*);

/// Arguments: bytes of a sample; the step in quarters of a sample, or 0 for a third of one, whose
/// sums are rounded.
template <Nearest nearest>
void BM_Nearest(benchmark::State& state) {
  const size_t bytes = static_cast<size_t>(state.range(0));
  const float step = state.range(1) == 0 ? 1.0F / 3 : static_cast<float>(state.range(1)) / 4;
  const std::vector<gr_uint8> row(4 * NUM_SAMPLES * bytes, 0x5A);
  std::vector<gr_uint8> dest(NUM_SAMPLES * bytes);
  for ([[maybe_unused]] auto _ : state) {
    nearest(row.data(), 4 * NUM_SAMPLES, bytes, 0.0F, step, NUM_SAMPLES, dest.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<gr_int64>(dest.size()) * state.iterations());
}

void widthsAndSteps(benchmark::internal::Benchmark* bench) {
  for (const int bytes : {1, 2, 4}) {
    for (const int quarters : {0, 1, 2, 3, 8, 16}) bench->Args({bytes, quarters});
  }
}

BENCHMARK(BM_Nearest<gri_nearestRowScalar>)->Apply(widthsAndSteps);
BENCHMARK(BM_Nearest<gri_nearestRow>)->Apply(widthsAndSteps);

}  // namespace
