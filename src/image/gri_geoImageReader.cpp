#include "image/gri_geoImageReader.h"

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS GRIGeoImageReader::readWorldFile(GRIOStreamInf& stream, bool& changed, bool respectFlag) {
  changed = false;
  if (respectFlag && !m_useWorldFile) return GR_STATUS_OK;
  try {
    GRIGeoCoord geoCoord(getGeoCoord());
    GR_RETURN_IF_FAILED(geoCoord.readWorldFile(stream));
    GR_RETURN_IF_FAILED(setGeoCoord(geoCoord));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  changed = true;
  return GR_STATUS_OK;
}

GR_STATUS GRIGeoImageReader::readWorldFile(const GRFileSpec& imagePath, bool& changed,
                                           bool respectFlag) {
  changed = false;
  if (respectFlag && !m_useWorldFile) return GR_STATUS_OK;
  bool found = false;
  try {
    GRIGeoCoord geoCoord(getGeoCoord());
    GR_RETURN_IF_FAILED(geoCoord.readWorldFile(imagePath, true, found));
    if (found) GR_RETURN_IF_FAILED(setGeoCoord(geoCoord));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  changed = found;
  return GR_STATUS_OK;
}
