#include "nitf/nitf_graphicSegment.h"

#include "gr_lib_utils/include/gr_status.h"

GR_STATUS NITFGraphicSegment::readHeader(NITFFieldReader& fields) {
  const bool isVersion20 = getVersion() == NITF_VERSION_20;
  GR_RETURN_IF_FAILED(fields.readText(m_SID));
  GR_RETURN_IF_FAILED(fields.skip(20));  // SNAME
  GR_RETURN_IF_FAILED(readSecurity(fields));
  GR_RETURN_IF_FAILED(readEncryption(fields));
  std::string_view format;
  GR_RETURN_IF_FAILED(fields.readText(1, format));
  if (format != "C" && format != "B" && format != "O") return NITF_STATUS_GRAPHIC_VERSION;
  GR_RETURN_IF_FAILED(fields.skip(13));  // SSTRUCT; 2.0: NLIPS, NPIXPL, NWDTH, NBPP
  // SDLVL, SALVL, SROW, SCOL, SBND1
  GR_RETURN_IF_FAILED(fields.skip(3 + 3 + 5 + 5 + 10));
  std::string_view color;
  GR_RETURN_IF_FAILED(fields.readText(1, color));
  if (isVersion20) return skipColors(fields, format == "B", color[0]);
  return fields.skip(10 + 2);  // SBND2, SRES2
}

/// The end of a symbol's fields in 2.0, with the colour table of a bitmap.
GR_STATUS NITFGraphicSegment::skipColors(NITFFieldReader& fields, bool isBitmap, char color) {
  gr_uint32 numColors = 0;
  GR_RETURN_IF_FAILED(fields.skip(6 + 3));  // SNUM, SROT
  GR_RETURN_IF_FAILED(fields.readCount(3, numColors));
  if (!isBitmap || (color != 'C' && color != 'G')) return GR_STATUS_OK;
  const gr_int64 bytesPerColor = color == 'C' ? 3 : 1;
  return fields.skip(numColors * bytesPerColor);
}
