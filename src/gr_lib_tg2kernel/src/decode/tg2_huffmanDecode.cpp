#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanCells.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

namespace {

/// The place behind a record's marker; nothing when another marker follows at once.
std::optional<TG2RestartState> beginRecord(std::span<const gr_uint8> record) {
  if (record.size() < 2 || record[0] != 0xFF || record[1] != 0xA3) {
    throw GRUtilException(TG2_STATUS_RECORD_MARKER);
  }
  if (record.size() < 3) throw GRUtilException(TG2_STATUS_DECODING);
  TG2RestartState state;
  state.byteInHand = record[2];
  state.offset = 3;
  if (state.byteInHand == 0xFF) {
    if (record.size() < 4) throw GRUtilException(TG2_STATUS_DECODING);
    if (record[3] != 0) return std::nullopt;
    state.offset = 4;
  }
  return state;
}

/// Decodes records by pieces: some whole rows, or a part of one row where rows are long. So the
/// memory doesn't depend on what a file calls a record, and the time only on the bytes that are
/// there and on the wanted cells.
class RecordDecoder {
 public:
  // NOLINTNEXTLINE(*-member-init): the cells are written before they are read
  RecordDecoder(const TG2HuffmanTable& table, std::span<const gr_uint8> record,
                const TG2Rect& recordRect, const TG2Rect& wantedRect,
                std::optional<TG2RestartState> state)
      : m_table(table), m_record(record), m_rect(recordRect), m_wanted(wantedRect), m_state(state) {
    assert(!wantedRect.isEmpty() && recordRect.contains(wantedRect));
  }

  /// Calls `takeRow(x, y, cells, n)` for each run of `n` wanted cells, which together are all.
  template <typename TakeRow>
  void decode(TakeRow&& takeRow) {
    const auto width = static_cast<gr_uint64>(m_rect.getWidth());
    if (width > PIECE) {
      for (gr_int32 y = m_wanted.y0; y <= m_wanted.y1; ++y) {
        for (gr_int64 x = m_wanted.x0; x <= m_wanted.x1; x += gr_int64{PIECE}) {
          const auto count = static_cast<size_t>(std::min<gr_int64>(PIECE, m_wanted.x1 - x + 1));
          decodePiece(positionOf(x, y), count);
          takeRow(static_cast<gr_int32>(x), y, m_cells.data(), count);
        }
      }
      return;
    }
    const auto wantedWidth = static_cast<size_t>(m_wanted.getWidth());
    const auto rows = static_cast<gr_int64>(PIECE / width);
    for (gr_int64 y = m_wanted.y0; y <= m_wanted.y1; y += rows) {
      const auto count = static_cast<size_t>(std::min<gr_int64>(rows, m_wanted.y1 - y + 1));
      decodePiece(positionOf(m_wanted.x0, y),
                  (count - 1) * static_cast<size_t>(width) + wantedWidth);
      for (size_t row = 0; row < count; ++row) {
        takeRow(m_wanted.x0, static_cast<gr_int32>(y + static_cast<gr_int64>(row)),
                m_cells.data() + row * width, wantedWidth);
      }
    }
  }

  /// What is left to go on with.
  std::optional<TG2RestartState> place() const {
    if (m_wanted.x1 == m_rect.x1 && m_wanted.y1 == m_rect.y1) return std::nullopt;
    return m_state;
  }

 private:
  static constexpr gr_uint32 PIECE = 8192;  // cells, which stay in the cache until they are taken

  gr_uint64 positionOf(gr_int64 x, gr_int64 y) const {
    return static_cast<gr_uint64>((y - m_rect.y0) * m_rect.getWidth() + (x - m_rect.x0));
  }

  /// Makes m_cells the `count` cells from `begin` on.
  void decodePiece(gr_uint64 begin, size_t count) {
    if (!m_state) {
      std::fill_n(m_cells.data(), count, 0);
      return;
    }
    while (m_state->position < begin) {
      const gr_uint64 skipped = std::min<gr_uint64>(begin - m_state->position, PIECE);
      tg2_huffmanCells(m_table, m_record, *m_state, m_cells.data(), static_cast<size_t>(skipped));
    }
    std::fill_n(m_cells.data(), count, 0);
    const gr_uint64 done = m_state->position - begin;
    if (done >= count) return;
    tg2_huffmanCells(m_table, m_record, *m_state, m_cells.data() + done,
                     count - static_cast<size_t>(done));
  }

  const TG2HuffmanTable& m_table;
  std::span<const gr_uint8> m_record;
  const TG2Rect& m_rect;
  const TG2Rect& m_wanted;
  std::optional<TG2RestartState> m_state;  // nothing for a record without data
  // Each piece clears what it uses.
  std::array<gr_int32, PIECE + TG2_CELLS_SLACK> m_cells;
};

std::optional<TG2RestartState> startOf(std::span<const gr_uint8> record,
                                       const TG2RestartState* restart) {
  return restart != nullptr ? std::optional(*restart) : beginRecord(record);
}

}  // namespace

std::optional<TG2RestartState> tg2_huffmanDecode(const TG2HuffmanTable& table,
                                                 std::span<const gr_uint8> record, gr_int32* out,
                                                 const TG2Rect& recordRect,
                                                 const TG2Rect& wantedRect,
                                                 const TG2RestartState* restart) {
  assert(out != nullptr);
  RecordDecoder decoder(table, record, recordRect, wantedRect, startOf(record, restart));
  decoder.decode([&out](gr_int32, gr_int32, const gr_int32* cells, size_t n) {
    out = std::copy_n(cells, n, out);
  });
  return decoder.place();
}

std::optional<TG2RestartState> tg2_huffmanDecode(
    const TG2HuffmanTable& table, std::span<const gr_uint8> record,
    const TG2Dequantizer& dequantizer, float step, float* out, size_t stride,
    const TG2Rect& recordRect, const TG2Rect& wantedRect, const TG2RestartState* restart) {
  assert(out != nullptr);
  RecordDecoder decoder(table, record, recordRect, wantedRect, startOf(record, restart));
  decoder.decode([&](gr_int32 x, gr_int32 y, const gr_int32* cells, size_t n) {
    const auto row = static_cast<size_t>(gr_int64{y} - wantedRect.y0);
    const auto column = static_cast<size_t>(gr_int64{x} - wantedRect.x0);
    dequantizer.dequantizeRow(x, y, cells, out + row * stride + column, n, step);
  });
  return decoder.place();
}
