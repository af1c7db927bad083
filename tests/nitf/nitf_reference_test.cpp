// Files that other programs wrote, decoded through the C interface: tests/data/nitf/manifest.txt
// names each with the status that opening it answers and, for 0, size, type and the SHA-256 of each
// band, row by row, little-endian.
#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/gr_sha256.h"

namespace {

const std::string FOLDER = GRI_TEST_DATA "/nitf/";

struct Entry {
  std::string file;
  GR_STATUS status = 0;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  gr_uint16 numBands = 0;
  std::string type;
  std::vector<std::string> hashes;
};

void PrintTo(const Entry& entry, std::ostream* out) { *out << entry.file; }

std::vector<Entry> readManifest() {
  std::vector<Entry> entries;
  std::ifstream manifest(FOLDER + "manifest.txt");
  for (std::string line; std::getline(manifest, line);) {
    std::istringstream fields(line);
    Entry entry;
    fields >> entry.file >> entry.status;
    if (entry.status == 0) {
      fields >> entry.width >> entry.height >> entry.numBands >> entry.type;
      for (std::string hash; fields >> hash;) entry.hashes.push_back(hash);
    }
    entries.push_back(entry);
  }
  return entries;
}

struct Type {
  gr_int32 dataType;
  size_t bytes;
};

Type typeOf(const std::string& name) {
  const std::map<std::string, Type> types = {
      {"u8", {GRIC_DATATYPE_UINT8, 1}},   {"s8", {GRIC_DATATYPE_SINT8, 1}},
      {"u16", {GRIC_DATATYPE_UINT16, 2}}, {"s16", {GRIC_DATATYPE_SINT16, 2}},
      {"u32", {GRIC_DATATYPE_UINT32, 4}}, {"s32", {GRIC_DATATYPE_SINT32, 4}},
      {"f32", {GRIC_DATATYPE_FLOAT32, 4}}};
  return types.at(name);
}

std::string hashOfBand(std::vector<gr_uint8>& band, size_t sampleBytes) {
  if (std::endian::native == std::endian::big) {
    for (auto at = band.begin(); at != band.end(); at += static_cast<std::ptrdiff_t>(sampleBytes)) {
      std::reverse(at, at + static_cast<std::ptrdiff_t>(sampleBytes));
    }
  }
  return gr_sha256(band);
}

class NITFReferenceTest : public testing::TestWithParam<Entry> {};

TEST_P(NITFReferenceTest, GivesTheStatusOrTheSamplesThatItMust) {
  const Entry& entry = GetParam();
  gric_image image = nullptr;
  ASSERT_EQ(gric_openNITFImageFile(&image, (FOLDER + entry.file).c_str()), entry.status);
  if (entry.status != 0) return;
  const Type type = typeOf(entry.type);
  ASSERT_EQ(gric_getWidth(image), entry.width);
  ASSERT_EQ(gric_getHeight(image), entry.height);
  ASSERT_EQ(gric_getNumBands(image), entry.numBands);
  ASSERT_EQ(gric_getDataType(image), type.dataType);
  std::vector<std::vector<gr_uint8>> bands(
      entry.numBands, std::vector<gr_uint8>(size_t{entry.width} * entry.height * type.bytes));
  std::vector<void*> pointers;
  pointers.reserve(bands.size());
  for (auto& band : bands) pointers.push_back(band.data());
  EXPECT_EQ(gric_decode(image, 0, 0, entry.width, entry.height, 1.0, pointers.data()), 0U);
  EXPECT_EQ(gric_closeImage(image), 0U);
  ASSERT_EQ(entry.hashes.size(), bands.size());
  for (size_t band = 0; band < bands.size(); ++band) {
    EXPECT_EQ(hashOfBand(bands[band], type.bytes), entry.hashes[band]) << "band " << band;
  }
}

std::string nameOf(const testing::TestParamInfo<Entry>& info) {
  std::string name = info.param.file;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Files, NITFReferenceTest, testing::ValuesIn(readManifest()), nameOf);

TEST(NITFReferenceManifestTest, NamesFilesThatDecodeAndFilesThatAreRefused) {
  const std::vector<Entry> entries = readManifest();
  const auto isRefused = [](const Entry& entry) { return entry.status != 0; };
  EXPECT_TRUE(std::any_of(entries.begin(), entries.end(), isRefused));
  EXPECT_FALSE(std::all_of(entries.begin(), entries.end(), isRefused));
}

TEST(GrSha256Test, AgreesWithTheExamplesOfTheStandard) {
  const auto hashOf = [](const std::string& text) {
    return gr_sha256(std::vector<gr_uint8>(text.begin(), text.end()));
  };
  EXPECT_EQ(hashOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(hashOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hashOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

}  // namespace
