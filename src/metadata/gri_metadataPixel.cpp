// How the accessors translate pixels, dynamic ranges and palettes to records and back.

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_pixelLookupTable.h"
#include "metadata/gri_metadataAcc.h"

namespace {

/// What IMAGE::COLOR_SCHEME says for a colour space.
struct ColorScheme {
  gr_uint32 stored;
  GRIColorSpace colorSpace;
};

constexpr ColorScheme COLOR_SCHEMES[] = {
    {0, GRI_COLORSPACE_RGB},
    {2, GRI_COLORSPACE_CMYK},
    {3, GRI_COLORSPACE_GRAYSCALE},
    {10, GRI_COLORSPACE_MULTISPECTRAL},
    {11, GRI_COLORSPACE_GRAYSCALE_ALPHA},
    {12, GRI_COLORSPACE_GRAYSCALE_ALPHA_2},
    {13, GRI_COLORSPACE_RGB_ALPHA},
    {14, GRI_COLORSPACE_RGB_ALPHA_2},
    {15, GRI_COLORSPACE_CMYK_ALPHA},
    {16, GRI_COLORSPACE_CMYK_ALPHA_2},
};

/// What IMAGE::DATA_TYPE says for a data type.
struct StoredDataType {
  gr_uint32 stored;
  GRIDataType dataType;
};

constexpr StoredDataType DATA_TYPES[] = {
    {0, GRI_DATATYPE_UINT8},    {1, GRI_DATATYPE_FLOAT32}, {2, GRI_DATATYPE_UINT16},
    {10, GRI_DATATYPE_SINT8},   {11, GRI_DATATYPE_SINT16}, {12, GRI_DATATYPE_SINT32},
    {13, GRI_DATATYPE_SINT64},  {14, GRI_DATATYPE_UINT32}, {15, GRI_DATATYPE_UINT64},
    {16, GRI_DATATYPE_FLOAT64},
};

/// An absent tag is no failure: it leaves `value` as it was.
template <typename T>
GR_STATUS getOptional(const GRIMetadataAccConst& acc, gr_int32 tag, T& value, bool& found) {
  const GR_STATUS status = acc.getTagScalar(tag, value);
  found = GR_SUCCESS(status);
  return status == GRI_STATUS_TAG_NOT_FOUND ? GR_STATUS_OK : status;
}

/// Rebuilds a pixel with the samples of a colour space, and with a data type; an invalid one of
/// these stays as it is. The values become 0.
GR_STATUS rebuild(GRIPixel& pixel, GRIColorSpace colorSpace, GRIDataType dataType) {
  const gr_uint16 numBands = pixel.getNumBands();
  try {
    const bool newColors = colorSpace != GRI_COLORSPACE_INVALID;
    const GRIPixel colors = newColors ? GRIPixel(colorSpace, numBands, GRI_DATATYPE_UINT8) : pixel;
    GRArray<GRISample> samples;
    GR_RETURN_IF_FAILED(samples.allocate(numBands));
    for (gr_uint16 band = 0; band < numBands; ++band) {
      const GRIDataType own = pixel.getSample(band).getDataType();
      samples[band] = GRISample(colors.getSample(band).getColor(),
                                dataType != GRI_DATATYPE_INVALID ? dataType : own, nullptr);
    }
    pixel = GRIPixel(samples.data(), numBands, colors.getColorSpace());
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  return GR_STATUS_OK;
}

/// Whether every band of `pixel` can have so many significant bits.
bool canHavePrecision(const GRIPixel& pixel, gr_uint32 bits) {
  if (bits == 0) return false;
  for (gr_uint16 band = 0; band < pixel.getNumBands(); ++band) {
    if (bits > 8 * pixel.getSample(band).getNumBytes()) return false;
  }
  return true;
}

/// Whether a window can be one: a number of steps that 32 bits can count. A NaN isn't.
bool isWindow(double window) { return window >= 1.0 && window <= 4294967296.0; }

/// The significant bits of each sample, from the record that says so or, where that isn't there
/// and for floats, from the dynamic range.
/// @param precision  0 where the records don't tell
GR_STATUS readPrecision(const GRIMetadataAccConst& acc, bool isFloat, gr_uint32& precision) {
  precision = 0;
  bool isFound = false;
  if (!isFloat) {
    gr_uint16 bits = 0;
    GR_RETURN_IF_FAILED(getOptional(acc, GRI_TAG_IMAGE_BITS_PER_SAMPLE, bits, isFound));
    precision = bits;
  }
  if (isFound || !acc.database().has(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL)) return GR_STATUS_OK;
  double window = 0.0;
  GR_RETURN_IF_FAILED(getOptional(acc, GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, window, isFound));
  if (isFound && isWindow(window)) {
    precision = static_cast<gr_uint32>(std::bit_width(static_cast<gr_uint64>(window) - 1));
  }
  return GR_STATUS_OK;
}

GRIColorSpace colorSpaceOfTable(gr_uint16 numBands) {
  switch (numBands) {
    case 1:
      return GRI_COLORSPACE_GRAYSCALE;
    case 3:
      return GRI_COLORSPACE_RGB;
    case 4:
      return GRI_COLORSPACE_CMYK;
    default:
      return GRI_COLORSPACE_MULTISPECTRAL;
  }
}

gr_int32 backgroundTag(const GRIPixel& pixel) {
  return pixel.getDataType() == GRI_DATATYPE_UINT8 ? GRI_TAG_IMAGE_NO_DATA_VALUE
                                                   : GRI_TAG_IMAGE_DEFAULT_DATA_VALUE;
}

}  // namespace

// --- Pixel properties --------------------------------------------------------------------------

GR_STATUS GRIMetadataAccConst::getPixelProps(GRIPixel& pixel) const {
  // Everything is read before anything changes.
  gr_uint32 scheme = 0, type = 0;
  bool hasScheme = false, hasType = false;
  GR_RETURN_IF_FAILED(getOptional(*this, GRI_TAG_IMAGE_COLOR_SCHEME, scheme, hasScheme));
  GR_RETURN_IF_FAILED(getOptional(*this, GRI_TAG_IMAGE_DATA_TYPE, type, hasType));
  GRIColorSpace colorSpace = GRI_COLORSPACE_INVALID;
  GRIDataType dataType = GRI_DATATYPE_INVALID;
  for (const ColorScheme& row : COLOR_SCHEMES) {
    if (hasScheme && row.stored == scheme) colorSpace = row.colorSpace;
  }
  for (const StoredDataType& row : DATA_TYPES) {
    if (hasType && row.stored == type) dataType = row.dataType;
  }
  const bool isFloat =
      (dataType == GRI_DATATYPE_INVALID ? pixel.getDataType() : dataType) == GRI_DATATYPE_FLOAT32;
  gr_uint32 precision = 0;
  GR_RETURN_IF_FAILED(readPrecision(*this, isFloat, precision));
  GR_STATUS result = GR_STATUS_OK;
  if (colorSpace != GRI_COLORSPACE_INVALID &&
      !GRIPixel::fits(colorSpace, pixel.getNumBands(), GRI_DATATYPE_UINT8)) {
    colorSpace = GRI_COLORSPACE_INVALID;
    result = TESRA_STATUS_UNSUPPORTED_COLORSPACE;
  }
  if (colorSpace != GRI_COLORSPACE_INVALID || dataType != GRI_DATATYPE_INVALID) {
    GR_RETURN_IF_FAILED(rebuild(pixel, colorSpace, dataType));
  }
  if (canHavePrecision(pixel, precision)) pixel.setPrecision(precision);
  return result;
}

GR_STATUS GRIMetadataAcc::setPixelProps(const GRIPixel& pixel, bool force) {
  for (const ColorScheme& row : COLOR_SCHEMES) {
    if (row.colorSpace != pixel.getColorSpace()) continue;
    GR_RETURN_IF_FAILED(setTagScalar(GRI_TAG_IMAGE_COLOR_SCHEME, row.stored));
  }
  for (const StoredDataType& row : DATA_TYPES) {
    if (row.dataType != pixel.getDataType()) continue;
    GR_RETURN_IF_FAILED(setTagScalar(GRI_TAG_IMAGE_DATA_TYPE, row.stored));
  }
  gr_uint32 precision = 0;
  for (gr_uint16 band = 0; band < pixel.getNumBands(); ++band) {
    precision = std::max(precision, pixel.getSample(band).getPrecision());
  }
  const bool isPlain = precision == 8 * pixel.getMaxBytesPerSample();
  if (isPlain && !force && !database().has(GRI_TAG_IMAGE_BITS_PER_SAMPLE)) return GR_STATUS_OK;
  return setTagScalar(GRI_TAG_IMAGE_BITS_PER_SAMPLE, static_cast<gr_uint16>(precision));
}

void GRIMetadataAcc::removePixelProps() {
  removeTag(GRI_TAG_IMAGE_COLOR_SCHEME);
  removeTag(GRI_TAG_IMAGE_DATA_TYPE);
  removeTag(GRI_TAG_IMAGE_BITS_PER_SAMPLE);
}

// --- Dynamic range -----------------------------------------------------------------------------

GR_STATUS GRIMetadataAccConst::getDynamicRange(double& min, double& max) const {
  double window = 0.0, level = 0.0;
  GR_RETURN_IF_FAILED(getTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, window));
  GR_RETURN_IF_FAILED(getTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL, level));
  if (!isWindow(window) || !std::isfinite(level)) return GRI_STATUS_TAG_NOT_FOUND;
  min = (2 * level - window + 1) / 2;
  max = min + window - 1;
  return GR_STATUS_OK;
}

GR_STATUS GRIMetadataAccConst::getDynamicRange(GRIPixel& min, GRIPixel& max) const {
  double least = 0.0, most = 0.0;
  GR_RETURN_IF_FAILED(getDynamicRange(least, most));
  for (gr_uint16 band = 0; band < min.getNumBands(); ++band) {
    min.getSample(band).setValueFromDouble(least);
  }
  for (gr_uint16 band = 0; band < max.getNumBands(); ++band) {
    max.getSample(band).setValueFromDouble(most);
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIMetadataAcc::setDynamicRange(double min, double max) {
  GR_RETURN_IF_FAILED(setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW, max - min + 1));
  return setTagScalar(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL, (max + min) / 2);
}

GR_STATUS GRIMetadataAcc::setDynamicRange(const GRIPixel& min, const GRIPixel& max) {
  assert(min.getNumBands() == max.getNumBands());
  double least = min.getSample(0).getValueAsDouble();
  double most = max.getSample(0).getValueAsDouble();
  for (gr_uint16 band = 0; band < min.getNumBands(); ++band) {
    assert(min.getSample(band).getDataType() == max.getSample(band).getDataType());
    least = std::min(least, min.getSample(band).getValueAsDouble());
    most = std::max(most, max.getSample(band).getValueAsDouble());
  }
  return setDynamicRange(least, most);
}

void GRIMetadataAcc::removeDynamicRange() {
  removeTag(GRI_TAG_IMAGE_DYNAMIC_RANGE_WINDOW);
  removeTag(GRI_TAG_IMAGE_DYNAMIC_RANGE_LEVEL);
}

// --- Background and no data --------------------------------------------------------------------

GR_STATUS GRIMetadataAccConst::getBackgroundPixel(GRIPixel& pixel, bool* found) const {
  return getPixel(backgroundTag(pixel), pixel, found);
}

GR_STATUS GRIMetadataAccConst::getNoDataPixel(GRIPixel& pixel, bool* found) const {
  return getPixel(GRI_TAG_IMAGE_TRANSPARENT_DATA_VALUE, pixel, found);
}

GR_STATUS GRIMetadataAccConst::getPixel(gr_int32 tag, GRIPixel& pixel, bool* found) const {
  const GRIMetadataRecord* record = nullptr;
  const GR_STATUS status = getRecord(tag, gri_toMetadataDataType(pixel.getDataType()), record);
  if (found != nullptr) *found = GR_SUCCESS(status);
  if (status == GRI_STATUS_TAG_NOT_FOUND) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(status);
  if (!record->isVector()) {
    if (found != nullptr) *found = false;
    return GRI_STATUS_TAG_BAD_FORMAT;
  }
  gr_uint32 numValues = 0;
  const auto* values = static_cast<const gr_uint8*>(record->getVectorData(numValues));
  const gr_uint32 width = GRIMetadataRecord::getElementSize(record->getDataType());
  for (gr_uint16 band = 0; band < std::min<gr_uint32>(numValues, pixel.getNumBands()); ++band) {
    pixel.setSampleValueBytes(band, values + size_t{band} * width);
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIMetadataAcc::setBackgroundPixel(const GRIPixel& pixel) {
  return setPixel(backgroundTag(pixel), pixel);
}

GR_STATUS GRIMetadataAcc::setNoDataPixel(const GRIPixel& pixel) {
  return setPixel(GRI_TAG_IMAGE_TRANSPARENT_DATA_VALUE, pixel);
}

GR_STATUS GRIMetadataAcc::setPixel(gr_int32 tag, const GRIPixel& pixel) {
  const GRIMetadataDataType type = gri_toMetadataDataType(pixel.getDataType());
  if (type == GRI_METADATA_DATATYPE_INVALID) return GRI_STATUS_METADATA_DATATYPE;
  const gr_uint32 numBands = pixel.getNumBands();
  const size_t width = GRIMetadataRecord::getElementSize(type);
  GRArray<gr_uint8> values;
  GR_RETURN_IF_FAILED(values.allocate(numBands * width));
  for (gr_uint16 band = 0; band < numBands; ++band) {
    std::memcpy(values.data() + band * width, pixel.getSample(band).getValuePtr(), width);
  }
  removeTag(tag);
  return addRecord(tag, type, std::span<const gr_uint32>(&numBands, 1), values.data());
}

// --- Palette -----------------------------------------------------------------------------------

GR_STATUS GRIMetadataAccConst::getPixelLookupTable(
    const GRIPixel& props, std::unique_ptr<GRIPixelLookupTable>& table) const {
  const GRIDataType dataType = props.getDataType();
  const GRIMetadataRecord* record = nullptr;
  GR_RETURN_IF_FAILED(getRecord(GRI_TAG_IMAGE_INPUT_LUT, gri_toMetadataDataType(dataType), record));
  gr_uint32 numDims = 0;
  const gr_uint32* dims = nullptr;
  const void* values = record->getArrayData(numDims, dims);
  // A record always holds the product of its dimensions.
  if (numDims != 2 || dims[0] < 1 || dims[0] > 0xFFFF || dims[1] < 1) {
    return GRI_STATUS_METADATA_FORMAT;
  }
  const gr_uint16 numBands = static_cast<gr_uint16>(dims[0]);
  try {
    const GRIPixel entry = numBands == props.getNumBands()
                               ? props
                               : GRIPixel(colorSpaceOfTable(numBands), numBands, dataType);
    auto made = gr_makeUnique<GRIPixelLookupTable>(entry, dims[1], values);
    if (made == nullptr) return GR_STATUS_NO_MEMORY;
    table = std::move(made);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  return GR_STATUS_OK;
}
