// What is known of a picture of generation 2 once it is open, and what is refused.

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "gr_lib_tg2kernel/src/decode/tg2_imageReader.h"
#include "image/gri_geoCoord.h"
#include "metadata/gri_metadataAcc.h"
#include "tests/support/tesra_picture.h"
#include "tests/support/tg2_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

TG2TestImage smallImage(gr_uint32 numBands = 1) {
  TG2TestImage image;
  image.width = 21;
  image.height = 10;
  image.numBands = numBands;
  image.numLevels = 1;
  return image;
}

TG2TestFile fileOf(const TG2TestImage& image) {
  const std::vector<float> plane(size_t{image.width} * image.height, 30.0F);
  return tg2_writeImage(image, std::vector<std::vector<float>>(image.numBands, plane));
}

GR_STATUS openStatus(const Bytes& bytes) { return TesraPicture(bytes).status(); }
GR_STATUS openStatus(const TG2TestImage& image) { return openStatus(fileOf(image).bytes); }

GR_STATUS decodeStatus(TesraPicture& picture, double mag, gr_uint32 columns, gr_uint32 rows,
                       gr_uint32 column = 0, gr_uint32 row = 0) {
  Bytes bytes;
  return picture.decode(mag, column, row, columns, rows, bytes);
}

void put32(Bytes& bytes, size_t at, size_t value) {
  for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<gr_uint8>(value >> (8 * (3 - i)));
}

TG2TestRecord doublesRecord(const std::string& name, const std::vector<double>& numbers) {
  const auto count = static_cast<gr_uint32>(numbers.size());
  TG2TestRecord record = {name, 7, count, {count}, {}};
  for (const double number : numbers) {
    for (int shift = 56; shift >= 0; shift -= 8) {
      record.values.push_back(static_cast<gr_uint8>(std::bit_cast<gr_uint64>(number) >> shift));
    }
  }
  return record;
}

TEST(TG2OpenTest, TellsSizeLevelsMagnificationsAndVersion) {
  TG2TestImage image = smallImage();
  image.numLevels = 3;
  image.version = {1, 1, 9};
  TesraPicture picture(fileOf(image).bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  TesraImageReader& reader = picture.reader();
  EXPECT_EQ(reader.getWidth(), 21u);
  EXPECT_EQ(reader.getHeight(), 10u);
  EXPECT_EQ(reader.getNumLevels(), 3);
  EXPECT_EQ(reader.getMinMagnification(), 0.125);
  EXPECT_EQ(reader.getMaxMagnification(), 1048576.0);
  EXPECT_EQ(reader.getStripHeight(), 64u);
  EXPECT_FALSE(reader.isLocked());
  EXPECT_TRUE(reader.isSelective());
  gr_uint8 major = 0, minor = 0, tweak = 0;
  gr_int8 letter = 1;
  reader.getVersion(major, minor, tweak, letter);
  EXPECT_EQ(major, 1);
  EXPECT_EQ(minor, 1);
  EXPECT_EQ(tweak, 9);
  EXPECT_EQ(letter, 0);
  EXPECT_EQ(reader.getSourceFileSize(), static_cast<gr_int64>(fileOf(image).bytes.size()));
}

TEST(TG2OpenTest, TellsTheSizeAtEveryMagnification) {
  TG2TestImage image = smallImage();
  image.numLevels = 3;
  TesraPicture picture(fileOf(image).bytes);
  const auto expectSize = [&](double mag, gr_uint32 columns, gr_uint32 rows) {
    gr_uint32 width = 0;
    gr_uint32 height = 0;
    EXPECT_EQ(picture.reader().getDimsAtMag(mag, width, height), GR_STATUS_OK);
    EXPECT_EQ(width, columns);
    EXPECT_EQ(height, rows);
  };
  expectSize(1.0, 21, 10);
  expectSize(0.5, 11, 5);
  expectSize(0.125, 3, 2);
  expectSize(4.0, 84, 40);
  expectSize(1048576.0, 21u << 20, 10u << 20);
  gr_uint32 width = 7;
  gr_uint32 height = 7;
  EXPECT_EQ(picture.reader().getDimsAtMag(0.0625, width, height), GR_STATUS_OUT_OF_RANGE);
  EXPECT_EQ(picture.reader().getDimsAtMag(2097152.0, width, height), GR_STATUS_OUT_OF_RANGE);
  EXPECT_EQ(width, 7u);
}

TEST(TG2OpenTest, RefusesTheSizeOfEnlargementsThatPass31Bits) {
  TG2TestImage image = smallImage();
  image.isSubbandAbsent = [](gr_uint32) { return true; };
  Bytes bytes = fileOf(image).bytes;
  put32(bytes, 15, 2048);  // the width
  TesraPicture picture(bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  EXPECT_EQ(picture.reader().getDimsAtMag(1048576.0, width, height), GR_STATUS_OK);
  EXPECT_EQ(width, 0x80000000u);
  put32(bytes, 15, 2049);
  TesraPicture larger(bytes);
  EXPECT_EQ(larger.reader().getDimsAtMag(1048576.0, width, height), 8117u);
}

TEST(TG2OpenTest, NamesTheColorsByTheNumberOfBands) {
  const std::pair<gr_uint32, GRIColorSpace> kinds[] = {
      {1, GRI_COLORSPACE_GRAYSCALE}, {3, GRI_COLORSPACE_RGB}, {4, GRI_COLORSPACE_CMYK}};
  for (const auto& [numBands, colorSpace] : kinds) {
    TesraPicture picture(fileOf(smallImage(numBands)).bytes);
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    EXPECT_EQ(picture.reader().getPixelProps().getColorSpace(), colorSpace);
    EXPECT_EQ(picture.reader().getPixelProps().getNumBands(), numBands);
    EXPECT_EQ(picture.reader().getPixelProps().getDataType(), GRI_DATATYPE_UINT8);
  }
  for (const gr_uint32 numBands : {0u, 2u, 5u}) EXPECT_EQ(openStatus(smallImage(numBands)), 50601u);
  Bytes bytes = fileOf(smallImage()).bytes;
  put32(bytes, 7, 0xFFFFFFFF);  // the number of bands
  EXPECT_EQ(openStatus(bytes), 50601u);
}

TEST(TG2OpenTest, TakesDataTypeAndColorsFromTheRecords) {
  TG2TestImage image = smallImage(3);
  const auto open = [&](std::vector<TG2TestRecord> records) {
    image.records = std::move(records);
    return TesraPicture(fileOf(image).bytes);
  };
  const auto dataType = [](gr_uint32 value) { return tg2_scalarRecord("IMAGE::DATA_TYPE", value); };
  const auto scheme = [](gr_uint32 value) {
    return tg2_scalarRecord("IMAGE::COLOR_SCHEME", value);
  };
  EXPECT_EQ(open({dataType(0)}).reader().getPixelProps().getDataType(), GRI_DATATYPE_UINT8);
  EXPECT_EQ(open({dataType(1)}).reader().getPixelProps().getDataType(), GRI_DATATYPE_FLOAT32);
  EXPECT_EQ(open({dataType(2)}).reader().getPixelProps().getDataType(), GRI_DATATYPE_UINT16);
  EXPECT_EQ(open({dataType(99)}).reader().getPixelProps().getDataType(), GRI_DATATYPE_UINT8);
  for (gr_uint32 stored = 10; stored <= 16; ++stored) {
    EXPECT_EQ(open({dataType(stored)}).status(), 50602u);
  }
  EXPECT_EQ(open({tg2_byteRecord("IMAGE::DATA_TYPE", {2})}).status(), 50507u);

  EXPECT_EQ(open({scheme(10)}).reader().getPixelProps().getColorSpace(),
            GRI_COLORSPACE_MULTISPECTRAL);
  EXPECT_EQ(open({scheme(99)}).reader().getPixelProps().getColorSpace(), GRI_COLORSPACE_RGB);
  EXPECT_EQ(open({scheme(3)}).status(), 50601u);
  EXPECT_EQ(open({scheme(2)}).status(), 50601u);
  EXPECT_EQ(open({tg2_byteRecord("IMAGE::COLOR_SCHEME", {0, 0})}).status(), 50507u);
}

TEST(TG2OpenTest, OpensFourBandsOfFloats) {
  TG2TestImage image = smallImage(4);
  image.dataType = 1;
  EXPECT_EQ(openStatus(image), GR_STATUS_OK);
}

TEST(TG2OpenTest, TakesThePositionFromTheRecords) {
  TG2TestImage image = smallImage();
  TesraPicture without(fileOf(image).bytes);
  EXPECT_TRUE(without.reader().isGeoCoordImplicit());
  EXPECT_EQ(without.reader().getGeoCoord().getYOrigin(), 9.0);
  image.records = {doublesRecord("IMAGE::XY_ORIGIN", {1000, 2000}),
                   doublesRecord("IMAGE::X_RESOLUTION", {2.5}),
                   doublesRecord("IMAGE::Y_RESOLUTION", {-3.5})};
  TesraPicture with(fileOf(image).bytes);
  EXPECT_FALSE(with.reader().isGeoCoordImplicit());
  EXPECT_EQ(with.reader().getGeoCoord().getXOrigin(), 1000.0);
  EXPECT_EQ(with.reader().getGeoCoord().getYOrigin(), 2000.0);
  EXPECT_EQ(with.reader().getGeoCoord().getXResolution(), 2.5);
  EXPECT_EQ(with.reader().getGeoCoord().getYResolution(), -3.5);
}

TEST(TG2OpenTest, OpensAllTheSameWithAPositionInAnotherForm) {
  TG2TestImage image = smallImage();
  image.records = {doublesRecord("IMAGE::XY_ORIGIN", {1000, 2000, 3000}),
                   doublesRecord("IMAGE::X_RESOLUTION", {2.5}),
                   doublesRecord("IMAGE::Y_RESOLUTION", {-3.5})};
  TesraPicture picture(fileOf(image).bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  EXPECT_TRUE(picture.reader().isGeoCoordImplicit());
}

TEST(TG2OpenTest, TakesThePositionOfAWorldFileBeforeThatOfTheRecords) {
  TG2TestImage image = smallImage();
  image.records = {doublesRecord("IMAGE::XY_ORIGIN", {1000, 2000}),
                   doublesRecord("IMAGE::X_RESOLUTION", {2.5}),
                   doublesRecord("IMAGE::Y_RESOLUTION", {-3.5})};
  const std::string text = "4\n0\n0\n-5\n300\n400\n";
  const std::unique_ptr<GRIOStreamInf> stream = tg3_memoryStream(fileOf(image).bytes);
  const std::unique_ptr<GRIOStreamInf> worldStream =
      tg3_memoryStream({reinterpret_cast<const gr_uint8*>(text.data()), text.size()});
  const GRUtilSmartPointer<TG2ImageReader> reader(gr_makeUnique<TG2ImageReader>().release());
  EXPECT_EQ(reader->getSourceFileSize(), -1);
  ASSERT_EQ(
      reader->initialize(*stream, worldStream.get(), TESRA_MEMORY_DEFAULT, TESRA_STREAM_KEEP_OPEN),
      GR_STATUS_OK);
  EXPECT_EQ(reader->getGeoCoord().getXOrigin(), 300.0);
  EXPECT_EQ(reader->getGeoCoord().getYOrigin(), 400.0);
  EXPECT_EQ(reader->getGeoCoord().getXResolution(), 4.0);
  EXPECT_EQ(reader->getGeoCoord().getYResolution(), -5.0);
}

TEST(TG2OpenTest, RecordsWhereTheImageCameFromUnlessTheFileSays) {
  TG2TestImage image = smallImage();
  const auto inputName = [](TesraPicture& picture) {
    const char* name = nullptr;
    EXPECT_EQ(GRIMetadataAccConst(picture.reader().getMetadata())
                  .getTagScalar(GRI_TAG_IMAGE_INPUT_NAME, name),
              GR_STATUS_OK);
    return std::string(name);
  };
  TesraPicture plain(fileOf(image).bytes);
  EXPECT_EQ(inputName(plain), "gr_dynamicmemstream:");
  image.records = {{"IMAGE::INPUT_NAME", 5, 1, {1}, {'m', 'a', 'p', 0}}};
  TesraPicture named(fileOf(image).bytes);
  EXPECT_EQ(inputName(named), "map");
}

TEST(TG2OpenTest, GivesTheLaterOneOfTwoRecordsOfAName) {
  TG2TestImage image = smallImage();
  image.records = {tg2_scalarRecord("OWN::NAME", 1), tg2_scalarRecord("OWN::NAME", 2)};
  TesraPicture picture(fileOf(image).bytes);
  gr_uint32 value = 0;
  EXPECT_EQ(GRIMetadataAccConst(picture.reader().getMetadata()).getTagScalar("OWN::NAME", value),
            GR_STATUS_OK);
  EXPECT_EQ(value, 2u);
}

TEST(TG2OpenTest, OpensWithoutMetadataOrWhereAnotherMarkerStandsThere) {
  TG2TestImage image = smallImage();
  image.records = {tg2_scalarRecord("IMAGE::DATA_TYPE", 2)};
  TG2TestFile file = fileOf(image);
  file.bytes[file.layout.metadata + 1] = 0xD9;
  TesraPicture other(file.bytes);
  ASSERT_EQ(other.status(), GR_STATUS_OK);
  EXPECT_EQ(other.reader().getPixelProps().getDataType(), GRI_DATATYPE_UINT8);
  for (const bool hasMarker : {false, true}) {
    image.hasMetadata = false;
    image.hasMetadataMarker = hasMarker;
    image.hasEndMarker = hasMarker;
    TesraPicture picture(fileOf(image).bytes);
    ASSERT_EQ(picture.status(), GR_STATUS_OK);
    EXPECT_EQ(decodeStatus(picture, 1, 21, 10), GR_STATUS_OK);
  }
}

TEST(TG2OpenTest, RefusesMetadataThatIsNotInTheFile) {
  const TG2TestFile file = fileOf(smallImage());
  const size_t field = file.layout.markers + 2;
  for (const size_t offset : {file.bytes.size() - 1, file.bytes.size(), size_t{0xFFFFFFFF}}) {
    Bytes bytes = file.bytes;
    put32(bytes, field, offset);
    EXPECT_EQ(openStatus(bytes), 50605u);
  }
}

TEST(TG2OpenTest, RefusesMetadataThatEndsEarlyOrMakesNoSense) {
  TG2TestImage image = smallImage();
  image.records = {tg2_scalarRecord("IMAGE::DATA_TYPE", 2)};
  const TG2TestFile file = fileOf(image);
  for (size_t length = file.layout.metadata + 2; length < file.bytes.size(); ++length) {
    EXPECT_EQ(openStatus(Bytes(file.bytes.begin(), file.bytes.begin() + static_cast<long>(length))),
              50505u);
  }
  image.records[0].count = 0x7FFFFFFF;
  EXPECT_EQ(openStatus(image), 50505u);
  image.records[0].count = 0xFFFFFFFF;
  EXPECT_EQ(openStatus(image), 50505u);
  image.records[0] = tg2_scalarRecord(std::string(100, 'x'), 2);
  EXPECT_EQ(openStatus(image), 50505u);
}

TEST(TG2OpenTest, LooksAtTheVersionOfAFileAndOfOneInAPacket) {
  const auto fileOfVersion = [](std::array<gr_uint8, 3> version) {
    TG2TestImage image = smallImage();
    image.version = version;
    return fileOf(image).bytes;
  };
  EXPECT_EQ(openStatus(fileOfVersion({0, 7, 9})), 50607u);
  EXPECT_EQ(openStatus(tg2_wrap(fileOfVersion({0, 7, 9}))), GR_STATUS_OK);
  EXPECT_EQ(openStatus(fileOfVersion({1, 1, 0})), GR_STATUS_OK);
  for (const std::array<gr_uint8, 3> version : {std::array<gr_uint8, 3>{1, 2, 0}, {2, 0, 0}}) {
    EXPECT_EQ(openStatus(fileOfVersion(version)), 8105u);
    EXPECT_EQ(openStatus(tg2_wrap(fileOfVersion(version))), 8105u);
  }
  Bytes other = fileOfVersion({1, 0, 1});
  other[0] = 'T';
  EXPECT_EQ(openStatus(tg2_wrap(other)), 8104u);
  EXPECT_EQ(openStatus(other), 50607u);
}

TEST(TG2OpenTest, CountsTheLevelsOfACropFromItsOwn) {
  TG2TestImage image = smallImage();
  image.width = 200;
  image.height = 200;
  image.numLevels = 5;
  image.crop = TG2TestImage::Crop{{3, 4, 40, 30}, 2};
  TesraPicture picture(fileOf(image).bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  EXPECT_EQ(picture.reader().getNumLevels(), 3);
  EXPECT_EQ(picture.reader().getMinMagnification(), 0.125);
  EXPECT_EQ(picture.reader().getWidth(), 38u);
  EXPECT_EQ(picture.reader().getHeight(), 27u);
  EXPECT_EQ(decodeStatus(picture, 0.125, 5, 4), GR_STATUS_OK);
  EXPECT_EQ(decodeStatus(picture, 0.0625, 1, 1), 50015u);
}

TEST(TG2OpenTest, RefusesScenesInAnOrderThatComesBeforeTheLock) {
  TG2TestImage image = smallImage();
  image.records = {tg2_byteRecord("IMAGE::FILE_IS_LOCKED", {1})};
  TesraPicture picture(fileOf(image).bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  EXPECT_TRUE(picture.reader().isLocked());
  EXPECT_EQ(decodeStatus(picture, 0.25, 99, 99, 50, 50), 50015u);
  EXPECT_EQ(decodeStatus(picture, 1, 0, 0), 50013u);
  EXPECT_EQ(decodeStatus(picture, 1, 5, 5, 21, 0), 50013u);
  EXPECT_EQ(decodeStatus(picture, 1, 5, 5, 0, 11), 50013u);
  EXPECT_EQ(decodeStatus(picture, 1, 22, 5), 50014u);
  EXPECT_EQ(decodeStatus(picture, 1, 21, 10), 4005u);
}

TEST(TG2OpenTest, AddsDitherUnlessARecordIsThereWhateverItSays) {
  TG2TestImage image = smallImage();
  image.width = image.height = 64;
  image.numLevels = 0;
  image.binWidth = 16.0F;
  const auto decode = [&](bool hasRecord, gr_uint8 value) {
    image.records.clear();
    if (hasRecord) image.records.push_back(tg2_byteRecord("IMAGE::NO_DITHER", {value}));
    TesraPicture picture(tg2_writeBins(image, {{std::vector<gr_int32>(size_t{64} * 64, 5)}}).bytes);
    Bytes bytes;
    EXPECT_EQ(picture.decode(1, 0, 0, 64, 64, bytes), GR_STATUS_OK);
    return bytes;
  };
  const Bytes plain(size_t{64} * 64, 81);  // (5 - 0.44) bins and a half: 80.96
  EXPECT_EQ(decode(true, 1), plain);
  EXPECT_EQ(decode(true, 0), plain);
  const Bytes dithered = decode(false, 0);
  EXPECT_NE(dithered, plain);
  for (const gr_uint8 sample : dithered) EXPECT_NEAR(sample, 81, 4);
}

// A stream in memory that counts how often it is opened.
class CountingStream : public GRIODynamicMemStream {
 public:
  explicit CountingStream(const Bytes& bytes) {
    EXPECT_EQ(initialize(4096, 1.6F), GR_STATUS_OK);
    EXPECT_EQ(GRIODynamicMemStream::open(), GR_STATUS_OK);
    EXPECT_EQ(write(bytes.data(), static_cast<gr_uint32>(bytes.size())), bytes.size());
    EXPECT_EQ(close(), GR_STATUS_OK);
  }
  GR_STATUS open() override {
    if (!isOpen()) ++numOpened;
    return GRIODynamicMemStream::open();
  }
  int numOpened = 0;
};

TEST(TG2OpenTest, OpensAClosedStreamForEachUseUnlessItIsToStayOpen) {
  const Bytes bytes = fileOf(smallImage()).bytes;
  for (const TesraStreamUsage usage : {TESRA_STREAM_CLOSE, TESRA_STREAM_KEEP_OPEN}) {
    CountingStream stream(bytes);
    const GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
    ASSERT_EQ(reader->initialize(stream, nullptr, TESRA_MEMORY_DEFAULT, usage), GR_STATUS_OK);
    const bool stays = usage == TESRA_STREAM_KEEP_OPEN;
    EXPECT_EQ(stream.isOpen(), stays);
    EXPECT_EQ(reader->getSourceFileSize(), static_cast<gr_int64>(bytes.size()));
    GRISceneBuffer buffer(reader->getPixelProps(), 21, 10, nullptr);
    ASSERT_EQ(reader->read(GRIScene(0, 0, 21, 10, 1), buffer), GR_STATUS_OK);
    EXPECT_EQ(stream.isOpen(), stays);
    if (stays) {
      EXPECT_EQ(stream.numOpened, 1);
    } else {
      EXPECT_GE(stream.numOpened, 4);
    }
  }
}

TEST(TG2OpenTest, DecodesASmallWindowOfAHugeClaimInProportionToTheWindow) {
  TG2TestImage image = smallImage();
  image.numLevels = 31;
  image.isSubbandAbsent = [](gr_uint32) { return true; };
  Bytes bytes = tg2_writeBins(image, {{}}).bytes;
  put32(bytes, 15, 0x7FFFFFFF);
  put32(bytes, 19, 0x7FFFFFFF);
  TesraPicture picture(bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  Bytes samples;
  EXPECT_EQ(picture.decode(1, 1000000000, 1000000000, 50, 50, samples), GR_STATUS_OK);
  EXPECT_EQ(samples, Bytes(2500));
  EXPECT_EQ(decodeStatus(picture, 1.0 / 2147483648.0, 1, 1), GR_STATUS_OK);
}

}  // namespace
