#include "nitf/gri_rawSampleReader.h"

#include <algorithm>
#include <cstring>

#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_sampleKernels.h"
#include "nitf/nitf_readBytes.h"

namespace {

constexpr gr_uint64 SCRATCH_BYTES = gr_uint64{256} * 1024;  // stays in the second-level cache
constexpr gr_uint64 DIRECT_BYTES =
    gr_uint64{16} * 1024;                  // from here on a line is worth a read of its own
constexpr gr_uint64 MAX_GAP_BYTES = 4096;  // cheaper to read than to step over

void copySamples(const gr_uint8* from, gr_uint64 numSamples, const GRIRawSamples& samples,
                 gr_uint8* to) {
  const auto count = static_cast<size_t>(numSamples);
  if (samples.mustSwap) {
    gri_copySwapped(from, count, samples.sampleBytes, to);
  } else {
    std::memcpy(to, from, count * samples.sampleBytes);
  }
}

}  // namespace

GR_STATUS GRIRawSampleReader::initialize(gr_uint64 pixelBytes, gr_uint32 numBands) {
  GR_RETURN_IF_FAILED(m_scratch.allocateUninitialized(std::max(SCRATCH_BYTES, pixelBytes)));
  return m_planes.allocate(numBands);
}

gr_uint8* GRIRawSampleReader::Job::place(gr_uint64 col, gr_uint64 row, gr_uint64 band) const {
  return static_cast<gr_uint8*>(buffer.getSampleInWindow(
      static_cast<gr_uint32>(target.col + col), static_cast<gr_uint32>(target.row + row),
      static_cast<gr_uint16>(target.firstBand + band)));
}

GR_STATUS GRIRawSampleReader::read(GRIOStreamInf& stream, const GRIRawSamples& samples,
                                   const GRIRawRect& rect, GRISceneBuffer& buffer,
                                   const GRIRawTarget& target) {
  const Job job = {stream, samples, rect, buffer, target};
  m_position = NOWHERE;  // others may have moved it
  if (samples.pixelBytes != samples.sampleBytes) return readInterleaved(job);
  if (samples.numBands > 1 && samples.bandBytes < samples.rowBytes) return readRows(job);
  for (gr_uint32 band = 0; band < samples.numBands; ++band) {
    GR_RETURN_IF_FAILED(readBand(job, band));
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIRawSampleReader::readInterleaved(const Job& job) {
  const GRIRawSamples& samples = job.samples;
  const Lines lines = {
      samples.offset + job.rect.row * samples.rowBytes + job.rect.col * samples.pixelBytes,
      samples.rowBytes, job.rect.numCols * samples.pixelBytes, job.rect.numRows,
      samples.pixelBytes};
  return forEachLine(
      job.stream, lines, [&](gr_uint64 row, gr_uint64 col, gr_uint8* bytes, gr_uint64 numPixels) {
        const auto count = static_cast<size_t>(numPixels);
        for (gr_uint32 band = 0; band < samples.numBands; ++band) {
          m_planes[band] = job.place(col, row, band);
        }
        if (samples.mustSwap) {
          gri_copySwapped(bytes, count * samples.numBands, samples.sampleBytes, bytes);
        }
        gri_splitBands(bytes, count, samples.numBands, samples.sampleBytes, m_planes.data());
      });
}

/// Row-interleaved: one line for each row and band, in that order.
GR_STATUS GRIRawSampleReader::readRows(const Job& job) {
  const GRIRawSamples& samples = job.samples;
  const Lines lines = {
      samples.offset + job.rect.row * samples.rowBytes + job.rect.col * samples.pixelBytes,
      samples.bandBytes, gr_uint64{job.rect.numCols} * samples.sampleBytes,
      gr_uint64{job.rect.numRows} * samples.numBands, samples.sampleBytes};
  return forEachLine(
      job.stream, lines, [&](gr_uint64 line, gr_uint64 col, gr_uint8* bytes, gr_uint64 count) {
        const gr_uint64 row = line / samples.numBands;
        copySamples(bytes, count, samples, job.place(col, row, line % samples.numBands));
      });
}

GR_STATUS GRIRawSampleReader::readBand(const Job& job, gr_uint32 band) {
  const GRIRawSamples& samples = job.samples;
  const Lines lines = {samples.offset + band * samples.bandBytes + job.rect.row * samples.rowBytes +
                           job.rect.col * samples.sampleBytes,
                       samples.rowBytes, gr_uint64{job.rect.numCols} * samples.sampleBytes,
                       job.rect.numRows, samples.sampleBytes};
  if (lines.lineBytes >= DIRECT_BYTES) return readBandDirectly(job, band, lines);
  return forEachLine(job.stream, lines,
                     [&](gr_uint64 row, gr_uint64 col, gr_uint8* bytes, gr_uint64 count) {
                       copySamples(bytes, count, samples, job.place(col, row, band));
                     });
}

/// Long lines go straight to their place, and several at once where they follow one another in the
/// stream and in the buffer.
GR_STATUS GRIRawSampleReader::readBandDirectly(const Job& job, gr_uint32 band, const Lines& lines) {
  const size_t targetStride = job.buffer.getRowBytes(static_cast<gr_uint16>(band));
  const bool isSolid = lines.stride == lines.lineBytes && targetStride == lines.lineBytes;
  const gr_uint64 group = isSolid ? std::max<gr_uint64>(1, SCRATCH_BYTES / lines.lineBytes) : 1;
  for (gr_uint64 line = 0; line < lines.numLines; line += group) {
    const gr_uint64 bytes = std::min(group, lines.numLines - line) * lines.lineBytes;
    gr_uint8* const to = job.place(0, line, band);
    GR_RETURN_IF_FAILED(readAt(job.stream, lines.offset + line * lines.stride, to, bytes));
    if (job.samples.mustSwap) {
      const auto count = static_cast<size_t>(bytes / lines.unitBytes);
      gri_copySwapped(to, count, job.samples.sampleBytes, to);
    }
  }
  return GR_STATUS_OK;
}

/// Calls `use(line, first unit, bytes, number of units)` for all lines in order: for each once, or
/// where a line is longer than the scratch, for its pieces.
template <typename Use>
GR_STATUS GRIRawSampleReader::forEachLine(GRIOStreamInf& stream, const Lines& lines, Use&& use) {
  const gr_uint64 room = m_scratch.size();
  if (lines.lineBytes > room) {
    const gr_uint64 pieceBytes = room / lines.unitBytes * lines.unitBytes;
    for (gr_uint64 line = 0; line < lines.numLines; ++line) {
      for (gr_uint64 at = 0; at < lines.lineBytes; at += pieceBytes) {
        const gr_uint64 bytes = std::min(pieceBytes, lines.lineBytes - at);
        GR_RETURN_IF_FAILED(
            readAt(stream, lines.offset + line * lines.stride + at, m_scratch.data(), bytes));
        use(line, at / lines.unitBytes, m_scratch.data(), bytes / lines.unitBytes);
      }
    }
    return GR_STATUS_OK;
  }
  const bool isDense = lines.stride - lines.lineBytes <= MAX_GAP_BYTES;
  const gr_uint64 group = isDense ? 1 + (room - lines.lineBytes) / lines.stride : 1;
  for (gr_uint64 first = 0; first < lines.numLines; first += group) {
    const gr_uint64 count = std::min(group, lines.numLines - first);
    const gr_uint64 bytes = (count - 1) * lines.stride + lines.lineBytes;
    GR_RETURN_IF_FAILED(
        readAt(stream, lines.offset + first * lines.stride, m_scratch.data(), bytes));
    for (gr_uint64 i = 0; i < count; ++i) {
      use(first + i, 0, m_scratch.data() + i * lines.stride, lines.lineBytes / lines.unitBytes);
    }
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIRawSampleReader::readAt(GRIOStreamInf& stream, gr_uint64 offset, void* bytes,
                                     gr_uint64 length) {
  const bool isThere = offset == m_position;
  m_position = offset + length;
  return isThere ? nitf_readBytes(stream, bytes, length)
                 : nitf_readBytesAt(stream, offset, bytes, length);
}
