/// @file
/// tg3_encode, a program that makes a TG3 file of raw samples, for benchmarks and test data. It is
/// slow and takes some 20 bytes of memory a sample.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/tg3_writer.h"

namespace {

const char* const USAGE =
    "usage: tg3_encode RAW OUT WIDTH HEIGHT BANDS TYPE [OPTION VALUE]...\n"
    "Codes band-sequential little-endian samples of TYPE u8, s8, u16 or s16.\n"
    "  --levels N       wavelet levels (5)\n"
    "  --block N        edge of a subblock (64)\n"
    "  --order NAME     pipe or sbcp (pipe)\n"
    "  --storage NAME   interleaved, data-first or raster (data-first)\n"
    "  --offsets BITS   32 or 64 (32)\n"
    "  --color KIND     1, 4, 7, 10 or 13 (4 for three bands, else 1)\n"
    "  --last-plane P   last plane of the finest level, and one more for each coarser one (31)\n"
    "  --bypass P       planes from P on as raw bits (none)\n"
    "  --geo \"XUL YUL XLR YLR XRES YRES\"   a georeference\n";

struct SampleType {
  gr_uint8 domainBits;
  gr_uint32 bytes;
  gr_int32 low;
  gr_int32 high;
};
const std::map<std::string, SampleType> TYPES = {{"u8", {8, 1, 0, 255}},
                                                 {"s8", {7, 1, -128, 127}},
                                                 {"u16", {16, 2, 0, 65535}},
                                                 {"s16", {15, 2, -32768, 32767}}};

std::vector<std::vector<gr_int32>> readSamples(const std::string& path, const TG3TestImage& image,
                                               const SampleType& type) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                std::istreambuf_iterator<char>());
  const size_t pixels = size_t{image.width} * image.height;
  if (bytes.size() != pixels * image.numComponents * type.bytes) {
    throw std::runtime_error(path + " has another size");
  }
  std::vector<std::vector<gr_int32>> samples(image.numComponents, std::vector<gr_int32>(pixels));
  size_t at = 0;
  for (std::vector<gr_int32>& band : samples) {
    for (gr_int32& sample : band) {
      gr_uint32 bits = 0;
      for (gr_uint32 i = 0; i < type.bytes; ++i) {
        bits |= gr_uint32{static_cast<gr_uint8>(bytes[at++])} << (8 * i);
      }
      sample = static_cast<gr_int32>(bits);
      if (sample > type.high) sample -= type.high - type.low + 1;
    }
  }
  return samples;
}

gr_uint32 numberOf(const std::string& text) { return static_cast<gr_uint32>(std::stoul(text)); }

gr_uint8 codeOf(const std::map<std::string, gr_uint8>& codes, const std::string& name) {
  const auto found = codes.find(name);
  if (found == codes.end()) throw std::runtime_error("unknown name " + name);
  return found->second;
}

void setOption(TG3TestImage& image, TG3TestGeoref& georef, const std::string& name,
               const std::string& value) {
  if (name == "--levels") {
    image.numLevels = static_cast<gr_uint8>(numberOf(value));
  } else if (name == "--block") {
    image.blockSize = static_cast<gr_uint16>(numberOf(value));
  } else if (name == "--order") {
    image.ordering = codeOf({{"pipe", 1}, {"sbcp", 5}}, value);
  } else if (name == "--storage") {
    image.storage = codeOf({{"interleaved", 0}, {"data-first", 2}, {"raster", 3}}, value);
    image.numRegions = 4;
  } else if (name == "--offsets") {
    image.is64Bit = numberOf(value) == 64;
  } else if (name == "--color") {
    image.colorTransform = static_cast<gr_uint8>(numberOf(value));
  } else if (name == "--last-plane") {
    image.lastPlane = numberOf(value);
  } else if (name == "--bypass") {
    image.bypassPlanes = ~gr_uint32{0} << numberOf(value);
  } else if (name == "--geo") {
    georef.geo.emplace(6);
    if (std::sscanf(value.c_str(), "%lf %lf %lf %lf %lf %lf", &(*georef.geo)[0], &(*georef.geo)[1],
                    &(*georef.geo)[2], &(*georef.geo)[3], &(*georef.geo)[4],
                    &(*georef.geo)[5]) != 6) {
      throw std::runtime_error("--geo takes six numbers");
    }
  } else {
    throw std::runtime_error("unknown option " + name);
  }
}

void encode(const std::vector<std::string>& arguments) {
  TG3TestImage image;
  image.width = numberOf(arguments[2]);
  image.height = numberOf(arguments[3]);
  image.numComponents = static_cast<gr_uint16>(numberOf(arguments[4]));
  const SampleType& type = TYPES.at(arguments[5]);
  image.domainBits = type.domainBits;
  image.dynamicRangeMin = type.low;
  image.dynamicRangeMax = type.high;
  const gr_uint8 space = image.numComponents == 1 ? 1 : image.numComponents == 3 ? 10 : 5;
  image.imageColorSpace = space;
  image.waveletColorSpace = space;
  image.colorTransform = image.numComponents == 3 ? 4 : 1;
  image.numLevels = 5;
  image.storage = 2;
  TG3TestGeoref georef;
  for (size_t i = 6; i + 1 < arguments.size(); i += 2) {
    setOption(image, georef, arguments[i], arguments[i + 1]);
  }
  const gr_uint32 lastPlane = image.lastPlane;
  const gr_uint32 numLevels = image.numLevels;
  image.lastPlaneOf = [lastPlane, numLevels](gr_uint32 subband) {
    const gr_uint32 level = subband == 0 ? 0 : (subband + 3) / 4;
    return std::min<gr_uint32>(31, lastPlane + numLevels - level);
  };

  TG3Writer writer;
  if (georef.geo) writer.addMetadata(3, 0, 0, tg3_georefBlock(georef));
  writer.addImage(image, readSamples(arguments[0], image, type));
  std::ofstream file(arguments[1], std::ios::binary);
  file.write(reinterpret_cast<const char*>(writer.bytes().data()),
             static_cast<std::streamsize>(writer.bytes().size()));
  if (!file.flush()) throw std::runtime_error("can't write " + arguments[1]);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() < 6 || arguments.size() % 2 != 0) {
    std::fputs(USAGE, stderr);
    return EXIT_FAILURE;
  }
  try {
    encode(arguments);
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "tg3_encode: %s\n", exception.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
