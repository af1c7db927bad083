#include "tests/support/tg3_writer.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "tests/support/tg3_forwardColor.h"
#include "tests/support/tg3_literalSubblock.h"

namespace {

constexpr gr_uint64 FLAG_MSE = 1U << 2;
constexpr gr_uint64 FLAG_LOCKED = 1U << 3;
constexpr gr_uint64 FLAG_KEY_HIGH = 1U << 4;
constexpr gr_uint64 FLAG_KEY_LOW = 1U << 5;
constexpr gr_uint64 FLAG_VIRTUAL = 1U << 15;

gr_uint32 subTypeWidth(gr_uint32 value) {
  if (value == 0) return 0;
  return value < 0x100 ? 1 : value < 0x10000 ? 2 : 4;
}

// The two bits that stand for a width of 0, 1, 2 or 4, and of 1, 2, 4 or 8 bytes.
gr_uint32 subTypeBits(gr_uint32 width) { return width == 4 ? 3 : width; }
gr_uint32 lengthBits(gr_uint32 width) { return static_cast<gr_uint32>(std::countr_zero(width)); }

gr_uint64 headerFlags(const TG3TestImage& image) {
  gr_uint64 flags = image.flags;
  if (image.hasMse) flags |= FLAG_MSE;
  if (image.isLocked) flags |= FLAG_LOCKED;
  if (image.keyWidth >= 2) flags |= FLAG_KEY_HIGH;
  if (image.keyWidth == 1 || image.keyWidth == 4) flags |= FLAG_KEY_LOW;
  if (image.virtualSupport) flags |= FLAG_VIRTUAL;
  return flags;
}

TG3TestRange codedRange(const TG3TestImage& image, gr_uint32 subband, gr_uint32 whole,
                        gr_uint32 bandSize, gr_int32 first, gr_int32 last, bool isHigh) {
  const auto& support = image.virtualSupport;
  const bool isWhole =
      !support || (support->numLevelsRemoved == 0 && support->left == 0 && support->top == 0 &&
                   support->right == static_cast<gr_int32>(image.width) - 1 &&
                   support->bottom == static_cast<gr_int32>(image.height) - 1);
  if (isWhole) return {0, gr_int64{bandSize} - 1};
  const gr_int32 removed = support->numLevelsRemoved;
  const gr_int64 lower = first >> removed;
  const gr_int64 upper = lower + ((last - first) >> removed);
  const gr_int32 level = subband == 0 ? 0 : static_cast<gr_int32>(subband - 1) / 4;
  const gr_int32 scale = image.numLevels - level - removed;
  if (scale < 0) return {};
  TG3TestRange range = {lower, upper};
  if (scale > 0) {
    gr_int64 size = ((gr_int64{whole} - 1) >> removed) + 1;
    if (isHigh) size -= gr_int64{1} << (scale - 1);
    range.first = std::max<gr_int64>((lower >> scale) - (isHigh ? 1 : 0), 0);
    range.last = upper == 0 ? 0 : std::min(((upper - 1) >> scale) + 1, (size - 1) >> scale);
  }
  return {range.first, std::min(range.last, gr_int64{bandSize} - 1)};
}

/// The records of all slots and the bodies of the stored planes, of one region of a file.
class PlaneChain {
 public:
  explicit PlaneChain(const TG3TestImage& image)
      : m_image(image),
        m_slotsPerBlock(gr_uint64{image.numComponents} * image.numPlanes),
        m_totalSlots(image.geometry().totalBlocks() * m_slotsPerBlock) {}

  /// @param isInterleaved  whether each body stands behind its record; else in bodies()
  void write(const std::vector<const TG3TestSubblock*>& blocks,
             const std::vector<gr_uint64>& indexes, bool isInterleaved) {
    gr_uint64 next = 0;
    for (size_t i = 0; i < blocks.size(); ++i) {
      for (TG3TestPlane plane : blocks[i]->planes) {
        const gr_uint64 slot = indexes[i] * m_slotsPerBlock +
                               gr_uint64{plane.component} * m_image.numPlanes + plane.plane;
        skip(slot - next);
        next = slot + 1;
        if (m_image.cipher) m_image.cipher(*blocks[i], plane);
        const auto record =
            tg3_planeRecord(true, plane.bypass, plane.bytes.size(), m_image.is64Bit);
        m_records.put(record);
        TG3TestBytes& bodies = isInterleaved ? m_records : m_bodies;
        if (m_image.hasMse) bodies.put(slot * 7, 2);
        bodies.put(slot + 1, m_image.keyWidth);
        bodies.put(plane.bytes);
      }
    }
    skip(m_totalSlots - next);
  }

  const std::vector<gr_uint8>& records() const { return m_records.bytes(); }
  const std::vector<gr_uint8>& bodies() const { return m_bodies.bytes(); }

 private:
  void skip(gr_uint64 count) {
    const gr_uint64 most = m_image.is64Bit ? (gr_uint64{1} << 54) - 1 : (1U << 27) - 1;
    while (count > 0) {
      const gr_uint64 step = std::min({count, most, m_image.longestSkip});
      m_records.put(tg3_planeRecord(false, false, step, m_image.is64Bit));
      count -= step;
    }
  }

  const TG3TestImage& m_image;
  gr_uint64 m_slotsPerBlock;
  gr_uint64 m_totalSlots;
  TG3TestBytes m_records;
  TG3TestBytes m_bodies;
};

}  // namespace

TG3TestBytes& TG3TestBytes::put(gr_uint64 value, gr_uint32 numBytes) {
  for (gr_uint32 i = numBytes; i > 0; --i) {
    m_bytes.push_back(static_cast<gr_uint8>(value >> (8 * (i - 1))));
  }
  return *this;
}

TG3TestBytes& TG3TestBytes::put(double value) { return put(std::bit_cast<gr_uint64>(value), 8); }

TG3TestBytes& TG3TestBytes::put(const std::string& text) {
  m_bytes.insert(m_bytes.end(), text.begin(), text.end());
  m_bytes.push_back(0);
  return *this;
}

TG3TestBytes& TG3TestBytes::put(std::span<const gr_uint8> bytes) {
  m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
  return *this;
}

std::vector<gr_uint8> tg3_planeRecord(bool isLength, bool useBypass, gr_uint64 value,
                                      bool is64Bit) {
  constexpr gr_uint8 CONTINUES = 0x80;
  std::vector<gr_uint8> bytes = {
      static_cast<gr_uint8>((isLength ? 0x80 : 0) | (useBypass ? 0x40 : 0) | (value & 0x1F))};
  gr_uint64 left = value >> 5;
  if (left > 0) bytes[0] |= 0x20;
  while (left > 0) {
    if (!is64Bit && bytes.size() == 3) {
      bytes.push_back(static_cast<gr_uint8>(left));
      if (left > 0xFF) throw std::out_of_range("a record of 32 bits");
      break;
    }
    const gr_uint64 group = left & 0x7F;
    left >>= 7;
    bytes.push_back(static_cast<gr_uint8>(group | (left > 0 ? CONTINUES : 0)));
  }
  if (bytes.size() > 8) throw std::out_of_range("a record of 64 bits");
  return bytes;
}

TG3TestRange tg3_codedColumns(const TG3TestImage& image, gr_uint32 subband) {
  const auto& support = image.virtualSupport;
  return codedRange(image, subband, image.width, image.geometry().bands()[subband].columns,
                    support ? support->left : 0, support ? support->right : 0,
                    subband != 0 && subband % 2 == 0);
}

TG3TestRange tg3_codedRows(const TG3TestImage& image, gr_uint32 subband) {
  const auto& support = image.virtualSupport;
  return codedRange(image, subband, image.height, image.geometry().bands()[subband].rows,
                    support ? support->top : 0, support ? support->bottom : 0,
                    subband != 0 && ((subband - 1) & 2) != 0);
}

std::vector<TG3TestBands> tg3_transform(const TG3TestImage& image,
                                        const std::vector<std::vector<gr_int32>>& samples) {
  const TG3TestGeometry geometry = image.geometry();
  std::vector<TG3TestBands> components;
  components.reserve(samples.size());
  for (const std::vector<gr_int32>& component : samples) {
    components.push_back(
        tg3_forwardWavelet(geometry, image.width, image.height, component, image.correction));
  }
  tg3_forwardColor(image.colorTransform, components);
  return components;
}

TG3TestSubblock tg3_encodeSubblock(const TG3TestImage& image, gr_uint32 subband, gr_uint64 subblock,
                                   const std::vector<std::vector<gr_int32>>& samples) {
  const TG3TestGeometry::Rect rect = image.geometry().blockRect(subband, subblock);
  const TG3TestRange columns = tg3_codedColumns(image, subband);
  const TG3TestRange rows = tg3_codedRows(image, subband);
  const auto isCoded = [&](gr_uint32 x, gr_uint32 y) {
    const gr_int64 column = gr_int64{rect.left} + x;
    const gr_int64 row = gr_int64{rect.top} + y;
    return column >= columns.first && column <= columns.last && row >= rows.first &&
           row <= rows.last;
  };

  // The coded part of this subblock, and nothing but it.
  TG3LiteralShape shape = tg3_literalShape(subband, rect.width, rect.height);
  shape.firstColumn = rect.width;
  shape.firstRow = rect.height;
  shape.lastColumn = 0;
  shape.lastRow = 0;
  TG3TestSubblock result = {subband, subblock, {}};
  for (gr_uint32 y = 0; y < rect.height; ++y) {
    for (gr_uint32 x = 0; x < rect.width; ++x) {
      if (!isCoded(x, y)) continue;
      shape.firstColumn = std::min(shape.firstColumn, x);
      shape.lastColumn = std::max(shape.lastColumn, x);
      shape.firstRow = std::min(shape.firstRow, y);
      shape.lastRow = std::max(shape.lastRow, y);
    }
  }
  if (shape.firstColumn > shape.lastColumn) return result;

  for (gr_uint16 component = 0; component < image.numComponents; ++component) {
    std::vector<gr_int32> coded = samples[component];
    for (size_t i = 0; i < coded.size(); ++i) {
      const gr_uint32 x = static_cast<gr_uint32>(i % rect.width);
      const gr_uint32 y = static_cast<gr_uint32>(i / rect.width);
      if (!isCoded(x, y)) coded[i] = 0;
    }
    const gr_uint32 lastPlane = image.lastPlaneOf ? image.lastPlaneOf(subband) : image.lastPlane;
    const auto planes = tg3_literalEncode(shape, coded, lastPlane, image.bypassPlanes);
    for (size_t plane = 0; plane < planes.size(); ++plane) {
      if (!planes[plane].hasData) continue;
      result.planes.push_back(
          {component, static_cast<gr_uint8>(plane), planes[plane].useBypass, planes[plane].bytes});
    }
  }
  return result;
}

std::vector<TG3TestSubblock> tg3_encode(const TG3TestImage& image,
                                        const std::vector<TG3TestBands>& components) {
  const TG3TestGeometry geometry = image.geometry();
  const gr_uint32 removed = image.virtualSupport ? image.virtualSupport->numLevelsRemoved : 0;
  const gr_uint32 numBands = 4 * (image.numLevels - removed) + 1;
  std::vector<TG3TestSubblock> subblocks;
  for (gr_uint32 band = 0; band < numBands; ++band) {
    const TG3TestGeometry::Band& of = geometry.bands()[band];
    for (gr_uint64 block = 0; block < of.numBlocks(); ++block) {
      const TG3TestGeometry::Rect rect = geometry.blockRect(band, block);
      std::vector<std::vector<gr_int32>> samples(components.size());
      for (size_t c = 0; c < components.size(); ++c) {
        for (gr_uint32 y = rect.top; y < rect.top + rect.height; ++y) {
          const auto row = components[c][band].begin() + gr_int64{y} * of.columns + rect.left;
          samples[c].insert(samples[c].end(), row, row + rect.width);
        }
      }
      TG3TestSubblock subblock = tg3_encodeSubblock(image, band, block, samples);
      if (!subblock.planes.empty()) subblocks.push_back(std::move(subblock));
    }
  }
  return subblocks;
}

TG3Writer::TG3Writer(std::span<const gr_uint8> version) : m_bytes({'t', 's', 'r', 'a'}) {
  constexpr gr_uint8 OWN[] = {3, 0, 26, 't'};
  if (version.empty()) version = OWN;
  m_bytes.insert(m_bytes.end(), version.begin(), version.end());
}

void TG3Writer::addPacket(const TG3TestPacket& packet, std::span<const gr_uint8> body) {
  const bool hasVersion = packet.versionMajor != 0 || packet.versionMinor != 0;
  const gr_uint32 first = subTypeWidth(packet.subType);
  const gr_uint32 second = subTypeWidth(packet.subSubType);
  TG3TestBytes header;
  header.put(packet.type | (hasVersion ? 0x40U : 0U), 1);
  header.put(subTypeBits(first) << 6 | subTypeBits(second) << 4 |
                 (packet.sequence != 0 ? 0x08U : 0U) | (packet.image != 0 ? 0x04U : 0U) |
                 lengthBits(packet.lengthBytes),
             1);
  header.put(packet.subType, first).put(packet.subSubType, second);
  if (packet.sequence != 0) header.put(packet.sequence, 4);
  if (packet.image != 0) header.put(packet.image, 4);
  if (hasVersion) header.put(packet.versionMajor, 1).put(packet.versionMinor, 1);
  const gr_uint64 length = packet.isOpenEnded ? ~gr_uint64{0} : packet.length.value_or(body.size());
  header.put(length, packet.lengthBytes);
  m_bytes.insert(m_bytes.end(), header.bytes().begin(), header.bytes().end());
  m_bytes.insert(m_bytes.end(), body.begin(), body.end());
}

void TG3Writer::addHeader(const TG3TestImage& image) {
  TG3TestBytes body;
  body.put(headerFlags(image), 8).put(image.width, 4).put(image.height, 4);
  body.put(image.numLevels, 1).put(image.numComponents, 2).put(image.numPlanes, 1);
  body.put(image.blockSize, 2).put(image.domainBits, 1);
  body.put(static_cast<gr_uint32>(image.dynamicRangeMin), 4);
  body.put(static_cast<gr_uint32>(image.dynamicRangeMax), 4);
  body.put(image.imageColorSpace, 1).put(image.waveletColorSpace, 1).put(image.colorTransform, 1);
  body.put(image.boundary, 4).put(image.wavelet, 1).put(image.lastByte, 1);
  if (image.virtualSupport) {
    const TG3TestImage::VirtualSupport& support = *image.virtualSupport;
    for (const gr_int32 side : {support.left, support.top, support.right, support.bottom}) {
      body.put(static_cast<gr_uint32>(side), 4);
    }
    body.put(support.numLevelsRemoved, 1);
  }
  addPacket({.type = 1, .image = image.image}, body.bytes());
}

void TG3Writer::addPlaneset(const TG3TestImage& image,
                            const std::vector<TG3TestSubblock>& subblocks) {
  const TG3TestGeometry geometry = image.geometry();
  const auto indexOf = [&](const TG3TestSubblock& block) {
    return image.ordering == 1 ? geometry.pipeIndex(block.subband, block.subblock)
                               : geometry.bandIndex(block.subband, block.subblock);
  };
  std::vector<std::pair<gr_uint64, const TG3TestSubblock*>> sorted;
  gr_uint64 numPlanes = 0;
  for (const TG3TestSubblock& block : subblocks) {
    sorted.emplace_back(indexOf(block), &block);
    numPlanes += block.planes.size();
  }
  std::sort(sorted.begin(), sorted.end());

  // Regions take turns, so that each one's subblocks lie all over the image.
  const gr_uint32 numRegions = image.storage == 3 ? image.numRegions : 1;
  std::vector<PlaneChain> chains(numRegions, PlaneChain(image));
  for (gr_uint32 region = 0; region < numRegions; ++region) {
    std::vector<const TG3TestSubblock*> blocks;
    std::vector<gr_uint64> indexes;
    for (const auto& [index, block] : sorted) {
      if ((block->subblock + block->subband) % numRegions != region) continue;
      blocks.push_back(block);
      indexes.push_back(index);
    }
    chains[region].write(blocks, indexes, image.storage == 0);
  }

  // Offsets of 32 bits count from the header of the packet, as it is with a length of 8 bytes.
  const gr_uint64 headerBytes = 2 + (image.image != 0 ? 4 : 0) + (image.is64Bit ? 2 : 0) + 8;
  const gr_uint64 headBytes = 10;
  const gr_uint32 fieldBytes = image.is64Bit ? 8 : 4;
  TG3TestBytes body;
  body.put(image.ordering, 1).put(image.storage, 1);
  body.put(image.claimedNumPlanes.value_or(numPlanes), 8);
  if (image.storage == 3) body.put(numRegions, 8);
  for (const PlaneChain& chain : chains) {
    if (image.storage != 0) {
      const gr_uint64 table = headBytes + fieldBytes + chain.bodies().size();
      body.put(table + (image.is64Bit ? 0 : headerBytes), fieldBytes);
    }
    body.put(chain.bodies()).put(chain.records());
  }
  TG3TestPacket packet = {.type = 4, .image = image.image};
  packet.versionMinor = image.is64Bit ? 1 : 0;
  packet.lengthBytes = image.planesetLengthBytes;
  addPacket(packet, body.bytes());
}

void TG3Writer::addMetadata(gr_uint32 subType, gr_uint32 subSubType, gr_uint32 image,
                            std::span<const gr_uint8> block) {
  TG3TestBytes body;
  body.put(block.size(), 4).put(block);
  addPacket({.type = 2, .subType = subType, .subSubType = subSubType, .image = image},
            body.bytes());
}

void TG3Writer::addImage(const TG3TestImage& image,
                         const std::vector<std::vector<gr_int32>>& samples) {
  addHeader(image);
  addPlaneset(image, tg3_encode(image, tg3_transform(image, samples)));
}

std::vector<gr_uint8> tg3_writeImage(const TG3TestImage& image,
                                     const std::vector<std::vector<gr_int32>>& samples) {
  TG3Writer writer;
  writer.addImage(image, samples);
  return writer.bytes();
}

std::vector<gr_uint8> tg3_georefBlock(const TG3TestGeoref& georef) {
  TG3TestBytes block;
  block.put((georef.geo ? 1U : 0U) | (georef.zNumber ? 2U : 0U) | (georef.noData ? 4U : 0U) |
                (georef.background ? 8U : 0U),
            1);
  if (georef.geo) {
    for (const double number : *georef.geo) block.put(number);
  }
  if (georef.zNumber) block.put(*georef.zNumber, 4);
  for (const auto* pixel : {&georef.noData, &georef.background}) {
    if (!*pixel) continue;
    block.put((*pixel)->size(), 2).put(georef.pixelDatatype, 1);
    for (const gr_int32 value : **pixel) {
      block.put(static_cast<gr_uint32>(value), georef.pixelDatatype <= 6 ? 1 : 2);
    }
  }
  return block.bytes();
}
