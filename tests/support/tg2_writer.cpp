#include "tests/support/tg2_writer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "tests/support/tg2_forwardWavelet.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

void put(Bytes& bytes, gr_uint64 value, gr_uint32 numBytes) {
  for (gr_uint32 i = numBytes; i > 0; --i) {
    bytes.push_back(static_cast<gr_uint8>(value >> (8 * (i - 1))));
  }
}

void put32(Bytes& bytes, size_t at, size_t value) {
  for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<gr_uint8>(value >> (8 * (3 - i)));
}

void putRect(Bytes& bytes, const TG2TestRect& rect) {
  for (const gr_int32 corner : {rect.x0, rect.y0, rect.x1, rect.y1}) {
    put(bytes, static_cast<gr_uint32>(corner), 4);
  }
}

// The cells of a rectangle, row by row; a size of 0 is that of the rectangle.
std::vector<TG2TestRect> cellsOf(const TG2TestRect& rect, gr_uint32 width, gr_uint32 height) {
  const gr_int32 w = width != 0 ? static_cast<gr_int32>(width) : rect.x1 - rect.x0 + 1;
  const gr_int32 h = height != 0 ? static_cast<gr_int32>(height) : rect.y1 - rect.y0 + 1;
  std::vector<TG2TestRect> cells;
  for (gr_int32 y = rect.y0; y <= rect.y1; y += h) {
    for (gr_int32 x = rect.x0; x <= rect.x1; x += w) {
      cells.push_back({x, y, std::min(x + w - 1, rect.x1), std::min(y + h - 1, rect.y1)});
    }
  }
  return cells;
}

// The blocks of a subband that are in the file, in the order of the table.
std::vector<TG2TestRect> blocksOf(const TG2TestImage& image, gr_uint32 subband,
                                  const TG2TestSubband& of) {
  if (image.isSubbandAbsent && image.isSubbandAbsent(subband)) return {};
  if (image.hasEmptyTable && image.hasEmptyTable(subband)) return {};
  if (of.width == 0 || of.height == 0) return {};
  const TG2TestRect whole = {0, 0, static_cast<gr_int32>(of.width) - 1,
                             static_cast<gr_int32>(of.height) - 1};
  std::vector<TG2TestRect> blocks;
  gr_uint32 number = 0;
  for (const TG2TestRect& rect : cellsOf(whole, image.blockWidth, image.blockHeight)) {
    if (!image.isBlockAbsent || !image.isBlockAbsent(subband, number)) blocks.push_back(rect);
    ++number;
  }
  if (image.reversesBlocks) std::reverse(blocks.begin(), blocks.end());
  return blocks;
}

float binWidthOf(const TG2TestImage& image, gr_uint32 subband, gr_uint32 block, gr_uint32 band) {
  return image.binWidthOf ? image.binWidthOf(subband, block, band) : image.binWidth;
}

// The number whose bin a coefficient is in: that of q > 0 holds [q - 0.44, q + 0.56) steps.
gr_int32 binOf(double steps) {
  constexpr double LARGEST = 32767.0;
  const double q = std::min(std::floor(std::abs(steps) + 0.44), LARGEST);
  return static_cast<gr_int32>(steps < 0 ? -q : q);
}

Bytes classicalBlock(const TG2TestImage& image) {
  std::vector<TG2TestRecord> records;
  records.push_back({"IMAGE::SOM", 1, 0, {0}, {}});
  if (image.dataType != 0) records.push_back(tg2_scalarRecord("IMAGE::DATA_TYPE", image.dataType));
  if (!image.hasDither) records.push_back(tg2_byteRecord("IMAGE::NO_DITHER", {1}));
  records.insert(records.end(), image.records.begin(), image.records.end());
  records.push_back({"IMAGE::EOM", 1, 0, {0}, {}});

  Bytes block;
  put(block, 1, 2);
  put(block, 0, 2);
  for (const TG2TestRecord& record : records) {
    put(block, 0, 4);
    block.insert(block.end(), record.name.begin(), record.name.end());
    block.push_back(0);
    put(block, record.type, 4);
    put(block, record.count, 4);
    put(block, record.dims.size(), 4);
    for (const gr_uint32 dim : record.dims) put(block, dim, 4);
    block.insert(block.end(), record.values.begin(), record.values.end());
  }
  return block;
}

// Writes one file.
class Builder {
 public:
  Builder(const TG2TestImage& image, const TG2TestBins& bins)
      : m_image(image),
        m_bins(bins),
        m_subbands(tg2_subbandsOf(image.width, image.height, image.numLevels)) {}

  TG2TestFile build() {
    writeHeader();
    for (gr_uint32 subband = 0; subband < m_subbands.size(); ++subband) writeSubband(subband);
    writeEnd();
    return std::move(m_file);
  }

 private:
  Bytes& bytes() { return m_file.bytes; }
  TG2TestLayout& layout() { return m_file.layout; }

  void writeHeader() {
    m_file.bytes = {'t', 's', 'r', 'a'};
    bytes().insert(bytes().end(), m_image.version.begin(), m_image.version.end());
    for (const gr_uint32 number :
         {m_image.numBands, m_image.numLevels, m_image.width, m_image.height}) {
      put(bytes(), number, 4);
    }
    layout().subbandOffsets = bytes().size();
    bytes().resize(bytes().size() + 4 * m_subbands.size());
    layout().markers = bytes().size();
    if (m_image.hasMetadataMarker) {
      put(bytes(), 0xFFD0, 2);
      put(bytes(), 0, 4);
    }
    if (m_image.crop) {
      put(bytes(), 0xFFD2, 2);
      putRect(bytes(), m_image.crop->rect);
      put(bytes(), static_cast<gr_uint32>(m_image.crop->level), 4);
    }
    if (m_image.hasEndMarker) put(bytes(), 0xFFD3, 2);
  }

  void writeSubband(gr_uint32 subband) {
    const std::vector<TG2TestRect> blocks = blocksOf(m_image, subband, m_subbands[subband]);
    const bool hasEmptyTable = m_image.hasEmptyTable && m_image.hasEmptyTable(subband);
    layout().numBlocks.push_back(static_cast<gr_uint32>(blocks.size()));
    layout().tables.push_back(0);
    if (blocks.empty() && !hasEmptyTable) return;

    layout().tables.back() = bytes().size();
    put32(bytes(), layout().subbandOffsets + size_t{4} * subband, bytes().size());
    put(bytes(), 0xFFAC, 2);
    const std::array<gr_uint8, 2> origin =
        m_image.noiseOriginOf ? m_image.noiseOriginOf(subband) : m_image.noiseOrigin;
    bytes().insert(bytes().end(), origin.begin(), origin.end());
    put(bytes(), blocks.size(), 4);
    const size_t entries = bytes().size();
    for (const TG2TestRect& rect : blocks) {
      for (gr_uint32 band = 0; band < m_image.numBands; ++band) put(bytes(), 0, 4);
      putRect(bytes(), rect);
    }
    const size_t entrySize = 4 * size_t{m_image.numBands} + 16;
    for (gr_uint32 block = 0; block < blocks.size(); ++block) {
      for (gr_uint32 band = 0; band < m_image.numBands; ++band) {
        if (m_image.isBandAbsent && m_image.isBandAbsent(subband, block, band)) continue;
        put32(bytes(), entries + block * entrySize + size_t{4} * band, bytes().size());
        writeBand(subband, block, band, blocks[block]);
      }
    }
  }

  void writeBand(gr_uint32 subband, gr_uint32 block, gr_uint32 band, const TG2TestRect& rect) {
    const std::vector<TG2TestRect> records =
        cellsOf(rect, m_image.recordWidth, m_image.recordHeight);
    std::vector<std::vector<TG2TestSymbol>> symbols;
    std::array<gr_uint64, 256> counts = {};
    for (const TG2TestRect& record : records) {
      symbols.push_back(symbolsOf(subband, band, record));
      for (const TG2TestSymbol& symbol : symbols.back()) ++counts[symbol.symbol];
    }
    TG2TestTable table = tg2_makeTable(counts, m_image.coding);

    TG2TestLayout::Band place = {.subband = subband, .block = block, .band = band};
    place.header = bytes().size();
    std::array<gr_uint8, 16> bits = table.bits;
    Bytes huffval = table.huffval;
    if (m_image.cipher) {
      m_image.cipher(bits);
      m_image.cipher(huffval);
    }
    put(bytes(), 0xFFAA, 2);
    bytes().insert(bytes().end(), bits.begin(), bits.end());
    bytes().insert(bytes().end(), huffval.begin(), huffval.end());
    place.binWidth = bytes().size();
    put(bytes(), std::bit_cast<gr_uint32>(binWidthOf(m_image, subband, block, band)), 4);
    place.recordSize = bytes().size();
    const auto sizeOf = [](gr_uint32 size, gr_int32 first, gr_int32 last) {
      return size != 0 ? size : static_cast<gr_uint32>(last - first + 1);
    };
    put(bytes(), sizeOf(m_image.recordWidth, rect.x0, rect.x1), 4);
    put(bytes(), sizeOf(m_image.recordHeight, rect.y0, rect.y1), 4);
    place.recordOffsets = bytes().size();
    bytes().resize(bytes().size() + 4 * records.size());
    for (size_t i = 0; i < records.size(); ++i) {
      place.records.push_back(bytes().size());
      put32(bytes(), place.recordOffsets + 4 * i, bytes().size());
      put(bytes(), 0xFFA3, 2);
      const Bytes coded = tg2_codeRecord(symbols[i], table, m_image.coding.padsWithOnes);
      bytes().insert(bytes().end(), coded.begin(), coded.end());
    }
    layout().bands.push_back(std::move(place));
  }

  std::vector<TG2TestSymbol> symbolsOf(gr_uint32 subband, gr_uint32 band,
                                       const TG2TestRect& record) const {
    const std::vector<gr_int32>& plane = m_bins[band][subband];
    std::vector<gr_int32> bins;
    for (gr_int32 y = record.y0; y <= record.y1; ++y) {
      const auto row = plane.begin() + gr_int64{y} * m_subbands[subband].width;
      bins.insert(bins.end(), row + record.x0, row + record.x1 + 1);
    }
    return tg2_symbolsOf(bins, m_image.coding);
  }

  void writeEnd() {
    if (!m_image.hasMetadata || !m_image.hasMetadataMarker) {
      put(bytes(), 0xFFD9, 2);
      return;
    }
    layout().metadata = bytes().size();
    put32(bytes(), layout().markers + 2, bytes().size());
    put(bytes(), 0xFFD1, 2);
    const Bytes block = classicalBlock(m_image);
    bytes().insert(bytes().end(), block.begin(), block.end());
  }

  const TG2TestImage& m_image;
  const TG2TestBins& m_bins;
  std::vector<TG2TestSubband> m_subbands;
  TG2TestFile m_file;
};

}  // namespace

double TG2TestImage::max() const {
  switch (dataType) {
    case 1:
      return double{std::numeric_limits<float>::max()};
    case 2:
      return 65535.0;
    default:
      return 255.0;
  }
}

TG2TestRecord tg2_scalarRecord(const std::string& name, gr_uint32 value) {
  TG2TestRecord record = {name, 3, 1, {1}, {}};
  put(record.values, value, 4);
  return record;
}

TG2TestRecord tg2_byteRecord(const std::string& name, const std::vector<gr_uint8>& values) {
  const auto count = static_cast<gr_uint32>(values.size());
  return {name, 1, count, {count}, values};
}

TG2TestBins tg2_quantize(const TG2TestImage& image, std::vector<std::vector<float>> samples) {
  tg2_forwardColor(samples, image.max());
  const std::vector<TG2TestSubband> subbands =
      tg2_subbandsOf(image.width, image.height, image.numLevels);
  TG2TestBins bins(image.numBands);
  for (gr_uint32 band = 0; band < image.numBands; ++band) {
    std::vector<std::vector<float>> planes =
        tg2_forwardWavelet(image.width, image.height, image.numLevels, std::move(samples[band]));
    samples[band] = {};
    for (gr_uint32 subband = 0; subband < subbands.size(); ++subband) {
      const TG2TestSubband& of = subbands[subband];
      std::vector<gr_int32>& plane = bins[band].emplace_back(planes[subband].size());
      const std::vector<TG2TestRect> blocks = blocksOf(image, subband, of);
      for (gr_uint32 block = 0; block < blocks.size(); ++block) {
        const double factor = of.gain / double{binWidthOf(image, subband, block, band)};
        for (gr_int32 y = blocks[block].y0; y <= blocks[block].y1; ++y) {
          for (gr_int32 x = blocks[block].x0; x <= blocks[block].x1; ++x) {
            const size_t at = static_cast<size_t>(y) * of.width + static_cast<size_t>(x);
            plane[at] = binOf(double{planes[subband][at]} * factor);
          }
        }
      }
      planes[subband] = {};
    }
  }
  return bins;
}

TG2TestFile tg2_writeBins(const TG2TestImage& image, const TG2TestBins& bins) {
  return Builder(image, bins).build();
}

TG2TestFile tg2_writeImage(const TG2TestImage& image,
                           const std::vector<std::vector<float>>& samples) {
  return tg2_writeBins(image, tg2_quantize(image, samples));
}

std::vector<gr_uint8> tg2_wrap(std::span<const gr_uint8> file, gr_uint32 image) {
  TG3Writer writer;
  writer.addPacket({.type = 7, .image = image}, file);
  return writer.bytes();
}
