#include "gr_lib_tg2kernel/src/decode/tg2_fileDBInfo.h"

#include <algorithm>
#include <cassert>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

// What a reader of records may look at behind a record, and what a file has behind its last one.
constexpr gr_uint64 EXTRA_BYTES = 2;

GR_STATUS seekTo(GRIOStreamInf& stream, gr_uint64 position) {
  return GR_SUCCESS(stream.seek(static_cast<gr_int64>(position), GRIO_SEEK_BEGIN))
             ? GR_STATUS_OK
             : TG2_STATUS_IO_ERROR;
}

}  // namespace

GR_STATUS TG2RecordBuffer::fetch(gr_uint64 offset, gr_uint64 length, gr_uint64 end,
                                 std::span<const gr_uint8>& data) {
  if (offset < m_begin || offset + length > m_begin + m_bytes.size()) {
    // Twice as much each time, while it turns out to be of use.
    constexpr gr_uint64 FIRST_AHEAD = 4096;
    constexpr gr_uint64 MOST_AHEAD = 65536;
    m_aheadLength = offset == m_nextOffset ? std::clamp(2 * m_aheadLength, FIRST_AHEAD, MOST_AHEAD)
                                           : gr_uint64{0};
    GR_RETURN_IF_FAILED(
        read(offset, length, std::max(length, std::min(m_aheadLength, end - offset))));
  }
  m_nextOffset = offset + length - EXTRA_BYTES;
  data = std::span<const gr_uint8>(m_bytes.span())
             .subspan(static_cast<size_t>(offset - m_begin), static_cast<size_t>(length));
  return GR_STATUS_OK;
}

// Reads `wantedLength` bytes, of which `length` must come.
GR_STATUS TG2RecordBuffer::read(gr_uint64 offset, gr_uint64 length, gr_uint64 wantedLength) {
  m_bytes.clear();
  m_begin = offset;
  GR_RETURN_IF_FAILED(m_bytes.reserve(wantedLength));
  GR_RETURN_IF_FAILED(seekTo(m_stream, offset));
  while (m_bytes.size() < wantedLength) {
    constexpr gr_uint64 MAX_READ = 0x40000000;
    const auto step = static_cast<gr_uint32>(std::min(wantedLength - m_bytes.size(), MAX_READ));
    const gr_uint32 count = m_stream.read(m_bytes.end(), step);
    m_bytes.extend(count);
    if (count != step) break;
  }
  return m_bytes.size() >= length ? GR_STATUS_OK : TG2_STATUS_READ_ERROR;
}

GR_STATUS FileBand::initialize(gr_uint64 offset, gr_uint64 end, gr_uint64 streamLength,
                               const TG2Rect& block, Encryption* encryption) {
  if (offset > streamLength) return TG2_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(seekTo(m_stream, offset));
  GR_RETURN_IF_FAILED(m_bandData.read(m_stream, streamLength - offset, block, encryption));
  m_end = end;
  // A sample takes 8 bytes at most. Without a limit, any number of blocks of a sample each could
  // have all of the file as their record.
  constexpr gr_uint64 MOST_BYTES_PER_SAMPLE = 64;
  constexpr gr_uint64 MOST_BYTES_BESIDE = 4096;
  const auto width = std::min<gr_int64>(m_bandData.getRecordWidth(), block.getWidth());
  const auto height = std::min<gr_int64>(m_bandData.getRecordHeight(), block.getHeight());
  m_mostRecordBytes = gr_saturatingAdd(
      gr_saturatingMultiply(static_cast<gr_uint64>(width) * static_cast<gr_uint64>(height),
                            MOST_BYTES_PER_SAMPLE),
      MOST_BYTES_BESIDE);
  return hasGoodRecords(streamLength) ? GR_STATUS_OK : TG2_STATUS_READ_ERROR;
}

bool FileBand::hasGoodRecords(gr_uint64 streamLength) const {
  gr_uint64 previous = 0;
  for (gr_uint32 i = 0; i < getNumRecords(); ++i) {
    const gr_uint64 offset = m_bandData.getRecordOffset(i);
    if (offset <= previous) return false;
    previous = offset;
  }
  return previous <= m_end && m_end + EXTRA_BYTES <= streamLength;
}

void FileBand::getRecordSize(gr_int32& width, gr_int32& height) const {
  width = m_bandData.getRecordWidth();
  height = m_bandData.getRecordHeight();
}

gr_uint64 FileBand::getRecordLength(gr_uint32 i) const {
  assert(i < getNumRecords());
  const gr_uint64 end = i + 1 < getNumRecords() ? m_bandData.getRecordOffset(i + 1) : m_end;
  return end - m_bandData.getRecordOffset(i);
}

GR_STATUS FileBand::getRecord(gr_uint32 i, std::span<const gr_uint8>& data) {
  const gr_uint64 length = std::min(getRecordLength(i) + EXTRA_BYTES, m_mostRecordBytes);
  return m_records.fetch(m_bandData.getRecordOffset(i), length, m_end + EXTRA_BYTES, data);
}

GR_STATUS TG2FileSubbandInfo::initialize(const Place& place, gr_uint32 width, gr_uint32 height,
                                         bool cacheBlocks) {
  m_tableOffset = place.tableOffset;
  GRArray<TG2Rect> rects;
  GR_RETURN_IF_FAILED(rects.allocate(place.numBlocks));
  GR_RETURN_IF_FAILED(m_blockEnds.allocateUninitialized(place.numBlocks));
  GR_RETURN_IF_FAILED(
      seekTo(m_file.stream, TG2BlockEntry::getPosition(m_tableOffset, 0, m_file.numBands)));
  for (gr_uint32 k = 0; k < place.numBlocks; ++k) {
    TG2BlockEntry entry;
    GR_RETURN_IF_FAILED(entry.read(m_file.stream, m_file.numBands));
    rects[k] = entry.rect;
    m_blockEnds[k] = entry.getFirstOffset(0);  // where it begins, as yet
  }
  gr_uint64 end = place.end;
  for (gr_uint32 k = place.numBlocks; k-- > 0;) {
    const gr_uint64 begin = m_blockEnds[k];
    m_blockEnds[k] = end;
    if (begin != 0) end = begin;
  }
  GR_RETURN_IF_FAILED(makeGrid(rects.span(), width, height));
  m_mostKeptBytes = cacheBlocks ? std::max(m_file.length, MOST_KEPT_BYTES) : MOST_KEPT_BYTES;
  return m_cache.allocate(place.numBlocks);
}

GR_STATUS TG2FileSubbandInfo::getBlock(gr_uint32 index, TG2Block*& block,
                                       std::unique_ptr<TG2Block>& owned) {
  assert(index < getNumBlocks());
  block = nullptr;
  owned.reset();
  if (m_cache[index] == nullptr) {
    std::unique_ptr<TG2Block> made;
    gr_uint64 bytes = 0;
    GR_RETURN_IF_FAILED(readBlock(index, made, bytes));
    GR_RETURN_IF_FAILED(keep(index, std::move(made), bytes));
  }
  block = m_cache[index].get();
  return GR_STATUS_OK;
}

GR_STATUS TG2FileSubbandInfo::keep(gr_uint32 index, std::unique_ptr<TG2Block> block,
                                   gr_uint64 bytes) {
  // The last one is kept whatever its size: the next strip asks for it again.
  if (m_keptBytes + bytes > m_mostKeptBytes) forgetBlocks();
  GR_RETURN_IF_FAILED(m_kept.append(index));
  m_cache[index] = std::move(block);
  m_keptBytes += bytes;
  return GR_STATUS_OK;
}

void TG2FileSubbandInfo::forgetBlocks() {
  for (const gr_uint32 index : m_kept) m_cache[index].reset();
  m_kept.clear();
  m_keptBytes = 0;
}

GR_STATUS TG2FileSubbandInfo::readBlock(gr_uint32 index, std::unique_ptr<TG2Block>& block,
                                        gr_uint64& bytes) {
  GR_RETURN_IF_FAILED(
      seekTo(m_file.stream, TG2BlockEntry::getPosition(m_tableOffset, index, m_file.numBands)));
  TG2BlockEntry entry;
  GR_RETURN_IF_FAILED(entry.read(m_file.stream, m_file.numBands));
  // The rectangle that was checked: what the stream says now may have changed.
  const TG2Rect rect = getBlockRect(index);
  std::unique_ptr<TG2Block> made = gr_makeUnique<TG2Block>(m_file.numBands, index, rect);
  if (made == nullptr) return GR_STATUS_NO_MEMORY;
  bytes = sizeof(TG2Block);
  for (gr_uint32 band = 0; band < m_file.numBands; ++band) {
    const gr_uint32 offset = entry.getDataOffset(band);
    if (offset == 0) continue;
    const gr_uint32 next = entry.getFirstOffset(band + 1);
    std::unique_ptr<FileBand> coded = gr_makeUnique<FileBand>(m_file.stream, m_records);
    if (coded == nullptr) return GR_STATUS_NO_MEMORY;
    GR_RETURN_IF_FAILED(coded->initialize(offset, next != 0 ? next : m_blockEnds[index],
                                          m_file.length, rect, m_file.encryption));
    bytes += sizeof(FileBand) + coded->getNumRecords() * sizeof(gr_uint32);
    made->setBand(band, std::move(coded));
  }
  block = std::move(made);
  return GR_STATUS_OK;
}

// The subbands use the stream, so they go first.
TG2FileDBInfo::~TG2FileDBInfo() { m_subbands.clear(); }

GR_STATUS TG2FileDBInfo::initialize() {
  GR_RETURN_IF_FAILED(openStream());
  const GR_STATUS status = readIndex();
  const GR_STATUS closed = closeStream();
  return GR_SUCCESS(status) ? closed : status;
}

GR_STATUS TG2FileDBInfo::readIndex() {
  const gr_int64 length = GRIOStreamUtils::getStreamLength(*m_stream);
  if (length < 0) return TG2_STATUS_IO_ERROR;
  m_length = static_cast<gr_uint64>(length);
  GR_RETURN_IF_FAILED(seekTo(*m_stream, 0));
  TG2MainHeader header;
  GR_RETURN_IF_FAILED(header.read(*m_stream));
  GR_RETURN_IF_FAILED(setHeader(header));
  GR_RETURN_IF_FAILED(m_subbands.allocate(getNumSubbands()));
  for (gr_uint32 i = 0; i < getNumSubbands(); ++i) GR_RETURN_IF_FAILED(readSubband(i, header));
  return GR_STATUS_OK;
}

GR_STATUS TG2FileDBInfo::setHeader(const TG2MainHeader& header) {
  if (header.numBands != 1 && header.numBands != 3 && header.numBands != 4) {
    return TESRA_STATUS_UNSUPPORTED_COLORSPACE;
  }
  m_width = header.width;
  m_height = header.height;
  m_numLevels = header.numLevels;
  m_numBands = header.numBands;
  m_version = {header.version[0], header.version[1], header.version[2]};
  m_hasSupport = header.hasSupportWindow;
  m_supportRect = header.supportRect;
  m_supportLevel = header.supportLevel;
  return GR_STATUS_OK;
}

gr_uint64 TG2FileDBInfo::findSubbandEnd(gr_uint32 index, const TG2MainHeader& header) const {
  for (gr_uint32 j = index + 1; j < header.numSubbands; ++j) {
    if (header.getSubbandOffset(j) != 0) return header.getSubbandOffset(j);
  }
  if (header.metadataOffset != 0) return header.metadataOffset;
  return m_length - std::min(m_length, EXTRA_BYTES);
}

GR_STATUS TG2FileDBInfo::readSubband(gr_uint32 index, const TG2MainHeader& header) {
  assert(m_subbands[index] == nullptr);
  const gr_uint64 offset = header.getSubbandOffset(index);
  if (offset == 0) return GR_STATUS_OK;
  if (offset + TG2BlockTableHeader::SIZE > m_length) return TG2_STATUS_READ_ERROR;
  GR_RETURN_IF_FAILED(seekTo(*m_stream, offset));
  TG2BlockTableHeader table;
  GR_RETURN_IF_FAILED(table.read(*m_stream));
  if (table.numBlocks == 0) return GR_STATUS_OK;

  // Tables that share their bytes would make the index larger than the file.
  m_bytesOfEntries += gr_uint64{table.numBlocks} * TG2BlockEntry::getSize(m_numBands);
  if (TG2BlockEntry::getPosition(offset, table.numBlocks, m_numBands) > m_length ||
      m_bytesOfEntries > m_length) {
    return TG2_STATUS_READ_ERROR;
  }
  const TG2FileSubbandInfo::File file = {*m_stream, m_length, m_numBands, getEncryption()};
  std::unique_ptr<TG2FileSubbandInfo> subband =
      gr_makeUnique<TG2FileSubbandInfo>(index, table, file);
  if (subband == nullptr) return GR_STATUS_NO_MEMORY;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  getSubbandSize(index, width, height);
  GR_RETURN_IF_FAILED(subband->initialize({offset, table.numBlocks, findSubbandEnd(index, header)},
                                          width, height, m_cacheBlocks));
  m_subbands[index] = std::move(subband);
  return GR_STATUS_OK;
}

std::unique_ptr<TG2DBInfo> TG2FileDBInfo::clone() {
  std::unique_ptr<GRIOStreamInf> stream(m_stream->duplicate());
  if (stream == nullptr) return nullptr;
  std::unique_ptr<TG2FileDBInfo> made = gr_makeUnique<TG2FileDBInfo>(
      *stream, getEncryption(), addsNoise(), m_keepStreamOpen, m_cacheBlocks);
  if (made == nullptr) return nullptr;
  made->m_ownedStream = std::move(stream);
  return GR_SUCCESS(made->initialize()) ? std::move(made) : nullptr;
}

GR_STATUS TG2FileDBInfo::openStream() {
  if (m_stream->isOpen()) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(m_stream->open());
  m_mustClose = !m_keepStreamOpen;
  return GR_STATUS_OK;
}

GR_STATUS TG2FileDBInfo::closeStream() {
  if (!m_mustClose) return GR_STATUS_OK;
  m_mustClose = false;
  return m_stream->close();
}
