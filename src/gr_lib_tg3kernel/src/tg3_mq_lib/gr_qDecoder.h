/// @file
/// The adaptive binary arithmetic decoder of JPEG 2000 (ISO/IEC 15444-1, Annex C) as the bit-plane
/// coder of TG3 uses it: no markers, a carry taken from any byte after 0xFF, and ones past the end.
///
/// By the rules the decoder shifts single bits from the current byte into its C register, fetches
/// a byte as soon as the last one is used up, and adds the top bit of a byte that follows 0xFF to
/// C as a carry. Here C is the upper half of a 64-bit register, whose lower half holds the bits
/// that come next: shifting is one instruction, and the comparisons see the upper half as it would
/// be. Bits are put there ahead of time only where no carry can come between them, since a carry
/// counts from the moment its byte is fetched.
#pragma once

#include <array>
#include <bit>
#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// The state of one context, packed so that a decision needs one load:
/// bits 32-47 the LPS probability Qe, bits 16-23 and 8-15 the states after a decision against and
/// for the expectation, bit 0 the more probable symbol.
using GRMQState = gr_uint64;

constexpr gr_uint32 GRMQ_NUM_CONTEXTS = 19;
constexpr gr_uint32 GRMQ_ZERO_CONTEXT = 0;         ///< zero coding without significant neighbours
constexpr gr_uint32 GRMQ_SIGN_CONTEXT = 9;         ///< the first of 5
constexpr gr_uint32 GRMQ_REFINEMENT_CONTEXT = 14;  ///< the first of 3

/// Contexts as they stand before a component's first plane (ISO/IEC 15444-1, Table D.7).
using GRMQContexts = std::array<GRMQState, GRMQ_NUM_CONTEXTS>;

/// One row of ISO/IEC 15444-1, Table C.2.
struct GRMQTableRow {
  gr_uint16 qe;
  gr_uint8 nextLps;
  gr_uint8 nextMps;
  bool switchMps;
};
extern const std::array<GRMQTableRow, 47> GRMQ_TABLE;

/// Every state, at 2 x row + more probable symbol.
extern const std::array<GRMQState, 94> GRMQ_STATES;

void grmq_resetContexts(GRMQContexts& contexts);

/// The registers of a decoder over the bytes of one plane. Made to live in the registers of the
/// machine: copy it into a local variable, and don't let that one's address escape.
class GRMQDecoder {
 public:
  /// Starts on the bytes of a plane, which stay the caller's; there is at least one.
  explicit GRMQDecoder(std::span<const gr_uint8> bytes)
      : m_next(bytes.data()), m_end(bytes.data() + bytes.size()) {
    const gr_uint64 first = fetch();
    const gr_uint64 second = fetch();
    if (first == 0xFF) {
      m_c = (((second & 0x7F) | ((second & 0x80) != 0 ? gr_uint64{0x100} << 7 : 0xFF << 7)) << 32) +
            (gr_uint64{fetch()} << 24);
      m_count = 8;
    } else {
      m_c = ((first << 8) | second) << 31;
      m_count = 1;
    }
  }

  /// The next decision. Free of branches apart from the refill: for contexts whose outcome is
  /// hard to foresee.
  gr_uint32 decode(GRMQState& state) {
    const GRMQState before = state;
    const gr_uint64 qe = before & QE_BITS;
    const gr_uint64 rest = m_a - qe;
    const bool lower = m_c < qe;       // in the sub-interval of the LPS, unless exchanged
    const bool exchanged = rest < qe;  // the sub-intervals are the wrong way round
    const gr_uint64 surprise = static_cast<gr_uint64>(lower != exchanged);
    const GRMQState renormalized = GRMQ_STATES[(before >> (8 + 8 * surprise)) & 0xFF];
    m_c = lower ? m_c : m_c - qe;
    m_a = lower ? qe : rest;
    const int shift = std::countl_zero(m_a) - 16;
    m_a <<= shift;
    m_c <<= shift;
    m_count -= shift;
    state = shift != 0 ? renormalized : before;
    if (m_count <= 0) [[unlikely]]
      refill();
    return static_cast<gr_uint32>((before ^ surprise) & 1);
  }

  /// The number of decisions, at most `count`, that all are the more probable symbol of `state`
  /// and leave it as it is. They are taken at once.
  gr_uint32 skipExpected(GRMQState state, gr_uint32 count) {
    const gr_uint64 qe = state & QE_BITS;
    const gr_uint64 room = m_c < m_a - HALF ? m_c : m_a - HALF;
    if (room < qe * count)
      count = static_cast<gr_uint32>(room >> 32) / static_cast<gr_uint32>(qe >> 32);
    m_a -= qe * count;
    m_c -= qe * count;
    return count;
  }

 private:
  static constexpr gr_uint64 QE_BITS = gr_uint64{0xFFFF} << 32;
  static constexpr gr_uint64 HALF = gr_uint64{0x8000} << 32;

  /// The next byte. Past the end come ones: 0xFF, and 0x7F after 0xFF.
  gr_uint32 fetch() {
    m_last = m_next != m_end ? *m_next++ : (m_last == 0xFF ? 0x7F : 0xFF);
    return m_last;
  }

  /// Puts bits under those that have been shifted out: `m_count` is 0 or less, and as many places
  /// above the middle of C are still zeros.
  void refill() {
    if (m_end - m_next >= 4 && m_last != 0xFF) {
      const gr_uint64 four = (gr_uint64{m_next[0]} << 24) | (gr_uint64{m_next[1]} << 16) |
                             (gr_uint64{m_next[2]} << 8) | m_next[3];
      // Is one of the first three 0xFF?
      const gr_uint64 inverse = ~four & 0xFFFFFF00;
      if (((inverse - 0x01010100) & four & 0x80808000) == 0) {
        m_c += four << -m_count;
        m_count += 32;
        m_last = m_next[3];
        m_next += 4;
        return;
      }
    }
    while (m_count <= 0) {
      const bool carries = m_last == 0xFF;
      const int bits = carries ? 7 : 8;
      m_c += gr_uint64{fetch()} << (32 - bits - m_count);
      m_count += bits;
    }
  }

  gr_uint64 m_a = HALF;
  gr_uint64 m_c = 0;
  int m_count = 0;       ///< bits below the middle of C
  gr_uint32 m_last = 0;  ///< the byte fetched last
  const gr_uint8* m_next;
  const gr_uint8* m_end;
};
