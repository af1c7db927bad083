/// @file
/// GRIMetadataRecord, a named array of typed values.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// What a record's elements are. File formats and hosts know the numbers.
enum GRIMetadataDataType : gr_uint32 {
  GRI_METADATA_DATATYPE_INVALID = 0,
  GRI_METADATA_DATATYPE_UINT8 = 1,
  GRI_METADATA_DATATYPE_SINT8 = 2,
  GRI_METADATA_DATATYPE_UINT16 = 3,
  GRI_METADATA_DATATYPE_SINT16 = 4,
  GRI_METADATA_DATATYPE_UINT32 = 5,
  GRI_METADATA_DATATYPE_SINT32 = 6,
  GRI_METADATA_DATATYPE_UINT64 = 7,
  GRI_METADATA_DATATYPE_SINT64 = 8,
  GRI_METADATA_DATATYPE_FLOAT32 = 9,
  GRI_METADATA_DATATYPE_FLOAT64 = 10,
  GRI_METADATA_DATATYPE_ASCII = 11,  ///< each element a pointer to a zero-terminated text
};

/// A tag, a data type, and an array of values with any number of dimensions. It owns copies of all
/// of them. What it gives out points into the record.
class GRIMetadataRecord {
 public:
  /// No record has more elements; a host walks them by the dimensions.
  static constexpr gr_uint64 MAX_ELEMENTS = 0x7FFFFFFF;

  /// @param tag   the name; copied
  /// @param type  one of the table, not GRI_METADATA_DATATYPE_INVALID
  /// @param dims  extent of each of `numDims` dimensions; copied. The number of elements is their
  ///              product, 1 where there are none. A scalar has one dimension of extent 1.
  /// @param data  that many elements, row-major; copied. For ASCII they are `const char*`, and each
  ///              text is copied. Null: all elements are 0, or empty texts.
  /// Throws GRUtilException: 8 when memory runs out, 50501 for more than MAX_ELEMENTS elements. A
  /// reader of a file, whose dimensions may say anything, tests them by countElements first.
  GRIMetadataRecord(const char* tag, GRIMetadataDataType type, gr_uint32 numDims,
                    const gr_uint32* dims, const void* data);
  /// Throws GRUtilException(8).
  GRIMetadataRecord(const GRIMetadataRecord& other);
  GRIMetadataRecord& operator=(const GRIMetadataRecord&) = delete;
  ~GRIMetadataRecord() = default;

  const char* getTagName() const { return m_tag.data(); }
  GRIMetadataDataType getDataType() const { return m_type; }
  gr_uint32 getNumDims() const { return static_cast<gr_uint32>(m_dims.size()); }
  const gr_uint32* getDims() const { return m_dims.data(); }
  gr_uint32 getNumElements() const { return m_numElements; }

  /// One dimension of extent 1.
  bool isScalar() const { return m_dims.size() == 1 && m_dims[0] == 1; }
  /// One dimension.
  bool isVector() const { return m_dims.size() == 1; }
  bool isArray() const { return true; }

  /// The values; never null, also where there are none. Of a scalar (isScalar() must hold):
  const void* getScalarData() const;
  /// Of a vector (isVector() must hold), with their number:
  const void* getVectorData(gr_uint32& numElements) const;
  /// Of any record, with its dimensions:
  const void* getArrayData(gr_uint32& numDims, const gr_uint32*& dims) const;

  /// Bytes of the values: elements times their width (for ASCII, of the pointers).
  gr_uint64 getDataSize() const;
  /// Bytes of the record as files store it: the tag and its zero, 4 for the type, 4 for the number
  /// of dimensions and 4 for each, and the values; a text counts with its zero.
  gr_uint64 getSerializedSize() const;

  /// Whether `type` is one of the table (and not INVALID).
  static bool isDataType(gr_uint32 type) {
    return type >= GRI_METADATA_DATATYPE_UINT8 && type <= GRI_METADATA_DATATYPE_ASCII;
  }
  /// Bytes of one element of `type`, which is one of the table; of a pointer for ASCII.
  static gr_uint32 getElementSize(GRIMetadataDataType type);
  /// The number of elements that dimensions make up.
  /// @return 0; 50501 for more than MAX_ELEMENTS, and then `count` is untouched
  static GR_STATUS countElements(gr_uint32 numDims, const gr_uint32* dims, gr_uint32& count);

 private:
  void copyTexts(const char* const* texts);

  GRArray<char> m_tag;  // zero-terminated
  GRIMetadataDataType m_type = GRI_METADATA_DATATYPE_INVALID;
  GRArray<gr_uint32> m_dims;
  gr_uint32 m_numElements = 0;
  GRArray<gr_uint8> m_data;  // the values; for ASCII, pointers into m_texts
  GRArray<char> m_texts;     // of an ASCII record, one after the other, each with its zero
};
