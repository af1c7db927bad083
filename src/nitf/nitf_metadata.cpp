#include "nitf/nitf_metadata.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

class Tag {
 public:
  Tag(std::string_view prefix, std::string_view name, std::string_view kind = "") {
    assert(prefix.size() + kind.size() + name.size() <= NITFMetadata::MAX_TAG_LENGTH);
    char* end = m_text.data();
    for (const std::string_view part : {prefix, kind, name}) end += part.copy(end, part.size());
  }
  const char* text() const { return m_text.data(); }

 private:
  std::array<char, NITFMetadata::MAX_TAG_LENGTH + 1> m_text = {};
};

GR_STATUS addVector(GRIMetadataDatabase& database, const Tag& tag, GRIMetadataDataType type,
                    size_t count, const void* values) {
  const auto dim = static_cast<gr_uint32>(std::min<size_t>(count, UINT32_MAX));
  try {
    auto record = gr_makeUnique<GRIMetadataRecord>(tag.text(), type, 1U, &dim, values);
    return record == nullptr ? GR_STATUS_NO_MEMORY : database.add(std::move(record));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

}  // namespace

GR_STATUS NITFMetadata::addText(std::string_view name, const char* text) {
  return addVector(m_database, Tag(m_prefix, name), GRI_METADATA_DATATYPE_ASCII, 1, &text);
}

GR_STATUS NITFMetadata::addTextIfNotBlank(std::string_view name, const char* text) {
  const bool isBlank = text[std::strspn(text, " ")] == '\0';
  return isBlank ? GR_STATUS_OK : addText(name, text);
}

GR_STATUS NITFMetadata::addInt(std::string_view name, gr_int32 value) {
  return addVector(m_database, Tag(m_prefix, name), GRI_METADATA_DATATYPE_SINT32, 1, &value);
}

GR_STATUS NITFMetadata::addBytes(std::string_view name, std::span<const gr_uint8> bytes) {
  return addVector(m_database, Tag(m_prefix, name), GRI_METADATA_DATATYPE_UINT8, bytes.size(),
                   bytes.data());
}

GR_STATUS NITFMetadata::addTRE(std::string_view tag, std::span<const gr_uint8> bytes) {
  return addVector(m_database, Tag(m_prefix, tag, "TRE_"), GRI_METADATA_DATATYPE_UINT8,
                   bytes.size(), bytes.data());
}
