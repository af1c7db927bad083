#include "nitf/nitf_resSegment.h"

GR_STATUS NITFResSegment::readHeader(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(m_RESID));
  GR_RETURN_IF_FAILED(fields.skip(2));  // RESVER
  GR_RETURN_IF_FAILED(readSecurity(fields));
  gr_uint32 length = 0;
  GR_RETURN_IF_FAILED(fields.readCount(4, length));
  return fields.skip(length);
}
