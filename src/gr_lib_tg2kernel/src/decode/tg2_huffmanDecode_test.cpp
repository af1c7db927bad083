// The decoder of records against the literal one, on records of any kind.

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "tests/support/gr_instructionSets.h"
#include "tests/support/tg2_literalHuffman.h"
#include "tests/support/tg2_testRecords.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using Bins = std::vector<gr_int32>;
using Place = std::optional<TG2RestartState>;

/// What a decoder gives back.
struct Outcome {
  GR_STATUS status = GR_STATUS_OK;
  Bins bins;
  Place place;

  bool operator==(const Outcome&) const = default;
};

/// For messages of failed comparisons.
void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "status " << outcome.status << ", bins " << testing::PrintToString(outcome.bins);
  if (!outcome.place) return;
  *out << ", offset " << outcome.place->offset << ", byte " << int{outcome.place->byteInHand}
       << ", phase " << int{outcome.place->phase} << ", position " << outcome.place->position;
}

size_t sizeOf(const TG2Rect& rect) {
  return static_cast<size_t>(rect.getWidth() * rect.getHeight());
}

/// Calls `decode(bins)`, which gives back a place or throws.
template <typename Decode>
Outcome outcomeOf(const TG2Rect& wanted, Decode&& decode) {
  Outcome outcome;
  outcome.bins.resize(sizeOf(wanted));
  try {
    outcome.place = decode(outcome.bins.data());
  } catch (const GRUtilException& exception) {
    outcome = {exception.getStatus(), {}, {}};
  }
  return outcome;
}

/// A code in both forms.
struct Code {
  explicit Code(const TG2TestTable& code)
      : fast(code.bits, code.huffval), literal(code.bits, code.huffval) {}

  TG2HuffmanTable fast;
  TG2LiteralTable literal;
};

const TG2RestartState* pointerTo(const Place& place) { return place ? &*place : nullptr; }

Outcome literal(const Code& code, std::span<const gr_uint8> record, const TG2Rect& rect,
                const TG2Rect& wanted, const Place& from = {}) {
  return outcomeOf(wanted, [&](gr_int32* bins) -> Place {
    const auto place =
        tg2_literalHuffmanDecode(code.literal, record, bins, rect, wanted, pointerTo(from));
    return place ? Place(*place) : std::nullopt;
  });
}

Outcome fast(const Code& code, std::span<const gr_uint8> record, const TG2Rect& rect,
             const TG2Rect& wanted, const Place& from = {}) {
  // A copy of just the record's size: AddressSanitizer sees each read past it.
  const auto bytes = std::make_unique<gr_uint8[]>(record.size());
  std::ranges::copy(record, bytes.get());
  return outcomeOf(wanted, [&](gr_int32* bins) {
    return tg2_huffmanDecode(code.fast, {bytes.get(), record.size()}, bins, rect, wanted,
                             pointerTo(from));
  });
}

/// Random symbols of a code, enough for so many coefficients.
std::vector<TG2TestSymbol> anySymbols(const TG2TestTable& table, size_t count,
                                      std::mt19937& random) {
  std::vector<TG2TestSymbol> symbols;
  size_t passed = 0;
  const bool small = random() % 2 == 0;
  // Symbols that pass nothing must end, too.
  while (passed < count && symbols.size() < 4 * count + 100) {
    TG2TestSymbol symbol{table.huffval[random() % table.huffval.size()]};
    // Often the first ones, whose codes are short.
    if (random() % 2 == 0)
      symbol.symbol = table.huffval[random() % (1 + random() % table.huffval.size())];
    symbol.numExtraBits = static_cast<gr_uint8>(tg2_extraBits(symbol.symbol));
    symbol.extra = random() & ((1u << symbol.numExtraBits) - 1);
    if (small && symbol.symbol == TG2_SYMBOL_RUN_16) symbol.extra %= 300;
    if (random() % 8 == 0) symbol.extra = (1u << symbol.numExtraBits) - 1;
    passed += tg2_isLiteral(symbol.symbol) ? 1 : tg2_runLength(symbol.symbol, symbol.extra);
    symbols.push_back(symbol);
  }
  return symbols;
}

/// Bytes that no writer makes.
void damage(Bytes& record, std::mt19937& random) {
  const size_t size = record.size();
  switch (random() % 5) {
    case 0:  // many 0xFF, a few with 0x00 behind
      for (size_t i = 2; i < size; ++i) {
        if (random() % 4 == 0) record[i] = 0xFF;
        if (random() % 8 == 0) record[i] = 0;
      }
      break;
    case 1:  // a few of them
      for (int i = 0; i < 3; ++i) record[2 + random() % (size - 2)] = 0xFF;
      break;
    case 2:
      record[2 + random() % (size - 2)] ^= static_cast<gr_uint8>(1u << random() % 8);
      break;
    case 3:
      record.resize(random() % size);
      break;
    default:
      for (size_t i = 2; i < size; ++i) record[i] = static_cast<gr_uint8>(random());
  }
}

TG2Rect anyRect(std::mt19937& random) {
  const auto at = [&random] { return static_cast<gr_int32>(random() % 1000); };
  const auto size = [&random] { return static_cast<gr_int32>(random() % (1 + random() % 70)); };
  TG2Rect rect{at(), at(), 0, 0};
  rect.x1 = rect.x0 + size();
  rect.y1 = rect.y0 + size();
  return rect;
}

/// Part of a record's rows from `y0` on.
TG2Rect anyRows(const TG2Rect& rect, gr_int32 y0, bool narrow, std::mt19937& random) {
  TG2Rect rows{rect.x0, y0, rect.x1, rect.y1};
  rows.y1 = y0 + static_cast<gr_int32>(random() % static_cast<gr_uint32>(rect.y1 - y0 + 1));
  if (narrow) {
    rows.x0 += static_cast<gr_int32>(random() % static_cast<gr_uint32>(rect.getWidth()));
    rows.x1 =
        rows.x0 + static_cast<gr_int32>(random() % static_cast<gr_uint32>(rect.x1 - rows.x0 + 1));
  }
  return rows;
}

/// Decodes a record by windows from top to bottom, going on from place to place, and now and then
/// with rows left out; both decoders must agree in all of it.
void compareByWindows(const Code& code, const Bytes& record, const TG2Rect& rect,
                      std::mt19937& random) {
  const bool narrow = random() % 3 == 0;
  Place place;
  gr_int32 y0 = rect.y0;
  if (random() % 4 == 0) {
    y0 += static_cast<gr_int32>(random() % static_cast<gr_uint32>(rect.getHeight()));
  }
  while (y0 <= rect.y1) {
    const TG2Rect wanted = anyRows(rect, y0, narrow, random);
    const Outcome expected = literal(code, record, rect, wanted, place);
    ASSERT_EQ(fast(code, record, rect, wanted, place), expected);
    if (!GR_SUCCESS(expected.status)) return;
    place = expected.place;
    y0 = wanted.y1 + 1 + static_cast<gr_int32>(random() % 8 == 0 ? random() % 5 : 0);
  }
}

/// A code of any kind.
TG2TestTable anyCode(std::mt19937& random) {
  if (random() % 16 == 0) {
    TG2TestTable single;
    single.bits[random() % 16] = 1;
    single.huffval = {static_cast<gr_uint8>(random())};
    tg2_numberCodes(single);
    return single;
  }
  return tg2_anyTable(2 + random() % (1 + random() % 255), random);
}

TEST(TG2HuffmanDecodeTest, EqualsTheLiteralDecoderOnAnyRecord) {
  forEachInstructionSet([](std::mt19937& random) {
    for (int turn = 0; turn < 1500; ++turn) {
      SCOPED_TRACE(turn);
      const TG2TestTable table = anyCode(random);
      const Code code(table);
      const TG2Rect rect = anyRect(random);
      Bytes record = tg2_recordOf(anySymbols(table, sizeOf(rect), random), table);
      ASSERT_NO_FATAL_FAILURE(compareByWindows(code, record, rect, random));
      damage(record, random);
      ASSERT_NO_FATAL_FAILURE(compareByWindows(code, record, rect, random));
    }
  });
}

TEST(TG2HuffmanDecodeTest, EqualsTheLiteralDecoderOnRecordsOfPictures) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const double scale : {0.05, 0.3, 1.0, 4.0, 25.0, 400.0}) {
      for (int turn = 0; turn < 12; ++turn) {
        SCOPED_TRACE(testing::Message() << scale << ", turn " << turn);
        const TG2Rect rect{100, 50, 163, 97};
        const Bins bins = tg2_naturalBins(sizeOf(rect), scale, random);
        TG2TestCoding coding;
        coding.usesEscapes = turn % 4 == 1;
        coding.writesZeros = turn % 4 == 2;
        coding.writesNothings = turn % 4 == 3;
        coding.overruns = turn % 2 == 0;
        coding.hasDeepCodes = turn % 3 == 0;
        coding.allowsAllOnes = turn % 5 == 0;
        const TG2TestCodedRecord coded = tg2_codeBins(bins, coding);
        const Code code(coded.table);
        EXPECT_EQ(fast(code, coded.bytes, rect, rect), (Outcome{0, bins, {}}));
        ASSERT_NO_FATAL_FAILURE(compareByWindows(code, coded.bytes, rect, random));
      }
    }
  });
}

TEST(TG2HuffmanDecodeTest, EveryTruncationEndsWithTheStatusOfTheLiteralDecoder) {
  std::mt19937 random(11);
  const TG2Rect rect{0, 0, 15, 9};
  const TG2TestCodedRecord coded = tg2_codeBins(tg2_naturalBins(sizeOf(rect), 30, random));
  const Code code(coded.table);
  for (size_t length = 0; length <= coded.bytes.size(); ++length) {
    SCOPED_TRACE(length);
    const auto part = std::span(coded.bytes).first(length);
    const Outcome expected = literal(code, part, rect, rect);
    EXPECT_EQ(fast(code, part, rect, rect), expected);
    if (length < 2) {
      EXPECT_EQ(expected.status, TG2_STATUS_RECORD_MARKER);
    }
    if (length >= 2 && length < coded.bytes.size() - 3) {
      EXPECT_EQ(expected.status, TG2_STATUS_DECODING);
    }
  }
}

TEST(TG2HuffmanDecodeTest, RecordsWiderThanAPieceEqualTheLiteralDecoder) {
  std::mt19937 random(12);
  for (const gr_int32 width : {8191, 8192, 8193, 30000}) {
    SCOPED_TRACE(width);
    const TG2Rect rect{5, 7, 5 + width - 1, 10};
    const TG2TestCodedRecord coded = tg2_codeBins(tg2_naturalBins(sizeOf(rect), 0.6, random));
    const Code code(coded.table);
    for (int turn = 0; turn < 6; ++turn) {
      ASSERT_NO_FATAL_FAILURE(compareByWindows(code, coded.bytes, rect, random));
    }
  }
}

TEST(TG2HuffmanDecodeTest, WhatARecordCallsItselfCostsNoTime) {
  // 2^62 coefficients, of which the bytes have next to none.
  constexpr gr_int32 LAST = 0x7FFFFFFE;
  const TG2Rect rect{0, 0, LAST, LAST};
  TG2TestTable table;
  table.bits[0] = 1;
  table.huffval = {TG2_SYMBOL_RUN_16};
  tg2_numberCodes(table);
  const Code code(table);
  const Bytes record = tg2_recordOf(std::vector<TG2TestSymbol>(500, {106, 16, 65535}), table);
  const TG2Rect below{LAST - 4, LAST - 3, LAST - 1, LAST};
  EXPECT_EQ(fast(code, record, rect, below).status, TG2_STATUS_DECODING);
  // 500 runs are enough for the first columns of the first row.
  const TG2Rect top{20000000, 0, 20000003, 0};
  const Outcome expected = literal(code, record, rect, top);
  EXPECT_EQ(expected.status, GR_STATUS_OK);
  EXPECT_EQ(fast(code, record, rect, top), expected);
}

/// Decodes to coefficients into a larger plane of ones.
std::vector<float> coefficientsOf(const Code& code, const Bytes& record, const TG2Rect& rect,
                                  const TG2Rect& wanted, const TG2Dequantizer& dequantizer,
                                  size_t stride, Place& place) {
  std::vector<float> plane(static_cast<size_t>(wanted.getHeight()) * stride, 1.0F);
  place = tg2_huffmanDecode(code.fast, record, dequantizer, 0.37F, plane.data(), stride, rect,
                            wanted, pointerTo(place));
  return plane;
}

TEST(TG2HuffmanDecodeTest, DecodingToCoefficientsIsDecodingAndThenDequantising) {
  forEachInstructionSet([](std::mt19937& random) {
    const TG2NoiseOrigin noise{130, 77};
    for (int turn = 0; turn < 200; ++turn) {
      SCOPED_TRACE(turn);
      const TG2Rect rect = anyRect(random);
      const TG2TestCodedRecord coded = tg2_codeBins(tg2_naturalBins(sizeOf(rect), 3, random));
      const Code code(coded.table);
      const TG2Rect wanted = anyRows(rect, rect.y0, true, random);
      const TG2NoiseOrigin* const origin = turn % 2 == 0 ? &noise : nullptr;
      const TG2Dequantizer dequantizer(wanted, origin);
      const auto width = static_cast<size_t>(wanted.getWidth());
      const size_t stride = width + random() % 5;

      const Outcome bins = fast(code, coded.bytes, rect, wanted);
      std::vector<float> expected(bins.bins.size());
      dequantizer.dequantize(bins.bins.data(), expected.data(), 0.37F);
      Place place;
      const std::vector<float> plane =
          coefficientsOf(code, coded.bytes, rect, wanted, dequantizer, stride, place);
      EXPECT_EQ(place, bins.place);
      for (size_t i = 0; i < plane.size(); ++i) {
        const size_t column = i % stride;
        ASSERT_EQ(plane[i], column < width ? expected[i / stride * width + column] : 1.0F) << i;
      }
    }
  });
}

TEST(TG2HuffmanDecodeTest, ARecordWithoutDataIsDithered) {
  std::mt19937 random(3);
  const Code code(tg2_anyTable(20, random));
  const TG2Rect rect{3, 4, 10, 9};
  const TG2NoiseOrigin noise{1, 2};
  const TG2Dequantizer dequantizer(rect, &noise);
  std::vector<float> expected(sizeOf(rect));
  dequantizer.dequantize(Bins(sizeOf(rect)).data(), expected.data(), 0.37F);
  Place place;
  EXPECT_EQ(coefficientsOf(code, {0xFF, 0xA3, 0xFF, 0xA3}, rect, rect, dequantizer, 8, place),
            expected);
  EXPECT_NE(expected[0], 0.0F);
  EXPECT_EQ(place, std::nullopt);
}

}  // namespace
