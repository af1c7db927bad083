#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoder.h"

// ISO/IEC 15444-1, Table C.2.
constexpr std::array<GRMQTableRow, 47> TABLE = {{
    {0x5601, 1, 1, true},    {0x3401, 6, 2, false},   {0x1801, 9, 3, false},
    {0x0AC1, 12, 4, false},  {0x0521, 29, 5, false},  {0x0221, 33, 38, false},
    {0x5601, 6, 7, true},    {0x5401, 14, 8, false},  {0x4801, 14, 9, false},
    {0x3801, 14, 10, false}, {0x3001, 17, 11, false}, {0x2401, 18, 12, false},
    {0x1C01, 20, 13, false}, {0x1601, 21, 29, false}, {0x5601, 14, 15, true},
    {0x5401, 14, 16, false}, {0x5101, 15, 17, false}, {0x4801, 16, 18, false},
    {0x3801, 17, 19, false}, {0x3401, 18, 20, false}, {0x3001, 19, 21, false},
    {0x2801, 19, 22, false}, {0x2401, 20, 23, false}, {0x2201, 21, 24, false},
    {0x1C01, 22, 25, false}, {0x1801, 23, 26, false}, {0x1601, 24, 27, false},
    {0x1401, 25, 28, false}, {0x1201, 26, 29, false}, {0x1101, 27, 30, false},
    {0x0AC1, 28, 31, false}, {0x09C1, 29, 32, false}, {0x08A1, 30, 33, false},
    {0x0521, 31, 34, false}, {0x0441, 32, 35, false}, {0x02A1, 33, 36, false},
    {0x0221, 34, 37, false}, {0x0141, 35, 38, false}, {0x0111, 36, 39, false},
    {0x0085, 37, 40, false}, {0x0049, 38, 41, false}, {0x0025, 39, 42, false},
    {0x0015, 40, 43, false}, {0x0009, 41, 44, false}, {0x0005, 42, 45, false},
    {0x0001, 43, 45, false}, {0x5601, 46, 46, false},
}};

static constexpr std::array<GRMQState, 94> packStates() {
  std::array<GRMQState, 94> states{};
  for (gr_uint64 row = 0; row < TABLE.size(); ++row) {
    for (gr_uint64 mps = 0; mps < 2; ++mps) {
      const gr_uint64 mpsAfterLps = TABLE[row].switchMps ? 1 - mps : mps;
      const gr_uint64 afterLps = 2u * TABLE[row].nextLps + mpsAfterLps;
      const gr_uint64 afterMps = 2u * TABLE[row].nextMps + mps;
      states[2 * row + mps] =
          (gr_uint64{TABLE[row].qe} << 32) | (afterLps << 16) | (afterMps << 8) | mps;
    }
  }
  return states;
}

const std::array<GRMQTableRow, 47> GRMQ_TABLE = TABLE;
constexpr std::array<GRMQState, 94> PACKED_STATES = packStates();
const std::array<GRMQState, 94> GRMQ_STATES = PACKED_STATES;

void grmq_resetContexts(GRMQContexts& contexts) {
  // ISO/IEC 15444-1, Table D.7.
  contexts.fill(GRMQ_STATES[0]);
  contexts[GRMQ_ZERO_CONTEXT] = GRMQ_STATES[2 * 4];
  contexts[17] = GRMQ_STATES[2 * 3];
  contexts[18] = GRMQ_STATES[2 * 46];
}
