/// @file
/// A writer of NITF files for tests: every option of the format, and on request files that no
/// writer should make. It shares no code with the reader.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"

/// The fields of a header in the order of the file, under their names.
class NITFTestFields {
 public:
  /// Adds a field at the end, or with `before` in front of that field.
  void add(const std::string& name, const std::string& value);
  void addNumber(const std::string& name, gr_uint64 value, size_t width);
  void insertBefore(const std::string& before, const std::string& name, const std::string& value);
  /// Replaces the value of the first field with that name. A shorter text gets blanks behind it;
  /// one that is longer makes the field longer.
  NITFTestFields& set(const std::string& name, const std::string& value);
  /// The same right-justified, with zeros.
  NITFTestFields& set(const std::string& name, gr_uint64 value);
  NITFTestFields& remove(const std::string& name);
  const std::string& get(const std::string& name) const;
  std::vector<std::string> names() const;
  std::string bytes() const;

 private:
  using Field = std::pair<std::string, std::string>;
  std::vector<Field>::iterator find(const std::string& name);

  std::vector<Field> m_fields;
};

/// A segment: its subheader and its data. Fields of a length can be lied about: see
/// NITFTestFile::lengths.
struct NITFTestSegment {
  NITFTestFields header;
  std::string data;
};

/// The pixels of an image.
struct NITFTestPixels {
  gr_uint32 numCols = 7;
  gr_uint32 numRows = 5;
  gr_uint32 numBands = 1;
  gr_uint32 sampleBytes = 1;
  char mode = 'B';          // IMODE
  gr_uint32 blockCols = 0;  // 0: one block of the size of the image
  gr_uint32 blockRows = 0;
  std::string type = "INT";  // PVTYPE
  /// The bits of a sample; what is behind the right and lower edge is asked for too.
  std::function<gr_uint32(gr_uint32 band, gr_uint32 row, gr_uint32 col)> sample = defaultSample;

  static gr_uint32 defaultSample(gr_uint32 band, gr_uint32 row, gr_uint32 col);

  gr_uint32 blocksPerRow() const;
  gr_uint32 blocksPerCol() const;
  /// Blocks as they are stored: in mode S those of each band apart.
  gr_uint32 numBlocks() const;
  std::string block(gr_uint32 number) const;  // its bytes
  std::string allBlocks() const;
  /// What a decoder gives of a band: rows of samples in the byte order of this machine.
  std::vector<gr_uint8> decoded(gr_uint32 band) const;
};

/// The mask in front of the pixels.
struct NITFTestMask {
  std::vector<gr_uint32> absent{};       // numbers of blocks
  std::optional<std::string> padCode{};  // TPXCD, bytes
  bool hasBlockTable = true;
  bool hasPadTable = false;
  gr_uint16 blockEntryLength = 4;
  gr_uint16 padEntryLength = 4;
  gr_uint32 gap = 0;  // bytes between the mask and the first pixel
};

/// Which version a file is of; the first nine bytes.
constexpr const char* NITF_TEST_20 = "NITF02.00";
constexpr const char* NITF_TEST_21 = "NITF02.10";
constexpr const char* NITF_TEST_NSIF = "NSIF01.00";

/// An image with all fields as they follow from the pixels: grey for one band, RGB for three, else
/// MULTI.
NITFTestSegment nitfTestImage(const std::string& version, const NITFTestPixels& pixels);
/// The same with a mask ("NM").
NITFTestSegment nitfTestMaskedImage(const std::string& version, const NITFTestPixels& pixels,
                                    const NITFTestMask& mask);
NITFTestSegment nitfTestGraphic(const std::string& version);
NITFTestSegment nitfTestLabel(const std::string& version, const std::string& text);
NITFTestSegment nitfTestText(const std::string& version, const std::string& text);
NITFTestSegment nitfTestData(const std::string& version, const std::string& tag);
NITFTestSegment nitfTestReserved(const std::string& version);

/// The fields of a security block; in 2.0 one field of 167 bytes, "SECURITY".
void nitfTestAddSecurity(NITFTestFields& fields, const std::string& version);
/// An area of tagged extensions: its length, and unless that is 0 an overflow number and the tags.
void nitfTestAddArea(NITFTestFields& fields, const std::string& name, const std::string& tags,
                     gr_uint32 overflow = 0, bool isPresent = false);

struct NITFTestFile {
  explicit NITFTestFile(std::string fileVersion = NITF_TEST_21);

  std::string version;
  NITFTestFields header;  // up to and without FL
  NITFTestFields areas;   // what stands behind the tables
  std::vector<NITFTestSegment> images;
  std::vector<NITFTestSegment> graphics;
  std::vector<NITFTestSegment> labels;
  std::vector<NITFTestSegment> texts;
  std::vector<NITFTestSegment> data;
  std::vector<NITFTestSegment> reserved;
  /// Fields of lengths and counts (FL, HL, NUMI, LISH001, LI001 ...) that say something else.
  std::vector<std::pair<std::string, std::string>> lies;

  /// FL, HL and the tables, as they follow from the segments, and with the lies.
  NITFTestFields lengths() const;
  std::string bytes() const;

 private:
  std::string body() const;  // all segments
};

/// A file of one image.
NITFTestFile nitfTestFileOf(const NITFTestSegment& image,
                            const std::string& version = NITF_TEST_21);
/// A small file with segments of all kinds, a masked image among them.
NITFTestFile nitfTestFileOfEverything(const std::string& version);
