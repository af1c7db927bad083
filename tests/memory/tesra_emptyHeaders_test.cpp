#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "tests/support/own_process.h"
#include "tests/support/tg3_writer.h"

namespace {

constexpr gr_uint32 NUM_HEADERS = 1000000;
constexpr long LIMIT_KIB = 128L * 1024;

long writeHeaders(const std::string& path) {
  TG3Writer writer;
  for (gr_uint32 i = 0; i < NUM_HEADERS; ++i) {
    writer.addPacket({.type = 1, .image = i, .lengthBytes = 1}, {});
  }
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(writer.bytes().data()),
             static_cast<std::streamsize>(writer.bytes().size()));
  return file ? 0 : -1;
}

/// @return what the refusal of a file took in KiB; negative when it isn't refused
long memoryOfRefusal(const std::string& path) {
  const long before = process_peakKib();
  gric_image image = nullptr;
  const GR_STATUS opened = gric_openTesraImageFile(&image, path.c_str());
  return opened == 0 ? -1 : process_peakKib() - before;
}

TEST(TesraEmptyHeadersTest, AMillionOfThemTakeLittleBeforeTheyAreRefused) {
  const std::string path =
      std::filesystem::temp_directory_path() / ("headers_" + std::to_string(getpid()));
  ASSERT_EQ(process_runApart([&] { return writeHeaders(path); }), 0);
  const long memory = process_runApart([&] { return memoryOfRefusal(path); });
  std::filesystem::remove(path);
  std::cout << "a million empty headers: " << memory << " KiB\n";
  EXPECT_GE(memory, 0) << "they were opened";
  EXPECT_LT(memory, LIMIT_KIB);
}

}  // namespace
