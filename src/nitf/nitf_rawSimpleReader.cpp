#include "nitf/nitf_rawSimpleReader.h"

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_imageSegment.h"

namespace {

GRIRawLayout rawLayout(const NITFImageSegment& segment) {
  if (segment.getPixelProps().getNumBands() == 1) return GRI_RAW_LAYOUT_BIP;
  switch (segment.getLayout()) {
    case NITF_LAYOUT_PIXEL:
      return GRI_RAW_LAYOUT_BIP;
    case NITF_LAYOUT_ROW:
      return GRI_RAW_LAYOUT_BIL;
    default:
      return GRI_RAW_LAYOUT_BSQ;  // with one block "S" is the same as "B"
  }
}

}  // namespace

GR_STATUS NITFRawSimpleReader::initialize(std::unique_ptr<GRIOStreamInf> stream,
                                          GRUtilSmartPointer<NITFImageManager> manager,
                                          const NITFImageSegment& segment, bool useWorldFile) {
  GR_RETURN_IF_FAILED(
      NITFImageReader::initialize(std::move(stream), std::move(manager), segment, useWorldFile));
  if (!segment.getBlocks().isPresent(0)) return GRI_STATUS_RAW_SIZE;
  m_raw = GRUtilSmartPointer<GRIRawImageReader>(gr_makeUnique<GRIRawImageReader>().release());
  if (!m_raw) return GR_STATUS_NO_MEMORY;
  m_raw->setLayout(rawLayout(segment));
  m_raw->setByteOrder(GRI_ENDIAN_BIG);
  return m_raw->initialize(&getStream(), segment.getPixelProps(), getWidth(), getHeight());
}

GR_STATUS NITFRawSimpleReader::decodeBegin(const GRIScene& scene) {
  // A raw image takes an empty stream for one that will be written.
  if (m_raw->getSourceFileSize() == 0) return NITF_STATUS_READ_ERROR;
  return m_raw->decodeBegin(scene);
}

GR_STATUS NITFRawSimpleReader::decodeStrip(GRISceneBuffer& buffer, const GRIScene& scene) {
  const GR_STATUS status = m_raw->decodeStrip(buffer, scene);
  return status == GRI_STATUS_READ_ERROR ? NITF_STATUS_READ_ERROR : status;
}

GR_STATUS NITFRawSimpleReader::decodeEnd() { return m_raw->decodeEnd(); }
