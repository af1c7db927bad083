#include "gr_lib_tg2kernel/src/decode/tg2_decoder.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <new>

#include "gr_lib_tg2kernel/src/decode/tg2_convert.h"
#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_sceneBuffer.h"

namespace {

// The last place of a line of `size` samples `level` halvings down, or doublings up; of those that
// 32 bits can name.
gr_int32 lastAtLevel(gr_uint32 size, gr_int32 level) {
  const gr_int64 whole = size;
  const gr_int64 last = level < 0 ? (whole << -level) - 1 : (whole - 1) >> level;
  return static_cast<gr_int32>(std::min<gr_int64>(last, std::numeric_limits<gr_int32>::max()));
}

// Runs what may throw.
template <typename Body>
GR_STATUS statusOf(Body&& body) {
  try {
    body();
    return GR_STATUS_OK;
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  } catch (const std::bad_alloc&) {
    return GR_STATUS_NO_MEMORY;
  } catch (...) {
    return TG2_STATUS_UNKNOWN_EXCEPTION;
  }
}

// Writes the rows of a strip into a scene's window, as far as it reaches.
class SceneSink : public TG2RowSink {
 public:
  explicit SceneSink(GRISceneBuffer& buffer) : m_buffer(buffer) {}

  void takeRow(gr_int64 x, gr_int64 y, size_t count, const float* const* rows) override {
    const gr_int64 left = gr_int64{m_buffer.getWindowNumCols()} - x;
    const gr_int64 cols = std::min(left, static_cast<gr_int64>(count));
    if (cols <= 0 || y >= gr_int64{m_buffer.getWindowNumRows()}) return;
    tg2_convertPlanes(rows, 0, static_cast<gr_uint32>(x), static_cast<gr_uint32>(y),
                      static_cast<gr_uint32>(cols), 1, m_buffer);
  }

 private:
  GRISceneBuffer& m_buffer;
};

}  // namespace

TG2Decoder::~TG2Decoder() { decodeEnd(); }

void TG2Decoder::freeScene() {
  m_current.reset();
  m_next.reset();
  m_overlap.reset();
  m_restartList.clear();
  m_tables.clear();
  m_pool.clear();
}

GR_STATUS TG2Decoder::decodeBegin(const TG2Rect& rect, gr_int32 level, gr_uint32 stripHeight) {
  assert(stripHeight > 0);
  static_cast<void>(decodeEnd());
  m_level = level;
  m_stripHeight = stripHeight;
  GR_RETURN_IF_FAILED(m_db.lockIfShared());
  m_isRunning = true;
  m_currentStrip = 0;
  m_clippedRect = rect.intersect(
      {0, 0, lastAtLevel(m_db.getWidth(), level), lastAtLevel(m_db.getHeight(), level)});
  const gr_int64 rows = m_clippedRect.isEmpty() ? 0 : m_clippedRect.getHeight();
  m_numStrips = static_cast<gr_uint32>((rows + stripHeight - 1) / stripHeight);
  return GR_STATUS_OK;
}

TG2Rect TG2Decoder::stripRect(gr_uint32 strip) const {
  if (strip >= m_numStrips) return {};
  const gr_int64 y0 = m_clippedRect.y0 + gr_int64{strip} * m_stripHeight;
  TG2Rect rect = m_clippedRect;
  rect.y0 = static_cast<gr_int32>(y0);
  rect.y1 = static_cast<gr_int32>(std::min<gr_int64>(y0 + m_stripHeight - 1, m_clippedRect.y1));
  return rect;
}

GR_STATUS TG2Decoder::decodeStrip(GRISceneBuffer& buffer) {
  const TG2Rect rect = stripRect(m_currentStrip);
  if (rect.isEmpty()) {
    ++m_currentStrip;
    return GR_STATUS_OK;
  }
  GR_RETURN_IF_FAILED(m_db.openStream());
  const GR_STATUS status = statusOf([&] { decodeStrip(rect, buffer); });
  const GR_STATUS closeStatus = m_db.closeStream();
  ++m_currentStrip;
  if (!GR_SUCCESS(status)) freeScene();  // half a strip is nothing that the next could go on with
  return GR_SUCCESS(status) ? closeStatus : status;
}

void TG2Decoder::decodeStrip(const TG2Rect& rect, GRISceneBuffer& buffer) {
  m_current.reset();
  if (m_next == nullptr) {
    m_current = TG2Subband::make(m_db, rect, m_level, &m_pool);
    m_current->decodeAll(m_db, m_level, m_restartList, m_tables, m_interrupt);
  } else {
    m_current = std::move(m_next);
    if (m_overlap == nullptr) {
      m_current->decodeAll(m_db, m_level, m_restartList, m_tables, m_interrupt);
    } else {
      if (const auto rest = TG2Subband::remainder(*m_current, *m_overlap)) {
        rest->decodeAll(m_db, m_level, m_restartList, m_tables, m_interrupt);
        m_current->merge(*rest);
      }
      m_current->merge(*m_overlap);
      m_overlap.reset();
    }
  }

  const TG2Rect nextRect = stripRect(m_currentStrip + 1);
  if (!nextRect.isEmpty()) {
    m_next = TG2Subband::make(m_db, nextRect, m_level, &m_pool);
    // Before the synthesis, which does away with the leaves.
    m_overlap = TG2Subband::sharedPart(*m_current, *m_next);
  }
  SceneSink sink(buffer);
  m_current->synthesize(m_interrupt, sink);
}

GR_STATUS TG2Decoder::decodeEnd() {
  freeScene();
  m_numStrips = 0;
  if (!m_isRunning) return GR_STATUS_OK;
  m_isRunning = false;
  return m_db.unlockIfShared();
}
