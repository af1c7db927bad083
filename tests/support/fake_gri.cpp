#include "tests/support/fake_gri.h"

#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

namespace {

/// What crosses the interface when the library runs out of memory: of no known type.
struct FakeException {};

struct FakeRecord {
  std::string tag;
  gr_int32 dataType = GRIC_METADATA_DATATYPE_INVALID;
  std::vector<gr_uint32> dims;
  std::vector<char> data;
  std::vector<std::string> texts;
  std::vector<const char*> textPointers;

  const void* values() const {
    if (dataType == GRIC_METADATA_DATATYPE_ASCII) return textPointers.data();
    return data.data();
  }
};

int openHandles = 0;
int decodeCalls = 0;
bool isMessagesOn = false;

FakeRecord textRecord(const std::string& tag, std::vector<std::string> texts) {
  FakeRecord record;
  record.tag = tag;
  record.dataType = GRIC_METADATA_DATATYPE_ASCII;
  record.dims = {static_cast<gr_uint32>(texts.size())};
  record.texts = std::move(texts);
  return record;
}

template <typename T>
FakeRecord numberRecord(const std::string& tag, gr_int32 type, std::vector<gr_uint32> dims,
                        const std::vector<T>& values) {
  FakeRecord record;
  record.tag = tag;
  record.dataType = type;
  record.dims = std::move(dims);
  record.data.resize(std::max<size_t>(1, values.size() * sizeof(T)));
  if (!values.empty()) std::memcpy(record.data.data(), values.data(), values.size() * sizeof(T));
  return record;
}

template <typename T>
void fill(void* band, gr_uint32 number, gr_uint32 column, gr_uint32 row, gr_uint32 width,
          gr_uint32 height, int level) {
  auto* samples = static_cast<T*>(band);
  for (gr_uint32 y = 0; y < height; ++y) {
    for (gr_uint32 x = 0; x < width; ++x) {
      *samples++ = static_cast<T>(fake_sample(number, column + x, row + y, level));
    }
  }
}

using Fill = void (*)(void*, gr_uint32, gr_uint32, gr_uint32, gr_uint32, gr_uint32, int);

Fill fillOf(gr_int32 dataType) {
  static constexpr std::array<Fill, 11> FILLS{nullptr,         fill<gr_uint8>, fill<gr_int8>,
                                              fill<gr_uint16>, fill<gr_int16>, fill<gr_uint32>,
                                              fill<gr_int32>,  fill<float>,    fill<double>,
                                              fill<gr_uint64>, fill<gr_int64>};
  return FILLS.at(static_cast<size_t>(dataType));
}

/// The record type of a sample type.
gr_int32 recordType(gr_int32 dataType) {
  static constexpr std::array<gr_int32, 11> TYPES{0, 1, 2, 3, 4, 5, 6, 9, 10, 7, 8};
  return TYPES.at(static_cast<size_t>(dataType));
}

FakeRecord noDataRecord(const FakePicture& picture) {
  FakeRecord record;
  record.tag = "IMAGE::TRANSPARENT_DATA_VALUE";
  const bool isOfSamples = picture.noDataType == GRIC_DATATYPE_INVALID;
  const gr_int32 type = isOfSamples ? picture.dataType : picture.noDataType;
  record.dataType = recordType(type);
  record.dims = {static_cast<gr_uint32>(picture.noData.size())};
  const auto append = [&](auto value) {
    const char* bytes = reinterpret_cast<const char*>(&value);
    record.data.insert(record.data.end(), bytes, bytes + sizeof value);
  };
  for (const double value : picture.noData) {
    switch (type) {
      case GRIC_DATATYPE_UINT8:
        append(static_cast<gr_uint8>(value));
        break;
      case GRIC_DATATYPE_SINT8:
        append(static_cast<gr_int8>(value));
        break;
      case GRIC_DATATYPE_UINT16:
        append(static_cast<gr_uint16>(value));
        break;
      case GRIC_DATATYPE_SINT16:
        append(static_cast<gr_int16>(value));
        break;
      case GRIC_DATATYPE_FLOAT32:
        append(static_cast<float>(value));
        break;
      case GRIC_DATATYPE_FLOAT64:
        append(value);
        break;
      default:
        append(static_cast<gr_int64>(value));
        break;
    }
  }
  return record;
}

std::vector<FakeRecord> oddRecords() {
  return {
      textRecord("TEST::Scalar", {"one"}),
      textRecord("TEST::Texts", {"a", "", "caf\xE9 \x1B[31m"}),
      numberRecord<gr_uint8>("TEST::Matrix", GRIC_METADATA_DATATYPE_UINT8, {2, 3},
                             {1, 2, 3, 4, 5, 6}),
      numberRecord<gr_uint64>("TEST::Large", GRIC_METADATA_DATATYPE_UINT64, {1},
                              {18446744073709551615u}),
      numberRecord<gr_int64>("TEST::Small", GRIC_METADATA_DATATYPE_SINT64, {1},
                             {-9223372036854775807}),
      numberRecord<float>("TEST::Float", GRIC_METADATA_DATATYPE_FLOAT32, {2}, {0.5f, -1.5f}),
      numberRecord<gr_int16>("TEST::Empty", GRIC_METADATA_DATATYPE_SINT16, {0}, {}),
  };
}

std::vector<FakeRecord> recordsOf(const FakePicture& picture) {
  std::vector<FakeRecord> records;
  if (picture.hasOddRecords) records = oddRecords();
  if (!picture.wkt.empty()) records.push_back(textRecord("IMAGE::WKT", {picture.wkt}));
  if (!picture.noData.empty()) records.push_back(noDataRecord(picture));
  if (picture.bits != 0) {
    records.push_back(numberRecord<gr_uint16>("IMAGE::BITS_PER_SAMPLE",
                                              GRIC_METADATA_DATATYPE_UINT16, {1},
                                              {static_cast<gr_uint16>(picture.bits)}));
  }
  if (picture.tiles != 0) {
    records.push_back(numberRecord<gr_uint32>("IMAGE::NUMBER_OF_TILES",
                                              GRIC_METADATA_DATATYPE_UINT32, {1}, {picture.tiles}));
  }
  if (picture.statesPosition) {
    const auto doubles = [](const char* tag, const std::vector<double>& values) {
      return numberRecord<double>(tag, GRIC_METADATA_DATATYPE_FLOAT64,
                                  {static_cast<gr_uint32>(values.size())}, values);
    };
    records.push_back(doubles("IMAGE::XY_ORIGIN", {0, 0}));
    records.push_back(doubles("IMAGE::X_RESOLUTION", {1}));
    records.push_back(doubles("IMAGE::Y_RESOLUTION", {-1}));
  }
  for (FakeRecord& record : records) {
    for (const std::string& text : record.texts) record.textPointers.push_back(text.c_str());
  }
  return records;
}

std::string formatHead(FakePicture::Format format) {
  using namespace std::literals;
  switch (format) {
    case FakePicture::NITF:
      return "NITF02.10\n";
    case FakePicture::JP2:
      return "\0\0\0\x0CjP  \r\n\x87\n"s;
    case FakePicture::TESRA:
      break;
  }
  return "tsra\3\0\0\0\n"s;
}

/// The keys and values behind the first bytes; none when the file has other ones.
std::optional<std::map<std::string, std::string>> readDescription(const char* path,
                                                                  FakePicture::Format format) {
  std::ifstream file(path, std::ios::binary);
  const std::string head = formatHead(format);
  std::string bytes(head.size(), '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (bytes != head) return std::nullopt;
  std::map<std::string, std::string> description;
  std::string line;
  while (std::getline(file, line)) {
    const size_t blank = line.find(' ');
    if (blank != std::string::npos) description[line.substr(0, blank)] = line.substr(blank + 1);
  }
  return description;
}

std::vector<double> numbersOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<double> numbers;
  for (double number = 0; stream >> number;) numbers.push_back(number);
  return numbers;
}

FakePicture pictureOf(const std::map<std::string, std::string>& description) {
  const auto text = [&](const char* key) { return description.at(key); };
  const auto number = [&](const char* key) { return std::stod(description.at(key)); };
  const auto count = [&](const char* key) { return static_cast<gr_uint32>(number(key)); };
  FakePicture picture;
  picture.width = count("width");
  picture.height = count("height");
  picture.bands = count("bands");
  picture.colorSpace = static_cast<gr_int32>(number("colorSpace"));
  picture.dataType = static_cast<gr_int32>(number("dataType"));
  picture.minMagnification = number("minMagnification");
  picture.maxMagnification = number("maxMagnification");
  picture.position = numbersOf(text("position"));
  picture.openStatus = count("openStatus");
  picture.damagedFrom = count("damagedFrom");
  picture.damagedTo = count("damagedTo");
  picture.damageStatus = count("damageStatus");
  picture.throws = static_cast<FakePicture::Throws>(count("throws"));
  picture.isLocked = number("isLocked") != 0;
  picture.wkt = text("wkt");
  picture.noData = numbersOf(text("noData"));
  picture.noDataType = static_cast<gr_int32>(number("noDataType"));
  picture.bits = count("bits");
  picture.hasOddRecords = number("hasOddRecords") != 0;
  picture.tiles = count("tiles");
  picture.statesPosition = number("statesPosition") != 0;
  return picture;
}

}  // namespace

struct gric_image_s {
  FakePicture picture;
  std::vector<FakeRecord> records;
  std::string password;

  double geo(size_t index) const {
    const std::vector<double> none{0, picture.height - 1.0, 1, -1, 0, 0};
    return (picture.position.empty() ? none : picture.position).at(index);
  }
};

namespace {

GR_STATUS open(gric_image* image, const char* path, FakePicture::Format format,
               GR_STATUS otherFormat) {
  if (image == nullptr || path == nullptr) return GRIC_STATUS_NULL_ARGUMENT;
  *image = nullptr;
  const auto description = readDescription(path, format);
  if (!description) return otherFormat;
  const FakePicture picture = pictureOf(*description);
  if (picture.throws == FakePicture::Throws::WHEN_OPENED) throw FakeException();
  if (picture.openStatus != 0) return picture.openStatus;
  auto opened = std::make_unique<gric_image_s>();
  opened->picture = picture;
  opened->records = recordsOf(picture);
  ++openHandles;
  *image = opened.release();
  return GRIC_STATUS_OK;
}

bool touchesDamage(const FakePicture& picture, double row, double height, double magnification) {
  return row < picture.damagedTo * magnification &&
         row + height > picture.damagedFrom * magnification;
}

}  // namespace

void FakePicture::writeTo(const std::filesystem::path& path) const {
  std::ofstream file(path, std::ios::binary);
  file.precision(17);
  file << formatHead(format);
  const auto line = [&](const char* key, const auto& value) {
    file << key << ' ' << value << '\n';
  };
  const auto numbers = [](const std::vector<double>& values) {
    std::ostringstream text;
    text.precision(17);
    for (const double value : values) text << value << ' ';
    return text.str();
  };
  line("width", width);
  line("height", height);
  line("bands", bands);
  line("colorSpace", colorSpace);
  line("dataType", dataType);
  line("minMagnification", minMagnification);
  line("maxMagnification", maxMagnification);
  line("position", numbers(position));
  line("openStatus", openStatus);
  line("damagedFrom", damagedFrom);
  line("damagedTo", damagedTo);
  line("damageStatus", damageStatus);
  line("throws", static_cast<int>(throws));
  line("isLocked", isLocked);
  line("wkt", wkt);
  line("noData", numbers(noData));
  line("noDataType", noDataType);
  line("bits", bits);
  line("hasOddRecords", hasOddRecords);
  line("tiles", tiles);
  line("statesPosition", statesPosition);
}

double fake_sample(gr_uint32 band, gr_uint32 column, gr_uint32 row, int level) {
  // Below 128 fits every data type. Primes, so that a shift by a pixel or a band shows.
  return (column * 7 + row * 13 + band * 29 + static_cast<gr_uint32>(level) * 3) % 127;
}

int fake_openHandles() { return openHandles; }
int fake_decodeCalls() { return decodeCalls; }

FakeDirectory::FakeDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "gri_test_XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory");
  m_path = pattern;
}

FakeDirectory::~FakeDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> FakeDirectory::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// --- The exported functions ---

gr_uint32 initializeStatusStrings() {
  if (isMessagesOn) return 3070;
  isMessagesOn = true;
  return 0;
}

gr_uint32 terminateStatusStrings() {
  if (!isMessagesOn) return 3070;
  isMessagesOn = false;
  return 0;
}

const char* getRawStatusString(GR_STATUS status) {
  switch (status) {
    case 0:
      return "Success";
    case 2005:
      return "invalid TG3 format";
    case 50001:
      return "unsupported datatype";
    case 50002:
      return "requested operation not supported";
    case 50014:
      return "specified scene out of range of image";
    case 50613:
      return "can't open file: %F";
    case 50015:
      return "scene magnification out of range";
    case 51210:
      return "file is not valid NITF 2.1 (2500C) file";
    default:
      return "unknown status";
  }
}

const char* getLastStatusString(GR_STATUS status) {
  static std::array<char, 4096> text;
  const char* message = getRawStatusString(status);
  if (isMessagesOn && std::strchr(message, '%') != nullptr) {
    message = "error retrieving status string (3070)";  // no failure has left details
  }
  std::snprintf(text.data(), text.size(), "%s [%d]", message, static_cast<int>(status));
  return text.data();
}

gr_ioCStream gr_ioCallbackStreamCreate(gr_ioCOpenFunction, gr_ioCCloseFunction, gr_ioCReadFunction,
                                       gr_ioCWriteFunction, gr_ioCSeekFunction, gr_ioCTellFunction,
                                       gr_ioCIsEOFFunction, gr_ioCIsOpenFunction,
                                       gr_ioCDuplicateFunction, void*) {
  return nullptr;
}
gr_int32 gr_ioCStreamDestroy(gr_ioCStream) { return 0; }
gr_int32 gr_ioCStreamOpen(gr_ioCStream) { return 1; }
gr_int32 gr_ioCStreamClose(gr_ioCStream) { return 0; }
gr_uint32 gr_ioCStreamRead(gr_ioCStream, gr_uint8*, gr_uint32) { return 0; }
gr_uint32 gr_ioCStreamWrite(gr_ioCStream, const gr_uint8*, gr_uint32) { return 0; }
gr_int32 gr_ioCStreamSeek(gr_ioCStream, gr_int64, gr_int32) { return 1; }
gr_int64 gr_ioCStreamTell(gr_ioCStream) { return -1; }
gr_uint8 gr_ioCStreamIsEOF(gr_ioCStream) { return 1; }
gr_uint8 gr_ioCStreamIsOpen(gr_ioCStream) { return 0; }
gr_ioCStream gr_ioCStreamDuplicate(gr_ioCStream) { return nullptr; }

GR_STATUS gric_getVersion(gr_uint32* major, gr_uint32* minor, gr_uint32* tweak, gr_uint32* build,
                          const char** branch) {
  if (major == nullptr || branch == nullptr) return GRIC_STATUS_NULL_ARGUMENT;
  *major = 7;
  *minor = 0;
  *tweak = 0;
  *build = 2181;
  *branch = "FAKE";
  return GRIC_STATUS_OK;
}

GR_STATUS gric_openTesraImageFile(gric_image* image, const char* fileName) {
  return open(image, fileName, FakePicture::TESRA, 50607);
}
GR_STATUS gric_openTesraImageStream(gric_image*, gr_ioCStream) { return 50002; }
GR_STATUS gric_openJP2ImageFile(gric_image* image, const char* fileName) {
  return open(image, fileName, FakePicture::JP2, 50952);
}
GR_STATUS gric_openJP2ImageStream(gric_image*, gr_ioCStream) { return 50002; }
GR_STATUS gric_openNITFImageFile(gric_image* image, const char* fileName) {
  return open(image, fileName, FakePicture::NITF, 51210);
}

GR_STATUS gric_closeImage(gric_image image) {
  if (image == nullptr) return GRIC_STATUS_NULL_ARGUMENT;
  const std::unique_ptr<gric_image_s> owner(image);
  --openHandles;
  if (owner->picture.throws == FakePicture::Throws::WHEN_CLOSED) throw FakeException();
  return GRIC_STATUS_OK;
}

gr_uint32 gric_getWidth(gric_image image) { return image->picture.width; }
gr_uint32 gric_getHeight(gric_image image) { return image->picture.height; }
gr_uint16 gric_getNumBands(gric_image image) {
  return static_cast<gr_uint16>(image->picture.bands);
}
gr_int32 gric_getColorSpace(gric_image image) { return image->picture.colorSpace; }
gr_int32 gric_getDataType(gric_image image) { return image->picture.dataType; }
double gric_getMinMagnification(gric_image image) { return image->picture.minMagnification; }
double gric_getMaxMagnification(gric_image image) { return image->picture.maxMagnification; }
double gric_getGeoXOrigin(gric_image image) { return image->geo(0); }
double gric_getGeoYOrigin(gric_image image) { return image->geo(1); }
double gric_getGeoXResolution(gric_image image) { return image->geo(2); }
double gric_getGeoYResolution(gric_image image) { return image->geo(3); }
double gric_getGeoXRotation(gric_image image) { return image->geo(4); }
double gric_getGeoYRotation(gric_image image) { return image->geo(5); }
gr_uint32 gric_getNumMetadataRecords(gric_image image) {
  return image == nullptr ? 0 : static_cast<gr_uint32>(image->records.size());
}

GR_STATUS gric_getDimsAtMag(gric_image image, double magnification, gr_uint32* width,
                            gr_uint32* height) {
  if (image == nullptr) return GRIC_STATUS_NULL_ARGUMENT;
  const FakePicture& picture = image->picture;
  if (magnification < picture.minMagnification || magnification > picture.maxMagnification) {
    return GRIC_STATUS_OUT_OF_RANGE;
  }
  *width = static_cast<gr_uint32>(std::ceil(picture.width * magnification));
  *height = static_cast<gr_uint32>(std::ceil(picture.height * magnification));
  return GRIC_STATUS_OK;
}

gr_int32 gric_isTesraLocked(gric_image image) { return image->picture.isLocked ? 1 : 0; }

GR_STATUS gric_setTesraPassword(gric_image image, const char* password) {
  image->password = password;
  return GRIC_STATUS_OK;
}

GR_STATUS gric_decode(gric_image image, double xUpperLeft, double yUpperLeft, double width,
                      double height, double magnification, void** bandData) {
  const FakePicture& picture = image->picture;
  ++decodeCalls;
  if (picture.throws == FakePicture::Throws::WHEN_DECODED) throw FakeException();
  gr_uint32 columns = 0;
  gr_uint32 rows = 0;
  if (gric_getDimsAtMag(image, magnification, &columns, &rows) != 0) return 50015;
  if (xUpperLeft < 0 || yUpperLeft < 0 || xUpperLeft + width > columns ||
      yUpperLeft + height > rows) {
    return 50014;
  }
  if (picture.isLocked && image->password != "secret") return 2011;
  if (touchesDamage(picture, yUpperLeft, height, magnification)) return picture.damageStatus;
  const int level = static_cast<int>(std::lround(-std::log2(magnification)));
  for (gr_uint32 band = 0; band < picture.bands; ++band) {
    fillOf(picture.dataType)(bandData[band], band, static_cast<gr_uint32>(xUpperLeft),
                             static_cast<gr_uint32>(yUpperLeft), static_cast<gr_uint32>(width),
                             static_cast<gr_uint32>(height), level);
  }
  return GRIC_STATUS_OK;
}

GR_STATUS gric_getMetadataRecord(gric_image image, gr_uint32 index, const char** tag,
                                 gr_int32* dataType, gr_uint32* numDims, const gr_uint32** dims,
                                 const void** data) {
  if (index >= image->records.size()) return 50503;
  const FakeRecord& record = image->records[index];
  *tag = record.tag.c_str();
  *dataType = record.dataType;
  *numDims = static_cast<gr_uint32>(record.dims.size());
  *dims = record.dims.data();
  *data = record.values();
  return GRIC_STATUS_OK;
}
