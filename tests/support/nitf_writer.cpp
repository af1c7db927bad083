#include "tests/support/nitf_writer.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

std::string number(gr_uint64 value, size_t width) {
  std::string digits = std::to_string(value);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

std::string padded(std::string text, size_t width) {
  if (text.size() < width) text.resize(width, ' ');
  return text;
}

std::string bigEndian(gr_uint64 value, size_t numBytes) {
  std::string bytes;
  for (size_t i = numBytes; i-- > 0;) bytes.push_back(static_cast<char>(value >> (8 * i)));
  return bytes;
}

bool is20(const std::string& version) { return version == NITF_TEST_20; }

void addImageFields(NITFTestFields& f, const std::string& version, const NITFTestPixels& pixels,
                    const std::string& compression) {
  f.add("IM", "IM");
  f.add("IID1", "IMAGE     ");
  f.add("IDATIM", "20240229123456");
  f.add("TGTID", padded("", 17));
  f.add("IID2", padded("", 80));
  nitfTestAddSecurity(f, version);
  f.add("ENCRYP", "0");
  f.add("ISORCE", padded("", 42));
  f.addNumber("NROWS", pixels.numRows, 8);
  f.addNumber("NCOLS", pixels.numCols, 8);
  f.add("PVTYPE", pixels.type);
  f.add("IREP", pixels.numBands == 1 ? "MONO    " : pixels.numBands == 3 ? "RGB     " : "MULTI   ");
  f.add("ICAT", "VIS     ");
  f.addNumber("ABPP", gr_uint64{8} * pixels.sampleBytes, 2);
  f.add("PJUST", "R");
  f.add("ICORDS", is20(version) ? "N" : " ");
  f.add("NICOM", "0");
  f.add("IC", compression);
  const bool isFew = pixels.numBands < 10;
  f.addNumber("NBANDS", isFew ? pixels.numBands : 0, 1);
  const bool isCountedApart = !isFew || (pixels.numBands == 0 && !is20(version));
  if (isCountedApart) f.addNumber("XBANDS", pixels.numBands, 5);
  for (gr_uint32 band = 0; band < pixels.numBands; ++band) {
    const std::string suffix = std::to_string(band + 1);
    f.add("IREPBAND" + suffix, pixels.numBands == 1   ? "M "
                               : pixels.numBands == 3 ? padded(std::string(1, "RGB"[band]), 2)
                                                      : "  ");
    f.add("ISUBCAT" + suffix, padded("", 6));
    f.add("IFC" + suffix, "N");
    f.add("IMFLT" + suffix, "   ");
    f.add("NLUTS" + suffix, "0");
  }
  f.add("ISYNC", "0");
  f.add("IMODE", std::string(1, pixels.mode));
  f.addNumber("NBPR", pixels.blocksPerRow(), 4);
  f.addNumber("NBPC", pixels.blocksPerCol(), 4);
  f.addNumber("NPPBH", pixels.blockCols != 0 ? pixels.blockCols : pixels.numCols, 4);
  f.addNumber("NPPBV", pixels.blockRows != 0 ? pixels.blockRows : pixels.numRows, 4);
  f.addNumber("NBPP", gr_uint64{8} * pixels.sampleBytes, 2);
  f.add("IDLVL", "001");
  f.add("IALVL", "000");
  f.add("ILOCROW", "00000");
  f.add("ILOCCOL", "00000");
  f.add("IMAG", "1.0 ");
  nitfTestAddArea(f, "UDIDL", "");
  nitfTestAddArea(f, "IXSHDL", "");
}

/// A table of the file header: a count, then the two lengths of each segment.
void addTable(NITFTestFields& f, const std::string& count, const std::string& headerName,
              size_t headerWidth, const std::string& dataName, size_t dataWidth,
              const std::vector<NITFTestSegment>& segments) {
  f.addNumber(count, segments.size(), 3);
  for (size_t i = 0; i < segments.size(); ++i) {
    f.addNumber(headerName + number(i + 1, 3), segments[i].header.bytes().size(), headerWidth);
    f.addNumber(dataName + number(i + 1, 3), segments[i].data.size(), dataWidth);
  }
}

}  // namespace

void NITFTestFields::add(const std::string& name, const std::string& value) {
  m_fields.emplace_back(name, value);
}

void NITFTestFields::addNumber(const std::string& name, gr_uint64 value, size_t width) {
  add(name, number(value, width));
}

void NITFTestFields::insertBefore(const std::string& before, const std::string& name,
                                  const std::string& value) {
  m_fields.emplace(find(before), name, value);
}

std::vector<NITFTestFields::Field>::iterator NITFTestFields::find(const std::string& name) {
  const auto found = std::find_if(m_fields.begin(), m_fields.end(),
                                  [&name](const Field& field) { return field.first == name; });
  if (found == m_fields.end()) throw std::out_of_range("no field " + name);
  return found;
}

NITFTestFields& NITFTestFields::set(const std::string& name, const std::string& value) {
  auto& field = find(name)->second;
  field = padded(value, field.size());
  return *this;
}

NITFTestFields& NITFTestFields::set(const std::string& name, gr_uint64 value) {
  auto& field = find(name)->second;
  field = number(value, field.size());
  return *this;
}

NITFTestFields& NITFTestFields::remove(const std::string& name) {
  m_fields.erase(find(name));
  return *this;
}

const std::string& NITFTestFields::get(const std::string& name) const {
  return const_cast<NITFTestFields*>(this)->find(name)->second;
}

std::vector<std::string> NITFTestFields::names() const {
  std::vector<std::string> names;
  for (const Field& field : m_fields) names.push_back(field.first);
  return names;
}

std::string NITFTestFields::bytes() const {
  std::string all;
  for (const Field& field : m_fields) all += field.second;
  return all;
}

gr_uint32 NITFTestPixels::defaultSample(gr_uint32 band, gr_uint32 row, gr_uint32 col) {
  return (band + 1) * 0x3C6EF35Fu + row * 0x9E3779B1u + col * 0x85EBCA77u;
}

gr_uint32 NITFTestPixels::blocksPerRow() const {
  return blockCols == 0 ? 1 : (numCols + blockCols - 1) / blockCols;
}

gr_uint32 NITFTestPixels::blocksPerCol() const {
  return blockRows == 0 ? 1 : (numRows + blockRows - 1) / blockRows;
}

gr_uint32 NITFTestPixels::numBlocks() const {
  return blocksPerRow() * blocksPerCol() * (mode == 'S' ? numBands : 1);
}

std::string NITFTestPixels::block(gr_uint32 number) const {
  const gr_uint32 cols = blockCols != 0 ? blockCols : numCols;
  const gr_uint32 rows = blockRows != 0 ? blockRows : numRows;
  const gr_uint32 perBand = blocksPerRow() * blocksPerCol();
  const gr_uint32 left = number % perBand % blocksPerRow() * cols;
  const gr_uint32 top = number % perBand / blocksPerRow() * rows;
  const gr_uint32 sequentialBand = number / perBand;
  std::string bytes;
  const auto put = [&](gr_uint32 band, gr_uint32 row, gr_uint32 col) {
    const gr_uint32 value = sample(band, top + row, left + col);
    for (gr_uint32 i = sampleBytes; i-- > 0;) bytes.push_back(static_cast<char>(value >> (8 * i)));
  };
  // Straight from the definition of the four modes.
  if (mode == 'P') {
    for (gr_uint32 row = 0; row < rows; ++row)
      for (gr_uint32 col = 0; col < cols; ++col)
        for (gr_uint32 band = 0; band < numBands; ++band) put(band, row, col);
  } else if (mode == 'R') {
    for (gr_uint32 row = 0; row < rows; ++row)
      for (gr_uint32 band = 0; band < numBands; ++band)
        for (gr_uint32 col = 0; col < cols; ++col) put(band, row, col);
  } else if (mode == 'S') {
    for (gr_uint32 row = 0; row < rows; ++row)
      for (gr_uint32 col = 0; col < cols; ++col) put(sequentialBand, row, col);
  } else {
    for (gr_uint32 band = 0; band < numBands; ++band)
      for (gr_uint32 row = 0; row < rows; ++row)
        for (gr_uint32 col = 0; col < cols; ++col) put(band, row, col);
  }
  return bytes;
}

std::string NITFTestPixels::allBlocks() const {
  std::string bytes;
  for (gr_uint32 i = 0; i < numBlocks(); ++i) bytes += block(i);
  return bytes;
}

std::vector<gr_uint8> NITFTestPixels::decoded(gr_uint32 band) const {
  constexpr bool IS_LITTLE = std::endian::native == std::endian::little;
  std::vector<gr_uint8> bytes;
  for (gr_uint32 row = 0; row < numRows; ++row) {
    for (gr_uint32 col = 0; col < numCols; ++col) {
      const gr_uint32 value = sample(band, row, col);
      for (gr_uint32 i = 0; i < sampleBytes; ++i) {
        const gr_uint32 place = IS_LITTLE ? i : sampleBytes - 1 - i;
        bytes.push_back(static_cast<gr_uint8>(value >> (8 * place)));
      }
    }
  }
  return bytes;
}

void nitfTestAddSecurity(NITFTestFields& f, const std::string& version) {
  if (is20(version)) {
    f.add("SECURITY", padded("U", 167));
    return;
  }
  f.add("SCLAS", "U");
  const std::pair<const char*, size_t> blanks[] = {
      {"SCLSY", 2}, {"SCODE", 11}, {"SCTLH", 2}, {"SREL", 20}, {"SDCTP", 2},
      {"SDCDT", 8}, {"SDCXM", 4},  {"SDG", 1},   {"SDGDT", 8}, {"SCLTX", 43},
      {"SCATP", 1}, {"SCAUT", 40}, {"SCRSN", 1}, {"SSRDT", 8}, {"SCTLN", 15}};
  for (const auto& [name, width] : blanks) f.add(name, padded("", width));
}

void nitfTestAddArea(NITFTestFields& f, const std::string& name, const std::string& tags,
                     gr_uint32 overflow, bool isPresent) {
  const bool hasArea = isPresent || overflow != 0 || !tags.empty();
  f.addNumber(name, hasArea ? tags.size() + 3 : 0, 5);
  if (!hasArea) return;
  f.addNumber(name + "_OVERFLOW", overflow, 3);
  f.add(name + "_TAGS", tags);
}

NITFTestSegment nitfTestImage(const std::string& version, const NITFTestPixels& pixels) {
  NITFTestSegment image;
  addImageFields(image.header, version, pixels, "NC");
  image.data = pixels.allBlocks();
  return image;
}

NITFTestSegment nitfTestMaskedImage(const std::string& version, const NITFTestPixels& pixels,
                                    const NITFTestMask& mask) {
  NITFTestSegment image;
  addImageFields(image.header, version, pixels, "NM");
  std::string blocks;
  std::string table;
  for (gr_uint32 i = 0; i < pixels.numBlocks(); ++i) {
    const bool isAbsent = std::find(mask.absent.begin(), mask.absent.end(), i) != mask.absent.end();
    table += bigEndian(isAbsent ? 0xFFFFFFFF : blocks.size(), 4);
    if (!isAbsent) blocks += pixels.block(i);
  }
  std::string tables;
  if (mask.hasBlockTable) tables += table;
  if (mask.hasPadTable) tables += std::string(size_t{4} * pixels.numBlocks(), '\xFF');
  const std::string padCode = mask.padCode.value_or("");
  const size_t length = 10 + padCode.size() + tables.size();
  image.data = bigEndian(length + mask.gap, 4) +
               bigEndian(mask.hasBlockTable ? mask.blockEntryLength : 0, 2) +
               bigEndian(mask.hasPadTable ? mask.padEntryLength : 0, 2) +
               bigEndian(padCode.size() * 8, 2) + padCode + tables + std::string(mask.gap, '\xEE') +
               blocks;
  return image;
}

NITFTestSegment nitfTestGraphic(const std::string& version) {
  NITFTestSegment graphic;
  NITFTestFields& f = graphic.header;
  f.add("SY", "SY");
  f.add("SID", "GRAPHIC   ");
  f.add("SNAME", padded("", 20));
  nitfTestAddSecurity(f, version);
  f.add("ENCRYP", "0");
  f.add("SFMT", "C");
  if (is20(version)) {
    f.add("NLIPS", "0000");
    f.add("NPIXPL", "0000");
    f.add("NWDTH", "0000");
    f.add("NBPP", "0");
  } else {
    f.add("SSTRUCT", "0000000000000");
  }
  f.add("SDLVL", "002");
  f.add("SALVL", "000");
  f.add("SROW", "00000");
  f.add("SCOL", "00000");
  f.add("SBND1", "0000000000");
  f.add("SCOLOR", "C");
  if (is20(version)) {
    f.add("SNUM", "000000");
    f.add("SROT", "000");
    f.add("NELUT", "000");
  } else {
    f.add("SBND2", "0000000000");
    f.add("SRES2", "00");
  }
  nitfTestAddArea(f, "SXSHDL", "");
  graphic.data = "CGM";
  return graphic;
}

NITFTestSegment nitfTestLabel(const std::string& version, const std::string& text) {
  NITFTestSegment label;
  NITFTestFields& f = label.header;
  f.add("LA", "LA");
  f.add("LID", "LABEL     ");
  nitfTestAddSecurity(f, version);
  f.add("ENCRYP", "0");
  f.add("LFS", " ");
  f.add("LCWLCH", "0000");
  f.add("LDLVL", "003");
  f.add("LALVL", "000");
  f.add("LLOC", "0000000000");
  f.add("LTC", "\xFF\xFF\xFF");
  f.add("LBC", std::string(3, '\0'));
  nitfTestAddArea(f, "LXSHDL", "");
  label.data = text;
  return label;
}

NITFTestSegment nitfTestText(const std::string& version, const std::string& text) {
  NITFTestSegment segment;
  NITFTestFields& f = segment.header;
  f.add("TE", "TE");
  f.add("TEXTID", "TEXT001");
  f.add("TXTALVL", "000");
  f.add("TXTDT", "20240229123456");
  f.add("TXTITL", padded("A title", 80));
  nitfTestAddSecurity(f, version);
  f.add("ENCRYP", "0");
  f.add("TXTFMT", "STA");
  nitfTestAddArea(f, "TXSHDL", "");
  segment.data = text;
  return segment;
}

NITFTestSegment nitfTestData(const std::string& version, const std::string& tag) {
  NITFTestSegment segment;
  NITFTestFields& f = segment.header;
  f.add("DE", "DE");
  f.add("DESTAG", padded(tag, 25));
  f.add("DESVER", "01");
  nitfTestAddSecurity(f, version);
  if (tag == "TRE_OVERFLOW" || tag == "Registered Extensions" || tag == "Controlled Extensions") {
    f.add("DESOFLW", "UDHD  ");
    f.add("DESITEM", "000");
  }
  f.add("DESSHL", "0000");
  segment.data = "data";
  return segment;
}

NITFTestSegment nitfTestReserved(const std::string& version) {
  NITFTestSegment segment;
  NITFTestFields& f = segment.header;
  f.add("RE", "RE");
  f.add("RESID", padded("RESERVED", 25));
  f.add("RESVER", "01");
  nitfTestAddSecurity(f, version);
  f.add("RESSHL", "0000");
  segment.data = "reserved";
  return segment;
}

NITFTestFile::NITFTestFile(std::string fileVersion) : version(std::move(fileVersion)) {
  header.add("FHDR", version.substr(0, 4));
  header.add("FVER", version.substr(4));
  header.add("CLEVEL", "03");
  header.add("STYPE", "BF01");
  header.add("OSTAID", "STATION   ");
  header.add("FDT", "20240229123456");
  header.add("FTITLE", padded("A file", 80));
  nitfTestAddSecurity(header, version);
  header.add("FSCOP", "00000");
  header.add("FSCPYS", "00000");
  header.add("ENCRYP", "0");
  if (is20(version)) {
    header.add("ONAME", padded("Somebody", 27));
  } else {
    header.add("FBKGC", std::string(3, '\0'));
    header.add("ONAME", padded("Somebody", 24));
  }
  header.add("OPHONE", padded("555", 18));
  nitfTestAddArea(areas, "UDHDL", "");
  nitfTestAddArea(areas, "XHDL", "");
}

NITFTestFields NITFTestFile::lengths() const {
  NITFTestFields lengths;
  lengths.addNumber("FL", 0, 12);
  lengths.addNumber("HL", 0, 6);
  addTable(lengths, "NUMI", "LISH", 6, "LI", 10, images);
  addTable(lengths, "NUMS", "LSSH", 4, "LS", 6, graphics);
  addTable(lengths, "NUML", "LLSH", 4, "LL", 3, labels);
  addTable(lengths, "NUMT", "LTSH", 4, "LT", 5, texts);
  addTable(lengths, "NUMDES", "LDSH", 4, "LD", 9, data);
  addTable(lengths, "NUMRES", "LRESH", 4, "LRE", 7, reserved);
  const size_t headerLength = header.bytes().size() + lengths.bytes().size() + areas.bytes().size();
  lengths.set("HL", headerLength);
  lengths.set("FL", headerLength + body().size());
  for (const auto& [name, value] : lies) lengths.set(name, value);
  return lengths;
}

std::string NITFTestFile::body() const {
  std::string bytes;
  for (const auto* const list : {&images, &graphics, &labels, &texts, &data, &reserved}) {
    for (const NITFTestSegment& segment : *list) bytes += segment.header.bytes() + segment.data;
  }
  return bytes;
}

std::string NITFTestFile::bytes() const {
  return header.bytes() + lengths().bytes() + areas.bytes() + body();
}

NITFTestFile nitfTestFileOf(const NITFTestSegment& image, const std::string& version) {
  NITFTestFile file(version);
  file.images.push_back(image);
  return file;
}

NITFTestFile nitfTestFileOfEverything(const std::string& version) {
  NITFTestFile file(version);
  const NITFTestPixels pixels = {
      .numCols = 6, .numRows = 5, .numBands = 2, .blockCols = 4, .blockRows = 4};
  file.images = {
      nitfTestMaskedImage(version, pixels, {.absent = {1}, .padCode = "\x07", .hasPadTable = true}),
      nitfTestImage(version, {.numCols = 3, .numRows = 2})};
  file.graphics = {nitfTestGraphic(version)};
  file.labels = {nitfTestLabel(version, "label")};
  file.texts = {nitfTestText(version, "text")};
  file.data = {nitfTestData(version, "TRE_OVERFLOW")};
  file.reserved = {nitfTestReserved(version)};
  return file;
}
