// What the format's rules say about single records, with expectations made by hand.

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "tests/support/tg2_literalHuffman.h"
#include "tests/support/tg2_testRecords.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using Bins = std::vector<gr_int32>;
using Place = std::optional<TG2RestartState>;

constexpr gr_uint8 PLUS_ONE = 181;
constexpr gr_uint8 MINUS_ONE = 179;

TG2TestTable codeOf(const std::array<gr_uint8, 16>& bits, Bytes symbols) {
  TG2TestTable table{bits, std::move(symbols), {}};
  tg2_numberCodes(table);
  return table;
}

/// The codes 0 and 1.
TG2TestTable twoCodes(gr_uint8 zero, gr_uint8 one) { return codeOf({2}, {zero, one}); }

/// Decodes with both decoders.
Bins decode(const TG2TestTable& table, const Bytes& record, const TG2Rect& rect,
            const TG2Rect& wanted, Place& place) {
  Bins bins(static_cast<size_t>(wanted.getWidth() * wanted.getHeight()));
  Bins expected = bins;
  const TG2RestartState* const from = place ? &*place : nullptr;
  const auto literalPlace = tg2_literalHuffmanDecode(TG2LiteralTable(table.bits, table.huffval),
                                                     record, expected.data(), rect, wanted, from);
  place = tg2_huffmanDecode(TG2HuffmanTable(table.bits, table.huffval), record, bins.data(), rect,
                            wanted, from);
  EXPECT_EQ(bins, expected);
  EXPECT_EQ(place.has_value(), literalPlace != nullptr);
  if (place && literalPlace) {
    EXPECT_EQ(*place, *literalPlace);
  }
  return bins;
}

/// A record of one row, from its marker on.
Bins decodeRow(const TG2TestTable& table, const Bytes& record, gr_int32 width) {
  Place place;
  const TG2Rect rect{0, 0, width - 1, 0};
  Bins bins = decode(table, record, rect, rect, place);
  EXPECT_EQ(place, std::nullopt);
  return bins;
}

GR_STATUS statusOf(const TG2TestTable& table, const Bytes& record, gr_int32 width) {
  const TG2Rect rect{0, 0, width - 1, 0};
  Bins bins(static_cast<size_t>(width));
  try {
    tg2_huffmanDecode(TG2HuffmanTable(table.bits, table.huffval), record, bins.data(), rect, rect,
                      nullptr);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  return GR_STATUS_OK;
}

Bins joined(std::initializer_list<Bins> parts) {
  Bins all;
  for (const Bins& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST(TG2HuffmanRulesTest, ARecordBeginsWithItsMarker) {
  const TG2TestTable table = twoCodes(PLUS_ONE, MINUS_ONE);
  EXPECT_EQ(statusOf(table, {0xFF, 0xA3, 0x0F, 0, 0}, 8), GR_STATUS_OK);
  for (const Bytes& record : {Bytes{0xFF, 0xA2, 0, 0}, Bytes{0xFE, 0xA3, 0, 0}, Bytes{0xFF}}) {
    EXPECT_EQ(statusOf(table, record, 8), TG2_STATUS_RECORD_MARKER);
  }
}

TEST(TG2HuffmanRulesTest, AMarkerRightBehindTheRecordsOwnMeansZerosAndNoPlace) {
  const TG2TestTable table = twoCodes(PLUS_ONE, MINUS_ONE);
  for (const gr_uint8 marker : {0xA3, 0xAA, 0xAC, 0xD1, 0xD9}) {
    const Bytes record = {0xFF, 0xA3, 0xFF, marker};
    EXPECT_EQ(decodeRow(table, record, 5), Bins(5));
    // Nor when rows are left.
    Place place;
    EXPECT_EQ(decode(table, record, {0, 0, 4, 4}, {1, 1, 3, 2}, place), Bins(6));
    EXPECT_EQ(place, std::nullopt);
  }
  // With 0x00 behind it, the 0xFF is data.
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0xFF, 0, 0x0F, 0, 0}, 12),
            joined({Bins(8, -1), Bins(4, 1)}));
}

TEST(TG2HuffmanRulesTest, InsideACodeTheByteBehindFFIsSkippedWhateverItIs) {
  const TG2TestTable table = twoCodes(PLUS_ONE, MINUS_ONE);
  for (const gr_uint8 skipped : {0x00, 0x55, 0xA3, 0xFF}) {
    const Bytes record = {0xFF, 0xA3, 0x00, 0xFF, skipped, 0xF0, 0, 0};
    EXPECT_EQ(decodeRow(table, record, 24),
              joined({Bins(8, 1), Bins(8, -1), Bins(4, -1), Bins(4, 1)}));
  }
}

TEST(TG2HuffmanRulesTest, InsideExtraBitsOnlyAZeroBehindFFIsSkipped) {
  const TG2TestTable table = twoCodes(TG2_SYMBOL_POSITIVE_8, MINUS_ONE);
  // The code 0 and seven extra bits; the eighth is the first bit of the next byte.
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0x02, 0xFF, 0x00, 0xF8, 0, 0}, 1 + 7 + 5),
            joined({{5}, Bins(7, -1), Bins(5, -1)}));
  // The 0xFF comes a second time, and then it's a code that passes it.
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0x02, 0xFF, 0x55, 0xF8, 0, 0}, 1 + 7 + 8 + 5),
            joined({{5}, Bins(7, -1), Bins(8, -1), Bins(5, -1)}));
}

TEST(TG2HuffmanRulesTest, NoMarkerIsPassedInsideExtraBits) {
  const TG2TestTable table = twoCodes(TG2_SYMBOL_SIGNED_16, MINUS_ONE);
  // 7 + 8 + 1 extra bits, of which the last nine come from the same 0xFF.
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0x02, 0xFF, 0xA3, 0xF0, 0, 0}, 1 + 7 + 8 + 4),
            joined({{0x05FF}, Bins(7, -1), Bins(8, -1), Bins(4, -1)}));
}

TEST(TG2HuffmanRulesTest, TheUserOfTheLastBitOfAByteTakesTheNextOne) {
  const TG2TestTable table = twoCodes(TG2_SYMBOL_POSITIVE_8, MINUS_ONE);
  // The code takes the 0xFF that holds the extra bits, and passes 0x55. The last of these takes
  // the next 0xFF, and stays on it.
  EXPECT_EQ(
      decodeRow(table, {0xFF, 0xA3, 0xFE, 0xFF, 0x55, 0xFF, 0x55, 0xF0, 0, 0}, 7 + 1 + 8 + 8 + 4),
      joined({Bins(7, -1), {255}, Bins(8, -1), Bins(8, -1), Bins(4, -1)}));
}

TEST(TG2HuffmanRulesTest, EverySymbolStandsForWhatTheAlphabetSays) {
  struct Case {
    gr_uint8 symbol;
    gr_uint32 extra;
    Bins bins;
  };
  const std::vector<Case> cases = {{101, 0, {0}},
                                   {101, 255, {255}},
                                   {102, 0, {0}},
                                   {102, 255, {-255}},
                                   {103, 0xFFFF, {-1}},
                                   {104, 0xFFFF, {1}},
                                   {103, 0x8000, {-32768}},
                                   {104, 0x8000, {32768}},
                                   {103, 0x7FFF, {32767}},
                                   {104, 0x7FFF, {-32767}},
                                   {105, 0, {}},
                                   {105, 255, Bins(255)},
                                   {106, 0, {}},
                                   {106, 1000, Bins(1000)},
                                   {0, 0, {}},
                                   {1, 0, {0}},
                                   {100, 0, Bins(100)},
                                   {107, 0, {-73}},
                                   {179, 0, {-1}},
                                   {180, 0, {0}},
                                   {255, 0, {75}}};
  for (const Case& one : cases) {
    SCOPED_TRACE(testing::Message() << int{one.symbol} << ", " << one.extra);
    const auto bits = static_cast<gr_uint8>(tg2_extraBits(one.symbol));
    const gr_uint8 mark = one.symbol == 200 ? 201 : 200;  // 20 or 21
    const TG2TestTable table = twoCodes(one.symbol, mark);
    const TG2TestSymbol coded{one.symbol, bits, one.extra};
    for (const bool first : {true, false}) {
      std::vector<TG2TestSymbol> symbols = {{mark}, coded, {mark}};
      Bins expected = joined({{20}, one.bins, {20}});
      if (first) symbols.erase(symbols.begin());
      if (first) expected.erase(expected.begin());
      EXPECT_EQ(
          decodeRow(table, tg2_recordOf(symbols, table), static_cast<gr_int32>(expected.size())),
          expected);
    }
  }
}

TEST(TG2HuffmanRulesTest, RunsOfNothingConsumeBitsOnly) {
  const TG2TestTable table = twoCodes(0, PLUS_ONE);
  // 40 of them, and a literal in the last bit.
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0, 0, 0, 0, 0, 0x01, 0x80, 0}, 2), Bins({1, 1}));
  EXPECT_EQ(statusOf(table, Bytes{0xFF, 0xA3, 0, 0, 0, 0, 0, 0}, 1), TG2_STATUS_DECODING);
}

TEST(TG2HuffmanRulesTest, ARunThatEndsWithItsRowNeedsNoFurtherSymbol) {
  // A literal and a run of 3 fill a row of 4; the bytes have no more than that.
  const TG2TestTable table = twoCodes(PLUS_ONE, 3);
  const Bytes record = {0xFF, 0xA3, 0x55, 0, 0};
  Place place;
  EXPECT_EQ(decode(table, record, {0, 0, 3, 7}, {0, 0, 3, 0}, place), Bins({1, 0, 0, 0}));
  EXPECT_EQ(place, (TG2RestartState{3, 4, 0x55, 2}));
  EXPECT_EQ(decode(table, record, {0, 0, 3, 7}, {0, 1, 3, 3}, place),
            Bins({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(place, (TG2RestartState{4, 16, 0, 0}));
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0x55, 0}, 16).size(), 16u);
}

TEST(TG2HuffmanRulesTest, ARunPassesSeveralRows) {
  // Literals around a run of 13 in rows of 4: it begins in the first row and ends in the fourth.
  const TG2TestTable table = twoCodes(PLUS_ONE, 13);
  const Bytes record = {0xFF, 0xA3, 0x20, 0, 0};
  const Bins whole = {1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  Place place;
  EXPECT_EQ(decode(table, record, {0, 0, 3, 3}, {0, 0, 3, 3}, place), whole);
  EXPECT_EQ(place, std::nullopt);
  EXPECT_EQ(decode(table, record, {0, 0, 3, 3}, {0, 0, 3, 0}, place), Bins({1, 1, 0, 0}));
  EXPECT_EQ(place, (TG2RestartState{3, 15, 0x20, 3}));
  EXPECT_EQ(decode(table, record, {0, 0, 3, 3}, {0, 1, 3, 1}, place), Bins(4));
  EXPECT_EQ(place, (TG2RestartState{3, 15, 0x20, 3}));
  EXPECT_EQ(decode(table, record, {0, 0, 3, 3}, {0, 2, 3, 3}, place),
            Bins({0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(TG2HuffmanRulesTest, ARunMayPassTheEndOfTheRecord) {
  const TG2TestTable table = twoCodes(PLUS_ONE, 100);
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0x40, 0, 0}, 3), Bins({1, 0, 0}));
}

TEST(TG2HuffmanRulesTest, DecodingGoesOnWithoutReadingAgainWhatIsAbove) {
  std::mt19937 random(4);
  const TG2Rect rect{0, 0, 19, 29};
  const Bins bins = tg2_naturalBins(size_t{20} * 30, 5, random);
  TG2TestCodedRecord coded = tg2_codeBins(bins);
  Place place;
  Bins read;
  for (gr_int32 y = 0; y < 30; y += 5) {
    const Bins rows = decode(coded.table, coded.bytes, rect, {0, y, 19, y + 4}, place);
    read.insert(read.end(), rows.begin(), rows.end());
    EXPECT_EQ(place.has_value(), y != 25);
    // What lies before the place, with its byte in hand, is not looked at again.
    if (place) std::fill_n(coded.bytes.begin(), place->offset, gr_uint8{0xFF});
  }
  EXPECT_EQ(read, bins);
}

TEST(TG2HuffmanRulesTest, ANarrowWindowStepsByTheWidthOfTheRecord) {
  std::mt19937 random(5);
  const TG2Rect rect{10, 20, 29, 49};
  const Bins bins = tg2_naturalBins(size_t{20} * 30, 1, random);
  const TG2TestCodedRecord coded = tg2_codeBins(bins);
  Place place;
  const TG2Rect wanted{14, 23, 17, 30};
  Bins expected;
  for (gr_int32 y = wanted.y0; y <= wanted.y1; ++y) {
    const auto row = bins.begin() + std::ptrdiff_t{y - rect.y0} * 20 + (wanted.x0 - rect.x0);
    expected.insert(expected.end(), row, row + 4);
  }
  EXPECT_EQ(decode(coded.table, coded.bytes, rect, wanted, place), expected);
  EXPECT_TRUE(place.has_value());
  // A window that ends at the bottom, but not at the right edge, leaves a place too.
  place.reset();
  decode(coded.table, coded.bytes, rect, {10, 20, 28, 49}, place);
  EXPECT_TRUE(place.has_value());
}

TEST(TG2HuffmanRulesTest, AnUnusedBranchIsAnError) {
  // One code, 0; the bit 1 leads nowhere.
  const TG2TestTable table = codeOf({1}, {PLUS_ONE});
  EXPECT_EQ(decodeRow(table, {0xFF, 0xA3, 0x01, 0, 0}, 7), Bins(7, 1));
  EXPECT_EQ(statusOf(table, {0xFF, 0xA3, 0x01, 0, 0}, 8), TG2_STATUS_DECODING);
  // A table without codes serves records without data only.
  EXPECT_EQ(statusOf(codeOf({}, {}), {0xFF, 0xA3, 0xFF, 0xA3}, 8), GR_STATUS_OK);
  EXPECT_EQ(statusOf(codeOf({}, {}), {0xFF, 0xA3, 0x00, 0xA3}, 8), TG2_STATUS_DECODING);
}

TEST(TG2HuffmanRulesTest, ReadingPastTheEndIsAnError) {
  const TG2TestTable table = twoCodes(PLUS_ONE, MINUS_ONE);
  EXPECT_EQ(statusOf(table, {0xFF, 0xA3, 0x0F, 0x0F}, 12), GR_STATUS_OK);
  EXPECT_EQ(statusOf(table, {0xFF, 0xA3, 0x0F, 0x0F}, 17), TG2_STATUS_DECODING);
  EXPECT_EQ(statusOf(table, {0xFF, 0xA3}, 1), TG2_STATUS_DECODING);
  EXPECT_EQ(statusOf(table, {0xFF, 0xA3, 0xFF}, 1), TG2_STATUS_DECODING);
}

}  // namespace
