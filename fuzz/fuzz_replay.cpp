// Runs a fuzz target without libFuzzer, as an ordinary test: over each file of a corpus as it is,
// cut off at chosen places, and with chosen bytes changed. The choice is a fixed function of the
// file, so a failure repeats.
//
//     fuzz_..._replay MUTATIONS FILE_OR_FOLDER...

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// An exact copy on the heap, so that a sanitizer sees a read past its end.
void runOn(std::span<const std::uint8_t> bytes) {
  const Bytes copy(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(copy.data(), copy.size());
}

/// Most changes go where the structure is: near the start.
std::size_t place(std::mt19937& random, std::size_t size) {
  const std::size_t reach = random() % 4 == 0 ? size : std::min<std::size_t>(size, 1200);
  return random() % reach;
}

void mutate(Bytes& bytes, std::mt19937& random) {
  const auto changes = 1 + random() % 3;
  for (unsigned i = 0; i < changes && !bytes.empty(); ++i) {
    std::uint8_t& byte = bytes[place(random, bytes.size())];
    switch (random() % 4) {
      case 0:
        byte = static_cast<std::uint8_t>(random());
        break;
      case 1:
        byte = static_cast<std::uint8_t>(byte ^ (1u << (random() % 8)));
        break;
      case 2:
        byte = static_cast<std::uint8_t>('0' + random() % 10);
        break;
      default:
        byte = random() % 2 == 0 ? 0x00 : 0xFF;
        break;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s MUTATIONS FILE_OR_FOLDER...\n", argv[0]);
    return 2;
  }
  const unsigned long mutations = std::strtoul(argv[1], nullptr, 10);
  std::vector<std::filesystem::path> files;
  for (int i = 2; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  std::size_t runs = 0;
  for (const auto& file : files) {
    const Bytes whole = readFile(file);
    runOn(whole);
    ++runs;
    std::mt19937 random(static_cast<std::uint32_t>(whole.size()));
    for (unsigned long m = 0; m < mutations && !whole.empty(); ++m) {
      Bytes changed = whole;
      if (m % 4 == 0) {
        changed.resize(place(random, changed.size()));
      } else {
        mutate(changed, random);
      }
      runOn(changed);
      ++runs;
    }
  }
  std::printf("%zu files, %zu runs\n", files.size(), runs);
  return files.empty() ? 1 : 0;
}
