#include "image/gri_sceneBuffer.h"

#include <cassert>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_pixel.h"

namespace {

void throwIfFailed(GR_STATUS status) {
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
}

}  // namespace

GRISceneBuffer::GRISceneBuffer(const GRIPixel& pixelProps, gr_uint32 totalNumCols,
                               gr_uint32 totalNumRows, void** data)
    : GRISceneBuffer(pixelProps, totalNumCols, totalNumRows, 0, 0, totalNumCols, totalNumRows,
                     data) {}

GRISceneBuffer::GRISceneBuffer(const GRIPixel& pixelProps, gr_uint32 totalNumCols,
                               gr_uint32 totalNumRows, gr_uint32 colOffset, gr_uint32 rowOffset,
                               gr_uint32 windowNumCols, gr_uint32 windowNumRows, void** data)
    : m_data(data),
      m_totalNumCols(totalNumCols),
      m_totalNumRows(totalNumRows),
      m_windowColOffset(colOffset),
      m_windowRowOffset(rowOffset),
      m_windowNumCols(windowNumCols),
      m_windowNumRows(windowNumRows) {
  if (data == nullptr) allocatePlanes(pixelProps);
  setWindow(pixelProps);
}

GRISceneBuffer::GRISceneBuffer(const GRISceneBuffer& parent, gr_uint32 colOffset,
                               gr_uint32 rowOffset)
    : GRISceneBuffer(parent, colOffset, rowOffset, parent.m_windowNumCols - colOffset,
                     parent.m_windowNumRows - rowOffset) {}

GRISceneBuffer::GRISceneBuffer(const GRISceneBuffer& parent, gr_uint32 colOffset,
                               gr_uint32 rowOffset, gr_uint32 windowNumCols,
                               gr_uint32 windowNumRows)
    : m_data(parent.m_data),
      m_totalNumCols(parent.m_totalNumCols),
      m_totalNumRows(parent.m_totalNumRows),
      m_windowColOffset(parent.m_windowColOffset + colOffset),
      m_windowRowOffset(parent.m_windowRowOffset + rowOffset),
      m_windowNumCols(windowNumCols),
      m_windowNumRows(windowNumRows) {
  assert(gr_uint64{colOffset} + windowNumCols <= parent.m_windowNumCols);
  assert(gr_uint64{rowOffset} + windowNumRows <= parent.m_windowNumRows);
  setWindow(*parent.m_pixelProps);
}

GRISceneBuffer::~GRISceneBuffer() = default;

/// What all buffers have, with and without planes of their own: from the sizes and m_data.
void GRISceneBuffer::setWindow(const GRIPixel& pixelProps) {
  assert(m_totalNumCols >= m_windowNumCols && m_totalNumRows >= m_windowNumRows);
  // The offset of an empty window may be the very end.
  assert(m_windowColOffset <= m_totalNumCols && m_windowRowOffset <= m_totalNumRows);
  assert(m_windowColOffset <= m_totalNumCols - m_windowNumCols);
  assert(m_windowRowOffset <= m_totalNumRows - m_windowNumRows);

  m_numBands = pixelProps.getNumBands();
  m_pixelProps = gr_makeUnique<GRIPixel>(pixelProps);
  if (m_pixelProps == nullptr) throw GRUtilException(GR_STATUS_NO_MEMORY);
  throwIfFailed(m_bytesPerSample.allocate(m_numBands));
  throwIfFailed(m_windowData.allocate(m_numBands));
  for (gr_uint16 band = 0; band < m_numBands; ++band) {
    m_bytesPerSample[band] = pixelProps.getSample(band).getNumBytes();
    m_windowData[band] = getSample(m_windowColOffset, m_windowRowOffset, band);
  }
}

void GRISceneBuffer::allocatePlanes(const GRIPixel& pixelProps) {
  const gr_uint64 numSamples = gr_uint64{m_totalNumCols} * m_totalNumRows;
  throwIfFailed(m_ownedData.allocate(pixelProps.getNumBands()));
  throwIfFailed(m_ownedPlanes.allocate(pixelProps.getNumBands()));
  for (gr_uint16 band = 0; band < pixelProps.getNumBands(); ++band) {
    const gr_uint32 width = pixelProps.getSample(band).getNumBytes();
    // Below 2^64 after the first test, which is far more than there is memory.
    if (numSamples > SIZE_MAX / 16) throw GRUtilException(GR_STATUS_NO_MEMORY);
    throwIfFailed(m_ownedPlanes[band].allocate(numSamples * width));
    m_ownedData[band] = m_ownedPlanes[band].data();
  }
  m_data = m_ownedData.data();
}

gr_uint32 GRISceneBuffer::getBytesPerSample(gr_uint16 band) const {
  assert(band < m_numBands);
  return m_bytesPerSample[band];
}

size_t GRISceneBuffer::getRowBytes(gr_uint16 band) const {
  return size_t{m_totalNumCols} * getBytesPerSample(band);
}

void* GRISceneBuffer::getTotalBandData(gr_uint16 band) const {
  assert(band < m_numBands);
  return m_data[band];
}

void* GRISceneBuffer::getWindowBandData(gr_uint16 band) const {
  assert(band < m_numBands);
  return m_windowData[band];
}

bool GRISceneBuffer::inWindow(gr_uint32 col, gr_uint32 row) const {
  return col >= m_windowColOffset && col - m_windowColOffset < m_windowNumCols &&
         row >= m_windowRowOffset && row - m_windowRowOffset < m_windowNumRows;
}

void* GRISceneBuffer::getSample(gr_uint32 col, gr_uint32 row, gr_uint16 band) const {
  const size_t index = size_t{row} * m_totalNumCols + col;
  return static_cast<gr_uint8*>(getTotalBandData(band)) + index * getBytesPerSample(band);
}

void* GRISceneBuffer::getSampleInWindow(gr_uint32 col, gr_uint32 row, gr_uint16 band) const {
  const size_t index = size_t{row} * m_totalNumCols + col;
  return static_cast<gr_uint8*>(getWindowBandData(band)) + index * getBytesPerSample(band);
}

gr_uint32 GRISceneBuffer::addAlignment(gr_uint32 value, gr_uint32 byteAlignment) {
  assert(byteAlignment != 0);
  const gr_uint32 over = value % byteAlignment;
  return over == 0 ? value : value + (byteAlignment - over);
}

gr_uint64 GRISceneBuffer::windowBytes(gr_uint16 band) const {
  return gr_uint64{m_windowNumCols} * m_windowNumRows * getBytesPerSample(band);
}

bool GRISceneBuffer::bandsHaveOneWidth() const {
  for (const gr_uint32 bytes : m_bytesPerSample) {
    if (bytes != m_bytesPerSample[0]) return false;
  }
  return true;
}
