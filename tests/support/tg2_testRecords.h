/// @file
/// Records for tests and benchmarks of their decoder.
#pragma once

#include <random>
#include <span>
#include <vector>

#include "tests/support/tg2_writer.h"

/// A band of one record: its code and the bytes from the marker on, with two bytes behind.
struct TG2TestCodedRecord {
  TG2TestTable table;
  std::vector<gr_uint8> bytes;
};

/// Codes bin numbers, which are -32768 to 32768, with the best code for them.
TG2TestCodedRecord tg2_codeBins(std::span<const gr_int32> bins, const TG2TestCoding& coding = {});

/// The same symbols in another code, which has all of them.
std::vector<gr_uint8> tg2_recordOf(std::span<const TG2TestSymbol> symbols,
                                   const TG2TestTable& table);

/// Bin numbers spread as those of high frequencies are: geometric, with a scale that drifts from
/// place to place. `scale` is about their mean size.
std::vector<gr_int32> tg2_naturalBins(size_t count, double scale, std::mt19937& random);

/// Any code whose lengths fit, of `numCodes` different symbols, which are 2 to 256; now and then
/// one that leaves branches unused.
TG2TestTable tg2_anyTable(size_t numCodes, std::mt19937& random);
