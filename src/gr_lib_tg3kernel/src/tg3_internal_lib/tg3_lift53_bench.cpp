// One level of synthesis over rows of the width of a large image, in samples a second.

#include <benchmark/benchmark.h>

#include <vector>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_lift53.h"

namespace {

constexpr size_t WIDTH = 8000;  // samples of an output row

template <auto VERTICAL, auto HORIZONTAL>
void levelOfSynthesis(benchmark::State& state) {
  const size_t n = WIDTH / 2;
  std::vector<gr_int32> low(WIDTH, 3), high(WIDTH, -2), heldHigh(WIDTH, 1), heldEven(WIDTH, 7);
  std::vector<gr_int32> odd(WIDTH + 1), scratch(n + 1), out(WIDTH);
  for ([[maybe_unused]] auto _ : state) {
    // Two output rows.
    VERTICAL(low.data(), high.data(), heldHigh.data(), heldEven.data(), odd.data(), WIDTH);
    HORIZONTAL(odd.data(), odd.data() + n + 1, scratch.data(), out.data(), n - 1);
    benchmark::DoNotOptimize(out.data());
    HORIZONTAL(heldEven.data(), heldEven.data() + n, scratch.data(), out.data(), n);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * int64_t{2 * WIDTH});
}

BENCHMARK(levelOfSynthesis<tg3_lift53VerticalScalar, tg3_lift53HorizontalScalar>)
    ->Name("lift53/scalar");
BENCHMARK(levelOfSynthesis<tg3_lift53Vertical, tg3_lift53Horizontal>)->Name("lift53/simd");

template <auto CLAMP>
void clampRow(benchmark::State& state) {
  const std::vector<gr_int32> values(WIDTH, 300);
  std::vector<gr_uint8> samples(WIDTH);
  for ([[maybe_unused]] auto _ : state) {
    CLAMP(values.data(), 0, 255, samples.data(), WIDTH);
    benchmark::DoNotOptimize(samples.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * int64_t{WIDTH});
}

BENCHMARK(clampRow<tg3_clampTo8Scalar>)->Name("clampTo8/scalar");
BENCHMARK(clampRow<tg3_clampTo8>)->Name("clampTo8/simd");

}  // namespace
