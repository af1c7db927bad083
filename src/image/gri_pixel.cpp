#include "image/gri_pixel.h"

#include <algorithm>
#include <cassert>
#include <span>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

/// The colours of a colour space's bands, without alpha; empty where it names none.
std::span<const GRIColor> colorsOf(GRIColorSpace colorSpace) {
  static constexpr GRIColor GRAY[] = {GRI_COLOR_GRAY};
  static constexpr GRIColor RGB[] = {GRI_COLOR_RED, GRI_COLOR_GREEN, GRI_COLOR_BLUE};
  static constexpr GRIColor CMYK[] = {GRI_COLOR_CYAN, GRI_COLOR_MAGENTA, GRI_COLOR_YELLOW,
                                      GRI_COLOR_BLACK};
  static constexpr GRIColor OTHERS[] = {GRI_COLOR_OTHER, GRI_COLOR_OTHER, GRI_COLOR_OTHER,
                                        GRI_COLOR_OTHER};
  switch (GRIUtils::stripAlpha(colorSpace)) {
    case GRI_COLORSPACE_GRAYSCALE:
      return GRAY;
    case GRI_COLORSPACE_RGB:
      return RGB;
    case GRI_COLORSPACE_CMYK:
      return CMYK;
    case GRI_COLORSPACE_YCC:
      return std::span(OTHERS).first<3>();
    case GRI_COLORSPACE_YCCK:
      return OTHERS;
    default:
      return {};
  }
}

constexpr gr_int32 KNOWN_FLAGS = 0x03FFFF;

}  // namespace

bool GRIPixel::fits(GRIColorSpace colorSpace, gr_uint32 numBands, GRIDataType dataType) {
  if (!GRIUtils::isSampleType(dataType) || numBands == 0 || numBands > 0xFFFF) return false;
  if ((colorSpace & ~KNOWN_FLAGS) != 0) return false;
  const gr_uint32 alphaBands = GRIUtils::hasAlpha(colorSpace) ? 1 : 0;
  if (GRIUtils::stripAlpha(colorSpace) == GRI_COLORSPACE_MULTISPECTRAL) {
    return numBands > alphaBands;
  }
  const size_t colors = colorsOf(colorSpace).size();
  return colors > 0 && numBands == colors + alphaBands;
}

GRIPixel::GRIPixel(GRIColorSpace colorSpace, gr_uint16 numBands, GRIDataType dataType,
                   const GRISample* samples)
    : m_numBands(numBands), m_colorSpace(colorSpace) {
  assert(colorSpace != GRI_COLORSPACE_INVALID && numBands != 0 && dataType != GRI_DATATYPE_INVALID);
  if (samples != nullptr) {
    copySamples(samples);
    return;
  }
  assert(fits(colorSpace, numBands, dataType) && "bad colorspace");
  if (!GR_SUCCESS(m_samples.allocate(numBands))) throw GRUtilException(GR_STATUS_NO_MEMORY);
  const std::span<const GRIColor> colors = colorsOf(colorSpace);
  const gr_uint16 alphaBand =
      GRIUtils::hasAlpha(colorSpace) ? static_cast<gr_uint16>(numBands - 1) : numBands;
  for (gr_uint16 band = 0; band < numBands; ++band) {
    GRIColor color = band < colors.size() ? colors[band] : GRI_COLOR_OTHER;
    if (band == alphaBand) color = GRI_COLOR_ALPHA;
    m_samples[band] = GRISample(color, dataType, nullptr);
  }
}

GRIPixel::GRIPixel(const GRISample* samples, gr_uint16 numBands, GRIColorSpace colorSpace)
    : m_numBands(numBands), m_colorSpace(colorSpace) {
  assert(samples != nullptr && numBands != 0 && colorSpace != GRI_COLORSPACE_INVALID);
  copySamples(samples);
}

GRIPixel::GRIPixel(const GRIPixel& other)
    : m_numBands(other.m_numBands), m_colorSpace(other.m_colorSpace) {
  copySamples(other.m_samples.data());
}

GRIPixel& GRIPixel::operator=(const GRIPixel& other) {
  if (this == &other) return *this;
  GRArray<GRISample> samples;
  if (!GR_SUCCESS(samples.allocate(other.m_numBands))) throw GRUtilException(GR_STATUS_NO_MEMORY);
  std::copy(other.m_samples.begin(), other.m_samples.end(), samples.begin());
  m_samples = std::move(samples);
  m_numBands = other.m_numBands;
  m_colorSpace = other.m_colorSpace;
  return *this;
}

std::unique_ptr<GRIPixel> GRIPixel::clone() const {
  try {
    return gr_makeUnique<GRIPixel>(*this);
  } catch (const GRUtilException&) {
    return nullptr;
  }
}

void GRIPixel::copySamples(const GRISample* samples) {
  if (!GR_SUCCESS(m_samples.allocate(m_numBands))) throw GRUtilException(GR_STATUS_NO_MEMORY);
  std::copy_n(samples, m_numBands, m_samples.begin());
}

bool GRIPixel::operator==(const GRIPixel& other) const {
  return m_colorSpace == other.m_colorSpace && m_numBands == other.m_numBands &&
         std::equal(m_samples.begin(), m_samples.end(), other.m_samples.begin());
}

const GRISample& GRIPixel::getSample(gr_uint16 band) const {
  assert(band < m_numBands);
  return m_samples[band];
}

GRISample& GRIPixel::getSample(gr_uint16 band) {
  assert(band < m_numBands);
  return m_samples[band];
}

GRIDataType GRIPixel::getDataType() const {
  const GRIDataType first = m_samples[0].getDataType();
  for (const GRISample& sample : m_samples) {
    if (sample.getDataType() != first) return GRI_DATATYPE_INVALID;
  }
  return first;
}

gr_uint32 GRIPixel::getNumBytes() const {
  gr_uint32 bytes = 0;
  for (const GRISample& sample : m_samples) bytes += sample.getNumBytes();
  return bytes;
}

gr_uint32 GRIPixel::getMaxBytesPerSample() const {
  gr_uint32 bytes = 0;
  for (const GRISample& sample : m_samples) bytes = std::max(bytes, sample.getNumBytes());
  return bytes;
}

GR_STATUS GRIPixel::checkImpedance(const GRIPixel& other) const {
  if (getDataType() != other.getDataType()) return GRI_STATUS_IMPEDANCE_DATATYPE;
  if (m_colorSpace != other.m_colorSpace) return GRI_STATUS_IMPEDANCE_COLORSPACE;
  if (m_numBands != other.m_numBands) return GRI_STATUS_IMPEDANCE_BANDS;
  return GR_STATUS_OK;
}

bool GRIPixel::isMin() const {
  return std::all_of(m_samples.begin(), m_samples.end(),
                     [](const GRISample& sample) { return sample.isMin(); });
}

bool GRIPixel::isMax() const {
  return std::all_of(m_samples.begin(), m_samples.end(),
                     [](const GRISample& sample) { return sample.isMax(); });
}

void GRIPixel::setToMin() {
  for (GRISample& sample : m_samples) sample.setToMin();
}

void GRIPixel::setToMax() {
  for (GRISample& sample : m_samples) sample.setToMax();
}

void GRIPixel::setPrecision(gr_uint32 bits) {
  for (GRISample& sample : m_samples) sample.setPrecision(bits);
}

void GRIPixel::setAllUint8(gr_uint8 value) {
  for (GRISample& sample : m_samples) sample.setValueUint8(value);
}

void GRIPixel::setAllUint16(gr_uint16 value) {
  for (GRISample& sample : m_samples) sample.setValueUint16(value);
}

void GRIPixel::setAllFloat32(float value) {
  for (GRISample& sample : m_samples) sample.setValueFloat32(value);
}

void GRIPixel::setValuesUint8(const gr_uint8* values) {
  for (GRISample& sample : m_samples) sample.setValueUint8(*values++);
}

void GRIPixel::setValuesUint16(const gr_uint16* values) {
  for (GRISample& sample : m_samples) sample.setValueUint16(*values++);
}

void GRIPixel::setValuesFloat32(const float* values) {
  for (GRISample& sample : m_samples) sample.setValueFloat32(*values++);
}

void GRIPixel::setSampleUint8(gr_uint16 band, gr_uint8 value) {
  getSample(band).setValueUint8(value);
}

void GRIPixel::setSampleUint16(gr_uint16 band, gr_uint16 value) {
  getSample(band).setValueUint16(value);
}

void GRIPixel::setSampleFloat32(gr_uint16 band, float value) {
  getSample(band).setValueFloat32(value);
}

void GRIPixel::setSampleValueBytes(gr_uint16 band, const void* value) {
  getSample(band).setValueFromBytes(value);
}
