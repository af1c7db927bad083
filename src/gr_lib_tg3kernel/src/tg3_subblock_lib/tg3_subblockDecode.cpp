#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockDecode.h"

#include <algorithm>
#include <cassert>

namespace {

/// Makes room for `count` zeros. Room that was made before is used again.
template <typename T>
GR_STATUS clearFor(GRArray<T>& array, gr_uint64 count) {
  if (array.size() < count) return array.allocate(count);
  std::fill_n(array.data(), count, T{0});
  return GR_STATUS_OK;
}

}  // namespace

GR_STATUS SubblockDecode::decode(const TG3SubblockShape& shape,
                                 std::span<const TG3CodedPlane> planes, gr_uint32 numPlanes,
                                 std::span<gr_int32* const> components, size_t stride) {
  assert(numPlanes <= MAX_PLANES && planes.size() == components.size() * numPlanes);
  for (size_t c = 0; c < components.size(); ++c) {
    const auto slots = planes.subspan(c * numPlanes, numPlanes);
    const PlaneBounds bounds = boundsOf(slots);
    const bool empty = bounds.count == 0 || shape.columns.empty() || shape.rows.empty();
    if (empty || shape.columns.count() < shape.width || shape.rows.count() < shape.height) {
      for (gr_uint32 y = 0; y < shape.height; ++y) {
        std::fill_n(components[c] + y * stride, shape.width, 0);
      }
    }
    if (empty) continue;
    if (!GR_SUCCESS(prepare(shape, bounds.count))) return TG3_STATUS_NO_MEMORY;
    const gr_uint32 numScanned = scanPlanes(slots, bounds);
    makeSamples(shape, bounds, numScanned, components[c], stride);
  }
  return GR_STATUS_OK;
}

SubblockDecode::PlaneBounds SubblockDecode::boundsOf(std::span<const TG3CodedPlane> planes) {
  const auto stored = [](const TG3CodedPlane& plane) { return plane.hasData; };
  const auto first = std::find_if(planes.begin(), planes.end(), stored);
  const auto end = std::find_if_not(first, planes.end(), stored);
  return {static_cast<gr_uint32>(first - planes.begin()), static_cast<gr_uint32>(end - first)};
}

/// A component that knows nothing yet.
GR_STATUS SubblockDecode::prepare(const TG3SubblockShape& shape, gr_uint32 numPlanes) {
  m_scan.width = shape.columns.count();
  m_scan.height = shape.rows.count();
  m_scan.model = &m_model;
  m_model.reset(shape.subband);

  const gr_uint64 rows = m_scan.height;
  const gr_uint64 words = m_scan.wordsPerRow();
  GR_RETURN_IF_FAILED(clearFor(m_flags, (rows + 2) * m_scan.flagStride()));
  GR_RETURN_IF_FAILED(clearFor(m_positive, (rows + 2) * m_scan.flagStride()));
  GR_RETURN_IF_FAILED(clearFor(m_significant, (rows + 2) * m_scan.significantStride()));
  GR_RETURN_IF_FAILED(clearFor(m_negative, rows * words));
  if (m_bits.size() < rows * words * numPlanes) {
    GR_RETURN_IF_FAILED(m_bits.allocateUninitialized(rows * words * numPlanes));
  }
  m_scan.flags = m_flags.data() + m_scan.flagStride() + 1;
  m_scan.positive = m_positive.data() + m_scan.flagStride() + 1;
  m_scan.significant = m_significant.data() + m_scan.significantStride() + 1;
  m_scan.negative = m_negative.data();
  return GR_STATUS_OK;
}

/// @return the number of planes scanned: all, or those before one without bytes
gr_uint32 SubblockDecode::scanPlanes(std::span<const TG3CodedPlane> planes,
                                     const PlaneBounds& bounds) {
  const size_t planeWords = m_scan.height * m_scan.wordsPerRow();
  for (gr_uint32 i = 0; i < bounds.count; ++i) {
    const TG3CodedPlane& plane = planes[bounds.first + i];
    if (plane.bytes.empty()) return i;
    const bool isSignPlane = bounds.first + i == 0;
    gr_uint64* bits = m_bits.data() + i * planeWords;
    if (plane.useBypass) {
      tg3_scanBypassPlane(m_scan, plane.bytes, isSignPlane, bits);
    } else {
      tg3_scanPlane(m_scan, plane.bytes, isSignPlane, bits);
    }
  }
  return bounds.count;
}

void SubblockDecode::makeSamples(const TG3SubblockShape& shape, const PlaneBounds& bounds,
                                 gr_uint32 numScanned, gr_int32* samples, size_t stride) const {
  const size_t words = m_scan.wordsPerRow();
  TG3SampleRow row{.width = m_scan.width,
                   .planeStride = m_scan.height * words,
                   .firstPlane = bounds.first,
                   .numPlanes = numScanned};
  // The middle of what the planes leave open, and as that lies between two numbers, the lower and
  // the upper one in turn. All stored planes count, also those behind one without bytes.
  const gr_uint32 lastPlane = bounds.first + bounds.count - 1;
  const gr_uint32 half = lastPlane < 31 ? gr_uint32{1} << (30 - lastPlane) : 0;
  for (gr_uint32 y = 0; y < m_scan.height; ++y) {
    const gr_uint64 place = gr_uint64{shape.rows.first + y} * shape.width + shape.columns.first;
    row.midpoint[place % 2] = half > 0 ? half - 1 : 0;
    row.midpoint[1 - place % 2] = half;
    row.negative = m_negative.data() + y * words;
    row.bits = m_bits.data() + y * words;
    tg3_makeSamples(row, samples + (shape.rows.first + y) * stride + shape.columns.first);
  }
}
