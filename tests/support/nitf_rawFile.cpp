#include "tests/support/nitf_rawFile.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

/// A field of letters, which blanks fill up.
std::string text(const char* value, size_t length) {
  std::string field(value);
  field.resize(length, ' ');
  return field;
}

/// A field of digits.
std::string number(std::uint64_t value, int length) {
  char digits[32];
  std::snprintf(digits, sizeof(digits), "%0*llu", length, static_cast<unsigned long long>(value));
  return digits;
}

/// The security fields behind the classification, which are alike in all headers.
std::string security() {
  return text("", 2 + 11 + 2 + 20 + 2 + 8 + 4 + 1 + 8 + 43 + 1 + 40 + 1 + 8 + 15);
}

std::string imageSubheader(const NITFRawFile& file) {
  const bool isColor = file.numBands == 3;
  std::string header = "IM" + text("BENCH", 10) + "20260101000000" + text("", 17) + text("", 80) +
                       "U" + security() + "0" + text("", 42) + number(file.numRows, 8) +
                       number(file.numCols, 8) + "INT" + text(isColor ? "RGB" : "MONO", 8) +
                       text("VIS", 8) + "08" + "R" + " " + "0" + "NC" + number(file.numBands, 1);
  for (std::uint32_t band = 0; band < file.numBands; ++band) {
    const char* const colors[] = {"R", "G", "B"};
    header += text(isColor ? colors[band] : "M", 2) + text("", 6) + "N" + text("", 3) + "0";
  }
  return header + "0" + file.mode + number(file.blocksPerRow(), 4) +
         number(file.blocksPerCol(), 4) + number(file.blockCols, 4) + number(file.blockRows, 4) +
         "08" + "001" + "000" + "0000000000" + "1.0 " + "00000" + "00000";
}

}  // namespace

std::uint64_t NITFRawFile::pixelBytes() const {
  return std::uint64_t{blocksPerRow()} * blocksPerCol() * blockCols * blockRows * numBands;
}

std::uint8_t NITFRawFile::sampleAt(std::uint32_t col, std::uint32_t row, std::uint32_t band) {
  const std::uint32_t mixed = (col * 2654435761U) ^ (row * 2246822519U) ^ (band * 3266489917U);
  return static_cast<std::uint8_t>(mixed >> 21);
}

std::string NITFRawFile::headers() const {
  const std::string image = imageSubheader(*this);
  const std::string lengths = "001" + number(image.size(), 6) + number(pixelBytes(), 10) + "000" +
                              "000" + "000" + "000" + "000" + "00000" + "00000";
  const std::string front = "NITF02.10" + std::string("06") + "BF01" + text("GRI", 10) +
                            "20260101000000" + text("", 80) + "U" + security() + "00000" + "00000" +
                            "0" + std::string(3, '\0') + text("", 24) + text("", 18);
  const std::uint64_t headerLength = front.size() + 12 + 6 + lengths.size();
  return front + number(headerLength + image.size() + pixelBytes(), 12) + number(headerLength, 6) +
         lengths + image;
}

bool NITFRawFile::writeSparse(const std::string& path) const {
  const std::string head = headers();
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(head.data(), static_cast<std::streamsize>(head.size()));
  stream.close();
  std::error_code error;
  std::filesystem::resize_file(path, head.size() + pixelBytes(), error);
  return stream.good() && !error;
}

bool NITFRawFile::write(const std::string& path) const {
  const std::string head = headers();
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(head.data(), static_cast<std::streamsize>(head.size()));
  const std::uint32_t numPixels = blockCols * blockRows;
  // Mode S has all blocks of a band before those of the next one.
  const std::uint32_t rounds = mode == 'S' ? numBands : 1;
  const std::uint32_t bandsPerBlock = numBands / rounds;
  std::vector<std::uint8_t> block(size_t{numPixels} * bandsPerBlock);
  for (std::uint32_t round = 0; round < rounds; ++round) {
    for (std::uint32_t blockRow = 0; blockRow < blocksPerCol(); ++blockRow) {
      for (std::uint32_t blockCol = 0; blockCol < blocksPerRow(); ++blockCol) {
        for (std::uint32_t row = 0; row < blockRows; ++row) {
          for (std::uint32_t col = 0; col < blockCols; ++col) {
            for (std::uint32_t band = 0; band < bandsPerBlock; ++band) {
              const size_t pixel = size_t{row} * blockCols + col;
              size_t at = size_t{band} * numPixels + pixel;
              if (mode == 'P') at = pixel * bandsPerBlock + band;
              if (mode == 'R') at = (size_t{row} * bandsPerBlock + band) * blockCols + col;
              block[at] =
                  sampleAt(blockCol * blockCols + col, blockRow * blockRows + row, round + band);
            }
          }
        }
        stream.write(reinterpret_cast<const char*>(block.data()),
                     static_cast<std::streamsize>(block.size()));
      }
    }
  }
  stream.close();
  return stream.good();
}
