/// @file
/// One record of a picture's metadata as the library hands it out.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "gri_rdk_cdll.h"

/// A named array of values. Looks into the open image, and lives no longer than that.
struct GRIHostRecord {
  const char* tag = nullptr;
  gr_int32 dataType = GRIC_METADATA_DATATYPE_INVALID;
  std::span<const gr_uint32> dims;  // extents, the last running fastest
  const void* data = nullptr;

  /// The number of values: the product of the extents. 0 where there is no extent.
  size_t count() const;
  bool isText() const { return dataType == GRIC_METADATA_DATATYPE_ASCII; }
  bool isScalar() const { return dims.size() == 1 && dims[0] == 1; }

  /// Value number `index` as a double; 0 for text. 64-bit integers are rounded.
  double number(size_t index) const;
  /// Value number `index` of a text record, empty for others, as UTF-8: what is no UTF-8 is taken
  /// as ISO 8859-1, the character set of older files.
  std::string text(size_t index) const;
  /// Value number `index` for people: the text, or the number with all the digits of an integer
  /// and 12 of a fraction.
  std::string words(size_t index) const;
};

/// A number for people, of 12 significant digits, with a decimal point in every locale: "0.1",
/// "1e+20", "nan".
std::string gri_hostNumberWords(double number);

/// "uint8", "float64", "text" ...
const char* gri_hostMetadataTypeName(gr_int32 dataType);

/// The bytes as UTF-8, see GRIHostRecord::text.
std::string gri_hostUtf8(const char* bytes);

/// Text that may be shown on a terminal: control characters become "\n", "\t" or "\x1b", so that
/// no file can send commands to it.
std::string gri_hostPrintable(const std::string& utf8);
