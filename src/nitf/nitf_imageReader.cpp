#include "nitf/nitf_imageReader.h"

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "metadata/gri_metadataDatabase.h"
#include "nitf/nitf_fileHeader.h"
#include "nitf/nitf_imageSegment.h"

GR_STATUS NITFImageReader::initialize(std::unique_ptr<GRIOStreamInf> stream,
                                      GRUtilSmartPointer<NITFImageManager> manager,
                                      const NITFImageSegment& segment, bool useWorldFile) {
  m_stream = std::move(stream);
  m_manager = std::move(manager);
  m_segment = &segment;
  setUseWorldFile(useWorldFile);
  try {
    return takeSegment();
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS NITFImageReader::takeSegment() {
  GR_RETURN_IF_FAILED(setPixelProps(m_segment->getPixelProps()));
  setDimensions(m_segment->getHeader().NCOLS, m_segment->getHeader().NROWS);
  GR_RETURN_IF_FAILED(setBackgroundFromHeader());
  GR_RETURN_IF_FAILED(setNoDataFromMask());
  GR_RETURN_IF_FAILED(setRangeFromPrecision());
  GR_RETURN_IF_FAILED(setDefaultGeoCoord(*this));
  bool isChanged = false;
  GR_RETURN_IF_FAILED(readWorldFile(m_manager->getFileSpec(), isChanged, true));
  return moveByLocation();
}

/// The file states one colour for all its images, in bytes; it serves grey and RGB images of up to
/// 16 bits.
GR_STATUS NITFImageReader::setBackgroundFromHeader() {
  if (getNumBands() != 1 && getColorSpace() != GRI_COLORSPACE_RGB) return GR_STATUS_OK;
  const NITFFileHeader::Background& colour = m_manager->getFileHeader().getBackground();
  GRIPixel background(getPixelProps());
  for (gr_uint16 band = 0; band < getNumBands(); ++band) {
    if (getDataType() == GRI_DATATYPE_UINT8) {
      background.setSampleUint8(band, colour[band]);
    } else if (getDataType() == GRI_DATATYPE_UINT16) {
      background.setSampleUint16(band, static_cast<gr_uint16>(colour[band] << 8));
    } else {
      return GR_STATUS_OK;
    }
  }
  return setBackgroundPixel(&background);
}

/// The pad code is one for all bands: its last bytes are the sample, also of a float.
GR_STATUS NITFImageReader::setNoDataFromMask() {
  if (!m_segment->getMask().hasPadCode()) return GR_STATUS_OK;
  const gr_uint32 code = m_segment->getMask().getPadCode();
  const auto low8 = static_cast<gr_uint8>(code);
  const auto low16 = static_cast<gr_uint16>(code);
  GRIPixel noData(getPixelProps());
  for (gr_uint16 band = 0; band < getNumBands(); ++band) {
    switch (noData.getSample(band).getNumBytes()) {
      case 1:
        noData.setSampleValueBytes(band, &low8);
        break;
      case 2:
        noData.setSampleValueBytes(band, &low16);
        break;
      default:
        noData.setSampleValueBytes(band, &code);
        break;
    }
  }
  return setNoDataPixel(&noData);
}

GR_STATUS NITFImageReader::setRangeFromPrecision() {
  const GRISample& first = getPixelProps().getSample(0);
  const gr_uint32 precision = first.getPrecision();
  if (first.getDataType() != GRI_DATATYPE_UINT16 || precision >= 16) return GR_STATUS_OK;
  GRIPixel min(getPixelProps());
  GRIPixel max(getPixelProps());
  min.setAllUint16(0);
  max.setAllUint16(static_cast<gr_uint16>((1U << precision) - 1));
  return setDynamicRange(min, max);
}

/// ILOC places the image in a common coordinate system of the file's, in its own pixels.
GR_STATUS NITFImageReader::moveByLocation() {
  const gr_int32 row = m_segment->getHeader().ilocRow;
  const gr_int32 column = m_segment->getHeader().ilocColumn;
  if (row == 0 && column == 0) return GR_STATUS_OK;
  GRIGeoCoord geoCoord(getGeoCoord());
  geoCoord.setXOrigin(geoCoord.getXOrigin() + column * geoCoord.getXResolution());
  geoCoord.setYOrigin(geoCoord.getYOrigin() + row * geoCoord.getYResolution());
  return setGeoCoord(geoCoord);
}

GR_STATUS NITFImageReader::addSegmentRecords() {
  GRIMetadataDatabase* const records = editMetadata();
  if (records == nullptr) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(m_manager->getFileHeader().addMetadata(*records));
  return m_segment->addMetadata(*records);
}

gr_int64 NITFImageReader::getSourceFileSize() const {
  return static_cast<gr_int64>(m_manager->getFileSize());
}
