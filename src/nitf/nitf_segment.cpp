#include "nitf/nitf_segment.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_dataSegment.h"
#include "nitf/nitf_fileHeader.h"
#include "nitf/nitf_imageManager.h"
#include "nitf/nitf_readBytes.h"
#include "nitf/nitf_treReader.h"

namespace {

/// A length; and where that isn't 0, the number of the segment that takes the overflow, which the
/// length includes, and the tags.
GR_STATUS readArea(NITFFieldReader& fields, NITFExtensionArea& area) {
  constexpr gr_uint32 OVERFLOW_WIDTH = 3;
  gr_uint32 length = 0;
  GR_RETURN_IF_FAILED(fields.readCount(5, length));
  if (length == 0) return GR_STATUS_OK;
  if (length < OVERFLOW_WIDTH) return NITF_STATUS_INVALID_FILE;
  GR_RETURN_IF_FAILED(fields.readCount(OVERFLOW_WIDTH, area.overflow));
  area.length = length - OVERFLOW_WIDTH;
  area.offset = fields.filePosition();
  return fields.skip(area.length);
}

}  // namespace

NITFSegment::NITFSegment(const NITFImageManager& manager, GRIOStreamInf& stream, const char* code,
                         NITFAreas areas, const NITFSegmentPlace& place)
    : m_manager(manager), m_stream(stream), m_code(code), m_areas(areas), m_place(place) {
  makePrefix();
}

void NITFSegment::makePrefix() {
  // A header counts its segments with three digits.
  const gr_uint32 number = std::min(m_place.number, gr_uint32{999});
  static_cast<void>(
      std::snprintf(m_prefix.data(), m_prefix.size(), "NITF::%.2s%03u::", m_code, number));
}

GR_STATUS NITFSegment::initialize() {
  const bool isFileHeader = std::string_view(m_code) == "FH";
  if (!isFileHeader) m_version = m_manager.getFileHeader().getVersion();
  NITFFieldReader fields;
  const gr_uint64 length =
      isFileHeader ? std::min(m_place.dataLength, FIRST_READ) : m_place.headerLength;
  GR_RETURN_IF_FAILED(fields.initialize(m_stream, m_place.headerOffset, length));
  if (!isFileHeader && !fields.match(m_code)) return NITF_STATUS_INVALID_FILE;
  GR_RETURN_IF_FAILED(readHeader(fields));
  GR_RETURN_IF_FAILED(readAreas(fields));
  // There are writers that count a few bytes too many and leave them blank.
  if (!isFileHeader && !fields.isRestBlank()) return NITF_STATUS_INVALID_FILE;
  return readData();
}

GR_STATUS NITFSegment::readAreas(NITFFieldReader& fields) {
  if (m_areas == NITFAreas::USER_AND_EXTENSION) {
    GR_RETURN_IF_FAILED(readArea(fields, m_userArea));
  }
  if (m_areas == NITFAreas::NONE) return GR_STATUS_OK;
  return readArea(fields, m_extensionArea);
}

GR_STATUS NITFSegment::readSecurity(NITFFieldReader& fields) {
  return m_security.read(fields, m_version);
}

GR_STATUS NITFSegment::readEncryption(NITFFieldReader& fields) {
  std::string_view mark;
  GR_RETURN_IF_FAILED(fields.readText(1, mark));
  return mark == "0" ? GR_STATUS_OK : NITF_STATUS_ENCRYPTED;
}

GR_STATUS NITFSegment::readWholeData(GRArray<gr_uint8>& data) {
  GR_RETURN_IF_FAILED(data.allocateUninitialized(m_place.dataLength));
  GRIOStreamOpener opener(m_stream);
  GR_RETURN_IF_FAILED(opener.open());
  return opener.close(nitf_readBytesAt(m_stream, m_place.dataOffset, data.data(), data.size()));
}

GR_STATUS NITFSegment::addMetadata(GRIMetadataDatabase& database) const {
  NITFMetadata metadata(database, getPrefix());
  GR_RETURN_IF_FAILED(m_security.addMetadata(metadata));
  GR_RETURN_IF_FAILED(addArea(m_userArea, database));
  GR_RETURN_IF_FAILED(addArea(m_extensionArea, database));
  GR_RETURN_IF_FAILED(addOverflow(m_userArea, true, database));
  GR_RETURN_IF_FAILED(addOverflow(m_extensionArea, false, database));
  return addSegmentMetadata(metadata);
}

GR_STATUS NITFSegment::addArea(const NITFExtensionArea& area, GRIMetadataDatabase& database) const {
  return NITFTREReader(m_stream, area.offset, area.length).addMetadata(database, getPrefix());
}

GR_STATUS NITFSegment::addOverflow(const NITFExtensionArea& area, bool isUser,
                                   GRIMetadataDatabase& database) const {
  if (area.overflow == 0) return GR_STATUS_OK;
  if (area.overflow > m_manager.getNumDataSegments()) return NITF_STATUS_INVALID_FILE;
  const NITFDataSegment& segment = m_manager.getDataSegment(area.overflow);
  GR_RETURN_IF_FAILED(segment.verifyIsOverflow(m_code, isUser, getNumber()));
  return NITFTREReader(m_stream, segment.getDataOffset(), segment.getDataLength())
      .addMetadata(database, getPrefix());
}
