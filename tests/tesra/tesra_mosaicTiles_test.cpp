// Which tiles of a file with several images are open, and when.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "filters/gri_mosaicFilter.h"
#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "tests/support/tesra_picture.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

constexpr gr_uint32 SIDE = 32;  // of a tile

/// A square of tiles side by side.
TesraBytes fileOfTiles(gr_uint32 across) {
  TG3Writer writer;
  for (gr_uint32 number = 0; number < across * across; ++number) {
    TG3TestImage image = tesra_grayImage(SIDE, SIDE, 2);
    image.image = number;
    const gr_uint32 tileRow = number / across;
    const double left = double{SIDE} * (number % across);
    const double top = -double{SIDE} * tileRow;
    TG3TestGeoref georef;
    georef.geo = {left, top, left + SIDE, top - SIDE, 1.0, 1.0};
    writer.addMetadata(3, 0, number, tg3_georefBlock(georef));
    writer.addImage(image, tesra_noise(image));
  }
  return writer.bytes();
}

/// Counts the tiles that the picture opens.
class TileCounter final : public GRIMosaicFilter::TileCreatedDelegate {
 public:
  explicit TileCounter(TesraImageReader& reader)
      : m_mosaic(dynamic_cast<GRIMosaicFilter&>(*reader.getPreviousStage())) {
    m_mosaic.setTileCreatedDelegate(this);
  }
  ~TileCounter() override { m_mosaic.setTileCreatedDelegate(nullptr); }

  GR_STATUS onTileCreated(gr_uint32, GRIImageStage&) override {
    ++numOpened;
    mostOpen = std::max(mostOpen, m_mosaic.getNumOpenTiles() + 1);
    return GR_STATUS_OK;
  }
  gr_uint32 numOpen() const { return m_mosaic.getNumOpenTiles(); }

  gr_uint32 numOpened = 0;
  gr_uint32 mostOpen = 0;

 private:
  GRIMosaicFilter& m_mosaic;
};

TEST(TesraMosaicTilesTest, AWindowThatTouchesFourTilesOpensFour) {
  TesraPicture picture(fileOfTiles(10));
  ASSERT_EQ(picture.status(), 0u);
  TileCounter counter(picture.reader());
  TesraPicture::Bytes samples;
  ASSERT_EQ(picture.decode(1.0, 5 * SIDE - 3, 7 * SIDE - 3, 6, 6, samples), 0u);
  EXPECT_EQ(counter.numOpened, 4u);
  EXPECT_EQ(counter.mostOpen, 4u);
  EXPECT_EQ(counter.numOpen(), 0u);
  // One that is just four tiles touches no other, and one inside of a tile just that.
  ASSERT_EQ(picture.decode(1.0, 5 * SIDE, 7 * SIDE, 2 * SIDE, 2 * SIDE, samples), 0u);
  EXPECT_EQ(counter.numOpened, 8u);
  ASSERT_EQ(picture.decode(1.0, 5 * SIDE, 7 * SIDE, SIDE, SIDE, samples), 0u);
  EXPECT_EQ(counter.numOpened, 9u);
}

TEST(TesraMosaicTilesTest, AWholeDecodeInStripsKeepsOneRowOfTilesOpen) {
  constexpr gr_uint32 ACROSS = 10;
  constexpr gr_uint32 SIZE = ACROSS * SIDE;
  constexpr gr_uint32 STRIP = SIDE / 2;
  TesraPicture picture(fileOfTiles(ACROSS));
  ASSERT_EQ(picture.status(), 0u);
  TesraPicture::Bytes whole;
  ASSERT_EQ(picture.decode(1.0, 0, 0, SIZE, SIZE, whole), 0u);

  TesraImageReader& reader = picture.reader();
  ASSERT_EQ(reader.setStripHeight(STRIP), 0u);
  TileCounter counter(reader);
  ASSERT_EQ(reader.readBegin(GRIScene(0, 0, SIZE, SIZE, 1.0)), 0u);
  TesraPicture::Bytes samples(size_t{SIZE} * STRIP);
  void* band = samples.data();
  for (gr_uint32 row = 0; row < SIZE; row += STRIP) {
    SCOPED_TRACE(row);
    GRISceneBuffer buffer(reader.getPixelProps(), SIZE, STRIP, &band);
    ASSERT_EQ(reader.readStrip(buffer, GRIScene(0, row, SIZE, STRIP, 1.0)), 0u);
    EXPECT_EQ(counter.numOpened, (row / SIDE + 1) * ACROSS);
    // Of each row of tiles the first strip leaves them open, and the second one doesn't.
    EXPECT_EQ(counter.numOpen(), row % SIDE == 0 ? ACROSS : 0u);
    ASSERT_EQ(std::memcmp(samples.data(), &whole[size_t{row} * SIZE], samples.size()), 0);
  }
  EXPECT_EQ(counter.mostOpen, ACROSS);
  ASSERT_EQ(reader.readEnd(), 0u);
}

TEST(TesraMosaicTilesTest, TilesStayOpenWhereMemoryMayBeLarge) {
  const auto stream = tg3_memoryStream(fileOfTiles(2));
  const GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
  ASSERT_EQ(reader->initialize(*stream, nullptr, TESRA_MEMORY_LARGE, TESRA_STREAM_KEEP_OPEN), 0u);
  TileCounter counter(*reader);
  TesraPicture::Bytes samples(size_t{2} * SIDE * SIDE);
  void* band = samples.data();
  for (int scene = 0; scene < 2; ++scene) {
    GRISceneBuffer buffer(reader->getPixelProps(), 2 * SIDE, SIDE, &band);
    ASSERT_EQ(reader->read(GRIScene(0, 0, 2 * SIDE, SIDE, 1.0), buffer), 0u);
    EXPECT_EQ(counter.numOpened, 2u);
    EXPECT_EQ(counter.numOpen(), 2u);
  }
}

TEST(TesraMosaicTilesTest, AWorldFileMovesThePictureAndNoTileInIt) {
  const TesraBytes bytes = fileOfTiles(2);
  TesraPicture plain(bytes);
  ASSERT_EQ(plain.status(), 0u);
  TesraPicture::Bytes expected;
  ASSERT_EQ(plain.decode(1.0, 0, 0, 2 * SIDE, 2 * SIDE, expected), 0u);

  const std::string world = "0.5\n0.0\n0.0\n-0.5\n5000.0\n9000.0\n";
  const auto stream = tg3_memoryStream(bytes);
  const auto worldStream =
      tg3_memoryStream({reinterpret_cast<const gr_uint8*>(world.data()), world.size()});
  const GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
  ASSERT_EQ(
      reader->initialize(*stream, worldStream.get(), TESRA_MEMORY_DEFAULT, TESRA_STREAM_KEEP_OPEN),
      0u);
  EXPECT_EQ(reader->getGeoCoord().getXOrigin(), 5000.0);
  EXPECT_EQ(reader->getGeoCoord().getXResolution(), 0.5);
  TesraPicture::Bytes samples(expected.size());
  void* band = samples.data();
  GRISceneBuffer buffer(reader->getPixelProps(), 2 * SIDE, 2 * SIDE, &band);
  ASSERT_EQ(reader->read(GRIScene(0, 0, 2 * SIDE, 2 * SIDE, 1.0), buffer), 0u);
  EXPECT_EQ(samples, expected);
}

}  // namespace
