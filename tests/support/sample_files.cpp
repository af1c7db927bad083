#include "tests/support/sample_files.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace {

using Passwords = std::map<std::string, std::string>;

/// The passwords that open locked files, by the names of the files.
Passwords readPasswords(const std::string& list) {
  Passwords passwords;
  std::ifstream lines(list);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::string name, field, status, password;
    fields >> name;
    for (int i = 0; i < 5; ++i) fields >> field;  // magnification and window
    fields >> status >> field;                    // and a checksum
    std::getline(fields >> std::ws, password);
    if (status == "0" && !password.empty()) passwords[name] = password;
  }
  return passwords;
}

GR_STATUS decodeCorner(gric_image image, double magnification, SampleBytes& samples) {
  constexpr gr_uint32 SIDE = 20;  // pixels
  constexpr size_t MOST_SAMPLE_BYTES = 8;
  constexpr size_t MOST_BANDS = 16;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  const GR_STATUS status = gric_getDimsAtMag(image, magnification, &width, &height);
  if (status != 0) return status;
  width = std::min(width, SIDE);
  height = std::min(height, SIDE);
  const size_t plane = MOST_SAMPLE_BYTES * width * height;
  const size_t first = samples.size();
  samples.resize(first + plane * gric_getNumBands(image));
  std::array<void*, MOST_BANDS> bands{};
  for (size_t band = 0; band < gric_getNumBands(image); ++band) {
    bands.at(band) = &samples[first + band * plane];
  }
  return gric_decode(image, 0, 0, width, height, magnification, bands.data());
}

}  // namespace

std::vector<SampleFile> tesraSampleFiles() {
  const std::string folder = std::string(GRI_TEST_DATA) + "/tesra/";
  const Passwords passwords = readPasswords(folder + "locks.txt");
  std::vector<SampleFile> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".tsra") continue;
    const std::string name = entry.path().filename();
    const auto password = passwords.find(name);
    files.push_back({name, folder + name, password != passwords.end() ? password->second : ""});
  }
  return files;
}

std::vector<SampleFile> nitfSampleFiles() {
  const std::string folder = std::string(GRI_TEST_DATA) + "/nitf/";
  std::ifstream list(folder + "manifest.txt");
  std::vector<SampleFile> files;
  std::string line;
  while (std::getline(list, line)) {
    std::istringstream fields(line);
    std::string name, status;
    fields >> name >> status;
    if (status == "0") files.push_back({name, folder + name, ""});
  }
  return files;
}

SampleBytes bytesOf(const SampleFile& file) {
  std::ifstream stream(file.path, std::ios::binary);
  return SampleBytes(std::istreambuf_iterator<char>(stream), {});
}

GR_STATUS decodeCorners(gric_image image, SampleBytes& samples) {
  samples.clear();
  const GR_STATUS status = decodeCorner(image, 1.0, samples);
  if (status != 0 || gric_getMinMagnification(image) > 0.5) return status;
  return decodeCorner(image, 0.5, samples);
}
