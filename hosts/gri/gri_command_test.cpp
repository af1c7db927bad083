#include "hosts/gri/gri_command.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/gri/gri_exitCodes.h"
#include "tests/support/fake_gri.h"

namespace {

using Names = std::vector<std::string>;
using testing::Test;

/// The command over the fake library, in a directory of its own.
class GRICommandTest : public Test {
 protected:
  struct Result {
    int exitCode;
    std::string out;
    std::string err;
  };

  static Result run(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"gri"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode = gri_run(static_cast<int>(argv.size()), argv.data(), out, err);
    return {exitCode, out.str(), err.str()};
  }

  std::string path(const std::string& name) const { return directory / name; }

  /// Writes the picture as IN, converts it with `options` to `output`, and expects success.
  void convert(const FakePicture& picture, const std::string& output,
               std::vector<std::string> options = {}) {
    picture.writeTo(path("IN"));
    options.insert(options.begin(), {"convert", path("IN"), path(output)});
    const Result result = run(options);
    EXPECT_EQ(result.exitCode, GRI_EXIT_DONE) << result.err;
    EXPECT_EQ(result.err, "");
    std::filesystem::remove(path("IN"));
  }

  Result convertFails(const FakePicture& picture, const std::string& output,
                      std::vector<std::string> options = {}) {
    picture.writeTo(path("IN"));
    options.insert(options.begin(), {"convert", path("IN"), path(output)});
    Result result = run(options);
    std::filesystem::remove(path("IN"));
    EXPECT_EQ(directory.names(), Names());
    return result;
  }

  std::vector<gr_uint8> bytesOf(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::unique_ptr<GDALDataset> opened(const std::string& name) const {
    return std::unique_ptr<GDALDataset>(GDALDataset::Open(path(name).c_str()));
  }

  FakeDirectory directory;
};

int sampleOf(GDALDataset& dataset, int band, int column, int row) {
  int sample = -1;
  EXPECT_EQ(dataset.GetRasterBand(band)->RasterIO(GF_Read, column, row, 1, 1, &sample, 1, 1,
                                                  GDT_Int32, 0, 0, nullptr),
            CE_None);
  return sample;
}

}  // namespace

TEST_F(GRICommandTest, WritesAPngWithoutSideFiles) {
  convert({.position = {1, 2, 3, -4, 0, 0}, .noData = {1, 2, 3}}, "a.png");
  EXPECT_EQ(directory.names(), Names{"a.png"});
  const auto png = opened("a.png");
  ASSERT_NE(png, nullptr);
  EXPECT_EQ(png->GetRasterXSize(), 100);
  EXPECT_EQ(sampleOf(*png, 2, 99, 79), fake_sample(1, 99, 79, 0));
}

TEST_F(GRICommandTest, AGeoTiffKeepsPositionCoordinateSystemAndNoData) {
  convert(
      {.position = {10.5, 19.5, 1, -1, 0, 0}, .wkt = SRS_WKT_WGS84_LAT_LONG, .noData = {7, 7, 7}},
      "a.tif");
  const auto tiff = opened("a.tif");
  std::array<double, 6> transform{};
  ASSERT_EQ(tiff->GetGeoTransform(transform.data()), CE_None);
  EXPECT_EQ(transform, (std::array<double, 6>{10, 1, 0, 20, 0, -1}));
  EXPECT_STREQ(tiff->GetSpatialRef()->GetName(), "WGS 84");
  EXPECT_EQ(tiff->GetRasterBand(1)->GetNoDataValue(), 7);
}

TEST_F(GRICommandTest, RawIsBandAfterBandAndOnRequestPixelAfterPixel) {
  const FakePicture picture{.width = 3, .height = 2};
  convert(picture, "a.raw");
  convert(picture, "b.raw", {"--co", "INTERLEAVE=PIXEL"});
  std::vector<gr_uint8> bands;
  std::vector<gr_uint8> pixels;
  const auto sample = [](gr_uint32 band, gr_uint32 column, gr_uint32 row) {
    return static_cast<gr_uint8>(fake_sample(band, column, row, 0));
  };
  for (gr_uint32 band = 0; band < 3; ++band) {
    for (gr_uint32 i = 0; i < 6; ++i) bands.push_back(sample(band, i % 3, i / 3));
  }
  for (gr_uint32 i = 0; i < 6; ++i) {
    for (gr_uint32 band = 0; band < 3; ++band) pixels.push_back(sample(band, i % 3, i / 3));
  }
  EXPECT_EQ(bytesOf("a.raw"), bands);
  EXPECT_EQ(bytesOf("b.raw"), pixels);
}

TEST_F(GRICommandTest, RawKeepsEverySampleTypeLittleEndian) {
  const auto raw = [&](gr_int32 type) {
    convert({.width = 2,
             .height = 1,
             .bands = 1,
             .colorSpace = GRIC_COLORSPACE_GRAYSCALE,
             .dataType = type},
            "a.raw", {"--force"});
    return bytesOf("a.raw");
  };
  const auto second = static_cast<gr_uint8>(fake_sample(0, 1, 0, 0));
  EXPECT_EQ(raw(GRIC_DATATYPE_SINT8), (std::vector<gr_uint8>{0, second}));
  EXPECT_EQ(raw(GRIC_DATATYPE_UINT16), (std::vector<gr_uint8>{0, 0, second, 0}));
  EXPECT_EQ(raw(GRIC_DATATYPE_SINT64).size(), 16u);
}

TEST_F(GRICommandTest, RawInManyStripsIsWholeAndInOrder) {
  const FakePicture picture{
      .width = 3001, .height = 1203, .bands = 9, .colorSpace = GRIC_COLORSPACE_MULTISPECTRAL};
  convert(picture, "a.raw");
  const auto bytes = bytesOf("a.raw");
  ASSERT_EQ(bytes.size(), 3001u * 1203 * 9);
  for (size_t i = 0; i < bytes.size(); i += 997) {
    const auto column = static_cast<gr_uint32>(i % 3001);
    const auto row = static_cast<gr_uint32>(i / 3001 % 1203);
    const auto band = static_cast<gr_uint32>(i / 3001 / 1203);
    ASSERT_EQ(bytes[i], fake_sample(band, column, row, 0)) << column << ' ' << row << ' ' << band;
  }
}

TEST_F(GRICommandTest, WindowMagnificationAndBandsAreTaken) {
  convert({}, "a.tif", {"--window", "20", "10", "40", "20", "--mag", "1/2", "-b", "3,1"});
  const auto tiff = opened("a.tif");
  ASSERT_EQ(tiff->GetRasterCount(), 2);
  EXPECT_EQ(tiff->GetRasterXSize(), 20);
  EXPECT_EQ(sampleOf(*tiff, 1, 0, 0), fake_sample(2, 10, 5, 1));
  EXPECT_EQ(sampleOf(*tiff, 2, 19, 9), fake_sample(0, 29, 14, 1));
}

TEST_F(GRICommandTest, AnySizeIsResampled) {
  convert({.minMagnification = 1}, "a.png", {"--size", "33x"});
  const auto png = opened("a.png");
  EXPECT_EQ(png->GetRasterXSize(), 33);
  EXPECT_EQ(png->GetRasterYSize(), 26);
}

TEST_F(GRICommandTest, ReducingTakesTheMeanOfThePixels) {
  const FakePicture picture{.width = 8, .height = 8, .minMagnification = 1};
  convert(picture, "a.tif", {"--mag", "1/4"});
  const auto tiff = opened("a.tif");
  double sum = 0;
  for (gr_uint32 row = 4; row < 8; ++row) {
    for (gr_uint32 column = 0; column < 4; ++column) sum += fake_sample(1, column, row, 0);
  }
  EXPECT_NEAR(sampleOf(*tiff, 2, 0, 1), sum / 16, 0.51);
}

TEST_F(GRICommandTest, ACogHasTheStoredMagnificationsAsOverviews) {
  convert({.width = 2000, .height = 1600}, "a.tif", {"-f", "cog"});
  EXPECT_EQ(directory.names(), Names{"a.tif"});
  const auto tiff = opened("a.tif");
  GDALRasterBand* overview = tiff->GetRasterBand(1)->GetOverview(0);
  ASSERT_NE(overview, nullptr);
  gr_uint8 sample = 0;
  ASSERT_EQ(overview->RasterIO(GF_Read, 7, 9, 1, 1, &sample, 1, 1, GDT_Byte, 0, 0, nullptr),
            CE_None);
  EXPECT_EQ(sample, fake_sample(0, 7, 9, 1));
}

TEST_F(GRICommandTest, AWorldFileStandsBesideTheOutput) {
  convert({.position = {10, 20, 1, -2, 0, 0}}, "a.tif", {"--world-file"});
  EXPECT_EQ(directory.names(), (Names{"a.tfw", "a.tif"}));
  std::ifstream file(path("a.tfw"));
  std::vector<double> numbers{std::istream_iterator<double>(file), {}};
  EXPECT_EQ(numbers, (std::vector<double>{1, 0, 0, -2, 10, 20}));
}

TEST_F(GRICommandTest, AFailedDecodeLeavesNothingAndTellsTheStatus) {
  for (const char* output : {"a.png", "a.tif", "a.raw", "a.jpg"}) {
    const Result result = convertFails({.damagedFrom = 40, .damagedTo = 41}, output);
    EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
    EXPECT_EQ(result.err, "gri: " + path("IN") + ": invalid TG3 format [2005]\n");
  }
}

TEST_F(GRICommandTest, ALockedPictureFailsAndSaysSo) {
  const Result result = convertFails({.isLocked = true}, "a.png", {"--password", "wrong"});
  EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
  EXPECT_NE(result.err.find("the picture is locked by a password"), std::string::npos);
  EXPECT_EQ(result.err.find("wrong"), std::string::npos);
}

TEST_F(GRICommandTest, OpensALockedPictureWithThePasswordOrTheFileOfOne) {
  convert({.isLocked = true}, "a.raw", {"--password", "secret"});
  std::ofstream(path("word")) << "secret\nand more\n";
  convert({.isLocked = true}, "b.raw", {"--password-file", path("word")});
  convert({}, "c.raw", {"--password", "whatever"});
  EXPECT_EQ(bytesOf("a.raw"), bytesOf("c.raw"));
  EXPECT_EQ(bytesOf("b.raw"), bytesOf("c.raw"));
}

TEST_F(GRICommandTest, APasswordFileThatIsNoneIsAnError) {
  const Result result =
      convertFails({.isLocked = true}, "a.png", {"--password-file", path("none")});
  EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
  EXPECT_EQ(result.err, "gri: " + path("none") + ": No such file or directory [50004]\n");
}

TEST_F(GRICommandTest, AWrongUseNeverRepeatsAPassword) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"info", "--password", "sesame", path("IN")},
        {"convert", "--password", "sesame", "--nonsense", "a", "b"},
        {"convert", "--password=sesame", "--password-file", "f", "a", "b"}}) {
    const Result result = run(arguments);
    EXPECT_EQ(result.exitCode, GRI_EXIT_USAGE);
    EXPECT_EQ((result.out + result.err).find("sesame"), std::string::npos) << result.err;
  }
}

TEST_F(GRICommandTest, AnExceptionThatCrossesTheInterfaceIsAnError) {
  using enum FakePicture::Throws;
  const std::string expected = "gri: " + path("IN") + ": not enough memory [8]\n";
  EXPECT_EQ(convertFails({.throws = WHEN_OPENED}, "a.png").err, expected);
  EXPECT_EQ(convertFails({.throws = WHEN_DECODED}, "a.png").err, expected);
}

TEST_F(GRICommandTest, KeepingOnWritesWhatIsLeftAndSaysWhatIsLost) {
  FakePicture{.height = 640, .damagedFrom = 100, .damagedTo = 101}.writeTo(path("IN"));
  const Result result = run({"convert", "--keep-going", path("IN"), path("a.tif")});
  EXPECT_EQ(result.exitCode, GRI_EXIT_DAMAGED);
  EXPECT_EQ(result.err,
            "gri: " + path("IN") + ": 10.0% of the pixels are lost: invalid TG3 format [2005]\n");
  const auto tiff = opened("a.tif");
  EXPECT_EQ(sampleOf(*tiff, 1, 3, 63), fake_sample(0, 3, 63, 0));
  EXPECT_EQ(sampleOf(*tiff, 1, 3, 64), 0);
  EXPECT_EQ(sampleOf(*tiff, 1, 3, 128), fake_sample(0, 3, 128, 0));
}

TEST_F(GRICommandTest, KeepingOnWithASoundPictureIsPlainSuccess) {
  convert({}, "a.png", {"--keep-going"});
}

TEST_F(GRICommandTest, WhenNothingIsLeftKeepingOnFailsToo) {
  const Result result =
      convertFails({.damagedFrom = 0, .damagedTo = 80}, "a.png", {"--keep-going"});
  EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
}

TEST_F(GRICommandTest, WhatAFormatCantHoldIsRefusedWithAHint) {
  const Result floats = convertFails({.dataType = GRIC_DATATYPE_FLOAT32}, "a.png");
  EXPECT_EQ(floats.exitCode, GRI_EXIT_USAGE);
  EXPECT_NE(floats.err.find("PNG holds 8-bit unsigned, 16-bit unsigned samples, and these are "
                            "32-bit float; choose another format (-f GTiff, -f raw)"),
            std::string::npos);
  const FakePicture five{.bands = 5, .colorSpace = GRIC_COLORSPACE_MULTISPECTRAL};
  EXPECT_NE(convertFails(five, "a.png").err.find("choose some (-b 3,2,1)"), std::string::npos);
  convert(five, "b.png", {"-b", "5,1,2"});
}

TEST_F(GRICommandTest, AFormatThatWritesNoFileIsAFailure) {
  const Result result = convertFails({}, "a", {"-f", "MEM"});
  EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
  EXPECT_EQ(result.err, "gri: " + path("a") + ": this format writes no file [50005]\n");
}

TEST_F(GRICommandTest, AnErrorDoesntTellOfTheHiddenDirectory) {
  const Result result = convertFails({}, "a.asc");
  EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
  EXPECT_NE(result.err.find(": a.asc: "), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find(".gri-"), std::string::npos) << result.err;
}

TEST_F(GRICommandTest, WhatAFormatLosesIsAWarning) {
  FakePicture{}.writeTo(path("IN"));
  const Result result = run({"convert", "-f", "GSAG", path("IN"), path("a.grd")});
  EXPECT_EQ(result.exitCode, GRI_EXIT_DONE);
  EXPECT_TRUE(result.err.starts_with("gri: " + path("a.grd") + ": warning: ")) << result.err;
  EXPECT_TRUE(result.err.ends_with(".\n")) << result.err;
  EXPECT_EQ(result.err.find("\\n"), std::string::npos) << result.err;  // at the end of GDAL's text
}

TEST_F(GRICommandTest, OptionsThatTheFormatHasntAreWrongUse) {
  for (const char* option : {"COMPRES=DEFLATE", "COMPRESS=NONSENSE", "COMPRESS", "=DEFLATE"}) {
    EXPECT_EQ(convertFails({}, "a.tif", {"--co", option}).exitCode, GRI_EXIT_USAGE) << option;
  }
  for (const char* option : {"INTERLEAVE=LINE", "COMPRESS=DEFLATE", "INTERLEAVE"}) {
    EXPECT_EQ(convertFails({}, "a.raw", {"--co", option}).exitCode, GRI_EXIT_USAGE) << option;
  }
  EXPECT_NE(convertFails({}, "a.tif", {"--co", "COMPRES=DEFLATE"}).err.find(" COMPRES"),
            std::string::npos);
}

TEST_F(GRICommandTest, AReducedPictureKeepsTheCentreOfItsFirstPixel) {
  convert({.position = {10, 20, 1, -2, 0, 0}}, "a.tif", {"--mag", "1/4", "--world-file"});
  std::ifstream file(path("a.tfw"));
  std::vector<double> numbers{std::istream_iterator<double>(file), {}};
  EXPECT_EQ(numbers, (std::vector<double>{4, 0, 0, -8, 10, 20}));
  std::array<double, 6> transform{};
  ASSERT_EQ(opened("a.tif")->GetGeoTransform(transform.data()), CE_None);
  EXPECT_EQ(transform, (std::array<double, 6>{8, 4, 0, 24, 0, -8}));
}

TEST_F(GRICommandTest, WrongUseIsToldFromFailure) {
  const auto exitCodeOf = [&](const std::vector<std::string>& options,
                              const char* output = "a.png") {
    return convertFails({}, output, options).exitCode;
  };
  EXPECT_EQ(exitCodeOf({"--mag", "0"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"--size", "big"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"--size", "10x", "--mag", "1"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"--window", "0", "0", "5", "5", "--bbox", "0", "0", "1", "1"}),
            GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"--window", "0", "0", "5"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"--window", "0", "0", "500", "5"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"-b", "4"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"-f", "nonsense"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"-f", "VRT"}), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({"--world-file"}), GRI_EXIT_USAGE);  // no position
  EXPECT_EQ(exitCodeOf({}, "a.unknown"), GRI_EXIT_USAGE);
  EXPECT_EQ(exitCodeOf({}, "name_without_suffix"), GRI_EXIT_USAGE);
  EXPECT_EQ(run({}).exitCode, GRI_EXIT_USAGE);
  EXPECT_EQ(run({"convert", "one"}).exitCode, GRI_EXIT_USAGE);
  EXPECT_EQ(run({"info"}).exitCode, GRI_EXIT_USAGE);
  EXPECT_EQ(run({"paint"}).err, "gri: there is no command \"paint\"\nTry `gri --help`.\n");
}

TEST_F(GRICommandTest, NegativeNumbersAreCoordinatesAndNoOptions) {
  convert({.position = {-20, -10, 1, -1, 0, 0}}, "a.png",
          {"--bbox", "-15.5", "-20.5", "-10.5", "-15.5"});
  EXPECT_EQ(opened("a.png")->GetRasterXSize(), 5);
}

TEST_F(GRICommandTest, OutputNeverReplacesInput) {
  FakePicture{}.writeTo(path("a.tif"));
  std::filesystem::create_hard_link(path("a.tif"), path("b.tif"));
  const Result result = run({"convert", "--force", path("a.tif"), path("b.tif")});
  EXPECT_EQ(result.exitCode, GRI_EXIT_USAGE);
  EXPECT_NE(result.err.find("input and output are the same file"), std::string::npos);
}

TEST_F(GRICommandTest, MissingInputAndUnwritableOutputAreFailures) {
  const Result missing = run({"convert", path("missing"), path("a.png")});
  EXPECT_EQ(missing.exitCode, GRI_EXIT_FAILED);
  EXPECT_EQ(missing.err, "gri: " + path("missing") + ": No such file or directory [50004]\n");
  EXPECT_EQ(convertFails({}, "no/where/a.png").exitCode, GRI_EXIT_FAILED);
}

TEST_F(GRICommandTest, InfoTellsEveryFileAndFailsWhenOneDoes) {
  FakePicture{}.writeTo(path("one"));
  FakePicture{.format = FakePicture::NITF}.writeTo(path("two"));
  const Result result = run({"info", path("one"), path("missing"), path("two")});
  EXPECT_EQ(result.exitCode, GRI_EXIT_FAILED);
  EXPECT_NE(result.out.find("Tesra TG3"), std::string::npos);
  EXPECT_NE(result.out.find("NITF 2.1"), std::string::npos);
  EXPECT_EQ(result.err, "gri: " + path("missing") + ": No such file or directory [50004]\n");
}

TEST_F(GRICommandTest, InfoLaysThePictureOut) {
  FakePicture{.dataType = GRIC_DATATYPE_UINT16,
              .minMagnification = 0.5,
              .position = {10.5, 19.5, 1, -1, 0, 0},
              .wkt = SRS_WKT_WGS84_LAT_LONG,
              .noData = {7, 7, 7},
              .bits = 11}
      .writeTo(path("one"));
  const std::string text = run({"info", path("one")}).out;
  const std::string expected = path("one") +
                               "\n"
                               "  Format          Tesra TG3\n"
                               "  Size            100 x 80 pixels\n"
                               "  Bands           3: red, green, blue\n"
                               "  Colour          RGB\n"
                               "  Samples         16-bit unsigned, 11 bits used\n"
                               "  No data         7, 7, 7\n"
                               "  Magnifications  1       100 x 80\n"
                               "                  1/2     50 x 40\n"
                               "  Corners         upper left   10, 20\n"
                               "                  upper right  110, 20\n"
                               "                  lower left   10, -60\n"
                               "                  lower right  110, -60\n"
                               "  Resolution      1, -1\n"
                               "  CRS             WGS 84 (EPSG:4326)\n"
                               "  Metadata        3 records\n"
                               "    IMAGE::WKT                      GEOGCS";
  EXPECT_EQ(text.substr(0, expected.size()), expected);
}

TEST_F(GRICommandTest, InfoTellsOfHowManyTilesAPictureIs) {
  FakePicture{.tiles = 12}.writeTo(path("mosaic"));
  FakePicture{}.writeTo(path("single"));
  EXPECT_NE(run({"info", path("mosaic")}).out.find("\n  Tiles           12\n"), std::string::npos);
  EXPECT_EQ(run({"info", path("single")}).out.find("Tiles"), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(run({"info", "--json", path("mosaic")}).out)["tiles"], 12);
  EXPECT_EQ(nlohmann::json::parse(run({"info", "--json", path("single")}).out)["tiles"], 1);
}

TEST_F(GRICommandTest, InfoTellsHowFarAPictureCanBeEnlarged) {
  FakePicture{.minMagnification = 1, .maxMagnification = 16}.writeTo(path("few"));
  FakePicture{.minMagnification = 1, .maxMagnification = 0x1p127}.writeTo(path("many"));
  EXPECT_NE(run({"info", path("few")}).out.find("Magnifications  up to 16\n"), std::string::npos);
  EXPECT_NE(run({"info", path("many")}).out.find("Magnifications  up to 2^127\n"),
            std::string::npos);
}

TEST_F(GRICommandTest, InfoShowsNoControlCharacters) {
  FakePicture{.hasOddRecords = true}.writeTo(path("one"));
  const std::string text = run({"info", path("one")}).out;
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_NE(text.find("\\x1b[31m"), std::string::npos);
  EXPECT_NE(text.find("18446744073709551615"), std::string::npos);
}

TEST_F(GRICommandTest, InfoAsJsonIsAnObjectForEachFile) {
  FakePicture{.wkt = SRS_WKT_WGS84_LAT_LONG}.writeTo(path("one"));
  const auto one = nlohmann::json::parse(run({"info", "--json", path("one")}).out);
  EXPECT_EQ(one["file"], path("one"));
  EXPECT_EQ(one["size"], nlohmann::json::parse("[100, 80]"));
  EXPECT_EQ(one["crs"]["name"], "WGS 84");
  EXPECT_EQ(one["crs"]["authority"], "EPSG:4326");
  const Result missing = run({"info", "--json", path("missing")});
  EXPECT_EQ(missing.exitCode, GRI_EXIT_FAILED);
  EXPECT_EQ(nlohmann::json::parse(missing.out)["error"]["status"], 50004);
}

TEST_F(GRICommandTest, StatusSaysWhatANumberMeans) {
  EXPECT_EQ(run({"status", "50015"}).out, "50015: scene magnification out of range\n");
  EXPECT_EQ(run({"status", "8"}).out, "8: not enough memory\n");
  EXPECT_EQ(run({"status", "4711"}).exitCode, GRI_EXIT_FAILED);
  EXPECT_EQ(run({"status", "4294967295"}).out, "4294967295: unknown status\n");
  EXPECT_EQ(run({"status", "4294967295"}).exitCode, GRI_EXIT_FAILED);
  EXPECT_EQ(run({"status", "many"}).exitCode, GRI_EXIT_USAGE);
  EXPECT_EQ(run({"status", "-1"}).exitCode, GRI_EXIT_USAGE);
}

TEST_F(GRICommandTest, HelpAndVersionAreNoErrors) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"convert", "--help"}, {"--version"}}) {
    const Result result = run(arguments);
    EXPECT_EQ(result.exitCode, GRI_EXIT_DONE);
    EXPECT_FALSE(result.out.empty());
    EXPECT_EQ(result.err, "");
  }
  EXPECT_NE(run({"--version"}).out.find("7.0.0.2181"), std::string::npos);
  EXPECT_NE(run({"--help"}).out.find("Examples:"), std::string::npos);
}
