/// @file
/// NITFTREReader, the tagged record extensions of a NITF file.
#pragma once

#include <string_view>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"
#include "metadata/gri_metadataDatabase.h"

/// Walks over an area of a file that holds tagged record extensions (MIL-STD-2500C, 5.8.1), which
/// is a header's area or the data of an overflow segment, and keeps each of them whole: a record of
/// bytes under the segment's prefix, "TRE_" and the extension's tag.
///
/// An extension of a kind that isn't known is kept too, and told on standard error.
class NITFTREReader {
 public:
  /// @param stream  may be closed, and is left as it was
  /// @param offset, length  the area, in bytes of the file
  NITFTREReader(GRIOStreamInf& stream, gr_uint64 offset, gr_uint64 length)
      : m_stream(stream), m_offset(offset), m_length(length) {}

  /// Adds the records of the area.
  /// @param prefix  of the segment, "NITF::IM001::"
  /// @return 0; 50504 when a tag is there already; 51210 when the extensions don't end where the
  ///         area ends, or a length is negative; 51204, or the stream's last error, for a short
  ///         read; 8. Records before the failure stay.
  [[nodiscard]] GR_STATUS addMetadata(GRIMetadataDatabase& database, std::string_view prefix) const;

 private:
  GRIOStreamInf& m_stream;
  gr_uint64 m_offset;
  gr_uint64 m_length;
};
