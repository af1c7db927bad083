#include "nitf/nitf_textSegment.h"

GR_STATUS NITFTextSegment::readHeader(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(m_TEXTID));
  GR_RETURN_IF_FAILED(fields.readText(m_TXTALVL));
  GR_RETURN_IF_FAILED(fields.readText(m_TXTDT));
  GR_RETURN_IF_FAILED(fields.readText(m_TXTITL));
  GR_RETURN_IF_FAILED(readSecurity(fields));
  GR_RETURN_IF_FAILED(readEncryption(fields));
  return fields.skip(3);  // TXTFMT
}

GR_STATUS NITFTextSegment::readData() { return readWholeData(m_data); }

GR_STATUS NITFTextSegment::addSegmentMetadata(NITFMetadata& metadata) const {
  GR_RETURN_IF_FAILED(metadata.addText("TEXTID", m_TEXTID.text()));
  GR_RETURN_IF_FAILED(metadata.addText("TXTALVL", m_TXTALVL.text()));
  GR_RETURN_IF_FAILED(metadata.addText("TXTDT", m_TXTDT.text()));
  GR_RETURN_IF_FAILED(metadata.addText("TXTITL", m_TXTITL.text()));
  return metadata.addBytes("DATA", m_data.span());
}
