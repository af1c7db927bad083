#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_contextTables.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

using MagnitudeContexts = decltype(TG3ContextModel::magnitude);
using SignContexts = decltype(TG3ContextModel::sign);

/// The columns of ISO/IEC 15444-1, Table D.1.
enum class BandKind { HIGH_X, HIGH_BOTH, OTHER };

constexpr gr_uint32 zeroContext(BandKind kind, gr_uint32 flags) {
  int h = std::popcount(flags & (TG3_FLAG_RIGHT | TG3_FLAG_LEFT));
  int v = std::popcount(flags & (TG3_FLAG_UPPER | TG3_FLAG_LOWER));
  const int d = std::popcount(flags & (TG3_FLAG_LOWER_RIGHT | TG3_FLAG_LOWER_LEFT |
                                       TG3_FLAG_UPPER_RIGHT | TG3_FLAG_UPPER_LEFT));
  if (kind == BandKind::HIGH_BOTH) {
    constexpr gr_uint32 BY_DIAGONALS[4][3] = {{0, 1, 2}, {3, 4, 5}, {6, 7, 7}, {8, 8, 8}};
    return BY_DIAGONALS[std::min(d, 3)][std::min(h + v, 2)];
  }
  if (kind == BandKind::HIGH_X) std::swap(h, v);
  if (h == 2) return 8;
  if (h == 1) return v > 0 ? 7 : (d > 0 ? 6 : 5);
  if (v > 0) return v == 2 ? 4 : 3;
  return static_cast<gr_uint32>(std::min(d, 2));
}

/// ISO/IEC 15444-1, Table D.4.
constexpr gr_uint32 refinementContext(gr_uint32 flags) {
  if ((flags & TG3_FLAG_REFINED) != 0) return GRMQ_REFINEMENT_CONTEXT + 2;
  return GRMQ_REFINEMENT_CONTEXT + ((flags & 0xFF) != 0 ? 1 : 0);
}

constexpr MagnitudeContexts magnitudeContexts(BandKind kind) {
  MagnitudeContexts contexts{};
  for (gr_uint32 flags = 0; flags < contexts.size(); ++flags) {
    const bool significant = (flags & TG3_FLAG_SIGNIFICANT) != 0;
    contexts[flags] =
        static_cast<gr_uint8>(significant ? refinementContext(flags) : zeroContext(kind, flags));
  }
  return contexts;
}

/// ISO/IEC 15444-1, Tables D.2 and D.3.
constexpr SignContexts signContexts() {
  SignContexts contexts{};
  for (gr_uint32 index = 0; index < contexts.size(); ++index) {
    const auto sign = [index](gr_uint32 neighbour) {
      if (((index >> neighbour) & 1) == 0) return 0;
      return ((index >> (neighbour + 4)) & 1) != 0 ? 1 : -1;
    };
    const int h = std::clamp(sign(0) + sign(1), -1, 1);
    const int v = std::clamp(sign(2) + sign(3), -1, 1);
    const bool flip = h < 0 || (h == 0 && v < 0);
    const int distance = h == 0 ? (v != 0 ? 1 : 0) : 3 + h * v;  // from the first sign context
    contexts[index] = static_cast<gr_uint8>(GRMQ_SIGN_CONTEXT + static_cast<gr_uint32>(distance) +
                                            (flip ? 0x80 : 0));
  }
  return contexts;
}

constexpr MagnitudeContexts HIGH_X_CONTEXTS = magnitudeContexts(BandKind::HIGH_X);
constexpr MagnitudeContexts HIGH_BOTH_CONTEXTS = magnitudeContexts(BandKind::HIGH_BOTH);
constexpr MagnitudeContexts OTHER_CONTEXTS = magnitudeContexts(BandKind::OTHER);
constexpr SignContexts SIGN_CONTEXTS = signContexts();

const MagnitudeContexts& magnitudeContextsOf(gr_uint32 subband) {
  if (subband == 0) return OTHER_CONTEXTS;
  switch ((subband - 1) % 4) {
    case 1:
      return HIGH_X_CONTEXTS;
    case 3:
      return HIGH_BOTH_CONTEXTS;
    default:
      return OTHER_CONTEXTS;
  }
}

}  // namespace

void TG3ContextModel::reset(gr_uint32 subband) {
  coder.reset();
  magnitude = magnitudeContextsOf(subband);
  sign = SIGN_CONTEXTS;
}
