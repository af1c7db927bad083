// Locked files that another encoder wrote, with their passwords, without, and with a wrong one.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "gri_rdk_cdll.h"

namespace {

/// The CRC-32 of zip files.
gr_uint32 crc32Of(const std::vector<gr_uint8>& bytes) {
  gr_uint32 crc = 0xFFFFFFFF;
  for (const gr_uint8 byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

size_t bytesPerSample(gric_image image) {
  switch (gric_getDataType(image)) {
    case GRIC_DATATYPE_UINT8:
    case GRIC_DATATYPE_SINT8:
      return 1;
    case GRIC_DATATYPE_UINT16:
    case GRIC_DATATYPE_SINT16:
      return 2;
    default:
      return 4;
  }
}

/// A line of the list: a decode, and what comes of it.
struct Expectation {
  std::string file;
  double magnification = 0;
  gr_uint32 column = 0;
  gr_uint32 row = 0;
  gr_uint32 columns = 0;
  gr_uint32 rows = 0;
  GR_STATUS status = 0;
  gr_uint32 crc = 0;
  std::string password;  // empty: none is set
};

bool parse(const std::string& line, Expectation& wanted) {
  std::istringstream fields(line);
  fields >> wanted.file >> wanted.magnification >> wanted.column >> wanted.row >> wanted.columns >>
      wanted.rows >> wanted.status >> std::hex >> wanted.crc;
  const bool isGood = !fields.fail();
  std::getline(fields >> std::ws, wanted.password);
  return isGood;
}

TEST(TesraLockedFilesTest, OpenAsTheirEncoderSaysTheyDo) {
  const std::string folder = std::string(GRI_TEST_DATA) + "/tesra/";
  std::ifstream list(folder + "locks.txt");
  std::string line;
  size_t opened = 0;
  size_t refused = 0;
  while (std::getline(list, line)) {
    SCOPED_TRACE(line);
    Expectation wanted;
    ASSERT_TRUE(parse(line, wanted));
    gric_image image = nullptr;
    ASSERT_EQ(gric_openTesraImageFile(&image, (folder + wanted.file).c_str()), 0u);
    EXPECT_EQ(gric_isTesraLocked(image), 1);
    if (!wanted.password.empty()) {
      ASSERT_EQ(gric_setTesraPassword(image, wanted.password.c_str()), 0u);
    }
    const size_t plane = size_t{wanted.columns} * wanted.rows * bytesPerSample(image);
    std::vector<gr_uint8> samples(plane * gric_getNumBands(image));
    std::vector<void*> bands;
    for (size_t begin = 0; begin < samples.size(); begin += plane) {
      bands.push_back(&samples[begin]);
    }
    EXPECT_EQ(gric_decode(image, wanted.column, wanted.row, wanted.columns, wanted.rows,
                          wanted.magnification, bands.data()),
              wanted.status);
    if (wanted.status == 0) {
      EXPECT_EQ(crc32Of(samples), wanted.crc);
    }
    ++(wanted.status == 0 ? opened : refused);
    gric_closeImage(image);
  }
  EXPECT_GT(opened, 100u);
  EXPECT_GT(refused, 19u);
}

}  // namespace
