#include "nitf/nitf_imageSubheader.h"

#include "gr_lib_utils/include/gr_status.h"

namespace {

/// Whether a field of one character has one of the given values.
bool isOneOf(const NITFText<1>& field, std::string_view values) {
  return values.find(field.view()[0]) != std::string_view::npos;
}

}  // namespace

GR_STATUS NITFImageSubheader::readIdentification(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(IID1));
  GR_RETURN_IF_FAILED(fields.readText(IDATIM));
  GR_RETURN_IF_FAILED(fields.readText(TGTID));
  return fields.readText(IID2);
}

GR_STATUS NITFImageSubheader::readDescription(NITFFieldReader& fields, NITFVersion version,
                                              bool isCOMRATMissing) {
  GR_RETURN_IF_FAILED(fields.readText(ISORCE));
  GR_RETURN_IF_FAILED(fields.readCount(8, NROWS));
  GR_RETURN_IF_FAILED(fields.readCount(8, NCOLS));
  GR_RETURN_IF_FAILED(fields.readText(PVTYPE));
  GR_RETURN_IF_FAILED(fields.readText(IREP));
  GR_RETURN_IF_FAILED(fields.readText(ICAT));
  GR_RETURN_IF_FAILED(fields.readCount(2, ABPP));
  GR_RETURN_IF_FAILED(fields.readText(PJUST));
  if (!isOneOf(PJUST, "RL")) GR_RETURN_IF_FAILED(PJUST.set("R"));
  GR_RETURN_IF_FAILED(readCoordinates(fields, version));
  GR_RETURN_IF_FAILED(readComments(fields));
  GR_RETURN_IF_FAILED(readCompression(fields, isCOMRATMissing));
  GR_RETURN_IF_FAILED(readBands(fields, version));
  GR_RETURN_IF_FAILED(readBlocks(fields, version));
  GR_RETURN_IF_FAILED(fields.skip(3 + 3));  // IDLVL, IALVL
  GR_RETURN_IF_FAILED(fields.readInt(5, ilocRow));
  GR_RETURN_IF_FAILED(fields.readInt(5, ilocColumn));
  return fields.readText(IMAG);
}

GR_STATUS NITFImageSubheader::readCoordinates(NITFFieldReader& fields, NITFVersion version) {
  GR_RETURN_IF_FAILED(fields.readText(ICORDS));
  if (version == NITF_VERSION_20) {
    // "N" says "none" here, where it is UTM north in 2.1. Writers also leave a blank.
    if (!isOneOf(ICORDS, "UGCN ")) return NITF_STATUS_INVALID_FILE;
    if (ICORDS == "N") GR_RETURN_IF_FAILED(ICORDS.set(" "));
  } else if (!isOneOf(ICORDS, "UGNSD ")) {
    return NITF_STATUS_INVALID_FILE;
  }
  return ICORDS == " " ? GR_STATUS_OK : fields.readText(IGEOLO);
}

GR_STATUS NITFImageSubheader::readComments(NITFFieldReader& fields) {
  gr_uint32 count = 0;
  GR_RETURN_IF_FAILED(fields.readCount(1, count));
  for (gr_uint32 i = 0; i < count; ++i) GR_RETURN_IF_FAILED(fields.readText(ICOM[i]));
  NICOM = count;
  return GR_STATUS_OK;
}

GR_STATUS NITFImageSubheader::readCompression(NITFFieldReader& fields, bool isCOMRATMissing) {
  GR_RETURN_IF_FAILED(fields.readText(IC));
  if (IC == "NC" || IC == "NM") return GR_STATUS_OK;
  // "MB" isn't a code of the standard; those who leave the field out were met with it.
  if (isCOMRATMissing && (IC == "C8" || IC == "MB")) return GR_STATUS_OK;
  return fields.readText(COMRAT);
}

GR_STATUS NITFImageSubheader::readBands(NITFFieldReader& fields, NITFVersion version) {
  GR_RETURN_IF_FAILED(fields.readCount(1, NBANDS));
  if (NBANDS == 0 && version != NITF_VERSION_20) {
    GR_RETURN_IF_FAILED(fields.readCount(5, NBANDS));  // XBANDS
  }
  NITFText<2> representation;
  for (gr_uint32 band = 0; band < NBANDS; ++band) {
    GR_RETURN_IF_FAILED(readBand(fields, representation));
    if (band < IREPBAND.size()) IREPBAND[band] = representation;
  }
  return GR_STATUS_OK;
}

GR_STATUS NITFImageSubheader::readBand(NITFFieldReader& fields, NITFText<2>& representation) {
  GR_RETURN_IF_FAILED(fields.readText(representation));
  GR_RETURN_IF_FAILED(fields.skip(6));                                              // ISUBCAT
  if (!fields.match("N") || !fields.match("   ")) return NITF_STATUS_INVALID_FILE;  // IFC, IMFLT
  gr_uint32 numTables = 0;
  GR_RETURN_IF_FAILED(fields.readCount(1, numTables));
  if (numTables == 0) return GR_STATUS_OK;
  gr_uint32 numEntries = 0;
  GR_RETURN_IF_FAILED(fields.readCount(5, numEntries));
  if (numEntries > MAX_TABLE_ENTRIES) return NITF_STATUS_INVALID_FILE;
  hasTables = true;
  return fields.skip(gr_int64{numTables} * numEntries);
}

GR_STATUS NITFImageSubheader::readBlocks(NITFFieldReader& fields, NITFVersion version) {
  NITFText<1> ISYNC;
  GR_RETURN_IF_FAILED(fields.readText(ISYNC));
  if (!isOneOf(ISYNC, version == NITF_VERSION_20 ? "04" : "0")) return NITF_STATUS_INVALID_FILE;
  GR_RETURN_IF_FAILED(fields.readText(IMODE));
  GR_RETURN_IF_FAILED(fields.readCount(4, NBPR));
  GR_RETURN_IF_FAILED(fields.readCount(4, NBPC));
  GR_RETURN_IF_FAILED(fields.readCount(4, NPPBH));
  GR_RETURN_IF_FAILED(fields.readCount(4, NPPBV));
  if (NPPBH == 0) NPPBH = NCOLS;
  if (NPPBV == 0) NPPBV = NROWS;
  return fields.readCount(2, NBPP);
}
