#include "gr_lib_tg2kernel/src/decode/tg2_subband.h"

#include "gr_lib_tg2kernel/src/decode/tg2_dbInfo.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"

namespace {

// A level's gain, and those of a low and of a high channel.
constexpr float LEVEL_GAIN = 1.3215904F;
constexpr float LOW_GAIN = 1.1496044397354126F;
constexpr float HIGH_GAIN = 0.8698644206960049F;

float rootGain(gr_int32 level) {
  float gain = 1.0F;
  for (gr_int32 i = level < 0 ? -level : level; i > 0; --i) gain *= LEVEL_GAIN;
  return level < 0 ? 1.0F / gain : gain;
}

gr_int64 rootSize(gr_uint32 size, gr_int32 level) {
  if (level < 0) return gr_int64{size} << -level;
  gr_int64 result = size;
  for (gr_int32 i = 0; i < level; ++i) result = (result + 1) / 2;
  return result;
}

// What a child's window is for its parent's; one axis has nothing where the subband has no size.
TG2Rect childWindow(const TG2Subband& parent, bool xHigh, bool yHigh) {
  gr_int64 x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  const TG2Rect& window = parent.getWindow();
  tg2_channelSupport(window.x0, window.x1, parent.getFullWidth(), xHigh, x0, x1);
  tg2_channelSupport(window.y0, window.y1, parent.getFullHeight(), yHigh, y0, y1);
  if (x1 < x0 || y1 < y0) return {};
  // No further to the right or down than the parent's, which has 32 bits.
  return {static_cast<gr_int32>(x0), static_cast<gr_int32>(y0), static_cast<gr_int32>(x1),
          static_cast<gr_int32>(y1)};
}

}  // namespace

TG2Subband::TG2Subband(gr_uint32 width, gr_uint32 height, gr_uint32 numBands, gr_int32 numLevels,
                       gr_int32 level, const TG2Rect& rect, TG2PlanePool* pool)
    : m_fullWidth(rootSize(width, level)),
      m_fullHeight(rootSize(height, level)),
      m_gain(rootGain(level)),
      m_numBands(numBands),
      m_window(rect),
      m_pool(pool) {
  makeChildren(numLevels, level);
  gr_int32 index = 0;
  for (TG2Subband* leaf = getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    leaf->m_index = index++;
  }
}

TG2Subband::TG2Subband(Key, TG2Subband& parent, gr_int32 numLevels, gr_int32 level, bool xHigh,
                       bool yHigh)
    : m_fullWidth(tg2_channelSize(parent.m_fullWidth, xHigh)),
      m_fullHeight(tg2_channelSize(parent.m_fullHeight, yHigh)),
      m_gain(parent.m_gain * (xHigh ? HIGH_GAIN : LOW_GAIN)),
      m_numBands(parent.m_numBands),
      m_window(childWindow(parent, xHigh, yHigh)),
      m_parent(&parent),
      m_pool(parent.m_pool) {
  m_gain *= yHigh ? HIGH_GAIN : LOW_GAIN;
  makeChildren(numLevels, level);
}

TG2Subband::TG2Subband(Key, const TG2Subband& other, const TG2Rect& window, TG2Subband* parent)
    : m_index(other.m_index),
      m_fullWidth(other.m_fullWidth),
      m_fullHeight(other.m_fullHeight),
      m_gain(other.m_gain),
      m_numBands(other.m_numBands),
      m_window(window),
      m_parent(parent),
      m_pool(other.m_pool) {}

TG2Subband::~TG2Subband() = default;

std::unique_ptr<TG2Subband> TG2Subband::make(const TG2DBInfo& db, const TG2Rect& rect,
                                             gr_int32 level, TG2PlanePool* pool) {
  auto root =
      gr_makeUnique<TG2Subband>(db.getWidth(), db.getHeight(), db.getNumBands(),
                                static_cast<gr_int32>(db.getNumLevels()), level, rect, pool);
  if (root == nullptr) throw GRUtilException(GR_STATUS_NO_MEMORY);
  return root;
}

std::unique_ptr<TG2Subband> TG2Subband::like(const TG2Subband& other, const TG2Rect& window,
                                             TG2Subband* parent) {
  auto node = gr_makeUnique<TG2Subband>(Key(), other, window, parent);
  if (node == nullptr) throw GRUtilException(GR_STATUS_NO_MEMORY);
  return node;
}

void TG2Subband::makeChildren(gr_int32 numLevels, gr_int32 level) {
  if (level > numLevels) throw GRUtilException(TG2_STATUS_TREE_LEVEL);
  const bool isNothing = m_fullWidth == 0 || m_fullHeight == 0;
  if (!isNothing && (m_window.isEmpty() || m_window.x0 < 0 || m_window.y0 < 0 ||
                     m_window.x1 >= m_fullWidth || m_window.y1 >= m_fullHeight)) {
    throw GRUtilException(TG2_STATUS_WINDOW);
  }
  if (level == numLevels) return;
  for (const bool yHigh : {false, true}) {
    for (const bool xHigh : {false, true}) {
      const gr_int32 childLevel = xHigh || yHigh ? numLevels : level + 1;
      auto child = gr_makeUnique<TG2Subband>(Key(), *this, numLevels, childLevel, xHigh, yHigh);
      if (child == nullptr) throw GRUtilException(GR_STATUS_NO_MEMORY);
      m_children[(yHigh ? 2U : 0U) + (xHigh ? 1U : 0U)] = std::move(child);
    }
  }
}

TG2Subband* TG2Subband::getFirstLeaf() {
  TG2Subband* node = this;
  while (!node->isLeaf()) node = node->getChild(0, 0);
  return node;
}

TG2Subband* TG2Subband::getNextLeaf() {
  for (TG2Subband* node = this; node->m_parent != nullptr; node = node->m_parent) {
    const auto& siblings = node->m_parent->m_children;
    for (size_t i = 0; i + 1 < siblings.size(); ++i) {
      if (siblings[i].get() == node) return siblings[i + 1]->getFirstLeaf();
    }
  }
  return nullptr;
}

void TG2Subband::makePlanes(bool clear) {
  const GR_STATUS status =
      allocate(m_numBands, m_window.getWidth(), m_window.getHeight(), clear, m_pool);
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
}

void TG2Subband::decodeAll(const TG2DBInfo& db, gr_int32 level, TG2RestartList& restartList,
                           TG2HuffmanTableCache& tables, GRIInterruptDelegate* interrupt) {
  for (TG2Subband* leaf = getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    leaf->decodeLeaf(db, level, restartList, tables, interrupt);
  }
}
