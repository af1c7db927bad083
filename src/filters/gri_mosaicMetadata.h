/// @file
/// GRIMosaicMetadata, what the records of a mosaic say of all its images together.
#pragma once

#include <string_view>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

class GRIMetadataDatabase;

/// Collects the names and sizes of the files that the images were made from.
class GRIMosaicMetadata {
 public:
  /// Longer lists of names are cut behind a name.
  static constexpr size_t LONGEST_NAMES = 1 << 20;  // characters

  GRIMosaicMetadata() = default;

  /// Takes what one image's records say.
  /// @return 0; 8 for memory
  [[nodiscard]] GR_STATUS add(const GRIMetadataDatabase& records);
  /// Replaces IMAGE::INPUT_NAME and IMAGE::INPUT_FILE_SIZE by what was collected, where any image
  /// had them, and adds the number of images.
  /// @return 0; 50504 or 8
  [[nodiscard]] GR_STATUS writeTo(GRIMetadataDatabase& records, gr_uint32 numImages) const;

 private:
  GR_STATUS append(std::string_view text);

  GRArray<char> m_names;  // with room for more, and a zero behind the last one
  size_t m_namesLength = 0;
  bool m_hasNames = false;
  bool m_areNamesCut = false;
  gr_uint64 m_fileSize = 0;  // bytes
  bool m_hasFileSize = false;
};
