#include "hosts/common/gri_hostImage.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/fake_gri.h"

namespace {

/// The picture, written to a file and opened from it. The file is gone again.
class OpenPicture {
 public:
  explicit OpenPicture(const FakePicture& picture) {
    const FakeDirectory directory;
    picture.writeTo(directory / "picture");
    error = image.open(directory / "picture");
  }
  GRIHostImage image;
  GRIHostError error;
};

GRIHostImageInfo infoOf(const FakePicture& picture) {
  const OpenPicture open(picture);
  EXPECT_FALSE(open.error) << open.error.text;
  return open.image.info();
}

}  // namespace

TEST(GRIHostImageTest, OpensEveryFormatWithItsReader) {
  EXPECT_EQ(infoOf({.format = FakePicture::TESRA}).content.format, GRIHostFormat::TESRA);
  EXPECT_EQ(infoOf({.format = FakePicture::NITF}).content.format, GRIHostFormat::NITF);
  EXPECT_EQ(infoOf({.format = FakePicture::JP2}).content.format, GRIHostFormat::JPEG2000);
}

TEST(GRIHostImageTest, TellsSizeTypeAndColours) {
  const GRIHostImageInfo info = infoOf({.width = 31,
                                        .height = 17,
                                        .bands = 4,
                                        .colorSpace = GRIC_COLORSPACE_RGB | GRIC_COLORSPACE_ALPHA,
                                        .dataType = GRIC_DATATYPE_UINT16});
  EXPECT_EQ(info.width, 31u);
  EXPECT_EQ(info.height, 17u);
  EXPECT_EQ(info.dataType, GRIC_DATATYPE_UINT16);
  EXPECT_EQ(info.bits, 16u);
  EXPECT_EQ(info.bands, (std::vector{GRIHostColor::RED, GRIHostColor::GREEN, GRIHostColor::BLUE,
                                     GRIHostColor::ALPHA}));
}

TEST(GRIHostImageTest, AFailedOpenGivesTheLibrarysStatusAndKeepsThePictureThatWasOpen) {
  const FakeDirectory directory;
  FakePicture{.width = 5}.writeTo(directory / "good");
  FakePicture{.openStatus = 2005}.writeTo(directory / "bad");
  GRIHostImage image;
  ASSERT_FALSE(image.open(directory / "good"));
  EXPECT_EQ(image.open(directory / "bad").status, 2005u);
  EXPECT_EQ(image.open(directory / "missing").status, GRI_HOST_STATUS_OPEN);
  EXPECT_TRUE(image.isOpen());
  EXPECT_EQ(image.info().width, 5u);
}

TEST(GRIHostImageTest, EveryHandleIsClosedOnce) {
  const int before = fake_openHandles();
  {
    OpenPicture open({});
    EXPECT_EQ(fake_openHandles(), before + 1);
    GRIHostImage moved = std::move(open.image);
    EXPECT_EQ(fake_openHandles(), before + 1);
    moved = GRIHostImage();
    EXPECT_EQ(fake_openHandles(), before);
  }
  EXPECT_EQ(fake_openHandles(), before);
}

TEST(GRIHostImageTest, ExceptionsThatCrossTheInterfaceBecomeErrors) {
  using enum FakePicture::Throws;
  const int before = fake_openHandles();
  EXPECT_EQ(OpenPicture({.throws = WHEN_OPENED}).error.status, 8u);
  {
    OpenPicture open({.bands = 1, .throws = WHEN_DECODED});
    std::vector<gr_uint8> samples(4);
    void* bands[] = {samples.data()};
    EXPECT_EQ(open.image.decode({0, 0, 2, 2}, 1, bands).status, 8u);
  }
  { const OpenPicture open({.throws = WHEN_CLOSED}); }  // a destructor that throws ends the test
  EXPECT_EQ(fake_openHandles(), before);
}

TEST(GRIHostImageTest, LevelsHalveDownToTheSmallestMagnification) {
  const GRIHostImageInfo info = infoOf({.width = 5, .height = 5, .minMagnification = 0.25});
  ASSERT_EQ(info.levels.size(), 3u);
  EXPECT_EQ(info.levels[0].magnification, 1);
  EXPECT_EQ(info.levels[1].magnification, 0.5);
  EXPECT_EQ(info.levels[1].width, 3u);
  EXPECT_EQ(info.levels[2].width, 2u);
}

TEST(GRIHostImageTest, LevelsStartAtOneAlsoWhereLargerOnesAreServed) {
  const GRIHostImageInfo info = infoOf({.minMagnification = 1, .maxMagnification = 1e30});
  ASSERT_EQ(info.levels.size(), 1u);
  EXPECT_EQ(info.levels[0].magnification, 1);
}

TEST(GRIHostImageTest, LevelsEndWhateverTheRangeSays) {
  EXPECT_LE(infoOf({.minMagnification = 0}).levels.size(), 32u);
  EXPECT_LE(infoOf({.minMagnification = -1}).levels.size(), 32u);
  EXPECT_TRUE(infoOf({.minMagnification = 1, .maxMagnification = 0.5}).levels.empty());
}

TEST(GRIHostImageTest, APictureWithoutAPositionHasNone) {
  EXPECT_FALSE(infoOf({}).position);
  EXPECT_FALSE(infoOf({.format = FakePicture::NITF}).position);
}

TEST(GRIHostImageTest, TheDefaultPositionCountsWhenTheRecordsStateIt) {
  EXPECT_TRUE(infoOf({.statesPosition = true}).position);
}

TEST(GRIHostImageTest, ASegmentsOffsetIsNoPosition) {
  const std::vector<double> moved{120, 79 - 40, 1, -1, 0, 0};
  EXPECT_FALSE(infoOf({.format = FakePicture::NITF, .position = moved}).position);
  EXPECT_TRUE(infoOf({.format = FakePicture::TESRA, .position = moved}).position);
}

TEST(GRIHostImageTest, AOneMetreGridFarFromZeroIsAPosition) {
  const std::vector<double> utm{485900, 5209245, 1, -1, 0, 0};
  EXPECT_TRUE(infoOf({.format = FakePicture::NITF, .position = utm}).position);
}

TEST(GRIHostImageTest, APositionComesOverWhole) {
  const auto position = infoOf({.position = {10, 20, 0.5, -0.25, 0.125, 0.0625}}).position;
  ASSERT_TRUE(position);
  EXPECT_EQ(position->xOrigin, 10);
  EXPECT_EQ(position->yOrigin, 20);
  EXPECT_EQ(position->xResolution, 0.5);
  EXPECT_EQ(position->yResolution, -0.25);
  EXPECT_EQ(position->xRotation, 0.125);
  EXPECT_EQ(position->yRotation, 0.0625);
}

TEST(GRIHostImageTest, CoordinateSystemNoDataAndBitsComeFromTheRecords) {
  const GRIHostImageInfo info = infoOf({.bands = 2,
                                        .colorSpace = GRIC_COLORSPACE_MULTISPECTRAL,
                                        .dataType = GRIC_DATATYPE_SINT16,
                                        .wkt = "LOCAL_CS[\"x\"]",
                                        .noData = {-5, 7},
                                        .bits = 11});
  EXPECT_EQ(info.crs, "LOCAL_CS[\"x\"]");
  EXPECT_EQ(info.noData, (std::vector<double>{-5, 7}));
  EXPECT_EQ(info.bits, 11u);
}

TEST(GRIHostImageTest, RecordsThatDontFitThePictureAreLeftAlone) {
  const GRIHostImageInfo info = infoOf({.bands = 3, .noData = {1, 2}, .bits = 40});
  EXPECT_TRUE(info.noData.empty());  // two values for three bands
  EXPECT_EQ(info.bits, 8u);          // more bits than a sample has
}

TEST(GRIHostImageTest, ANoDataValueThatNoSampleHasIsNone) {
  const auto noData = [](double value) {
    return infoOf({.noData = {1, value, 3}, .noDataType = GRIC_DATATYPE_FLOAT64}).noData;
  };
  EXPECT_EQ(noData(2), (std::vector<double>{1, 2, 3}));
  EXPECT_TRUE(noData(1e300).empty());
  EXPECT_TRUE(noData(-9999).empty());
}

TEST(GRIHostImageTest, DecodesAWindowOfAMagnification) {
  OpenPicture open({.bands = 2, .colorSpace = GRIC_COLORSPACE_MULTISPECTRAL});
  std::vector<gr_uint8> first(6);
  std::vector<gr_uint8> second(6);
  void* bands[] = {first.data(), second.data()};
  ASSERT_FALSE(open.image.decode({3, 4, 3, 2}, 0.5, bands));
  EXPECT_EQ(first[0], fake_sample(0, 3, 4, 1));
  EXPECT_EQ(first[5], fake_sample(0, 5, 5, 1));
  EXPECT_EQ(second[3], fake_sample(1, 3, 5, 1));
}

TEST(GRIHostImageTest, AWindowOutsideIsRefusedByTheLibrary) {
  OpenPicture open({.width = 10, .height = 10, .bands = 1});
  std::vector<gr_uint8> samples(100);
  void* bands[] = {samples.data()};
  EXPECT_EQ(open.image.decode({5, 0, 6, 1}, 1, bands).status, 50014u);
  EXPECT_EQ(open.image.decode({0, 0, 1, 1}, 0.001, bands).status, 50015u);
}

TEST(GRIHostImageTest, BandsOfDifferentTypesAreNotDecoded) {
  OpenPicture open({.dataType = GRIC_DATATYPE_INVALID});
  ASSERT_FALSE(open.error);
  EXPECT_EQ(open.image.info().bits, 0u);
  EXPECT_EQ(open.image.decode({0, 0, 1, 1}, 1, nullptr).status, GRI_HOST_STATUS_DATATYPE);
}

TEST(GRIHostImageTest, APasswordGoesToTesraPicturesOnly) {
  OpenPicture nitf({.format = FakePicture::NITF});
  EXPECT_EQ(nitf.image.setPassword("secret").status, GRI_HOST_STATUS_OPERATION);
  OpenPicture tesra({.bands = 1, .isLocked = true});
  EXPECT_TRUE(tesra.image.info().isLocked);
  std::vector<gr_uint8> samples(1);
  void* bands[] = {samples.data()};
  EXPECT_EQ(tesra.image.decode({0, 0, 1, 1}, 1, bands).status, 2011u);
  ASSERT_FALSE(tesra.image.setPassword("secret"));
  EXPECT_FALSE(tesra.image.decode({0, 0, 1, 1}, 1, bands));
}

/// Gives passwords one by one, and keeps what it was asked.
struct Passwords {
  std::vector<std::string> left;
  std::vector<bool> asked = {};

  GRIHostPasswordSource source() {
    return [this](bool wasWrong, GRIHostPassword& password) {
      asked.push_back(wasWrong);
      if (left.empty()) return false;
      for (const char byte : left.front()) password.append(byte);
      left.erase(left.begin());
      return true;
    };
  }
};

GR_STATUS decodeWith(OpenPicture& picture) {
  std::vector<gr_uint8> samples(1);
  void* bands[] = {samples.data()};
  return picture.image.decode({0, 0, 1, 1}, 1, bands).status;
}

TEST(GRIHostImageTest, ASourceIsAskedForThePasswordWhenItIsNeeded) {
  Passwords passwords{{"wrong", "secret"}};
  OpenPicture open({.bands = 1});
  open.image.setPasswordSource(passwords.source());
  EXPECT_EQ(decodeWith(open), 0u);
  EXPECT_TRUE(passwords.asked.empty());
  OpenPicture locked({.bands = 1, .isLocked = true});
  locked.image.setPasswordSource(passwords.source());
  EXPECT_EQ(decodeWith(locked), 0u);
  EXPECT_EQ(decodeWith(locked), 0u);
  EXPECT_EQ(passwords.asked, (std::vector<bool>{false, true}));
}

TEST(GRIHostImageTest, ASourceStaysWhenAPictureIsOpened) {
  Passwords passwords{{"secret"}};
  const FakeDirectory directory;
  FakePicture{.bands = 1, .isLocked = true}.writeTo(directory / "picture");
  GRIHostImage image;
  image.setPasswordSource(passwords.source());
  ASSERT_FALSE(image.open(directory / "picture"));
  gr_uint8 sample = 0;
  void* bands[] = {&sample};
  EXPECT_FALSE(image.decode({0, 0, 1, 1}, 1, bands));
  EXPECT_EQ(passwords.asked, std::vector<bool>{false});
}

TEST(GRIHostImageTest, APictureThatIsNotOpenRefusesEverything) {
  GRIHostImage image;
  GRIHostRecord record;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  EXPECT_FALSE(image.isOpen());
  EXPECT_EQ(image.sizeAt(1, width, height).status, 52001u);
  EXPECT_EQ(image.setPassword("secret").status, GRI_HOST_STATUS_OPERATION);
  EXPECT_EQ(image.decode({0, 0, 1, 1}, 1, nullptr).status, GRI_HOST_STATUS_DATATYPE);
  EXPECT_EQ(image.recordCount(), 0u);
  EXPECT_FALSE(image.record(0, record));
  EXPECT_FALSE(image.findRecord("IMAGE::WKT", record));
}

TEST(GRIHostImageTest, ASourceIsAskedThreeTimesAndThenNoMore) {
  Passwords passwords{{"a", "b", "c", "secret"}};
  OpenPicture locked({.bands = 1, .isLocked = true});
  locked.image.setPasswordSource(passwords.source());
  EXPECT_EQ(decodeWith(locked), 2011u);
  EXPECT_EQ(decodeWith(locked), 2011u);
  EXPECT_EQ(passwords.asked, (std::vector<bool>{false, true, true}));
}

TEST(GRIHostImageTest, ASourceThatGivesUpIsNotAskedAgain) {
  Passwords passwords{{"a"}};
  OpenPicture locked({.bands = 1, .isLocked = true});
  locked.image.setPasswordSource(passwords.source());
  EXPECT_EQ(decodeWith(locked), 2011u);
  EXPECT_EQ(decodeWith(locked), 2011u);
  EXPECT_EQ(passwords.asked, (std::vector<bool>{false, true}));
}

TEST(GRIHostImageTest, ASourceIsNotAskedForOtherFailures) {
  Passwords passwords{{"secret"}};
  OpenPicture damaged({.bands = 1, .damagedTo = 80, .isLocked = true});
  ASSERT_FALSE(damaged.image.setPassword("secret"));
  damaged.image.setPasswordSource(passwords.source());
  EXPECT_EQ(decodeWith(damaged), 2005u);
  EXPECT_TRUE(passwords.asked.empty());
}

TEST(GRIHostImageTest, RecordsAreFoundByNameAndNumber) {
  const OpenPicture open({.hasOddRecords = true});
  GRIHostRecord record;
  ASSERT_TRUE(open.image.findRecord("TEST::Matrix", record));
  EXPECT_EQ(record.count(), 6u);
  EXPECT_EQ(record.number(5), 6);
  EXPECT_FALSE(open.image.findRecord("TEST::None", record));
  EXPECT_FALSE(open.image.record(open.image.recordCount(), record));
}

TEST(GRIHostWindowTest, AWindowContainsWhatLiesInsideIt) {
  const GRIHostWindow whole{0, 0, 10, 10};
  EXPECT_TRUE(whole.contains({0, 0, 10, 10}));
  EXPECT_TRUE(whole.contains({9, 9, 1, 1}));
  EXPECT_FALSE(whole.contains({9, 9, 2, 1}));
  constexpr gr_uint32 LAST = std::numeric_limits<gr_uint32>::max();
  EXPECT_FALSE(whole.contains({1, 0, LAST, 1}));  // the end wraps round in 32 bits
}
