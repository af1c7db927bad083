// What a mosaic of many TG3 tiles costs through the C interface: the open, a window that touches
// four tiles, and a whole decode in strips. Writes its file first, and removes it.
//
// Times are CPU time of the process (user and system) with the file in the page cache; memory is
// what the process had at most, above what it had before the open.

#include <gri_rdk_cdll.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/tg3_writer.h"

namespace {

[[noreturn]] void fail(const char* what, GR_STATUS status) {
  std::fprintf(stderr, "tesra_mosaic_bench: %s: status %u\n", what, status);
  std::exit(1);
}

double cpuSeconds() {
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

long peakKib() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Tiles side by side in a square, all with the same samples.
void writeMosaic(const std::string& path, gr_uint32 across, gr_uint32 size) {
  TG3TestImage image;
  image.width = size;
  image.height = size;
  image.numLevels = 5;
  std::vector<gr_int32> samples(size_t{size} * size);
  gr_uint32 noise = 1;
  for (size_t i = 0; i < samples.size(); ++i) {
    noise = noise * 1664525 + 1013904223;
    samples[i] = static_cast<gr_int32>((i % size + i / size) / 4 % 240 + (noise >> 28));
  }
  const std::vector<TG3TestSubblock> subblocks = tg3_encode(image, tg3_transform(image, {samples}));
  std::ofstream file(path, std::ios::binary);
  TG3Writer preamble;
  file.write(reinterpret_cast<const char*>(preamble.bytes().data()),
             static_cast<std::streamsize>(preamble.bytes().size()));
  for (gr_uint32 i = 0; i < across * across; ++i) {
    image.image = i;
    const gr_uint32 tileRow = i / across;
    const double x = static_cast<double>(size) * (i % across);
    const double y = -static_cast<double>(size) * tileRow;
    TG3TestGeoref georef;
    georef.geo = {x, y, x + size, y - size, 1.0, 1.0};
    TG3Writer writer;
    writer.addMetadata(3, 0, i, tg3_georefBlock(georef));
    writer.addHeader(image);
    writer.addPlaneset(image, subblocks);
    const size_t skipped = preamble.bytes().size();
    file.write(reinterpret_cast<const char*>(writer.bytes().data() + skipped),
               static_cast<std::streamsize>(writer.bytes().size() - skipped));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 3) {
    std::fprintf(stderr, "usage: tesra_mosaic_bench [TILES_ACROSS [TILE_SIZE]]\n");
    return 2;
  }
  const auto option = [&](int index, gr_uint32 otherwise) {
    return argc > index ? static_cast<gr_uint32>(std::strtoul(argv[index], nullptr, 10))
                        : otherwise;
  };
  const gr_uint32 across = option(1, 100);
  const gr_uint32 size = option(2, 256);
  const std::string path = std::filesystem::temp_directory_path() /
                           ("tesra_mosaic_" + std::to_string(std::time(nullptr)));
  writeMosaic(path, across, size);
  std::printf("%u tiles of %u x %u, %.1f MB\n", across * across, size, size,
              static_cast<double>(std::filesystem::file_size(path)) / 1e6);

  const long before = peakKib();
  double start = cpuSeconds();
  gric_image image = nullptr;
  GR_STATUS status = gric_openTesraImageFile(&image, path.c_str());
  if (status != 0) fail("open", status);
  std::printf("open: %.0f ms, %ld KiB\n", 1e3 * (cpuSeconds() - start), peakKib() - before);

  const gr_uint32 corner = across / 2 * size;
  const double middle = corner - 10.0;
  std::vector<gr_uint8> samples(size_t{20} * 20);
  void* bands[] = {samples.data()};
  start = cpuSeconds();
  status = gric_decode(image, middle, middle, 20, 20, 1.0, bands);
  if (status != 0) fail("window", status);
  std::printf("window of four tiles: %.2f ms, %ld KiB\n", 1e3 * (cpuSeconds() - start),
              peakKib() - before);

  const gr_uint32 width = gric_getWidth(image);
  const gr_uint32 height = gric_getHeight(image);
  constexpr gr_uint32 ROWS = 256;
  samples.assign(size_t{width} * ROWS, 1);
  bands[0] = samples.data();
  const long withBuffer = peakKib();
  start = cpuSeconds();
  for (gr_uint32 row = 0; row < height; row += ROWS) {
    const gr_uint32 numRows = height - row < ROWS ? height - row : ROWS;
    status = gric_decode(image, 0, row, width, numRows, 1.0, bands);
    if (status != 0) fail("decode", status);
  }
  const double seconds = cpuSeconds() - start;
  std::printf("whole decode in windows of %u rows: %.2f s, %.1f ns a pixel, %ld KiB\n", ROWS,
              seconds, 1e9 * seconds / (static_cast<double>(width) * height),
              peakKib() - withBuffer);
  gric_closeImage(image);
  std::filesystem::remove(path);
  return 0;
}
