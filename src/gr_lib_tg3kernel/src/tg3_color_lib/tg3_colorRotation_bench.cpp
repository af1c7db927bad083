#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorRotation.h"

namespace {

/// A subblock row of coefficients within `state.range(0)` of zero.
template <typename Rotate>
void rotateRows(benchmark::State& state, Rotate rotate) {
  constexpr size_t COUNT = 4096;
  std::mt19937 random(1);
  std::uniform_int_distribution<gr_int32> values(-static_cast<gr_int32>(state.range(0)),
                                                 static_cast<gr_int32>(state.range(0)));
  std::vector<gr_int32> rows(3 * COUNT);
  for (gr_int32& value : rows) value = values(random);
  std::vector<gr_int32> work(rows.size());
  for ([[maybe_unused]] auto _ : state) {
    work = rows;
    rotate(work.data(), work.data() + COUNT, work.data() + 2 * COUNT, COUNT);
    benchmark::DoNotOptimize(work.data());
  }
  state.counters["ns/sample"] =
      benchmark::Counter(3e-9 * COUNT * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void inverse(benchmark::State& state) { rotateRows(state, tg3_rotateInverse); }
void inverseScalar(benchmark::State& state) { rotateRows(state, tg3_rotateInverseScalar); }
void forward(benchmark::State& state) { rotateRows(state, tg3_rotateForward); }
void forwardScalar(benchmark::State& state) { rotateRows(state, tg3_rotateForwardScalar); }

BENCHMARK(inverse)->Arg(255)->Arg(100000);
BENCHMARK(inverseScalar)->Arg(255);
BENCHMARK(forward)->Arg(255)->Arg(100000);
BENCHMARK(forwardScalar)->Arg(255);

}  // namespace
