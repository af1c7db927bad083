#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_decodeBase.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_codedSupport.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_delegates.h"

namespace {

constexpr gr_uint32 MAX_PLANES = TG3ImageInfo::MAX_PLANES;
constexpr gr_uint32 MOST_TRANSFORMED = 4;  // components, which TG3ColorTransform has made sure of

// A header can claim subblocks of 65535 x 65535 samples, and a single byte can stand for one. So
// large ones are decoded only where either their bytes or the window make them believable.
constexpr gr_uint64 ALWAYS_DECODED = gr_uint64{1} << 22;  // samples
constexpr gr_uint64 SAMPLES_PER_BYTE = 256;
constexpr gr_uint64 SAMPLES_PER_SQUARE_COLUMN = 16;

bool isBelievable(const TG3Rect& rect, TG3SubblockPlanes planes, gr_uint64 windowColumns) {
  const gr_uint64 samples =
      static_cast<gr_uint64>(rect.width()) * static_cast<gr_uint64>(rect.height());
  if (samples <= ALWAYS_DECODED) return true;
  gr_uint64 bytes = 0;
  for (const TG3PlaneData& plane : planes) bytes += plane.length;
  return samples / SAMPLES_PER_BYTE <= bytes ||
         samples / SAMPLES_PER_SQUARE_COLUMN <= windowColumns * windowColumns;
}

// The planes from `first` on that belong to the same component.
TG3SubblockPlanes planesOfComponent(TG3SubblockPlanes planes, size_t first) {
  size_t end = first;
  while (end < planes.size() && planes[end].component == planes[first].component) ++end;
  return planes.subspan(first, end - first);
}

// Sets columns `first` up to, not including, `end` of `numRows` rows to zero.
void clearColumns(gr_int32* samples, size_t stride, size_t numRows, size_t first, size_t end) {
  if (first >= end) return;
  for (size_t y = 0; y < numRows; ++y) {
    std::memset(samples + y * stride + first, 0, (end - first) * sizeof(gr_int32));
  }
}

}  // namespace

GR_STATUS DecodeBase::initialize(const TG3ImageInfo& info, TG3PlaneStoreClient& client) {
  m_info = &info;
  m_client = &client;
  if (!GR_SUCCESS(m_bands.allocate(info.getNumSubbands()))) return TG3_STATUS_NO_MEMORY;
  return m_colorTransform.initialize(info);
}

void DecodeBase::dropRows() {
  for (Band& band : m_bands) band = Band();
  m_scratch.clear();
}

GR_STATUS DecodeBase::getRow(gr_uint32 band, gr_uint32 row, gr_uint32 firstCol, gr_uint32 lastCol,
                             const gr_int32** components) {
  const gr_uint32 numComponents = m_info->numComponents;
  if (band >= m_bands.size()) {
    std::fill_n(components, numComponents, nullptr);
    return GR_STATUS_OK;
  }
  if (firstCol > lastCol || lastCol >= m_info->getSubbandColumns(band) ||
      row >= m_info->getSubbandRows(band)) {
    return TG3_STATUS_BAD_ARGUMENT;
  }

  Band& loaded = m_bands[band];
  if (loaded.firstCol != firstCol || loaded.lastCol != lastCol) {
    loaded = Band();
    loaded.firstCol = firstCol;
    loaded.lastCol = lastCol;
    loaded.coded = tg3_codedSupport(*m_info, band);
  }
  if (!loaded.isLoaded || row < loaded.firstRow || row > loaded.lastRow) {
    GR_RETURN_IF_FAILED(load(band, row, loaded));
  }

  const size_t offset = size_t{row - loaded.firstRow} * loaded.columns();
  for (gr_uint32 c = 0; c < numComponents; ++c) {
    const bool isZero = loaded.components.empty() || loaded.components[c].filled == 0;
    components[c] = isZero ? nullptr : loaded.components[c].samples.data() + offset;
  }
  return GR_STATUS_OK;
}

GR_STATUS DecodeBase::load(gr_uint32 subband, gr_uint32 row, Band& band) {
  const gr_uint32 size = m_info->subblockSize;
  const gr_uint32 blockRow = row / size;
  band.isLoaded = false;
  band.firstRow = blockRow * size;
  band.lastRow = std::min(band.firstRow + (size - 1), m_info->getSubbandRows(subband) - 1);
  for (ComponentRows& rows : band.components) rows.filled = 0;

  for (gr_uint32 blockCol = band.firstCol / size; blockCol <= band.lastCol / size; ++blockCol) {
    const gr_uint32 subblock = m_info->getSubblockIndex(subband, blockRow, blockCol);
    GR_RETURN_IF_FAILED(decodeSubblock(subband, subblock, band));
    if (m_interrupt != nullptr) GR_RETURN_IF_FAILED(m_interrupt->getInterruptStatus());
  }

  bool isZero = true;
  for (ComponentRows& rows : band.components) {
    if (rows.filled == 0) continue;
    isZero = false;
    clearColumns(rows.samples.data(), band.columns(), band.rows(), rows.filled, band.columns());
    rows.filled = band.columns();
  }
  // The transform turns zeros into zeros.
  if (!isZero && m_colorTransform.needsTransform()) GR_RETURN_IF_FAILED(undoColorTransform(band));
  band.isLoaded = true;
  return GR_STATUS_OK;
}

GR_STATUS DecodeBase::decodeSubblock(gr_uint32 subband, gr_uint32 subblock, Band& band) {
  TG3SubblockPlanes planes;
  GR_RETURN_IF_FAILED(m_client->readSubblock(subband, subblock, planes));
  if (planes.empty()) return GR_STATUS_OK;

  const TG3Rect rect = m_info->getSubblockRect(subband, subblock);
  TG3SubblockShape shape;
  shape.subband = subband;
  shape.width = static_cast<gr_uint32>(rect.width());
  shape.height = static_cast<gr_uint32>(rect.height());
  tg3_codedRanges(rect, band.coded, shape.columns, shape.rows);
  if (shape.columns.empty() || shape.rows.empty()) return GR_STATUS_OK;
  if (!isBelievable(rect, planes, band.columns())) return TG3_STATUS_NO_MEMORY;

  for (size_t first = 0; first < planes.size();) {
    const TG3SubblockPlanes ofComponent = planesOfComponent(planes, first);
    GR_RETURN_IF_FAILED(decodeComponent(shape, rect, ofComponent, band));
    first += ofComponent.size();
  }
  return GR_STATUS_OK;
}

GR_STATUS DecodeBase::decodeComponent(const TG3SubblockShape& shape, const TG3Rect& rect,
                                      TG3SubblockPlanes planes, Band& band) {
  std::array<TG3CodedPlane, MAX_PLANES> slots{};
  for (const TG3PlaneData& plane : planes) {
    slots[plane.plane] = {
        .bytes = {plane.data, plane.length}, .hasData = true, .useBypass = plane.bypass};
  }
  ComponentRows* rows = nullptr;
  GR_RETURN_IF_FAILED(startComponent(band, planes.front().component, rows));

  // The columns that the subblock and the window share, counted from the window's left.
  const gr_uint32 left = static_cast<gr_uint32>(rect.left);
  const gr_uint32 right = static_cast<gr_uint32>(rect.right);
  const gr_uint32 first = std::max(left, band.firstCol) - band.firstCol;
  const gr_uint32 end = std::min(right, band.lastCol) - band.firstCol + 1;
  gr_int32* window = rows->samples.data();
  const size_t stride = band.columns();
  clearColumns(window, stride, band.rows(), rows->filled, first);
  rows->filled = end;

  if (left >= band.firstCol && right <= band.lastCol) {
    gr_int32* const target = window + first;
    return m_decoder.decode(shape, slots, MAX_PLANES, {&target, 1}, stride);
  }
  const gr_uint64 samples = gr_uint64{shape.width} * shape.height;
  if (m_scratch.size() < samples && !GR_SUCCESS(m_scratch.allocateUninitialized(samples))) {
    return TG3_STATUS_NO_MEMORY;
  }
  gr_int32* const target = m_scratch.data();
  GR_RETURN_IF_FAILED(m_decoder.decode(shape, slots, MAX_PLANES, {&target, 1}, shape.width));
  const size_t skipped = band.firstCol + first - left;
  for (size_t y = 0; y < shape.height; ++y) {
    std::memcpy(window + y * stride + first, target + y * shape.width + skipped,
                (end - first) * sizeof(gr_int32));
  }
  return GR_STATUS_OK;
}

GR_STATUS DecodeBase::startComponent(Band& band, gr_uint32 component, ComponentRows*& rows) {
  if (band.components.empty() && !GR_SUCCESS(band.components.allocate(m_info->numComponents))) {
    return TG3_STATUS_NO_MEMORY;
  }
  ComponentRows& started = band.components[component];
  const gr_uint64 samples = gr_uint64{band.columns()} * band.rows();
  if (started.samples.size() < samples &&
      !GR_SUCCESS(started.samples.allocateUninitialized(samples))) {
    return TG3_STATUS_NO_MEMORY;
  }
  rows = &started;
  return GR_STATUS_OK;
}

GR_STATUS DecodeBase::undoColorTransform(Band& band) {
  std::array<gr_int32*, MOST_TRANSFORMED> samples{};
  assert(m_info->numComponents <= MOST_TRANSFORMED);
  for (gr_uint32 c = 0; c < m_info->numComponents; ++c) {
    ComponentRows* rows = nullptr;
    GR_RETURN_IF_FAILED(startComponent(band, c, rows));
    clearColumns(rows->samples.data(), band.columns(), band.rows(), rows->filled, band.columns());
    rows->filled = band.columns();
    samples[c] = rows->samples.data();
  }
  m_colorTransform.apply(samples.data(), size_t{band.columns()} * band.rows());
  return GR_STATUS_OK;
}
