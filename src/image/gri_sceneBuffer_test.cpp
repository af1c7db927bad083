#include "image/gri_sceneBuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "image/gri_mask.h"
#include "image/gri_maskRowBuilder.h"
#include "image/gri_pixel.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using testing::Each;
using testing::ElementsAre;

const GRIPixel GRAY8(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
const GRIPixel GRAY16(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16);
const GRIPixel RGB8(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8);

GRIPixel grayOf(GRIDataType type) { return GRIPixel(GRI_COLORSPACE_GRAYSCALE, 1, type); }

/// Three bands of 1, 2 and 8 bytes.
GRIPixel mixedPixel() {
  const GRISample samples[] = {GRISample(GRI_COLOR_OTHER, GRI_DATATYPE_UINT8, nullptr),
                               GRISample(GRI_COLOR_OTHER, GRI_DATATYPE_UINT16, nullptr),
                               GRISample(GRI_COLOR_OTHER, GRI_DATATYPE_FLOAT64, nullptr)};
  return GRIPixel(samples, 3, GRI_COLORSPACE_MULTISPECTRAL);
}

/// The samples of a band of 8-bit samples: of its plane, and of the window.
Bytes planeOf(const GRISceneBuffer& buffer, gr_uint16 band = 0) {
  const auto* data = static_cast<const gr_uint8*>(buffer.getTotalBandData(band));
  return Bytes(data, data + size_t{buffer.getTotalSize()} * buffer.getBytesPerSample(band));
}

Bytes windowOf(const GRISceneBuffer& buffer, gr_uint16 band = 0) {
  Bytes samples;
  for (gr_uint32 row = 0; row < buffer.getWindowNumRows(); ++row) {
    for (gr_uint32 col = 0; col < buffer.getWindowNumCols(); ++col) {
      samples.push_back(*static_cast<gr_uint8*>(buffer.getSampleInWindow(col, row, band)));
    }
  }
  return samples;
}

void count(GRISceneBuffer& buffer, gr_uint8 from = 0) {
  for (gr_uint16 band = 0; band < buffer.getNumBands(); ++band) {
    auto* data = static_cast<gr_uint8*>(buffer.getTotalBandData(band));
    const size_t numBytes = size_t{buffer.getTotalSize()} * buffer.getBytesPerSample(band);
    for (size_t i = 0; i < numBytes; ++i) data[i] = from++;
  }
}

GRIMask maskOf(const std::vector<std::vector<GRIMaskRun>>& rows) {
  GRIMask mask;
  EXPECT_EQ(mask.setNumRows(static_cast<gr_uint32>(rows.size())), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < rows.size(); ++row) {
    GRIMaskRowBuilder builder;
    for (const GRIMaskRun& run : rows[row]) builder.addRun(run);
    mask.setRow(row, builder.take());
  }
  return mask;
}

/// A stream over some bytes, at their start.
std::unique_ptr<GRIODynamicMemStream> streamOf(const Bytes& bytes) {
  auto stream = std::make_unique<GRIODynamicMemStream>();
  EXPECT_EQ(stream->initialize(64, 1.6f), GR_STATUS_OK);
  EXPECT_EQ(stream->open(), GR_STATUS_OK);
  EXPECT_EQ(stream->write(bytes.data(), static_cast<gr_uint32>(bytes.size())), bytes.size());
  EXPECT_EQ(stream->seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  return stream;
}

Bytes contentOf(GRIODynamicMemStream& stream) {
  EXPECT_EQ(stream.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  Bytes bytes(10000);
  bytes.resize(stream.read(bytes.data(), static_cast<gr_uint32>(bytes.size())));
  return bytes;
}

// --- Construction ------------------------------------------------------------------------------

TEST(GRISceneBufferTest, ABufferOverMemoryOfTheCallerNeitherCopiesNorFreesIt) {
  Bytes plane(6, 7);
  void* planes[] = {plane.data()};
  {
    GRISceneBuffer buffer(GRAY8, 3, 2, planes);
    EXPECT_EQ(buffer.getTotalBSQData(), planes);
    EXPECT_EQ(buffer.getWindowBandData(0), plane.data());
    buffer.zero();
  }
  EXPECT_THAT(plane, Each(0));  // and the sanitizer sees it freed once
}

TEST(GRISceneBufferTest, PlanesOfItsOwnAreFilledWith0) {
  const GRISceneBuffer buffer(mixedPixel(), 100, 50, nullptr);
  for (gr_uint16 band = 0; band < 3; ++band) EXPECT_THAT(planeOf(buffer, band), Each(0));
}

TEST(GRISceneBufferTest, AWindowBeginsAtItsOffsetInEachPlane) {
  const GRIPixel pixel = mixedPixel();
  const GRISceneBuffer buffer(pixel, 10, 10, 2, 3, 4, 5, nullptr);
  for (gr_uint16 band = 0; band < 3; ++band) {
    const auto* plane = static_cast<const gr_uint8*>(buffer.getTotalBandData(band));
    const auto* window = static_cast<const gr_uint8*>(buffer.getWindowBandData(band));
    EXPECT_EQ(window - plane, (3 * 10 + 2) * pixel.getSample(band).getNumBytes());
    EXPECT_EQ(buffer.getWindowBSQData()[band], window);
  }
  EXPECT_EQ(buffer.getWindowColOffset(), 2u);
  EXPECT_EQ(buffer.getWindowRowOffset(), 3u);
  EXPECT_EQ(buffer.getWindowNumCols(), 4u);
  EXPECT_EQ(buffer.getWindowNumRows(), 5u);
  EXPECT_EQ(buffer.getWindowSize(), 20u);
  EXPECT_EQ(buffer.getTotalSize(), 100u);
}

TEST(GRISceneBufferTest, AWindowOnAWindowCountsFromTheWindowAndEndsWithIt) {
  const GRISceneBuffer buffer(GRAY8, 10, 10, 2, 3, 6, 5, nullptr);
  const GRISceneBuffer rest(buffer, 1, 2);
  EXPECT_EQ(rest.getWindowColOffset(), 3u);
  EXPECT_EQ(rest.getWindowRowOffset(), 5u);
  EXPECT_EQ(rest.getWindowNumCols(), 5u);
  EXPECT_EQ(rest.getWindowNumRows(), 3u);
  EXPECT_EQ(rest.getTotalNumCols(), 10u);
  EXPECT_EQ(rest.getTotalBandData(0), buffer.getTotalBandData(0));

  const GRISceneBuffer part(buffer, 1, 2, 2, 1);
  EXPECT_EQ(part.getWindowNumCols(), 2u);
  EXPECT_EQ(part.getWindowNumRows(), 1u);
  EXPECT_EQ(part.getSampleInWindow(0, 0, 0), buffer.getSample(3, 5, 0));
}

TEST(GRISceneBufferTest, AnEmptyBufferAndAnEmptyWindowAtTheEndAreAllowed) {
  const GRISceneBuffer none(GRAY8, 0, 0, nullptr);
  EXPECT_EQ(none.getTotalSize(), 0u);
  const GRISceneBuffer buffer(GRAY8, 4, 4, nullptr);
  EXPECT_EQ(GRISceneBuffer(buffer, 4, 4).getWindowSize(), 0u);
}

TEST(GRISceneBufferTest, PlanesThatMemoryCannotHoldThrowStatus8) {
  const GRIPixel pixel = grayOf(GRI_DATATYPE_FLOAT64);
  for (const gr_uint32 size : {0x7FFFFFFFu, 0xFFFFFFFFu}) {
    try {
      const GRISceneBuffer buffer(pixel, size, size, nullptr);
      FAIL();
    } catch (const GRUtilException& exception) {
      EXPECT_EQ(exception.getStatus(), GR_STATUS_NO_MEMORY);
    }
  }
}

TEST(GRISceneBufferTest, InWindowCountsFromThePlane) {
  const GRISceneBuffer buffer(GRAY8, 10, 10, 2, 3, 4, 5, nullptr);
  EXPECT_TRUE(buffer.inWindow(2, 3));
  EXPECT_TRUE(buffer.inWindow(5, 7));
  EXPECT_FALSE(buffer.inWindow(1, 3));
  EXPECT_FALSE(buffer.inWindow(6, 3));
  EXPECT_FALSE(buffer.inWindow(2, 2));
  EXPECT_FALSE(buffer.inWindow(2, 8));
  EXPECT_FALSE(buffer.inWindow(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(GRISceneBufferTest, AlignmentGoesUpToTheNextMultiple) {
  EXPECT_EQ(GRISceneBuffer::addAlignment(8, 4), 8u);
  EXPECT_EQ(GRISceneBuffer::addAlignment(9, 4), 12u);
  EXPECT_EQ(GRISceneBuffer::addAlignment(0, 4), 0u);
  EXPECT_EQ(GRISceneBuffer::addAlignment(7, 1), 7u);
}

// --- Flat memory -------------------------------------------------------------------------------

TEST(GRISceneBufferTest, ImportsCoverTheWindowAndNothingElse) {
  Bytes packed = {1, 2, 3, 4};
  void* planes[] = {packed.data()};
  const Bytes expected = {0, 0, 0, 0, 0, 1, 2, 0, 0, 3, 4, 0};

  GRISceneBuffer byPlanes(GRAY8, 4, 3, 1, 1, 2, 2, nullptr);
  ASSERT_EQ(byPlanes.importDataBSQ(planes), GR_STATUS_OK);
  EXPECT_EQ(planeOf(byPlanes), expected);

  GRISceneBuffer byBlock(GRAY8, 4, 3, 1, 1, 2, 2, nullptr);
  ASSERT_EQ(byBlock.importDataBSQ(static_cast<const void*>(packed.data())), GR_STATUS_OK);
  EXPECT_EQ(planeOf(byBlock), expected);

  GRISceneBuffer byPixel(GRAY8, 4, 3, 1, 1, 2, 2, nullptr);
  ASSERT_EQ(byPixel.importDataBIP(packed.data()), GR_STATUS_OK);
  EXPECT_EQ(planeOf(byPixel), expected);
}

TEST(GRISceneBufferTest, BandSequentialBlocksHoldTheBandsOneAfterTheOther) {
  GRISceneBuffer buffer(RGB8, 2, 1, nullptr);
  const gr_uint8 block[] = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(buffer.importDataBSQ(static_cast<const void*>(block)), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer, 0), (Bytes{1, 2}));
  EXPECT_EQ(planeOf(buffer, 1), (Bytes{3, 4}));
  EXPECT_EQ(planeOf(buffer, 2), (Bytes{5, 6}));
}

TEST(GRISceneBufferTest, InterleavedBlocksHoldThePixelsOneAfterTheOther) {
  GRISceneBuffer buffer(RGB8, 2, 1, nullptr);
  const gr_uint8 block[] = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(buffer.importDataBIP(block), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer, 0), (Bytes{1, 4}));
  EXPECT_EQ(planeOf(buffer, 1), (Bytes{2, 5}));
  EXPECT_EQ(planeOf(buffer, 2), (Bytes{3, 6}));
}

TEST(GRISceneBufferTest, BandsOfSeveralWidthsInterleaveEachByItsOwn) {
  GRISceneBuffer buffer(mixedPixel(), 2, 1, nullptr);
  Bytes block(22);
  for (gr_uint8 i = 0; i < 22; ++i) block[i] = i;
  ASSERT_EQ(buffer.importDataBIP(block.data()), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer, 0), (Bytes{0, 11}));
  EXPECT_EQ(planeOf(buffer, 1), (Bytes{1, 2, 12, 13}));
  EXPECT_EQ(planeOf(buffer, 2), (Bytes{3, 4, 5, 6, 7, 8, 9, 10, 14, 15, 16, 17, 18, 19, 20, 21}));
}

TEST(GRISceneBufferTest, ExportsRepeatWhatWasImported) {
  for (const GRIDataType type : {GRI_DATATYPE_UINT8, GRI_DATATYPE_SINT16, GRI_DATATYPE_FLOAT32}) {
    const GRIPixel pixel(GRI_COLORSPACE_RGB, 3, type);
    Bytes block(size_t{3} * 2 * pixel.getNumBytes());
    for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<gr_uint8>(i + 1);
    GRISceneBuffer buffer(pixel, 7, 5, 2, 1, 3, 2, nullptr);

    Bytes sequential(block.size());
    void* data = sequential.data();
    ASSERT_EQ(buffer.importDataBSQ(static_cast<const void*>(block.data())), GR_STATUS_OK);
    ASSERT_EQ(buffer.exportDataBSQ(data), GR_STATUS_OK);
    EXPECT_EQ(sequential, block);

    Bytes interleaved(block.size());
    data = interleaved.data();
    ASSERT_EQ(buffer.importDataBIP(block.data()), GR_STATUS_OK);
    ASSERT_EQ(buffer.exportDataBIP(data), GR_STATUS_OK);
    EXPECT_EQ(interleaved, block);
  }
}

TEST(GRISceneBufferTest, ExportsWithNullMakeTheirMemory) {
  GRISceneBuffer buffer(RGB8, 3, 2, nullptr);
  count(buffer);
  void** planes = nullptr;
  void* block = nullptr;
  void* interleaved = nullptr;

  ASSERT_EQ(buffer.exportDataBSQ(planes), GR_STATUS_OK);
  ASSERT_EQ(buffer.exportDataBSQ(block), GR_STATUS_OK);
  ASSERT_EQ(buffer.exportDataBIP(interleaved), GR_STATUS_OK);

  EXPECT_EQ(std::memcmp(planes[2], buffer.getTotalBandData(2), 6), 0);
  EXPECT_EQ(static_cast<gr_uint8*>(block)[17], 17);
  EXPECT_EQ(static_cast<gr_uint8*>(interleaved)[5], 13);
  GRISceneBuffer::freeExported(planes, 3);
  GRISceneBuffer::freeExported(block);
  GRISceneBuffer::freeExported(interleaved);
  EXPECT_EQ(planes, nullptr);
  EXPECT_EQ(block, nullptr);
}

TEST(GRISceneBufferTest, AnInterleavedExportOf8ByteSamplesCopiesNothingAndGives0) {
  GRISceneBuffer buffer(grayOf(GRI_DATATYPE_FLOAT64), 2, 1, nullptr);
  count(buffer, 1);
  Bytes target(16, 0xA5);
  void* data = target.data();
  EXPECT_EQ(buffer.exportDataBIP(data), GR_STATUS_OK);
  EXPECT_THAT(target, Each(0xA5));
}

TEST(GRISceneBufferTest, AnInterleavedExportOfBandsOfSeveralWidthsIsRefused) {
  const GRISceneBuffer buffer(mixedPixel(), 2, 1, nullptr);
  void* data = nullptr;
  EXPECT_EQ(buffer.exportDataBIP(data), GRI_STATUS_UNSUPPORTED_DATATYPE);
  EXPECT_EQ(data, nullptr);
}

TEST(GRISceneBufferTest, ExportDataServesAnyLayout) {
  GRISceneBuffer buffer(GRIPixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16), 2, 2, nullptr);
  count(buffer);
  Bytes sequential(24), interleaved(24), byRow(24), padded(40, 0xA5);

  ASSERT_EQ(buffer.exportData(sequential.data(), 2, 4, 8), GR_STATUS_OK);
  ASSERT_EQ(buffer.exportData(interleaved.data(), 6, 12, 2), GR_STATUS_OK);
  ASSERT_EQ(buffer.exportData(byRow.data(), 2, 12, 4), GR_STATUS_OK);
  ASSERT_EQ(buffer.exportData(padded.data(), 8, 20, 2), GR_STATUS_OK);

  EXPECT_THAT(sequential, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17,
                                      18, 19, 20, 21, 22, 23));
  EXPECT_THAT(interleaved, ElementsAre(0, 1, 8, 9, 16, 17, 2, 3, 10, 11, 18, 19, 4, 5, 12, 13, 20,
                                       21, 6, 7, 14, 15, 22, 23));
  EXPECT_THAT(byRow, ElementsAre(0, 1, 2, 3, 8, 9, 10, 11, 16, 17, 18, 19, 4, 5, 6, 7, 12, 13, 14,
                                 15, 20, 21, 22, 23));
  EXPECT_EQ(Bytes(padded.begin(), padded.begin() + 8), (Bytes{0, 1, 8, 9, 16, 17, 0xA5, 0xA5}));
  EXPECT_EQ(Bytes(padded.begin() + 20, padded.begin() + 26), (Bytes{4, 5, 12, 13, 20, 21}));
}

TEST(GRISceneBufferTest, StreamImportsReadTheWindowOncePerBand) {
  Bytes content(18);  // two pixels of three bands, three times
  for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<gr_uint8>(i);
  GRISceneBuffer buffer(RGB8, 2, 1, nullptr);

  auto stream = streamOf(content);
  ASSERT_EQ(buffer.importDataBSQ(*stream), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer, 1), (Bytes{2, 3}));
  EXPECT_EQ(stream->tell(), 18);

  stream = streamOf(content);
  ASSERT_EQ(buffer.importDataBIP(*stream), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer, 1), (Bytes{1, 4}));

  content.pop_back();
  stream = streamOf(content);
  EXPECT_FALSE(GR_SUCCESS(buffer.importDataBSQ(*stream)));
}

TEST(GRISceneBufferTest, StreamExportsWriteTheWindowExactly) {
  GRISceneBuffer buffer(RGB8, 4, 3, 1, 1, 2, 2, nullptr);
  const Bytes block = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  ASSERT_EQ(buffer.importDataBSQ(static_cast<const void*>(block.data())), GR_STATUS_OK);

  auto stream = streamOf({});
  ASSERT_EQ(buffer.exportDataBSQ(*stream), GR_STATUS_OK);
  EXPECT_EQ(contentOf(*stream), block);

  stream = streamOf({});
  ASSERT_EQ(buffer.exportDataBIP(*stream), GR_STATUS_OK);
  EXPECT_EQ(contentOf(*stream), (Bytes{1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12}));
}

TEST(GRISceneBufferTest, AnInterleavedStreamExportServes8ByteSamples) {
  GRISceneBuffer buffer(grayOf(GRI_DATATYPE_UINT64), 2, 1, nullptr);
  count(buffer);
  auto stream = streamOf({});
  ASSERT_EQ(buffer.exportDataBIP(*stream), GR_STATUS_OK);
  EXPECT_EQ(contentOf(*stream), planeOf(buffer));
}

// --- In place ----------------------------------------------------------------------------------

TEST(GRISceneBufferTest, FillWritesTheWindowInEveryWidth) {
  for (const GRIDataType type : {GRI_DATATYPE_UINT8, GRI_DATATYPE_SINT16, GRI_DATATYPE_FLOAT32,
                                 GRI_DATATYPE_FLOAT64, GRI_DATATYPE_UINT64}) {
    GRIPixel pixel = grayOf(type);
    const gr_uint8 value[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    pixel.setSampleValueBytes(0, value);
    GRISceneBuffer buffer(pixel, 4, 3, 1, 1, 2, 2, nullptr);

    ASSERT_EQ(buffer.fill(pixel), GR_STATUS_OK);

    const size_t width = pixel.getNumBytes();
    for (gr_uint32 row = 0; row < 3; ++row) {
      for (gr_uint32 col = 0; col < 4; ++col) {
        const Bytes expected =
            buffer.inWindow(col, row) ? Bytes(value, value + width) : Bytes(width);
        EXPECT_EQ(std::memcmp(buffer.getSample(col, row, 0), expected.data(), width), 0);
      }
    }
  }
}

TEST(GRISceneBufferTest, FillOfAMaskStaysInItsRunsAndInTheWindow) {
  GRIPixel pixel = GRAY8;
  pixel.setSampleUint8(0, 9);
  GRISceneBuffer buffer(GRAY8, 4, 4, 1, 1, 3, 2, nullptr);
  const GRIMask mask = maskOf({{{-5, 0}, {2, 99}}, {{1, 1}}, {{0, 2}}});

  ASSERT_EQ(buffer.fill(mask, &pixel), GR_STATUS_OK);

  EXPECT_EQ(planeOf(buffer), (Bytes{0, 0, 0, 0,  //
                                    0, 9, 0, 9,  //
                                    0, 0, 9, 0,  //
                                    0, 0, 0, 0}));
}

TEST(GRISceneBufferTest, FillOfAMaskWithoutAPixelWritesTheLargestValues) {
  GRISceneBuffer buffer(GRAY16, 3, 1, nullptr);
  ASSERT_EQ(buffer.fill(maskOf({{{1, 1}}}), nullptr), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer), (Bytes{0, 0, 0xFF, 0xFF, 0, 0}));
}

TEST(GRISceneBufferTest, FillOfAMaskRefusesAPixelOfAnotherKind) {
  GRISceneBuffer buffer(GRAY8, 3, 1, nullptr);
  EXPECT_EQ(buffer.fill(maskOf({{{0, 0}}}), &GRAY16), GRI_STATUS_IMPEDANCE_DATATYPE);
  EXPECT_EQ(buffer.fill(maskOf({{{0, 0}}}), &RGB8), GRI_STATUS_IMPEDANCE_COLORSPACE);
  EXPECT_EQ(buffer.fill(GRIMask(), &GRAY16), GR_STATUS_OK);  // no rows: nothing to do
}

TEST(GRISceneBufferTest, ZeroClearsTheWindowAlone) {
  GRISceneBuffer buffer(GRAY8, 3, 3, 1, 1, 1, 2, nullptr);
  count(buffer, 1);
  buffer.zero();
  EXPECT_EQ(planeOf(buffer), (Bytes{1, 2, 3, 4, 0, 6, 7, 0, 9}));
}

TEST(GRISceneBufferTest, ByteSwapReversesEachSampleOfTheWindow) {
  GRISceneBuffer buffer(GRAY16, 3, 1, 1, 0, 2, 1, nullptr);
  count(buffer, 1);
  ASSERT_EQ(buffer.byteSwap(), GR_STATUS_OK);
  EXPECT_EQ(planeOf(buffer), (Bytes{1, 2, 4, 3, 6, 5}));
}

TEST(GRISceneBufferTest, ByteSwapRefuses1ByteSamplesAndSwapsNothing) {
  GRISceneBuffer buffer(mixedPixel(), 2, 1, nullptr);
  count(buffer);
  EXPECT_EQ(buffer.byteSwap(), GRI_STATUS_UNSUPPORTED_DATATYPE);
  EXPECT_EQ(planeOf(buffer, 1), (Bytes{2, 3, 4, 5}));
}

// --- Copies between buffers --------------------------------------------------------------------

TEST(GRISceneBufferTest, CopyTakesWhatBothWindowsHave) {
  GRISceneBuffer from(GRAY8, 4, 4, 1, 1, 2, 3, nullptr);
  count(from);
  GRISceneBuffer to(GRAY8, 5, 3, 1, 1, 4, 2, nullptr);
  ASSERT_EQ(to.copyFrom(from), GR_STATUS_OK);
  EXPECT_EQ(planeOf(to), (Bytes{0, 0, 0, 0, 0, 0, 5, 6, 0, 0, 0, 9, 10, 0, 0}));
}

TEST(GRISceneBufferTest, CopyServesBandsOfSeveralWidths) {
  GRISceneBuffer from(mixedPixel(), 3, 2, nullptr), to(mixedPixel(), 3, 2, nullptr);
  count(from);
  ASSERT_EQ(to.copyFrom(from), GR_STATUS_OK);
  for (gr_uint16 band = 0; band < 3; ++band) EXPECT_EQ(planeOf(to, band), planeOf(from, band));
}

TEST(GRISceneBufferTest, CopyRefusesPixelsOfAnotherKind) {
  GRISceneBuffer gray(GRAY8, 2, 2, nullptr), gray16(GRAY16, 2, 2, nullptr);
  GRISceneBuffer rgb(RGB8, 2, 2, nullptr);
  EXPECT_EQ(gray.copyFrom(gray16), GRI_STATUS_IMPEDANCE_DATATYPE);
  EXPECT_EQ(gray.copyFrom(rgb), GRI_STATUS_IMPEDANCE_COLORSPACE);
  EXPECT_EQ(gray.copyFrom(gray16, maskOf({{{0, 1}}})), GRI_STATUS_IMPEDANCE_DATATYPE);
  EXPECT_EQ(gray.copyBandFrom(0, gray16, 0), GRI_STATUS_IMPEDANCE_DATATYPE);
}

TEST(GRISceneBufferTest, OneBandIsCopiedIntoAnother) {
  GRISceneBuffer from(RGB8, 2, 1, nullptr), to(RGB8, 2, 1, nullptr);
  count(from, 1);
  ASSERT_EQ(to.copyBandFrom(0, from, 2), GR_STATUS_OK);
  ASSERT_EQ(to.copyBandFrom(1, from, 0, maskOf({{{1, 1}}})), GR_STATUS_OK);
  EXPECT_EQ(planeOf(to, 0), (Bytes{5, 6}));
  EXPECT_EQ(planeOf(to, 1), (Bytes{0, 2}));
  EXPECT_EQ(planeOf(to, 2), (Bytes{0, 0}));
}

TEST(GRISceneBufferTest, CopyThroughAMaskTakesItsRunsAlone) {
  GRISceneBuffer from(GRAY8, 4, 3, nullptr), to(GRAY8, 3, 3, nullptr);
  count(from, 1);
  ASSERT_EQ(to.copyFrom(from, maskOf({{{0, 0}, {2, 9}}, {}, {{1, 1}}, {{0, 2}}})), GR_STATUS_OK);
  EXPECT_EQ(windowOf(to), (Bytes{1, 0, 3, 0, 0, 0, 0, 10, 0}));
}

TEST(GRISceneBufferTest, CopyOfDataSkipsThePixelsThatAreNoDataInAllBands) {
  GRISceneBuffer from(RGB8, 4, 1, nullptr), to(RGB8, 4, 1, nullptr);
  const gr_uint8 pixels[] = {1, 2, 3, 1, 2, 4, 7, 7, 7, 1, 2, 3};
  ASSERT_EQ(from.importDataBIP(pixels), GR_STATUS_OK);
  GRIPixel noData = RGB8;
  noData.setValuesUint8(pixels);
  ASSERT_EQ(to.copyDataFrom(from, noData), GR_STATUS_OK);
  EXPECT_EQ(windowOf(to, 0), (Bytes{0, 1, 7, 0}));
  EXPECT_EQ(windowOf(to, 2), (Bytes{0, 4, 7, 0}));
}

TEST(GRISceneBufferTest, CopyOfDataServesEveryDataType) {
  for (gr_int32 number = GRI_DATATYPE_UINT8; number <= GRI_DATATYPE_SINT64; ++number) {
    const auto type = static_cast<GRIDataType>(number);
    GRIPixel noData = grayOf(type);
    const gr_uint8 value[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    noData.setSampleValueBytes(0, value);
    GRISceneBuffer from(noData, 3, 1, nullptr), to(noData, 3, 1, nullptr);
    ASSERT_EQ(from.fill(noData), GR_STATUS_OK);
    std::memset(from.getSample(1, 0, 0), 0x3C, noData.getNumBytes());

    ASSERT_EQ(to.copyDataFrom(from, noData), GR_STATUS_OK) << number;

    const size_t width = noData.getNumBytes();
    Bytes expected(3 * width);
    std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(width), width, gr_uint8{0x3C});
    EXPECT_EQ(planeOf(to), expected) << number;
  }
}

TEST(GRISceneBufferTest, CopyOfDataServesBandsOfSeveralTypes) {
  const GRIPixel noData = mixedPixel();  // zeros
  GRISceneBuffer from(noData, 3, 1, nullptr), to(noData, 3, 1, nullptr);
  *static_cast<gr_uint8*>(from.getSample(0, 0, 0)) = 5;
  *static_cast<double*>(from.getSample(2, 0, 2)) = 2.5;
  to.getSample(1, 0, 0);
  std::memset(to.getTotalBandData(0), 0xA5, 3);

  ASSERT_EQ(to.copyDataFrom(from, noData), GR_STATUS_OK);

  EXPECT_EQ(planeOf(to, 0), (Bytes{5, 0xA5, 0}));
  EXPECT_EQ(*static_cast<double*>(to.getSample(2, 0, 2)), 2.5);
}

TEST(GRISceneBufferTest, CopyOfDataRefusesANoDataPixelOfAnotherKind) {
  GRISceneBuffer from(RGB8, 2, 1, nullptr), to(RGB8, 2, 1, nullptr);
  EXPECT_EQ(to.copyDataFrom(from, GRAY8), GRI_STATUS_IMPEDANCE_BANDS);
  EXPECT_EQ(to.copyDataFrom(from, GRIPixel(GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT16)),
            GRI_STATUS_IMPEDANCE_DATATYPE);
}

}  // namespace
