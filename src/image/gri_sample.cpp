#include "image/gri_sample.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "image/gri_sampleTypes.h"

namespace {

template <typename T>
T valueOf(const void* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof(T));
  return value;
}

/// The nearest value of T; rounds half up, as scene coordinates do.
template <typename T>
T nearest(double value) {
  if (std::isnan(value)) return 0;
  if constexpr (std::is_floating_point_v<T>) {
    constexpr double LARGEST = std::numeric_limits<T>::max();
    return static_cast<T>(std::clamp(value, -LARGEST, LARGEST));
  } else {
    const double rounded = std::floor(value + 0.5);
    // The limits of 64-bit types aren't doubles, but the comparison still keeps the cast in range.
    if (rounded <= static_cast<double>(std::numeric_limits<T>::min())) {
      return std::numeric_limits<T>::min();
    }
    if (rounded >= static_cast<double>(std::numeric_limits<T>::max())) {
      return std::numeric_limits<T>::max();
    }
    return static_cast<T>(rounded);
  }
}

}  // namespace

GRISample::GRISample(GRIColor color, GRIDataType dataType, const void* value)
    : m_dataType(dataType), m_color(color) {
  assert(color != GRI_COLOR_INVALID);
  assert(GRIUtils::isSampleType(dataType));
  m_numBytes = GRIUtils::getNumBytes(dataType);
  m_precision = 8 * m_numBytes;
  if (value != nullptr) setValueFromBytes(value);
}

GRISample& GRISample::operator=(const GRISample& other) = default;

bool GRISample::operator==(const GRISample& other) const {
  return m_color == other.m_color && m_dataType == other.m_dataType &&
         m_precision == other.m_precision && m_numBytes == other.m_numBytes &&
         std::memcmp(m_value.data(), other.m_value.data(), m_numBytes) == 0;
}

void GRISample::setPrecision(gr_uint32 bits) {
  assert(bits > 0 && bits <= 8 * m_numBytes);
  m_precision = bits;
}

void GRISample::setValueFromBytes(const void* value) {
  std::memcpy(m_value.data(), value, m_numBytes);
}

template <typename T>
void GRISample::setValue([[maybe_unused]] GRIDataType type, T value) {
  assert(type == m_dataType);
  static_assert(sizeof(T) <= MOST_BYTES);
  std::memcpy(m_value.data(), &value, sizeof(T));
}

template <typename T>
T GRISample::getValue([[maybe_unused]] GRIDataType type) const {
  assert(type == m_dataType);
  return valueOf<T>(m_value.data());
}

template void GRISample::setValue<gr_uint8>(GRIDataType, gr_uint8);
template void GRISample::setValue<gr_uint16>(GRIDataType, gr_uint16);
template void GRISample::setValue<gr_uint32>(GRIDataType, gr_uint32);
template void GRISample::setValue<gr_uint64>(GRIDataType, gr_uint64);
template void GRISample::setValue<gr_int8>(GRIDataType, gr_int8);
template void GRISample::setValue<gr_int16>(GRIDataType, gr_int16);
template void GRISample::setValue<gr_int32>(GRIDataType, gr_int32);
template void GRISample::setValue<gr_int64>(GRIDataType, gr_int64);
template void GRISample::setValue<float>(GRIDataType, float);
template void GRISample::setValue<double>(GRIDataType, double);
template gr_uint8 GRISample::getValue<gr_uint8>(GRIDataType) const;
template gr_uint16 GRISample::getValue<gr_uint16>(GRIDataType) const;
template gr_uint32 GRISample::getValue<gr_uint32>(GRIDataType) const;
template gr_uint64 GRISample::getValue<gr_uint64>(GRIDataType) const;
template gr_int8 GRISample::getValue<gr_int8>(GRIDataType) const;
template gr_int16 GRISample::getValue<gr_int16>(GRIDataType) const;
template gr_int32 GRISample::getValue<gr_int32>(GRIDataType) const;
template gr_int64 GRISample::getValue<gr_int64>(GRIDataType) const;
template float GRISample::getValue<float>(GRIDataType) const;
template double GRISample::getValue<double>(GRIDataType) const;

double GRISample::getValueAsDouble() const {
  return gri_visitType(
      m_dataType,
      [this](auto tag) {
        return static_cast<double>(valueOf<typename decltype(tag)::Type>(m_value.data()));
      },
      0.0);
}

void GRISample::setValueFromDouble(double value) {
  gri_visitType(
      m_dataType,
      [this, value](auto tag) {
        const auto typed = nearest<typename decltype(tag)::Type>(value);
        std::memcpy(m_value.data(), &typed, sizeof(typed));
        return 0;
      },
      0);
}

GRISample::Bytes GRISample::limitOf(GRIDataType dataType, bool largest) {
  Bytes bytes = {};
  gri_visitType(
      dataType,
      [&bytes, largest](auto tag) {
        using Limits = std::numeric_limits<typename decltype(tag)::Type>;
        // min() of a float type is its smallest positive normal value, which is what's meant.
        const auto limit = largest ? Limits::max() : Limits::min();
        std::memcpy(bytes.data(), &limit, sizeof(limit));
        return 0;
      },
      0);
  return bytes;
}

bool GRISample::isMin() const {
  return std::memcmp(limitOf(m_dataType, false).data(), m_value.data(), m_numBytes) == 0;
}

bool GRISample::isMax() const {
  return std::memcmp(limitOf(m_dataType, true).data(), m_value.data(), m_numBytes) == 0;
}

void GRISample::setToMin() { m_value = limitOf(m_dataType, false); }

void GRISample::setToMax() { m_value = limitOf(m_dataType, true); }

bool GRISample::isLessThan(const GRISample& other) const {
  assert(m_dataType == other.m_dataType);
  return gri_visitType(
      m_dataType,
      [&](auto tag) {
        using T = typename decltype(tag)::Type;
        return valueOf<T>(m_value.data()) < valueOf<T>(other.m_value.data());
      },
      false);
}

void GRISample::setToLesser(const GRISample& other) {
  if (other.isLessThan(*this)) m_value = other.m_value;
}

void GRISample::setToGreater(const GRISample& other) {
  if (isLessThan(other)) m_value = other.m_value;
}
