// The decoding of cells with several symbols at once.
//
// The next bits stand in a register, the first in its top bit. The front of it leads to a step of
// the table, whose cells are written as they are: zeros behind a step's last literal lie where the
// next step begins, and don't matter. So no branch depends on what the symbols are, apart from
// those with extra bits.
//
// Bytes are put there ahead of time, only up to a 0xFF that no 0x00 follows: the rule for what
// comes then depends on whose bit was the last one before. A step is taken only while a bit
// remains behind it, so that what needs that rule is left to TG2BitReader.

#include <bit>
#include <cstring>

#include "gr_lib_tg2kernel/src/decode/tg2_bitReader.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanCells.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gr_lib_tg2kernel/src/decode/tg2_huffmanCells_simd.cpp"
#include <hwy/foreach_target.h>
// The target's vectors come after the loop over targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tg2_huffmanCells_simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The bits of a record that come next.
class Window {
 public:
  Window(std::span<const gr_uint8> record, const TG2RestartState& state)
      : m_begin(record.data() + state.offset),
        m_next(m_begin),
        m_end(record.data() + record.size()),
        m_bits(gr_uint64{state.byteInHand} << (56 + state.phase)),
        m_count(8u - state.phase),
        m_first(state.byteInHand) {}

  gr_uint64 bits() const { return m_bits; }
  gr_uint32 count() const { return m_count; }

  /// Puts bits behind those at hand, up to 56 or more unless the record has no more that are safe.
  HWY_INLINE void refill() {
    if (m_end - m_next >= 8) [[likely]] {
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
    refillByBytes();
  }

  /// Takes bits whose number are the lowest 6 of `length`, fewer than count().
  HWY_INLINE void take(gr_uint32 length) {
    m_bits <<= length % 64;
    m_count -= length % 64;
  }

  /// Writes the place of the next bit.
  void place(const gr_uint8* record, TG2RestartState& state) const {
    const gr_uint8* next = m_next;
    for (gr_uint32 bytes = (m_count - 1) / 8; bytes > 0; --bytes) next = before(next);
    state.byteInHand = next == m_begin ? m_first : *before(next);
    state.offset = static_cast<gr_uint64>(next - record);
    state.phase = static_cast<gr_uint8>((0u - m_count) % 8);
  }

 private:
  /// The byte before `next` that counts: a 0x00 that follows 0xFF doesn't.
  const gr_uint8* before(const gr_uint8* next) const {
    --next;
    return *next == 0 && next != m_begin && next[-1] == 0xFF ? next - 1 : next;
  }

  HWY_NOINLINE void refillByBytes() {
    while (m_count <= 56 && m_next != m_end) {
      if (*m_next == 0xFF && (m_end - m_next < 2 || m_next[1] != 0)) return;
      m_bits |= gr_uint64{*m_next} << (56 - m_count);
      m_next += *m_next == 0xFF ? 2 : 1;
      m_count += 8;
    }
  }

  const gr_uint8* m_begin;  // bytes before it belong to no one here
  const gr_uint8* m_next;
  const gr_uint8* m_end;
  gr_uint64 m_bits;   // zeros, or what comes next, behind the first m_count
  gr_uint32 m_count;  // 1 to 63
  gr_uint8 m_first;   // the byte in hand at the beginning
};

/// Writes the cells of a step.
HWY_INLINE void WriteCells(const gr_uint64* cells, gr_int32* out) {
  const hn::CappedTag<gr_int32, TG2HuffmanTable::CELLS> d;
  const hn::Rebind<gr_int8, decltype(d)> narrow;
  const auto* const bytes = reinterpret_cast<const gr_int8*>(cells);
  for (size_t i = 0; i < TG2HuffmanTable::CELLS; i += hn::Lanes(d)) {
    hn::StoreU(hn::PromoteTo(d, hn::LoadU(narrow, bytes + i)), d, out + i);
  }
}

void Decode(const TG2HuffmanTable& table, std::span<const gr_uint8> record, TG2RestartState& state,
            gr_int32* cells, size_t count) {
  const gr_uint32* const steps = table.steps();
  const gr_uint64* const stepCells = table.cells();
  size_t passed = 0;
  while (passed < count) {
    if (state.offset <= record.size()) {
      Window window(record, state);
      for (;;) {
        window.refill();
        const gr_uint64 front = window.bits() >> (64 - TG2HuffmanTable::LOOKUP_BITS);
        const gr_uint32 step = steps[front];
        const size_t beforeLast = (step >> TG2HuffmanTable::BEFORE_LAST_SHIFT) & 0xFF;
        if ((step & TG2HuffmanTable::SPECIAL) == 0 && passed + beforeLast < count) {
          if ((step & TG2HuffmanTable::LENGTH_MASK) >= window.count()) break;
          WriteCells(stepCells + front,
                     cells + passed + (step >> TG2HuffmanTable::BEFORE_LITERAL_SHIFT));
          passed += (step >> TG2HuffmanTable::PASSED_SHIFT) & 0xFF;
          window.take(step & TG2HuffmanTable::LENGTH_MASK);
        } else {
          // One symbol by itself.
          const TG2HuffmanTable::Code code =
              table.codeOf(static_cast<gr_uint32>(window.bits() >> 48));
          const gr_uint32 extraBits = tg2_extraBits(code.symbol);
          if (code.length == 0 || code.length + extraBits >= window.count()) break;
          const gr_uint64 behind = window.bits() << code.length;
          const auto extra = static_cast<gr_uint32>((behind >> 48) >> (16 - extraBits));
          if (tg2_isLiteral(code.symbol)) {
            cells[passed++] = tg2_literalValue(code.symbol, extra);
          } else {
            passed += tg2_runLength(code.symbol, extra);
          }
          window.take(code.length + extraBits);
        }
        if (passed >= count) break;
      }
      window.place(record.data(), state);
    }
    // What is left at a 0xFF or at the end.
    TG2BitReader reader(record, state);
    if (passed < count) {
      const auto [symbol, extra] = reader.readSymbol(table);
      if (tg2_isLiteral(symbol)) {
        cells[passed++] = tg2_literalValue(symbol, extra);
      } else {
        passed += tg2_runLength(symbol, extra);
      }
    }
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
