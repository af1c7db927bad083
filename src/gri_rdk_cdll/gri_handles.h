/// @file
/// The objects behind the handles of the C interface. A handle is the pointer itself.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gri_rdk_cdll.h"

class GRIImageStage;

// Through void, since the two are one address and no compiler need know that they differ in type.
inline gric_image gri_toHandle(GRIImageStage* stage) {
  return static_cast<gric_image>(static_cast<void*>(stage));
}
inline GRIImageStage& gri_stageOf(gric_image image) {
  return *static_cast<GRIImageStage*>(static_cast<void*>(image));
}

inline gr_ioCStream gri_toHandle(GRIOStreamInf* stream) {
  return static_cast<gr_ioCStream>(static_cast<void*>(stream));
}
inline GRIOStreamInf& gri_streamOf(gr_ioCStream stream) {
  return *static_cast<GRIOStreamInf*>(static_cast<void*>(stream));
}
