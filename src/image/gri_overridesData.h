/// @file
/// The data of the GRIOverride* mixins, with their initial values.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_geoCoord.h"
#include "image/gri_pixel.h"
#include "image/gri_pixelLookupTable.h"

class GRIImage;
class GRIInterruptDelegate;
class GRIMetadataDatabase;
class GRIProgressDelegate;

struct GRIOverrideDimensionsData {
  gr_uint32 width = 0;   // columns
  gr_uint32 height = 0;  // rows
};

struct GRIOverridePixelPropsData {
  std::unique_ptr<GRIPixel> pixelProps;
  std::unique_ptr<GRIPixel> min;  // lowest sample value per band
  std::unique_ptr<GRIPixel> max;  // highest sample value per band

  // Each: 0 or 8, and then nothing has changed.
  GR_STATUS setPixelProps(const GRIPixel& pixel);
  GR_STATUS setDynamicRange(const GRIPixel& lowest, const GRIPixel& highest);
  GR_STATUS setPrecision(gr_uint8 bits);
};

struct GRIOverrideBackgroundPixelData {
  std::unique_ptr<GRIPixel> background;
  std::unique_ptr<GRIPixel> noData;

  /// @return 0 or 8
  static GR_STATUS replace(std::unique_ptr<GRIPixel>& mine, const GRIPixel* pixel);
};

struct GRIOverrideGeoCoordData {
  GRIGeoCoord geoCoord;
  bool isImplicit = true;  // not stated by the file

  // Each: 0 or 8, and then nothing has changed.
  GR_STATUS set(const GRIGeoCoord& newCoord);
  GR_STATUS setDefault(const GRIImage& image);
};

struct GRIOverrideMagnificationData {
  double min = 1.0;
  double max = 1.0;
};

struct GRIOverrideIsSelectiveData {
  bool isSelective = false;
};

struct GRIOverrideStripHeightData {
  static constexpr gr_uint32 DEFAULT = 64;
  gr_uint32 stripHeight = DEFAULT;  // rows
};

struct GRIOverrideDelegatesData {
  GRIProgressDelegate* progress = nullptr;    // the caller's
  GRIInterruptDelegate* interrupt = nullptr;  // the caller's
};

struct GRIOverridePixelLookupTablesData {
  std::unique_ptr<GRIPixelLookupTable> table;

  GR_STATUS set(const GRIPixelLookupTable* newTable);  // 0 or 8
};

/// Defined in metadata/, which knows the records; here they are only held.
struct GRIOverrideMetadataData {
  GRIOverrideMetadataData();
  ~GRIOverrideMetadataData();
  GRIOverrideMetadataData(const GRIOverrideMetadataData&) = delete;
  GRIOverrideMetadataData& operator=(const GRIOverrideMetadataData&) = delete;

  const GRIMetadataDatabase& get() const;             // an empty one at first
  GRIMetadataDatabase* edit();                        // null when memory runs out
  GR_STATUS set(const GRIMetadataDatabase* records);  // 0 or 8
  // Records that nearly every reader adds; one that is there already stays. Each: 0 or 8.
  GR_STATUS addInputName(const char* name);
  GR_STATUS addCompressionRatio(double ratio);

  std::unique_ptr<GRIMetadataDatabase> metadata;  // null while there are no records
};
