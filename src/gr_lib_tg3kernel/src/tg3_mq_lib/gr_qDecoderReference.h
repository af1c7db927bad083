/// @file
/// The arithmetic decoder bit by bit as its rules read, for tests to hold the fast one against.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoder.h"

class GRMQReferenceDecoder {
 public:
  struct Context {
    gr_uint32 row = 0;
    gr_uint32 mps = 0;
  };

  /// Contexts in their initial states.
  static std::array<Context, GRMQ_NUM_CONTEXTS> initialContexts() {
    std::array<Context, GRMQ_NUM_CONTEXTS> contexts{};
    contexts[0].row = 4;
    contexts[17].row = 3;
    contexts[18].row = 46;
    return contexts;
  }

  explicit GRMQReferenceDecoder(std::span<const gr_uint8> bytes) : m_bytes(bytes) {
    fetch();
    const gr_uint32 first = m_byte;
    fetch();
    if (first == 0xFF) {
      m_c = (m_byte & 0x7F) | (((m_byte & 0x80) != 0 ? 0x100u : 0xFFu) << 7);
      fetch();
      m_mask = 0x80;
    } else {
      m_c = ((first << 8) | m_byte) >> 1;
      m_mask = 1;
    }
  }

  gr_uint32 decode(Context& context) {
    const GRMQTableRow& row = GRMQ_TABLE[context.row];
    m_a -= row.qe;
    if (m_c < row.qe) {
      const bool expected = m_a < row.qe;
      m_a = row.qe;
      return adapt(context, expected);
    }
    m_c -= row.qe;
    if (m_a >= 0x8000) return context.mps;
    return adapt(context, m_a >= row.qe);
  }

 private:
  gr_uint32 adapt(Context& context, bool expected) {
    const GRMQTableRow& row = GRMQ_TABLE[context.row];
    const gr_uint32 decision = expected ? context.mps : 1 - context.mps;
    if (!expected && row.switchMps) context.mps = 1 - context.mps;
    context.row = expected ? row.nextMps : row.nextLps;
    while (m_a < 0x8000) shift();
    return decision;
  }

  void shift() {
    m_a <<= 1;
    m_c = (m_c << 1) | ((m_byte & m_mask) != 0 ? 1u : 0u);
    m_mask >>= 1;
    if (m_mask != 0) return;
    m_mask = 0x80;
    const bool afterFF = m_byte == 0xFF;
    fetch();
    if (afterFF) {
      m_c += m_byte >> 7;
      m_mask >>= 1;
    }
  }

  void fetch() {
    if (m_position < m_bytes.size()) {
      m_byte = m_bytes[m_position++];
    } else {
      m_byte = m_byte == 0xFF ? 0x7F : 0xFF;
    }
  }

  std::span<const gr_uint8> m_bytes;
  size_t m_position = 0;
  gr_uint32 m_a = 0x8000;
  gr_uint32 m_c = 0;
  gr_uint32 m_byte = 0;
  gr_uint32 m_mask = 0;
};
