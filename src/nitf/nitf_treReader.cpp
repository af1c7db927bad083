#include "nitf/nitf_treReader.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_fieldReader.h"
#include "nitf/nitf_metadata.h"
#include "nitf/nitf_readBytes.h"
#include "nitf/nitf_text.h"

namespace {

constexpr gr_uint32 CETAG_WIDTH = 6;
constexpr gr_uint32 CEL_WIDTH = 5;
constexpr gr_uint32 HEADER_LENGTH = CETAG_WIDTH + CEL_WIDTH;

constexpr std::array<std::string_view, 33> KNOWN_TAGS = {
    "J2KLRA", "USE00A", "STDIDC", "RPC00A", "RPC00B", "PIAIMC", "BLOCKA", "PIAIMB", "PIAPEA",
    "PIAPRC", "MHXDTG", "MHXDOF", "MHUDTG", "MHUDOF", "IMUDTG", "IMUDOF", "IMXDTG", "IMXDOF",
    "IOMAPA", "IXTAGA", "IXTAGB", "IXTAGC", "IXTAGD", "IXTAGE", "IXTAGF", "IXTAGG", "IXTAGH",
    "IXTAGI", "IXTAGJ", "IXTAGK", "IXTAGL", "JITCID", "NBLOCA"};

bool isKnown(std::string_view tag) {
  return std::find(KNOWN_TAGS.begin(), KNOWN_TAGS.end(), tag) != KNOWN_TAGS.end();
}

/// The tag comes from the file: nothing in it may move somebody's cursor.
void warnOf(std::string_view tag) {
  std::array<char, CETAG_WIDTH + 1> shown = {};
  std::replace_copy_if(
      tag.begin(), tag.end(), shown.begin(), [](char c) { return c < ' ' || c > '~'; }, '?');
  static_cast<void>(std::fprintf(stderr, "*** NITF warning: unhandled TRE, %s\n", shown.data()));
}

struct Header {
  NITFText<CETAG_WIDTH> CETAG;
  gr_uint32 CEL = 0;  // bytes of CEDATA
};

GR_STATUS readHeader(GRIOStreamInf& stream, gr_uint64 offset, Header& header) {
  std::array<char, HEADER_LENGTH> bytes = {};
  GR_RETURN_IF_FAILED(nitf_readBytesAt(stream, offset, bytes.data(), bytes.size()));
  NITFFieldReader fields;
  GR_RETURN_IF_FAILED(fields.initialize(bytes.data(), bytes.size()));
  GR_RETURN_IF_FAILED(fields.readText(header.CETAG));
  return fields.readCount(CEL_WIDTH, header.CEL);
}

}  // namespace

GR_STATUS NITFTREReader::addMetadata(GRIMetadataDatabase& database, std::string_view prefix) const {
  NITFMetadata metadata(database, prefix);
  GRIOStreamOpener opener(m_stream);
  GR_RETURN_IF_FAILED(opener.open());
  const auto readAll = [&]() -> GR_STATUS {
    gr_uint64 offset = m_offset;
    gr_uint64 left = m_length;
    while (left != 0) {
      Header header;
      if (left < HEADER_LENGTH) return NITF_STATUS_INVALID_FILE;
      GR_RETURN_IF_FAILED(readHeader(m_stream, offset, header));
      offset += HEADER_LENGTH;
      left -= HEADER_LENGTH;
      if (header.CEL > left) return NITF_STATUS_INVALID_FILE;
      GRArray<gr_uint8> CEDATA;
      GR_RETURN_IF_FAILED(CEDATA.allocateUninitialized(header.CEL));
      GR_RETURN_IF_FAILED(nitf_readBytesAt(m_stream, offset, CEDATA.data(), CEDATA.size()));
      GR_RETURN_IF_FAILED(metadata.addTRE(header.CETAG.text(), CEDATA.span()));
      if (!isKnown(header.CETAG.view())) warnOf(header.CETAG.view());
      offset += header.CEL;
      left -= header.CEL;
    }
    return GR_STATUS_OK;
  };
  return opener.close(readAll());
}
