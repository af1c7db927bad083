#include "benchmarks/encode_picture.h"

#include <fstream>

bool encode_readPicture(const std::string& path, EncodePicture& picture) {
  std::ifstream file(path, std::ios::binary);
  std::string magic;
  file >> magic >> picture.width >> picture.height >> picture.largest;
  file.get();
  if (!file || (magic != "P5" && magic != "P6") || picture.largest > 0xFFFF) return false;
  const size_t numComponents = magic == "P6" ? 3 : 1;
  const size_t sampleBytes = picture.largest > 0xFF ? 2 : 1;
  const size_t numPixels = size_t{picture.width} * picture.height;
  std::vector<char> bytes(numPixels * numComponents * sampleBytes);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  picture.components.assign(numComponents, std::vector<gr_int32>(numPixels));
  for (size_t i = 0; i < numPixels * numComponents; ++i) {
    gr_int32 value = 0;
    for (size_t b = 0; b < sampleBytes; ++b) {
      value = value * 256 + static_cast<gr_uint8>(bytes[i * sampleBytes + b]);
    }
    picture.components[i % numComponents][i / numComponents] = value;
  }
  return static_cast<bool>(file);
}

bool encode_readWorldFile(const std::string& path, std::array<double, 6>& numbers) {
  std::ifstream file(path);
  for (double& number : numbers) file >> number;
  return static_cast<bool>(file);
}

bool encode_writeFile(const std::string& path, const std::vector<gr_uint8>& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(file.flush());
}
