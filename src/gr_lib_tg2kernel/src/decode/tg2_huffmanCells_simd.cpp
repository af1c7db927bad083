// The decoding of cells with several symbols at once.
//
// The next bits stand in a register, the first in its top bit. The front of it leads to a step of
// the table, whose cells are written as they are: zeros behind a step's last literal lie where the
// next step begins, and don't matter. So no branch depends on what the symbols are, apart from
// those with extra bits.
//
// Bytes are put there ahead of time, only up to a 0xFF that no 0x00 follows: the rule for what
// comes then depends on whose bit was the last one before. A step is taken only while a bit
// remains behind it, so that what needs that rule is left to TG2HuffmanReader.

#include <bit>
#include <cstring>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanCells.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanReader.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg2kernel/src/decode/tg2_huffmanCells_simd.cpp"
#include <hwy/foreach_target.h>
// The target's vectors come after the loop over targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg2_huffmanCells_simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The bits of a record that come next. Kept in registers: nothing that isn't inlined takes its
/// address.
class Window {
 public:
  Window(std::span<const gr_uint8> record, const TG2RestartState& state)
      : m_next(record.data() + state.offset),
        m_bits(gr_uint64{state.byteInHand} << (56 + state.phase)),
        m_count(8u - state.phase) {}

  gr_uint64 bits() const { return m_bits; }
  /// How many of them are there, 1 to 63; behind them are zeros, or what comes next.
  gr_uint32 count() const { return m_count; }
  const gr_uint8* next() const { return m_next; }

  /// Puts bits behind those at hand, up to 56 or more unless the record has no more that are safe.
  HWY_INLINE void refill(const gr_uint8* end) {
    if (end - m_next >= 8) [[likely]] {
      gr_uint64 bytes = 0;
      std::memcpy(&bytes, m_next, sizeof(bytes));
      if constexpr (std::endian::native == std::endian::little) bytes = __builtin_bswap64(bytes);
      constexpr gr_uint64 ONES = 0x0101010101010101u;
      const bool hasFF = (((~bytes) - ONES) & bytes & (ONES << 7)) != 0;
      if (!hasFF) [[likely]] {
        m_bits |= bytes >> m_count;
        m_next += (63 - m_count) / 8;
        m_count |= 56;
        return;
      }
    }
    const Refilled refilled = refillByBytes(m_next, end, m_bits, m_count);
    m_bits = refilled.bits;
    m_next += refilled.bytes;
    m_count = refilled.count;
  }

  /// Takes bits whose number are the lowest 6 of `length`, fewer than count().
  HWY_INLINE void take(gr_uint32 length) {
    m_bits <<= length % 64;
    m_count -= length % 64;
  }

 private:
  /// Small enough to come back in registers.
  struct Refilled {
    gr_uint64 bits;
    gr_uint32 bytes;
    gr_uint32 count;
  };
  HWY_NOINLINE static Refilled refillByBytes(const gr_uint8* next, const gr_uint8* end,
                                             gr_uint64 bits, gr_uint32 count) {
    const gr_uint8* const begin = next;
    while (count < 56 && next != end) {
      const gr_uint8 byte = *next;
      if (byte == 0xFF && (end - next < 2 || next[1] != 0)) break;
      bits |= gr_uint64{byte} << (56 - count);
      next += byte == 0xFF ? 2 : 1;
      count += 8;
    }
    return {bits, static_cast<gr_uint32>(next - begin), count};
  }

  const gr_uint8* m_next;
  gr_uint64 m_bits;
  gr_uint32 m_count;
};

/// The byte before `next` that counts: from `begin` on, what follows 0xFF is the 0x00 that doesn't.
const gr_uint8* ByteBefore(const gr_uint8* begin, const gr_uint8* next) {
  --next;
  return next != begin && next[-1] == 0xFF ? next - 1 : next;
}

/// Moves a place to the next bit of a window that began there.
void MoveTo(Window window, std::span<const gr_uint8> record, TG2RestartState& state) {
  const gr_uint8* const begin = record.data() + state.offset;
  const gr_uint8* next = window.next();
  for (gr_uint32 bytes = (window.count() - 1) / 8; bytes > 0; --bytes) {
    next = ByteBefore(begin, next);
  }
  if (next != begin) state.byteInHand = *ByteBefore(begin, next);
  state.offset = static_cast<gr_uint64>(next - record.data());
  state.phase = static_cast<gr_uint8>((0u - window.count()) % 8);
}

/// Writes the cells of a step.
HWY_INLINE void WriteCells(const gr_uint64* cells, gr_int32* out) {
  const hn::CappedTag<gr_int32, TG2HuffmanTable::CELLS> d;
  const hn::Rebind<gr_int8, decltype(d)> narrow;
  const auto* const bytes = reinterpret_cast<const gr_int8*>(cells);
  for (size_t i = 0; i < TG2HuffmanTable::CELLS; i += hn::Lanes(d)) {
    hn::StoreU(hn::PromoteTo(d, hn::LoadU(narrow, bytes + i)), d, out + i);
  }
}

/// Puts a symbol to its place.
HWY_INLINE void PutSymbol(gr_uint32 symbol, gr_uint32 extra, gr_int32* cells, size_t& passed) {
  if (tg2_isLiteral(symbol)) {
    cells[passed++] = tg2_literalValue(symbol, extra);
  } else {
    passed += tg2_runLength(symbol, extra);
  }
}

/// Decodes while a bit remains behind what is taken. @return the coefficients passed
size_t DecodeAhead(const TG2HuffmanTable& table, std::span<const gr_uint8> record,
                   TG2RestartState& state, gr_int32* cells, size_t passed, size_t count) {
  constexpr gr_uint32 FULL = 56;  // bits, unless the record has no more that are safe
  constexpr gr_uint32 STEPS = (FULL - 1) / TG2HuffmanTable::LOOKUP_BITS;  // with one filling
  const gr_uint32* const steps = table.steps();
  const gr_uint64* const stepCells = table.cells();
  const gr_uint8* const end = record.data() + record.size();
  Window window(record, state);
  for (;;) {
    window.refill(end);
    const bool isFull = window.count() >= FULL;
    gr_uint32 left = isFull ? STEPS : 0;
    for (; left > 0; --left) {
      const gr_uint64 front = window.bits() >> (64 - TG2HuffmanTable::LOOKUP_BITS);
      const gr_uint32 step = steps[front];
      const size_t beforeLast = (step >> TG2HuffmanTable::BEFORE_LAST_SHIFT) & 0xFF;
      if ((step & TG2HuffmanTable::SPECIAL) != 0 || passed + beforeLast >= count) break;
      WriteCells(stepCells + front,
                 cells + passed + (step >> TG2HuffmanTable::BEFORE_LITERAL_SHIFT));
      passed += (step >> TG2HuffmanTable::PASSED_SHIFT) & 0xFF;
      window.take(step);
    }
    if (isFull && left == 0) continue;
    if (passed >= count) break;
    // One symbol by itself.
    window.refill(end);
    const gr_uint32 step = steps[window.bits() >> (64 - TG2HuffmanTable::LOOKUP_BITS)];
    const TG2HuffmanTable::Code code =
        table.codeOf(step, static_cast<gr_uint32>(window.bits() >> 48));
    const gr_uint32 extraBits = tg2_extraBits(code.symbol);
    if (code.length == 0 || code.length + extraBits >= window.count()) break;
    window.take(code.length);
    const auto extra = static_cast<gr_uint32>((window.bits() >> 48) >> (16 - extraBits));
    window.take(extraBits);
    PutSymbol(code.symbol, extra, cells, passed);
  }
  MoveTo(window, record, state);
  return passed;
}

void Decode(const TG2HuffmanTable& table, std::span<const gr_uint8> record, TG2RestartState& state,
            gr_int32* cells, size_t count) {
  TG2HuffmanReader reader(record, state);
  size_t passed = 0;
  while (passed < count) {
    if (state.offset <= record.size()) {
      passed = DecodeAhead(table, record, state, cells, passed, count);
      if (passed >= count) break;
    }
    // A symbol at a 0xFF or at the end.
    const auto [symbol, extra] = reader.readSymbol(table);
    PutSymbol(symbol, extra, cells, passed);
  }
  state.position += passed;
}

}  // namespace HWY_NAMESPACE
}  // namespace tg2_huffmanCells_simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tg2_huffmanCells_simd {
HWY_EXPORT(Decode);
}  // namespace tg2_huffmanCells_simd

void tg2_huffmanCells(const TG2HuffmanTable& table, std::span<const gr_uint8> record,
                      TG2RestartState& state, gr_int32* cells, size_t count) {
  using namespace tg2_huffmanCells_simd;
  HWY_DYNAMIC_DISPATCH(Decode)(table, record, state, cells, count);
}
#endif  // HWY_ONCE
