#include "image/gri_rawImageReader.h"

#include <algorithm>
#include <cassert>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_ioFileStream.h"
#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_sampleKernels.h"
#include "image/gri_sceneBuffer.h"

namespace {

constexpr gr_uint64 READ_AT_ONCE = 256 << 10;  // bytes of interleaved rows; they stay in the cache
constexpr gr_uint64 LONGEST_READ = 1 << 30;    // bytes; what a 32-bit length can hold, and less
constexpr gr_uint64 POSITION_UNKNOWN = ~gr_uint64{0};

gr_uint8* rowOf(const GRISceneBuffer& buffer, gr_uint16 band, gr_uint32 row) {
  return static_cast<gr_uint8*>(buffer.getSampleInWindow(0, row, band));
}

}  // namespace

GR_STATUS GRIRawImageReader::setInputGeoCoord(const GRIGeoCoord& geoCoord) {
  GR_RETURN_IF_FAILED(setGeoCoord(geoCoord));
  m_hasInputGeoCoord = true;
  return GR_STATUS_OK;
}

GR_STATUS GRIRawImageReader::initialize(const GRFileSpec& path, const GRIPixel& pixelProps,
                                        gr_uint32 width, gr_uint32 height) {
  m_ownedStream = GRIOStreamUtils::openReadStream(path);
  if (m_ownedStream == nullptr) return GRI_STATUS_OPEN_ERROR;
  GR_RETURN_IF_FAILED(m_ownedStream->close());  // until it's used
  return initialize(m_ownedStream.get(), pixelProps, width, height);
}

GR_STATUS GRIRawImageReader::initialize(GRIOStreamInf* stream, const GRIPixel& pixelProps,
                                        gr_uint32 width, gr_uint32 height) {
  assert(stream != nullptr && width > 0 && height > 0);
  if (!GRIUtils::isSampleType(pixelProps.getDataType())) return GRI_STATUS_UNSUPPORTED_DATATYPE;
  m_stream = stream;
  GR_RETURN_IF_FAILED(setProperties(pixelProps, width, height));
  GR_RETURN_IF_FAILED(measureStream());

  const bool byPixel = m_layout == GRI_RAW_LAYOUT_BIP;
  const gr_uint64 rowBytes =
      gr_uint64{width} * (byPixel ? pixelProps.getNumBytes() : pixelProps.getMaxBytesPerSample());
  if (m_rowLength == 0) m_rowLength = rowBytes;
  const gr_uint64 numRows = gr_uint64{height} * (byPixel ? 1 : pixelProps.getNumBands());
  const gr_uint64 imageBytes = gr_saturatingMultiply(m_rowLength, numRows);
  const gr_uint64 expected =
      gr_saturatingAdd(imageBytes, gr_saturatingAdd(m_headerLength, m_trailerLength));
  if (m_streamSize > 0 &&
      (m_rowLength < rowBytes || expected != static_cast<gr_uint64>(m_streamSize))) {
    return GRI_STATUS_RAW_SIZE;
  }
  if (m_recordsCompressionRatio && m_streamSize > 0) {
    GR_RETURN_IF_FAILED(
        addCompressionRatio(static_cast<double>(imageBytes) / static_cast<double>(m_streamSize)));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIRawImageReader::setProperties(const GRIPixel& pixelProps, gr_uint32 width,
                                           gr_uint32 height) {
  GR_RETURN_IF_FAILED(setPixelProps(pixelProps));
  m_sampleBytes = pixelProps.getMaxBytesPerSample();
  setDimensions(width, height);
  setSelective(true);
  if (!m_hasInputGeoCoord) GR_RETURN_IF_FAILED(setDefaultGeoCoord(*this));
  return addInputName(m_stream->getID());
}

GR_STATUS GRIRawImageReader::measureStream() {
  GRIOStreamOpener opener(*m_stream);
  GR_RETURN_IF_FAILED(opener.open());
  m_streamSize = GRIOStreamUtils::getStreamLength(*m_stream);
  if (m_streamSize >= 0) return opener.close(GR_STATUS_OK);
  m_streamSize = 0;
  const GR_STATUS reason = m_stream->getLastError();
  return GR_SUCCESS(reason) ? GRI_STATUS_READ_ERROR : reason;
}

GR_STATUS GRIRawImageReader::decodeBegin(const GRIScene& scene) {
  if (m_layout != GRI_RAW_LAYOUT_BIP || getNumBands() == 1) return GR_STATUS_OK;
  const gr_uint64 rowBytes =
      static_cast<gr_uint64>(scene.getNumCols()) * getPixelProps().getNumBytes();
  const gr_uint64 numRows = std::clamp<gr_uint64>(rowBytes == 0 ? 1 : READ_AT_ONCE / rowBytes, 1,
                                                  std::max(getStripHeight(), 1U));
  return m_rows.allocateUninitialized(gr_saturatingMultiply(rowBytes, numRows));
}

GR_STATUS GRIRawImageReader::decodeEnd() {
  m_rows.clear();
  return GR_STATUS_OK;
}

GR_STATUS GRIRawImageReader::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  const Rectangle rectangle{static_cast<gr_uint32>(std::max(stripScene.getUpperLeftIntCol(), 0)),
                            static_cast<gr_uint32>(std::max(stripScene.getUpperLeftIntRow(), 0)),
                            static_cast<gr_uint32>(stripScene.getNumCols()),
                            static_cast<gr_uint32>(stripScene.getNumRows())};
  GRIOStreamOpener opener(*m_stream);
  GR_RETURN_IF_FAILED(opener.open());
  m_position = POSITION_UNKNOWN;
  switch (m_layout) {
    case GRI_RAW_LAYOUT_BIP:
      GR_RETURN_IF_FAILED(readInterleaved(buffer, rectangle));
      break;
    case GRI_RAW_LAYOUT_BSQ:
      for (gr_uint16 band = 0; band < getNumBands(); ++band) {
        GR_RETURN_IF_FAILED(readBand(buffer, band, rectangle));
      }
      break;
    case GRI_RAW_LAYOUT_BIL:
      GR_RETURN_IF_FAILED(readByLine(buffer, rectangle));
      break;
  }
  toHostOrder(buffer);
  return opener.close(GR_STATUS_OK);
}

GR_STATUS GRIRawImageReader::readAt(gr_uint64 offset, void* to, gr_uint64 length) {
  // No file is as long as this; a header length or row length that is wrong may say so.
  if (offset > INT64_MAX) return GRI_STATUS_READ_ERROR;
  if (offset != m_position) {
    GR_RETURN_IF_FAILED(m_stream->seek(static_cast<gr_int64>(offset), GRIO_SEEK_BEGIN));
  }
  m_position = POSITION_UNKNOWN;
  gr_uint8* bytes = static_cast<gr_uint8*>(to);
  for (gr_uint64 left = length; left > 0;) {
    const gr_uint32 piece = static_cast<gr_uint32>(std::min(left, LONGEST_READ));
    if (m_stream->read(bytes, piece) != piece) {
      const GR_STATUS reason = m_stream->getLastError();
      return GR_SUCCESS(reason) ? GRI_STATUS_READ_ERROR : reason;
    }
    bytes += piece;
    left -= piece;
  }
  m_position = offset + length;
  return GR_STATUS_OK;
}

bool GRIRawImageReader::isWholeRow(gr_uint32 numCols) const {
  const gr_uint64 perColumn =
      m_layout == GRI_RAW_LAYOUT_BIP ? getPixelProps().getNumBytes() : m_sampleBytes;
  return numCols * perColumn == m_rowLength;
}

GR_STATUS GRIRawImageReader::readInterleaved(GRISceneBuffer& buffer, const Rectangle& rectangle) {
  // One band interleaved with itself is a band.
  if (getNumBands() == 1) return readBand(buffer, 0, rectangle);
  const gr_uint64 pixelBytes = getPixelProps().getNumBytes();
  const gr_uint64 rowBytes = rectangle.numCols * pixelBytes;
  // A strip has its scene's columns, for which decodeBegin has made room.
  if (rowBytes == 0 || m_rows.size() < rowBytes) return GRI_STATUS_INVALID_ARGUMENT;
  const gr_uint32 rowsAtOnce =
      isWholeRow(rectangle.numCols)
          ? static_cast<gr_uint32>(std::min<gr_uint64>(m_rows.size() / rowBytes, 0xFFFFFFFF))
          : 1;
  GRArray<void*> planes;
  GR_RETURN_IF_FAILED(planes.allocate(getNumBands()));
  for (gr_uint32 row = 0; row < rectangle.numRows;) {
    const gr_uint32 numRows = std::min(rectangle.numRows - row, rowsAtOnce);
    const gr_uint64 offset = m_headerLength + (gr_uint64{rectangle.row} + row) * m_rowLength +
                             rectangle.col * pixelBytes;
    GR_RETURN_IF_FAILED(readAt(offset, m_rows.data(), numRows * rowBytes));
    for (gr_uint32 r = 0; r < numRows; ++r, ++row) {
      for (gr_uint16 band = 0; band < getNumBands(); ++band)
        planes[band] = rowOf(buffer, band, row);
      gri_splitBands(m_rows.data() + r * rowBytes, rectangle.numCols, getNumBands(), m_sampleBytes,
                     planes.data());
    }
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIRawImageReader::readBand(GRISceneBuffer& buffer, gr_uint16 band,
                                      const Rectangle& rectangle) {
  const gr_uint64 first = m_headerLength +
                          (gr_uint64{band} * getHeight() + rectangle.row) * m_rowLength +
                          gr_uint64{rectangle.col} * m_sampleBytes;
  const gr_uint64 rowBytes = gr_uint64{rectangle.numCols} * m_sampleBytes;
  // Rows that follow each other in the stream and in memory are one read.
  if (isWholeRow(rectangle.numCols) && buffer.getTotalNumCols() == rectangle.numCols) {
    return readAt(first, rowOf(buffer, band, 0), rowBytes * rectangle.numRows);
  }
  for (gr_uint32 row = 0; row < rectangle.numRows; ++row) {
    GR_RETURN_IF_FAILED(readAt(first + row * m_rowLength, rowOf(buffer, band, row), rowBytes));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIRawImageReader::readByLine(GRISceneBuffer& buffer, const Rectangle& rectangle) {
  const gr_uint64 rowBytes = gr_uint64{rectangle.numCols} * m_sampleBytes;
  for (gr_uint32 row = 0; row < rectangle.numRows; ++row) {
    const gr_uint64 line = (gr_uint64{rectangle.row} + row) * getNumBands();
    for (gr_uint16 band = 0; band < getNumBands(); ++band) {
      const gr_uint64 offset =
          m_headerLength + (line + band) * m_rowLength + gr_uint64{rectangle.col} * m_sampleBytes;
      GR_RETURN_IF_FAILED(readAt(offset, rowOf(buffer, band, row), rowBytes));
    }
  }
  return GR_STATUS_OK;
}

void GRIRawImageReader::toHostOrder(GRISceneBuffer& buffer) const {
  if (!GRIUtils::needsSwapping(getDataType(), m_byteOrder)) return;
  for (gr_uint16 band = 0; band < buffer.getNumBands(); ++band) {
    for (gr_uint32 row = 0; row < buffer.getWindowNumRows(); ++row) {
      gr_uint8* samples = rowOf(buffer, band, row);
      gri_copySwapped(samples, buffer.getWindowNumCols(), m_sampleBytes, samples);
    }
  }
}
