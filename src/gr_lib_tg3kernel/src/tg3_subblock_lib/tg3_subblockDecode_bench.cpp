// Subblocks of 64 x 64 samples like those of a subband's: Laplacian around zero. The argument is
// the mean magnitude in 1/16, which gives from 0.2 to some 7 bits a sample.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockDecode.h"
#include "tests/support/tg3_literalSubblock.h"

namespace {

std::vector<gr_int32> laplacian(size_t count, double mean) {
  std::mt19937 random(11);
  std::exponential_distribution<double> magnitude(1 / mean);
  std::vector<gr_int32> samples(count);
  for (gr_int32& sample : samples) {
    const auto rounded = static_cast<gr_int32>(std::lround(magnitude(random)));
    sample = random() % 2 == 0 ? rounded : -rounded;
  }
  return samples;
}

void decodeSubblocks(benchmark::State& state, gr_uint32 bypassPlanes) {
  constexpr gr_uint32 SIZE = 64;
  constexpr size_t NUM_SAMPLES = size_t{SIZE} * SIZE;
  constexpr size_t COUNT = 32;  // of subblocks, so that branches aren't learnt by heart
  const TG3LiteralShape shape = tg3_literalShape(3, SIZE, SIZE);
  const auto all = laplacian(COUNT * SIZE * SIZE, static_cast<double>(state.range(0)) / 16);
  std::vector<std::vector<TG3LiteralPlane>> planes;
  std::vector<std::vector<TG3CodedPlane>> coded(COUNT);
  size_t bytes = 0;
  for (size_t i = 0; i < COUNT; ++i) {
    const auto* from = all.data() + i * NUM_SAMPLES;
    planes.push_back(tg3_literalEncode(shape, {from, from + NUM_SAMPLES}, 31, bypassPlanes));
  }
  for (size_t i = 0; i < COUNT; ++i) {
    for (const TG3LiteralPlane& plane : planes[i]) {
      coded[i].push_back({plane.bytes, plane.hasData, plane.useBypass});
      bytes += plane.bytes.size();
    }
  }
  SubblockDecode decoder;
  std::vector<gr_int32> samples(NUM_SAMPLES);
  gr_int32* component = samples.data();
  const TG3SubblockShape asked = {3, SIZE, SIZE, {0, SIZE - 1}, {0, SIZE - 1}};
  for ([[maybe_unused]] auto _ : state) {
    for (const auto& subblock : coded) {
      if (!GR_SUCCESS(decoder.decode(asked, subblock, 32, std::span(&component, 1), SIZE))) {
        state.SkipWithError("decode failed");
      }
      benchmark::DoNotOptimize(samples.data());
    }
  }
  const auto numSamples = static_cast<double>(COUNT * SIZE * SIZE);
  state.counters["bits/sample"] = 8 * static_cast<double>(bytes) / numSamples;
  state.counters["ns/sample"] =
      benchmark::Counter(numSamples * static_cast<double>(state.iterations()) * 1e-9,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["Mbit/s"] = benchmark::Counter(
      8e-6 * static_cast<double>(bytes) * static_cast<double>(state.iterations()),
      benchmark::Counter::kIsRate);
}

void arithmeticPlanes(benchmark::State& state) { decodeSubblocks(state, 0); }
void rawPlanes(benchmark::State& state) { decodeSubblocks(state, ~gr_uint32{0}); }

BENCHMARK(arithmeticPlanes)->Arg(1)->Arg(4)->Arg(16)->Arg(64)->Arg(256);
BENCHMARK(rawPlanes)->Arg(16)->Arg(256);

}  // namespace
