// Rows of an 8192 pixel wide image; the rates are bytes of interleaved samples per second.

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "image/gri_sampleKernels.h"

namespace {

constexpr size_t NUM_PIXELS = 8192;

using Split = void (*)(const void*, size_t, size_t, size_t, void* const*);
using Join = void (*)(const void* const*, size_t, size_t, size_t, void*);
using Swap = void (*)(const void*, size_t, size_t, void*);

struct Row {
  explicit Row(const benchmark::State& state)
      : numBands(static_cast<size_t>(state.range(0))),
        width(static_cast<size_t>(state.range(1))),
        pixels(NUM_PIXELS * numBands * width, 0x5A),
        samples(numBands, std::vector<gr_uint8>(NUM_PIXELS * width)) {
    for (auto& plane : samples) planes.push_back(plane.data());
  }
  size_t numBands;
  size_t width;  // bytes of a sample
  std::vector<gr_uint8> pixels;
  std::vector<std::vector<gr_uint8>> samples;
  std::vector<void*> planes;
};

void report(benchmark::State& state, const Row& row) {
  state.SetBytesProcessed(static_cast<gr_int64>(row.pixels.size()) *
                          static_cast<gr_int64>(state.iterations()));
}

template <Split split>
void BM_Split(benchmark::State& state) {
  Row row(state);
  for ([[maybe_unused]] auto _ : state) {
    split(row.pixels.data(), NUM_PIXELS, row.numBands, row.width, row.planes.data());
    benchmark::ClobberMemory();
  }
  report(state, row);
}

template <Join join>
void BM_Join(benchmark::State& state) {
  Row row(state);
  for ([[maybe_unused]] auto _ : state) {
    join(row.planes.data(), NUM_PIXELS, row.numBands, row.width, row.pixels.data());
    benchmark::ClobberMemory();
  }
  report(state, row);
}

template <Swap swap>
void BM_Swap(benchmark::State& state) {
  Row row(state);
  for ([[maybe_unused]] auto _ : state) {
    swap(row.pixels.data(), NUM_PIXELS, row.width, row.planes[0]);
    benchmark::ClobberMemory();
  }
  report(state, row);
}

void pixels(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"bands", "width"})->ArgsProduct({{2, 3, 4, 7, 8, 64}, {1, 2, 4}});
}

void samples(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"bands", "width"})->ArgsProduct({{1}, {2, 4, 8}});
}

BENCHMARK(BM_Split<gri_splitBandsScalar>)->Apply(pixels);
BENCHMARK(BM_Split<gri_splitBands>)->Apply(pixels);
BENCHMARK(BM_Join<gri_joinBandsScalar>)->Apply(pixels);
BENCHMARK(BM_Join<gri_joinBands>)->Apply(pixels);
BENCHMARK(BM_Swap<gri_copySwappedScalar>)->Apply(samples);
BENCHMARK(BM_Swap<gri_copySwapped>)->Apply(samples);

}  // namespace
