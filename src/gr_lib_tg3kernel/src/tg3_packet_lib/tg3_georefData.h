/// @file
/// TG3GeorefData, an image's position on the ground and its special pixels.
#pragma once

#include <optional>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// A pixel as files store it: one value per component, in the image's data type.
struct TG3PixelRecord {
  TG3Datatype datatype = TG3_DATATYPE_INVALID;  ///< 8 or 16 bits, of either sign
  GRArray<gr_int32> values;
};

/// Where an image lies.
struct TG3GeorefPosition {
  double xUL = 0.0;  ///< upper left corner
  double yUL = 0.0;
  double xLR = 0.0;  ///< lower right corner
  double yLR = 0.0;
  double xRes = 0.0;  ///< above 0 in a well-made file
  double yRes = 0.0;  ///< below 0 in a well-made file; users take its absolute value
};

/// The georeference of an image. A value that moves.
struct TG3GeorefData {
  std::optional<TG3GeorefPosition> geo;
  std::optional<gr_uint32> zNumber;
  std::optional<TG3PixelRecord> noData;
  std::optional<TG3PixelRecord> background;

  /// Reads the record; on failure this is as it was.
  /// @param stream  open, at the record; the caller's
  /// @param length  bytes that the record may take; what's left of them is ignored
  /// @param info    the image that it is about
  /// @return 0; 2001 for a record that ends early; 2005 for reserved bits, numbers that aren't
  ///         finite, a resolution of 0, and a pixel of another kind than the image's; 2012 for
  ///         memory
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, gr_uint64 length, const TG3ImageInfo& info);
};
