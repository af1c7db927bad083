#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoderReference.h"

namespace {

std::string bitsOf(const std::vector<gr_uint8>& bytes, gr_uint32 context, int count) {
  GRMQModel model;
  model.reset();
  GRMQBytes source(bytes);
  GRMQDecoder decoder(source);
  std::string bits;
  for (int i = 0; i < count; ++i) bits += decoder.decode(model, context) != 0 ? '1' : '0';
  return bits;
}

std::string bitsOfBytes(const std::vector<gr_uint8>& bytes) {
  std::string bits;
  for (const gr_uint8 byte : bytes) {
    for (int bit = 7; bit >= 0; --bit) bits += ((byte >> bit) & 1) != 0 ? '1' : '0';
  }
  return bits;
}

/// Bytes that are 0xFF, 0 or extreme more often than chance has it.
std::vector<gr_uint8> randomBytes(std::mt19937& random, size_t length) {
  std::vector<gr_uint8> bytes(length);
  const unsigned style = random() % 4;
  for (gr_uint8& byte : bytes) {
    byte = static_cast<gr_uint8>(random());
    if (style == 1 && random() % 4 == 0) byte = 0xFF;
    if (style == 2 && random() % 2 == 0) byte = 0xFF;
    if (style == 3) byte = random() % 3 == 0 ? byte : 0;
  }
  return bytes;
}

TEST(GRMQDecoderTest, DecodesTheTestSequenceOfTheStandard) {
  // ISO/IEC 14492, H.2: the same coder and the same sequence.
  const std::vector<gr_uint8> coded = {0x84, 0xC7, 0x3B, 0xFC, 0xE1, 0xA1, 0x43, 0x04, 0x02, 0x20,
                                       0x00, 0x00, 0x41, 0x0D, 0xBB, 0x86, 0xF4, 0x31, 0x7F, 0xFF,
                                       0x88, 0xFF, 0x37, 0x47, 0x1A, 0xDB, 0x6A, 0xDF};
  const std::vector<gr_uint8> plain = {0x00, 0x02, 0x00, 0x51, 0x00, 0x00, 0x00, 0xC0,
                                       0x03, 0x52, 0x87, 0x2A, 0xAA, 0xAA, 0xAA, 0xAA,
                                       0x82, 0xC0, 0x20, 0x00, 0xFC, 0xD7, 0x9E, 0xF6,
                                       0xBF, 0x7F, 0xED, 0x90, 0x4F, 0x46, 0xA3, 0xBF};
  EXPECT_EQ(bitsOf(coded, 1, 256), bitsOfBytes(plain));
}

TEST(GRMQDecoderTest, StartsOnFFWithAThirdByteWithoutCarry) {
  EXPECT_EQ(bitsOf({0xFF, 0xFF, 0x90}, 18, 40), "1111101000000011000010111101111100011110");
}

TEST(GRMQDecoderTest, ReadsAPlaneOfOneByteAndThenOnes) {
  EXPECT_EQ(bitsOf({0x55}, 18, 40), "0100000000000000101111101000000011000010");
}

TEST(GRMQDecoderTest, AddsTheTopBitOfAByteAfterFFAsACarry) {
  EXPECT_EQ(bitsOf({0x12, 0xFF, 0xF3, 0x80}, 18, 40), "0111000111011011110001011001111111101111");
}

TEST(GRMQDecoderTest, AgreesWithTheBitwiseRulesOnAnyBytesAndContexts) {
  std::mt19937 random(1);
  for (int run = 0; run < 20000; ++run) {
    SCOPED_TRACE(run);
    const auto bytes = randomBytes(random, 1 + random() % 80);
    GRMQModel model;
    model.reset();
    auto expectedContexts = GRMQReferenceDecoder::initialContexts();
    GRMQBytes source(bytes);
    GRMQDecoder decoder(source);
    GRMQReferenceDecoder reference(bytes);
    const auto numContexts = 1 + random() % GRMQ_NUM_CONTEXTS;
    for (int decision = 0; decision < 300; ++decision) {
      const auto context = random() % numContexts;
      ASSERT_EQ(decoder.decode(model, context), reference.decode(expectedContexts[context]))
          << decision;
    }
  }
}

TEST(GRMQDecoderTest, SkipsExpectedDecisionsAsIfTheyWereTakenOneByOne) {
  std::mt19937 random(2);
  for (int run = 0; run < 20000; ++run) {
    SCOPED_TRACE(run);
    const auto bytes = randomBytes(random, 1 + random() % 40);
    GRMQModel model;
    model.reset();
    auto expectedContexts = GRMQReferenceDecoder::initialContexts();
    GRMQBytes source(bytes);
    GRMQDecoder decoder(source);
    GRMQReferenceDecoder reference(bytes);
    for (int round = 0; round < 40; ++round) {
      const gr_uint32 context = random() % 2 == 0 ? 0 : 18;
      const auto asked = static_cast<gr_uint32>(1 + random() % 64);
      const gr_uint32 skipped = decoder.skipExpected(model.contexts[context], asked);
      ASSERT_LE(skipped, asked);
      for (gr_uint32 i = 0; i < skipped; ++i) {
        const gr_uint32 mps = expectedContexts[context].mps;
        const gr_uint32 row = expectedContexts[context].row;
        ASSERT_EQ(reference.decode(expectedContexts[context]), mps);
        ASSERT_EQ(expectedContexts[context].row, row);
      }
      ASSERT_EQ(decoder.decode(model, context), reference.decode(expectedContexts[context]));
    }
  }
}

}  // namespace
