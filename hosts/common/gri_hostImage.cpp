#include "hosts/common/gri_hostImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr const char* TAG_BITS = "IMAGE::BITS_PER_SAMPLE";
constexpr const char* TAG_TILES = "IMAGE::NUMBER_OF_TILES";
constexpr const char* TAG_NO_DATA = "IMAGE::TRANSPARENT_DATA_VALUE";
constexpr const char* TAG_WKT = "IMAGE::WKT";
constexpr const char* TAG_ORIGIN = "IMAGE::XY_ORIGIN";
constexpr const char* TAG_X_RESOLUTION = "IMAGE::X_RESOLUTION";
constexpr const char* TAG_Y_RESOLUTION = "IMAGE::Y_RESOLUTION";

/// The largest offset (columns or rows) that a NITF image segment states in its ILOC, which has
/// five digits for each (MIL-STD-2500C, table A-3).
constexpr double NITF_LARGEST_OFFSET = 99999;

GR_STATUS openHandle(GRIHostFormat format, const std::string& path, gric_image& image) {
  switch (format) {
    case GRIHostFormat::TESRA:
      return gri_hostStatusOf([&] { return gric_openTesraImageFile(&image, path.c_str()); });
    case GRIHostFormat::JPEG2000:
      return gri_hostStatusOf([&] { return gric_openJP2ImageFile(&image, path.c_str()); });
    case GRIHostFormat::NITF:
      return gri_hostStatusOf([&] { return gric_openNITFImageFile(&image, path.c_str()); });
    case GRIHostFormat::UNKNOWN:
      break;
  }
  return GRI_HOST_STATUS_OPERATION;
}

bool isWhole(double value) { return value == std::floor(value); }

/// True when `position` is what the library answers for a picture without one: it counts pixels
/// from the lower left. A NITF segment that lies at an offset in a common picture has it moved by
/// that offset, which says nothing about the ground either.
bool isDefaultPosition(const GRIHostPosition& position, const GRIHostImageInfo& info) {
  if (position.xResolution != 1 || position.yResolution != -1 || position.xRotation != 0 ||
      position.yRotation != 0) {
    return false;
  }
  const double dx = position.xOrigin;
  const double dy = position.yOrigin - (static_cast<double>(info.height) - 1);
  if (info.content.format != GRIHostFormat::NITF) return dx == 0 && dy == 0;
  return isWhole(dx) && isWhole(dy) && std::abs(dx) <= NITF_LARGEST_OFFSET &&
         std::abs(dy) <= NITF_LARGEST_OFFSET;
}

}  // namespace

bool GRIHostWindow::contains(const GRIHostWindow& other) const {
  const auto end = [](gr_uint32 start, gr_uint32 size) { return gr_uint64{start} + size; };
  return other.column >= column && other.row >= row &&
         end(other.column, other.width) <= end(column, width) &&
         end(other.row, other.height) <= end(row, height);
}

void GRIHostImage::HandleCloser::operator()(gric_image image) const {
  gri_hostStatusOf([&] { return gric_closeImage(image); });
}

GRIHostError GRIHostImage::open(const std::string& path) {
  GRIHostContent content;
  if (GRIHostError error = gri_hostIdentifyFile(path, content)) return error;
  gric_image image = nullptr;
  const GR_STATUS status = openHandle(content.format, path, image);
  Handle handle(image);
  if (status != GRIC_STATUS_OK) return gri_hostErrorOf(status);

  GRIHostImage opened;
  opened.m_handle = std::move(handle);
  opened.m_info.content = std::move(content);
  const GR_STATUS infoStatus = gri_hostStatusOf([&] {
    opened.readInfo();
    return GR_STATUS{GRIC_STATUS_OK};
  });
  if (infoStatus != GRIC_STATUS_OK) return gri_hostErrorOf(infoStatus);
  opened.m_passwordSource = std::move(m_passwordSource);
  *this = std::move(opened);
  return {};
}

void GRIHostImage::readInfo() {
  gric_image image = m_handle.get();
  m_info.width = gric_getWidth(image);
  m_info.height = gric_getHeight(image);
  m_info.dataType = gric_getDataType(image);
  m_info.colorSpace = gric_getColorSpace(image);
  m_info.bands = gri_hostBandColors(m_info.colorSpace, gric_getNumBands(image));
  m_info.minMagnification = gric_getMinMagnification(image);
  m_info.maxMagnification = gric_getMaxMagnification(image);
  m_info.isLocked = gric_isTesraLocked(image) != 0;
  readLevels();
  readPosition();

  m_info.bits = static_cast<gr_uint32>(8 * m_info.sampleBytes());
  GRIHostRecord record;
  if (findRecord(TAG_BITS, record) && record.isScalar()) {
    const double bits = record.number(0);
    if (bits >= 1 && bits < m_info.bits) m_info.bits = static_cast<gr_uint32>(bits);
  }
  if (findRecord(TAG_TILES, record) && record.isScalar() &&
      record.dataType == GRIC_METADATA_DATATYPE_UINT32) {
    m_info.tiles = static_cast<gr_uint32>(record.number(0));
  }
  if (findRecord(TAG_WKT, record) && record.isText() && record.isScalar()) {
    m_info.crs = record.text(0);
  }
  if (findRecord(TAG_NO_DATA, record) && !record.isText() &&
      record.count() == m_info.bands.size()) {
    for (size_t band = 0; band < m_info.bands.size(); ++band) {
      m_info.noData.push_back(record.number(band));
    }
    // A value that no sample has marks none; and the record may be of any type.
    const auto isSample = [&](double value) { return gri_hostIsSample(m_info.dataType, value); };
    if (!std::all_of(m_info.noData.begin(), m_info.noData.end(), isSample)) m_info.noData.clear();
  }
}

void GRIHostImage::readLevels() {
  // A magnification of 0 or NaN would never end, and below 2^-32 nothing is left to halve.
  constexpr int MOST_LEVELS = 32;
  double magnification = std::min(1.0, m_info.maxMagnification);
  for (int i = 0; i < MOST_LEVELS && magnification >= m_info.minMagnification; ++i) {
    GRIHostLevel level;
    level.magnification = magnification;
    if (sizeAt(magnification, level.width, level.height)) return;
    m_info.levels.push_back(level);
    magnification /= 2;
  }
}

void GRIHostImage::readPosition() {
  gric_image image = m_handle.get();
  GRIHostPosition position;
  position.xOrigin = gric_getGeoXOrigin(image);
  position.yOrigin = gric_getGeoYOrigin(image);
  position.xResolution = gric_getGeoXResolution(image);
  position.yResolution = gric_getGeoYResolution(image);
  position.xRotation = gric_getGeoXRotation(image);
  position.yRotation = gric_getGeoYRotation(image);
  if (!position.isFinite()) return;
  GRIHostRecord record;
  const bool isStated = findRecord(TAG_ORIGIN, record) && findRecord(TAG_X_RESOLUTION, record) &&
                        findRecord(TAG_Y_RESOLUTION, record);
  if (isStated || !isDefaultPosition(position, m_info)) m_info.position = position;
}

GRIHostError GRIHostImage::setPassword(const char* password) {
  // The library takes the handle for a Tesra one.
  if (m_info.content.format != GRIHostFormat::TESRA) {
    return gri_hostErrorOf(GRI_HOST_STATUS_OPERATION);
  }
  return gri_hostErrorOf(
      gri_hostStatusOf([&] { return gric_setTesraPassword(m_handle.get(), password); }));
}

void GRIHostImage::setPasswordSource(GRIHostPasswordSource source) {
  m_passwordSource = std::move(source);
}

GRIHostError GRIHostImage::sizeAt(double magnification, gr_uint32& width, gr_uint32& height) const {
  return gri_hostErrorOf(gri_hostStatusOf(
      [&] { return gric_getDimsAtMag(m_handle.get(), magnification, &width, &height); }));
}

GRIHostError GRIHostImage::decode(const GRIHostWindow& window, double magnification, void** bands) {
  constexpr int MOST_PASSWORDS = 3;
  GRIHostError error = decodeOnce(window, magnification, bands);
  for (int i = 0; i < MOST_PASSWORDS && m_passwordSource && m_info.isLocked && error.isOfLock();
       ++i) {
    GRIHostPassword password;
    const bool isGiven = m_passwordSource(i > 0, password);
    // Nobody likes to be asked for each strip.
    if (!isGiven || i == MOST_PASSWORDS - 1) m_passwordSource = nullptr;
    if (!isGiven) break;
    if (GRIHostError refused = setPassword(password.text())) return refused;
    error = decodeOnce(window, magnification, bands);
  }
  return error;
}

GRIHostError GRIHostImage::decodeOnce(const GRIHostWindow& window, double magnification,
                                      void** bands) {
  if (m_info.sampleBytes() == 0) return gri_hostErrorOf(GRI_HOST_STATUS_DATATYPE);
  return gri_hostErrorOf(gri_hostStatusOf([&] {
    return gric_decode(m_handle.get(), window.column, window.row, window.width, window.height,
                       magnification, bands);
  }));
}

size_t GRIHostImage::recordCount() const {
  return gri_hostCall([&] { return gric_getNumMetadataRecords(m_handle.get()); }, gr_uint32{0});
}

bool GRIHostImage::record(size_t index, GRIHostRecord& record) const {
  if (index >= recordCount()) return false;
  gr_uint32 numDims = 0;
  const gr_uint32* dims = nullptr;
  GRIHostRecord found;
  const GR_STATUS status = gri_hostStatusOf([&] {
    return gric_getMetadataRecord(m_handle.get(), static_cast<gr_uint32>(index), &found.tag,
                                  &found.dataType, &numDims, &dims, &found.data);
  });
  if (status != GRIC_STATUS_OK) return false;
  found.dims = {dims, numDims};
  record = found;
  return true;
}

bool GRIHostImage::findRecord(const std::string& tag, GRIHostRecord& record) const {
  const size_t count = recordCount();
  for (size_t i = 0; i < count; ++i) {
    GRIHostRecord found;
    if (this->record(i, found) && tag == found.tag) {
      record = found;
      return true;
    }
  }
  return false;
}
