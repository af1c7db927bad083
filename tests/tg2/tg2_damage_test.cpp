// Damaged files of generation 2 end in a status or in a picture, and nothing else.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>

#include "tests/support/tesra_picture.h"
#include "tests/support/tg2_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

TG2TestFile smallFile(gr_uint32 numBands = 3) {
  TG2TestImage image;
  image.width = 20;
  image.height = 17;
  image.numBands = numBands;
  image.numLevels = 1;
  image.blockWidth = 6;
  image.blockHeight = 5;
  image.recordWidth = 4;
  image.recordHeight = 3;
  image.binWidth = 20.0F;
  image.crop = TG2TestImage::Crop{{1, 2, 18, 15}, 0};
  std::mt19937 random(1);
  std::vector<std::vector<float>> samples(numBands);
  for (std::vector<float>& band : samples) {
    for (gr_uint32 i = 0; i < image.width * image.height; ++i) {
      band.push_back(static_cast<float>(random() % 256));
    }
  }
  return tg2_writeImage(image, samples);
}

// Opens and decodes at all scales; that it comes back is what is tested.
GR_STATUS openAndDecode(const Bytes& bytes) {
  TesraPicture picture(bytes);
  GR_RETURN_IF_FAILED(picture.status());
  const gr_uint32 width = std::min(picture.reader().getWidth(), 24u);
  const gr_uint32 height = std::min(picture.reader().getHeight(), 24u);
  GR_STATUS status = GR_STATUS_OK;
  static_cast<void>(picture.reader().setStripHeight(5));
  for (const double mag : {1.0, 0.5, 2.0}) {
    Bytes samples;
    const GR_STATUS decoded = picture.decode(mag, 0, 0, mag < 1 ? (width + 1) / 2 : width,
                                             mag < 1 ? (height + 1) / 2 : height, samples);
    if (GR_SUCCESS(status)) status = decoded;
  }
  return status;
}

TEST(TG2DamageTest, EveryTruncationEndsInAStatus) {
  const Bytes whole = smallFile().bytes;
  EXPECT_EQ(openAndDecode(whole), GR_STATUS_OK);
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    const Bytes part(whole.begin(), whole.begin() + static_cast<long>(length));
    // Metadata stands last, so every cut is noticed when the file is opened.
    EXPECT_FALSE(GR_SUCCESS(openAndDecode(part)));
  }
}

TEST(TG2DamageTest, EveryTruncationOfAFileWithoutMetadataEndsInAStatusOrAPicture) {
  TG2TestFile file = smallFile(1);
  Bytes& bytes = file.bytes;
  bytes.resize(file.layout.metadata);
  std::fill_n(bytes.begin() + static_cast<long>(file.layout.markers) + 2, 4, gr_uint8{0});
  bytes.insert(bytes.end(), {0xFF, 0xD9});
  ASSERT_EQ(openAndDecode(bytes), GR_STATUS_OK);
  for (size_t length = 0; length < bytes.size(); ++length) {
    static_cast<void>(
        openAndDecode(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(length))));
  }
}

TEST(TG2DamageTest, EveryDamagedByteEndsInAStatusOrAPicture) {
  const Bytes whole = smallFile(1).bytes;
  for (size_t at = 0; at < whole.size(); ++at) {
    for (const int change : {0x01, 0x10, 0x80, 0xFF}) {
      Bytes damaged = whole;
      damaged[at] = static_cast<gr_uint8>(damaged[at] ^ change);
      static_cast<void>(openAndDecode(damaged));
    }
  }
}

TEST(TG2DamageTest, EveryDamagedPartOfThreeBandsEndsInAStatusOrAPicture) {
  const Bytes whole = smallFile().bytes;
  std::mt19937 random(2);
  for (int round = 0; round < 3000; ++round) {
    Bytes damaged = whole;
    for (gr_uint32 i = 1 + random() % 4; i > 0; --i) {
      damaged[random() % damaged.size()] = static_cast<gr_uint8>(random());
    }
    static_cast<void>(openAndDecode(damaged));
  }
}

TEST(TG2DamageTest, DamagedBinsDecodeToNumbersOutOfAnyRange) {
  const TG2TestFile file = smallFile();
  // The largest bin width that there is: products pass the largest number.
  for (const std::array<gr_uint8, 4> width :
       {std::array<gr_uint8, 4>{0x7F, 0x7F, 0xFF, 0xFF}, {0x00, 0x00, 0x00, 0x01}}) {
    Bytes bytes = file.bytes;
    for (const TG2TestLayout::Band& band : file.layout.bands) {
      std::copy(width.begin(), width.end(), bytes.begin() + static_cast<long>(band.binWidth));
    }
    EXPECT_EQ(openAndDecode(bytes), GR_STATUS_OK);
  }
}

TEST(TG2DamageTest, RecordsWithoutTheirMarkerAreToldApartFromBadCodes) {
  const TG2TestFile file = smallFile();
  Bytes bytes = file.bytes;
  bytes[file.layout.bands.back().records.front()] = 0;
  EXPECT_EQ(openAndDecode(bytes), 8021u);

  // A code of 16 bits that nothing stands for, in all records.
  bytes = file.bytes;
  const TG2TestLayout::Band& band = file.layout.bands.back();
  std::fill(bytes.begin() + static_cast<long>(band.records.front()) + 2,
            bytes.begin() + static_cast<long>(file.layout.metadata), gr_uint8{0xFE});
  EXPECT_FALSE(GR_SUCCESS(openAndDecode(bytes)));
}

TEST(TG2DamageTest, HuffmanTablesWithMoreCodesThanFitAreRefused) {
  const TG2TestFile file = smallFile();
  Bytes bytes = file.bytes;
  // As many codes as before, but more of one bit than there are.
  gr_uint8* const bits = &bytes[file.layout.bands.front().header + 2];
  const gr_uint32 numCodes = std::accumulate(bits, bits + 16, 0u);
  ASSERT_GT(numCodes, 2u);
  std::fill_n(bits, 16, gr_uint8{0});
  bits[0] = static_cast<gr_uint8>(numCodes);
  EXPECT_EQ(openAndDecode(bytes), 8022u);
}

TEST(TG2DamageTest, DecodesAgainAfterADecodeThatFailed) {
  const TG2TestFile file = smallFile();
  Bytes bytes = file.bytes;
  const TG2TestLayout::Band& last = file.layout.bands.back();
  bytes[last.records.back()] = 0;  // at the lower right of the finest subband
  TesraPicture picture(bytes);
  ASSERT_EQ(picture.status(), GR_STATUS_OK);
  Bytes samples;
  EXPECT_EQ(picture.decode(1, 0, 0, 18, 14, samples), 8021u);
  EXPECT_EQ(picture.decode(1, 0, 0, 4, 3, samples), GR_STATUS_OK);
  EXPECT_EQ(picture.decode(0.5, 0, 0, 9, 7, samples), GR_STATUS_OK);
}

}  // namespace
