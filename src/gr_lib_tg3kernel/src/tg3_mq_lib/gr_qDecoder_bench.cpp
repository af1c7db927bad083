// Decisions of the arithmetic decoder alone, their contexts for free. The argument is the
// probability of a 1 in percent: from 0.08 to 1 bit a decision.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoder.h"
#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoderReference.h"
#include "tests/support/gr_qEncoder.h"

namespace {

constexpr gr_uint32 NUM_DECISIONS = 1 << 18;
constexpr gr_uint32 CONTEXTS = 4;  // used in turn, as neighbours with other surroundings do

std::vector<gr_uint8> encodedDecisions(gr_int64 percent) {
  std::mt19937 random(3);
  GRMQEncoder encoder;
  auto contexts = GRMQEncoder::initialContexts();
  for (gr_uint32 i = 0; i < NUM_DECISIONS; ++i) {
    encoder.encode(contexts[1 + i % CONTEXTS],
                   static_cast<gr_int64>(random() % 100) < percent ? 1 : 0);
  }
  return encoder.finish();
}

void report(benchmark::State& state, size_t bytes) {
  const auto rounds = static_cast<double>(state.iterations());
  state.counters["ns/decision"] = benchmark::Counter(
      1e-9 * NUM_DECISIONS * rounds, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["Mbit/s"] =
      benchmark::Counter(8e-6 * static_cast<double>(bytes) * rounds, benchmark::Counter::kIsRate);
}

void decisions(benchmark::State& state) {
  const auto bytes = encodedDecisions(state.range(0));
  GRMQModel model;
  for ([[maybe_unused]] auto _ : state) {
    model.reset();
    GRMQBytes source(bytes);
    GRMQDecoder decoder(source);
    gr_uint32 sum = 0;
    for (gr_uint32 i = 0; i < NUM_DECISIONS; ++i) sum += decoder.decode(model, 1 + i % CONTEXTS);
    benchmark::DoNotOptimize(sum);
  }
  report(state, bytes.size());
}

void decisionsBitByBit(benchmark::State& state) {
  const auto bytes = encodedDecisions(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    auto contexts = GRMQReferenceDecoder::initialContexts();
    GRMQReferenceDecoder decoder(bytes);
    gr_uint32 sum = 0;
    for (gr_uint32 i = 0; i < NUM_DECISIONS; ++i) {
      sum += decoder.decode(contexts[1 + i % CONTEXTS]);
    }
    benchmark::DoNotOptimize(sum);
  }
  report(state, bytes.size());
}

BENCHMARK(decisions)->Arg(50)->Arg(20)->Arg(5)->Arg(1);
BENCHMARK(decisionsBitByBit)->Arg(50)->Arg(1);

}  // namespace
