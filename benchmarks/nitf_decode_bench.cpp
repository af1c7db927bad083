// How long a full decode of uncompressed NITF files takes through the C interface, beside GDAL's
// NITF driver with the same windows, and beside pread and memcpy of the same bytes.
//
// The three take turns, so that whatever else the machine does hits all of them. Times are CPU time
// of the process (user and system), and each number is the median of its rounds. All files are in
// the page cache: what is compared is the work, not the disk.

#include <fcntl.h>
#include <gdal.h>
#include <gri_rdk_cdll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/nitf_rawFile.h"

namespace {

constexpr const char* USAGE =
    "usage: nitf_decode_bench [--cols N] [--rows N] [--rounds N] [--window-rows N] [--check]\n"
    "Times a full decode of uncompressed NITF files.\n"
    "  --cols, --rows  size of the pictures (8000 x 4000)\n"
    "  --rounds        how often each is decoded (9)\n"
    "  --window-rows   rows of the windows, which are as wide as the picture (256)\n"
    "  --check         exit with 1 when a target is missed\n";

struct Options {
  unsigned numCols = 8000;
  unsigned numRows = 4000;
  unsigned numRounds = 9;
  unsigned windowRows = 256;
  bool mustMeetTargets = false;
};

struct Target {
  double gdalPerGri;   // at least
  double griPerPread;  // at most
};

constexpr Target BLOCKED = {2.0, 4.0};
constexpr Target UNBLOCKED = {1.0, 4.0};

struct Picture {
  const char* name = "";
  NITFRawFile file;
  Target target = {};
};

[[noreturn]] void fail(const std::string& message) {
  std::fprintf(stderr, "nitf_decode_bench: %s\n", message.c_str());
  std::exit(2);
}

unsigned numberOf(const char* text) {
  char* end = nullptr;
  const unsigned long value = std::strtoul(text, &end, 10);
  if (*end != '\0' || value == 0 || value > 1000000) fail(std::string("no number: ") + text);
  return static_cast<unsigned>(value);
}

Options optionsOf(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--check") {
      options.mustMeetTargets = true;
      continue;
    }
    unsigned* const value = name == "--cols"          ? &options.numCols
                            : name == "--rows"        ? &options.numRows
                            : name == "--rounds"      ? &options.numRounds
                            : name == "--window-rows" ? &options.windowRows
                                                      : nullptr;
    if (value == nullptr || ++i == argc) {
      std::fputs(USAGE, stderr);
      std::exit(2);
    }
    *value = numberOf(argv[i]);
  }
  return options;
}

/// CPU seconds of the process.
double cpuSeconds() {
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double secondsOf(const std::function<void()>& work) {
  const double start = cpuSeconds();
  work();
  return cpuSeconds() - start;
}

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// One window of samples per band, which every way of reading fills again and again.
class Window {
 public:
  Window(unsigned numCols, unsigned numRows, unsigned numBands)
      : m_bandBytes(size_t{numCols} * numRows), m_samples(m_bandBytes * numBands, 1) {
    for (unsigned band = 0; band < numBands; ++band) {
      m_bands.push_back(m_samples.data() + band * m_bandBytes);
    }
  }
  void** bands() { return m_bands.data(); }
  gr_uint8* data() { return m_samples.data(); }
  size_t size() const { return m_samples.size(); }
  bool operator==(const Window& other) const { return m_samples == other.m_samples; }

 private:
  size_t m_bandBytes;
  std::vector<gr_uint8> m_samples;
  std::vector<void*> m_bands;
};

using AfterWindow = std::function<void(unsigned row, unsigned numRows)>;

class Bench {
 public:
  Bench(const Picture& picture, unsigned windowRows, std::string path)
      : m_file(picture.file), m_windowRows(windowRows), m_path(std::move(path)) {}

  void decodeWithGri(Window& window, const AfterWindow& after = nullptr) const {
    gric_image image = nullptr;
    check(gric_openNITFImageFile(&image, m_path.c_str()));
    for (unsigned row = 0; row < m_file.numRows; row += m_windowRows) {
      const unsigned numRows = std::min(m_windowRows, m_file.numRows - row);
      check(gric_decode(image, 0, row, m_file.numCols, numRows, 1.0, window.bands()));
      if (after) after(row, numRows);
    }
    gric_closeImage(image);
  }

  void decodeWithGdal(Window& window, const AfterWindow& after = nullptr) const {
    const char* const drivers[] = {"NITF", nullptr};
    GDALDatasetH dataset =
        GDALOpenEx(m_path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers, nullptr, nullptr);
    if (dataset == nullptr) fail("GDAL can't open " + m_path);
    const int numCols = static_cast<int>(m_file.numCols);
    for (unsigned row = 0; row < m_file.numRows; row += m_windowRows) {
      const unsigned numRows = std::min(m_windowRows, m_file.numRows - row);
      for (unsigned band = 0; band < m_file.numBands; ++band)
        m_bandMap[band] = static_cast<int>(band) + 1;
      const auto bandStep = static_cast<GSpacing>(window.size() / m_file.numBands);
      const CPLErr error = GDALDatasetRasterIOEx(
          dataset, GF_Read, 0, static_cast<int>(row), numCols, static_cast<int>(numRows),
          window.data(), numCols, static_cast<int>(numRows), GDT_Byte,
          static_cast<int>(m_file.numBands), m_bandMap, 1, numCols, bandStep, nullptr);
      if (error != CE_None) fail("GDAL can't read " + m_path);
      if (after) after(row, numRows);
    }
    GDALClose(dataset);
  }

  /// Every byte of the file once into a buffer, and from there to where the samples go.
  void copyBytes(Window& window) const {
    const int descriptor = open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) fail("can't open " + m_path);
    std::vector<gr_uint8> piece(1 << 20);
    off_t offset = 0;
    size_t target = 0;
    for (;;) {
      const ssize_t length = pread(descriptor, piece.data(), piece.size(), offset);
      if (length <= 0) break;
      const size_t numBytes = static_cast<size_t>(length);
      if (target + numBytes > window.size()) target = 0;
      std::memcpy(window.data() + target, piece.data(), std::min(numBytes, window.size()));
      target += numBytes;
      offset += length;
    }
    close(descriptor);
  }

  /// Both decoders give the samples that were written.
  void verify(Window& window) const {
    const auto compare = [&](unsigned row, unsigned numRows) {
      for (unsigned band = 0; band < m_file.numBands; ++band) {
        const auto* samples = static_cast<const gr_uint8*>(window.bands()[band]);
        for (unsigned y = 0; y < numRows; ++y) {
          for (unsigned x = 0; x < m_file.numCols; ++x) {
            if (samples[size_t{y} * m_file.numCols + x] !=
                NITFRawFile::sampleAt(x, row + y, band)) {
              fail("wrong sample in " + m_path);
            }
          }
        }
      }
    };
    decodeWithGri(window, compare);
    decodeWithGdal(window, compare);
  }

 private:
  static void check(GR_STATUS status) {
    if (status != 0) fail(getLastStatusString(status));
  }

  NITFRawFile m_file;
  unsigned m_windowRows;
  std::string m_path;
  mutable int m_bandMap[3] = {};
};

/// @return whether the targets are met
bool run(const Picture& picture, const Options& options, const std::string& directory) {
  const std::string path = directory + "/picture.ntf";
  if (!picture.file.write(path)) fail("can't write " + path);
  const Bench bench(picture, options.windowRows, path);
  Window window(options.numCols, options.windowRows, picture.file.numBands);
  bench.verify(window);

  std::vector<double> gri, gdal, bytes;
  for (unsigned round = 0; round < options.numRounds; ++round) {
    gri.push_back(secondsOf([&] { bench.decodeWithGri(window); }));
    gdal.push_back(secondsOf([&] { bench.decodeWithGdal(window); }));
    bytes.push_back(secondsOf([&] { bench.copyBytes(window); }));
  }
  const double griTime = medianOf(gri), gdalTime = medianOf(gdal), byteTime = medianOf(bytes);
  const double gdalPerGri = gdalTime / griTime, griPerPread = griTime / byteTime;
  const bool isMet =
      gdalPerGri >= picture.target.gdalPerGri && griPerPread <= picture.target.griPerPread;
  std::printf("%-26s %8.1f %8.1f %8.1f %8.2f (%.1f) %8.2f (%.1f)  %s\n", picture.name,
              griTime * 1e3, gdalTime * 1e3, byteTime * 1e3, gdalPerGri, picture.target.gdalPerGri,
              griPerPread, picture.target.griPerPread, isMet ? "met" : "MISSED");
  std::fflush(stdout);
  std::filesystem::remove(path);
  return isMet;
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = optionsOf(argc, argv);
  std::string directory = std::filesystem::temp_directory_path() / "nitf_decode_bench.XXXXXX";
  if (mkdtemp(directory.data()) == nullptr) fail("can't make the directory " + directory);
  GDALAllRegister();

  const unsigned cols = options.numCols, rows = options.numRows;
  const Picture pictures[] = {
      {"blocked 256 x 256, P", {cols, rows, 3, 256, 256, 'P'}, BLOCKED},
      {"blocked 256 x 256, B", {cols, rows, 3, 256, 256, 'B'}, BLOCKED},
      {"blocked 256 x 256, R", {cols, rows, 3, 256, 256, 'R'}, BLOCKED},
      {"blocked 256 x 256, S", {cols, rows, 3, 256, 256, 'S'}, BLOCKED},
      {"blocked 1024 x 1024, P", {cols, rows, 3, 1024, 1024, 'P'}, BLOCKED},
      {"blocked 1024 x 1024, B", {cols, rows, 3, 1024, 1024, 'B'}, BLOCKED},
      {"blocked 1024 x 1024, S", {cols, rows, 3, 1024, 1024, 'S'}, BLOCKED},
      {"unblocked, P", {cols, rows, 3, cols, rows, 'P'}, UNBLOCKED},
      {"unblocked, B", {cols, rows, 3, cols, rows, 'B'}, UNBLOCKED},
      {"unblocked, R", {cols, rows, 3, cols, rows, 'R'}, UNBLOCKED},
  };
  std::printf("%u x %u pixels of 3 x 8 bits, windows of %u rows, medians of %u rounds, GDAL %s\n",
              cols, rows, options.windowRows, options.numRounds, GDALVersionInfo("RELEASE_NAME"));
  std::printf("%-26s %8s %8s %8s %14s %14s\n", "CPU ms (and targets)", "gri", "GDAL", "pread",
              "GDAL/gri >=", "gri/pread <=");
  bool isMet = true;
  for (const Picture& picture : pictures) isMet = run(picture, options, directory) && isMet;
  std::filesystem::remove(directory);
  return options.mustMeetTargets && !isMet ? 1 : 0;
}
