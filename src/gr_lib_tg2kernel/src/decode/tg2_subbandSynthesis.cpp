// The way up of TG2Subband: from the leaves to the root.

#include <algorithm>

#include "gr_lib_tg2kernel/src/decode/tg2_subband.h"
#include "gr_lib_tg2kernel/src/decode/tg2_throw.h"

namespace {

// A window is made in pieces of so many columns, so that what moves down along them stays in the
// cache, for all bands.
constexpr gr_int64 PIECE_COLUMNS = 2048;

// Calls `body` with the window's pieces from left to right, all nearly of one width.
template <typename Body>
void forEachPiece(const TG2Rect& window, Body&& body) {
  const gr_int64 count = (window.getWidth() + PIECE_COLUMNS - 1) / PIECE_COLUMNS;
  for (gr_int64 i = 0; i < count; ++i) {
    TG2Rect piece = window;
    piece.x0 = static_cast<gr_int32>(window.x0 + window.getWidth() * i / count);
    piece.x1 = static_cast<gr_int32>(window.x0 + window.getWidth() * (i + 1) / count - 1);
    body(piece);
  }
}

}  // namespace

TG2Channel TG2Subband::getChannel(gr_uint32 band) const {
  return {hasPlanes() ? getRow(band, 0) : nullptr, getStride(), m_window};
}

TG2Channels TG2Subband::getChannels(gr_uint32 band) const {
  return {getChild(0, 0)->getChannel(band), getChild(1, 0)->getChannel(band),
          getChild(0, 1)->getChannel(band), getChild(1, 1)->getChannel(band)};
}

void TG2Subband::synthesizeChildren(GRIInterruptDelegate* interrupt) {
  for (const auto& child : m_children) {
    if (child != nullptr) child->synthesize(interrupt);
  }
}

void TG2Subband::synthesize(GRIInterruptDelegate* interrupt) {
  if (isLeaf()) return;
  synthesizeChildren(interrupt);
  const bool isZero = std::none_of(m_children.begin(), m_children.end(),
                                   [](const auto& child) { return child->hasPlanes(); });
  if (!isZero) {
    makePlanes(false);
    TG2SynthesisFilter filter;
    for (gr_uint32 band = 0; band < m_numBands; ++band) {
      forEachPiece(m_window, [&](const TG2Rect& piece) {
        tg2_throwIfFailed(filter.begin(piece, m_fullWidth, m_fullHeight, getChannels(band)));
        for (gr_int64 y = 0; y < m_window.getHeight(); ++y) {
          tg2_poll(interrupt);
          filter.nextRow(getRow(band, y) + (piece.x0 - m_window.x0));
        }
      });
    }
  }
  for (auto& child : m_children) child.reset();
}

void TG2Subband::synthesize(GRIInterruptDelegate* interrupt, TG2RowSink& sink) {
  synthesizeChildren(interrupt);
  std::array<TG2SynthesisFilter, MAX_PLANES> filters;
  std::array<const float*, MAX_PLANES> rows{};
  GRArray<float> room;
  tg2_throwIfFailed(room.allocate(PIECE_COLUMNS * MAX_PLANES));
  forEachPiece(m_window, [&](const TG2Rect& piece) {
    const gr_int64 x = piece.x0 - m_window.x0;
    if (!isLeaf()) {
      for (gr_uint32 band = 0; band < m_numBands; ++band) {
        tg2_throwIfFailed(filters[band].begin(piece, m_fullWidth, m_fullHeight, getChannels(band)));
      }
    }
    for (gr_int64 y = 0; y < m_window.getHeight(); ++y) {
      tg2_poll(interrupt);
      for (gr_uint32 band = 0; band < m_numBands; ++band) {
        float* const made = room.data() + band * PIECE_COLUMNS;
        if (!isLeaf()) filters[band].nextRow(made);
        rows[band] = isLeaf() && hasPlanes() ? getRow(band, y) + x : made;
      }
      sink.takeRow(x, y, static_cast<size_t>(piece.getWidth()), rows.data());
    }
  });
  for (auto& child : m_children) child.reset();
  release();
}
