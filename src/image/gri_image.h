/// @file
/// GRIImage, the properties of an image.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"
#include "image/gri_referenceCountedObject.h"

class GRIGeoCoord;
class GRIMetadataDatabase;
class GRIPixel;
class GRIPixelLookupTable;

/// Points of an image, for getGeoPosition.
enum GRIPosition : gr_int32 {
  GRI_POSITION_UPPER_LEFT = 1,
  GRI_POSITION_UPPER_CENTER = 2,
  GRI_POSITION_UPPER_RIGHT = 3,
  GRI_POSITION_LOWER_LEFT = 4,
  GRI_POSITION_LOWER_CENTER = 5,
  GRI_POSITION_LOWER_RIGHT = 6,
  GRI_POSITION_CENTER_LEFT = 7,
  GRI_POSITION_CENTER = 8,
  GRI_POSITION_CENTER_RIGHT = 9,
};

class GRIImage : public GRIReferenceCountedObject {
 public:
  virtual gr_uint32 getWidth() const = 0;   ///< columns at magnification 1
  virtual gr_uint32 getHeight() const = 0;  ///< rows at magnification 1
  /// The size at a magnification.
  /// @return 0; 3, with nothing written, when the magnification is out of the image's range
  virtual GR_STATUS getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const = 0;
  virtual const GRIPixel& getPixelProps() const = 0;       ///< bands, colour space, data type
  virtual const GRIPixel* getBackgroundPixel() const = 0;  ///< null when there is none
  virtual const GRIPixel* getNoDataPixel() const = 0;      ///< null when there is none
  virtual const GRIPixelLookupTable* getPixelLookupTable() const = 0;  ///< null when none
  virtual const GRIPixel& getMinDynamicRange() const = 0;  ///< lowest sample value per band
  virtual const GRIPixel& getMaxDynamicRange() const = 0;  ///< highest sample value per band
  virtual const GRIGeoCoord& getGeoCoord() const = 0;
  virtual bool isGeoCoordImplicit() const = 0;  ///< whether the file states no position
  virtual const GRIMetadataDatabase& getMetadata() const = 0;
  virtual double getMinMagnification() const = 0;
  virtual double getMaxMagnification() const = 0;
  virtual gr_int64 getSourceFileSize() const = 0;  ///< bytes of what is read

  gr_uint16 getNumBands() const;
  GRIColorSpace getColorSpace() const;
  GRIDataType getDataType() const;
  /// Bytes of all samples at magnification 1.
  gr_uint64 getNumBytes() const;
  /// Whether the range of every band spans its whole type (8- and 16-bit integers and 32-bit
  /// floats; false for the others).
  bool isFullDynamicRange() const;
  /// The ground position of a point of the image, from origin, size and resolution alone.
  void getGeoPosition(GRIPosition position, double& x, double& y) const;
  /// What shows where the image has nothing: a copy of its background pixel, or else black (in
  /// the colour space's way), with an opaque alpha band; null when memory runs out.
  std::unique_ptr<GRIPixel> createBackgroundPixel() const;
};
