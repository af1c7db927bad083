#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDesc.h"

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"

bool TG3PlaneDesc::isLegal(const TG3ImageInfo& info) const {
  return subband < info.getNumSubbands() && subblock < info.getNumSubblocks(subband) &&
         component < info.numComponents && plane < info.numPlanes;
}
