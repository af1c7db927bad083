#include "nitf/nitf_dataSegment.h"

#include <algorithm>
#include <iterator>

#include "gr_lib_utils/include/gr_status.h"

GR_STATUS NITFDataSegment::readHeader(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(m_DESTAG));
  GR_RETURN_IF_FAILED(fields.skip(2));  // DESVER
  GR_RETURN_IF_FAILED(readSecurity(fields));
  m_isOverflow = m_DESTAG == "TRE_OVERFLOW             " ||
                 m_DESTAG == "Registered Extensions    " || m_DESTAG == "Controlled Extensions    ";
  if (m_isOverflow) {
    GR_RETURN_IF_FAILED(fields.readText(m_DESOFLW));
    GR_RETURN_IF_FAILED(fields.readCount(3, m_DESITEM));
  }
  gr_uint32 length = 0;
  GR_RETURN_IF_FAILED(fields.readCount(4, length));
  return fields.skip(length);  // DESSHF
}

GR_STATUS NITFDataSegment::verifyIsOverflow(std::string_view code, bool isUser,
                                            gr_uint32 number) const {
  struct Row {
    std::string_view area;
    std::string_view code;
    bool isUser;
  };
  constexpr Row ROWS[] = {{"UDHD  ", "FH", true},  {"UDID  ", "IM", true},
                          {"XHD   ", "FH", false}, {"IXSHD ", "IM", false},
                          {"SXSHD ", "SY", false}, {"TXSHD ", "TE", false}};
  if (!m_isOverflow) return NITF_STATUS_INVALID_FILE;
  const auto* const row = std::find_if(std::begin(ROWS), std::end(ROWS),
                                       [this](const Row& r) { return m_DESOFLW == r.area; });
  if (row == std::end(ROWS)) return GR_STATUS_OK;
  const gr_uint32 itsNumber = row->code == "FH" ? 0 : m_DESITEM;
  const bool agrees = code == row->code && isUser == row->isUser && number == itsNumber;
  return agrees ? GR_STATUS_OK : NITF_STATUS_INVALID_FILE;
}
