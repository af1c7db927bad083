// GRIGeoCoord and its records.

#include <array>
#include <span>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"
#include "metadata/gri_metadataAcc.h"

namespace {

/// A vector of `values.size()` numbers, stored as doubles or as floats.
/// @param found  whether the record is there
GR_STATUS readNumbers(const GRIMetadataAccConst& records, gr_int32 tag, std::span<double> values,
                      bool& found) {
  const auto take = [&values](auto stored) -> GR_STATUS {
    if (stored.size() != values.size()) return GRI_STATUS_TAG_BAD_FORMAT;
    for (size_t i = 0; i < values.size(); ++i) values[i] = stored[i];
    return GR_STATUS_OK;
  };
  found = false;
  std::span<const double> doubles;
  const GR_STATUS status = records.getTagVector(tag, doubles);
  if (status == GRI_STATUS_TAG_NOT_FOUND) return GR_STATUS_OK;
  found = true;
  if (GR_SUCCESS(status)) return take(doubles);
  std::span<const float> floats;
  GR_RETURN_IF_FAILED(records.getTagVector(tag, floats));
  return take(floats);
}

}  // namespace

GR_STATUS GRIGeoCoord::readFromMetadata(const GRIMetadataDatabase& metadata, bool& found) {
  found = false;
  const GRIMetadataAccConst records(metadata);
  std::array<double, 2> origin = {};
  std::array<double, 1> xResolution = {};
  std::array<double, 1> yResolution = {};
  std::array<double, 1> xRotation = {};
  std::array<double, 1> yRotation = {};
  bool hasOrigin = false;
  bool hasXResolution = false;
  bool hasYResolution = false;
  bool hasRotation = false;
  GR_RETURN_IF_FAILED(readNumbers(records, GRI_TAG_IMAGE_XY_ORIGIN, origin, hasOrigin));
  GR_RETURN_IF_FAILED(
      readNumbers(records, GRI_TAG_IMAGE_X_RESOLUTION, xResolution, hasXResolution));
  GR_RETURN_IF_FAILED(
      readNumbers(records, GRI_TAG_IMAGE_Y_RESOLUTION, yResolution, hasYResolution));
  GR_RETURN_IF_FAILED(readNumbers(records, GRI_TAG_IMAGE_X_ROTATION, xRotation, hasRotation));
  GR_RETURN_IF_FAILED(readNumbers(records, GRI_TAG_IMAGE_Y_ROTATION, yRotation, hasRotation));
  const char* wkt = nullptr;
  const GR_STATUS status = records.getTagScalar(GRI_TAG_IMAGE_WKT, wkt);
  if (!GR_SUCCESS(status) && status != GRI_STATUS_TAG_NOT_FOUND) return status;
  if (!hasOrigin || !hasXResolution || !hasYResolution) return GR_STATUS_OK;
  try {
    setWKT(wkt);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  m_xOrigin = origin[0];
  m_yOrigin = origin[1];
  m_xResolution = xResolution[0];
  m_yResolution = yResolution[0];
  m_xRotation = xRotation[0];
  m_yRotation = yRotation[0];
  found = true;
  return GR_STATUS_OK;
}

GR_STATUS GRIGeoCoord::writeToMetadata(GRIMetadataDatabase& metadata) const {
  GRIMetadataAcc records(metadata);
  for (const gr_int32 tag :
       {GRI_TAG_IMAGE_XY_ORIGIN, GRI_TAG_IMAGE_X_RESOLUTION, GRI_TAG_IMAGE_Y_RESOLUTION,
        GRI_TAG_IMAGE_X_ROTATION, GRI_TAG_IMAGE_Y_ROTATION, GRI_TAG_IMAGE_WKT}) {
    records.removeTag(tag);
  }
  const std::array<double, 2> origin = {m_xOrigin, m_yOrigin};
  GR_RETURN_IF_FAILED(
      records.setTagVector(GRI_TAG_IMAGE_XY_ORIGIN, std::span<const double>(origin)));
  GR_RETURN_IF_FAILED(records.setTagScalar(GRI_TAG_IMAGE_X_RESOLUTION, m_xResolution));
  GR_RETURN_IF_FAILED(records.setTagScalar(GRI_TAG_IMAGE_Y_RESOLUTION, m_yResolution));
  GR_RETURN_IF_FAILED(records.setTagScalar(GRI_TAG_IMAGE_X_ROTATION, m_xRotation));
  GR_RETURN_IF_FAILED(records.setTagScalar(GRI_TAG_IMAGE_Y_ROTATION, m_yRotation));
  if (getWKT() == nullptr) return GR_STATUS_OK;
  return records.setTagScalar<const char*>(GRI_TAG_IMAGE_WKT, getWKT());
}
