#include <gmock/gmock.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "gri_rdk_cdll/gri_fakeStage.h"

namespace {

/// The bands of a decode, each with exactly the samples that it needs.
class Bands {
 public:
  explicit Bands(size_t samples) : m_planes(FakeStage::BANDS, std::vector<gr_uint16>(samples)) {
    for (auto& plane : m_planes) m_pointers.push_back(plane.data());
  }
  void** pointers() { return m_pointers.data(); }
  const std::vector<gr_uint16>& plane(size_t band) const { return m_planes[band]; }

 private:
  std::vector<std::vector<gr_uint16>> m_planes;
  std::vector<void*> m_pointers;
};

/// What a decode of a rectangle must give in one band.
std::vector<gr_uint16> expectedPlane(gr_uint32 band, gr_uint32 column, gr_uint32 row,
                                     gr_uint32 columns, gr_uint32 rows) {
  std::vector<gr_uint16> plane;
  for (gr_uint32 r = row; r < row + rows; ++r) {
    for (gr_uint32 c = column; c < column + columns; ++c) {
      plane.push_back(FakeStage::sampleAt(band, c, r));
    }
  }
  return plane;
}

class ImageFunctionsTest : public testing::Test {
 public:
  ~ImageFunctionsTest() override {
    EXPECT_EQ(gric_closeImage(m_image), 0u);
    EXPECT_EQ(FakeStage::s_alive, 0);
  }

 protected:
  gric_image m_image = FakeStage::open();
};

TEST(VersionFunctionTest, GivesTheVersion) {
  gr_uint32 major = 0;
  gr_uint32 minor = 9;
  gr_uint32 tweak = 9;
  gr_uint32 build = 0;
  const char* branch = nullptr;
  EXPECT_EQ(gric_getVersion(&major, &minor, &tweak, &build, &branch), 0u);
  EXPECT_EQ(major, 7u);
  EXPECT_EQ(minor, 0u);
  EXPECT_EQ(tweak, 0u);
  EXPECT_EQ(build, 2181u);
  EXPECT_STREQ(branch, "HEAD");
}

TEST(VersionFunctionTest, AgreesWithTheBuild) {
  gr_uint32 numbers[4] = {};
  const char* branch = nullptr;
  ASSERT_EQ(gric_getVersion(&numbers[0], &numbers[1], &numbers[2], &numbers[3], &branch), 0u);
  const std::string version = std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." +
                              std::to_string(numbers[2]) + "." + std::to_string(numbers[3]);
  EXPECT_EQ(version, GRI_PROJECT_VERSION);
}

TEST(VersionFunctionTest, TestsMajorAndBranchAlone) {
  gr_uint32 number = 0;
  const char* branch = nullptr;
  EXPECT_EQ(gric_getVersion(nullptr, &number, &number, &number, &branch), 52001u);
  EXPECT_EQ(gric_getVersion(nullptr, nullptr, nullptr, nullptr, nullptr), 52001u);
  EXPECT_EQ(gric_getVersion(&number, &number, &number, &number, nullptr), 52001u);
}

TEST(VersionFunctionDeathTest, CrashesForANullInBetween) {
  gr_uint32 number = 0;
  const char* branch = nullptr;
  EXPECT_DEATH(gric_getVersion(&number, nullptr, nullptr, nullptr, &branch), "");
  EXPECT_DEATH(gric_getVersion(&number, nullptr, &number, &number, &branch), "");
  EXPECT_DEATH(gric_getVersion(&number, &number, nullptr, &number, &branch), "");
  EXPECT_DEATH(gric_getVersion(&number, &number, &number, nullptr, &branch), "");
}

TEST(NullHandleTest, HasNoPropertiesAndNoStatus) {
  EXPECT_EQ(gric_getWidth(nullptr), 0u);
  EXPECT_EQ(gric_getHeight(nullptr), 0u);
  EXPECT_EQ(gric_getNumBands(nullptr), 0);
  EXPECT_EQ(gric_getColorSpace(nullptr), 0);
  EXPECT_EQ(gric_getDataType(nullptr), 0);
  EXPECT_EQ(gric_getMinMagnification(nullptr), 0.0);
  EXPECT_EQ(gric_getMaxMagnification(nullptr), 0.0);
  EXPECT_EQ(gric_getGeoXOrigin(nullptr), 0.0);
  EXPECT_EQ(gric_getGeoYOrigin(nullptr), 0.0);
  EXPECT_EQ(gric_getGeoXResolution(nullptr), 0.0);
  EXPECT_EQ(gric_getGeoYResolution(nullptr), 0.0);
  EXPECT_EQ(gric_getGeoXRotation(nullptr), 0.0);
  EXPECT_EQ(gric_getGeoYRotation(nullptr), 0.0);
  EXPECT_EQ(gric_getNumMetadataRecords(nullptr), 0u);
  EXPECT_EQ(gric_isTesraLocked(nullptr), 0);
}

TEST(NullHandleTest, IsANullArgumentToWhatReturnsAStatus) {
  gr_uint32 size = 77;
  void* band = &size;
  EXPECT_EQ(gric_closeImage(nullptr), 52001u);
  EXPECT_EQ(gric_getDimsAtMag(nullptr, 1.0, &size, &size), 52001u);
  EXPECT_EQ(gric_setTesraPassword(nullptr, "x"), 52001u);
  EXPECT_EQ(gric_decode(nullptr, 0, 0, 1, 1, 1, &band), 52001u);
  EXPECT_EQ(size, 77u);
  EXPECT_STREQ(getLastStatusString(52001), "unknown status [52001]");
}

TEST_F(ImageFunctionsTest, GiveThePropertiesOfTheStage) {
  EXPECT_EQ(gric_getWidth(m_image), 100u);
  EXPECT_EQ(gric_getHeight(m_image), 70u);
  EXPECT_EQ(gric_getNumBands(m_image), 3);
  EXPECT_EQ(gric_getColorSpace(m_image), GRIC_COLORSPACE_RGB);
  EXPECT_EQ(gric_getDataType(m_image), GRIC_DATATYPE_UINT16);
  EXPECT_EQ(gric_getMinMagnification(m_image), 0.25);
  EXPECT_EQ(gric_getMaxMagnification(m_image), 1.0);
}

TEST_F(ImageFunctionsTest, AnswerForAPictureWithoutAPosition) {
  EXPECT_EQ(gric_getGeoXOrigin(m_image), 0.0);
  EXPECT_EQ(gric_getGeoYOrigin(m_image), 69.0);
  EXPECT_EQ(gric_getGeoXResolution(m_image), 1.0);
  EXPECT_EQ(gric_getGeoYResolution(m_image), -1.0);
  EXPECT_EQ(gric_getGeoXRotation(m_image), 0.0);
  EXPECT_EQ(gric_getGeoYRotation(m_image), 0.0);
}

TEST_F(ImageFunctionsTest, GiveEachPartOfAPosition) {
  ASSERT_EQ(FakeStage::of(m_image).setGeoCoord(GRIGeoCoord(10, 20, 2, -3, 0.5, 0.25)),
            GR_STATUS_OK);
  EXPECT_EQ(gric_getGeoXOrigin(m_image), 10.0);
  EXPECT_EQ(gric_getGeoYOrigin(m_image), 20.0);
  EXPECT_EQ(gric_getGeoXResolution(m_image), 2.0);
  EXPECT_EQ(gric_getGeoYResolution(m_image), -3.0);
  EXPECT_EQ(gric_getGeoXRotation(m_image), 0.5);
  EXPECT_EQ(gric_getGeoYRotation(m_image), 0.25);
}

TEST_F(ImageFunctionsTest, GiveTheSizeAtAMagnification) {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  EXPECT_EQ(gric_getDimsAtMag(m_image, 0.5, &width, &height), 0u);
  EXPECT_EQ(width, 50u);
  EXPECT_EQ(height, 35u);
}

TEST_F(ImageFunctionsTest, LeaveTheSizeAloneWhenThereIsNone) {
  gr_uint32 width = 77;
  gr_uint32 height = 77;
  EXPECT_EQ(gric_getDimsAtMag(m_image, 0.125, &width, &height), 3u);
  EXPECT_EQ(gric_getDimsAtMag(m_image, 2.0, &width, &height), 3u);
  EXPECT_EQ(gric_getDimsAtMag(m_image, std::nan(""), &width, &height), 3u);
  EXPECT_EQ(gric_getDimsAtMag(m_image, 1.0, nullptr, &height), 52001u);
  EXPECT_EQ(gric_getDimsAtMag(m_image, 1.0, &width, nullptr), 52001u);
  EXPECT_EQ(width, 77u);
  EXPECT_EQ(height, 77u);
}

TEST_F(ImageFunctionsTest, DecodeTheWholePictureInStrips) {
  Bands bands(size_t{100} * 70);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 100, 70, 1.0, bands.pointers()), 0u);
  for (gr_uint32 band = 0; band < 3; ++band) {
    EXPECT_EQ(bands.plane(band), expectedPlane(band, 0, 0, 100, 70));
  }
}

TEST_F(ImageFunctionsTest, DecodeARectangleIntoExactlyItsBuffer) {
  Bands bands(size_t{7} * 33);
  EXPECT_EQ(gric_decode(m_image, 11, 20, 7, 33, 1.0, bands.pointers()), 0u);
  for (gr_uint32 band = 0; band < 3; ++band) {
    EXPECT_EQ(bands.plane(band), expectedPlane(band, 11, 20, 7, 33));
  }
}

TEST_F(ImageFunctionsTest, DecodeTwiceOnOneHandle) {
  Bands bands(4);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 2, 2, 1.0, bands.pointers()), 0u);
  EXPECT_EQ(gric_decode(m_image, 2, 2, 2, 2, 1.0, bands.pointers()), 0u);
  EXPECT_EQ(bands.plane(0), expectedPlane(0, 2, 2, 2, 2));
  EXPECT_EQ(FakeStage::of(m_image).begins, 2);
  EXPECT_EQ(FakeStage::of(m_image).ends, 2);
}

TEST_F(ImageFunctionsTest, RefuseNullBuffers) {
  Bands bands(1);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 1, 1, 1.0, nullptr), 52001u);
  for (size_t band = 0; band < 3; ++band) {
    std::vector<void*> pointers(bands.pointers(), bands.pointers() + 3);
    pointers[band] = nullptr;
    EXPECT_EQ(gric_decode(m_image, 0, 0, 1, 1, 1.0, pointers.data()), 52001u);
  }
  EXPECT_EQ(FakeStage::of(m_image).begins, 0);
}

TEST_F(ImageFunctionsTest, RefuseScenesThatTheImageCannotServe) {
  Bands bands(size_t{100} * 70);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 0, 0, 1.0, bands.pointers()), 50013u);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 5, 0, 1.0, bands.pointers()), 50013u);
  EXPECT_EQ(gric_decode(m_image, 500, 500, 10, 10, 1.0, bands.pointers()), 50013u);
  EXPECT_EQ(gric_decode(m_image, 95, 0, 10, 10, 1.0, bands.pointers()), 50014u);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 10, 10, 0.125, bands.pointers()), 50015u);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 10, 10, 2.0, bands.pointers()), 50015u);
  EXPECT_EQ(FakeStage::of(m_image).begins, 0);
}

TEST_F(ImageFunctionsTest, RoundTheEdgesOfARectangleHalvesUp) {
  Bands bands(6);
  EXPECT_EQ(gric_decode(m_image, 10.5, -0.5, 2.0, 3.0, 1.0, bands.pointers()), 0u);
  EXPECT_EQ(bands.plane(1), expectedPlane(1, 11, 0, 2, 3));
  EXPECT_EQ(gric_decode(m_image, 10.1, 0, 0.3, 3, 1.0, bands.pointers()), 50012u);  // no column
}

TEST_F(ImageFunctionsTest, HandTheStatusOfTheStageThroughAndStayUsable) {
  Bands bands(4);
  FakeStage::of(m_image).stripStatus = 51204;
  EXPECT_EQ(gric_decode(m_image, 0, 0, 2, 2, 1.0, bands.pointers()), 51204u);
  EXPECT_EQ(FakeStage::of(m_image).ends, 1);
  FakeStage::of(m_image).stripStatus = 0;
  EXPECT_EQ(gric_decode(m_image, 0, 0, 2, 2, 1.0, bands.pointers()), 0u);
}

/// The five numbers of a decode, and what becomes of them in a build without assertions.
struct BadNumbers {
  double column, row, width, height, magnification;
  GR_STATUS status;
};

std::vector<BadNumbers> badNumbers() {
  constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
  constexpr double ENDLESS = std::numeric_limits<double>::infinity();
  return {{NONE, 0, 1, 1, 1, 50013},    {0, NONE, 1, 1, 1, 50013},    {0, 0, NONE, 1, 1, 50013},
          {0, 0, 1, NONE, 1, 50013},    {0, 0, 1, 1, NONE, 50013},    {-ENDLESS, 0, 1, 1, 1, 50013},
          {0, 0, ENDLESS, 1, 1, 50013}, {0, 0, 1, 1, ENDLESS, 50013}, {0, 0, -1, 1, 1, 50013},
          {0, 0, 1, -0.001, 1, 50013},  {0, 0, 1, 1, 0, 50015},       {0, 0, 1, 1, -1, 50015}};
}

using ImageFunctionsDeathTest = ImageFunctionsTest;

TEST_F(ImageFunctionsDeathTest, NeverComputeWithNumbersThatMakeNoScene) {
  Bands bands(1);
  for (const BadNumbers& bad : badNumbers()) {
#ifdef NDEBUG
    EXPECT_EQ(gric_decode(m_image, bad.column, bad.row, bad.width, bad.height, bad.magnification,
                          bands.pointers()),
              bad.status);
#else
    EXPECT_DEATH(gric_decode(m_image, bad.column, bad.row, bad.width, bad.height, bad.magnification,
                             bands.pointers()),
                 "");
#endif
  }
}

TEST_F(ImageFunctionsTest, SurviveHugeNumbers) {
  Bands bands(1);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 1e300, 1e300, 1.0, bands.pointers()), 50014u);
  EXPECT_EQ(gric_decode(m_image, -1e300, -1e300, 1, 1, 1.0, bands.pointers()), 50013u);
  EXPECT_EQ(gric_decode(m_image, 0, 0, 1, 1, 1e300, bands.pointers()), 50015u);
}

TEST_F(ImageFunctionsTest, GiveMetadataRecordsByTheirNumber) {
  const char* tag = nullptr;
  gr_int32 dataType = 0;
  gr_uint32 numDims = 0;
  const gr_uint32* dims = nullptr;
  const void* data = nullptr;
  ASSERT_EQ(gric_getNumMetadataRecords(m_image), 2u);
  ASSERT_EQ(gric_getMetadataRecord(m_image, 0, &tag, &dataType, &numDims, &dims, &data), 0u);
  EXPECT_STREQ(tag, "FAKE::NAME");
  EXPECT_EQ(dataType, GRIC_METADATA_DATATYPE_ASCII);
  ASSERT_EQ(numDims, 1u);
  EXPECT_EQ(dims[0], 1u);
  EXPECT_STREQ(*static_cast<const char* const*>(data), "a picture");

  ASSERT_EQ(gric_getMetadataRecord(m_image, 1, &tag, &dataType, &numDims, &dims, &data), 0u);
  EXPECT_STREQ(tag, "FAKE::MATRIX");
  EXPECT_EQ(dataType, GRIC_METADATA_DATATYPE_FLOAT64);
  ASSERT_EQ(numDims, 2u);
  EXPECT_EQ(dims[0], 2u);
  EXPECT_EQ(dims[1], 3u);
  const auto* const values = static_cast<const double*>(data);
  EXPECT_THAT(std::vector<double>(values, values + 6), testing::ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(ImageFunctionsTest, WriteNothingForARecordThatIsNotThere) {
  const char* const text = "untouched";
  const char* tag = text;
  gr_int32 dataType = 77;
  gr_uint32 numDims = 77;
  const gr_uint32* dims = &numDims;
  const void* data = text;
  for (const gr_uint32 index : {2u, 0xFFFFFFFFu}) {
    EXPECT_EQ(gric_getMetadataRecord(m_image, index, &tag, &dataType, &numDims, &dims, &data),
              50503u);
  }
  EXPECT_EQ(tag, text);
  EXPECT_EQ(dataType, 77);
  EXPECT_EQ(numDims, 77u);
  EXPECT_EQ(dims, &numDims);
  EXPECT_EQ(data, text);
}

TEST_F(ImageFunctionsTest, RefuseNullForAnyPartOfARecord) {
  const char* tag = nullptr;
  gr_int32 type = 0;
  gr_uint32 count = 0;
  const gr_uint32* dims = nullptr;
  const void* data = nullptr;
  EXPECT_EQ(gric_getMetadataRecord(nullptr, 0, &tag, &type, &count, &dims, &data), 52001u);
  EXPECT_EQ(gric_getMetadataRecord(m_image, 0, nullptr, &type, &count, &dims, &data), 52001u);
  EXPECT_EQ(gric_getMetadataRecord(m_image, 0, &tag, nullptr, &count, &dims, &data), 52001u);
  EXPECT_EQ(gric_getMetadataRecord(m_image, 0, &tag, &type, nullptr, &dims, &data), 52001u);
  EXPECT_EQ(gric_getMetadataRecord(m_image, 0, &tag, &type, &count, nullptr, &data), 52001u);
  EXPECT_EQ(gric_getMetadataRecord(m_image, 0, &tag, &type, &count, &dims, nullptr), 52001u);
}

TEST_F(ImageFunctionsTest, KnowThatOtherPicturesAreNotLockedAndTakeNoPassword) {
  EXPECT_EQ(gric_isTesraLocked(m_image), 0);
  EXPECT_EQ(gric_setTesraPassword(m_image, "secret"), 50002u);
  EXPECT_EQ(gric_setTesraPassword(m_image, nullptr), 52001u);
}

TEST_F(ImageFunctionsTest, CloseOnlyWithTheLastReference) {
  gri_stageOf(m_image).retain();
  EXPECT_EQ(gric_closeImage(m_image), 0u);
  EXPECT_EQ(FakeStage::s_alive, 1);
}

/// A handle that no open function has made: shows who writes there.
gric_image staleHandle() {
  static int something = 0;
  return static_cast<gric_image>(static_cast<void*>(&something));
}

TEST(OpenFunctionsTest, RefuseNullArgumentsAndWriteNothing) {
  gric_image image = staleHandle();
  EXPECT_EQ(gric_openTesraImageFile(nullptr, "x"), 52001u);
  EXPECT_EQ(gric_openTesraImageFile(&image, nullptr), 52001u);
  EXPECT_EQ(gric_openTesraImageStream(&image, nullptr), 52001u);
  EXPECT_EQ(gric_openJP2ImageFile(nullptr, "x"), 52001u);
  EXPECT_EQ(gric_openJP2ImageFile(&image, nullptr), 52001u);
  EXPECT_EQ(gric_openJP2ImageStream(&image, nullptr), 52001u);
  EXPECT_EQ(gric_openNITFImageFile(nullptr, "x"), 52001u);
  EXPECT_EQ(gric_openNITFImageFile(&image, nullptr), 52001u);
  EXPECT_EQ(image, staleHandle());
}

/// A stream of a host's that can't be opened.
class UselessStream {
 public:
  UselessStream() = default;
  UselessStream(const UselessStream&) = delete;
  UselessStream& operator=(const UselessStream&) = delete;
  ~UselessStream() { gr_ioCStreamDestroy(m_handle); }

  gr_ioCStream handle() const { return m_handle; }

 private:
  static gr_int32 refuse(void*) { return 5; }
  static gr_uint8 isNever(void*) { return 0; }

  gr_ioCStream m_handle = gr_ioCallbackStreamCreate(refuse, refuse, nullptr, nullptr, nullptr,
                                                    nullptr, isNever, isNever, nullptr, nullptr);
};

TEST(OpenFunctionsTest, RefuseANullHandleForAStream) {
  const UselessStream stream;
  EXPECT_EQ(gric_openTesraImageStream(nullptr, stream.handle()), 52001u);
  EXPECT_EQ(gric_openJP2ImageStream(nullptr, stream.handle()), 52001u);
}

TEST(OpenFunctionsTest, LeaveANullHandleWhenTheyFail) {
  for (const auto open : {gric_openTesraImageFile, gric_openJP2ImageFile, gric_openNITFImageFile}) {
    gric_image image = staleHandle();
    EXPECT_NE(open(&image, "/no such file"), 0u);
    EXPECT_EQ(image, nullptr);
  }
  const UselessStream stream;
  for (const auto open : {gric_openTesraImageStream, gric_openJP2ImageStream}) {
    gric_image image = staleHandle();
    EXPECT_NE(open(&image, stream.handle()), 0u);
    EXPECT_EQ(image, nullptr);
  }
}

TEST(OpenFunctionsTest, CannotOpenATesraStreamThatRefuses) {
  const UselessStream stream;
  gric_image image = nullptr;
  EXPECT_EQ(gric_openTesraImageStream(&image, stream.handle()), 50613u);
}

/// What opening a Tesra file of these bytes gives.
GR_STATUS statusOfTesraFile(const std::string& bytes, gric_image& image) {
  const std::filesystem::path path = testing::TempDir() + "gri_tesra_" + std::to_string(getpid());
  std::ofstream(path, std::ios::binary) << bytes;
  const GR_STATUS status = gric_openTesraImageFile(&image, path.c_str());
  std::filesystem::remove(path);
  return status;
}

TEST(OpenFunctionsTest, RefuseAFileThatIsNoTesraImage) {
  // Without a packet, so without an image; but a Tesra file.
  const std::string empty("tsra\3\0\x1At", 8);
  gric_image image = staleHandle();
  EXPECT_EQ(statusOfTesraFile(empty, image), 3u);
  for (size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    std::string other = empty;
    other[i] = static_cast<char>(other[i] ^ 1);
    image = staleHandle();
    EXPECT_EQ(statusOfTesraFile(other, image), 50607u);
    EXPECT_EQ(image, nullptr);
  }
}

TEST(OpenFunctionsTest, RefuseANitfFileThatIsNotThere) {
  gric_image image = nullptr;
  EXPECT_EQ(gric_openNITFImageFile(&image, "/no such.ntf"), 51203u);
  EXPECT_EQ(gric_openNITFImageFile(&image, "/"), 51203u);
  EXPECT_EQ(image, nullptr);
}

TEST(OpenFunctionsTest, HaveNoReaderOfJpeg2000Yet) {
  gric_image image = nullptr;
  EXPECT_EQ(gric_openJP2ImageFile(&image, "/no such.jp2"), 50002u);
  EXPECT_EQ(image, nullptr);
}

TEST(OpenFunctionsTest, KeepThePathWhenMessagesAreTurnedOnTwice) {
  ASSERT_EQ(initializeStatusStrings(), 0u);
  gric_image image = nullptr;
  EXPECT_EQ(gric_openTesraImageFile(&image, "/no such.tsr"), 50613u);
  EXPECT_EQ(initializeStatusStrings(), 3070u);
  EXPECT_STREQ(getLastStatusString(50613), "can't open file: /no such.tsr [50613]");
  EXPECT_EQ(terminateStatusStrings(), 0u);
}

TEST(OpenFunctionsTest, TellThePathOfATesraFileThatCannotBeOpened) {
  ASSERT_EQ(initializeStatusStrings(), 0u);
  gric_image image = nullptr;
  EXPECT_EQ(gric_openTesraImageFile(&image, "/no such.tsr"), 50613u);
  EXPECT_STREQ(getLastStatusString(50613), "can't open file: /no such.tsr [50613]");
  EXPECT_STREQ(getLastStatusString(50613), "error retrieving status string (3070) [50613]");
  EXPECT_EQ(terminateStatusStrings(), 0u);
  EXPECT_EQ(gric_openTesraImageFile(&image, "/no such.tsr"), 50613u);
  EXPECT_STREQ(getLastStatusString(50613), "can't open file: %F [50613]");
}

}  // namespace
