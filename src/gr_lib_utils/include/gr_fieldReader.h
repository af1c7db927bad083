/// @file
/// GRFieldReader, big-endian fields of a range of a stream.
#pragma once

#include <bit>
#include <type_traits>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

/// Reads the fields of a record whose length is known, and never a byte behind it. Whatever a
/// field says about sizes or counts is to be held against left() before it is used.
class GRFieldReader {
 public:
  /// @param stream  open, at the first byte of the range; it stays the caller's
  /// @param length  bytes of the range
  /// @param shortStatus  what is returned when the range or the stream ends inside a field
  GRFieldReader(GRIOStreamInf& stream, gr_uint64 length,
                GR_STATUS shortStatus = TG3_STATUS_READ_ERROR)
      : m_stream(stream), m_left(length), m_shortStatus(shortStatus) {}

  gr_uint64 left() const { return m_left; }  ///< bytes of the range that are not yet read

  /// The next big-endian integer, of either sign and any width; `value` is left alone on failure.
  template <typename T>
  [[nodiscard]] GR_STATUS read(T& value) {
    static_assert(std::is_integral_v<T> && !std::is_same_v<T, bool>);
    gr_uint8 bytes[sizeof(T)];
    GR_RETURN_IF_FAILED(read(bytes, sizeof(T)));
    gr_uint64 bits = 0;
    for (const gr_uint8 byte : bytes) bits = (bits << 8) | byte;
    value = static_cast<T>(bits);
    return GR_STATUS_OK;
  }
  /// The next big-endian IEEE number.
  [[nodiscard]] GR_STATUS read(double& value);
  [[nodiscard]] GR_STATUS read(float& value);
  /// The next `length` bytes as they are.
  [[nodiscard]] GR_STATUS read(gr_uint8* bytes, gr_uint64 length);
  /// The next `length` bytes into an array of that size, which is allocated only when the range
  /// has so many. @return 0; the short status; 8 for memory
  [[nodiscard]] GR_STATUS read(GRArray<gr_uint8>& bytes, gr_uint64 length);

  /// Steps over `length` bytes.
  [[nodiscard]] GR_STATUS skip(gr_uint64 length);

 private:
  GRIOStreamInf& m_stream;
  gr_uint64 m_left;
  GR_STATUS m_shortStatus;
};
