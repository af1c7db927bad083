// Images of their own may be used side by side, each by one thread at a time.

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include "gri_rdk_cdll.h"

namespace {

using Open = GR_STATUS (*)(gric_image*, const char*);
using Planes = std::vector<std::vector<gr_uint8>>;  // of 8-bit samples, band after band

GR_STATUS decode(gric_image image, gr_uint32 x, gr_uint32 y, gr_uint32 size, Planes& planes) {
  planes.assign(gric_getNumBands(image), std::vector<gr_uint8>(size_t{size} * size));
  std::vector<void*> bands;
  for (std::vector<gr_uint8>& plane : planes) bands.push_back(plane.data());
  return gric_decode(image, x, y, size, size, 1.0, bands.data());
}

/// Opens an image and decodes a row of windows, again and again.
/// @return how often that went wrong or gave other samples than `expected`
int decodeAgainAndAgain(Open open, const char* path, const std::vector<Planes>& expected) {
  int failures = 0;
  for (int round = 0; round < 3; ++round) {
    gric_image image = nullptr;
    if (open(&image, path) != 0) return failures + 1;
    for (gr_uint32 i = 0; i < expected.size(); ++i) {
      Planes planes;
      const bool isRight = decode(image, i * 50, i * 40, 200, planes) == 0 && planes == expected[i];
      failures += isRight ? 0 : 1;
    }
    failures += gric_closeImage(image) == 0 ? 0 : 1;
  }
  return failures;
}

std::vector<Planes> decodeAlone(Open open, const char* path) {
  std::vector<Planes> windows(4);
  gric_image image = nullptr;
  EXPECT_EQ(open(&image, path), 0u);
  for (gr_uint32 i = 0; i < windows.size(); ++i) {
    EXPECT_EQ(decode(image, i * 50, i * 40, 200, windows[i]), 0u);
  }
  EXPECT_EQ(gric_closeImage(image), 0u);
  return windows;
}

TEST(ThreadsTest, ImagesOfOneFileAreDecodedSideBySide) {
  struct Sample {
    Open open;
    const char* path;
  };
  for (const Sample& sample : {Sample{gric_openTesraImageFile, GRI_DATA "/sample.tsra"},
                               Sample{gric_openTesraImageFile, GRI_DATA "/sample_tg2.tsra"},
                               Sample{gric_openNITFImageFile, GRI_DATA "/sample.ntf"}}) {
    SCOPED_TRACE(sample.path);
    const std::vector<Planes> expected = decodeAlone(sample.open, sample.path);
    std::array<int, 4> failures = {};
    std::vector<std::thread> threads;
    threads.reserve(failures.size());
    for (int& count : failures) {
      threads.emplace_back(
          [&] { count = decodeAgainAndAgain(sample.open, sample.path, expected); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, (std::array<int, 4>{}));
  }
}

}  // namespace
