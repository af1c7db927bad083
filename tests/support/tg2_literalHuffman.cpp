#include "tests/support/tg2_literalHuffman.h"

#include <algorithm>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

namespace {

constexpr gr_uint16 UNUSED = 666;

/// The place in a record, and the two ways to take a bit.
class Bits {
 public:
  Bits(std::span<const gr_uint8> record, const TG2RestartState& state)
      : m_record(record), m_state(state) {}

  const TG2RestartState& state() const { return m_state; }

  int inCode() {
    const int bit = current();
    if (++m_state.phase == 8) {
      m_state.phase = 0;
      m_state.byteInHand = at(m_state.offset);
      m_state.offset += 1;
      if (m_state.byteInHand == 0xFF) m_state.offset += 1;
    }
    return bit;
  }

  int inExtra() {
    const int bit = current();
    if (++m_state.phase == 8) {
      m_state.phase = 0;
      m_state.byteInHand = at(m_state.offset);
      if (m_state.byteInHand == 0xFF) {
        if (at(m_state.offset + 1) == 0x00) m_state.offset += 2;
      } else {
        m_state.offset += 1;
      }
    }
    return bit;
  }

  gr_uint8 at(gr_uint64 offset) const {
    if (offset >= m_record.size()) throw GRUtilException(TG2_STATUS_DECODING);
    return m_record[offset];
  }

 private:
  int current() const { return m_state.byteInHand >> (7 - m_state.phase) & 1; }

  std::span<const gr_uint8> m_record;
  TG2RestartState m_state;
};

/// What one symbol stands for: a literal, or a run of zeros.
struct Meaning {
  bool literal;
  gr_int64 number;
};

int walk(const TG2LiteralTable& table, Bits& bits) {
  int node = 0;
  for (;;) {
    node = bits.inCode() ? table.one[node] : table.zero[node];
    if (node > 512) throw GRUtilException(TG2_STATUS_DECODING);
    if (node >= 256) return node - 256;
  }
}

Meaning readSymbol(const TG2LiteralTable& table, Bits& bits) {
  const auto extra = [&bits](int count) {
    int value = 0;
    while (count-- > 0) value = value * 2 + bits.inExtra();
    return value;
  };
  const auto withSign = [](int value) { return value >= 32768 ? value - 65536 : value; };
  const int symbol = walk(table, bits);
  if (symbol <= 100) return {false, symbol};
  if (symbol == 101) return {true, extra(8)};
  if (symbol == 102) return {true, -extra(8)};
  if (symbol == 103) return {true, withSign(extra(16))};
  if (symbol == 104) return {true, -withSign(extra(16))};
  if (symbol == 105) return {false, extra(8)};
  if (symbol == 106) return {false, extra(16)};
  return {true, symbol - 180};
}

}  // namespace

TG2LiteralTable::TG2LiteralTable(std::span<const gr_uint8, 16> bits,
                                 std::span<const gr_uint8> huffval) {
  std::vector<int> sizes;
  for (int length = 1; length <= 16; ++length) sizes.insert(sizes.end(), bits[length - 1], length);
  if (sizes.size() > 256) throw GRUtilException(TG2_STATUS_DECODING);
  std::vector<gr_uint32> codes;
  gr_uint32 code = 0;
  for (size_t k = 0; k < sizes.size(); ++k) {
    if (k > 0) code = (code + 1) << (sizes[k] - sizes[k - 1]);
    if (code >> sizes[k] != 0) throw GRUtilException(TG2_STATUS_DECODING);
    codes.push_back(code);
  }
  zero.fill(UNUSED);
  one.fill(UNUSED);
  int nextFree = 1;
  for (size_t k = 0; k < codes.size(); ++k) {
    int node = 0;
    for (gr_uint32 mask = 1u << (sizes[k] - 1); mask > 1; mask >>= 1) {
      gr_uint16& child = (codes[k] & mask) != 0 ? one[node] : zero[node];
      if (child == UNUSED) {
        if (nextFree == 256) throw GRUtilException(TG2_STATUS_DECODING);
        child = static_cast<gr_uint16>(nextFree++);
      }
      node = child;
    }
    ((codes[k] & 1) != 0 ? one[node] : zero[node]) = static_cast<gr_uint16>(256 + huffval[k]);
  }
}

std::unique_ptr<TG2RestartState> tg2_literalHuffmanDecode(const TG2LiteralTable& table,
                                                          std::span<const gr_uint8> record,
                                                          gr_int32* out, const TG2Rect& recordRect,
                                                          const TG2Rect& wantedRect,
                                                          const TG2RestartState* restart) {
  TG2RestartState start;
  if (restart != nullptr) {
    start = *restart;
  } else {
    if (record.size() < 2 || record[0] != 0xFF || record[1] != 0xA3) {
      throw GRUtilException(TG2_STATUS_RECORD_MARKER);
    }
    const Bits bytes(record, {});
    start.byteInHand = bytes.at(2);
    start.offset = 3;
    if (start.byteInHand == 0xFF) {
      if (bytes.at(3) != 0) return nullptr;
      start.offset = 4;
    }
  }
  Bits bits(record, start);
  gr_int64 position = static_cast<gr_int64>(start.position);
  const gr_int64 recordW = recordRect.getWidth();
  const gr_int64 outW = wantedRect.getWidth();
  gr_int64 rowStart = (gr_int64{wantedRect.y0} - recordRect.y0) * recordW +
                      (gr_int64{wantedRect.x0} - recordRect.x0);
  gr_int64 rowEnd = rowStart + outW;
  // Counted, not pointed with: it runs past the end.
  gr_int64 o = 0;
  const gr_int64 end = outW * wantedRect.getHeight();
  while (o < end) {
    while (position < rowStart) {
      const Meaning meaning = readSymbol(table, bits);
      position += meaning.literal ? 1 : meaning.number;
    }
    while (position > rowEnd) {
      o += outW;
      rowStart += recordW;
      rowEnd += recordW;
    }
    if (position >= rowStart) {
      o += position - rowStart;
      if (o < end) {
        while (position < rowEnd) {
          const Meaning meaning = readSymbol(table, bits);
          if (meaning.literal) {
            out[o++] = static_cast<gr_int32>(meaning.number);
            position += 1;
          } else if (meaning.number > 0) {
            const gr_int64 room = rowEnd - position;
            position += meaning.number;
            o += std::min(meaning.number, room);
          }
        }
        rowStart += recordW;
        rowEnd += recordW;
        while (position > rowEnd) {
          o += outW;
          rowStart += recordW;
          rowEnd += recordW;
        }
      }
    }
  }
  if (wantedRect.x1 == recordRect.x1 && wantedRect.y1 == recordRect.y1) return nullptr;
  auto state = std::make_unique<TG2RestartState>(bits.state());
  state->position = static_cast<gr_uint64>(position);
  return state;
}
