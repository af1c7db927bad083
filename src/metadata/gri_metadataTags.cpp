#include "metadata/gri_metadataTags.h"

#include <cassert>
#include <cstring>

const char* GRIMetadataUtilities::convertTagToString(gr_int32 tag) {
  for (const GRIMetadataTagRow& row : gri_metadataTagTable()) {
    if (row.number == tag) return row.text;
  }
  return nullptr;
}

gr_int32 GRIMetadataUtilities::convertTagToNumber(const char* text) {
  assert(text != nullptr);
  for (const GRIMetadataTagRow& row : gri_metadataTagTable()) {
    if (std::strcmp(row.text, text) == 0) return row.number;
  }
  return GRI_TAG_UNKNOWN;
}
