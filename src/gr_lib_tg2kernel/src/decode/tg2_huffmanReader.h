/// @file
/// TG2HuffmanReader, the bits of a record one by one, by the format's two rules for a byte 0xFF.
#pragma once

#include <span>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTable.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

/// Bytes are read from the most significant bit on. The bit that uses up a byte takes the next one
/// at once, by the rule of what it belongs to. In well-formed records each 0xFF is followed by
/// 0x00, which both rules skip; they differ on damage, and where the next marker is taken ahead.
///
/// All operations throw GRUtilException(8022) rather than take a byte past the end.
class TG2HuffmanReader {
 public:
  /// @param record  the record's bytes from its marker on, and those behind it that may be read
  TG2HuffmanReader(std::span<const gr_uint8> record, TG2RestartState& state)
      : m_record(record), m_state(state) {}

  /// A bit of a code. Behind 0xFF a byte is skipped, whatever it is.
  gr_uint32 codeBit() {
    const gr_uint32 bit = takeBit();
    if (m_state.phase == 8) {
      m_state.phase = 0;
      m_state.byteInHand = at(m_state.offset++);
      if (m_state.byteInHand == 0xFF) ++m_state.offset;
    }
    return bit;
  }

  /// A bit that follows a code. Behind 0xFF only 0x00 is skipped; before any other byte the 0xFF
  /// itself is read again and again, so that no marker is passed.
  gr_uint32 extraBit() {
    const gr_uint32 bit = takeBit();
    if (m_state.phase == 8) {
      m_state.phase = 0;
      m_state.byteInHand = at(m_state.offset);
      if (m_state.byteInHand != 0xFF) {
        ++m_state.offset;
      } else if (at(m_state.offset + 1) == 0) {
        m_state.offset += 2;
      }
    }
    return bit;
  }

  struct Symbol {
    gr_uint32 symbol;
    gr_uint32 extra;  ///< the bits behind its code
  };
  /// The next symbol. Throws GRUtilException(8022) too when an unused branch of the code is met.
  Symbol readSymbol(const TG2HuffmanTable& table) {
    gr_uint32 code = 0;
    for (gr_uint32 length = 1; length <= TG2HuffmanTable::LONGEST_CODE; ++length) {
      code = code << 1 | codeBit();
      if (!table.isCode(code, length)) continue;
      const gr_uint32 symbol =
          table.symbolAt(code << (TG2HuffmanTable::LONGEST_CODE - length), length);
      gr_uint32 extra = 0;
      for (gr_uint32 left = tg2_extraBits(symbol); left > 0; --left) {
        extra = extra << 1 | extraBit();
      }
      return {symbol, extra};
    }
    throw GRUtilException(TG2_STATUS_DECODING);
  }

 private:
  gr_uint32 takeBit() { return (gr_uint32{m_state.byteInHand} >> (7 - m_state.phase++)) & 1; }

  gr_uint8 at(gr_uint64 offset) const {
    if (offset >= m_record.size()) throw GRUtilException(TG2_STATUS_DECODING);
    return m_record[static_cast<size_t>(offset)];
  }

  std::span<const gr_uint8> m_record;
  TG2RestartState& m_state;
};
