#include "nitf/nitf_imageMask.h"

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_readBytes.h"

namespace {

constexpr gr_uint64 FIXED_BYTES = 4 + 2 + 2 + 2;

/// The lengths in front of the tables.
struct Lengths {
  gr_uint16 blockEntry = 0;  // bytes
  gr_uint16 padEntry = 0;    // bytes
  gr_uint16 padCode = 0;     // bits
};

GR_STATUS readFixed(GRIOStreamInf& stream, gr_uint32& pixelOffset, Lengths& lengths) {
  gr_uint8 bytes[FIXED_BYTES];
  GR_RETURN_IF_FAILED(nitf_readBytes(stream, bytes, FIXED_BYTES));
  const auto number = [&bytes](size_t at) {
    return static_cast<gr_uint16>((bytes[at] << 8) | bytes[at + 1]);
  };
  pixelOffset = (gr_uint32{number(0)} << 16) | number(2);
  lengths = {.blockEntry = number(4), .padEntry = number(6), .padCode = number(8)};
  return GR_STATUS_OK;
}

bool isEntryLength(gr_uint16 length) {
  return length == 0 || length == NITFBlockTable::ENTRY_BYTES;
}

}  // namespace

GR_STATUS NITFImageMask::read(GRIOStreamInf& stream, gr_uint64 dataOffset, gr_uint64 dataLength,
                              gr_uint64 numBlocks, NITFBlockTable& table) {
  if (dataLength < FIXED_BYTES) return NITF_STATUS_INVALID_FILE;
  GRIOStreamOpener opener(stream);
  GR_RETURN_IF_FAILED(opener.open());
  GR_RETURN_IF_FAILED(nitf_readBytesAt(stream, dataOffset, nullptr, 0));
  return opener.close(readTables(stream, dataLength, numBlocks, table));
}

GR_STATUS NITFImageMask::readTables(GRIOStreamInf& stream, gr_uint64 dataLength,
                                    gr_uint64 numBlocks, NITFBlockTable& table) {
  Lengths lengths;
  GR_RETURN_IF_FAILED(readFixed(stream, m_pixelOffset, lengths));
  if (m_pixelOffset > dataLength) return NITF_STATUS_INVALID_FILE;
  if (!isEntryLength(lengths.blockEntry) || !isEntryLength(lengths.padEntry)) {
    return NITF_STATUS_INVALID_FILE;
  }
  // All that follows must lie in the data area, which lies in the file: nothing larger is made.
  const auto codeBytes = static_cast<gr_uint32>(gr_ceilDivide(lengths.padCode, 8));
  const gr_uint64 blockTable = gr_saturatingMultiply(numBlocks, lengths.blockEntry);
  const gr_uint64 padTable = gr_saturatingMultiply(numBlocks, lengths.padEntry);
  const gr_uint64 maskLength =
      gr_saturatingAdd(FIXED_BYTES + codeBytes, gr_saturatingAdd(blockTable, padTable));
  if (maskLength > dataLength) return NITF_STATUS_INVALID_FILE;

  GR_RETURN_IF_FAILED(readPadCode(stream, codeBytes));
  if (blockTable == 0) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(table.read(stream, numBlocks));
  // The table of the blocks that hold pad pixels would follow; a reader looks at all pixels.
  table.setEnd(dataLength - maskLength);
  return GR_STATUS_OK;
}

GR_STATUS NITFImageMask::readPadCode(GRIOStreamInf& stream, gr_uint32 numBytes) {
  m_hasPadCode = numBytes != 0;
  for (gr_uint32 i = 0; i < numBytes; ++i) {
    gr_uint8 byte = 0;
    GR_RETURN_IF_FAILED(nitf_readBytes(stream, &byte, 1));
    m_padCode = (m_padCode << 8) | byte;
  }
  return GR_STATUS_OK;
}
