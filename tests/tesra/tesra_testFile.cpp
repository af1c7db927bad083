#include "tests/tesra/tesra_testFile.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>

#include "gtest/gtest.h"

TesraFile::TesraFile(const TesraBytes& bytes) {
  static int number = 0;
  m_path = testing::TempDir() + "tesra_" + std::to_string(getpid()) + "_" +
           std::to_string(number++) + ".tsra";
  std::ofstream file(m_path, std::ios::binary);
  for (const gr_uint8 byte : bytes) file.put(static_cast<char>(byte));
}

TesraFile::~TesraFile() { std::remove(m_path.c_str()); }

TesraHandle::TesraHandle(const TesraBytes& bytes)
    : m_file(bytes), m_status(gric_openTesraImageFile(&m_image, m_file.path().c_str())) {}

TesraHandle::~TesraHandle() {
  if (m_image != nullptr) gric_closeImage(m_image);
}

GR_STATUS TesraHandle::decode(double x, double y, double width, double height, double magnification,
                              TesraBytes& samples) const {
  const size_t plane = static_cast<size_t>(width) * static_cast<size_t>(height);
  const size_t numBands = gric_getNumBands(m_image);
  // A byte in front and one behind show whoever writes there.
  constexpr gr_uint8 GUARD = 0xA5;
  samples.assign(plane * numBands + 2, GUARD);
  std::vector<void*> bands;
  for (size_t band = 0; band < numBands; ++band) bands.push_back(&samples[1 + band * plane]);
  const GR_STATUS status = gric_decode(m_image, x, y, width, height, magnification, bands.data());
  EXPECT_EQ(samples.front(), GUARD);
  EXPECT_EQ(samples.back(), GUARD);
  samples.erase(samples.begin());
  samples.pop_back();
  return status;
}

GR_STATUS TesraHandle::decodeStatus(double x, double y, double width, double height,
                                    double magnification) const {
  // Room for samples of any type.
  const size_t bytes = 8 * static_cast<size_t>(width) * static_cast<size_t>(height) + 1;
  std::vector<TesraBytes> planes(gric_getNumBands(m_image), TesraBytes(bytes));
  std::vector<void*> bands(planes.size());
  std::transform(planes.begin(), planes.end(), bands.begin(),
                 [](TesraBytes& plane) { return plane.data(); });
  return gric_decode(m_image, x, y, width, height, magnification, bands.data());
}

TG3TestImage tesra_grayImage(gr_uint32 width, gr_uint32 height, gr_uint8 levels) {
  TG3TestImage image;
  image.width = width;
  image.height = height;
  image.numLevels = levels;
  image.blockSize = 8;
  image.ordering = 5;
  return image;
}

TesraSamples tesra_noise(const TG3TestImage& image) {
  std::mt19937 random(1);
  TesraSamples samples(image.numComponents);
  for (std::vector<gr_int32>& component : samples) {
    component.resize(size_t{image.width} * image.height);
    for (gr_int32& sample : component) sample = static_cast<gr_int32>(random() % 256);
  }
  return samples;
}

TesraBytes tesra_fileOf(const TG3TestImage& image) {
  return tg3_writeImage(image, tesra_noise(image));
}
