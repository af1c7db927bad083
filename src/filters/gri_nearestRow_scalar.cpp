#include <cassert>
#include <cstring>

#include "filters/gri_nearestRow.h"
#include "filters/gri_resamplePosition.h"

namespace {

template <size_t Bytes, typename Float>
void nearestRow(const gr_uint8* row, gr_uint32 width, float x, float step, size_t count,
                gr_uint8* dest) {
  Float p = x;
  for (size_t k = 0; k < count; ++k) {
    const GRIResamplePosition<Float> position(p, width);
    const size_t index = gri_heldIndex(position.index, 0, size_t{width} - 1);
    std::memcpy(dest + k * Bytes, row + index * Bytes, Bytes);
    p += step;
  }
}

}  // namespace

void gri_nearestRowScalar(const void* row, gr_uint32 width, size_t sampleBytes, float x, float step,
                          size_t count, void* dest) {
  const gr_uint8* const from = static_cast<const gr_uint8*>(row);
  gr_uint8* const to = static_cast<gr_uint8*>(dest);
  switch (sampleBytes) {
    case 1:
      return nearestRow<1, float>(from, width, x, step, count, to);
    case 2:
      return nearestRow<2, float>(from, width, x, step, count, to);
    case 4:
      return nearestRow<4, float>(from, width, x, step, count, to);
    case 8:
      return nearestRow<8, double>(from, width, x, step, count, to);
    default:
      assert(false && "bad sample width");
  }
}
