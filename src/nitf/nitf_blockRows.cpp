#include "nitf/nitf_blockRows.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_readBytes.h"

namespace {

/// How the samples of one block lie.
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

}  // namespace

GR_STATUS NITFBlockRows::initialize(const NITFImageSegment& segment) {
  m_segment = &segment;
  m_samples = samplesOfBlock(segment);
  m_blockCols = segment.getHeader().NPPBH;
  m_blockRows = segment.getHeader().NPPBV;
  const bool isSequential = segment.getLayout() == NITF_LAYOUT_SEQUENTIAL;
  m_numRounds = isSequential ? segment.getPixelProps().getNumBands() : gr_uint16{1};
  m_isByBand = segment.getLayout() == NITF_LAYOUT_BLOCK;
  m_held = {};
  return m_planes.allocate(m_samples.numBands);
}

GR_STATUS NITFBlockRows::locate(gr_uint64 block, gr_uint64& offset) const {
  offset = m_segment->getBlocks().getOffset(block);
  if (offset == NITFBlockTable::ABSENT) return GR_STATUS_OK;
  // The block as a whole must be there, whatever part of it is asked for.
  const gr_uint64 pixelBytes = m_segment->getDataLength() - m_segment->getMask().getPixelOffset();
  const gr_uint64 blockBytes = m_segment->getBlockBytes();
  const bool isWhole = blockBytes <= pixelBytes && offset <= pixelBytes - blockBytes;
  return isWhole ? GR_STATUS_OK : NITF_STATUS_READ_ERROR;
}

gr_uint64 NITFBlockRows::getBytesPerRow(gr_uint32 left, gr_uint32 right) const {
  const gr_uint64 line = gr_uint64{m_blockCols} * m_samples.sampleBytes * m_samples.numBands;
  return line * m_numRounds * (endBlock(right) - firstBlock(left));
}

gr_uint64 NITFBlockRows::blockNumber(gr_uint32 blockCol, gr_uint16 round) const {
  const NITFImageSubheader& header = m_segment->getHeader();
  const gr_uint64 blockRow = m_held.top / m_blockRows + gr_uint64{round} * header.NBPC;
  return blockRow * header.NBPR + blockCol;
}

/// Where a block begins in m_bytes: in the order of the file.
gr_uint64 NITFBlockRows::placeOf(gr_uint32 blockCol, gr_uint16 round) const {
  const gr_uint64 numBlocks = endBlock(m_held.right) - firstBlock(m_held.left);
  const gr_uint64 blockBytes =
      gr_uint64{m_held.numRows()} * m_blockCols * m_samples.sampleBytes * m_samples.numBands;
  return (round * numBlocks + (blockCol - firstBlock(m_held.left))) * blockBytes;
}

GR_STATUS NITFBlockRows::load(GRIOStreamInf& stream, const NITFImageRect& rect) {
  assert(!rect.isEmpty() && rect.top / m_blockRows == (rect.bottom - 1) / m_blockRows);
  const gr_uint64 right = gr_uint64{endBlock(rect.right)} * m_blockCols;
  m_held = rect;
  m_held.left = firstBlock(rect.left) * m_blockCols;
  m_held.right = static_cast<gr_uint32>(std::min<gr_uint64>(right, m_segment->getHeader().NCOLS));
  const GR_STATUS status = readAll(stream);
  if (!GR_SUCCESS(status)) m_held = {};
  return status;
}

GR_STATUS NITFBlockRows::readAll(GRIOStreamInf& stream) {
  const gr_uint64 room = getBytesPerRow(m_held.left, m_held.right) * m_held.numRows();
  if (m_bytes.size() < room) {
    m_bytes.clear();
    if (!GR_SUCCESS(m_bytes.allocateUninitialized(room))) return NITF_STATUS_NO_MEMORY;
  }
  Run pending;
  for (gr_uint16 round = 0; round < m_numRounds; ++round) {
    for (gr_uint32 col = firstBlock(m_held.left); col < endBlock(m_held.right); ++col) {
      GR_RETURN_IF_FAILED(readBlock(stream, col, round, pending));
    }
  }
  return append(stream, {}, pending);
}

/// Reads the rows of one block, or leaves them pending.
GR_STATUS NITFBlockRows::readBlock(GRIOStreamInf& stream, gr_uint32 blockCol, gr_uint16 round,
                                   Run& pending) {
  gr_uint64 offset = 0;
  GR_RETURN_IF_FAILED(locate(blockNumber(blockCol, round), offset));
  if (offset == NITFBlockTable::ABSENT) return GR_STATUS_OK;
  const gr_uint64 firstRow = m_held.top % m_blockRows;
  Run run;
  run.offset = offset + firstRow * m_samples.rowBytes;
  run.place = placeOf(blockCol, round);
  run.length = m_held.numRows() * m_samples.rowBytes;
  if (!m_isByBand) return append(stream, run, pending);
  for (gr_uint32 band = 0; band < m_samples.numBands; ++band) {
    GR_RETURN_IF_FAILED(append(stream, run, pending));
    run.offset += m_samples.bandBytes;
    run.place += run.length;
  }
  return GR_STATUS_OK;
}

/// Makes `run` a part of the pending one where it follows that; else reads the pending one first.
GR_STATUS NITFBlockRows::append(GRIOStreamInf& stream, const Run& run, Run& pending) {
  const bool follows =
      pending.offset + pending.length == run.offset && pending.place + pending.length == run.place;
  if (pending.length > 0 && follows) {
    pending.length += run.length;
    return GR_STATUS_OK;
  }
  const Run ready = std::exchange(pending, run);
  if (ready.length == 0) return GR_STATUS_OK;
  return nitf_readBytesAt(stream, ready.offset, m_bytes.data() + ready.place, ready.length);
}

void NITFBlockRows::copyTo(GRISceneBuffer& buffer, gr_uint32 col, gr_uint32 row,
                           const NITFImageRect& rect) {
  assert(m_held.contains(rect));
  GRIRawSamples samples = m_samples;
  if (m_isByBand) samples.bandBytes = m_held.numRows() * samples.rowBytes;
  for (gr_uint32 blockCol = firstBlock(rect.left); blockCol < endBlock(rect.right); ++blockCol) {
    const gr_uint32 left = std::max(rect.left, blockCol * m_blockCols);
    const gr_uint64 blockRight = (gr_uint64{blockCol} + 1) * m_blockCols;
    const gr_uint64 right = std::min<gr_uint64>(rect.right, blockRight);
    const GRIRawRect part = {left % m_blockCols, rect.top - m_held.top,
                             static_cast<gr_uint32>(right - left), rect.numRows()};
    for (gr_uint16 round = 0; round < m_numRounds; ++round) {
      if (!m_segment->getBlocks().isPresent(blockNumber(blockCol, round))) continue;
      samples.offset = placeOf(blockCol, round);
      gri_copyRawSamples(m_bytes.data(), samples, part, buffer,
                         {col + left - rect.left, row, round}, m_planes.data());
    }
  }
}
