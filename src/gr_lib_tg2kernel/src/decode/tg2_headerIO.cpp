#include "gr_lib_tg2kernel/src/decode/tg2_headerIO.h"

#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint8 MAGIC[4] = {'t', 's', 'r', 'a'};
constexpr gr_uint16 MARKER_METADATA_OFFSET = 0xFFD0;
constexpr gr_uint16 MARKER_SUPPORT = 0xFFD2;
constexpr gr_uint16 MARKER_HEADER_END = 0xFFD3;
constexpr gr_uint16 MARKER_BLOCK_TABLE = 0xFFAC;
constexpr gr_uint16 MARKER_BAND = 0xFFAA;

// Headers have no length of their own: only the stream's end ends them.
GRFieldReader fieldsOf(GRIOStreamInf& stream,
                       gr_uint64 bytesLeft = std::numeric_limits<gr_uint64>::max()) {
  return {stream, bytesLeft, TG2_STATUS_READ_ERROR};
}

GR_STATUS readRect(GRFieldReader& fields, TG2Rect& rect) {
  GR_RETURN_IF_FAILED(fields.read(rect.x0));
  GR_RETURN_IF_FAILED(fields.read(rect.y0));
  GR_RETURN_IF_FAILED(fields.read(rect.x1));
  return fields.read(rect.y1);
}

// Numbers as they stand in the file, which are turned where they are.
GR_STATUS readNumbers(GRFieldReader& fields, std::span<gr_uint32> numbers) {
  GR_RETURN_IF_FAILED(
      fields.read(reinterpret_cast<gr_uint8*>(numbers.data()), numbers.size_bytes()));
  for (gr_uint32& number : numbers) {
    gr_uint8 bytes[sizeof(number)];
    std::memcpy(bytes, &number, sizeof(number));
    number = gr_uint32{bytes[0]} << 24 | gr_uint32{bytes[1]} << 16 | gr_uint32{bytes[2]} << 8 |
             gr_uint32{bytes[3]};
  }
  return GR_STATUS_OK;
}

bool isInside(gr_int32 first, gr_int32 last, gr_uint32 wholeSize, gr_int32 level) {
  return first >= 0 && first <= last && last <= gr_int32((wholeSize - 1) >> level);
}

}  // namespace

gr_uint32 TG2MainHeader::getSubbandOffset(gr_uint32 subband) const {
  assert(subband < numSubbands);
  return m_subbandOffsets[subband];
}

GR_STATUS TG2MainHeader::read(GRIOStreamInf& stream) {
  GR_RETURN_IF_FAILED(readFields(stream));
  GR_RETURN_IF_FAILED(readMarkers(stream));
  return checkSupport();
}

GR_STATUS TG2MainHeader::readFields(GRIOStreamInf& stream) {
  GRFieldReader fields = fieldsOf(stream);
  gr_uint8 magic[sizeof(MAGIC)];
  GR_RETURN_IF_FAILED(fields.read(magic, sizeof(magic)));
  if (std::memcmp(magic, MAGIC, sizeof(MAGIC)) != 0) return TG2_STATUS_NOT_TG2;
  GR_RETURN_IF_FAILED(fields.read(version.data(), version.size()));
  if (version[0] > 1 || (version[0] == 1 && version[1] > 1)) return TG2_STATUS_BAD_VERSION;

  GR_RETURN_IF_FAILED(fields.read(numBands));
  GR_RETURN_IF_FAILED(fields.read(numLevels));
  GR_RETURN_IF_FAILED(fields.read(width));
  GR_RETURN_IF_FAILED(fields.read(height));
  constexpr gr_uint32 MAX_SIZE = std::numeric_limits<gr_int32>::max();
  if (numLevels > MAX_LEVELS || width < 1 || width > MAX_SIZE || height < 1 || height > MAX_SIZE) {
    return TG2_STATUS_NOT_TG2;
  }
  numSubbands = 3 * numLevels + 1;
  return readNumbers(fields, std::span(m_subbandOffsets).first(numSubbands));
}

// A marker that isn't known here ends the header without a word: it is that of the first table.
GR_STATUS TG2MainHeader::readMarkers(GRIOStreamInf& stream) {
  GRFieldReader fields = fieldsOf(stream);
  gr_uint16 marker = 0;
  GR_RETURN_IF_FAILED(fields.read(marker));
  metadataOffset = 0;
  if (marker == MARKER_METADATA_OFFSET) {
    GR_RETURN_IF_FAILED(fields.read(metadataOffset));
    GR_RETURN_IF_FAILED(fields.read(marker));
  }
  hasSupportWindow = marker == MARKER_SUPPORT;
  supportRect = {0, 0, static_cast<gr_int32>(width - 1), static_cast<gr_int32>(height - 1)};
  supportLevel = 0;
  if (hasSupportWindow) {
    GR_RETURN_IF_FAILED(readRect(fields, supportRect));
    GR_RETURN_IF_FAILED(fields.read(supportLevel));
    GR_RETURN_IF_FAILED(fields.read(marker));
  }
  endPosition = marker == MARKER_HEADER_END ? stream.tell() : 0;
  return GR_STATUS_OK;
}

GR_STATUS TG2MainHeader::checkSupport() const {
  if (supportLevel < 0 || supportLevel > static_cast<gr_int32>(numLevels)) {
    return TG2_STATUS_LEVEL_TOO_LARGE;
  }
  if (!isInside(supportRect.x0, supportRect.x1, width, supportLevel) ||
      !isInside(supportRect.y0, supportRect.y1, height, supportLevel)) {
    return TG2_STATUS_SUPPORT_TOO_LARGE;
  }
  return GR_STATUS_OK;
}

GR_STATUS TG2BlockTableHeader::read(GRIOStreamInf& stream) {
  GRFieldReader fields = fieldsOf(stream);
  gr_uint16 marker = 0;
  GR_RETURN_IF_FAILED(fields.read(marker));
  if (marker != MARKER_BLOCK_TABLE) return TG2_STATUS_BAD_MARKER;
  GR_RETURN_IF_FAILED(fields.read(noiseOriginX));
  GR_RETURN_IF_FAILED(fields.read(noiseOriginY));
  return fields.read(numBlocks);
}

gr_uint32 TG2BlockEntry::getDataOffset(gr_uint32 band) const {
  assert(band < m_numBands);
  return m_dataOffsets[band];
}

gr_uint32 TG2BlockEntry::getFirstOffset(gr_uint32 band) const {
  for (gr_uint32 b = band; b < m_numBands; ++b) {
    if (m_dataOffsets[b] != 0) return m_dataOffsets[b];
  }
  return 0;
}

GR_STATUS TG2BlockEntry::read(GRIOStreamInf& stream, gr_uint32 numBands) {
  assert(numBands <= MAX_BANDS);
  m_numBands = numBands;
  GRFieldReader fields = fieldsOf(stream);
  GR_RETURN_IF_FAILED(readNumbers(fields, std::span(m_dataOffsets).first(numBands)));
  return readRect(fields, rect);
}

gr_uint32 TG2BandHeader::getRecordOffset(gr_uint32 record) const {
  assert(record < getNumRecords());
  return m_recordOffsets[record];
}

GR_STATUS TG2BandHeader::read(GRIOStreamInf& stream, gr_uint64 bytesLeft, const TG2Rect& block,
                              Encryption* encryption) {
  GRFieldReader fields = fieldsOf(stream, bytesLeft);
  gr_uint16 marker = 0;
  GR_RETURN_IF_FAILED(fields.read(marker));
  if (marker != MARKER_BAND) return TG2_STATUS_BAD_MARKER;

  GR_RETURN_IF_FAILED(fields.read(m_bits.data(), m_bits.size()));
  if (encryption != nullptr) encryption->decrypt(m_bits);
  m_numCodes = std::accumulate(m_bits.begin(), m_bits.end(), size_t{0});
  if (m_numCodes > MAX_CODES) return TG2_STATUS_DECODING;
  GR_RETURN_IF_FAILED(fields.read(m_huffval.data(), m_numCodes));
  if (encryption != nullptr) encryption->decrypt(std::span(m_huffval).first(m_numCodes));

  GR_RETURN_IF_FAILED(fields.read(m_binWidth));
  if (!std::isfinite(m_binWidth) || m_binWidth < 0.0F) return TG2_STATUS_DECODING;
  GR_RETURN_IF_FAILED(fields.read(m_recordWidth));
  GR_RETURN_IF_FAILED(fields.read(m_recordHeight));
  if (m_recordWidth < 1 || m_recordHeight < 1) return TG2_STATUS_BAD_MARKER;

  // Both factors are below 2^31.
  const auto ceilDivide = [](gr_int64 size, gr_int32 record) {
    return gr_ceilDivide(static_cast<gr_uint64>(size), static_cast<gr_uint64>(record));
  };
  const gr_uint64 numRecords =
      ceilDivide(block.getWidth(), m_recordWidth) * ceilDivide(block.getHeight(), m_recordHeight);
  if (numRecords > fields.left() / sizeof(gr_uint32)) return TG2_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(m_recordOffsets.allocateUninitialized(numRecords));
  return readNumbers(fields, m_recordOffsets.span());
}
