/// @file
/// PipelinedWaveletDecoder, from subband rows to clamped samples, strip by strip.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipe.h"

/// Decodes one rectangle at one scale, in strips from top to bottom. Each strip goes straight into
/// band-sequential memory of the caller; what a strip leaves half done (a row pair whose second
/// row belongs to the next strip) waits in the pipe.
class PipelinedWaveletDecoder {
 public:
  struct Samples {
    gr_int32 low = 0;     ///< smallest value; smaller ones become it
    gr_int32 high = 255;  ///< largest value
    gr_uint32 bytes = 1;  ///< of a sample: 1 or 2, signed or not
  };

  PipelinedWaveletDecoder() = default;
  PipelinedWaveletDecoder(const PipelinedWaveletDecoder&) = delete;
  PipelinedWaveletDecoder& operator=(const PipelinedWaveletDecoder&) = delete;

  /// @param source  the bands' rows; the caller's, and it outlives this object
  /// @return 0, or the status of Pipe::initialize
  [[nodiscard]] GR_STATUS initialize(const Pipe::Geometry& geometry, const Samples& samples,
                                     TG3RowSource& source);

  /// Decodes the next `numRows` rows.
  /// @param planes  one pointer per component to its first row
  /// @param rowBytes  from one row of a plane to the next, in bytes
  /// @return 0; the row source's status, and then the planes may be partly written;
  ///         TG3_STATUS_BAD_ARGUMENT past the last row
  [[nodiscard]] GR_STATUS decodeRows(gr_uint32 numRows, std::span<void* const> planes,
                                     size_t rowBytes);

 private:
  Pipe m_pipe;
  Samples m_samples;
  size_t m_columns = 0;
  GRArray<const gr_int32*> m_rows;
};
