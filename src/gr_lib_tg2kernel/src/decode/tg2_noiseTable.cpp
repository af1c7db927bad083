#include "gr_lib_tg2kernel/src/decode/tg2_noiseTable.h"

namespace {

using Table = std::array<std::array<float, TG2_NOISE_SIZE>, TG2_NOISE_SIZE>;

constexpr gr_uint32 FIRST = 96964;
constexpr gr_int32 LARGEST = 250000;  // in millionths

/// Spreads the bits of a number over all of its result.
constexpr gr_uint32 mix(gr_uint32 h) {
  h = (h ^ (h >> 16)) * 0x85EBCA6Bu;
  h = (h ^ (h >> 13)) * 0xC2B2AE35u;
  return h ^ (h >> 16);
}

constexpr Table makeTable() {
  Table table{};
  gr_uint32 n = FIRST;
  for (auto& row : table) {
    for (float& value : row) {
      const gr_uint64 scaled = gr_uint64{mix(n++)} * (2 * LARGEST + 1);
      value = static_cast<float>((static_cast<gr_int32>(scaled >> 32) - LARGEST) / 1000000.0);
    }
  }
  return table;
}

}  // namespace

constexpr Table tg2_noiseTable = makeTable();
