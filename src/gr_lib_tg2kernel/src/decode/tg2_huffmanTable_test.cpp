#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTable.h"

#include <gtest/gtest.h>

#include <numeric>
#include <optional>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTableCache.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "tests/support/tg2_literalHuffman.h"
#include "tests/support/tg2_testRecords.h"

namespace {

using Bits = std::array<gr_uint8, 16>;

/// As many symbols as there are codes.
std::vector<gr_uint8> symbolsFor(const Bits& bits) {
  std::vector<gr_uint8> symbols(std::accumulate(bits.begin(), bits.end(), size_t{0}));
  std::iota(symbols.begin(), symbols.end(), gr_uint8{0});
  return symbols;
}

template <typename Table>
GR_STATUS statusOf(const Bits& bits) {
  try {
    const Table table(bits, symbolsFor(bits));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  return GR_STATUS_OK;
}

TEST(TG2HuffmanTableTest, RefusesCodesThatDoNotFit) {
  EXPECT_EQ(statusOf<TG2HuffmanTable>({3}), TG2_STATUS_DECODING);
  EXPECT_EQ(statusOf<TG2HuffmanTable>({1, 3}), TG2_STATUS_DECODING);
  EXPECT_EQ(statusOf<TG2HuffmanTable>({2, 0, 0, 0, 1}), TG2_STATUS_DECODING);
  // 256 symbols are all there are: with one more, even a code that fits is none.
  EXPECT_EQ(statusOf<TG2HuffmanTable>({0, 0, 0, 0, 0, 0, 0, 255, 1}), GR_STATUS_OK);
  EXPECT_EQ(statusOf<TG2HuffmanTable>({0, 0, 0, 0, 0, 0, 0, 255, 2}), TG2_STATUS_DECODING);
}

TEST(TG2HuffmanTableTest, RefusesTreesOfTooManyNodes) {
  // 255 codes of 16 bits below a path of 8.
  EXPECT_EQ(statusOf<TG2HuffmanTable>({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255}),
            TG2_STATUS_DECODING);
  EXPECT_EQ(statusOf<TG2HuffmanTable>({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 240}),
            GR_STATUS_OK);
}

TEST(TG2HuffmanTableTest, RefusesAnyNumberOfSymbolsButThatOfTheCodes) {
  const Bits bits = {0, 3};
  for (const size_t count : {0, 2, 4, 256}) {
    const std::vector<gr_uint8> symbols(count);
    EXPECT_THROW(TG2HuffmanTable(bits, symbols), GRUtilException);
  }
  EXPECT_NO_THROW(TG2HuffmanTable(bits, std::vector<gr_uint8>{1, 2, 3}));
}

TEST(TG2HuffmanTableTest, TakesTheCodesThatTheTreeTakes) {
  std::mt19937 random(8);
  int taken = 0;
  for (int turn = 0; turn < 20000; ++turn) {
    Bits bits{};
    const gr_uint32 most = 1u << random() % 8;
    for (gr_uint32 length = 1; length <= 16; ++length) {
      if (random() % 3 == 0) bits[length - 1] = static_cast<gr_uint8>(random() % (most + 1));
    }
    const GR_STATUS expected = statusOf<TG2LiteralTable>(bits);
    ASSERT_EQ(statusOf<TG2HuffmanTable>(bits), expected) << testing::PrintToString(bits);
    if (GR_SUCCESS(expected)) ++taken;
  }
  EXPECT_GT(taken, 5000);
  EXPECT_LT(taken, 15000);
}

TEST(TG2HuffmanTableTest, FindsTheCodeAtTheFrontOfBits) {
  std::mt19937 random(9);
  for (int turn = 0; turn < 50; ++turn) {
    const TG2TestTable code = tg2_anyTable(2 + random() % 255, random);
    const TG2HuffmanTable table(code.bits, code.huffval);
    for (const gr_uint8 symbol : code.huffval) {
      const auto [bits, length] = code.codes[symbol];
      const gr_uint32 below = random() & ((1u << (16 - length)) - 1);
      const TG2HuffmanTable::Code found = table.codeOf(bits << (16 - length) | below);
      EXPECT_EQ(found.length, length);
      EXPECT_EQ(found.symbol, symbol);
    }
  }
}

TEST(TG2HuffmanTableTest, TheCacheGivesTheTableOfTheCodeAndKeepsIt) {
  std::mt19937 random(10);
  TG2HuffmanTableCache cache;
  // More than it holds.
  std::vector<TG2TestTable> codes;
  codes.reserve(1200);
  for (int i = 0; i < 1200; ++i) codes.push_back(tg2_anyTable(2 + random() % 30, random));
  const auto expectRightTable = [&cache](const TG2TestTable& code) {
    const TG2HuffmanTable& table = cache.get(code.bits, code.huffval);
    for (const gr_uint8 symbol : code.huffval) {
      const auto [bits, length] = code.codes[symbol];
      ASSERT_EQ(table.codeOf(bits << (16 - length)).symbol, symbol);
    }
  };
  for (const TG2TestTable& code : codes) expectRightTable(code);
  for (int turn = 0; turn < 1000; ++turn) expectRightTable(codes[random() % codes.size()]);

  const TG2HuffmanTable* const first = &cache.get(codes[0].bits, codes[0].huffval);
  for (size_t i = 1; i < 8; ++i) cache.get(codes[i].bits, codes[i].huffval);
  EXPECT_EQ(&cache.get(codes[0].bits, codes[0].huffval), first);
}

TEST(TG2HuffmanTableTest, TheCacheTellsCodesApartByLengthsAndBySymbols) {
  TG2HuffmanTableCache cache;
  const Bits two = {2};
  const Bits alsoTwo = {1, 1};
  const std::vector<gr_uint8> symbols = {1, 2};
  const std::vector<gr_uint8> swapped = {2, 1};
  EXPECT_EQ(cache.get(two, symbols).codeOf(0).symbol, 1u);
  EXPECT_EQ(cache.get(two, swapped).codeOf(0).symbol, 2u);
  EXPECT_EQ(cache.get(alsoTwo, symbols).codeOf(0x8000).length, 2u);
  EXPECT_EQ(cache.get(two, symbols).codeOf(0x8000).length, 1u);
}

TEST(TG2HuffmanTableTest, TheCacheHandsTheStatusOfABadCodeUp) {
  TG2HuffmanTableCache cache;
  const Bits bad = {3};
  const std::vector<gr_uint8> symbols = {1, 2, 3};
  for (int turn = 0; turn < 2; ++turn) EXPECT_THROW(cache.get(bad, symbols), GRUtilException);
}

}  // namespace
