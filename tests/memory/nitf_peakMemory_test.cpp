#include <gri_rdk_cdll.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/nitf_rawFile.h"

namespace {

constexpr std::uint32_t NUM_COLS = 40000;
constexpr std::uint32_t NUM_ROWS = 40000;
constexpr long LIMIT_KIB = 48L * 1024;  // above the caller's buffers

struct Layout {
  std::uint32_t blockCols;
  std::uint32_t blockRows;
  std::uint32_t stripRows;  // of the caller's windows
};

std::ostream& operator<<(std::ostream& stream, const Layout& layout) {
  return stream << "blocks of " << layout.blockCols << " x " << layout.blockRows << ", strips of "
                << layout.stripRows << " rows";
}

/// The most that the process has had in memory so far, in KiB.
long peakKib() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

/// Decodes some strips from all over the picture, and all of them of a stretch.
/// @return what that took in KiB above the strip's own buffer, or a negative status
long memoryOfDecode(const std::string& path, std::uint32_t stripRows) {
  std::vector<gr_uint8> strip(std::size_t{NUM_COLS} * stripRows, 1);
  void* bands[] = {strip.data()};
  const long before = peakKib();
  gric_image image = nullptr;
  const GR_STATUS opened = gric_openNITFImageFile(&image, path.c_str());
  if (opened != 0) return -static_cast<long>(opened);
  for (std::uint32_t row = 0; row < NUM_ROWS;) {
    const std::uint32_t numRows = std::min(stripRows, NUM_ROWS - row);
    const GR_STATUS decoded = gric_decode(image, 0, row, NUM_COLS, numRows, 1.0, bands);
    if (decoded != 0) return -static_cast<long>(decoded);
    row += row < 4000 || row > 39000 ? numRows : 10 * numRows;
  }
  gric_closeImage(image);
  return peakKib() - before;
}

/// The same in a process of its own, whose peak nothing else has raised.
long memoryInOwnProcess(const std::string& path, std::uint32_t stripRows) {
  int ends[2] = {};
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const long memory = memoryOfDecode(path, stripRows);
    const bool isWritten = write(ends[1], &memory, sizeof(memory)) == sizeof(memory);
    _exit(isWritten ? 0 : 1);
  }
  close(ends[1]);
  long memory = -1;
  if (read(ends[0], &memory, sizeof(memory)) != sizeof(memory)) memory = -1;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return memory;
}

class NITFPeakMemoryTest : public testing::TestWithParam<Layout> {
 protected:
  void SetUp() override {
    m_directory = std::filesystem::temp_directory_path() / "nitf_peakMemory.XXXXXX";
    ASSERT_NE(mkdtemp(m_directory.data()), nullptr);
  }
  void TearDown() override { std::filesystem::remove_all(m_directory); }

  std::string pathOfPicture() const { return m_directory + "/picture.ntf"; }

 private:
  std::string m_directory;
};

TEST_P(NITFPeakMemoryTest, ALargePictureIsDecodedInStripsInLittleMemory) {
  const Layout layout = GetParam();
  const NITFRawFile file = {NUM_COLS, NUM_ROWS, 1, layout.blockCols, layout.blockRows, 'B'};
  ASSERT_TRUE(file.writeSparse(pathOfPicture()));

  const long memory = memoryInOwnProcess(pathOfPicture(), layout.stripRows);

  RecordProperty("peakKib", static_cast<int>(memory));
  std::cout << layout << ": " << memory << " KiB above the caller's buffer\n";
  EXPECT_GE(memory, 0) << "status " << -memory;
  EXPECT_LT(memory, LIMIT_KIB);
}

INSTANTIATE_TEST_SUITE_P(Layouts, NITFPeakMemoryTest,
                         testing::Values(Layout{256, 256, 64}, Layout{256, 256, 1000},
                                         Layout{1024, 1024, 64}, Layout{8192, 8192, 64},
                                         Layout{8192, 8192, 1000}, Layout{8192, 8192, 1}));

}  // namespace
