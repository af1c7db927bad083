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
/// bits 32-47 the LPS probability Qe, bits 48-63 where its successors stand (GRMQModel), bit 0 the
/// more probable symbol.
using GRMQState = gr_uint64;

constexpr gr_uint32 GRMQ_NUM_CONTEXTS = 19;
constexpr gr_uint32 GRMQ_ZERO_CONTEXT = 0;         ///< zero coding without significant neighbours
constexpr gr_uint32 GRMQ_SIGN_CONTEXT = 9;         ///< the first of 5
constexpr gr_uint32 GRMQ_REFINEMENT_CONTEXT = 14;  ///< the first of 3

/// One row of ISO/IEC 15444-1, Table C.2.
struct GRMQTableRow {
  gr_uint16 qe;
  gr_uint8 nextLps;
  gr_uint8 nextMps;
  bool switchMps;
};
extern const std::array<GRMQTableRow, 47> GRMQ_TABLE;

/// What decisions depend on. The states stand beside the contexts, so that one address leads to
/// both.
struct GRMQModel {
  GRMQModel();
  /// Puts the contexts to where they stand before a component's first plane (ISO/IEC 15444-1,
  /// Table D.7).
  void reset();

  std::array<GRMQState, GRMQ_NUM_CONTEXTS> contexts{};
  /// The states that a renormalisation leads to: first after the expected decision, then after
  /// the other one, for each row of the table and each more probable symbol.
  std::array<GRMQState, size_t{4} * 47> successors;
};

/// The bytes of a plane that are still to come.
class GRMQBytes {
 public:
  /// There is at least one byte; they stay the caller's.
  explicit GRMQBytes(std::span<const gr_uint8> bytes)
      : m_next(bytes.data()), m_end(bytes.data() + bytes.size()) {}

  /// The next byte. Past the end come ones: 0xFF, and 0x7F after 0xFF.
  gr_uint32 fetch() {
    m_last = m_next != m_end ? *m_next++ : (m_last == 0xFF ? 0x7F : 0xFF);
    return m_last;
  }

  /// The C register, and the number of bits below its middle.
  struct Bits {
    gr_uint64 c;
    gr_int64 count;
  };
  /// Puts bits under those that have been shifted out: `count` is 0 or less, and as many places
  /// above the middle of C are still zeros.
  Bits refill(Bits bits);

 private:
  const gr_uint8* m_next;
  const gr_uint8* m_end;
  gr_uint32 m_last = 0;  ///< the byte fetched last
};

/// The registers of a decoder. A decision has no branch that depends on it: most outcomes can't be
/// foreseen, and a mispredicted branch costs more than the whole decision. Made to live in the
/// registers of the machine: keep it in a local variable whose address doesn't escape.
class GRMQDecoder {
 public:
  /// Starts on the bytes of a plane, which outlive the decoder.
  explicit GRMQDecoder(GRMQBytes& bytes) : m_bytes(&bytes) {
    const gr_uint64 first = bytes.fetch();
    const gr_uint64 second = bytes.fetch();
    if (first == 0xFF) {
      const gr_uint64 high = (second & 0x80) != 0 ? 0x100 : 0xFF;
      m_c = ((second & 0x7F) | (high << 7)) << 32 | gr_uint64{bytes.fetch()} << 24;
      m_count = 8;
    } else {
      m_c = ((first << 8) | second) << 31;
      m_count = 1;
    }
  }

  /// The next decision in a context.
  gr_uint32 decode(GRMQModel& model, gr_uint32 context) {
    const GRMQState before = model.contexts[context];
    const gr_uint64 qe = before & QE_BITS;
    const gr_uint64 rest = m_a - qe;
    const gr_uint64 above = m_c - qe;
    // In the lower sub-interval, which is the LPS's unless the two are the wrong way round.
    const gr_uint64 lower = m_c < qe ? 1 : 0;
    const gr_uint64 surprise = lower ^ (rest < qe ? 1 : 0);
    const GRMQState renormalized = model.successors[(before >> 48) + surprise];
    m_c = m_c < above ? m_c : above;  // in the lower one the difference wraps
    m_a = either(lower != 0) ? qe : rest;
    const int shift = HALF_BIT - highestBit(m_a);
    m_a <<= shift;
    m_c <<= shift;
    m_count -= shift;
    model.contexts[context] = either(shift != 0) ? renormalized : before;
    if (m_count <= 0) [[unlikely]]
      refill();
    return static_cast<gr_uint32>((before ^ surprise) & 1);
  }

  /// The number of decisions, at most `count`, that all are the more probable symbol of `state`
  /// and leave it as it is. They are taken at once.
  gr_uint32 skipExpected(GRMQState state, gr_uint32 count) {
    const gr_uint64 qe = state & QE_BITS;
    const gr_uint64 room = m_c < m_a - HALF ? m_c : m_a - HALF;
    if (room < qe * count) {
      count = static_cast<gr_uint32>(room >> 32) / static_cast<gr_uint32>(qe >> 32);
    }
    m_a -= qe * count;
    m_c -= qe * count;
    return count;
  }

 private:
  static constexpr gr_uint64 QE_BITS = gr_uint64{0xFFFF} << 32;
  static constexpr gr_uint64 HALF = gr_uint64{0x8000} << 32;

  static constexpr int HALF_BIT = 47;

  static int highestBit(gr_uint64 value) { return 63 ^ __builtin_clzll(value); }

  /// A condition that no branch should stand on, since it can't be foreseen.
  static bool either(bool condition) {
    return __builtin_expect_with_probability(condition ? 1 : 0, 1, 0.5) != 0;
  }

  void refill() {
    const GRMQBytes::Bits bits = m_bytes->refill({m_c, m_count});
    m_c = bits.c;
    m_count = bits.count;
  }

  gr_uint64 m_a = HALF;
  gr_uint64 m_c = 0;
  gr_int64 m_count = 0;  ///< bits below the middle of C
  GRMQBytes* m_bytes;
};
