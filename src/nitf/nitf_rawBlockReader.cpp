#include "nitf/nitf_rawBlockReader.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_pixel.h"
#include "nitf/nitf_imageSegment.h"

GR_STATUS NITFRawBlockReader::initialize(std::unique_ptr<GRIOStreamInf> stream,
                                         GRUtilSmartPointer<NITFImageManager> manager,
                                         const NITFImageSegment& segment, bool useWorldFile) {
  GR_RETURN_IF_FAILED(
      NITFImageReader::initialize(std::move(stream), std::move(manager), segment, useWorldFile));
  m_blockCols = segment.getHeader().NPPBH;
  m_blockRows = segment.getHeader().NPPBV;
  GR_RETURN_IF_FAILED(m_rows.initialize(segment));
  return m_sampleReader.initialize(getPixelProps().getNumBytes(), getNumBands());
}

GR_STATUS NITFRawBlockReader::decodeStrip(GRISceneBuffer& buffer, const GRIScene& scene) {
  NITFImageRect rect;
  GR_RETURN_IF_FAILED(nitf_rectOfScene(scene, getWidth(), getHeight(), rect));
  if (rect.isEmpty()) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(getStream().open());
  try {
    return getNoDataPixel() == nullptr ? decodeRect(buffer, rect) : decodeMasked(buffer, rect);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS NITFRawBlockReader::decodeEnd() {
  m_strip.reset();
  return GR_STATUS_OK;
}

/// Writes the background, and on it the pixels that are data.
GR_STATUS NITFRawBlockReader::decodeMasked(GRISceneBuffer& buffer, const NITFImageRect& rect) {
  if (m_strip == nullptr || m_strip->getTotalNumCols() < rect.numCols() ||
      m_strip->getTotalNumRows() < rect.numRows()) {
    m_strip.reset();
    try {
      m_strip =
          gr_makeUnique<GRISceneBuffer>(getPixelProps(), rect.numCols(), rect.numRows(), nullptr);
    } catch (const GRUtilException&) {
      m_strip.reset();
    }
    if (m_strip == nullptr) return NITF_STATUS_NO_MEMORY;
  }
  GRISceneBuffer strip(*m_strip, 0, 0, rect.numCols(), rect.numRows());
  GR_RETURN_IF_FAILED(decodeRect(strip, rect));
  if (getBackgroundPixel() != nullptr) {
    GR_RETURN_IF_FAILED(buffer.fill(*getBackgroundPixel()));
  } else {
    buffer.zero();
  }
  return buffer.copyDataFrom(strip, *getNoDataPixel());
}

/// Goes from one row of blocks to the next.
GR_STATUS NITFRawBlockReader::decodeRect(GRISceneBuffer& buffer, const NITFImageRect& rect) {
  GR_RETURN_IF_FAILED(fillAbsent(buffer));
  for (NITFImageRect part = rect; part.top < rect.bottom; part.top = part.bottom) {
    const gr_uint64 blockBottom = (gr_uint64{part.top} / m_blockRows + 1) * m_blockRows;
    part.bottom = static_cast<gr_uint32>(std::min<gr_uint64>(rect.bottom, blockBottom));
    const NITFImageRect firstRow = {part.left, part.top, part.right, part.top + 1};
    if (!m_rows.getHeld().contains(firstRow)) {
      const NITFImageRect hold = getRowsToHold(part);
      if (!hold.contains(part)) {
        GR_RETURN_IF_FAILED(readBlocks(buffer, part.top - rect.top, part));
        continue;
      }
      GR_RETURN_IF_FAILED(m_rows.load(getStream(), hold));
    }
    part.bottom = std::min(part.bottom, m_rows.getHeld().bottom);
    m_rows.copyTo(buffer, 0, part.top - rect.top, part);
  }
  return GR_STATUS_OK;
}

/// What shows where blocks are absent; nothing to do where none can be.
GR_STATUS NITFRawBlockReader::fillAbsent(GRISceneBuffer& buffer) const {
  if (!getSegment().getBlocks().mayBeAbsent()) return GR_STATUS_OK;
  const GRIPixel* pixel = getNoDataPixel() != nullptr ? getNoDataPixel() : getBackgroundPixel();
  if (pixel != nullptr) return buffer.fill(*pixel);
  buffer.zero();
  return GR_STATUS_OK;
}

/// The whole row of blocks around a part of it; or where that takes too much room, as many rows as
/// fit, from the part's first one on.
NITFImageRect NITFRawBlockReader::getRowsToHold(const NITFImageRect& part) const {
  const gr_uint64 rowsThatFit = m_cacheBytes / m_rows.getBytesPerRow(part.left, part.right);
  const gr_uint32 blockTop = part.top - part.top % m_blockRows;
  const gr_uint64 blockBottom = std::min<gr_uint64>(gr_uint64{blockTop} + m_blockRows, getHeight());
  NITFImageRect hold = part;
  if (blockBottom - blockTop <= rowsThatFit) hold.top = blockTop;
  hold.bottom = static_cast<gr_uint32>(std::min<gr_uint64>(blockBottom, hold.top + rowsThatFit));
  return hold;
}

/// Reads the pixels of `rect` straight into their places, from all blocks that it touches.
/// @param firstRow  where its upper left goes, in the buffer's window
GR_STATUS NITFRawBlockReader::readBlocks(GRISceneBuffer& buffer, gr_uint32 firstRow,
                                         const NITFImageRect& rect) {
  const NITFImageSubheader& header = getSegment().getHeader();
  const bool isSequential = getSegment().getLayout() == NITF_LAYOUT_SEQUENTIAL;
  const gr_uint16 rounds = isSequential ? getNumBands() : gr_uint16{1};
  const gr_uint64 blockRow = rect.top / m_blockRows;
  for (gr_uint64 col = rect.left; col < rect.right;) {
    const gr_uint64 blockCol = col / m_blockCols;
    const gr_uint64 end = std::min<gr_uint64>(rect.right, (blockCol + 1) * m_blockCols);
    const GRIRawRect area = {col % m_blockCols, rect.top % m_blockRows,
                             static_cast<gr_uint32>(end - col), rect.numRows()};
    for (gr_uint16 round = 0; round < rounds; ++round) {
      GRIRawSamples samples = m_rows.getSamples();
      const gr_uint64 block = (blockRow + gr_uint64{round} * header.NBPC) * header.NBPR + blockCol;
      GR_RETURN_IF_FAILED(m_rows.locate(block, samples.offset));
      if (samples.offset == NITFBlockTable::ABSENT) continue;
      const GRIRawTarget target = {static_cast<gr_uint32>(col - rect.left), firstRow, round};
      GR_RETURN_IF_FAILED(m_sampleReader.read(getStream(), samples, area, buffer, target));
    }
    col = end;
  }
  return GR_STATUS_OK;
}
