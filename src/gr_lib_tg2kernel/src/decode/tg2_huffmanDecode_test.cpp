#include "gr_lib_tg2kernel/src/decode/tg2_huffmanDecode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanCells.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "tests/support/gr_instructionSets.h"
#include "tests/support/tg2_literalHuffman.h"
#include "tests/support/tg2_testRecords.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using Bins = std::vector<gr_int32>;

/// What a decoder gives back.
struct Outcome {
  GR_STATUS status = GR_STATUS_OK;
  Bins bins;
  std::optional<TG2RestartState> state;

  bool operator==(const Outcome&) const = default;
};

size_t sizeOf(const TG2Rect& rect) {
  return static_cast<size_t>(rect.getWidth() * rect.getHeight());
}

Outcome literal(const TG2TestTable& code, std::span<const gr_uint8> record, const TG2Rect& rect,
                const TG2Rect& wanted, const TG2RestartState* restart) {
  Outcome outcome;
  outcome.bins.resize(sizeOf(wanted));
  try {
    const TG2LiteralTable table(code.bits, code.huffval);
    const auto state =
        tg2_literalHuffmanDecode(table, record, outcome.bins.data(), rect, wanted, restart);
    if (state) outcome.state = *state;
  } catch (const GRUtilException& exception) {
    outcome = {exception.getStatus(), {}, {}};
  }
  return outcome;
}

Outcome fast(const TG2TestTable& code, std::span<const gr_uint8> record, const TG2Rect& rect,
             const TG2Rect& wanted, const TG2RestartState* restart) {
  Outcome outcome;
  outcome.bins.resize(sizeOf(wanted));
  try {
    const TG2HuffmanTable table(code.bits, code.huffval);
    // A copy of its own, so that AddressSanitizer sees a read past it.
    const Bytes exact(record.begin(), record.end());
    outcome.state = tg2_huffmanDecode(table, exact, outcome.bins.data(), rect, wanted, restart);
  } catch (const GRUtilException& exception) {
    outcome = {exception.getStatus(), {}, {}};
  }
  return outcome;
}

TEST(TG2HuffmanDecodeTest, NaturalRecordsDecodeToTheirBins) {
  forEachInstructionSet([](std::mt19937& random) {
    for (const double scale : {0.1, 0.5, 2.0, 20.0, 300.0}) {
      SCOPED_TRACE(scale);
      const Bins bins = tg2_naturalBins(size_t{64} * 48, scale, random);
      const TG2TestCodedRecord coded = tg2_codeBins(bins);
      const TG2Rect rect{0, 0, 63, 47};
      EXPECT_EQ(fast(coded.table, coded.bytes, rect, rect, nullptr), (Outcome{0, bins, {}}));
      EXPECT_EQ(literal(coded.table, coded.bytes, rect, rect, nullptr), (Outcome{0, bins, {}}));
    }
  });
}

}  // namespace
