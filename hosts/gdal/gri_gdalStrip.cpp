#include "hosts/gdal/gri_gdalStrip.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace {

// A damaged window is split down to pieces of this size. Blocks and strips of files lie at
// multiples of these numbers, so splitting there separates good from bad.
constexpr gr_uint32 SMALLEST_PIECE_ROWS = 64;
constexpr gr_uint32 SMALLEST_PIECE_COLUMNS = 256;

/// Where to split `size` pixels from `start`: the multiple of `unit` nearest above the middle that
/// leaves both parts with something.
gr_uint32 firstPart(gr_uint32 start, gr_uint32 size, gr_uint32 unit) {
  const gr_uint64 middle = gr_uint64{start} + size / 2;
  const gr_uint64 aligned = (middle + unit - 1) / unit * unit;
  const gr_uint64 part = aligned - start;
  return part > 0 && part < size ? static_cast<gr_uint32>(part) : size / 2;
}

gr_uint64 pixelsOf(const GRIHostWindow& window) { return gr_uint64{window.width} * window.height; }

/// Writes `count` samples of `value`, which is one, in the data type of the picture.
void fillSamples(std::byte* samples, size_t count, gr_int32 dataType, double value) {
  const auto fill = [&](auto sample) {
    for (size_t i = 0; i < count; ++i)
      std::memcpy(samples + i * sizeof sample, &sample, sizeof sample);
  };
  switch (dataType) {
    case GRIC_DATATYPE_UINT8:
      return fill(static_cast<gr_uint8>(value));
    case GRIC_DATATYPE_SINT8:
      return fill(static_cast<gr_int8>(value));
    case GRIC_DATATYPE_UINT16:
      return fill(static_cast<gr_uint16>(value));
    case GRIC_DATATYPE_SINT16:
      return fill(static_cast<gr_int16>(value));
    case GRIC_DATATYPE_UINT32:
      return fill(static_cast<gr_uint32>(value));
    case GRIC_DATATYPE_SINT32:
      return fill(static_cast<gr_int32>(value));
    case GRIC_DATATYPE_FLOAT32:
      return fill(static_cast<float>(value));
    case GRIC_DATATYPE_FLOAT64:
      return fill(value);
    case GRIC_DATATYPE_UINT64:
      return fill(static_cast<gr_uint64>(value));
    default:
      return fill(static_cast<gr_int64>(value));
  }
}

}  // namespace

GRIGdalStrip::GRIGdalStrip(std::shared_ptr<GRIHostImage> image, double magnification,
                           std::shared_ptr<GRIGdalDamage> damage)
    : m_image(std::move(image)), m_magnification(magnification), m_damage(std::move(damage)) {}

const std::byte* GRIGdalStrip::samples(size_t band, gr_uint32 column, gr_uint32 row) const {
  const size_t bytes = m_image->info().sampleBytes();
  const size_t planeBytes = size_t{m_window.width} * m_window.height * bytes;
  const size_t rowBytes = size_t{m_window.width} * bytes;
  return m_samples.get() + band * planeBytes + (row - m_window.row) * rowBytes +
         (column - m_window.column) * bytes;
}

std::byte* GRIGdalStrip::place(size_t band, gr_uint32 column, gr_uint32 row) {
  return const_cast<std::byte*>(std::as_const(*this).samples(band, column, row));
}

GRIHostError GRIGdalStrip::fetch(const GRIHostWindow& window) {
  if (pixelsOf(m_window) > 0 && m_window.contains(window)) return {};
  const GRIHostImageInfo& info = m_image->info();
  const size_t bandBytes = size_t{window.width} * window.height * info.sampleBytes();
  if (bandBytes > std::numeric_limits<size_t>::max() / std::max<size_t>(1, info.bands.size())) {
    return gri_hostErrorOf(GRIC_STATUS_NO_MEMORY);
  }
  const size_t bytes = bandBytes * info.bands.size();
  m_window = {};
  if (bytes > m_capacity) {
    m_capacity = 0;
    m_samples.reset();
    m_samples =
        gri_hostCall([&] { return std::make_unique_for_overwrite<std::byte[]>(bytes); }, nullptr);
    if (!m_samples) return gri_hostErrorOf(GRIC_STATUS_NO_MEMORY);
    m_capacity = bytes;
  }
  m_window = window;
  GRIHostError error = decode(window);
  if (error) m_window = {};
  return error;
}

GRIHostError GRIGdalStrip::decode(const GRIHostWindow& window) {
  if (!m_damage) return decodeRows(window);
  return decodeSalvaging(window);
}

/// Decodes rows of the whole width of the kept window in place.
GRIHostError GRIGdalStrip::decodeRows(const GRIHostWindow& rows) {
  std::vector<void*> bands(m_image->info().bands.size());
  for (size_t band = 0; band < bands.size(); ++band) {
    bands[band] = place(band, rows.column, rows.row);
  }
  return m_image->decode(rows, m_magnification, bands.data());
}

/// Decodes what can be decoded: halves what fails, rows first, down to the smallest piece.
GRIHostError GRIGdalStrip::decodeSalvaging(const GRIHostWindow& window) {
  GRIHostError error = decodePiece(window);
  if (!error) {
    m_damage->decodedPixels += pixelsOf(window);
    return {};
  }
  // Neither says anything about the picture; and with a password all of it may be there.
  if (error.status == GRIC_STATUS_NO_MEMORY) return error;
  if (error.isOfLock() && m_image->info().isLocked) return error;
  GRIHostWindow first = window;
  GRIHostWindow second = window;
  if (window.height > SMALLEST_PIECE_ROWS) {
    first.height = firstPart(window.row, window.height, SMALLEST_PIECE_ROWS);
    second.row += first.height;
    second.height -= first.height;
  } else if (window.width > SMALLEST_PIECE_COLUMNS) {
    first.width = firstPart(window.column, window.width, SMALLEST_PIECE_COLUMNS);
    second.column += first.width;
    second.width -= first.width;
  } else {
    fillLost(window, error);
    return {};
  }
  if (GRIHostError failed = decodeSalvaging(first)) return failed;
  return decodeSalvaging(second);
}

/// Decodes a piece of the kept window. The library writes rows without gaps, so a piece that is
/// narrower goes through a buffer of its own.
GRIHostError GRIGdalStrip::decodePiece(const GRIHostWindow& piece) {
  if (piece.width == m_window.width) return decodeRows(piece);
  const size_t numBands = m_image->info().bands.size();
  const size_t rowBytes = size_t{piece.width} * m_image->info().sampleBytes();
  const size_t planeBytes = rowBytes * piece.height;
  const auto buffer = gri_hostCall(
      [&] { return std::make_unique_for_overwrite<std::byte[]>(numBands * planeBytes); }, nullptr);
  if (!buffer) return gri_hostErrorOf(GRIC_STATUS_NO_MEMORY);
  std::vector<void*> bands(numBands);
  for (size_t band = 0; band < numBands; ++band) bands[band] = buffer.get() + band * planeBytes;
  if (GRIHostError error = m_image->decode(piece, m_magnification, bands.data())) return error;
  for (size_t band = 0; band < numBands; ++band) {
    for (gr_uint32 row = 0; row < piece.height; ++row) {
      std::memcpy(place(band, piece.column, piece.row + row),
                  buffer.get() + band * planeBytes + row * rowBytes, rowBytes);
    }
  }
  return {};
}

void GRIGdalStrip::fillLost(const GRIHostWindow& piece, const GRIHostError& error) {
  if (!m_damage->first) m_damage->first = error;
  m_damage->lostPixels += pixelsOf(piece);
  const GRIHostImageInfo& info = m_image->info();
  for (size_t band = 0; band < info.bands.size(); ++band) {
    const double value = info.noData.empty() ? 0 : info.noData[band];
    for (gr_uint32 row = 0; row < piece.height; ++row) {
      fillSamples(place(band, piece.column, piece.row + row), piece.width, info.dataType, value);
    }
  }
}
