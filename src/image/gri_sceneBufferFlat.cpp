// Copies between the window of a GRISceneBuffer and flat memory or a stream.

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "image/gri_pixel.h"
#include "image/gri_sampleKernels.h"
#include "image/gri_sceneBuffer.h"

namespace {

/// One call of a stream moves at most this many bytes; only larger blocks need more than one.
constexpr gr_uint64 MAX_TRANSFER = 0x40000000;

GR_STATUS readBlock(GRIOStreamInf& stream, GRArray<gr_uint8>& block) {
  for (gr_uint64 done = 0; done < block.size();) {
    const auto length = static_cast<gr_uint32>(std::min(MAX_TRANSFER, block.size() - done));
    if (stream.read(block.data() + done, length) != length) {
      const GR_STATUS status = stream.getLastError();
      return GR_SUCCESS(status) ? GRI_STATUS_READ_ERROR : status;
    }
    done += length;
  }
  return GR_STATUS_OK;
}

GR_STATUS writeBlock(GRIOStreamInf& stream, const GRArray<gr_uint8>& block) {
  for (gr_uint64 done = 0; done < block.size();) {
    const auto length = static_cast<gr_uint32>(std::min(MAX_TRANSFER, block.size() - done));
    if (stream.write(block.data() + done, length) != length) {
      const GR_STATUS status = stream.getLastError();
      return GR_SUCCESS(status) ? GRI_STATUS_WRITE_ERROR : status;
    }
    done += length;
  }
  return GR_STATUS_OK;
}

/// Copies rows of `rowBytes` bytes that lie `fromStep` and `toStep` bytes apart.
void copyRows(const void* from, size_t fromStep, void* to, size_t toStep, size_t rowBytes,
              size_t numRows) {
  if (rowBytes == 0) return;
  const gr_uint8* source = static_cast<const gr_uint8*>(from);
  gr_uint8* target = static_cast<gr_uint8*>(to);
  if (fromStep == rowBytes && toStep == rowBytes) {
    std::memcpy(target, source, rowBytes * numRows);
    return;
  }
  for (size_t row = 0; row < numRows; ++row) {
    std::memcpy(target + row * toStep, source + row * fromStep, rowBytes);
  }
}

/// Copies samples to places that lie `step` bytes apart.
template <size_t BYTES>
void scatter(const gr_uint8* from, size_t numSamples, gr_uint8* to, size_t step) {
  for (size_t i = 0; i < numSamples; ++i) std::memcpy(to + i * step, from + i * BYTES, BYTES);
}

void scatterSamples(const void* from, size_t numSamples, size_t bytes, gr_uint8* to, size_t step) {
  const gr_uint8* source = static_cast<const gr_uint8*>(from);
  if (step == bytes) {
    if (numSamples != 0) std::memcpy(to, source, numSamples * bytes);
  } else if (bytes == 1) {
    scatter<1>(source, numSamples, to, step);
  } else if (bytes == 2) {
    scatter<2>(source, numSamples, to, step);
  } else if (bytes == 4) {
    scatter<4>(source, numSamples, to, step);
  } else {
    assert(bytes == 8);
    scatter<8>(source, numSamples, to, step);
  }
}

}  // namespace

// --- Band-sequential ---------------------------------------------------------------------------

void GRISceneBuffer::importBand(gr_uint16 band, const void* packed) {
  const size_t rowBytes = size_t{m_windowNumCols} * getBytesPerSample(band);
  copyRows(packed, rowBytes, getWindowBandData(band), getRowBytes(band), rowBytes, m_windowNumRows);
}

void GRISceneBuffer::exportBand(gr_uint16 band, void* packed) const {
  const size_t rowBytes = size_t{m_windowNumCols} * getBytesPerSample(band);
  copyRows(getWindowBandData(band), getRowBytes(band), packed, rowBytes, rowBytes, m_windowNumRows);
}

GR_STATUS GRISceneBuffer::importDataBSQ(void* const* data) {
  for (gr_uint16 band = 0; band < m_numBands; ++band) importBand(band, data[band]);
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::importDataBSQ(const void* data) {
  const gr_uint8* packed = static_cast<const gr_uint8*>(data);
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    importBand(band, packed);
    packed += windowBytes(band);
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::importDataBSQ(GRIOStreamInf& stream) {
  GRArray<gr_uint8> block;
  GR_RETURN_IF_FAILED(readWindow(stream, block));
  return importDataBSQ(static_cast<const void*>(block.data()));
}

/// Reads what a stream import reads: the window's bytes, once for each band.
GR_STATUS GRISceneBuffer::readWindow(GRIOStreamInf& stream, GRArray<gr_uint8>& block) const {
  gr_uint64 numBytes = 0;
  if (!gr_checkedMultiply(gr_uint64{m_windowNumCols} * m_windowNumRows,
                          gr_uint64{m_pixelProps->getNumBytes()} * m_numBands, numBytes)) {
    return GR_STATUS_NO_MEMORY;
  }
  GR_RETURN_IF_FAILED(block.allocateUninitialized(numBytes));
  return readBlock(stream, block);
}

GR_STATUS GRISceneBuffer::exportDataBSQ(void**& data) const {
  if (data != nullptr) {
    for (gr_uint16 band = 0; band < m_numBands; ++band) exportBand(band, data[band]);
    return GR_STATUS_OK;
  }
  GRArray<GRArray<gr_uint8>> planes;
  GRArray<void*> pointers;
  GR_RETURN_IF_FAILED(planes.allocate(m_numBands));
  GR_RETURN_IF_FAILED(pointers.allocate(m_numBands));
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    GR_RETURN_IF_FAILED(planes[band].allocateUninitialized(windowBytes(band)));
    exportBand(band, planes[band].data());
  }
  for (gr_uint16 band = 0; band < m_numBands; ++band) pointers[band] = planes[band].release();
  data = pointers.release();
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::exportDataBSQ(void*& data) const {
  GRArray<gr_uint8> block;
  if (data == nullptr) GR_RETURN_IF_FAILED(block.allocateUninitialized(allWindowBytes()));
  gr_uint8* packed = data == nullptr ? block.data() : static_cast<gr_uint8*>(data);
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    exportBand(band, packed);
    packed += windowBytes(band);
  }
  if (data == nullptr) data = block.release();
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::exportDataBSQ(GRIOStreamInf& stream) const {
  GRArray<gr_uint8> block;
  GR_RETURN_IF_FAILED(block.allocateUninitialized(allWindowBytes()));
  void* data = block.data();
  GR_RETURN_IF_FAILED(exportDataBSQ(data));
  return writeBlock(stream, block);
}

// --- Pixel-interleaved -------------------------------------------------------------------------

GR_STATUS GRISceneBuffer::importDataBIP(const void* data) {
  const gr_uint8* from = static_cast<const gr_uint8*>(data);
  GRArray<gr_uint8*> rows;  // where each band's next row begins
  GR_RETURN_IF_FAILED(rows.allocate(m_numBands));
  GRArray<void*> planes;
  GR_RETURN_IF_FAILED(planes.allocate(m_numBands));
  const bool oneWidth = bandsHaveOneWidth();
  for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
    for (gr_uint16 band = 0; band < m_numBands; ++band) {
      planes[band] = getSampleInWindow(0, row, band);
      rows[band] = static_cast<gr_uint8*>(planes[band]);
    }
    if (oneWidth) {
      gri_splitBands(from, m_windowNumCols, m_numBands, m_bytesPerSample[0], planes.data());
      from += size_t{m_windowNumCols} * m_numBands * m_bytesPerSample[0];
      continue;
    }
    for (gr_uint32 col = 0; col < m_windowNumCols; ++col) {
      for (gr_uint16 band = 0; band < m_numBands; ++band) {
        const size_t bytes = m_bytesPerSample[band];
        std::memcpy(rows[band], from, bytes);
        rows[band] += bytes;
        from += bytes;
      }
    }
  }
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::importDataBIP(GRIOStreamInf& stream) {
  GRArray<gr_uint8> block;
  GR_RETURN_IF_FAILED(readWindow(stream, block));
  return importDataBIP(static_cast<const void*>(block.data()));
}

/// Writes one row of the window pixel by pixel; all bands have one width.
/// @param rows  room for one pointer per band
void GRISceneBuffer::joinRow(gr_uint32 row, const void** rows, void* interleaved) const {
  for (gr_uint16 band = 0; band < m_numBands; ++band) rows[band] = getSampleInWindow(0, row, band);
  gri_joinBands(rows, m_windowNumCols, m_numBands, m_bytesPerSample[0], interleaved);
}

GR_STATUS GRISceneBuffer::exportDataBIP(void*& data) const {
  const size_t bytes = m_bytesPerSample[0];
  const bool isCopied = bytes == 1 || bytes == 2 || bytes == 4;
  if (isCopied && !bandsHaveOneWidth()) return GRI_STATUS_UNSUPPORTED_DATATYPE;
  GRArray<gr_uint8> block;
  if (data == nullptr) GR_RETURN_IF_FAILED(block.allocate(allWindowBytes()));
  gr_uint8* to = data == nullptr ? block.data() : static_cast<gr_uint8*>(data);
  if (isCopied) {
    GRArray<const void*> rows;
    GR_RETURN_IF_FAILED(rows.allocate(m_numBands));
    const size_t rowBytes = size_t{m_windowNumCols} * m_numBands * bytes;
    for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
      joinRow(row, rows.data(), to + row * rowBytes);
    }
  }
  if (data == nullptr) data = block.release();
  return GR_STATUS_OK;
}

GR_STATUS GRISceneBuffer::exportDataBIP(GRIOStreamInf& stream) const {
  if (!bandsHaveOneWidth()) return GRI_STATUS_UNSUPPORTED_DATATYPE;
  GRArray<const void*> rows;
  GR_RETURN_IF_FAILED(rows.allocate(m_numBands));
  GRArray<gr_uint8> interleaved;
  GR_RETURN_IF_FAILED(interleaved.allocateUninitialized(gr_uint64{m_windowNumCols} * m_numBands *
                                                        m_bytesPerSample[0]));
  for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
    joinRow(row, rows.data(), interleaved.data());
    GR_RETURN_IF_FAILED(writeBlock(stream, interleaved));
  }
  return GR_STATUS_OK;
}

// --- Any layout --------------------------------------------------------------------------------

GR_STATUS GRISceneBuffer::exportData(void* dest, gr_uint32 pixelBytes, gr_uint32 rowBytes,
                                     gr_uint32 bandBytes) const {
  gr_uint8* const target = static_cast<gr_uint8*>(dest);
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    for (gr_uint32 row = 0; row < m_windowNumRows; ++row) {
      scatterSamples(getSampleInWindow(0, row, band), m_windowNumCols, m_bytesPerSample[band],
                     target + size_t{band} * bandBytes + size_t{row} * rowBytes, pixelBytes);
    }
  }
  return GR_STATUS_OK;
}

gr_uint64 GRISceneBuffer::allWindowBytes() const {
  gr_uint64 numBytes = 0;
  for (gr_uint16 band = 0; band < m_numBands; ++band) numBytes += windowBytes(band);
  return numBytes;
}

void GRISceneBuffer::freeExported(void**& data, gr_uint16 numBands) {
  if (data == nullptr) return;
  const std::unique_ptr<void*[]> pointers(data);
  for (gr_uint16 band = 0; band < numBands; ++band) freeExported(pointers[band]);
  data = nullptr;
}

void GRISceneBuffer::freeExported(void*& data) {
  const std::unique_ptr<gr_uint8[]> block(static_cast<gr_uint8*>(data));
  data = nullptr;
}
