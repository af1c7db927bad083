/// @file
/// GRISample, one value of one band.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"

/// A value with its data type, its colour and its precision (how many of its bits count).
class GRISample {
 public:
  static constexpr size_t MOST_BYTES = 8;

  /// UINT8, colour other, precision 8, value 0.
  GRISample() = default;
  /// @param color, dataType  neither may be invalid
  /// @param value  getNumBytes() bytes in the machine's order; null for 0
  GRISample(GRIColor color, GRIDataType dataType, const void* value);
  GRISample(const GRISample&) = default;
  virtual GRISample& operator=(const GRISample& other);
  virtual ~GRISample() = default;

  /// Equal in colour, type, precision and the bytes of the value.
  bool operator==(const GRISample& other) const;

  GRIDataType getDataType() const { return m_dataType; }
  GRIColor getColor() const { return m_color; }
  gr_uint32 getNumBytes() const { return m_numBytes; }
  gr_uint32 getPrecision() const { return m_precision; }
  const void* getValuePtr() const { return m_value.data(); }

  /// @param bits  1 to 8 per byte of the type
  void setPrecision(gr_uint32 bits);
  /// Copies getNumBytes() bytes.
  void setValueFromBytes(const void* value);

  // One pair for each type; the sample must have just that type.
  void setValueUint8(gr_uint8 value) { setValue(GRI_DATATYPE_UINT8, value); }
  void setValueUint16(gr_uint16 value) { setValue(GRI_DATATYPE_UINT16, value); }
  void setValueUint32(gr_uint32 value) { setValue(GRI_DATATYPE_UINT32, value); }
  void setValueUint64(gr_uint64 value) { setValue(GRI_DATATYPE_UINT64, value); }
  void setValueSint8(gr_int8 value) { setValue(GRI_DATATYPE_SINT8, value); }
  void setValueSint16(gr_int16 value) { setValue(GRI_DATATYPE_SINT16, value); }
  void setValueSint32(gr_int32 value) { setValue(GRI_DATATYPE_SINT32, value); }
  void setValueSint64(gr_int64 value) { setValue(GRI_DATATYPE_SINT64, value); }
  void setValueFloat32(float value) { setValue(GRI_DATATYPE_FLOAT32, value); }
  void setValueFloat64(double value) { setValue(GRI_DATATYPE_FLOAT64, value); }
  gr_uint8 getValueUint8() const { return getValue<gr_uint8>(GRI_DATATYPE_UINT8); }
  gr_uint16 getValueUint16() const { return getValue<gr_uint16>(GRI_DATATYPE_UINT16); }
  gr_uint32 getValueUint32() const { return getValue<gr_uint32>(GRI_DATATYPE_UINT32); }
  gr_uint64 getValueUint64() const { return getValue<gr_uint64>(GRI_DATATYPE_UINT64); }
  gr_int8 getValueSint8() const { return getValue<gr_int8>(GRI_DATATYPE_SINT8); }
  gr_int16 getValueSint16() const { return getValue<gr_int16>(GRI_DATATYPE_SINT16); }
  gr_int32 getValueSint32() const { return getValue<gr_int32>(GRI_DATATYPE_SINT32); }
  gr_int64 getValueSint64() const { return getValue<gr_int64>(GRI_DATATYPE_SINT64); }
  float getValueFloat32() const { return getValue<float>(GRI_DATATYPE_FLOAT32); }
  double getValueFloat64() const { return getValue<double>(GRI_DATATYPE_FLOAT64); }

  /// The value as a double; 64-bit integers lose what a double can't hold.
  double getValueAsDouble() const;
  /// The nearest value that the type has; no number becomes 0.
  void setValueFromDouble(double value);

  /// The limits of the type. For the float types the smallest is the smallest positive normal
  /// value, not the most negative one.
  bool isMin() const;
  bool isMax() const;
  void setToMin();
  void setToMax();

  /// Keeps the lesser or the greater of the two; both have the same type.
  void setToLesser(const GRISample& other);
  void setToGreater(const GRISample& other);

 private:
  using Bytes = std::array<gr_uint8, MOST_BYTES>;

  template <typename T>
  void setValue(GRIDataType type, T value);
  template <typename T>
  T getValue(GRIDataType type) const;
  static Bytes limitOf(GRIDataType dataType, bool largest);
  bool isLessThan(const GRISample& other) const;

  Bytes m_value = {};  // the first m_numBytes count, in the machine's order
  GRIDataType m_dataType = GRI_DATATYPE_UINT8;
  GRIColor m_color = GRI_COLOR_OTHER;
  gr_uint32 m_numBytes = 1;
  gr_uint32 m_precision = 8;
};
