// The command over the real library and the shipped sample, held against GDAL's own NITF driver.
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "gri_rdk_cdll.h"
#include "hosts/gri/gri_command.h"
#include "hosts/gri/gri_exitCodes.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* SAMPLE = GRI_SAMPLE;
constexpr int WIDTH = 934;
constexpr int HEIGHT = 723;
constexpr int BANDS = 3;

using Samples = std::vector<gr_uint8>;
using Dataset = std::unique_ptr<GDALDataset>;

class GRISampleTest : public testing::Test {
 protected:
  void SetUp() override {
    GDALAllRegister();
    std::string pattern = (fs::temp_directory_path() / "gri_sample_XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    m_directory = pattern;
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(m_directory, ignored);
  }

  std::string path(const std::string& name) const { return (m_directory / name).string(); }

  int run(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"gri"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    out.str("");
    err.str("");
    return gri_run(static_cast<int>(argv.size()), argv.data(), out, err);
  }

  /// Converts the sample with `options` and opens the result.
  Dataset converted(const std::string& name, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"convert", SAMPLE, path(name)});
    EXPECT_EQ(run(options), GRI_EXIT_DONE) << err.str();
    return Dataset(GDALDataset::Open(path(name).c_str()));
  }

  /// The sample as another program reads it.
  static Dataset byOtherReader() {
    const char* drivers[] = {"NITF", nullptr};
    return Dataset(GDALDataset::Open(SAMPLE, GDAL_OF_RASTER, drivers));
  }

  static Samples samplesOf(GDALDataset& dataset, int column, int row, int columns, int rows) {
    Samples samples(static_cast<size_t>(columns) * static_cast<size_t>(rows) * BANDS);
    EXPECT_EQ(dataset.RasterIO(GF_Read, column, row, columns, rows, samples.data(), columns, rows,
                               GDT_Byte, BANDS, nullptr, 0, 0, 0, nullptr),
              CE_None);
    return samples;
  }

  std::ostringstream out;
  std::ostringstream err;

 private:
  fs::path m_directory;
};

}  // namespace

TEST_F(GRISampleTest, InfoTellsWhatTheSampleIs) {
  ASSERT_EQ(run({"info", "--json", SAMPLE}), GRI_EXIT_DONE) << err.str();
  const auto json = nlohmann::json::parse(out.str());
  EXPECT_EQ(json["format"], "NITF 2.1");
  EXPECT_EQ(json["size"], nlohmann::json::parse("[934, 723]"));
  EXPECT_EQ(json["bands"], nlohmann::json::parse(R"(["red", "green", "blue"])"));
  EXPECT_EQ(json["dataType"], "uint8");
  EXPECT_EQ(json["position"]["origin"], nlohmann::json::parse("[485901.5, 5209243.5]"));
  EXPECT_EQ(json["position"]["resolution"], nlohmann::json::parse("[5, -5]"));
  EXPECT_EQ(json["corners"]["upperLeft"], nlohmann::json::parse("[485899, 5209246]"));
  EXPECT_EQ(json["locked"], false);
}

TEST_F(GRISampleTest, EveryFormatHoldsTheSamplesThatTheOtherReaderGives) {
  const Samples expected = samplesOf(*byOtherReader(), 0, 0, WIDTH, HEIGHT);
  for (const char* name : {"a.png", "a.tif", "a.bmp", "a.img"}) {
    SCOPED_TRACE(name);
    const Dataset written = converted(name);
    ASSERT_NE(written, nullptr);
    EXPECT_TRUE(samplesOf(*written, 0, 0, WIDTH, HEIGHT) == expected);
  }
  converted("a.raw");
  std::ifstream file(path("a.raw"), std::ios::binary);
  const Samples raw{std::istreambuf_iterator<char>(file), {}};
  EXPECT_TRUE(raw == expected);
}

TEST_F(GRISampleTest, AWindowHoldsItsSamplesAndItsPlace) {
  const Dataset written = converted("a.tif", {"--window", "256", "192", "512", "384"});
  ASSERT_NE(written, nullptr);
  EXPECT_TRUE(samplesOf(*written, 0, 0, 512, 384) ==
              samplesOf(*byOtherReader(), 256, 192, 512, 384));
  std::array<double, 6> transform{};
  ASSERT_EQ(written->GetGeoTransform(transform.data()), CE_None);
  EXPECT_EQ(transform, (std::array<double, 6>{485899 + 256 * 5, 5, 0, 5209246 - 192 * 5, 0, -5}));
}

TEST_F(GRISampleTest, ABoxOnTheGroundIsTheSameWindow) {
  const Dataset written = converted("a.tif", {"--bbox", "487179", "5206366", "489739", "5208286"});
  ASSERT_NE(written, nullptr);
  EXPECT_TRUE(samplesOf(*written, 0, 0, 512, 384) ==
              samplesOf(*byOtherReader(), 256, 192, 512, 384));
}

TEST_F(GRISampleTest, HalfTheSizeIsTheMeanOfThePixels) {
  const Dataset written = converted("a.tif", {"--mag", "1/2", "--window", "0", "0", "900", "700"});
  ASSERT_NE(written, nullptr);
  const Samples full = samplesOf(*byOtherReader(), 0, 0, 900, 700);
  const Samples half = samplesOf(*written, 0, 0, 450, 350);
  for (size_t row = 0; row < 350; ++row) {
    for (size_t column = 0; column < 450; ++column) {
      const size_t place = 2 * row * 900 + 2 * column;
      const int sum = full[place] + full[place + 1] + full[place + 900] + full[place + 901];
      ASSERT_NEAR(half[row * 450 + column], sum / 4.0, 0.5) << column << ' ' << row;
    }
  }
}

TEST_F(GRISampleTest, BandsComeInTheOrderAsked) {
  const Dataset written = converted("a.tif", {"-b", "3,2,1"});
  ASSERT_NE(written, nullptr);
  const Samples turned = samplesOf(*written, 0, 0, WIDTH, HEIGHT);
  const Samples expected = samplesOf(*byOtherReader(), 0, 0, WIDTH, HEIGHT);
  const size_t plane = size_t{WIDTH} * HEIGHT;
  EXPECT_TRUE(std::equal(turned.begin(), turned.begin() + static_cast<long>(plane),
                         expected.begin() + static_cast<long>(2 * plane)));
}

TEST_F(GRISampleTest, ATruncatedFileIsAnErrorWithItsNumber) {
  fs::copy_file(SAMPLE, path("cut.ntf"));
  fs::resize_file(path("cut.ntf"), 100000);
  EXPECT_EQ(run({"convert", path("cut.ntf"), path("a.png")}), GRI_EXIT_FAILED);
  // The header says how long the file is.
  EXPECT_EQ(err.str(),
            "gri: " + path("cut.ntf") + ": file is not valid NITF 2.1 (2500C) file [51210]\n");
  EXPECT_FALSE(fs::exists(path("a.png")));
}
