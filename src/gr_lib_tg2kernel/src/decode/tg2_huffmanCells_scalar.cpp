#include "gr_lib_tg2kernel/src/decode/tg2_huffmanCells.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanReader.h"

void tg2_huffmanCellsScalar(const TG2HuffmanTable& table, std::span<const gr_uint8> record,
                            TG2RestartState& state, gr_int32* cells, size_t count) {
  TG2HuffmanReader reader(record, state);
  size_t passed = 0;
  while (passed < count) {
    const auto [symbol, extra] = reader.readSymbol(table);
    if (tg2_isLiteral(symbol)) {
      cells[passed++] = tg2_literalValue(symbol, extra);
    } else {
      passed += tg2_runLength(symbol, extra);
    }
  }
  state.position += passed;
}
