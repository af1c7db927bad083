#include "metadata/gri_metadataAcc.h"

#include <cassert>

#include "gr_lib_utils/include/gr_exception.h"
#include "image/gri_pixelLookupTable.h"

GRIMetadataDataType gri_toMetadataDataType(GRIDataType type) {
  switch (type) {
    case GRI_DATATYPE_UINT8:
    case GRI_DATATYPE_SINT8:
    case GRI_DATATYPE_UINT16:
    case GRI_DATATYPE_SINT16:
    case GRI_DATATYPE_UINT32:
    case GRI_DATATYPE_SINT32:
      return static_cast<GRIMetadataDataType>(type);  // numbered alike
    case GRI_DATATYPE_FLOAT32:
      return GRI_METADATA_DATATYPE_FLOAT32;
    case GRI_DATATYPE_FLOAT64:
      return GRI_METADATA_DATATYPE_FLOAT64;
    case GRI_DATATYPE_UINT64:
      return GRI_METADATA_DATATYPE_UINT64;
    case GRI_DATATYPE_SINT64:
      return GRI_METADATA_DATATYPE_SINT64;
    default:
      return GRI_METADATA_DATATYPE_INVALID;
  }
}

GRIDataType gri_toDataType(GRIMetadataDataType type) {
  for (gr_int32 number = GRI_DATATYPE_UINT8; number <= GRI_DATATYPE_SINT64; ++number) {
    const auto dataType = static_cast<GRIDataType>(number);
    if (gri_toMetadataDataType(dataType) == type) return dataType;
  }
  return GRI_DATATYPE_INVALID;
}

// --- Reading -----------------------------------------------------------------------------------

GR_STATUS GRIMetadataAccConst::getRecord(GRIMetadataTagRef tag, GRIMetadataDataType type,
                                         const GRIMetadataRecord*& record) const {
  const GRIMetadataRecord* found = nullptr;
  GR_RETURN_IF_FAILED(m_database->get(tag.text(), found));
  if (found->getDataType() != type) return GRI_STATUS_TAG_BAD_FORMAT;
  record = found;
  return GR_STATUS_OK;
}

GR_STATUS GRIMetadataAccConst::getNoDither(bool& noDither) const {
  gr_uint8 value = 0;
  GR_RETURN_IF_FAILED(getTagScalar(GRI_TAG_IMAGE_NO_DITHER, value));
  noDither = value != 0;
  return GR_STATUS_OK;
}

// --- Writing -----------------------------------------------------------------------------------

GR_STATUS GRIMetadataAcc::addRecord(GRIMetadataTagRef tag, GRIMetadataDataType type,
                                    std::span<const gr_uint32> dims, const void* values) {
  assert(tag.text() != nullptr);
  if (tag.text() == nullptr) return GRI_STATUS_METADATA_INTERNAL;
  if (m_database->has(tag.text())) return GRI_STATUS_TAG_DUPLICATE;
  try {
    auto record = gr_makeUnique<GRIMetadataRecord>(
        tag.text(), type, static_cast<gr_uint32>(dims.size()), dims.data(), values);
    if (record == nullptr) return GR_STATUS_NO_MEMORY;
    return m_database->add(std::move(record));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

void GRIMetadataAcc::removeTag(GRIMetadataTagRef tag) {
  static_cast<void>(m_database->remove(tag.text()));  // absent is as good
}

GR_STATUS GRIMetadataAcc::setInputFormat(const char* format) {
  return setTagScalar(GRI_TAG_IMAGE_INPUT_FORMAT, format);
}

GR_STATUS GRIMetadataAcc::setCreationDate(const char* date) {
  return setTagScalar(GRI_TAG_IMAGE_CREATION_DATE, date);
}

GR_STATUS GRIMetadataAcc::setInputName(const char* name) {
  return setTagScalar(GRI_TAG_IMAGE_INPUT_NAME, name);
}

GR_STATUS GRIMetadataAcc::setInputLUT(const GRIPixelLookupTable& table) {
  const GRIMetadataDataType type = gri_toMetadataDataType(table.getDataType());
  if (type == GRI_METADATA_DATATYPE_INVALID) return GRI_STATUS_METADATA_DATATYPE;
  const gr_uint32 dims[] = {table.getNumBands(), table.getTableSize()};
  return addRecord(GRI_TAG_IMAGE_INPUT_LUT, type, dims, table.getTable());
}

GR_STATUS GRIMetadataAcc::setNoDither(bool noDither) {
  return setTagScalar(GRI_TAG_IMAGE_NO_DITHER, static_cast<gr_uint8>(noDither ? 1 : 0));
}

GR_STATUS GRIMetadataAcc::setInputFileSize(gr_uint64 bytes) {
  return setTagScalar(GRI_TAG_IMAGE_INPUT_FILE_SIZE, bytes);
}

GR_STATUS GRIMetadataAcc::setTargetCompressionRatio(double ratio) {
  return setTagScalar(GRI_TAG_IMAGE_TARGET_COMPRESSION_RATIO, ratio);
}

GR_STATUS GRIMetadataAcc::setWeight(float weight) {
  return setTagScalar(GRI_TAG_IMAGE_COMPRESSION_WEIGHT, weight);
}

GR_STATUS GRIMetadataAcc::setKWeight(float weight) {
  return setTagScalar(GRI_TAG_IMAGE_COMPRESSION_KWEIGHT, weight);
}

GR_STATUS GRIMetadataAcc::setGamma(float gamma) {
  return setTagScalar(GRI_TAG_IMAGE_COMPRESSION_GAMMA, gamma);
}

GR_STATUS GRIMetadataAcc::setBlockSize(gr_uint32 blockSize) {
  return setTagScalar(GRI_TAG_IMAGE_COMPRESSION_BLOCK_SIZE, blockSize);
}

GR_STATUS GRIMetadataAcc::setWidth(gr_uint32 width) {
  return setTagScalar(GRI_TAG_IMAGE_WIDTH, width);
}

GR_STATUS GRIMetadataAcc::setHeight(gr_uint32 height) {
  return setTagScalar(GRI_TAG_IMAGE_HEIGHT, height);
}

GR_STATUS GRIMetadataAcc::setNLev(gr_uint32 numLevels) {
  return setTagScalar(GRI_TAG_IMAGE_COMPRESSION_NLEV, numLevels);
}

GR_STATUS GRIMetadataAcc::setCompressionVersion(gr_uint32 version) {
  return setTagScalar(GRI_TAG_IMAGE_COMPRESSION_VERSION, version);
}

GR_STATUS GRIMetadataAcc::setEncodingApplication(const char* application) {
  return setTagScalar(GRI_TAG_IMAGE_ENCODING_APPLICATION, application);
}
