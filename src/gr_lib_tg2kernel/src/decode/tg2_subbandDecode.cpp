// How TG2Subband fills a leaf from the file.

#include <algorithm>
#include <cassert>
#include <optional>

#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"
#include "gr_lib_tg2kernel/src/decode/tg2_dequantizer.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTableCache.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"
#include "gr_lib_tg2kernel/src/decode/tg2_subband.h"
#include "gr_lib_tg2kernel/src/decode/tg2_throw.h"

namespace {

// The records of one band of a block that meet a window, straight into a plane.
class BandDecoder {
 public:
  /// @param window  a part of the block that isn't empty
  /// @param out     the sample at its upper left corner
  BandDecoder(TG2Band& band, const TG2Rect& block, const TG2Rect& window, float* out, size_t stride)
      : m_band(band), m_block(block), m_window(window), m_out(out), m_stride(stride) {
    m_band.getRecordSize(m_recordWidth, m_recordHeight);
  }

  /// @param key  names the band; the record's number is filled in
  void decode(const TG2Dequantizer& dequantizer, float step, HDRestartInfo::Key key,
              TG2RestartList& restartList, TG2HuffmanTableCache& tables,
              GRIInterruptDelegate* interrupt) {
    const TG2HuffmanTable& table = tables.get(m_band.getBits(), m_band.getHuffval());
    const gr_int64 across = (m_block.getWidth() + m_recordWidth - 1) / m_recordWidth;
    const gr_int64 firstCol = (gr_int64{m_window.x0} - m_block.x0) / m_recordWidth;
    const gr_int64 lastCol = (gr_int64{m_window.x1} - m_block.x0) / m_recordWidth;
    const gr_int64 firstRow = (gr_int64{m_window.y0} - m_block.y0) / m_recordHeight;
    const gr_int64 lastRow = (gr_int64{m_window.y1} - m_block.y0) / m_recordHeight;
    for (gr_int64 row = firstRow; row <= lastRow; ++row) {
      for (gr_int64 col = firstCol; col <= lastCol; ++col) {
        key.record = static_cast<gr_uint32>(row * across + col);
        assert(key.record < m_band.getNumRecords());
        std::span<const gr_uint8> data;
        tg2_throwIfFailed(m_band.getRecord(key.record, data));
        tg2_poll(interrupt);
        const TG2Rect record = recordRect(col, row);
        const TG2Rect wanted = record.intersect(m_window);
        float* const out = m_out + static_cast<size_t>(wanted.y0 - m_window.y0) * m_stride +
                           (wanted.x0 - m_window.x0);
        const auto place = tg2_huffmanDecode(table, data, dequantizer, step, out, m_stride, record,
                                             wanted, restartList.find(key));
        // Where only columns are left, no strip below goes on.
        restartList.update(key, wanted.y1 == record.y1 ? std::nullopt : place);
        tg2_poll(interrupt);
      }
    }
  }

 private:
  // The last record of a row or column ends with the block.
  TG2Rect recordRect(gr_int64 col, gr_int64 row) const {
    const gr_int64 x0 = m_block.x0 + col * m_recordWidth;
    const gr_int64 y0 = m_block.y0 + row * m_recordHeight;
    return {static_cast<gr_int32>(x0), static_cast<gr_int32>(y0),
            static_cast<gr_int32>(std::min<gr_int64>(x0 + m_recordWidth - 1, m_block.x1)),
            static_cast<gr_int32>(std::min<gr_int64>(y0 + m_recordHeight - 1, m_block.y1))};
  }

  TG2Band& m_band;
  TG2Rect m_block;
  TG2Rect m_window;
  float* m_out;
  size_t m_stride;
  gr_int32 m_recordWidth = 1;
  gr_int32 m_recordHeight = 1;
};

}  // namespace

void TG2Subband::decodeLeaf(const TG2DBInfo& db, gr_int32 level, TG2RestartList& restartList,
                            TG2HuffmanTableCache& tables, GRIInterruptDelegate* interrupt) {
  const auto index = static_cast<gr_uint32>(m_index);
  if (m_window.isEmpty() || index >= db.getNumSubbands()) return;
  TG2SubbandInfo* const subband = db.getSubband(index);
  if (subband == nullptr) return;

  Array2D<float>* planes = this;
  TG2Rect planesWindow = m_window;
  if (m_target != nullptr) {
    if (!m_target->hasPlanes()) m_target->makePlanes(false);
    planes = m_target;
    planesWindow = m_target->m_window;
  } else {
    makePlanes(false);
  }
  const auto sampleAt = [&](gr_uint32 band, const TG2Rect& rect) {
    return planes->getRow(band, rect.y0 - planesWindow.y0) + (rect.x0 - planesWindow.x0);
  };
  const auto clear = [&](gr_uint32 band, const TG2Rect& rect) {
    float* row = sampleAt(band, rect);
    for (gr_int64 y = 0; y < rect.getHeight(); ++y, row += planes->getStride()) {
      std::fill_n(row, rect.getWidth(), 0.0F);
    }
  };

  // Blocks write all of what they cover.
  const bool isCovered =
      subband->getSupport().contains(m_window) &&
      subband->getNumBlocks() == gr_uint64{subband->getNumRows()} * subband->getNumCols();
  for (gr_uint32 band = 0; band < m_numBands && !isCovered; ++band) clear(band, m_window);

  const float normalizer = tg2_levelNormalizer(level);
  const TG2NoiseOrigin origin = {subband->getNoiseOriginX(), subband->getNoiseOriginY()};
  TG2BlockIterator blocks(*subband);
  tg2_throwIfFailed(blocks.start(m_window));
  while (TG2Block* const block = blocks.getBlock()) {
    const TG2Rect window = block->getRect().intersect(m_window);
    assert(!window.isEmpty());
    for (gr_uint32 band = 0; band < m_numBands; ++band) {
      TG2Band* const coded = block->getBand(band);
      if (coded == nullptr || coded->isEmpty()) {
        clear(band, window);
        continue;
      }
      const bool hasNoise = db.addsNoise() && band == 0;
      const TG2Dequantizer dequantizer(window, hasNoise ? &origin : nullptr);
      const float step = tg2_bandStep(normalizer, m_gain, coded->getBinWidth());
      BandDecoder(*coded, block->getRect(), window, sampleAt(band, window), planes->getStride())
          .decode(dequantizer, step, {band, block->getIndex(), index, 0}, restartList, tables,
                  interrupt);
    }
    tg2_throwIfFailed(blocks.next());
  }
}
