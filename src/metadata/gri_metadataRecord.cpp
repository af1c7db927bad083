#include "metadata/gri_metadataRecord.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "gr_lib_utils/include/gr_exception.h"

namespace {

void throwIfFailed(GR_STATUS status) {
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
}

}  // namespace

gr_uint32 GRIMetadataRecord::getElementSize(GRIMetadataDataType type) {
  switch (type) {
    case GRI_METADATA_DATATYPE_UINT8:
    case GRI_METADATA_DATATYPE_SINT8:
      return 1;
    case GRI_METADATA_DATATYPE_UINT16:
    case GRI_METADATA_DATATYPE_SINT16:
      return 2;
    case GRI_METADATA_DATATYPE_UINT32:
    case GRI_METADATA_DATATYPE_SINT32:
    case GRI_METADATA_DATATYPE_FLOAT32:
      return 4;
    case GRI_METADATA_DATATYPE_UINT64:
    case GRI_METADATA_DATATYPE_SINT64:
    case GRI_METADATA_DATATYPE_FLOAT64:
      return 8;
    case GRI_METADATA_DATATYPE_ASCII:
      return sizeof(const char*);
    default:
      break;
  }
  assert(false && "bad datatype");
  return 1;
}

GR_STATUS GRIMetadataRecord::countElements(gr_uint32 numDims, const gr_uint32* dims,
                                           gr_uint32& count) {
  // An extent of 0 anywhere makes an empty array, whatever the others are.
  if (std::find(dims, dims + numDims, 0u) != dims + numDims) {
    count = 0;
    return GR_STATUS_OK;
  }
  gr_uint64 product = 1;
  for (gr_uint32 i = 0; i < numDims; ++i) {
    product *= dims[i];  // below 2^31 times 2^32
    if (product > MAX_ELEMENTS) return GRI_STATUS_METADATA_INTERNAL;
  }
  count = static_cast<gr_uint32>(product);
  return GR_STATUS_OK;
}

GRIMetadataRecord::GRIMetadataRecord(const char* tag, GRIMetadataDataType type, gr_uint32 numDims,
                                     const gr_uint32* dims, const void* data)
    : m_type(type) {
  assert(tag != nullptr);
  assert(isDataType(type));
  throwIfFailed(countElements(numDims, dims, m_numElements));
  throwIfFailed(m_tag.allocate(std::strlen(tag) + 1));
  std::copy_n(tag, m_tag.size(), m_tag.begin());
  throwIfFailed(m_dims.allocate(numDims));
  std::copy_n(dims, numDims, m_dims.begin());

  // An array without elements has a pointer to its values all the same.
  const gr_uint64 numBytes = getDataSize();
  throwIfFailed(m_data.allocate(std::max<gr_uint64>(numBytes, 1)));
  if (type == GRI_METADATA_DATATYPE_ASCII) {
    copyTexts(static_cast<const char* const*>(data));
  } else if (data != nullptr && numBytes != 0) {
    std::memcpy(m_data.data(), data, static_cast<size_t>(numBytes));
  }
}

GRIMetadataRecord::GRIMetadataRecord(const GRIMetadataRecord& other)
    : GRIMetadataRecord(other.getTagName(), other.m_type, other.getNumDims(), other.getDims(),
                        other.m_data.data()) {}

void GRIMetadataRecord::copyTexts(const char* const* texts) {
  const auto text = [texts](size_t i) {
    return texts == nullptr || texts[i] == nullptr ? "" : texts[i];
  };
  gr_uint64 numBytes = 0;
  for (size_t i = 0; i < m_numElements; ++i) numBytes += std::strlen(text(i)) + 1;
  throwIfFailed(m_texts.allocate(numBytes));
  char* to = m_texts.data();
  for (size_t i = 0; i < m_numElements; ++i) {
    const size_t length = std::strlen(text(i)) + 1;
    std::memcpy(to, text(i), length);
    std::memcpy(m_data.data() + i * sizeof(to), &to, sizeof(to));
    to += length;
  }
}

const void* GRIMetadataRecord::getScalarData() const {
  assert(isScalar());
  return m_data.data();
}

const void* GRIMetadataRecord::getVectorData(gr_uint32& numElements) const {
  assert(isVector());
  numElements = m_numElements;
  return m_data.data();
}

const void* GRIMetadataRecord::getArrayData(gr_uint32& numDims, const gr_uint32*& dims) const {
  numDims = getNumDims();
  dims = getDims();
  return m_data.data();
}

gr_uint64 GRIMetadataRecord::getDataSize() const {
  return gr_uint64{m_numElements} * getElementSize(m_type);
}

gr_uint64 GRIMetadataRecord::getSerializedSize() const {
  const gr_uint64 values = m_type == GRI_METADATA_DATATYPE_ASCII ? m_texts.size() : getDataSize();
  return m_tag.size() + 4 + 4 + 4 * m_dims.size() + values;
}
