/// @file
/// TG2Writer, which writes files of generation 2 for tests: every option of the format, and on
/// request files that no writer should make. It shares no code with the reader.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"

/// A rectangle with inclusive corners.
struct TG2TestRect {
  gr_int32 x0 = 0;
  gr_int32 y0 = 0;
  gr_int32 x1 = 0;
  gr_int32 y1 = 0;
};

/// A record of metadata.
struct TG2TestRecord {
  std::string name;
  gr_uint32 type = 3;
  gr_uint32 count = 1;
  std::vector<gr_uint32> dims = {1};
  std::vector<gr_uint8> values;  ///< as they stand in the file
};
TG2TestRecord tg2_scalarRecord(const std::string& name, gr_uint32 value);  ///< 32 bits, unsigned
TG2TestRecord tg2_byteRecord(const std::string& name, const std::vector<gr_uint8>& values);

/// How the bins of a record become symbols.
struct TG2TestCoding {
  bool hasEmptyRecords = true;  ///< records of zeros are a marker alone
  bool usesEscapes = false;     ///< no literals and runs without extra bits
  bool writesZeros = false;     ///< zeros as literals and not as runs
  bool writesNothings = false;  ///< runs of 0 between all others
  bool overruns = false;        ///< the last run passes the record's end
  bool padsWithOnes = false;    ///< behind the last symbol
  bool allowsAllOnes = false;   ///< the table may use the code of ones alone
  bool hasDeepCodes = false;    ///< codes as long as they may be
};

/// What a file says, and how it is laid out. Numbers of 0 for sizes stand for all there is.
struct TG2TestImage {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  gr_uint32 numBands = 1;
  gr_uint32 numLevels = 2;
  std::array<gr_uint8, 3> version = {1, 0, 1};
  gr_uint32 dataType = 0;  ///< 0 for 8 bits, 1 for 32-bit floats, 2 for 16 bits
  gr_uint32 blockWidth = 0;
  gr_uint32 blockHeight = 0;
  gr_uint32 recordWidth = 0;
  gr_uint32 recordHeight = 0;
  float binWidth = 1.0F;
  /// In place of it.
  std::function<float(gr_uint32 subband, gr_uint32 block, gr_uint32 band)> binWidthOf{};
  TG2TestCoding coding{};
  std::array<gr_uint8, 2> noiseOrigin = {0, 0};
  std::function<std::array<gr_uint8, 2>(gr_uint32 subband)> noiseOriginOf{};  ///< in place of it

  bool hasMetadata = true;
  bool hasDither = true;
  std::vector<TG2TestRecord> records{};
  bool hasMetadataMarker = true;  ///< without, the metadata can't be found
  bool hasEndMarker = true;
  struct Crop {
    TG2TestRect rect;
    gr_int32 level = 0;
  };
  std::optional<Crop> crop{};

  // What is left out.
  std::function<bool(gr_uint32 subband)> isSubbandAbsent{};
  std::function<bool(gr_uint32 subband)> hasEmptyTable{};  ///< a table without blocks
  std::function<bool(gr_uint32 subband, gr_uint32 block)> isBlockAbsent{};
  std::function<bool(gr_uint32 subband, gr_uint32 block, gr_uint32 band)> isBandAbsent{};
  bool reversesBlocks = false;  ///< the table has the last block first

  /// Enciphers the lengths and, in a second call, the symbols of a Huffman table.
  std::function<void(std::span<gr_uint8>)> cipher{};

  /// The largest sample.
  double max() const;
};

/// Where things stand in a file, in bytes from its start.
struct TG2TestLayout {
  struct Band {
    gr_uint32 subband = 0;
    gr_uint32 block = 0;  ///< as the table has it
    gr_uint32 band = 0;
    size_t header = 0;    ///< of the band
    size_t binWidth = 0;  ///< behind the symbols
    size_t recordSize = 0;
    size_t recordOffsets = 0;
    std::vector<size_t> records{};
  };
  size_t subbandOffsets = 0;
  size_t markers = 0;          ///< behind the offsets
  std::vector<size_t> tables;  ///< of each subband; 0 where there is none
  std::vector<gr_uint32> numBlocks;
  std::vector<Band> bands;  ///< in the order of the file
  size_t metadata = 0;      ///< its marker; 0 where there is none
};

/// The bins of each band, subband by subband, each row after row.
using TG2TestBins = std::vector<std::vector<std::vector<gr_int32>>>;

/// Colour, wavelet and quantiser.
/// @param samples  one plane of width x height for each band
TG2TestBins tg2_quantize(const TG2TestImage& image, std::vector<std::vector<float>> samples);

struct TG2TestFile {
  std::vector<gr_uint8> bytes;
  TG2TestLayout layout;
};
/// Writes a file. @param bins  one list of subbands for each band
TG2TestFile tg2_writeBins(const TG2TestImage& image, const TG2TestBins& bins);
TG2TestFile tg2_writeImage(const TG2TestImage& image,
                           const std::vector<std::vector<float>>& samples);
/// The same in a packet of a file of generation 3.
std::vector<gr_uint8> tg2_wrap(std::span<const gr_uint8> file, gr_uint32 image = 0);

// Parts, for tests of their own.

/// The symbols of bins in the order of a record. @param left  how many follow
struct TG2TestSymbol {
  gr_uint8 symbol = 0;
  gr_uint8 numExtraBits = 0;
  gr_uint32 extra = 0;
};
std::vector<TG2TestSymbol> tg2_symbolsOf(std::span<const gr_int32> bins,
                                         const TG2TestCoding& coding);

/// A canonical Huffman table.
struct TG2TestTable {
  std::array<gr_uint8, 16> bits = {};
  std::vector<gr_uint8> huffval{};
  struct Code {
    gr_uint32 code = 0;
    gr_uint32 length = 0;  ///< 0 for a symbol without a code
  };
  std::array<Code, 256> codes = {};
};
/// The table for how often each symbol comes; those that never come have no code.
TG2TestTable tg2_makeTable(const std::array<gr_uint64, 256>& counts, const TG2TestCoding& coding);
/// Gives the codes of a table whose bits and huffval are set.
void tg2_numberCodes(TG2TestTable& table);
/// The coded data of a record, without its marker.
std::vector<gr_uint8> tg2_codeRecord(std::span<const TG2TestSymbol> symbols,
                                     const TG2TestTable& table, bool padsWithOnes);
