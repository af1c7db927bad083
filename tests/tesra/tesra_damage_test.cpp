// Damaged files end in a status or in a picture, and nothing else.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/tesra/tesra_testFile.h"

namespace {

// Opens and decodes; that it comes back is what is tested.
void openAndDecode(const TesraBytes& bytes) {
  TesraHandle handle(bytes);
  if (handle.status() != 0) return;
  const gr_uint32 width = std::min(gric_getWidth(handle.image()), 16u);
  const gr_uint32 height = std::min(gric_getHeight(handle.image()), 16u);
  const bool isWide = gric_getNumBands(handle.image()) > 4;  // and the caller's buffers too
  if (isWide) {
    static_cast<void>(handle.decodeStatus(0, 0, std::min(width, 4u), std::min(height, 4u), 1.0));
    return;
  }
  static_cast<void>(handle.decodeStatus(0, 0, width, height, 1.0));
  static_cast<void>(handle.decodeStatus(0, 0, width, height, 2.0));
}

// The most that the process has had in memory so far.
long peakKiB() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TesraBytes smallFile(gr_uint8 storage) {
  TG3TestImage image = tesra_grayImage(12, 10, 2);
  image.numComponents = 3;
  image.imageColorSpace = 10;
  image.colorTransform = 10;
  image.storage = storage;
  image.lastPlane = 27;
  TG3Writer writer;
  writer.addImage(image, tesra_noise(image));
  writer.addMetadata(3, 0, 0, tg3_georefBlock({.geo = {{1, 2, 3, 1, 1, -1}}}));
  return writer.bytes();
}

TEST(TesraDamageTest, EveryTruncationEndsInAStatusOrAPicture) {
  for (const gr_uint8 storage : {0, 2, 3}) {
    const TesraBytes whole = smallFile(storage);
    for (size_t length = 0; length < whole.size(); ++length) {
      openAndDecode(TesraBytes(whole.begin(), whole.begin() + static_cast<long>(length)));
    }
  }
}

TEST(TesraDamageTest, EveryDamagedByteEndsInAStatusOrAPicture) {
  for (const gr_uint8 storage : {0, 2, 3}) {
    const TesraBytes whole = smallFile(storage);
    for (size_t at = 0; at < whole.size(); ++at) {
      for (const int change : {0x01, 0x80, 0xFF}) {
        TesraBytes damaged = whole;
        damaged[at] = static_cast<gr_uint8>(damaged[at] ^ change);
        openAndDecode(damaged);
      }
    }
  }
}

TEST(TesraDamageTest, HeadersThatPromiseTooMuchAreAnsweredInLittleMemory) {
  TG3TestImage honest = tesra_grayImage(64, 64, 3);
  honest.imageColorSpace = 5;  // any number of components
  TG3Writer writer;
  writer.addHeader(honest);
  writer.addPlaneset(honest, {});
  constexpr size_t BODY = 8 + 10;
  struct Claim {
    size_t offset;
    std::vector<gr_uint8> bytes;
  };
  const std::vector<Claim> claims = {
      {8, {0x7F, 0xFF, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF}},  // 2^31 - 1 columns and rows
      {8, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
      {8, {0x7F, 0xFF, 0xFF, 0xFF}},   // as many columns
      {12, {0x7F, 0xFF, 0xFF, 0xFF}},  // as many rows
      {16, {31}},                      // levels
      {16, {255}},
      {17, {0xFF, 0xFF}},  // components
      {20, {0x00, 0x01}},  // the size of a subblock
      {20, {0xFF, 0xFF}},
  };
  for (const Claim& claim : claims) {
    SCOPED_TRACE(claim.offset);
    TesraBytes bytes = writer.bytes();
    std::copy(claim.bytes.begin(), claim.bytes.end(),
              bytes.begin() + static_cast<long>(BODY + claim.offset));
    const long memoryBefore = peakKiB();
    openAndDecode(bytes);
    static_cast<void>(memoryBefore);
#ifndef GRI_SANITIZED
    EXPECT_LT(peakKiB() - memoryBefore, 32 * 1024);  // the caller's buffers among it
#endif
  }
}

}  // namespace
