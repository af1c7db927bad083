#include "nitf/nitf_imageManager.h"

#include <cassert>
#include <string_view>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_ioFileStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "metadata/gri_metadataDatabase.h"
#include "nitf/nitf_dataSegment.h"
#include "nitf/nitf_fileHeader.h"
#include "nitf/nitf_graphicSegment.h"
#include "nitf/nitf_imageSegment.h"
#include "nitf/nitf_labelSegment.h"
#include "nitf/nitf_rawBlockReader.h"
#include "nitf/nitf_rawSimpleReader.h"
#include "nitf/nitf_readBytes.h"
#include "nitf/nitf_resSegment.h"
#include "nitf/nitf_textSegment.h"

namespace {

template <typename Segment>
const Segment& segmentOf(const NITFSegmentList<Segment>& list, gr_uint32 number) {
  assert(number - 1 < list.size());
  return *list[number - 1];
}

template <typename Segment>
gr_uint32 countOf(const NITFSegmentList<Segment>& list) {
  return static_cast<gr_uint32>(list.size());
}

template <typename Reader>
GRUtilSmartPointer<NITFImageReader> newReader() {
  return GRUtilSmartPointer<NITFImageReader>(gr_makeUnique<Reader>().release());
}

}  // namespace

NITFImageManager::NITFImageManager() = default;
NITFImageManager::~NITFImageManager() = default;

GR_STATUS NITFImageManager::initialize(const GRFileSpec& fileSpec, bool useWorldFile) {
  try {
    m_fileSpec = fileSpec;
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  m_useWorldFile = useWorldFile;
  m_stream = GRIOStreamUtils::openReadStream(m_fileSpec);
  if (m_stream == nullptr) return NITF_STATUS_OPEN_ERROR;
  const gr_int64 length = GRIOStreamUtils::getStreamLength(*m_stream);
  if (length < 0) return NITF_STATUS_OPEN_ERROR;  // nothing in which one can seek
  m_fileSize = static_cast<gr_uint64>(length);
  GR_RETURN_IF_FAILED(nitf_readBytesAt(*m_stream, 0, m_firstBytes.data(), m_firstBytes.size()));

  m_header = gr_makeUnique<NITFFileHeader>(*this, *m_stream, m_fileSize);
  if (m_header == nullptr) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(m_header->initialize());
  GR_RETURN_IF_FAILED(m_header->createSegments(m_segments));
  setNumImages(getNumImageSegments());
  return m_stream->close();
}

GR_STATUS NITFImageManager::createReader(GRUtilSmartPointer<NITFImageReader>& reader,
                                         gr_uint32 segmentNumber) {
  if (segmentNumber == 0 || segmentNumber > getNumImageSegments()) {
    return NITF_STATUS_SEGMENT_NUMBER;
  }
  const NITFImageSegment& segment = getImageSegment(segmentNumber);
  GR_RETURN_IF_FAILED(segment.getStatus());
  const bool useWorldFile = m_useWorldFile && segmentNumber == 1;

  GRUtilSmartPointer<NITFImageReader> made;
  GR_RETURN_IF_FAILED(makeReader(segment, made));
  std::unique_ptr<GRIOStreamInf> stream;
  GR_RETURN_IF_FAILED(segment.getImageStream(stream));
  retain();  // for the reader
  GR_RETURN_IF_FAILED(made->initialize(
      std::move(stream), GRUtilSmartPointer<NITFImageManager>(this), segment, useWorldFile));
  GR_RETURN_IF_FAILED(made->addSegmentRecords());
  reader = std::move(made);
  return GR_STATUS_OK;
}

GR_STATUS NITFImageManager::makeReader(const NITFImageSegment& segment,
                                       GRUtilSmartPointer<NITFImageReader>& reader) {
  switch (segment.getCompression()) {
    case NITF_COMPRESSION_NONE:
      reader =
          segment.isBlocked() ? newReader<NITFRawBlockReader>() : newReader<NITFRawSimpleReader>();
      break;
    case NITF_COMPRESSION_JPEG:
      return NITF_STATUS_JPEG;
    default:
      // Those with a status of their own have given it before.
      return NITF_STATUS_IC;
  }
  return reader ? GR_STATUS_OK : GR_STATUS_NO_MEMORY;
}

GR_STATUS NITFImageManager::createImageStage(gr_uint32 imageNumber, GRIImageStage*& stage) {
  stage = nullptr;
  GRUtilSmartPointer<NITFImageReader> reader;
  if (imageNumber >= getNumImages()) return NITF_STATUS_SEGMENT_NUMBER;
  GR_RETURN_IF_FAILED(createReader(reader, imageNumber + 1));
  stage = reader.detach();
  return GR_STATUS_OK;
}

GR_STATUS NITFImageManager::mergeMetadata(GRIMetadataDatabase& database) {
  constexpr std::string_view IMAGE_PREFIX = "NITF::IM";
  for (gr_uint32 number = 1; number <= getNumImageSegments(); ++number) {
    GRUtilSmartPointer<NITFImageReader> reader;
    GR_RETURN_IF_FAILED(createReader(reader, number));
    const GRIMetadataDatabase& records = reader->getMetadata();
    for (gr_uint32 i = 0; i < records.getIndexCount(); ++i) {
      const GRIMetadataRecord* record = nullptr;
      GR_RETURN_IF_FAILED(records.getDataByIndex(i, record));
      const std::string_view tag = record->getTagName();
      if (tag.starts_with(IMAGE_PREFIX)) GR_RETURN_IF_FAILED(database.add(*record));
    }
  }
  return GR_STATUS_OK;
}

gr_uint32 NITFImageManager::getNumImageSegments() const { return countOf(m_segments.images); }
gr_uint32 NITFImageManager::getNumGraphicSegments() const { return countOf(m_segments.graphics); }
gr_uint32 NITFImageManager::getNumLabelSegments() const { return countOf(m_segments.labels); }
gr_uint32 NITFImageManager::getNumTextSegments() const { return countOf(m_segments.texts); }
gr_uint32 NITFImageManager::getNumDataSegments() const { return countOf(m_segments.data); }
gr_uint32 NITFImageManager::getNumResSegments() const { return countOf(m_segments.reserved); }

const NITFImageSegment& NITFImageManager::getImageSegment(gr_uint32 number) const {
  return segmentOf(m_segments.images, number);
}
const NITFGraphicSegment& NITFImageManager::getGraphicSegment(gr_uint32 number) const {
  return segmentOf(m_segments.graphics, number);
}
const NITFLabelSegment& NITFImageManager::getLabelSegment(gr_uint32 number) const {
  return segmentOf(m_segments.labels, number);
}
const NITFTextSegment& NITFImageManager::getTextSegment(gr_uint32 number) const {
  return segmentOf(m_segments.texts, number);
}
const NITFDataSegment& NITFImageManager::getDataSegment(gr_uint32 number) const {
  return segmentOf(m_segments.data, number);
}
const NITFResSegment& NITFImageManager::getResSegment(gr_uint32 number) const {
  return segmentOf(m_segments.reserved, number);
}
const char* NITFImageManager::getSegmentIdentifier(gr_uint32 number) const {
  return getImageSegment(number).getIdentifier();
}
