/// @file
/// GRIMetadataAccConst and GRIMetadataAcc, which read and write the well-known tags of a database
/// as typed values, and translate properties of an image to records and back.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <type_traits>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"
#include "metadata/gri_metadataDatabase.h"
#include "metadata/gri_metadataTags.h"

class GRIPixel;
class GRIPixelLookupTable;

/// A tag, given by number or by text. A number that isn't in the table has no text, and no database
/// has it.
class GRIMetadataTagRef {
 public:
  GRIMetadataTagRef(gr_int32 number) : m_text(GRIMetadataUtilities::convertTagToString(number)) {}
  GRIMetadataTagRef(const char* text) : m_text(text) {}

  const char* text() const { return m_text; }

 private:
  const char* m_text;
};

/// The data type of a record with elements of the C++ type T (a text is a `const char*`).
template <typename T>
constexpr GRIMetadataDataType gri_metadataDataTypeOf() {
  if constexpr (std::is_same_v<T, gr_uint8>) return GRI_METADATA_DATATYPE_UINT8;
  if constexpr (std::is_same_v<T, gr_int8>) return GRI_METADATA_DATATYPE_SINT8;
  if constexpr (std::is_same_v<T, gr_uint16>) return GRI_METADATA_DATATYPE_UINT16;
  if constexpr (std::is_same_v<T, gr_int16>) return GRI_METADATA_DATATYPE_SINT16;
  if constexpr (std::is_same_v<T, gr_uint32>) return GRI_METADATA_DATATYPE_UINT32;
  if constexpr (std::is_same_v<T, gr_int32>) return GRI_METADATA_DATATYPE_SINT32;
  if constexpr (std::is_same_v<T, gr_uint64>) return GRI_METADATA_DATATYPE_UINT64;
  if constexpr (std::is_same_v<T, gr_int64>) return GRI_METADATA_DATATYPE_SINT64;
  if constexpr (std::is_same_v<T, float>) return GRI_METADATA_DATATYPE_FLOAT32;
  if constexpr (std::is_same_v<T, double>) return GRI_METADATA_DATATYPE_FLOAT64;
  if constexpr (std::is_same_v<T, const char*>) return GRI_METADATA_DATATYPE_ASCII;
  return GRI_METADATA_DATATYPE_INVALID;
}

/// Converts between the data types of samples and of records.
/// @return INVALID for a type without a counterpart (texts, complex numbers)
GRIMetadataDataType gri_toMetadataDataType(GRIDataType type);
GRIDataType gri_toDataType(GRIMetadataDataType type);

/// An area of interest: a region of the image that an encoder treated in its own way.
struct GRIMetadataAOI {
  std::span<const double> x;  ///< columns of the region's corners
  std::span<const double> y;  ///< their rows
  gr_int32 method = 0;        ///< 0 weight, 1 shift inner, 2 shift outer
  double weight = 0.0;
  double magnification = 1.0;
  const char* vectorOverlay = nullptr;  ///< this and the following may be null: absent
  std::optional<gr_uint32> vectorOverlayLayer;
  const char* name = nullptr;
  const char* comment = nullptr;
  const char* url = nullptr;
};

/// Reads the tags of a database, which stays the caller's and must outlive this.
class GRIMetadataAccConst {
 public:
  explicit GRIMetadataAccConst(const GRIMetadataDatabase& database) : m_database(&database) {}

  /// The value or values of a tag, as elements of exactly the type T (gri_metadataDataTypeOf).
  /// Texts and arrays point into the record.
  /// @return 0; 50503 when the tag isn't there; 50507 when its record has another type or another
  ///         shape. On failure nothing is written.
  template <typename T>
  [[nodiscard]] GR_STATUS getTagScalar(GRIMetadataTagRef tag, T& value) const;
  template <typename T>
  [[nodiscard]] GR_STATUS getTagVector(GRIMetadataTagRef tag, std::span<const T>& values) const;
  template <typename T>
  [[nodiscard]] GR_STATUS getTagArray(GRIMetadataTagRef tag, std::span<const gr_uint32>& dims,
                                      std::span<const T>& values) const;

  /// Whether IMAGE::NO_DITHER is there and not 0. @return 0; 50503; 50507
  [[nodiscard]] GR_STATUS getNoDither(bool& noDither) const;

  /// Takes colour space, data type and precision of `pixel` from the records, as far as they are
  /// there and count: the dynamic range where no bits per sample are, and for FLOAT32 in place of
  /// them. The band count stays: a colour space of another band count isn't taken.
  /// @return 0; 50507 for one of these records of another type or shape, and then the pixel is as
  ///         it was; 50601 for a colour space of another band count, after the rest was taken; 8
  ///         for memory
  [[nodiscard]] GR_STATUS getPixelProps(GRIPixel& pixel) const;

  /// The dynamic range, from its window and level.
  /// @return 0; 50503 when one of the two isn't there, or is no usable number (not finite, or a
  ///         window below 1 or above 2^32); 50507
  [[nodiscard]] GR_STATUS getDynamicRange(double& min, double& max) const;
  /// The same for all bands of two pixels, rounded and clamped to their type.
  [[nodiscard]] GR_STATUS getDynamicRange(GRIPixel& min, GRIPixel& max) const;

  /// Takes the samples of `pixel` from the record, as many bands as both have. Without a record it
  /// stays as it was.
  /// @param found  whether there was a record
  /// @return 0; 50507 for a record that isn't a vector of the pixel's data type
  [[nodiscard]] GR_STATUS getBackgroundPixel(GRIPixel& pixel, bool* found = nullptr) const;
  [[nodiscard]] GR_STATUS getNoDataPixel(GRIPixel& pixel, bool* found = nullptr) const;

  /// The palette, from IMAGE::INPUT_LUT.
  /// @param props  the image's pixel, whose data type the record must have
  /// @param table  the table, which becomes the caller's
  /// @return 0; 50503 when the tag isn't there; 50507 for a record of another type; 50028 for one
  ///         of another shape; 8 for memory
  [[nodiscard]] GR_STATUS getPixelLookupTable(const GRIPixel& props,
                                              std::unique_ptr<GRIPixelLookupTable>& table) const;

  /// The area of interest number `n`; texts and corners point into the records.
  /// @return 0; 50503 when a tag that isn't optional is missing; 50507; on failure `aoi` is as it
  /// was
  [[nodiscard]] GR_STATUS getAOI(gr_uint16 n, GRIMetadataAOI& aoi) const;
  /// How many areas of interest there are. Their numbers may have gaps.
  gr_uint32 getNumAOIs() const;

  const GRIMetadataDatabase& database() const { return *m_database; }

 protected:
  /// The record of a tag. @return 0; 50503; 50507 when it has another data type
  GR_STATUS getRecord(GRIMetadataTagRef tag, GRIMetadataDataType type,
                      const GRIMetadataRecord*& record) const;
  GR_STATUS getPixel(gr_int32 tag, GRIPixel& pixel, bool* found) const;

 private:
  const GRIMetadataDatabase* m_database;
};

/// Reads and writes the tags of a database, which stays the caller's and must outlive this.
class GRIMetadataAcc : public GRIMetadataAccConst {
 public:
  explicit GRIMetadataAcc(GRIMetadataDatabase& database)
      : GRIMetadataAccConst(database), m_database(&database) {}

  /// Adds a record. One that is there already must be removed first.
  /// @return 0; 50504 when the tag is there; 8 for memory
  template <typename T>
  [[nodiscard]] GR_STATUS setTagScalar(GRIMetadataTagRef tag, T value);
  template <typename T>
  [[nodiscard]] GR_STATUS setTagVector(GRIMetadataTagRef tag, std::span<const T> values);
  /// @param values  as many as the product of `dims`
  template <typename T>
  [[nodiscard]] GR_STATUS setTagArray(GRIMetadataTagRef tag, std::span<const gr_uint32> dims,
                                      std::span<const T> values);
  /// Removes a record; one that isn't there is no failure.
  void removeTag(GRIMetadataTagRef tag);

  // Shorthands: each adds the record of one tag, and returns what setTagScalar does.
  [[nodiscard]] GR_STATUS setInputFormat(const char* format);
  [[nodiscard]] GR_STATUS setCreationDate(const char* date);
  [[nodiscard]] GR_STATUS setInputName(const char* name);
  [[nodiscard]] GR_STATUS setInputLUT(const GRIPixelLookupTable& table);
  [[nodiscard]] GR_STATUS setNoDither(bool noDither);
  [[nodiscard]] GR_STATUS setInputFileSize(gr_uint64 bytes);
  [[nodiscard]] GR_STATUS setTargetCompressionRatio(double ratio);
  [[nodiscard]] GR_STATUS setWeight(float weight);
  [[nodiscard]] GR_STATUS setKWeight(float weight);
  [[nodiscard]] GR_STATUS setGamma(float gamma);
  [[nodiscard]] GR_STATUS setBlockSize(gr_uint32 blockSize);
  [[nodiscard]] GR_STATUS setWidth(gr_uint32 width);
  [[nodiscard]] GR_STATUS setHeight(gr_uint32 height);
  [[nodiscard]] GR_STATUS setNLev(gr_uint32 numLevels);
  [[nodiscard]] GR_STATUS setCompressionVersion(gr_uint32 version);
  [[nodiscard]] GR_STATUS setEncodingApplication(const char* application);

  /// Adds colour scheme and data type, and bits per sample where the precision isn't the type's
  /// full width or `force` asks for it. A colour space or data type without a number isn't written.
  /// @return 0; 50504; 8 for memory
  [[nodiscard]] GR_STATUS setPixelProps(const GRIPixel& pixel, bool force);
  /// Removes these three, as far as they are there.
  void removePixelProps();

  /// Adds window (`max` - `min` + 1) and level (their mean).
  [[nodiscard]] GR_STATUS setDynamicRange(double min, double max);
  /// The same with the smallest value of any band of `min` and the largest of any of `max`, which
  /// must have one band count and, band by band, one data type.
  [[nodiscard]] GR_STATUS setDynamicRange(const GRIPixel& min, const GRIPixel& max);
  void removeDynamicRange();

  /// Replaces the background pixel: IMAGE::NO_DATA_VALUE for UINT8, IMAGE::DEFAULT_DATA_VALUE for
  /// all other data types.
  /// @return 0; 50502 for a data type that records don't have; 8 for memory
  [[nodiscard]] GR_STATUS setBackgroundPixel(const GRIPixel& pixel);
  /// Replaces IMAGE::TRANSPARENT_DATA_VALUE.
  [[nodiscard]] GR_STATUS setNoDataPixel(const GRIPixel& pixel);

  /// Writes area of interest number `n`. Its optional tags are replaced, or removed where absent.
  /// @return 0; 50504 when the area is there; 8 for memory
  [[nodiscard]] GR_STATUS addAOI(gr_uint16 n, const GRIMetadataAOI& aoi);

 private:
  GR_STATUS addRecord(GRIMetadataTagRef tag, GRIMetadataDataType type,
                      std::span<const gr_uint32> dims, const void* values);
  GR_STATUS setPixel(gr_int32 tag, const GRIPixel& pixel);

  GRIMetadataDatabase* m_database;
};

// --- Templates ---------------------------------------------------------------------------------

template <typename T>
GR_STATUS GRIMetadataAccConst::getTagScalar(GRIMetadataTagRef tag, T& value) const {
  std::span<const T> values;
  GR_RETURN_IF_FAILED(getTagVector(tag, values));
  if (values.size() != 1) return GRI_STATUS_TAG_BAD_FORMAT;
  value = values[0];
  return GR_STATUS_OK;
}

template <typename T>
GR_STATUS GRIMetadataAccConst::getTagVector(GRIMetadataTagRef tag,
                                            std::span<const T>& values) const {
  std::span<const gr_uint32> dims;
  std::span<const T> found;
  GR_RETURN_IF_FAILED(getTagArray(tag, dims, found));
  if (dims.size() != 1) return GRI_STATUS_TAG_BAD_FORMAT;
  values = found;
  return GR_STATUS_OK;
}

template <typename T>
GR_STATUS GRIMetadataAccConst::getTagArray(GRIMetadataTagRef tag, std::span<const gr_uint32>& dims,
                                           std::span<const T>& values) const {
  constexpr GRIMetadataDataType TYPE = gri_metadataDataTypeOf<T>();
  static_assert(TYPE != GRI_METADATA_DATATYPE_INVALID, "no record has elements of this type");
  const GRIMetadataRecord* record = nullptr;
  GR_RETURN_IF_FAILED(getRecord(tag, TYPE, record));
  gr_uint32 numDims = 0;
  const gr_uint32* firstDim = nullptr;
  const void* data = record->getArrayData(numDims, firstDim);
  dims = {firstDim, numDims};
  values = {static_cast<const T*>(data), record->getNumElements()};
  return GR_STATUS_OK;
}

template <typename T>
GR_STATUS GRIMetadataAcc::setTagScalar(GRIMetadataTagRef tag, T value) {
  return setTagVector(tag, std::span<const T>(&value, 1));
}

template <typename T>
GR_STATUS GRIMetadataAcc::setTagVector(GRIMetadataTagRef tag, std::span<const T> values) {
  if (values.size() > GRIMetadataRecord::MAX_ELEMENTS) return GRI_STATUS_METADATA_INTERNAL;
  const gr_uint32 count = static_cast<gr_uint32>(values.size());
  return setTagArray(tag, std::span<const gr_uint32>(&count, 1), values);
}

template <typename T>
GR_STATUS GRIMetadataAcc::setTagArray(GRIMetadataTagRef tag, std::span<const gr_uint32> dims,
                                      std::span<const T> values) {
  constexpr GRIMetadataDataType TYPE = gri_metadataDataTypeOf<T>();
  static_assert(TYPE != GRI_METADATA_DATATYPE_INVALID, "no record has elements of this type");
  return addRecord(tag, TYPE, dims, values.data());
}
