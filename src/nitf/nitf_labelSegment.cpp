#include "nitf/nitf_labelSegment.h"

GR_STATUS NITFLabelSegment::readHeader(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(m_LID));
  GR_RETURN_IF_FAILED(readSecurity(fields));
  GR_RETURN_IF_FAILED(readEncryption(fields));
  // LFS, LCW, LCH, LDLVL, LALVL, LLOC, LTC, LBC
  return fields.skip(1 + 2 + 2 + 3 + 3 + 10 + 3 + 3);
}

GR_STATUS NITFLabelSegment::readData() { return readWholeData(m_data); }
