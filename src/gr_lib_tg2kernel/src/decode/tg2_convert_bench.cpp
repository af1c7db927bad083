// Rows of 8000 pixels: coefficients dequantised, and planes converted, in samples a second.

#include <benchmark/benchmark.h>

#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_convert.h"
#include "gr_lib_tg2kernel/src/decode/tg2_dequantize.h"

namespace {

constexpr size_t WIDTH = 8000;

template <auto DEQUANTIZE>
void dequantize(benchmark::State& state) {
  const std::vector<gr_int32> bins(WIDTH, 3);
  std::vector<float> out(WIDTH);
  for ([[maybe_unused]] auto _ : state) {
    DEQUANTIZE(bins.data(), out.data(), WIDTH, 1.5F);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(WIDTH));
}

template <auto DEQUANTIZE>
void dither(benchmark::State& state) {
  const std::vector<gr_int32> bins(WIDTH, 3);
  const std::vector<float> noise(WIDTH, 0.1F);
  std::vector<float> out(WIDTH);
  for ([[maybe_unused]] auto _ : state) {
    DEQUANTIZE(bins.data(), noise.data(), out.data(), WIDTH, 1.5F);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(WIDTH));
}

template <size_t NUM_BANDS, typename Sample,
          void (*KERNEL)(const float* const*, Sample* const*, size_t)>
void convert(benchmark::State& state) {
  std::vector<std::vector<float>> planes(NUM_BANDS, std::vector<float>(WIDTH, 77.7F));
  std::vector<std::vector<Sample>> bands(NUM_BANDS, std::vector<Sample>(WIDTH));
  const float* from[NUM_BANDS];
  Sample* to[NUM_BANDS];
  for (size_t i = 0; i < NUM_BANDS; ++i) {
    from[i] = planes[i].data();
    to[i] = bands[i].data();
  }
  for ([[maybe_unused]] auto _ : state) {
    KERNEL(from, to, WIDTH);
    benchmark::DoNotOptimize(to[0]);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(WIDTH * NUM_BANDS));
}

BENCHMARK(dequantize<tg2_dequantizeScalar>)->Name("dequantize/scalar");
BENCHMARK(dequantize<tg2_dequantize>)->Name("dequantize/simd");
BENCHMARK(dither<tg2_dequantizeDitherScalar>)->Name("dither/scalar");
BENCHMARK(dither<tg2_dequantizeDither>)->Name("dither/simd");
BENCHMARK(convert<1, gr_uint8, tg2_convertOneBandScalar>)->Name("oneBand8/scalar");
BENCHMARK(convert<1, gr_uint8, tg2_convertOneBand>)->Name("oneBand8/simd");
BENCHMARK(convert<3, gr_uint8, tg2_convertThreeBandsScalar>)->Name("threeBands8/scalar");
BENCHMARK(convert<3, gr_uint8, tg2_convertThreeBands>)->Name("threeBands8/simd");
BENCHMARK(convert<3, gr_uint16, tg2_convertThreeBands>)->Name("threeBands16/simd");
BENCHMARK(convert<3, float, tg2_convertThreeBands>)->Name("threeBandsFloat/simd");
BENCHMARK(convert<4, gr_uint8, tg2_convertFourBandsScalar>)->Name("fourBands8/scalar");
BENCHMARK(convert<4, gr_uint8, tg2_convertFourBands>)->Name("fourBands8/simd");

}  // namespace
