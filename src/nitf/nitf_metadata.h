/// @file
/// NITFMetadata, which turns header fields into metadata records.
#pragma once

#include <span>
#include <string_view>

#include "gr_lib_utils/include/gr_types.h"
#include "metadata/gri_metadataDatabase.h"

/// Adds records to a database. Their tags are a prefix, which tells the segment, and a name:
/// "NITF::IM001::" and "IDATIM".
class NITFMetadata {
 public:
  static constexpr size_t MAX_TAG_LENGTH = 511;

  /// @param database, prefix  stay the caller's and outlive this
  NITFMetadata(GRIMetadataDatabase& database, std::string_view prefix)
      : m_database(database), m_prefix(prefix) {}

  // Each: @return 0; 50504 when the tag is there already; 8 for memory

  /// A text as it stands, blanks included.
  [[nodiscard]] GR_STATUS addText(std::string_view name, const char* text);
  /// The same, but no record for a text that is empty or all blanks.
  [[nodiscard]] GR_STATUS addTextIfNotBlank(std::string_view name, const char* text);
  [[nodiscard]] GR_STATUS addInt(std::string_view name, gr_int32 value);
  /// A vector of UINT8.
  [[nodiscard]] GR_STATUS addBytes(std::string_view name, std::span<const gr_uint8> bytes);
  /// The same for a tagged record extension, whose name is "TRE_" and its tag.
  [[nodiscard]] GR_STATUS addTRE(std::string_view tag, std::span<const gr_uint8> bytes);

 private:
  GRIMetadataDatabase& m_database;
  std::string_view m_prefix;
};
