#include "hosts/gdal/gri_gdalDataset.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "hosts/gdal/gri_gdalBand.h"

namespace {

// A strip holds all bands. 16 MiB are 419 rows of a picture of 40000 columns and one band: enough
// that what neighbouring strips decode twice weighs little.
constexpr gr_uint64 STRIP_BYTES = gr_uint64{16} << 20;
constexpr gr_uint64 MOST_STRIP_ROWS = 1024;
// Files keep blocks of 64 rows and multiples of it.
constexpr gr_uint64 ROW_UNIT = 64;
// Overviews smaller than this serve nobody.
constexpr int SMALLEST_OVERVIEW = 16;

/// Rows of `columns` pixels that fit a strip.
int stripRows(gr_uint64 columns, gr_uint64 pixelBytes) {
  gr_uint64 rows = std::min(STRIP_BYTES / (columns * pixelBytes), MOST_STRIP_ROWS);
  if (rows > ROW_UNIT) rows -= rows % ROW_UNIT;
  return static_cast<int>(std::max<gr_uint64>(rows, 1));
}

/// The type in which the library gives the samples; Int8 has none of GDAL's and reads as Byte.
GDALDataType storedType(gr_int32 dataType) {
  return dataType == GRIC_DATATYPE_SINT8 ? GDT_Byte : gri_gdalType(dataType);
}

GRIHostError argumentError(const char* text) { return {GRI_HOST_STATUS_ARGUMENT, text}; }

/// Fills in what the view leaves open, and holds it against the picture.
GRIHostError completeView(const GRIHostImage& image, GRIGdalView& view) {
  GRIHostWindow whole;
  if (GRIHostError error = image.sizeAt(view.magnification, whole.width, whole.height)) {
    return error;
  }
  if (view.window.width == 0) view.window = whole;
  if (view.window.height == 0 || !whole.contains(view.window)) {
    return argumentError("the window lies outside of the picture");
  }
  constexpr gr_uint32 LARGEST = std::numeric_limits<int>::max();
  if (view.window.width > LARGEST || view.window.height > LARGEST) {
    return argumentError("the picture has more columns or rows than GDAL can count");
  }
  const int numBands = static_cast<int>(image.info().bands.size());
  if (view.bands.empty()) {
    for (int band = 1; band <= numBands; ++band) view.bands.push_back(band);
  }
  for (const int band : view.bands) {
    if (band < 1 || band > numBands) return argumentError("the picture has no band of that number");
  }
  if (view.bands.empty()) return argumentError("the picture has no bands");
  return {};
}

}  // namespace

GDALDataType gri_gdalType(gr_int32 dataType) {
  switch (dataType) {
    case GRIC_DATATYPE_UINT8:
      return GDT_Byte;
    case GRIC_DATATYPE_UINT16:
      return GDT_UInt16;
    case GRIC_DATATYPE_SINT8:
    case GRIC_DATATYPE_SINT16:
      return GDT_Int16;
    case GRIC_DATATYPE_UINT32:
      return GDT_UInt32;
    case GRIC_DATATYPE_SINT32:
      return GDT_Int32;
    case GRIC_DATATYPE_FLOAT32:
      return GDT_Float32;
    case GRIC_DATATYPE_FLOAT64:
      return GDT_Float64;
    case GRIC_DATATYPE_UINT64:
      return GDT_UInt64;
    case GRIC_DATATYPE_SINT64:
      return GDT_Int64;
    default:
      return GDT_Unknown;
  }
}

std::unique_ptr<GRIGdalDataset> GRIGdalDataset::create(std::shared_ptr<GRIHostImage> image,
                                                       const GRIGdalView& view,
                                                       GRIHostError& error) {
  GRIGdalView complete = view;
  const GDALDataType type = gri_gdalType(image->info().dataType);
  error = completeView(*image, complete);
  if (!error && type == GDT_Unknown) error = gri_hostErrorOf(GRI_HOST_STATUS_DATATYPE);
  if (error) return nullptr;
  const bool isWhole = view.window.width == 0;
  const Shared shared{std::move(image),
                      view.keepGoing ? std::make_shared<GRIGdalDamage>() : nullptr,
                      std::make_shared<GRIHostError>()};
  std::unique_ptr<GRIGdalDataset> dataset(new GRIGdalDataset(shared, complete, type));
  if (isWhole) dataset->addOverviews(complete, type);
  return dataset;
}

GRIGdalDataset::GRIGdalDataset(const Shared& shared, const GRIGdalView& view, GDALDataType type)
    : m_image(shared.image),
      m_damage(shared.damage),
      m_lastError(shared.lastError),
      m_window(view.window),
      m_magnification(view.magnification),
      m_sourceType(storedType(shared.image->info().dataType)),
      m_strip(shared.image, view.magnification, shared.damage) {
  eAccess = GA_ReadOnly;
  nRasterXSize = static_cast<int>(m_window.width);
  nRasterYSize = static_cast<int>(m_window.height);
  m_blockRows =
      std::min(nRasterYSize, stripRows(m_window.width, info().bands.size() * info().sampleBytes()));
  // Asks the writers to take all bands of a strip together.
  GDALDataset::SetMetadataItem("INTERLEAVE", "PIXEL", "IMAGE_STRUCTURE");
  for (size_t i = 0; i < view.bands.size(); ++i) {
    m_bandNumbers.push_back(view.bands[i] - 1);
    const int number = static_cast<int>(i + 1);
    SetBand(number, std::make_unique<GRIGdalBand>(*this, number, type).release());  // takes it over
  }
  if (!info().crs.empty()) {
    m_spatialRef.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    if (m_spatialRef.importFromWkt(info().crs.c_str()) != OGRERR_NONE) m_spatialRef.Clear();
    CPLPopErrorHandler();
    CPLErrorReset();
  }
}

void GRIGdalDataset::addOverviews(const GRIGdalView& view, GDALDataType type) {
  GRIGdalView smaller = view;
  while (true) {
    smaller.magnification /= 2;
    if (smaller.magnification < info().minMagnification) return;
    GRIHostWindow& window = smaller.window;
    if (m_image->sizeAt(smaller.magnification, window.width, window.height)) return;
    if (std::min(window.width, window.height) < SMALLEST_OVERVIEW) return;
    const Shared shared{m_image, m_damage, m_lastError};
    m_overviews.push_back(
        std::unique_ptr<GRIGdalDataset>(new GRIGdalDataset(shared, smaller, type)));
  }
}

CPLErr GRIGdalDataset::GetGeoTransform(double* transform) {
  if (!info().position) return CE_Failure;
  const GRIHostPosition& position = *info().position;
  // At each magnification pixel 0 has its centre where the full size has it: wavelets keep every
  // other sample in its place.
  double x = 0;
  double y = 0;
  position.toGround(m_window.column / m_magnification, m_window.row / m_magnification, x, y);
  transform[1] = position.xResolution / m_magnification;
  transform[2] = position.xRotation / m_magnification;
  transform[4] = position.yRotation / m_magnification;
  transform[5] = position.yResolution / m_magnification;
  // GDAL counts from the outer corner of the first pixel.
  transform[0] = x - (transform[1] + transform[2]) / 2;
  transform[3] = y - (transform[4] + transform[5]) / 2;
  return CE_None;
}

const OGRSpatialReference* GRIGdalDataset::GetSpatialRef() const {
  return m_spatialRef.IsEmpty() ? nullptr : &m_spatialRef;
}

bool GRIGdalDataset::isDirect(int columns, int rows) const {
  return columns <= nRasterXSize / 2 || rows >= m_blockRows;
}

bool GRIGdalDataset::fetch(int column, int row, int columns, int rows) {
  const auto unsignedOf = [](int value) { return static_cast<gr_uint32>(value); };
  *m_lastError =
      m_strip.fetch({m_window.column + unsignedOf(column), m_window.row + unsignedOf(row),
                     unsignedOf(columns), unsignedOf(rows)});
  if (!*m_lastError) return true;
  CPLError(CE_Failure, CPLE_AppDefined, "%s [%u]", m_lastError->text.c_str(), m_lastError->status);
  return false;
}

void GRIGdalDataset::copyRow(int band, int column, int row, int columns, void* out,
                             GDALDataType type, GSpacing pixelSpace) const {
  const auto number = static_cast<size_t>(m_bandNumbers[static_cast<size_t>(band - 1)]);
  const std::byte* samples =
      m_strip.samples(number, m_window.column + static_cast<gr_uint32>(column),
                      m_window.row + static_cast<gr_uint32>(row));
  if (info().dataType != GRIC_DATATYPE_SINT8) {
    GDALCopyWords64(samples, m_sourceType, static_cast<int>(info().sampleBytes()), out, type,
                    static_cast<int>(pixelSpace), columns);
    return;
  }
  auto* place = static_cast<GByte*>(out);
  for (int i = 0; i < columns; ++i, place += pixelSpace) {
    // The two's complement of the byte, widened.
    const int byte = std::to_integer<int>(samples[i]);
    const auto value = static_cast<gr_int16>(byte < 128 ? byte : byte - 256);
    GDALCopyWords64(&value, GDT_Int16, 0, place, type, 0, 1);
  }
}

CPLErr GRIGdalDataset::readBlock(int band, int block, void* samples) {
  const int row = block * m_blockRows;
  const int rows = std::min(m_blockRows, nRasterYSize - row);
  if (!fetch(0, row, nRasterXSize, rows)) return CE_Failure;
  const GDALDataType type = gri_gdalType(info().dataType);
  const int bytes = GDALGetDataTypeSizeBytes(type);
  auto* place = static_cast<GByte*>(samples);
  for (int i = 0; i < rows; ++i, place += GSpacing{bytes} * nRasterXSize) {
    copyRow(band, 0, row + i, nRasterXSize, place, type, bytes);
  }
  return CE_None;
}

CPLErr GRIGdalDataset::IRasterIO(GDALRWFlag flag, int column, int row, int columns, int rows,
                                 void* buffer, int bufferColumns, int bufferRows, GDALDataType type,
                                 int numBands, int* bandNumbers, GSpacing pixelSpace,
                                 GSpacing lineSpace, GSpacing bandSpace,
                                 GDALRasterIOExtraArg* extra) {
  if (flag != GF_Read || columns != bufferColumns || rows != bufferRows ||
      !isDirect(columns, rows)) {
    return GDALDataset::IRasterIO(flag, column, row, columns, rows, buffer, bufferColumns,
                                  bufferRows, type, numBands, bandNumbers, pixelSpace, lineSpace,
                                  bandSpace, extra);
  }
  const int stepRows =
      stripRows(static_cast<gr_uint64>(columns), info().bands.size() * info().sampleBytes());
  for (int start = 0; start < rows; start += stepRows) {
    const int step = std::min(stepRows, rows - start);
    if (!fetch(column, row + start, columns, step)) return CE_Failure;
    for (int band = 0; band < numBands; ++band) {
      auto* place = static_cast<GByte*>(buffer) + band * bandSpace + start * lineSpace;
      for (int i = 0; i < step; ++i, place += lineSpace) {
        copyRow(bandNumbers[band], column, row + start + i, columns, place, type, pixelSpace);
      }
    }
    if (extra->pfnProgress != nullptr &&
        extra->pfnProgress(static_cast<double>(start + step) / rows, "", extra->pProgressData) ==
            FALSE) {
      return CE_Failure;
    }
  }
  return CE_None;
}
