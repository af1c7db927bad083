/// @file
/// The small enumerations of samples and colours, and GRIUtils, the questions about them. Their
/// numbers stand in files and in the C interface.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// What a sample is made of. Pixels have the first ten types; the complex ones exist only in the
/// questions of GRIUtils.
enum GRIDataType : gr_int32 {
  GRI_DATATYPE_INVALID = 0,
  GRI_DATATYPE_UINT8 = 1,
  GRI_DATATYPE_SINT8 = 2,
  GRI_DATATYPE_UINT16 = 3,
  GRI_DATATYPE_SINT16 = 4,
  GRI_DATATYPE_UINT32 = 5,
  GRI_DATATYPE_SINT32 = 6,
  GRI_DATATYPE_FLOAT32 = 7,
  GRI_DATATYPE_FLOAT64 = 8,
  GRI_DATATYPE_UINT64 = 9,
  GRI_DATATYPE_SINT64 = 10,
  GRI_DATATYPE_COMPLEX32 = 11,
  GRI_DATATYPE_COMPLEX64 = 12,
};

/// What the bands of an image mean together. Bits 8 to 15 are the number of colour bands (255 for
/// any number), bits 0 to 7 tell colour spaces of one band count apart, bits 16 and 17 are the
/// alpha flags.
enum GRIColorSpace : gr_int32 {
  GRI_COLORSPACE_INVALID = 0,
  GRI_COLORSPACE_GRAYSCALE = 0x0101,
  GRI_COLORSPACE_RGB = 0x0301,
  GRI_COLORSPACE_CMY = 0x0302,
  GRI_COLORSPACE_YCC = 0x0303,
  GRI_COLORSPACE_CMYK = 0x0402,
  GRI_COLORSPACE_YCCK = 0x0403,
  GRI_COLORSPACE_MULTISPECTRAL = 0xFF01,
  // With an alpha band behind the colours: either flag, as files store them.
  GRI_COLORSPACE_GRAYSCALE_ALPHA = 0x010101,
  GRI_COLORSPACE_GRAYSCALE_ALPHA_2 = 0x030101,
  GRI_COLORSPACE_RGB_ALPHA = 0x010301,
  GRI_COLORSPACE_RGB_ALPHA_2 = 0x030301,
  GRI_COLORSPACE_CMYK_ALPHA = 0x010402,
  GRI_COLORSPACE_CMYK_ALPHA_2 = 0x030402,
};

/// What a sample of one band means.
enum GRIColor : gr_int32 {
  GRI_COLOR_INVALID = 0,
  GRI_COLOR_RED = 1,
  GRI_COLOR_GREEN = 2,
  GRI_COLOR_BLUE = 3,
  GRI_COLOR_CYAN = 4,
  GRI_COLOR_MAGENTA = 5,
  GRI_COLOR_YELLOW = 6,
  GRI_COLOR_BLACK = 7,
  GRI_COLOR_GRAY = 8,
  GRI_COLOR_OTHER = 9,
  GRI_COLOR_ALPHA = 10,
};

/// The order of the bytes of a number.
enum GRIEndian : gr_int32 {
  GRI_ENDIAN_INVALID = 0,
  GRI_ENDIAN_HOST = 1,
  GRI_ENDIAN_LITTLE = 2,
  GRI_ENDIAN_BIG = 3,
};

/// Questions about data types and colour spaces.
class GRIUtils {
 public:
  /// Whether samples and pixels can have the type: one of the first ten.
  static bool isSampleType(GRIDataType dataType);
  /// Bytes of a value; 0 for a number that is no data type, which is the caller's error.
  static gr_uint32 getNumBytes(GRIDataType dataType);
  static bool isSigned(GRIDataType dataType);
  static bool isFloat(GRIDataType dataType);
  /// Whether values in `byteOrder` must be swapped to be read on this machine. One byte never is.
  static bool needsSwapping(GRIDataType dataType, GRIEndian byteOrder);

  /// The colour space without its alpha flags.
  static GRIColorSpace stripAlpha(GRIColorSpace colorSpace);
  static bool hasAlpha(GRIColorSpace colorSpace);
  /// Bands of a colour space with its alpha band; 0 where any number will do.
  static gr_uint16 getNumBands(GRIColorSpace colorSpace);

  /// The size of an image at a magnification: ceil(size * mag), limited to 32 bits.
  static void getDimsAtMag(gr_uint32 width, gr_uint32 height, double mag, gr_uint32& w,
                           gr_uint32& h);
};
