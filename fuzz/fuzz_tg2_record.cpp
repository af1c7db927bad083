// Records of generation 2 of any bytes, decoded by windows as strips do: the fast decoder must give
// what the literal one gives.
//
// The input is the 16 numbers of codes, the symbols, and then width - 1, height - 1 and a byte for
// the windows, before the record itself.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <optional>
#include <span>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "tests/support/tg2_literalHuffman.h"

namespace {

using Place = std::optional<TG2RestartState>;

/// What a decoder gives back, from a status on.
struct Outcome {
  GR_STATUS status = 0;
  std::vector<gr_int32> bins;
  Place place;

  bool operator==(const Outcome&) const = default;
};

template <typename Decode>
Outcome outcomeOf(Decode&& decode) {
  Outcome outcome;
  try {
    decode(outcome);
  } catch (const GRUtilException& exception) {
    outcome = {exception.getStatus(), {}, {}};
  }
  return outcome;
}

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "fuzz_tg2_record: %s\n", what);
  std::abort();
}

void compareByWindows(const TG2HuffmanTable& table, const TG2LiteralTable& literalTable,
                      std::span<const gr_uint8> record, const TG2Rect& rect, gr_uint8 windows) {
  const gr_int32 rows = 1 + (windows & 0x0F);
  const gr_int32 skippedRows = windows >> 4 & 3;
  const gr_int32 skippedColumns = std::min<gr_int32>(windows >> 6, rect.x1);
  Place place;
  for (gr_int32 y0 = skippedRows; y0 <= rect.y1; y0 += rows + skippedRows) {
    const TG2Rect wanted{skippedColumns, y0, rect.x1, std::min(y0 + rows - 1, rect.y1)};
    const TG2RestartState* const from = place ? &*place : nullptr;
    const auto count = static_cast<std::size_t>(wanted.getWidth() * wanted.getHeight());
    const Outcome expected = outcomeOf([&](Outcome& outcome) {
      outcome.bins.resize(count);
      const auto next =
          tg2_literalHuffmanDecode(literalTable, record, outcome.bins.data(), rect, wanted, from);
      if (next) outcome.place = *next;
    });
    const Outcome actual = outcomeOf([&](Outcome& outcome) {
      outcome.bins.resize(count);
      outcome.place = tg2_huffmanDecode(table, record, outcome.bins.data(), rect, wanted, from);
    });
    if (actual != expected) fail("the decoders disagree");
    if (expected.status != 0) return;
    place = expected.place;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t NUM_BITS = 16;
  constexpr std::size_t NUM_SHAPE = 3;
  const std::span<const gr_uint8> input(data, size);
  if (size < NUM_BITS) return 0;
  const auto bits = input.first<NUM_BITS>();
  const auto numSymbols = std::accumulate(bits.begin(), bits.end(), std::size_t{0});
  if (size < NUM_BITS + numSymbols + NUM_SHAPE) return 0;
  const auto symbols = input.subspan(NUM_BITS, numSymbols);
  const auto shape = input.subspan(NUM_BITS + numSymbols, NUM_SHAPE);

  std::optional<TG2LiteralTable> literalTable;
  std::optional<TG2HuffmanTable> table;
  const auto status = [](auto&& make) { return outcomeOf([&](Outcome&) { make(); }).status; };
  const GR_STATUS expected = status([&] { literalTable.emplace(bits, symbols); });
  if (status([&] { table.emplace(bits, symbols); }) != expected) {
    fail("the tables disagree");
  }
  if (expected != 0) return 0;
  compareByWindows(*table, *literalTable, input.subspan(NUM_BITS + numSymbols + NUM_SHAPE),
                   {0, 0, shape[0], shape[1]}, shape[2]);
  return 0;
}
