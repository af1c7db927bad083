// The header records of a file: what is read, and what is refused before it sizes anything.

#include "gr_lib_tg2kernel/src/decode/tg2_headerIO.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

constexpr gr_uint32 PAST_INT = 0x80000000;

// The fields in front of the markers.
struct Front {
  std::array<gr_uint8, 3> version = {1, 0, 1};
  gr_uint32 numBands = 3;
  gr_uint32 numLevels = 2;
  gr_uint32 width = 100;
  gr_uint32 height = 50;
};

TG3TestBytes frontBytes(const Front& front) {
  TG3TestBytes bytes;
  bytes.put(gr_uint64{0x74737261}, 4).put(front.version);
  bytes.put(front.numBands, 4).put(front.numLevels, 4).put(front.width, 4).put(front.height, 4);
  for (gr_uint32 i = 0; i < 3 * std::min(front.numLevels, 40u) + 1; ++i) bytes.put(1000 + i, 4);
  return bytes;
}

TG3TestBytes withCrop(const Front& front, std::array<gr_uint32, 5> crop) {
  TG3TestBytes bytes = frontBytes(front);
  bytes.put(gr_uint64{0xFFD2}, 2);
  for (const gr_uint32 number : crop) bytes.put(number, 4);
  bytes.put(gr_uint64{0xFFD3}, 2);
  return bytes;
}

GR_STATUS readHeader(const Bytes& bytes, TG2MainHeader& header) {
  const std::unique_ptr<GRIOStreamInf> stream = tg3_memoryStream(bytes);
  return header.read(*stream);
}

GR_STATUS statusOf(const Front& front) {
  TG2MainHeader header;
  TG3TestBytes bytes = frontBytes(front);
  bytes.put(gr_uint64{0xFFD3}, 2);
  return readHeader(bytes.bytes(), header);
}

TEST(TG2MainHeaderTest, ReadsEveryField) {
  TG3TestBytes bytes = frontBytes({});
  bytes.put(gr_uint64{0xFFD0}, 2).put(77, 4).put(gr_uint64{0xFFD2}, 2);
  for (const gr_uint32 number : {1, 2, 20, 10, 1}) bytes.put(number, 4);
  bytes.put(gr_uint64{0xFFD3}, 2);
  TG2MainHeader header;
  ASSERT_EQ(readHeader(bytes.bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.version, (std::array<gr_uint8, 3>{1, 0, 1}));
  EXPECT_EQ(header.numBands, 3u);
  EXPECT_EQ(header.numLevels, 2u);
  EXPECT_EQ(header.width, 100u);
  EXPECT_EQ(header.height, 50u);
  EXPECT_EQ(header.numSubbands, 7u);
  for (gr_uint32 i = 0; i < 7; ++i) EXPECT_EQ(header.getSubbandOffset(i), 1000 + i);
  EXPECT_EQ(header.metadataOffset, 77u);
  EXPECT_TRUE(header.hasSupportWindow);
  EXPECT_EQ(header.supportRect, (TG2Rect{1, 2, 20, 10}));
  EXPECT_EQ(header.supportLevel, 1);
  EXPECT_EQ(header.endPosition, static_cast<gr_int64>(bytes.bytes().size()));
}

TEST(TG2MainHeaderTest, NeedsNoMarkerSection) {
  TG3TestBytes bytes = frontBytes({});
  bytes.put(gr_uint64{0xFFAC}, 2);
  TG2MainHeader header;
  ASSERT_EQ(readHeader(bytes.bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.metadataOffset, 0u);
  EXPECT_FALSE(header.hasSupportWindow);
  EXPECT_EQ(header.supportRect, (TG2Rect{0, 0, 99, 49}));
  EXPECT_EQ(header.supportLevel, 0);
  EXPECT_EQ(header.endPosition, 0);
}

TEST(TG2MainHeaderTest, TakesACropWithoutMetadata) {
  TG2MainHeader header;
  ASSERT_EQ(readHeader(withCrop({}, {0, 0, 99, 49, 0}).bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.metadataOffset, 0u);
  EXPECT_TRUE(header.hasSupportWindow);
}

TEST(TG2MainHeaderTest, EndsAtAMarkerOutOfItsOrder) {
  for (const gr_uint32 second : {0xFFD0u, 0xFFD1u}) {
    TG3TestBytes bytes = frontBytes({});
    bytes.put(gr_uint64{0xFFD0}, 2).put(77, 4).put(second, 2).put(88, 4);
    TG2MainHeader header;
    ASSERT_EQ(readHeader(bytes.bytes(), header), GR_STATUS_OK);
    EXPECT_EQ(header.metadataOffset, 77u);
    EXPECT_EQ(header.endPosition, 0);
  }
}

TEST(TG2MainHeaderTest, RefusesEveryHeaderThatEndsEarly) {
  TG3TestBytes bytes = frontBytes({});
  bytes.put(gr_uint64{0xFFD0}, 2).put(77, 4).put(gr_uint64{0xFFD2}, 2);
  for (const gr_uint32 number : {1, 2, 20, 10, 1}) bytes.put(number, 4);
  bytes.put(gr_uint64{0xFFD3}, 2);
  for (size_t length = 0; length < bytes.bytes().size(); ++length) {
    SCOPED_TRACE(length);
    const Bytes part(bytes.bytes().begin(), bytes.bytes().begin() + static_cast<long>(length));
    TG2MainHeader header;
    EXPECT_EQ(readHeader(part, header), TG2_STATUS_READ_ERROR);
  }
}

TEST(TG2MainHeaderTest, RefusesAnotherMagic) {
  Bytes bytes = frontBytes({}).bytes();
  bytes[3] = 'b';
  TG2MainHeader header;
  EXPECT_EQ(readHeader(bytes, header), TG2_STATUS_NOT_TG2);
}

TEST(TG2MainHeaderTest, TakesVersionsUpToOneOne) {
  EXPECT_EQ(statusOf({.version = {0, 7, 9}}), GR_STATUS_OK);
  EXPECT_EQ(statusOf({.version = {1, 0, 255}}), GR_STATUS_OK);
  EXPECT_EQ(statusOf({.version = {1, 1, 0}}), GR_STATUS_OK);
  EXPECT_EQ(statusOf({.version = {1, 2, 0}}), TG2_STATUS_BAD_VERSION);
  EXPECT_EQ(statusOf({.version = {2, 0, 0}}), TG2_STATUS_BAD_VERSION);
}

TEST(TG2MainHeaderTest, HoldsLevelsAndSizesAgainstTheirBounds) {
  EXPECT_EQ(statusOf({.numLevels = 0}), GR_STATUS_OK);
  EXPECT_EQ(statusOf({.numLevels = 31}), GR_STATUS_OK);
  EXPECT_EQ(statusOf({.numLevels = 32}), TG2_STATUS_NOT_TG2);
  EXPECT_EQ(statusOf({.numLevels = 0xFFFFFFFF}), TG2_STATUS_NOT_TG2);
  EXPECT_EQ(statusOf({.width = 0}), TG2_STATUS_NOT_TG2);
  EXPECT_EQ(statusOf({.height = 0}), TG2_STATUS_NOT_TG2);
  EXPECT_EQ(statusOf({.width = PAST_INT - 1, .height = PAST_INT - 1}), GR_STATUS_OK);
  EXPECT_EQ(statusOf({.width = PAST_INT}), TG2_STATUS_NOT_TG2);
  EXPECT_EQ(statusOf({.height = 0xFFFFFFFF}), TG2_STATUS_NOT_TG2);
}

TEST(TG2MainHeaderTest, HasOneSubbandWithoutLevels) {
  TG3TestBytes bytes = frontBytes({.numLevels = 0});
  bytes.put(gr_uint64{0xFFD3}, 2);
  TG2MainHeader header;
  ASSERT_EQ(readHeader(bytes.bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.numSubbands, 1u);
}

TEST(TG2MainHeaderTest, RefusesACropThatIsNotInTheImage) {
  const auto status = [](std::array<gr_uint32, 5> crop) {
    TG2MainHeader header;
    return readHeader(withCrop({}, crop).bytes(), header);
  };
  const gr_uint32 minusOne = 0xFFFFFFFF;
  EXPECT_EQ(status({0, 0, 99, 49, 0}), GR_STATUS_OK);
  EXPECT_EQ(status({0, 0, 24, 12, 2}), GR_STATUS_OK);
  EXPECT_EQ(status({0, 0, 0, 0, 3}), TG2_STATUS_LEVEL_TOO_LARGE);
  EXPECT_EQ(status({0, 0, 0, 0, minusOne}), TG2_STATUS_LEVEL_TOO_LARGE);
  for (const std::array<gr_uint32, 5>& crop :
       {std::array<gr_uint32, 5>{minusOne, 0, 9, 9, 0},
        {0, minusOne, 9, 9, 0},
        {9, 0, 8, 9, 0},
        {0, 9, 9, 8, 0},
        {0, 0, 100, 9, 0},
        {0, 0, 9, 50, 0},
        {0, 0, 25, 0, 2},
        {0, 0, 0, 13, 2},
        {0, 0, minusOne, minusOne, 0},
        {PAST_INT, PAST_INT, PAST_INT - 1, PAST_INT - 1, 0}}) {
    EXPECT_EQ(status(crop), TG2_STATUS_SUPPORT_TOO_LARGE);
  }
}

TEST(TG2BlockTableHeaderTest, ReadsOriginsAndCountBehindItsMarker) {
  TG3TestBytes bytes;
  bytes.put(gr_uint64{0xFFAC}, 2).put(12, 1).put(127, 1).put(5, 4);
  TG2BlockTableHeader header;
  ASSERT_EQ(header.read(*tg3_memoryStream(bytes.bytes())), GR_STATUS_OK);
  EXPECT_EQ(header.noiseOriginX, 12);
  EXPECT_EQ(header.noiseOriginY, 127);
  EXPECT_EQ(header.numBlocks, 5u);
  for (size_t length = 0; length < bytes.bytes().size(); ++length) {
    EXPECT_EQ(header.read(*tg3_memoryStream(std::span(bytes.bytes()).first(length))),
              TG2_STATUS_READ_ERROR);
  }
}

TEST(TG2BlockTableHeaderTest, NeedsItsMarkerEvenWithoutBlocks) {
  TG3TestBytes bytes;
  bytes.put(gr_uint64{0xFFAA}, 2).put(0, 1).put(0, 1).put(0, 4);
  TG2BlockTableHeader header;
  EXPECT_EQ(header.read(*tg3_memoryStream(bytes.bytes())), TG2_STATUS_BAD_MARKER);
}

TEST(TG2BlockEntryTest, ReadsOffsetsAndRectangle) {
  TG3TestBytes bytes;
  bytes.put(0, 4).put(0, 4).put(300, 4);
  for (const gr_uint32 corner : {0xFFFFFFFFu, 2u, 30u, 4u}) bytes.put(corner, 4);
  TG2BlockEntry entry;
  ASSERT_EQ(entry.read(*tg3_memoryStream(bytes.bytes()), 3), GR_STATUS_OK);
  EXPECT_EQ(entry.getDataOffset(0), 0u);
  EXPECT_EQ(entry.getDataOffset(2), 300u);
  EXPECT_EQ(entry.getFirstOffset(0), 300u);
  EXPECT_EQ(entry.getFirstOffset(3), 0u);
  EXPECT_EQ(entry.rect, (TG2Rect{-1, 2, 30, 4}));
  EXPECT_EQ(TG2BlockEntry::getSize(3), 28u);
  EXPECT_EQ(TG2BlockEntry::getPosition(1000, 2, 3), 1064u);
  for (size_t length = 0; length < bytes.bytes().size(); ++length) {
    EXPECT_EQ(entry.read(*tg3_memoryStream(std::span(bytes.bytes()).first(length)), 3),
              TG2_STATUS_READ_ERROR);
  }
}

// A band with three codes, and records of a size.
struct BandFields {
  gr_uint32 marker = 0xFFAA;
  std::array<gr_uint8, 16> bits = {0, 3};
  Bytes huffval = {180, 181, 9};
  float binWidth = 0.5F;
  gr_uint32 recordWidth = 16;
  gr_uint32 recordHeight = 8;
  std::vector<gr_uint32> offsets = {100, 200, 300, 400, 500, 600};

  Bytes bytes() const {
    TG3TestBytes made;
    made.put(marker, 2).put(bits).put(huffval).put(std::bit_cast<gr_uint32>(binWidth), 4);
    made.put(recordWidth, 4).put(recordHeight, 4);
    for (const gr_uint32 offset : offsets) made.put(offset, 4);
    return made.bytes();
  }
};
constexpr TG2Rect BLOCK = {5, 7, 38, 17};  // 34 by 11: 3 by 2 records

GR_STATUS readBand(const Bytes& bytes, TG2BandHeader& header, Encryption* encryption = nullptr) {
  const std::unique_ptr<GRIOStreamInf> stream = tg3_memoryStream(bytes);
  return header.read(*stream, bytes.size(), BLOCK, encryption);
}
GR_STATUS bandStatus(const BandFields& fields) {
  TG2BandHeader header;
  return readBand(fields.bytes(), header);
}

TEST(TG2BandHeaderTest, ReadsEveryField) {
  TG2BandHeader header;
  ASSERT_EQ(readBand(BandFields().bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.getBits()[1], 3);
  EXPECT_EQ(Bytes(header.getHuffval().begin(), header.getHuffval().end()), (Bytes{180, 181, 9}));
  EXPECT_EQ(header.getBinWidth(), 0.5F);
  EXPECT_EQ(header.getRecordWidth(), 16);
  EXPECT_EQ(header.getRecordHeight(), 8);
  ASSERT_EQ(header.getNumRecords(), 6u);
  EXPECT_EQ(header.getRecordOffset(5), 600u);
}

TEST(TG2BandHeaderTest, RefusesEveryHeaderThatEndsEarly) {
  const Bytes whole = BandFields().bytes();
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    TG2BandHeader header;
    EXPECT_EQ(readBand(Bytes(whole.begin(), whole.begin() + static_cast<long>(length)), header),
              TG2_STATUS_READ_ERROR);
  }
}

TEST(TG2BandHeaderTest, RefusesAnotherMarker) {
  EXPECT_EQ(bandStatus({.marker = 0xFFAC}), TG2_STATUS_BAD_MARKER);
}

TEST(TG2BandHeaderTest, HoldsAsManyCodesAsThereAreSymbols) {
  BandFields fields;
  fields.bits = {0, 0, 0, 0, 0, 0, 0, 255, 1};
  fields.huffval.assign(256, 1);
  EXPECT_EQ(bandStatus(fields), GR_STATUS_OK);
  fields.bits[8] = 2;
  fields.huffval.assign(257, 1);
  EXPECT_EQ(bandStatus(fields), TG2_STATUS_DECODING);
  fields.bits.fill(255);
  EXPECT_EQ(bandStatus(fields), TG2_STATUS_DECODING);
}

TEST(TG2BandHeaderTest, RefusesBinsThatAreNoWidth) {
  EXPECT_EQ(bandStatus({.binWidth = 0.0F}), GR_STATUS_OK);
  for (const float width :
       {-1.0F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_EQ(bandStatus({.binWidth = width}), TG2_STATUS_DECODING);
  }
}

TEST(TG2BandHeaderTest, RefusesRecordsWithoutSamples) {
  for (const gr_uint32 size : {0u, 0xFFFFFFFFu, PAST_INT}) {
    EXPECT_EQ(bandStatus({.recordWidth = size}), TG2_STATUS_BAD_MARKER);
    EXPECT_EQ(bandStatus({.recordHeight = size}), TG2_STATUS_BAD_MARKER);
  }
}

TEST(TG2BandHeaderTest, CountsTheRecordsThatABlockIsCutInto) {
  BandFields fields = {.recordWidth = PAST_INT - 1, .recordHeight = PAST_INT - 1, .offsets = {9}};
  TG2BandHeader header;
  ASSERT_EQ(readBand(fields.bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.getNumRecords(), 1u);

  fields.recordWidth = 33;
  fields.recordHeight = 11;
  fields.offsets = {9, 10};
  ASSERT_EQ(readBand(fields.bytes(), header), GR_STATUS_OK);
  EXPECT_EQ(header.getNumRecords(), 2u);
}

TEST(TG2BandHeaderTest, RefusesMoreRecordsThanTheStreamHolds) {
  const Bytes bytes = BandFields{.recordWidth = 1, .recordHeight = 1}.bytes();
  TG2BandHeader header;
  const TG2Rect huge = {0, 0, static_cast<gr_int32>(PAST_INT - 2),
                        static_cast<gr_int32>(PAST_INT - 2)};
  EXPECT_EQ(header.read(*tg3_memoryStream(bytes), bytes.size(), huge, nullptr),
            TG2_STATUS_READ_ERROR);
}

TEST(TG2BandHeaderTest, DeciphersLengthsAndSymbolsEachByThemselves) {
  const BandFields plain;
  BandFields fields = plain;
  Encryption encryption;
  encryption.setKey("sesame");
  encryption.encrypt(fields.bits);
  encryption.encrypt(fields.huffval);
  ASSERT_NE(fields.bits, plain.bits);
  TG2BandHeader header;
  ASSERT_EQ(readBand(fields.bytes(), header, &encryption), GR_STATUS_OK);
  EXPECT_TRUE(std::equal(plain.bits.begin(), plain.bits.end(), header.getBits().begin()));
  EXPECT_EQ(Bytes(header.getHuffval().begin(), header.getHuffval().end()), plain.huffval);
  EXPECT_EQ(header.getBinWidth(), plain.binWidth);
}

TEST(TG2BandHeaderTest, LeavesTablesAloneWithoutAKey) {
  Encryption encryption;
  TG2BandHeader header;
  ASSERT_EQ(readBand(BandFields().bytes(), header, &encryption), GR_STATUS_OK);
  EXPECT_EQ(header.getBits()[1], 3);
}

}  // namespace
