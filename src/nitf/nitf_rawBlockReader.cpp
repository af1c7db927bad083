#include "nitf/nitf_rawBlockReader.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_pixel.h"
#include "nitf/nitf_imageSegment.h"

namespace {

/// How the samples of one block lie; in the sequential layout it has one band.
GRIRawSamples samplesOfBlock(const NITFImageSegment& segment) {
  const NITFImageSubheader& header = segment.getHeader();
  const gr_uint64 width = segment.getPixelProps().getMaxBytesPerSample();
  const gr_uint64 bands = header.NBANDS;
  const gr_uint64 line = header.NPPBH * width;
  GRIRawSamples samples;
  samples.sampleBytes = static_cast<gr_uint32>(width);
  samples.numBands = header.NBANDS;
  samples.mustSwap = GRIUtils::needsSwapping(segment.getPixelProps().getDataType(), GRI_ENDIAN_BIG);
  samples.pixelBytes = width;
  samples.rowBytes = line;
  samples.bandBytes = line * header.NPPBV;
  switch (segment.getLayout()) {
    case NITF_LAYOUT_PIXEL:
      samples.pixelBytes = width * bands;
      samples.rowBytes = line * bands;
      samples.bandBytes = width;
      break;
    case NITF_LAYOUT_ROW:
      samples.rowBytes = line * bands;
      samples.bandBytes = line;
      break;
    case NITF_LAYOUT_SEQUENTIAL:
      samples.numBands = 1;
      break;
    default:
      break;
  }
  return samples;
}

/// The next multiple of `step` at or behind `value`, or `limit` when that is nearer.
gr_uint32 roundUp(gr_uint32 value, gr_uint32 step, gr_uint32 limit) {
  const gr_uint64 rounded = (gr_uint64{value} + step - 1) / step * step;
  return static_cast<gr_uint32>(std::min<gr_uint64>(rounded, limit));
}

}  // namespace

GR_STATUS NITFRawBlockReader::initialize(std::unique_ptr<GRIOStreamInf> stream,
                                         GRUtilSmartPointer<NITFImageManager> manager,
                                         const NITFImageSegment& segment, bool useWorldFile) {
  GR_RETURN_IF_FAILED(
      NITFImageReader::initialize(std::move(stream), std::move(manager), segment, useWorldFile));
  m_blockCols = segment.getHeader().NPPBH;
  m_blockRows = segment.getHeader().NPPBV;
  m_blockBytes = segment.getBlockBytes();
  m_pixelBytes = segment.getDataLength() - segment.getMask().getPixelOffset();
  m_samples = samplesOfBlock(segment);
  return m_sampleReader.initialize(getPixelProps().getNumBytes(), getNumBands());
}

GR_STATUS NITFRawBlockReader::decodeStrip(GRISceneBuffer& buffer, const GRIScene& scene) {
  NITFImageRect rect;
  GR_RETURN_IF_FAILED(nitf_rectOfScene(scene, getWidth(), getHeight(), rect));
  if (rect.isEmpty()) return GR_STATUS_OK;
  try {
    return decodeRect(buffer, rect);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS NITFRawBlockReader::decodeRect(GRISceneBuffer& buffer, const NITFImageRect& rect) {
  if (!m_cached.contains(rect)) {
    const NITFImageRect outer = getOuterRect(rect);
    const gr_uint64 bytes =
        gr_uint64{outer.numCols()} * outer.numRows() * getPixelProps().getNumBytes();
    if (bytes > CACHE_BYTES && getNoDataPixel() == nullptr) {
      // A strip this large comes alone, and has all its pixels: they need no way through a cache.
      GR_RETURN_IF_FAILED(fillAbsent(buffer, false));
      return readBlocks(buffer, rect, rect);
    }
    GR_RETURN_IF_FAILED(loadCache(outer));
  }
  return copyFromCache(buffer, rect);
}

/// The blocks around a rectangle, cut to the image; or where these take too much room, whole blocks
/// sideways, and downwards as many times the rows of the rectangle as fit.
NITFImageRect NITFRawBlockReader::getOuterRect(const NITFImageRect& rect) const {
  NITFImageRect outer = {rect.left - rect.left % m_blockCols, rect.top - rect.top % m_blockRows,
                         roundUp(rect.right, m_blockCols, getWidth()),
                         roundUp(rect.bottom, m_blockRows, getHeight())};
  const gr_uint64 rowBytes = gr_uint64{outer.numCols()} * getPixelProps().getNumBytes();
  const gr_uint64 rowsThatFit = CACHE_BYTES / rowBytes;
  if (outer.numRows() <= rowsThatFit) return outer;
  const gr_uint64 strips = std::max<gr_uint64>(1, rowsThatFit / rect.numRows());
  outer.top = rect.top;
  outer.bottom =
      static_cast<gr_uint32>(std::min<gr_uint64>(outer.bottom, rect.top + strips * rect.numRows()));
  return outer;
}

GR_STATUS NITFRawBlockReader::loadCache(const NITFImageRect& outer) {
  const NITFImageRect old = m_cached;
  m_cached = {};  // until all has been read
  NITFImageRect missing = outer;
  const bool fits = m_cache != nullptr && m_cache->getTotalNumCols() == outer.numCols() &&
                    m_cache->getTotalNumRows() == outer.numRows();
  const bool overlaps = old.left == outer.left && old.right == outer.right &&
                        old.top <= outer.top && outer.top < old.bottom;
  if (!fits || overlaps) {
    if (!overlaps) m_cache.reset();
    std::unique_ptr<GRISceneBuffer> cache;
    try {
      cache =
          gr_makeUnique<GRISceneBuffer>(getPixelProps(), outer.numCols(), outer.numRows(), nullptr);
    } catch (const GRUtilException&) {
      cache.reset();
    }
    if (cache == nullptr) return NITF_STATUS_NO_MEMORY;
    if (overlaps) {
      // The strip lies across two rows of blocks, and the upper one is here already.
      const GRISceneBuffer kept(*m_cache, 0, outer.top - old.top);
      GR_RETURN_IF_FAILED(cache->copyFrom(kept));
      missing.top = std::min(old.bottom, outer.bottom);
    }
    m_cache = std::move(cache);
  }
  if (!missing.isEmpty()) {
    GRISceneBuffer window(*m_cache, 0, missing.top - outer.top);
    GR_RETURN_IF_FAILED(fillAbsent(window, true));
    GR_RETURN_IF_FAILED(readBlocks(window, missing, missing));
  }
  m_cached = outer;
  return GR_STATUS_OK;
}

/// What shows where blocks are absent; nothing to do where none can be.
GR_STATUS NITFRawBlockReader::fillAbsent(GRISceneBuffer& buffer, bool withNoData) const {
  if (!getSegment().getBlocks().mayBeAbsent()) return GR_STATUS_OK;
  const GRIPixel* pixel = withNoData ? getNoDataPixel() : nullptr;
  if (pixel == nullptr) pixel = getBackgroundPixel();
  if (pixel != nullptr) return buffer.fill(*pixel);
  buffer.zero();
  return GR_STATUS_OK;
}

GR_STATUS NITFRawBlockReader::copyFromCache(GRISceneBuffer& buffer, const NITFImageRect& rect) {
  const GRISceneBuffer part(*m_cache, rect.left - m_cached.left, rect.top - m_cached.top,
                            rect.numCols(), rect.numRows());
  const GRIPixel* const noData = getNoDataPixel();
  if (noData == nullptr) return buffer.copyFrom(part);
  if (getBackgroundPixel() != nullptr) {
    GR_RETURN_IF_FAILED(buffer.fill(*getBackgroundPixel()));
  } else {
    buffer.zero();
  }
  return buffer.copyDataFrom(part, *noData);
}

/// Reads the pixels of `rect` from all blocks that it touches.
/// @param origin  what the upper left of the buffer's window is
GR_STATUS NITFRawBlockReader::readBlocks(GRISceneBuffer& buffer, const NITFImageRect& origin,
                                         const NITFImageRect& rect) {
  GR_RETURN_IF_FAILED(getStream().open());
  const NITFImageSubheader& header = getSegment().getHeader();
  const bool isSequential = getSegment().getLayout() == NITF_LAYOUT_SEQUENTIAL;
  const gr_uint64 blocksPerBand = gr_uint64{header.NBPR} * header.NBPC;
  const gr_uint16 rounds = isSequential ? getNumBands() : gr_uint16{1};
  for (gr_uint32 top = rect.top - rect.top % m_blockRows; top < rect.bottom; top += m_blockRows) {
    for (gr_uint32 left = rect.left - rect.left % m_blockCols; left < rect.right;
         left += m_blockCols) {
      const NITFImageRect part = rect.intersect({left, top, left + m_blockCols, top + m_blockRows});
      const gr_uint64 block = gr_uint64{top / m_blockRows} * header.NBPR + left / m_blockCols;
      for (gr_uint16 band = 0; band < rounds; ++band) {
        GR_RETURN_IF_FAILED(readBlock(buffer, origin, part, block + band * blocksPerBand, band));
      }
    }
  }
  return GR_STATUS_OK;
}

/// Reads the pixels of `part` from the block that has them.
GR_STATUS NITFRawBlockReader::readBlock(GRISceneBuffer& buffer, const NITFImageRect& origin,
                                        const NITFImageRect& part, gr_uint64 block,
                                        gr_uint16 firstBand) {
  const gr_uint64 offset = getSegment().getBlocks().getOffset(block);
  if (offset == NITFBlockTable::ABSENT) return GR_STATUS_OK;
  // The block as a whole must be there, whatever part of it is asked for.
  if (m_blockBytes > m_pixelBytes || offset > m_pixelBytes - m_blockBytes) {
    return NITF_STATUS_READ_ERROR;
  }
  m_samples.offset = offset;
  const GRIRawRect area = {part.left % m_blockCols, part.top % m_blockRows, part.numCols(),
                           part.numRows()};
  const GRIRawTarget target = {part.left - origin.left, part.top - origin.top, firstBand};
  return m_sampleReader.read(getStream(), m_samples, area, buffer, target);
}
