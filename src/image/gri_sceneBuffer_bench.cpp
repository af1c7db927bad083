// Operations on the window of a buffer of 2048 x 256 pixels of 3 x 8 bits; the rates are bytes of
// samples per second.

#include <benchmark/benchmark.h>

#include <vector>

#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

constexpr gr_uint32 NUM_COLS = 2048;
constexpr gr_uint32 NUM_ROWS = 256;

const GRIPixel& rgb() {
  static const GRIPixel pixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);
  return pixel;
}

struct Fixture {
  Fixture() : block(size_t{NUM_COLS} * NUM_ROWS * 3, 0x5A) {}
  GRISceneBuffer buffer{rgb(), NUM_COLS + 1, NUM_ROWS, 0, 0, NUM_COLS, NUM_ROWS, nullptr};
  GRISceneBuffer other{rgb(), NUM_COLS + 1, NUM_ROWS, 1, 0, NUM_COLS, NUM_ROWS, nullptr};
  std::vector<gr_uint8> block;
};

/// Repeats an operation on the fixture.
template <typename Operation>
void repeat(benchmark::State& state, Operation&& operation) {
  Fixture fixture;
  for ([[maybe_unused]] auto _ : state) {
    if (!GR_SUCCESS(operation(fixture))) state.SkipWithError("failed");
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<gr_int64>(fixture.block.size()) *
                          static_cast<gr_int64>(state.iterations()));
}

void BM_Window(benchmark::State& state) {
  const Fixture fixture;
  for ([[maybe_unused]] auto _ : state) {
    const GRISceneBuffer window(fixture.buffer, 0, 64, NUM_COLS, 64);
    benchmark::DoNotOptimize(window.getWindowBandData(2));
  }
}

void BM_ImportBIP(benchmark::State& state) {
  repeat(state, [](Fixture& f) { return f.buffer.importDataBIP(f.block.data()); });
}

void BM_ImportBSQ(benchmark::State& state) {
  repeat(state, [](Fixture& f) {
    return f.buffer.importDataBSQ(static_cast<const void*>(f.block.data()));
  });
}

void BM_ExportBIP(benchmark::State& state) {
  repeat(state, [](Fixture& f) {
    void* data = f.block.data();
    return f.buffer.exportDataBIP(data);
  });
}

void BM_Copy(benchmark::State& state) {
  repeat(state, [](Fixture& f) { return f.buffer.copyFrom(f.other); });
}

/// Every other 16 x 16 pixels are no data.
void BM_CopyData(benchmark::State& state) {
  repeat(state, [first = true](Fixture& f) mutable {
    for (gr_uint32 row = 0; first && row < NUM_ROWS; ++row) {
      for (gr_uint32 col = 0; col < NUM_COLS; ++col) {
        auto* sample = static_cast<gr_uint8*>(f.other.getSampleInWindow(col, row, 1));
        *sample = static_cast<gr_uint8>((col / 16 + row / 16) % 2);
      }
    }
    first = false;
    return f.buffer.copyDataFrom(f.other, rgb());
  });
}

void BM_MergeExact(benchmark::State& state) {
  const GRIPixel& noData = rgb();
  repeat(state, [&](Fixture& f) { return f.buffer.merge(GRI_MERGE_EXACT, f.other, &noData); });
}

void BM_MergeFuzzy(benchmark::State& state) {
  const GRIPixel& noData = rgb();
  repeat(state, [&](Fixture& f) { return f.buffer.merge(GRI_MERGE_FUZZY, f.other, &noData); });
}

void BM_Fill(benchmark::State& state) {
  repeat(state, [](Fixture& f) { return f.buffer.fill(rgb()); });
}

BENCHMARK(BM_Window);
BENCHMARK(BM_ImportBIP);
BENCHMARK(BM_ImportBSQ);
BENCHMARK(BM_ExportBIP);
BENCHMARK(BM_Copy);
BENCHMARK(BM_CopyData);
BENCHMARK(BM_MergeExact);
BENCHMARK(BM_MergeFuzzy);
BENCHMARK(BM_Fill);

}  // namespace
