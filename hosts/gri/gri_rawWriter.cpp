#include "hosts/gri/gri_rawWriter.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr size_t MOST_BUFFER_BYTES = size_t{16} << 20;

struct FileCloser {
  void operator()(VSILFILE* file) const { VSIFCloseL(file); }
};
using File = std::unique_ptr<VSILFILE, FileCloser>;

GRIHostError writeError() { return {GRI_HOST_STATUS_WRITE, std::strerror(errno)}; }

/// Moves the low bytes of 16-bit samples together, in place.
void narrowToBytes(gr_uint8* samples, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    gr_int16 value = 0;
    std::memcpy(&value, samples + 2 * i, sizeof value);
    samples[i] = static_cast<gr_uint8>(value);
  }
}

/// One strip of rows at a time: reads it, and puts it where it belongs in the file.
class RawWriter {
 public:
  RawWriter(GDALDataset& picture, gr_int32 dataType, GRIRawLayout layout)
      : m_picture(picture),
        m_layout(layout),
        m_isNarrowed(dataType == GRIC_DATATYPE_SINT8),
        m_type(picture.GetRasterBand(1)->GetRasterDataType()),
        m_readBytes(static_cast<size_t>(GDALGetDataTypeSizeBytes(m_type))),
        m_writtenBytes(m_isNarrowed ? 1 : m_readBytes),
        m_width(static_cast<size_t>(picture.GetRasterXSize())),
        m_height(static_cast<size_t>(picture.GetRasterYSize())),
        m_numBands(static_cast<size_t>(picture.GetRasterCount())) {}

  GRIHostError write(const std::filesystem::path& path, GDALProgressFunc progress,
                     void* progressData) {
    const File file(VSIFOpenL(path.c_str(), "wb"));
    if (!file) return writeError();
    const size_t rowBytes = m_width * m_numBands * m_readBytes;
    int blockColumns = 0;
    int blockRows = 0;
    m_picture.GetRasterBand(1)->GetBlockSize(&blockColumns, &blockRows);
    const size_t fitting = std::max<size_t>(1, MOST_BUFFER_BYTES / rowBytes);
    const size_t stepRows = std::min(static_cast<size_t>(std::max(1, blockRows)), fitting);
    m_samples.reset(new (std::nothrow) gr_uint8[stepRows * rowBytes]);
    if (!m_samples) return gri_hostErrorOf(GRIC_STATUS_NO_MEMORY);
    for (size_t row = 0; row < m_height; row += stepRows) {
      const size_t rows = std::min(stepRows, m_height - row);
      if (!readStrip(row, rows)) return {GRIC_STATUS_FAILURE, ""};
      if (!writeStrip(*file, row, rows)) return writeError();
      const double done = static_cast<double>(row + rows) / static_cast<double>(m_height);
      if (progress(done, nullptr, progressData) == FALSE) return {GRIC_STATUS_FAILURE, ""};
    }
    return VSIFFlushL(file.get()) == 0 ? GRIHostError() : writeError();
  }

 private:
  bool readStrip(size_t row, size_t rows) {
    const auto bytes = static_cast<GSpacing>(m_readBytes);
    const auto width = static_cast<GSpacing>(m_width);
    const auto bands = static_cast<GSpacing>(m_numBands);
    const bool isPixel = m_layout == GRIRawLayout::PIXEL;
    const GSpacing pixelSpace = isPixel ? bytes * bands : bytes;
    const GSpacing lineSpace = pixelSpace * width;
    const GSpacing bandSpace = isPixel ? bytes : lineSpace * static_cast<GSpacing>(rows);
    const int columns = m_picture.GetRasterXSize();
    if (m_picture.RasterIO(GF_Read, 0, static_cast<int>(row), columns, static_cast<int>(rows),
                           m_samples.get(), columns, static_cast<int>(rows), m_type,
                           m_picture.GetRasterCount(), nullptr, pixelSpace, lineSpace, bandSpace,
                           nullptr) != CE_None) {
      return false;
    }
    const size_t count = m_width * rows * m_numBands;
    if (m_isNarrowed) narrowToBytes(m_samples.get(), count);
    if constexpr (std::endian::native == std::endian::big) {
      GDALSwapWordsEx(m_samples.get(), static_cast<int>(m_writtenBytes), count,
                      static_cast<int>(m_writtenBytes));
    }
    return true;
  }

  bool writeStrip(VSILFILE& file, size_t row, size_t rows) {
    if (m_layout == GRIRawLayout::PIXEL) {
      return writeAt(file, row * m_width * m_numBands, m_samples.get(),
                     rows * m_width * m_numBands);
    }
    const size_t strip = rows * m_width;
    for (size_t band = 0; band < m_numBands; ++band) {
      if (!writeAt(file, (band * m_height + row) * m_width,
                   m_samples.get() + band * strip * m_writtenBytes, strip)) {
        return false;
      }
    }
    return true;
  }

  /// @param place, count  in samples
  bool writeAt(VSILFILE& file, size_t place, const gr_uint8* samples, size_t count) {
    return VSIFSeekL(&file, place * m_writtenBytes, SEEK_SET) == 0 &&
           VSIFWriteL(samples, m_writtenBytes, count, &file) == count;
  }

  GDALDataset& m_picture;
  GRIRawLayout m_layout;
  bool m_isNarrowed;
  GDALDataType m_type;
  size_t m_readBytes;     // of a sample in memory
  size_t m_writtenBytes;  // of a sample in the file
  size_t m_width;
  size_t m_height;
  size_t m_numBands;
  std::unique_ptr<gr_uint8[]> m_samples;
};

}  // namespace

GRIHostError gri_writeRaw(GDALDataset& picture, gr_int32 dataType, GRIRawLayout layout,
                          const std::filesystem::path& path, GDALProgressFunc progress,
                          void* progressData) {
  return RawWriter(picture, dataType, layout).write(path, progress, progressData);
}
