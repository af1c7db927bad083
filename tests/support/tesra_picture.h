/// @file
/// Tesra pictures of tests, from bytes or streams to samples, without the C interface.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_dataTypes.h"
#include "image/gri_pixel.h"
#include "image/gri_scene.h"
#include "image/gri_sceneBuffer.h"
#include "tesra/tesra_imageReader.h"
#include "tests/support/tg3_memoryFile.h"

/// An open picture.
class TesraPicture {
 public:
  using Bytes = std::vector<gr_uint8>;

  explicit TesraPicture(std::unique_ptr<GRIOStreamInf> stream,
                        TesraMemoryUsage usage = TESRA_MEMORY_DEFAULT)
      : m_stream(std::move(stream)), m_reader(gr_makeUnique<TesraImageReader>().release()) {
    m_status = m_reader->initialize(*m_stream, nullptr, usage, TESRA_STREAM_KEEP_OPEN);
  }
  explicit TesraPicture(std::span<const gr_uint8> bytes,
                        TesraMemoryUsage usage = TESRA_MEMORY_DEFAULT)
      : TesraPicture(tg3_memoryStream(bytes), usage) {}

  GR_STATUS status() const { return m_status; }
  TesraImageReader& reader() { return *m_reader; }

  /// The samples of a window as they stand in memory, band after band.
  GR_STATUS decode(double mag, gr_uint32 column, gr_uint32 row, gr_uint32 columns, gr_uint32 rows,
                   Bytes& bytes) {
    const GRIPixel& pixel = m_reader->getPixelProps();
    const size_t plane = size_t{columns} * rows * GRIUtils::getNumBytes(pixel.getDataType());
    bytes.assign(plane * pixel.getNumBands(), 0);
    std::vector<void*> planes;
    for (size_t band = 0; band < pixel.getNumBands(); ++band) {
      planes.push_back(bytes.data() + band * plane);
    }
    GRISceneBuffer buffer(pixel, columns, rows, planes.data());
    return m_reader->read(GRIScene(column, row, columns, rows, mag), buffer);
  }

 private:
  std::unique_ptr<GRIOStreamInf> m_stream;
  GRUtilSmartPointer<TesraImageReader> m_reader;
  GR_STATUS m_status;
};

/// The part of a whole decode that a window should give.
inline std::vector<gr_uint8> tesra_cropOf(const std::vector<gr_uint8>& whole, size_t numBands,
                                          size_t bytesPerSample, size_t wholeColumns,
                                          size_t wholeRows, size_t column, size_t row,
                                          size_t columns, size_t rows) {
  std::vector<gr_uint8> crop;
  for (size_t band = 0; band < numBands; ++band) {
    for (size_t y = row; y < row + rows; ++y) {
      const size_t at = ((band * wholeRows + y) * wholeColumns + column) * bytesPerSample;
      crop.insert(crop.end(), whole.begin() + static_cast<std::ptrdiff_t>(at),
                  whole.begin() + static_cast<std::ptrdiff_t>(at + columns * bytesPerSample));
    }
  }
  return crop;
}
