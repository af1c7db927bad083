#include "tests/support/gr_qEncoder.h"

std::array<GRMQEncoder::Context, GRMQ_NUM_CONTEXTS> GRMQEncoder::initialContexts() {
  std::array<Context, GRMQ_NUM_CONTEXTS> contexts{};
  contexts[0].row = 4;
  contexts[17].row = 3;
  contexts[18].row = 46;
  return contexts;
}

void GRMQEncoder::encode(Context& context, gr_uint32 decision) {
  const GRMQTableRow& row = GRMQ_TABLE[context.row];
  m_a -= row.qe;
  if (decision == context.mps) {
    if ((m_a & 0x8000) != 0) {
      m_c += row.qe;
      return;
    }
    if (m_a < row.qe) {
      m_a = row.qe;
    } else {
      m_c += row.qe;
    }
    context.row = row.nextMps;
  } else {
    if (m_a < row.qe) {
      m_c += row.qe;
    } else {
      m_a = row.qe;
    }
    if (row.switchMps) context.mps = 1 - context.mps;
    context.row = row.nextLps;
  }
  renormalize();
}

void GRMQEncoder::renormalize() {
  do {
    m_a <<= 1;
    m_c <<= 1;
    if (--m_count == 0) byteOut();
  } while ((m_a & 0x8000) == 0);
}

void GRMQEncoder::byteOut() {
  if (m_bytes.back() != 0xFF && (m_c & 0x8000000) != 0) {
    ++m_bytes.back();
    m_c &= 0x7FFFFFF;
  }
  if (m_bytes.back() == 0xFF) {  // a bit of room for a carry to come
    m_bytes.push_back(static_cast<gr_uint8>(m_c >> 20));
    m_c &= 0xFFFFF;
    m_count = 7;
  } else {
    m_bytes.push_back(static_cast<gr_uint8>(m_c >> 19));
    m_c &= 0x7FFFF;
    m_count = 8;
  }
}

std::vector<gr_uint8> GRMQEncoder::finish() {
  const gr_uint32 end = m_c + m_a;
  m_c |= 0xFFFF;
  if (m_c >= end) m_c -= 0x8000;
  for (int i = 0; i < 2; ++i) {
    m_c <<= m_count;
    byteOut();
  }
  if (m_bytes.back() == 0xFF && m_bytes.size() > 2) m_bytes.pop_back();
  return {m_bytes.begin() + 1, m_bytes.end()};
}
