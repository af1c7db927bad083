/// @file
/// NITFFieldReader, the fields of a NITF header.
#pragma once

#include <string_view>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"
#include "nitf/nitf_text.h"

/// Walks over fields of fixed width, nearly all of them ASCII, in a range of a file that is read as
/// a whole. A field that isn't whole in the range gives 51210, and nothing moves.
///
/// Numbers are scanned as the C library does it with a width: leading white space, a sign, digits;
/// what follows is passed over. A field without digits is 0.
class NITFFieldReader {
 public:
  static constexpr gr_uint32 MAX_INT_WIDTH = 8;

  NITFFieldReader() = default;

  /// Reads `length` bytes at `offset` of a stream, which may be closed and is left as it was.
  /// @return 0; 51204, or the stream's last error, for a short read; 8 for memory
  [[nodiscard]] GR_STATUS initialize(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length);
  /// The same for a copy of bytes in memory. @return 0 or 8
  [[nodiscard]] GR_STATUS initialize(const void* bytes, size_t length);
  /// Makes the range of a stream shorter or longer; the place in it stays.
  /// @return as above; 51210 when the place would lie outside
  [[nodiscard]] GR_STATUS setLength(GRIOStreamInf& stream, gr_uint64 length);

  /// @param width  digits, 1 to MAX_INT_WIDTH
  [[nodiscard]] GR_STATUS readInt(gr_uint32 width, gr_int32& value);
  /// The same for what can't be negative: counts, sizes, lengths. @return also 51210 for negative
  [[nodiscard]] GR_STATUS readCount(gr_uint32 width, gr_uint32& value);
  /// @param width  characters, any number; what doesn't fit 64 bits is limited to them
  [[nodiscard]] GR_STATUS readInt64(gr_uint32 width, gr_int64& value);
  [[nodiscard]] GR_STATUS readCount64(gr_uint32 width, gr_uint64& value);
  /// @param width  characters; white space, a number as the C library writes it, anything
  [[nodiscard]] GR_STATUS readDouble(gr_uint32 width, double& value);
  /// The next `width` bytes as they stand, blanks included.
  /// @param text  points into this reader
  [[nodiscard]] GR_STATUS readText(gr_uint32 width, std::string_view& text);
  template <size_t WIDTH>
  [[nodiscard]] GR_STATUS readText(NITFText<WIDTH>& text) {
    std::string_view characters;
    GR_RETURN_IF_FAILED(readText(WIDTH, characters));
    return text.set(characters);
  }

  /// Consumes `literal` when it stands here; else nothing moves.
  bool match(std::string_view literal);
  /// The same without consuming, `ahead` bytes from here.
  bool isAhead(size_t ahead, std::string_view literal) const;
  /// Steps over bytes, backwards when `numBytes` is negative.
  [[nodiscard]] GR_STATUS skip(gr_int64 numBytes);

  size_t left() const { return m_bytes.size() - m_offset; }  ///< bytes of the range
  bool checkOffset(gr_uint64 offset) const { return m_offset == offset; }
  /// Whether nothing is left but blanks.
  bool isRestBlank() const;
  size_t offset() const { return m_offset; }
  gr_uint64 filePosition() const { return m_start + m_offset; }

 private:
  GRArray<char> m_bytes;
  gr_uint64 m_start = 0;  // of the range in the file
  size_t m_offset = 0;    // of the next field in the range
};
