#include "filters/gri_mosaicMetadata.h"

#include <algorithm>
#include <utility>

#include "filters/gri_mosaicFilter.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_status.h"
#include "metadata/gri_metadataAcc.h"
#include "metadata/gri_metadataDatabase.h"

namespace {

constexpr std::string_view SEPARATOR = ", ";
constexpr size_t ROOM_STEP = 512;  // characters

/// A number of bytes, of any unsigned type. @return whether there is one
bool getFileSize(const GRIMetadataAccConst& records, gr_uint64& bytes) {
  if (GR_SUCCESS(records.getTagScalar(GRI_TAG_IMAGE_INPUT_FILE_SIZE, bytes))) return true;
  gr_uint32 number = 0;
  if (!GR_SUCCESS(records.getTagScalar(GRI_TAG_IMAGE_INPUT_FILE_SIZE, number))) return false;
  bytes = number;
  return true;
}

}  // namespace

GR_STATUS GRIMosaicMetadata::add(const GRIMetadataDatabase& records) {
  const GRIMetadataAccConst access(records);
  gr_uint64 bytes = 0;
  if (getFileSize(access, bytes)) {
    m_fileSize = gr_saturatingAdd(m_fileSize, bytes);
    m_hasFileSize = true;
  }
  const char* text = nullptr;
  if (m_areNamesCut || !GR_SUCCESS(access.getTagScalar(GRI_TAG_IMAGE_INPUT_NAME, text))) {
    return GR_STATUS_OK;
  }
  const std::string_view name(text);
  m_areNamesCut = m_namesLength + SEPARATOR.size() + name.size() > LONGEST_NAMES;
  if (m_areNamesCut) return GR_STATUS_OK;
  if (m_hasNames) GR_RETURN_IF_FAILED(append(SEPARATOR));
  m_hasNames = true;
  return append(name);
}

GR_STATUS GRIMosaicMetadata::append(std::string_view text) {
  const size_t length = m_namesLength + text.size();
  if (length >= m_names.size()) {
    GRArray<char> more;
    GR_RETURN_IF_FAILED(more.allocate(std::max(2 * m_names.size(), length + ROOM_STEP)));
    std::copy_n(m_names.begin(), m_namesLength, more.begin());
    m_names = std::move(more);
  }
  std::copy(text.begin(), text.end(), m_names.begin() + m_namesLength);
  m_namesLength = length;
  m_names[length] = '\0';
  return GR_STATUS_OK;
}

GR_STATUS GRIMosaicMetadata::writeTo(GRIMetadataDatabase& records, gr_uint32 numImages) const {
  GRIMetadataAcc access(records);
  if (m_hasNames) access.removeTag(GRI_TAG_IMAGE_INPUT_NAME);
  if (m_hasFileSize) access.removeTag(GRI_TAG_IMAGE_INPUT_FILE_SIZE);
  access.removeTag(GRIMosaicFilter::NUM_TILES_TAG);
  records.closeGaps();  // a host walks them by their numbers

  if (m_hasNames) GR_RETURN_IF_FAILED(access.setInputName(m_names.data()));
  if (m_hasFileSize) GR_RETURN_IF_FAILED(access.setInputFileSize(m_fileSize));
  return access.setTagScalar(GRIMosaicFilter::NUM_TILES_TAG, numImages);
}
