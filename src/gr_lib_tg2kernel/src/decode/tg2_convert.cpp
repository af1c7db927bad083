#include "gr_lib_tg2kernel/src/decode/tg2_convert.h"

#include <cassert>

#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

constexpr size_t MOST_BANDS = 4;

template <typename Sample>
void convert(const float* const* planes, size_t stride, gr_uint32 firstCol, gr_uint32 firstRow,
             gr_uint32 cols, gr_uint32 rows, GRISceneBuffer& buffer) {
  const gr_uint16 numBands = buffer.getNumBands();
  const size_t first = size_t{firstRow} * buffer.getTotalNumCols() + firstCol;
  for (gr_uint32 row = 0; row < rows; ++row) {
    const float* from[MOST_BANDS] = {};
    Sample* to[MOST_BANDS] = {};
    for (gr_uint16 band = 0; band < numBands; ++band) {
      from[band] = planes[band] + row * stride;
      to[band] = static_cast<Sample*>(buffer.getWindowBandData(band)) + first +
                 size_t{row} * buffer.getTotalNumCols();
    }
    if (numBands == 1) {
      tg2_convertOneBand(from, to, cols);
    } else if (numBands == 3) {
      tg2_convertThreeBands(from, to, cols);
    } else if constexpr (std::is_integral_v<Sample>) {
      tg2_convertFourBands(from, to, cols);
    }
  }
}

}  // namespace

void tg2_convertPlanes(const float* const* planes, size_t stride, gr_uint32 col, gr_uint32 row,
                       gr_uint32 cols, gr_uint32 rows, GRISceneBuffer& buffer) {
  const gr_uint16 numBands = buffer.getNumBands();
  assert(numBands == 1 || numBands == 3 || numBands == 4);
  assert(col + cols <= buffer.getWindowNumCols() && row + rows <= buffer.getWindowNumRows());
  const GRIDataType dt = buffer.getPixelProps().getDataType();
  assert(dt == GRI_DATATYPE_UINT8 || dt == GRI_DATATYPE_UINT16 || dt == GRI_DATATYPE_FLOAT32);
  static_cast<void>(numBands);
  if (dt == GRI_DATATYPE_UINT8) {
    convert<gr_uint8>(planes, stride, col, row, cols, rows, buffer);
  } else if (dt == GRI_DATATYPE_UINT16) {
    convert<gr_uint16>(planes, stride, col, row, cols, rows, buffer);
  } else {
    convert<float>(planes, stride, col, row, cols, rows, buffer);
  }
}
