#include "image/gri_rawImageReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_sceneBuffer.h"

namespace {

constexpr gr_uint32 WIDTH = 13;
constexpr gr_uint32 HEIGHT = 70;  // more than one strip

/// A value that tells where it belongs, in two bytes.
gr_uint16 valueAt(gr_uint32 col, gr_uint32 row, gr_uint32 band) {
  return static_cast<gr_uint16>(1 + col + 20 * row + 2000 * band);
}

struct Layout {
  GRIRawLayout layout = GRI_RAW_LAYOUT_BIP;
  gr_uint16 numBands = 1;
  gr_uint32 rowPadding = 0;  // bytes
  gr_uint32 header = 0;
  gr_uint32 trailer = 0;
  GRIEndian byteOrder = GRI_ENDIAN_HOST;
};

void put(std::vector<gr_uint8>& bytes, gr_uint16 value, GRIEndian byteOrder) {
  const gr_uint8 high = static_cast<gr_uint8>(value >> 8);
  const gr_uint8 low = static_cast<gr_uint8>(value);
  const bool big = byteOrder == GRI_ENDIAN_BIG;
  bytes.push_back(big ? high : low);
  bytes.push_back(big ? low : high);
}

std::vector<gr_uint8> fileOf(const Layout& l) {
  std::vector<gr_uint8> bytes(l.header, 0xEE);
  const auto putRow = [&](gr_uint32 row, gr_uint32 firstBand, gr_uint32 lastBand) {
    for (gr_uint32 col = 0; col < WIDTH; ++col) {
      for (gr_uint32 band = firstBand; band <= lastBand; ++band) {
        put(bytes, valueAt(col, row, band), l.byteOrder);
      }
    }
    bytes.insert(bytes.end(), l.rowPadding, 0xDD);
  };
  if (l.layout == GRI_RAW_LAYOUT_BSQ) {
    for (gr_uint32 band = 0; band < l.numBands; ++band) {
      for (gr_uint32 row = 0; row < HEIGHT; ++row) putRow(row, band, band);
    }
  } else {
    for (gr_uint32 row = 0; row < HEIGHT; ++row) {
      if (l.layout == GRI_RAW_LAYOUT_BIP) putRow(row, 0, l.numBands - 1);
      for (gr_uint32 b = 0; l.layout == GRI_RAW_LAYOUT_BIL && b < l.numBands; ++b)
        putRow(row, b, b);
    }
  }
  bytes.insert(bytes.end(), l.trailer, 0xEE);
  return bytes;
}

GRIPixel pixelOf(gr_uint16 numBands) {
  return {GRI_COLORSPACE_MULTISPECTRAL, numBands, GRI_DATATYPE_UINT16};
}

/// A reader on bytes in memory. (Counted objects are made on the heap.)
class RawImage {
 public:
  explicit RawImage(const std::vector<gr_uint8>& bytes)
      : m_stream(GRIOStreamUtils::openMemStream()), m_reader(new GRIRawImageReader) {
    m_stream->write(bytes.data(), static_cast<gr_uint32>(bytes.size()));
    m_stream->close();
  }
  GRIRawImageReader* operator->() { return m_reader.get(); }
  GRIOStreamInf& stream() { return *m_stream; }
  GR_STATUS initialize(const Layout& l) {
    m_reader->setLayout(l.layout);
    m_reader->setHeaderLength(l.header);
    m_reader->setTrailerLength(l.trailer);
    m_reader->setByteOrder(l.byteOrder);
    const gr_uint32 samples = l.layout == GRI_RAW_LAYOUT_BIP ? WIDTH * l.numBands : WIDTH;
    m_reader->setRowLength(l.rowPadding == 0 ? 0 : samples * 2 + l.rowPadding);
    return m_reader->initialize(m_stream.get(), pixelOf(l.numBands), WIDTH, HEIGHT);
  }

 private:
  std::unique_ptr<GRIODynamicMemStream> m_stream;
  GRUtilSmartPointer<GRIRawImageReader> m_reader;
};

void expectWindow(RawImage& image, gr_uint16 numBands, gr_uint32 col, gr_uint32 row,
                  gr_uint32 numCols, gr_uint32 numRows) {
  GRISceneBuffer buffer(pixelOf(numBands), numCols + 3, numRows + 1, nullptr);
  ASSERT_EQ(image->read(GRIScene(col, row, numCols, numRows, 1.0), buffer), GR_STATUS_OK);
  for (gr_uint16 band = 0; band < numBands; ++band) {
    for (gr_uint32 y = 0; y <= numRows; ++y) {
      for (gr_uint32 x = 0; x < numCols + 3; ++x) {
        gr_uint16 value = 0;
        std::memcpy(&value, buffer.getSample(x, y, band), 2);
        const bool inside = x < numCols && y < numRows;
        ASSERT_EQ(value, inside ? valueAt(col + x, row + y, band) : 0)
            << "column " << x << ", row " << y << ", band " << band;
      }
    }
  }
}

TEST(GRIRawImageReaderTest, ReadsAnyWindowOfEveryLayoutAndByteOrder) {
  for (const GRIRawLayout layout : {GRI_RAW_LAYOUT_BIP, GRI_RAW_LAYOUT_BSQ, GRI_RAW_LAYOUT_BIL}) {
    for (const gr_uint16 numBands : {1, 2, 3, 5}) {
      for (const GRIEndian order : {GRI_ENDIAN_LITTLE, GRI_ENDIAN_BIG}) {
        for (const gr_uint32 extra : {0u, 6u}) {
          SCOPED_TRACE(testing::Message() << "layout " << layout << ", bands " << numBands
                                          << ", order " << order << ", padding " << extra);
          const Layout l{layout, numBands, extra, extra * 2, extra * 3, order};
          RawImage image(fileOf(l));
          ASSERT_EQ(image.initialize(l), GR_STATUS_OK);
          expectWindow(image, numBands, 0, 0, WIDTH, HEIGHT);
          expectWindow(image, numBands, 3, 5, 7, 65);
          expectWindow(image, numBands, WIDTH - 1, HEIGHT - 1, 1, 1);
          EXPECT_FALSE(image.stream().isOpen());
        }
      }
    }
  }
}

TEST(GRIRawImageReaderTest, ReadsWholeRowsIntoABufferWithoutGaps) {
  for (const GRIRawLayout layout : {GRI_RAW_LAYOUT_BIP, GRI_RAW_LAYOUT_BSQ, GRI_RAW_LAYOUT_BIL}) {
    const Layout l{layout, 3};
    RawImage image(fileOf(l));
    ASSERT_EQ(image.initialize(l), GR_STATUS_OK);
    GRISceneBuffer buffer(pixelOf(3), WIDTH, HEIGHT, nullptr);
    ASSERT_EQ(image->read(GRIScene(0, 0, WIDTH, HEIGHT, 1.0), buffer), GR_STATUS_OK);
    for (gr_uint32 y = 0; y < HEIGHT; ++y) {
      gr_uint16 value = 0;
      std::memcpy(&value, buffer.getSample(WIDTH - 1, y, 2), 2);
      EXPECT_EQ(value, valueAt(WIDTH - 1, y, 2));
    }
  }
}

TEST(GRIRawImageReaderTest, RefusesAStreamOfAnotherSize) {
  const Layout l{GRI_RAW_LAYOUT_BSQ, 2, 0, 10, 20};
  const std::vector<gr_uint8> whole = fileOf(l);
  for (const int difference : {-1, 1}) {
    std::vector<gr_uint8> other = whole;
    other.resize(whole.size() + difference);
    RawImage image(other);
    EXPECT_EQ(image.initialize(l), GRI_STATUS_RAW_SIZE);
  }
}

TEST(GRIRawImageReaderTest, AnEmptyStreamOpensAndFailsToDecode) {
  RawImage image({});
  ASSERT_EQ(image.initialize({GRI_RAW_LAYOUT_BIP, 3}), GR_STATUS_OK);
  GRISceneBuffer buffer(pixelOf(3), WIDTH, HEIGHT, nullptr);
  EXPECT_NE(image->read(GRIScene(0, 0, WIDTH, HEIGHT, 1.0), buffer), GR_STATUS_OK);
}

TEST(GRIRawImageReaderTest, RefusesBandsOfDifferentTypes) {
  const GRISample samples[] = {{GRI_COLOR_OTHER, GRI_DATATYPE_UINT8, nullptr},
                               {GRI_COLOR_OTHER, GRI_DATATYPE_UINT16, nullptr}};
  RawImage image({});
  EXPECT_EQ(image->initialize(&image.stream(), GRIPixel(samples, 2, GRI_COLORSPACE_MULTISPECTRAL),
                              WIDTH, HEIGHT),
            GRI_STATUS_UNSUPPORTED_DATATYPE);
}

TEST(GRIRawImageReaderTest, HasTheDefaultPositionUnlessOneIsGiven) {
  const Layout l{GRI_RAW_LAYOUT_BIP, 1};
  RawImage plain(fileOf(l));
  ASSERT_EQ(plain.initialize(l), GR_STATUS_OK);
  EXPECT_TRUE(plain->isGeoCoordImplicit());
  EXPECT_TRUE(plain->getGeoCoord() == GRIGeoCoord(0, HEIGHT - 1, 1, -1, 0, 0));
  RawImage placed(fileOf(l));
  const GRIGeoCoord geo(5, 6, 7, -8, 0, 0);
  ASSERT_EQ(placed->setInputGeoCoord(geo), GR_STATUS_OK);
  ASSERT_EQ(placed.initialize(l), GR_STATUS_OK);
  EXPECT_FALSE(placed->isGeoCoordImplicit());
  EXPECT_TRUE(placed->getGeoCoord() == geo);
}

TEST(GRIRawImageReaderTest, AMissingFileCannotBeOpened) {
  GRUtilSmartPointer<GRIRawImageReader> reader(new GRIRawImageReader);
  EXPECT_EQ(reader->initialize(GRFileSpec("/no/such/file.raw"), pixelOf(1), WIDTH, HEIGHT),
            GRI_STATUS_OPEN_ERROR);
}

}  // namespace
