/// @file
/// GRIRawSampleReader, which reads rectangles of samples that lie in a stream as they are.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"
#include "nitf/gri_rawSamples.h"

class GRIRawSampleReader {
 public:
  /// @param pixelBytes  bytes of one sample of each band, at most
  /// @return 0 or 8
  [[nodiscard]] GR_STATUS initialize(gr_uint64 pixelBytes, gr_uint32 numBands);

  /// Reads a rectangle of all bands of `samples`, in the order of the file and in large pieces.
  /// @param stream  open. Its offsets up to the end of the rectangle don't pass 63 bits.
  /// @param buffer  has room for the rectangle at `target`
  /// @return 0; 51204, or the stream's last error, for a short read, and then the buffer is partly
  ///         written
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, const GRIRawSamples& samples,
                               const GRIRawRect& rect, GRISceneBuffer& buffer,
                               const GRIRawTarget& target);

 private:
  // What a call of read() is about.
  struct Job {
    GRIOStreamInf& stream;
    const GRIRawSamples& samples;
    const GRIRawRect& rect;
    GRISceneBuffer& buffer;
    const GRIRawTarget& target;

    gr_uint8* place(gr_uint64 col, gr_uint64 row, gr_uint64 band) const;
  };
  // Runs of bytes in the stream, of which all or nearly all is wanted.
  struct Lines {
    gr_uint64 offset;     // of the first
    gr_uint64 stride;     // from one to the next
    gr_uint64 lineBytes;  // that are wanted, whole units
    gr_uint64 numLines;
    gr_uint64 unitBytes;  // what isn't cut
  };

  GR_STATUS readInterleaved(const Job& job);
  GR_STATUS readRows(const Job& job);
  GR_STATUS readBand(const Job& job, gr_uint32 band);
  GR_STATUS readBandDirectly(const Job& job, gr_uint32 band, const Lines& lines);
  template <typename Use>
  GR_STATUS forEachLine(GRIOStreamInf& stream, const Lines& lines, Use&& use);
  GR_STATUS readAt(GRIOStreamInf& stream, gr_uint64 offset, void* bytes, gr_uint64 length);

  static constexpr gr_uint64 NOWHERE = ~gr_uint64{0};

  GRArray<gr_uint8> m_scratch;
  GRArray<void*> m_planes;         // one per band, where its part of a line goes
  gr_uint64 m_position = NOWHERE;  // of the stream
};
