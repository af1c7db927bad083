#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneReader.h"

#include <algorithm>
#include <cassert>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStore.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDescIter.h"
#include "gr_lib_utils/include/gr_checkedMath.h"

namespace {

constexpr gr_uint32 READ_AHEAD = 4096;                // bytes
constexpr gr_uint32 POPULATE_READ_AHEAD = 0x40000;    // bytes, of a table of records
constexpr gr_uint32 INTERLEAVED_READ_AHEAD = 0x4000;  // bytes, of records between planes
constexpr gr_uint64 MSE_BYTES = 2;
constexpr gr_uint64 REGION_COUNT_BYTES = 8;

}  // namespace

TG3FilePlaneReader::TG3FilePlaneReader(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                                       GRIOStreamInf& stream, bool useBuffers)
    : m_info(info),
      m_planeset(planeset),
      m_stream(stream),
      m_useBuffers(useBuffers),
      m_fixedBytes((info.hasMse ? MSE_BYTES : 0) + info.keyWidth),
      m_end(planeset.getPlace().getEnd()),
      m_table(READ_AHEAD),
      m_numSlots(info.getSlotsPerSubblock()) {}

GR_STATUS TG3FilePlaneReader::make(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                                   GRIOStreamInf& stream, bool useBuffers,
                                   std::unique_ptr<TG3FilePlaneReader>& reader) {
  std::unique_ptr<TG3FilePlaneReader> made;
  switch (planeset.getStorage()) {
    case TG3_STORAGE_INTERLEAVED:
      made = gr_makeUnique<TG3InterleavedPlaneReader>(info, planeset, stream, useBuffers);
      break;
    case TG3_STORAGE_DATA_FIRST:
      made = gr_makeUnique<TG3DataFirstPlaneReader>(info, planeset, stream, useBuffers);
      break;
    case TG3_STORAGE_RASTER_BLOCK:
      made = gr_makeUnique<TG3RasterBlockPlaneReader>(info, planeset, stream, useBuffers);
      break;
  }
  if (made == nullptr) return TG3_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(made->makeWindows());
  reader = std::move(made);
  return GR_STATUS_OK;
}

GR_STATUS TG3FilePlaneReader::makeWindows() {
  const gr_uint32 count = m_useBuffers ? m_info.getNumSubbands() : 1;
  if (!GR_SUCCESS(m_dataWindows.allocate(count))) return TG3_STATUS_NO_MEMORY;
  for (TG3StreamWindow& window : m_dataWindows) window.setReadAhead(READ_AHEAD);
  return GR_STATUS_OK;
}

GR_STATUS TG3FilePlaneReader::walk(TG3PlaneLocation& /*location*/, gr_uint32 /*target*/,
                                   bool& found) {
  found = false;
  return TG3_STATUS_UNSET;
}

GR_STATUS TG3FilePlaneReader::readRecord(TG3StreamWindow& window, gr_uint64 offset,
                                         TG3PlaneRecord& record) {
  if (offset >= m_end) return TG3_STATUS_READ_ERROR;
  const gr_uint64 length = std::min(gr_uint64{TG3PlaneRecord::LONGEST}, m_end - offset);
  gr_uint8* bytes = nullptr;
  gr_uint64 available = 0;
  GR_RETURN_IF_FAILED(window.peek(m_stream, offset, length, bytes, available));
  return record.read({bytes, static_cast<size_t>(std::min(available, length))},
                     m_planeset.is64Bit());
}

void TG3FilePlaneReader::beginPlanes(const TG3PlaneDesc& desc) {
  m_slot = gr_uint64{desc.component} * m_info.numPlanes + desc.plane;
  m_planes.clear();
  m_planeOffsets.clear();
}

GR_STATUS TG3FilePlaneReader::addPlane(const TG3PlaneRecord& record, gr_uint64 offset) {
  assert(m_slot < m_numSlots);
  if (offset > m_end || record.value > m_end - offset ||
      m_fixedBytes > m_end - offset - record.value) {
    const bool isHeadCut = offset > m_end || m_fixedBytes > m_end - offset;
    return m_useBuffers && isHeadCut ? TG3_STATUS_FORMAT_ERROR : TG3_STATUS_READ_ERROR;
  }
  if (record.value > 0xFFFFFFFF) return TG3_STATUS_FORMAT_ERROR;
  TG3PlaneData plane;
  plane.length = static_cast<gr_uint32>(record.value);
  plane.component = static_cast<gr_uint16>(m_slot / m_info.numPlanes);
  plane.plane = static_cast<gr_uint8>(m_slot % m_info.numPlanes);
  plane.bypass = record.useBypass;
  if (!GR_SUCCESS(m_planes.append(plane)) ||
      !GR_SUCCESS(m_planeOffsets.append(offset + m_fixedBytes))) {
    return TG3_STATUS_NO_MEMORY;
  }
  ++m_slot;
  return GR_STATUS_OK;
}

void TG3FilePlaneReader::endPlanes(gr_uint8* bytes, gr_uint64 offset, TG3SubblockPlanes& planes) {
  for (size_t i = 0; i < m_planes.size(); ++i)
    m_planes[i].data = bytes + (m_planeOffsets[i] - offset);
  planes = m_planes.span();
}

GR_STATUS TG3InterleavedPlaneReader::populate(TG3FilePlaneStore& store) {
  TG3PlaneDescIter slots;
  GR_RETURN_IF_FAILED(slots.initialize(m_info, m_planeset.getOrdering()));
  TG3StreamWindow window(INTERLEAVED_READ_AHEAD);
  gr_uint64 position = m_planeset.getPayloadOffset();
  TG3PlaneRecord record;
  while (!slots.isAtEnd()) {
    GR_RETURN_IF_FAILED(readRecord(window, position, record));
    const gr_uint64 body = position + record.prefixCount;
    if (!record.isLength) {
      if (record.value > slots.getLeft()) return TG3_STATUS_READ_ERROR;
      slots.advance(record.value);
      position = body;
      continue;
    }
    GR_RETURN_IF_FAILED(store.add({slots.get(), body, position}));
    slots.advance(1);
    position = gr_saturatingAdd(body + m_fixedBytes, record.value);
  }
  return GR_STATUS_OK;
}

GR_STATUS TG3InterleavedPlaneReader::readSubblock(const TG3PlaneLocation& first,
                                                  TG3SubblockPlanes& planes) {
  planes = {};
  beginPlanes(first.desc);
  TG3StreamWindow& window = getDataWindow(first.desc.subband);
  const gr_uint64 start = first.lengthOffset;
  gr_uint64 position = start;
  TG3PlaneRecord record;
  gr_uint8* bytes = nullptr;
  while (slotsLeft() > 0) {
    // All of the subblock stays in the window, from its first record on.
    const gr_uint64 used = position - start;
    const gr_uint64 left = m_end - std::min(position, m_end);
    const gr_uint64 length = std::min(gr_uint64{TG3PlaneRecord::LONGEST}, left);
    gr_uint64 available = 0;
    GR_RETURN_IF_FAILED(window.peek(m_stream, start, used + length, bytes, available));
    if (available < used) return TG3_STATUS_READ_ERROR;
    const size_t numBytes = static_cast<size_t>(std::min(available - used, length));
    GR_RETURN_IF_FAILED(record.read({bytes + used, numBytes}, m_planeset.is64Bit()));
    position += record.prefixCount;
    if (!record.isLength) {
      if (record.value > slotsLeft()) break;
      skipSlots(record.value);
      continue;
    }
    GR_RETURN_IF_FAILED(addPlane(record, position));
    position += m_fixedBytes + record.value;
  }
  if (!hasPlanes()) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(window.get(m_stream, start, position - start, bytes));
  endPlanes(bytes, start, planes);
  return GR_STATUS_OK;
}

GR_STATUS TG3DataFirstPlaneReader::populate(TG3FilePlaneStore& store) {
  gr_uint64 position = m_planeset.getPayloadOffset();
  return populateRegion(store, position);
}

GR_STATUS TG3DataFirstPlaneReader::readNumber(gr_uint64 offset, gr_uint64 numBytes,
                                              gr_uint64& number) {
  if (offset > m_end || numBytes > m_end - offset) return TG3_STATUS_READ_ERROR;
  gr_uint8* bytes = nullptr;
  GR_RETURN_IF_FAILED(m_table.get(m_stream, offset, numBytes, bytes));
  number = 0;
  for (gr_uint64 i = 0; i < numBytes; ++i) number = number << 8 | bytes[i];
  return GR_STATUS_OK;
}

GR_STATUS TG3DataFirstPlaneReader::findTable(gr_uint64 region, gr_uint64& table) {
  gr_uint64 field = 0;
  GR_RETURN_IF_FAILED(readNumber(region, getOffsetBytes(), field));
  // Offsets of 64 bits count from where the body of the packet would begin if the region were its
  // first one; those of 32 bits from the packet's header in front of that, as writers make it.
  gr_uint64 from = region - TG3PlanesetPacket::HEAD_BYTES;
  if (!gr_checkedAdd(from, field, table)) return TG3_STATUS_READ_ERROR;
  const gr_uint64 headerBytes = m_planeset.is64Bit() ? 0 : m_planeset.getType().getWrittenSize();
  if (table < headerBytes) return TG3_STATUS_READ_ERROR;
  table -= headerBytes;
  const bool isInside = table >= region + getOffsetBytes() && table <= m_end;
  return isInside ? GR_STATUS_OK : TG3_STATUS_READ_ERROR;
}

GR_STATUS TG3DataFirstPlaneReader::populateRegion(TG3FilePlaneStore& store, gr_uint64& position) {
  TG3PlaneDescIter slots;
  GR_RETURN_IF_FAILED(slots.initialize(m_info, m_planeset.getOrdering()));
  gr_uint64 lengthOffset = 0;
  GR_RETURN_IF_FAILED(findTable(position, lengthOffset));
  gr_uint64 dataOffset = position + getOffsetBytes();
  TG3StreamWindow window(POPULATE_READ_AHEAD);
  TG3PlaneRecord record;
  while (!slots.isAtEnd()) {
    GR_RETURN_IF_FAILED(readRecord(window, lengthOffset, record));
    if (record.isLength) {
      GR_RETURN_IF_FAILED(store.add({slots.get(), dataOffset, lengthOffset}));
      slots.advance(1);
      dataOffset = gr_saturatingAdd(dataOffset, m_fixedBytes + record.value);
    } else {
      if (record.value > slots.getLeft()) return TG3_STATUS_READ_ERROR;
      slots.advance(record.value);
    }
    lengthOffset += record.prefixCount;
  }
  position = lengthOffset;
  return GR_STATUS_OK;
}

GR_STATUS TG3DataFirstPlaneReader::readSubblock(const TG3PlaneLocation& first,
                                                TG3SubblockPlanes& planes) {
  planes = {};
  beginPlanes(first.desc);
  gr_uint64 lengthOffset = first.lengthOffset;
  gr_uint64 dataOffset = first.dataOffset;
  TG3PlaneRecord record;
  while (slotsLeft() > 0) {
    GR_RETURN_IF_FAILED(readRecord(m_table, lengthOffset, record));
    lengthOffset += record.prefixCount;
    if (!record.isLength) {
      if (record.value >= slotsLeft()) break;
      skipSlots(record.value);
      continue;
    }
    GR_RETURN_IF_FAILED(addPlane(record, dataOffset));
    dataOffset += m_fixedBytes + record.value;
  }
  if (!hasPlanes()) return GR_STATUS_OK;
  gr_uint8* bytes = nullptr;
  GR_RETURN_IF_FAILED(getDataWindow(first.desc.subband)
                          .get(m_stream, first.dataOffset, dataOffset - first.dataOffset, bytes));
  endPlanes(bytes, first.dataOffset, planes);
  return GR_STATUS_OK;
}

GR_STATUS TG3DataFirstPlaneReader::walk(TG3PlaneLocation& location, gr_uint32 target, bool& found) {
  TG3PlaneDesc& desc = location.desc;
  assert(desc.subblock < target);
  found = false;
  const gr_uint32 columns = m_info.getSubblockColumns(desc.subband);
  const gr_uint64 stop = gr_uint64{target} - target % columns + columns;
  bool wasLength = true;  // the start is a stored plane
  TG3PlaneRecord record;
  while (desc.subblock < target || wasLength) {
    GR_RETURN_IF_FAILED(readRecord(m_table, location.lengthOffset, record));
    location.lengthOffset += record.prefixCount;
    wasLength = record.isLength;
    if (record.isLength) {
      location.dataOffset = gr_saturatingAdd(location.dataOffset, m_fixedBytes + record.value);
    }
    const gr_uint64 plane = desc.plane + (record.isLength ? 1 : record.value);
    const gr_uint64 component = desc.component + plane / m_info.numPlanes;
    const gr_uint64 subblock = desc.subblock + component / m_info.numComponents;
    if (subblock >= stop) return GR_STATUS_OK;
    desc.plane = static_cast<gr_uint8>(plane % m_info.numPlanes);
    desc.component = static_cast<gr_uint16>(component % m_info.numComponents);
    desc.subblock = static_cast<gr_uint32>(subblock);
  }
  found = desc.subblock == target;
  return GR_STATUS_OK;
}

GR_STATUS TG3RasterBlockPlaneReader::populate(TG3FilePlaneStore& store) {
  gr_uint64 position = m_planeset.getPayloadOffset();
  gr_uint64 numRegions = 0;
  GR_RETURN_IF_FAILED(readNumber(position, REGION_COUNT_BYTES, numRegions));
  position += REGION_COUNT_BYTES;
  // A region has at least its offset and one record.
  if (numRegions > (m_end - position) / (getOffsetBytes() + 1)) return TG3_STATUS_READ_ERROR;
  for (gr_uint64 i = 0; i < numRegions; ++i) GR_RETURN_IF_FAILED(populateRegion(store, position));
  return GR_STATUS_OK;
}

GR_STATUS TG3RasterBlockPlaneReader::walk(TG3PlaneLocation& /*location*/, gr_uint32 /*target*/,
                                          bool& found) {
  found = false;
  return TG3_STATUS_UNSET;
}
