#include "nitf/nitf_fileHeader.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_dataSegment.h"
#include "nitf/nitf_graphicSegment.h"
#include "nitf/nitf_imageSegment.h"
#include "nitf/nitf_labelSegment.h"
#include "nitf/nitf_resSegment.h"
#include "nitf/nitf_textSegment.h"

namespace {

constexpr gr_uint64 UNKNOWN_SIZE = 999999999999;  // FL of a file that doesn't state its size

/// The largest number of so many digits, with which a file in the making marks a length.
gr_uint64 nines(gr_uint32 width) {
  gr_uint64 number = 0;
  for (gr_uint32 i = 0; i < width; ++i) number = number * 10 + 9;
  return number;
}

}  // namespace

NITFSegmentLists::NITFSegmentLists() = default;
NITFSegmentLists::~NITFSegmentLists() = default;

NITFFileHeader::NITFFileHeader(const NITFImageManager& manager, GRIOStreamInf& stream,
                               gr_uint64 fileSize)
    : NITFSegment(manager, stream, "FH", NITFAreas::USER_AND_EXTENSION, {.dataLength = fileSize}),
      m_fileSize(fileSize) {}

GR_STATUS NITFFileHeader::readHeader(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(readVersion(fields));
  GR_RETURN_IF_FAILED(fields.skip(2));  // CLEVEL
  GR_RETURN_IF_FAILED(fields.readText(m_STYPE));
  GR_RETURN_IF_FAILED(fields.readText(m_OSTAID));
  GR_RETURN_IF_FAILED(fields.readText(m_FDT));
  GR_RETURN_IF_FAILED(fields.readText(m_FTITLE));
  GR_RETURN_IF_FAILED(readSecurity(fields));
  GR_RETURN_IF_FAILED(fields.skip(5 + 5));  // FSCOP, FSCPYS
  GR_RETURN_IF_FAILED(readEncryption(fields));
  GR_RETURN_IF_FAILED(readName(fields));
  GR_RETURN_IF_FAILED(fields.skip(18));  // OPHONE, of which no record is made
  GR_RETURN_IF_FAILED(readLengths(fields));
  return readTables(fields);
}

GR_STATUS NITFFileHeader::readVersion(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(m_FHDR));
  GR_RETURN_IF_FAILED(fields.readText(m_FVER));
  if (m_FHDR == "NITF") {
    if (m_FVER == "01.10") return NITF_STATUS_VERSION_11;
    if (m_FVER == "02.00") setVersion(NITF_VERSION_20);
    if (m_FVER == "02.10") setVersion(NITF_VERSION_21);
  } else if (m_FHDR == "NSIF" && m_FVER == "01.00") {
    setVersion(NITF_VERSION_21);
  }
  return getVersion() == NITF_VERSION_NONE ? NITF_STATUS_INVALID_FILE : GR_STATUS_OK;
}

GR_STATUS NITFFileHeader::readName(NITFFieldReader& fields) {
  if (getVersion() == NITF_VERSION_20) return fields.readText(m_ONAME);

  // 2.1 made room for the background colour in front of the name. The name is stored as wide as
  // before, with blanks behind it.
  std::string_view colour;
  GR_RETURN_IF_FAILED(fields.readText(3, colour));
  for (size_t i = 0; i < m_FBKGC.size(); ++i) m_FBKGC[i] = static_cast<gr_uint8>(colour[i]);
  NITFText<24> name;
  GR_RETURN_IF_FAILED(fields.readText(name));
  std::array<char, 27> padded = {};
  padded.fill(' ');
  name.view().copy(padded.data(), padded.size());
  return m_ONAME.set({padded.data(), padded.size()});
}

GR_STATUS NITFFileHeader::readLengths(NITFFieldReader& fields) {
  gr_uint64 fileLength = 0;
  GR_RETURN_IF_FAILED(fields.readCount64(12, fileLength));
  m_isSized = fileLength != UNKNOWN_SIZE;
  if (m_isSized && fileLength != m_fileSize) return NITF_STATUS_INVALID_FILE;
  GR_RETURN_IF_FAILED(fields.readCount(6, m_HL));
  // From here on the tables may be longer than what was read, and must not be longer than HL.
  return fields.setLength(getStream(), std::min<gr_uint64>(m_HL, m_fileSize));
}

GR_STATUS NITFFileHeader::readTables(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(readTable(fields, 6, 10, true, m_images));
  GR_RETURN_IF_FAILED(readTable(fields, 4, 6, true, m_graphics));
  GR_RETURN_IF_FAILED(readTable(fields, 4, 3, true, m_labels));
  GR_RETURN_IF_FAILED(readTable(fields, 4, 5, true, m_texts));
  GR_RETURN_IF_FAILED(readTable(fields, 4, 9, true, m_data));
  return readTable(fields, 4, 7, false, m_reserved);
}

GR_STATUS NITFFileHeader::readTable(NITFFieldReader& fields, gr_uint32 headerWidth,
                                    gr_uint32 dataWidth, bool mayStream, Table& table) {
  gr_uint32 count = 0;
  GR_RETURN_IF_FAILED(fields.readCount(3, count));
  if (count > fields.left() / (headerWidth + dataWidth)) return NITF_STATUS_INVALID_FILE;
  GR_RETURN_IF_FAILED(table.allocate(count));
  for (Entry& entry : table) {
    GR_RETURN_IF_FAILED(fields.readCount(headerWidth, entry.headerLength));
    GR_RETURN_IF_FAILED(fields.readCount64(dataWidth, entry.dataLength));
    const bool isStreaming =
        entry.headerLength == nines(headerWidth) || entry.dataLength == nines(dataWidth);
    if (mayStream && isStreaming) return NITF_STATUS_STREAMING;
  }
  return GR_STATUS_OK;
}

template <typename Segment>
GR_STATUS NITFFileHeader::createKind(const Table& table, gr_uint64& position,
                                     NITFSegmentList<Segment>& list) const {
  GR_RETURN_IF_FAILED(list.allocate(table.size()));
  for (size_t i = 0; i < table.size(); ++i) {
    // No sum here passes 64 bits: positions lie in the file, and a length has ten digits at most.
    const NITFSegmentPlace place = {.number = static_cast<gr_uint32>(i + 1),
                                    .headerOffset = position,
                                    .headerLength = table[i].headerLength,
                                    .dataOffset = position + table[i].headerLength,
                                    .dataLength = table[i].dataLength};
    position = place.dataOffset + place.dataLength;
    if (position > m_fileSize) return NITF_STATUS_INVALID_FILE;
    list[i] = gr_makeUnique<Segment>(getManager(), getStream(), place);
    if (list[i] == nullptr) return GR_STATUS_NO_MEMORY;
    GR_RETURN_IF_FAILED(list[i]->initialize());
  }
  return GR_STATUS_OK;
}

GR_STATUS NITFFileHeader::createSegments(NITFSegmentLists& lists) const {
  gr_uint64 position = m_HL;
  GR_RETURN_IF_FAILED(createKind(m_images, position, lists.images));
  GR_RETURN_IF_FAILED(createKind(m_graphics, position, lists.graphics));
  GR_RETURN_IF_FAILED(createKind(m_labels, position, lists.labels));
  GR_RETURN_IF_FAILED(createKind(m_texts, position, lists.texts));
  GR_RETURN_IF_FAILED(createKind(m_data, position, lists.data));
  GR_RETURN_IF_FAILED(createKind(m_reserved, position, lists.reserved));
  const bool fits = m_isSized ? position == m_fileSize : position <= m_fileSize;
  return fits ? GR_STATUS_OK : NITF_STATUS_INVALID_FILE;
}

GR_STATUS NITFFileHeader::addSegmentMetadata(NITFMetadata& metadata) const {
  const auto count = [](const Table& table) { return static_cast<gr_int32>(table.size()); };
  GR_RETURN_IF_FAILED(metadata.addText("FHDR", m_FHDR.text()));
  GR_RETURN_IF_FAILED(metadata.addText("FVER", m_FVER.text()));
  GR_RETURN_IF_FAILED(metadata.addText("STYPE", m_STYPE.text()));
  GR_RETURN_IF_FAILED(metadata.addText("OSTAID", m_OSTAID.text()));
  GR_RETURN_IF_FAILED(metadata.addText("FDT", m_FDT.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("FTITLE", m_FTITLE.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("ONAME", m_ONAME.text()));
  GR_RETURN_IF_FAILED(metadata.addInt("NUMI", count(m_images)));
  GR_RETURN_IF_FAILED(metadata.addInt("NUMS", count(m_graphics)));
  GR_RETURN_IF_FAILED(metadata.addInt("NUML", count(m_labels)));
  GR_RETURN_IF_FAILED(metadata.addInt("NUMT", count(m_texts)));
  GR_RETURN_IF_FAILED(metadata.addInt("NUMDES", count(m_data)));
  return metadata.addInt("NUMRES", count(m_reserved));
}
