// What two trees of neighbouring strips share, and how it comes from one to the other.

#include <algorithm>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_tg2kernel/src/decode/tg2_subband.h"
#include "gr_lib_utils/include/gr_exception.h"

namespace {

bool haveSameShape(const TG2Subband& a, const TG2Subband& b) {
  return a.isLeaf() == b.isLeaf() && a.getFullWidth() == b.getFullWidth() &&
         a.getFullHeight() == b.getFullHeight();
}

}  // namespace

std::unique_ptr<TG2Subband> TG2Subband::sharedPart(const TG2Subband& a, const TG2Subband& b) {
  return sharedNode(a, b, nullptr);
}

std::unique_ptr<TG2Subband> TG2Subband::sharedNode(const TG2Subband& a, const TG2Subband& b,
                                                   TG2Subband* parent) {
  if (a.m_numBands != b.m_numBands) throw GRUtilException(TG2_STATUS_SHARED_BANDS);
  if (!haveSameShape(a, b)) throw GRUtilException(TG2_STATUS_SHARED_SHAPE);
  TG2Rect window = a.m_window.intersect(b.m_window);
  if (window.isEmpty()) {
    const bool isNothing = a.m_window.isEmpty() && b.m_window.isEmpty();
    if (parent == nullptr && a.isLeaf()) return nullptr;
    if (parent != nullptr && !isNothing) throw GRUtilException(TG2_STATUS_SHARED_NOTHING);
    window = {};
  }
  std::unique_ptr<TG2Subband> node = like(a, window, parent);
  for (size_t i = 0; i < a.m_children.size() && !a.isLeaf(); ++i) {
    node->m_children[i] = sharedNode(*a.m_children[i], *b.m_children[i], node.get());
  }
  if (a.isLeaf() && a.hasPlanes() && !window.isEmpty()) {
    node->makePlanes(false);
    for (gr_uint32 band = 0; band < a.m_numBands; ++band) {
      for (gr_int64 y = 0; y < window.getHeight(); ++y) {
        const float* const from = a.getRow(band, window.y0 - a.m_window.y0 + y);
        std::copy_n(from + (window.x0 - a.m_window.x0), window.getWidth(), node->getRow(band, y));
      }
    }
  }
  return node;
}

std::unique_ptr<TG2Subband> TG2Subband::remainder(TG2Subband& a, const TG2Subband& overlap) {
  std::unique_ptr<TG2Subband> root = remainingNode(a, overlap, nullptr);
  for (TG2Subband* leaf = root->getFirstLeaf(); leaf != nullptr; leaf = leaf->getNextLeaf()) {
    if (!leaf->m_window.isEmpty()) return root;
  }
  return nullptr;
}

std::unique_ptr<TG2Subband> TG2Subband::remainingNode(TG2Subband& a, const TG2Subband& overlap,
                                                      TG2Subband* parent) {
  if (a.m_numBands != overlap.m_numBands) throw GRUtilException(TG2_STATUS_REMAINDER_BANDS);
  if (!haveSameShape(a, overlap)) throw GRUtilException(TG2_STATUS_REMAINDER_SHAPE);
  TG2Rect window = a.m_window;
  if (a.isLeaf() && !window.isEmpty()) {
    const TG2Rect& held = overlap.m_window;
    if (held.isEmpty() || held.x0 != window.x0 || held.x1 != window.x1 || held.y0 != window.y0 ||
        held.y1 > window.y1) {
      throw GRUtilException(TG2_STATUS_REMAINDER_WINDOW);
    }
    window.y0 = held.y1 + 1;
    if (window.isEmpty()) window = {};
  }
  std::unique_ptr<TG2Subband> node = like(a, window, parent);
  for (size_t i = 0; i < a.m_children.size() && !a.isLeaf(); ++i) {
    node->m_children[i] = remainingNode(*a.m_children[i], *overlap.m_children[i], node.get());
  }
  if (a.isLeaf()) node->m_target = &a;
  return node;
}

void TG2Subband::merge(const TG2Subband& src) {
  if (!haveSameShape(*this, src) || m_numBands != src.m_numBands) {
    throw GRUtilException(TG2_STATUS_MERGE_SHAPE);
  }
  for (size_t i = 0; i < m_children.size() && !isLeaf(); ++i) {
    m_children[i]->merge(*src.m_children[i]);
  }
  if (!isLeaf() || src.m_window.isEmpty()) return;
  if (!m_window.contains(src.m_window)) throw GRUtilException(TG2_STATUS_MERGE_WINDOW);
  if (src.m_target != this) copyFrom(src);
}

void TG2Subband::copyFrom(const TG2Subband& src) {
  if (!src.hasPlanes() && !hasPlanes()) return;
  if (!hasPlanes()) makePlanes(src.m_window != m_window);
  const size_t width = static_cast<size_t>(src.m_window.getWidth());
  for (gr_uint32 band = 0; band < m_numBands; ++band) {
    for (gr_int64 y = 0; y < src.m_window.getHeight(); ++y) {
      float* const to =
          getRow(band, src.m_window.y0 - m_window.y0 + y) + (src.m_window.x0 - m_window.x0);
      if (src.hasPlanes()) {
        std::copy_n(src.getRow(band, y), width, to);
      } else {
        std::fill_n(to, width, 0.0F);
      }
    }
  }
}
