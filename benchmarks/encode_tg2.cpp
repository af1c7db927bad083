// Codes a picture as a file of generation 2: material for the benchmarks.
//
//     encode_tg2 IN.ppm OUT.tsra BIN_WIDTH [LEVELS [BLOCK_SIZE [RECORD_SIZE [WORLD_FILE]]]]
//
// IN is a binary PPM or PGM of 8 or 16 bits. BIN_WIDTH decides the quality: bins of 1 are nearly
// lossless for samples of 8 bits. BLOCK_SIZE 0 makes a block of each subband. WORLD_FILE gives the
// picture a position.

#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "benchmarks/encode_picture.h"
#include "tests/support/tg2_writer.h"

namespace {

constexpr gr_uint32 DEFAULT_LEVELS = 6;
constexpr gr_uint32 DEFAULT_BLOCK_SIZE = 512;
constexpr gr_uint32 DEFAULT_RECORD_SIZE = 32;

TG2TestRecord numbersRecord(const std::string& name, const std::vector<double>& numbers) {
  constexpr gr_uint32 TYPE_DOUBLE = 7;
  const auto count = static_cast<gr_uint32>(numbers.size());
  TG2TestRecord record = {name, TYPE_DOUBLE, count, {count}, {}};
  for (const double number : numbers) {
    const auto bits = std::bit_cast<gr_uint64>(number);
    for (int shift = 56; shift >= 0; shift -= 8) {
      record.values.push_back(static_cast<gr_uint8>(bits >> shift));
    }
  }
  return record;
}

bool addPosition(const char* worldFile, TG2TestImage& image) {
  std::array<double, 6> numbers{};
  if (!encode_readWorldFile(worldFile, numbers)) return false;
  image.records.push_back(numbersRecord("IMAGE::XY_ORIGIN", {numbers[4], numbers[5]}));
  image.records.push_back(numbersRecord("IMAGE::X_RESOLUTION", {numbers[0]}));
  image.records.push_back(numbersRecord("IMAGE::Y_RESOLUTION", {numbers[3]}));
  return numbers[1] == 0 && numbers[2] == 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4 || argc > 8) {
    std::fprintf(stderr,
                 "usage: encode_tg2 IN.ppm OUT.tsra BIN_WIDTH [LEVELS [BLOCK_SIZE [RECORD_SIZE "
                 "[WORLD_FILE]]]]\n");
    return 2;
  }
  EncodePicture picture;
  if (!encode_readPicture(argv[1], picture)) {
    std::fprintf(stderr, "encode_tg2: can't read %s\n", argv[1]);
    return 1;
  }
  const auto option = [&](int index, gr_uint32 otherwise) {
    return argc > index ? static_cast<gr_uint32>(std::strtoul(argv[index], nullptr, 10))
                        : otherwise;
  };
  TG2TestImage image;
  image.width = picture.width;
  image.height = picture.height;
  image.numBands = static_cast<gr_uint32>(picture.components.size());
  image.dataType = picture.largest > 0xFF ? 2 : 0;
  image.binWidth = std::strtof(argv[3], nullptr);
  image.numLevels = option(4, DEFAULT_LEVELS);
  image.blockWidth = image.blockHeight = option(5, DEFAULT_BLOCK_SIZE);
  image.recordWidth = image.recordHeight = option(6, DEFAULT_RECORD_SIZE);
  if (argc > 7 && !addPosition(argv[7], image)) {
    std::fprintf(stderr, "encode_tg2: can't read %s\n", argv[7]);
    return 1;
  }
  std::vector<std::vector<float>> samples;
  for (std::vector<gr_int32>& component : picture.components) {
    samples.emplace_back(component.begin(), component.end());
    component = {};
  }
  const TG2TestFile file = tg2_writeBins(image, tg2_quantize(image, std::move(samples)));
  if (!encode_writeFile(argv[2], file.bytes)) {
    std::fprintf(stderr, "encode_tg2: can't write %s\n", argv[2]);
    return 1;
  }
  const double bits = 8.0 * static_cast<double>(file.bytes.size()) /
                      (static_cast<double>(image.numBands) * image.width * image.height);
  std::printf("%zu bytes, %.3f bits a sample\n", file.bytes.size(), bits);
  return 0;
}
