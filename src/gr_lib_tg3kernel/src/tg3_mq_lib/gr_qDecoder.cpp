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

static constexpr GRMQState stateOf(gr_uint64 row, gr_uint64 mps) {
  return ((4 * row + 2 * mps) << 48) | (gr_uint64{TABLE[row].qe} << 32) | mps;
}

static constexpr decltype(GRMQModel::successors) allSuccessors() {
  decltype(GRMQModel::successors) successors{};
  for (size_t row = 0; row < TABLE.size(); ++row) {
    for (gr_uint64 mps = 0; mps < 2; ++mps) {
      const gr_uint64 mpsAfterLps = TABLE[row].switchMps ? 1 - mps : mps;
      successors[4 * row + 2 * mps] = stateOf(TABLE[row].nextMps, mps);
      successors[4 * row + 2 * mps + 1] = stateOf(TABLE[row].nextLps, mpsAfterLps);
    }
  }
  return successors;
}

const std::array<GRMQTableRow, 47> GRMQ_TABLE = TABLE;
constexpr decltype(GRMQModel::successors) SUCCESSORS = allSuccessors();

GRMQModel::GRMQModel() : successors(SUCCESSORS) { reset(); }

void GRMQModel::reset() {
  contexts.fill(stateOf(0, 0));
  contexts[GRMQ_ZERO_CONTEXT] = stateOf(4, 0);
  contexts[17] = stateOf(3, 0);
  contexts[18] = stateOf(46, 0);
}

GRMQBytes::Bits GRMQBytes::refill(Bits bits) {
  if (m_end - m_next >= 4 && m_last != 0xFF) {
    const gr_uint64 four = (gr_uint64{m_next[0]} << 24) | (gr_uint64{m_next[1]} << 16) |
                           (gr_uint64{m_next[2]} << 8) | m_next[3];
    // A carry could come after any of the first three, were it 0xFF.
    const gr_uint64 inverse = ~four & 0xFFFFFF00;
    if (((inverse - 0x01010100) & four & 0x80808000) == 0) {
      bits.c += four << -bits.count;
      bits.count += 32;
      m_last = m_next[3];
      m_next += 4;
      return bits;
    }
  }
  while (bits.count <= 0) {
    const int fresh = m_last == 0xFF ? 7 : 8;
    bits.c += gr_uint64{fetch()} << (32 - fresh - bits.count);
    bits.count += fresh;
  }
  return bits;
}
