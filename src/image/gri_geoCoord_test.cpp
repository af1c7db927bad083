#include "image/gri_geoCoord.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_scene.h"
#include "tests/support/gri_commaLocale.h"

namespace {

const GRIGeoCoord GEO(1000.0, 2000.0, 0.5, -0.25, 0.125, 0.0625);

std::string worldFileOf(const char* image) {
  GRFileSpec worldFile;
  EXPECT_EQ(GRIGeoCoord::getWorldFileName(GRFileSpec(image), worldFile), GR_STATUS_OK);
  return worldFile.utf8();
}

GR_STATUS readText(GRIGeoCoord& geo, const std::string& text) {
  const auto stream = GRIOStreamUtils::openMemStream();
  const std::vector<gr_uint8> bytes(text.begin(), text.end());
  stream->write(bytes.data(), static_cast<gr_uint32>(bytes.size()));
  return geo.readWorldFile(*stream);
}

/// A folder that is gone with the test.
class Folder {
 public:
  Folder() {
    std::string name = testing::TempDir() + "/worldXXXXXX";
    m_path = mkdtemp(name.data());
  }
  ~Folder() { std::filesystem::remove_all(m_path); }
  std::string operator/(const char* name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};

TEST(GRIGeoCoordTest, StartsAtTheOriginWithNorthUp) {
  const GRIGeoCoord geo;
  EXPECT_TRUE(geo == GRIGeoCoord(0.0, 0.0, 1.0, -1.0, 0.0, 0.0));
  EXPECT_EQ(geo.getWKT(), nullptr);
}

TEST(GRIGeoCoordTest, MapsPixelsToTheGroundAndBack) {
  double x = 0, y = 0, col = 0, row = 0;
  ASSERT_EQ(GEO.pixelToGeo(10, 20, 0.5, x, y), GR_STATUS_OK);
  EXPECT_EQ(x, (10 * 0.5 + 20 * 0.125) * 2 + 1000);
  EXPECT_EQ(y, (10 * 0.0625 + 20 * -0.25) * 2 + 2000);
  ASSERT_EQ(GEO.geoToPixel(x, y, 0.5, col, row), GR_STATUS_OK);
  EXPECT_DOUBLE_EQ(col, 10);
  EXPECT_DOUBLE_EQ(row, 20);
}

TEST(GRIGeoCoordTest, AMapThatCannotBeInvertedGivesOneAndWritesNothing) {
  const GRIGeoCoord flat(0, 0, 2, 2, 2, 2);
  double col = 7, row = 8;
  EXPECT_EQ(flat.geoToPixel(1, 1, 1.0, col, row), GR_STATUS_FAILURE);
  EXPECT_EQ(col, 7);
  EXPECT_EQ(row, 8);
}

TEST(GRIGeoCoordTest, ASceneHasACoordinateOfItsOwn) {
  GRIGeoCoord image(GEO);
  image.setWKT("LOCAL_CS[\"x\"]");
  const GRIGeoCoord geo = image.getGeoCoord(GRIScene(10, 20, 5, 5, 0.5));
  EXPECT_EQ(geo.getXOrigin(), 1015.0);
  EXPECT_EQ(geo.getXResolution(), 1.0);
  EXPECT_EQ(geo.getYResolution(), -0.5);
  EXPECT_EQ(geo.getXRot(), 0.25);
  EXPECT_EQ(geo.getYRot(), 0.125);
  EXPECT_STREQ(geo.getWKT(), "LOCAL_CS[\"x\"]");
}

TEST(GRIGeoCoordTest, EqualityForgivesWhatTextAndRoundingLose) {
  EXPECT_TRUE(GRIGeoCoord(1e6, 0, 1, -1, 0, 0) == GRIGeoCoord(1e6 + 9e-5, 0, 1, -1, 0, 0));
  EXPECT_FALSE(GRIGeoCoord(1e6, 0, 1, -1, 0, 0) == GRIGeoCoord(1e6 + 2e-4, 0, 1, -1, 0, 0));
  EXPECT_TRUE(GRIGeoCoord(0, 0, 1, -1, 0, 0) == GRIGeoCoord(1e-6, 0, 1, -1, 0, 0));
  EXPECT_TRUE(GRIGeoCoord(0, 0, 1, -1, 0, 0) == GRIGeoCoord(0, 0, 1 + 9e-7, -1, 0, 0));
  EXPECT_FALSE(GRIGeoCoord(0, 0, 1, -1, 0, 0) == GRIGeoCoord(0, 0, 1 + 2e-6, -1, 0, 0));
  EXPECT_FALSE(GRIGeoCoord(0, 0, 1, -1, 0, 0) == GRIGeoCoord(0, 0, 1, -1, 1e-9, 0));
  GRIGeoCoord a, b;
  a.setWKT("A");
  EXPECT_FALSE(a == b);
  b.setWKT("A");
  EXPECT_TRUE(a == b);
  b.setWKT("B");
  EXPECT_FALSE(a == b);
}

TEST(GRIWorldFileTest, IsNamedAfterTheFirstAndLastLetterOfTheSuffix) {
  EXPECT_EQ(worldFileOf("a.tif"), "a.tfw");
  EXPECT_EQ(worldFileOf("A.TIF"), "A.TFW");
  EXPECT_EQ(worldFileOf("a.Tif"), "a.Tfw");
  EXPECT_EQ(worldFileOf("a.x"), "a.xxx");
  EXPECT_EQ(worldFileOf("a"), "a.xxx");
  EXPECT_EQ(worldFileOf("a.ntf"), "a.nfw");
  EXPECT_EQ(worldFileOf("a.NTF"), "a.NFW");
  EXPECT_EQ(worldFileOf("a.jp2"), "a.j2w");
  EXPECT_EQ(worldFileOf("a.JP2"), "a.J2w");
  EXPECT_EQ(worldFileOf("a.j2k"), "a.jkw");
  EXPECT_EQ(worldFileOf("a.tiff"), "a.tfw");
  GRFileSpec worldFile;
  EXPECT_EQ(GRIGeoCoord::getWorldFileName(GRFileSpec(), worldFile), GRI_STATUS_WORLD_FILE_NAME);
}

TEST(GRIWorldFileTest, HoldsResolutionsRotationsAndOriginInItsOwnOrder) {
  GRIGeoCoord geo;
  ASSERT_EQ(readText(geo, "0.5\n0.125\n0.0625\n-0.25\n1000\n2000\n"), GR_STATUS_OK);
  EXPECT_TRUE(geo == GEO);
  ASSERT_EQ(readText(geo, "  1e0\t+0 0\r\n-1.0 3 4 and more text"), GR_STATUS_OK);
  EXPECT_TRUE(geo == GRIGeoCoord(3, 4, 1, -1, 0, 0));
}

TEST(GRIWorldFileTest, FiveNumbersAreTooFewAndLeaveTheCoordinateAlone) {
  for (const char* text : {"1 2 3 4 5", "", "1 2 3 4 5 x", "1 2 3 4 5 .", "1 2 3 ; 4 5 6"}) {
    GRIGeoCoord geo(GEO);
    EXPECT_EQ(readText(geo, text), GRI_STATUS_READ_ERROR) << text;
    EXPECT_TRUE(geo == GEO);
  }
}

TEST(GRIWorldFileTest, TakesNumbersTooSmallForADoubleAsZero) {
  GRIGeoCoord geo;
  ASSERT_EQ(readText(geo, "1 1e-400 0 -1 3 4"), GR_STATUS_OK);
  EXPECT_EQ(geo.getXRot(), 0.0);
}

TEST(GRIWorldFileTest, EndsAtItsFirstZeroByte) {
  using namespace std::string_literals;
  GRIGeoCoord geo;
  EXPECT_EQ(readText(geo, "1 2 3 4 5\0 6"s), GRI_STATUS_READ_ERROR);
  EXPECT_EQ(readText(geo, "1 2 3 4 5 6\0 7"s), GR_STATUS_OK);
}

TEST(GRIWorldFileTest, HasPointsWhateverTheLocale) {
  const GRICommaLocale locale;
  if (!locale.isSet()) GTEST_SKIP() << "needs localedef";
  ASSERT_EQ(std::strtod("1,5", nullptr), 1.5);
  GRIGeoCoord geo;
  ASSERT_EQ(readText(geo, "0.5\n0.125\n0.0625\n-0.25\n1000\n2000.0\n"), GR_STATUS_OK);
  EXPECT_TRUE(geo == GEO);
  EXPECT_EQ(readText(geo, "0,5\n0,125\n0,0625\n-0,25\n1000\n2000\n"), GRI_STATUS_READ_ERROR);
  const Folder folder;
  ASSERT_EQ(GEO.writeWorldFile(GRFileSpec((folder / "a.tfw").c_str()), false), GR_STATUS_OK);
  std::string line;
  std::getline(std::ifstream(folder / "a.tfw"), line);
  EXPECT_EQ(line, "0.500000000000000");
}

TEST(GRIWorldFileTest, LinesMayBeLong) {
  constexpr size_t MIB = 1 << 20;
  GRIGeoCoord geo;
  const std::string digits = "0." + std::string(MIB, '3');
  ASSERT_EQ(readText(geo, digits + std::string(MIB, ' ') + " 2 3 4 5 6" + std::string(MIB, 'x')),
            GR_STATUS_OK);
  EXPECT_DOUBLE_EQ(geo.getXResolution(), 1.0 / 3);
  EXPECT_EQ(geo.getYOrigin(), 6.0);
  EXPECT_EQ(readText(geo, std::string(MIB, '\n')), GRI_STATUS_READ_ERROR);
  EXPECT_EQ(readText(geo, std::string(MIB, '-')), GRI_STATUS_READ_ERROR);
  EXPECT_EQ(readText(geo, std::string(MIB, '\0')), GRI_STATUS_READ_ERROR);
}

TEST(GRIWorldFileTest, NumbersThatAreNoneOrTooLargeAreStored) {
  GRIGeoCoord geo;
  ASSERT_EQ(readText(geo, "nan inf -inf 0 1e400 -1e400"), GR_STATUS_OK);
  EXPECT_TRUE(std::isnan(geo.getXResolution()));
  EXPECT_EQ(geo.getYResolution(), 0.0);
  EXPECT_EQ(geo.getXOrigin(), HUGE_VAL);
  EXPECT_EQ(geo.getYOrigin(), -HUGE_VAL);
}

TEST(GRIWorldFileTest, TheLargestNumbersCanBeWritten) {
  const Folder folder;
  const GRFileSpec path((folder / "a.tfw").c_str());
  const double most = std::numeric_limits<double>::max();
  const GRIGeoCoord large(-most, most, -most, most, -most, -HUGE_VAL);
  ASSERT_EQ(large.writeWorldFile(path, false), GR_STATUS_OK);
  GRIGeoCoord geo;
  bool found = false;
  ASSERT_EQ(geo.readWorldFile(path, false, found), GR_STATUS_OK);
  EXPECT_EQ(geo.getXOrigin(), -most);
  EXPECT_EQ(geo.getYResolution(), most);
  EXPECT_EQ(geo.getYRot(), -HUGE_VAL);
}

/// A stream that claims to be long and has nothing.
class ClaimingStream final : public GRIOStreamInf {
 public:
  explicit ClaimingStream(gr_int64 length) : m_length(length) {}
  bool isEOF() override { return true; }
  bool isOpen() override { return true; }
  GR_STATUS open() override { return GR_STATUS_OK; }
  GR_STATUS close() override { return GR_STATUS_OK; }
  gr_uint32 read(gr_uint8*, gr_uint32) override { return 0; }
  gr_uint32 write(const gr_uint8*, gr_uint32) override { return 0; }
  GR_STATUS seek(gr_int64, GRIOSeekDir origin) override {
    m_position = origin == GRIO_SEEK_END ? m_length : 0;
    return GR_STATUS_OK;
  }
  gr_int64 tell() override { return m_position; }
  GRIOStreamInf* duplicate() override { return nullptr; }
  GR_STATUS getLastError() override { return lastError; }
  const char* getID() override { return "claiming:"; }

  GR_STATUS lastError = GR_STATUS_OK;

 private:
  gr_int64 m_length;
  gr_int64 m_position = 0;
};

TEST(GRIWorldFileTest, AStreamOf2GiBOrMoreIsAReadError) {
  ClaimingStream stream(0x80000000);
  stream.lastError = 4711;
  GRIGeoCoord geo(GEO);
  EXPECT_EQ(geo.readWorldFile(stream), GRI_STATUS_READ_ERROR);
  EXPECT_TRUE(geo == GEO);
}

TEST(GRIWorldFileTest, AShortReadGivesTheStreamsReasonOrElseAReadError) {
  ClaimingStream stream(0x7FFFFFFF);
  GRIGeoCoord geo(GEO);
  EXPECT_EQ(geo.readWorldFile(stream), GRI_STATUS_READ_ERROR);
  stream.lastError = 4711;
  EXPECT_EQ(geo.readWorldFile(stream), 4711u);
  EXPECT_TRUE(geo == GEO);
}

TEST(GRIWorldFileTest, ReadingKeepsTheWKT) {
  GRIGeoCoord geo;
  geo.setWKT("W");
  ASSERT_EQ(readText(geo, "1 0 0 -1 5 6"), GR_STATUS_OK);
  EXPECT_STREQ(geo.getWKT(), "W");
}

TEST(GRIWorldFileTest, ComesBackAsItWasWritten) {
  const Folder folder;
  const GRFileSpec image((folder / "a.tif").c_str());
  ASSERT_EQ(GEO.writeWorldFile(image, true), GR_STATUS_OK);
  std::ifstream in(folder / "a.tfw");
  std::stringstream text;
  text << in.rdbuf();
  EXPECT_EQ(text.str(),
            "0.500000000000000\n0.125000000000000\n0.062500000000000\n-0.250000000000000\n"
            "1000.000000000000000\n2000.000000000000000\n");
  GRIGeoCoord geo;
  bool found = false;
  ASSERT_EQ(geo.readWorldFile(image, true, found), GR_STATUS_OK);
  EXPECT_TRUE(found);
  EXPECT_TRUE(geo == GEO);
}

TEST(GRIWorldFileTest, AMissingFileIsNoFailure) {
  const Folder folder;
  GRIGeoCoord geo(GEO);
  bool found = true;
  EXPECT_EQ(geo.readWorldFile(GRFileSpec((folder / "a.tif").c_str()), true, found), GR_STATUS_OK);
  EXPECT_FALSE(found);
  EXPECT_TRUE(geo == GEO);
}

TEST(GRIWorldFileTest, AFileThatCannotBeOpenedIsAReadError) {
  const Folder folder;
  std::filesystem::create_directory(folder / "a.tfw");  // exists, but isn't a file
  GRIGeoCoord geo(GEO);
  bool found = false;
  EXPECT_EQ(geo.readWorldFile(GRFileSpec((folder / "a.tif").c_str()), true, found),
            GRI_STATUS_READ_ERROR);
  EXPECT_TRUE(geo == GEO);
}

TEST(GRIWorldFileTest, AFileThatCannotBeMadeIsAWriteError) {
  const Folder folder;
  EXPECT_EQ(GEO.writeWorldFile(GRFileSpec((folder / "no/such/a.tfw").c_str()), false),
            GRI_STATUS_WRITE_ERROR);
}

}  // namespace
