// One level of synthesis over rows of the width of a large image, in samples a second.

#include <benchmark/benchmark.h>

#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_lift97.h"

namespace {

template <auto VERTICAL, auto HORIZONTAL>
void levelOfSynthesis(benchmark::State& state) {
  const size_t width = static_cast<size_t>(state.range(0));
  const size_t n = width / 2;
  const size_t room = width + 16;
  const std::vector<float> low(room, 3.5F), highAbove(room, -2.25F), high(room, 1.0F);
  std::vector<float> firstEven(room, 1.0F), firstOdd(room, -0.5F), evenAbove(room, 7.0F);
  std::vector<float> even(room), odd(room), work(2 * room), out(room);
  for ([[maybe_unused]] auto _ : state) {
    // Two output rows. Low columns stand from 4 on, high ones from n + 8 on.
    VERTICAL({low.data(), highAbove.data(), high.data(), firstEven.data(), firstOdd.data(),
              evenAbove.data(), even.data(), odd.data()},
             room);
    for (const std::vector<float>* row : {&odd, &even}) {
      HORIZONTAL(row->data() + 4, row->data() + n + 8, work.data(), out.data(), false, width);
      benchmark::DoNotOptimize(out.data());
    }
    benchmark::DoNotOptimize(firstEven.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(2 * width));
}

BENCHMARK(levelOfSynthesis<tg2_lift97VerticalScalar, tg2_lift97HorizontalScalar>)
    ->Name("lift97/scalar")
    ->Arg(1024)
    ->Arg(8000);
BENCHMARK(levelOfSynthesis<tg2_lift97Vertical, tg2_lift97Horizontal>)
    ->Name("lift97/simd")
    ->Arg(1024)
    ->Arg(8000);

}  // namespace
