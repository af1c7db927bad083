// The tags of areas of interest, which have no numbers: their texts are made from the area's.

#include <array>
#include <bitset>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "metadata/gri_metadataAcc.h"

namespace {

constexpr char PREFIX[] = "IMAGE::AOI::";
constexpr const char* METHODS[] = {"weight", "shift inner", "shift outer"};

/// The text of one tag of an area.
class AOITag {
 public:
  AOITag(gr_uint16 n, const char* name) {
    std::snprintf(m_text.data(), m_text.size(), "%s%d::%s", PREFIX, int{n}, name);
  }
  operator GRIMetadataTagRef() const { return m_text.data(); }

 private:
  std::array<char, 64> m_text = {};  // the longest name has 27 characters
};

using MethodText = std::array<char, 32>;

MethodText methodText(gr_int32 method) {
  MethodText text = {};
  if (method >= 0 && static_cast<size_t>(method) < std::size(METHODS)) {
    std::snprintf(text.data(), text.size(), "%s", METHODS[method]);
  } else {
    std::snprintf(text.data(), text.size(), "unknown %d", method);
  }
  return text;
}

bool methodNumber(const char* text, gr_int32& method) {
  for (size_t i = 0; i < std::size(METHODS); ++i) {
    if (std::strcmp(text, METHODS[i]) == 0) {
      method = static_cast<gr_int32>(i);
      return true;
    }
  }
  constexpr char UNKNOWN[] = "unknown ";
  if (std::strncmp(text, UNKNOWN, sizeof(UNKNOWN) - 1) != 0) return false;
  char* end = nullptr;
  method = static_cast<gr_int32>(std::strtol(text + sizeof(UNKNOWN) - 1, &end, 10));
  return *end == '\0' && end != text + sizeof(UNKNOWN) - 1;
}

/// @param value  stays as it was when the tag is absent
GR_STATUS getOptionalText(const GRIMetadataAccConst& acc, const AOITag& tag, const char*& value) {
  const GR_STATUS status = acc.getTagScalar(tag, value);
  return status == GRI_STATUS_TAG_NOT_FOUND ? GR_STATUS_OK : status;
}

GR_STATUS replaceText(GRIMetadataAcc& acc, const AOITag& tag, const char* value) {
  acc.removeTag(tag);
  return value == nullptr ? GR_STATUS_OK : acc.setTagScalar(tag, value);
}

}  // namespace

GR_STATUS GRIMetadataAccConst::getAOI(gr_uint16 n, GRIMetadataAOI& aoi) const {
  GRIMetadataAOI result;
  const char* method = nullptr;
  GR_RETURN_IF_FAILED(getTagVector(AOITag(n, "REGION::X"), result.x));
  GR_RETURN_IF_FAILED(getTagVector(AOITag(n, "REGION::Y"), result.y));
  GR_RETURN_IF_FAILED(getTagScalar(AOITag(n, "METHOD"), method));
  GR_RETURN_IF_FAILED(getTagScalar(AOITag(n, "WEIGHT"), result.weight));
  GR_RETURN_IF_FAILED(getTagScalar(AOITag(n, "MAGNIFICATION"), result.magnification));
  if (!methodNumber(method, result.method)) return GRI_STATUS_TAG_BAD_FORMAT;

  GR_RETURN_IF_FAILED(
      getOptionalText(*this, AOITag(n, "REGION::VECTOROVERLAY"), result.vectorOverlay));
  gr_uint32 layer = 0;
  const GR_STATUS status = getTagScalar(AOITag(n, "REGION::VECTOROVERLAY_LAYER"), layer);
  if (GR_SUCCESS(status)) {
    result.vectorOverlayLayer = layer;
  } else if (status != GRI_STATUS_TAG_NOT_FOUND) {
    return status;
  }
  GR_RETURN_IF_FAILED(getOptionalText(*this, AOITag(n, "NAME"), result.name));
  GR_RETURN_IF_FAILED(getOptionalText(*this, AOITag(n, "COMMENT"), result.comment));
  GR_RETURN_IF_FAILED(getOptionalText(*this, AOITag(n, "URL"), result.url));
  aoi = result;
  return GR_STATUS_OK;
}

gr_uint32 GRIMetadataAccConst::getNumAOIs() const {
  constexpr size_t PREFIX_LENGTH = sizeof(PREFIX) - 1;
  std::bitset<0x10000> seen;
  const GRIMetadataRecord* record = nullptr;
  for (gr_uint32 i = 0; GR_SUCCESS(database().getDataByIndex(i, record)); ++i) {
    const char* tag = record->getTagName();
    if (std::strncmp(tag, PREFIX, PREFIX_LENGTH) != 0) continue;
    char* end = nullptr;
    const unsigned long n = std::strtoul(tag + PREFIX_LENGTH, &end, 10);
    const bool isNumber = end != tag + PREFIX_LENGTH && std::strncmp(end, "::", 2) == 0;
    if (isNumber && n < seen.size()) seen.set(n);
  }
  return static_cast<gr_uint32>(seen.count());
}

GR_STATUS GRIMetadataAcc::addAOI(gr_uint16 n, const GRIMetadataAOI& aoi) {
  for (const char* name : {"REGION::X", "REGION::Y", "METHOD", "WEIGHT", "MAGNIFICATION"}) {
    if (database().has(GRIMetadataTagRef(AOITag(n, name)).text())) return GRI_STATUS_TAG_DUPLICATE;
  }
  const MethodText method = methodText(aoi.method);
  const char* const methodName = method.data();
  GR_RETURN_IF_FAILED(setTagVector(AOITag(n, "REGION::X"), aoi.x));
  GR_RETURN_IF_FAILED(setTagVector(AOITag(n, "REGION::Y"), aoi.y));
  GR_RETURN_IF_FAILED(setTagScalar(AOITag(n, "METHOD"), methodName));
  GR_RETURN_IF_FAILED(setTagScalar(AOITag(n, "WEIGHT"), aoi.weight));
  GR_RETURN_IF_FAILED(setTagScalar(AOITag(n, "MAGNIFICATION"), aoi.magnification));

  GR_RETURN_IF_FAILED(replaceText(*this, AOITag(n, "REGION::VECTOROVERLAY"), aoi.vectorOverlay));
  const AOITag layerTag(n, "REGION::VECTOROVERLAY_LAYER");
  removeTag(layerTag);
  if (aoi.vectorOverlayLayer) {
    GR_RETURN_IF_FAILED(setTagScalar(layerTag, *aoi.vectorOverlayLayer));
  }
  GR_RETURN_IF_FAILED(replaceText(*this, AOITag(n, "NAME"), aoi.name));
  GR_RETURN_IF_FAILED(replaceText(*this, AOITag(n, "COMMENT"), aoi.comment));
  return replaceText(*this, AOITag(n, "URL"), aoi.url);
}
