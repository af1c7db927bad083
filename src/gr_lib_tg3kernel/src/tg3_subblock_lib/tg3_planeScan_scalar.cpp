#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_planeScan.h"

/// Plane 0 stands here and has no weight.
constexpr gr_uint32 SIGN_BIT = 0x80000000;

void tg3_makeSamplesScalar(const TG3SampleRow& row, gr_uint32 from, gr_int32* samples) {
  for (size_t x = from; x < row.width; ++x) {
    gr_uint32 magnitude = 0;
    gr_uint32 weight = SIGN_BIT >> row.firstPlane;
    for (gr_uint32 i = 0; i < row.numPlanes; ++i, weight >>= 1) {
      const gr_uint64 bit = (row.bits[i * row.planeStride + x / 64] >> (x % 64)) & 1;
      if (bit != 0) magnitude |= weight & ~SIGN_BIT;
    }
    if (magnitude != 0) magnitude += row.midpoint[x % 2];
    const bool negative = ((row.negative[x / 64] >> (x % 64)) & 1) != 0;
    samples[x] = static_cast<gr_int32>(negative ? 0 - magnitude : magnitude);
  }
}
