/// @file
/// GRIImageStageManager, the base of what holds a file with several images.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_referenceCountedObject.h"

class GRIImageStage;

class GRIImageStageManager : public GRIReferenceCountedObject {
 public:
  /// Makes the stage of one image.
  /// @param imageNumber  from 0
  /// @param stage  receives the stage with one reference, which is the caller's; null on failure
  virtual GR_STATUS createImageStage(gr_uint32 imageNumber, GRIImageStage*& stage) = 0;

  gr_uint32 getNumImages() const { return m_numImages; }

 protected:
  void setNumImages(gr_uint32 numImages) { m_numImages = numImages; }

 private:
  gr_uint32 m_numImages = 0;
};
