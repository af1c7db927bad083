#include "hosts/gri/gri_infoCommand.h"

#include <cpl_error.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <ostream>

#include "hosts/common/gri_hostJson.h"
#include "hosts/common/gri_hostMetadata.h"
#include "hosts/gri/gri_errorText.h"
#include "hosts/gri/gri_exitCodes.h"
#include "hosts/gri/gri_inputFile.h"

namespace {

constexpr size_t LABEL_WIDTH = 16;  // columns

/// A coordinate system in words. Empty strings where it has none.
struct CrsWords {
  std::string name;       // "NAD83 / UTM zone 14N"
  std::string authority;  // "EPSG:26914"
};

CrsWords crsWords(const std::string& wkt) {
  if (wkt.empty()) return {};
  CrsWords words;
  CPLPushErrorHandler(CPLQuietErrorHandler);
  OGRSpatialReference crs;
  if (crs.importFromWkt(wkt.c_str()) == OGRERR_NONE) {
    crs.AutoIdentifyEPSG();
    if (const char* name = crs.GetName()) words.name = name;
    const char* authority = crs.GetAuthorityName(nullptr);
    const char* code = crs.GetAuthorityCode(nullptr);
    if (authority != nullptr && code != nullptr)
      words.authority = std::string(authority) + ":" + code;
  }
  CPLPopErrorHandler();
  return words;
}

std::string pairWords(double first, double second) {
  return gri_hostNumberWords(first) + ", " + gri_hostNumberWords(second);
}

/// "1/8" for an eighth, "2" for the double, "2^127" for the 127th one.
std::string magnificationWords(double magnification) {
  int exponent = 0;
  if (magnification > 1024 && std::frexp(magnification, &exponent) == 0.5) {
    return "2^" + std::to_string(exponent - 1);
  }
  const double inverse = 1 / magnification;
  if (magnification < 1 && inverse == std::floor(inverse))
    return "1/" + gri_hostNumberWords(inverse);
  return gri_hostNumberWords(magnification);
}

std::string sizeWords(gr_uint32 width, gr_uint32 height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

/// Lines of a label and a value each; a line without a label goes on with the one before.
class Sheet {
 public:
  explicit Sheet(const GRITerminal& terminal) : m_terminal(terminal) {}

  void line(const std::string& label, const std::string& value) {
    m_text += "  " + m_terminal.bold(label) +
              std::string(LABEL_WIDTH - std::min(LABEL_WIDTH - 1, label.size()), ' ') +
              gri_hostPrintable(value) + '\n';
  }
  /// A line below the labels, cut to the width of the terminal.
  void detail(const std::string& text) {
    m_text += "    " + GRITerminal::cut(gri_hostPrintable(text), m_terminal.width - 4) + '\n';
  }
  const std::string& text() const { return m_text; }

 private:
  const GRITerminal& m_terminal;
  std::string m_text;
};

std::string bandWords(const GRIHostImageInfo& info) {
  std::string words = std::to_string(info.bands.size());
  bool isNamed = false;
  for (const GRIHostColor color : info.bands) isNamed |= color != GRIHostColor::OTHER;
  if (isNamed) {
    const char* separator = ": ";
    for (const GRIHostColor color : info.bands) {
      words += std::string(separator) + gri_hostColorName(color);
      separator = ", ";
    }
  }
  return words;
}

std::string sampleWords(const GRIHostImageInfo& info) {
  std::string words = gri_hostSampleWords(info.dataType);
  if (info.bits != 8 * info.sampleBytes()) {
    words += ", " + std::to_string(info.bits) + " bits used";
  }
  return words;
}

void describeMagnifications(const GRIHostImageInfo& info, Sheet& sheet) {
  std::string label = "Magnifications";
  if (info.maxMagnification > 1) {
    sheet.line(label, "up to " + magnificationWords(info.maxMagnification));
    label.clear();
  }
  for (const GRIHostLevel& level : info.levels) {
    std::string words = magnificationWords(level.magnification);
    words.resize(std::max<size_t>(words.size() + 1, 8), ' ');
    sheet.line(label, words + sizeWords(level.width, level.height));
    label.clear();
  }
}

void describePosition(const GRIHostImageInfo& info, Sheet& sheet) {
  if (!info.position) {
    sheet.line("Position", "none");
    return;
  }
  const GRIHostPosition& position = *info.position;
  const auto corner = [&](const char* label, const char* name, double column, double row) {
    double x = 0;
    double y = 0;
    position.toGround(column - 0.5, row - 0.5, x, y);
    sheet.line(label, name + pairWords(x, y));
  };
  corner("Corners", "upper left   ", 0, 0);
  corner("", "upper right  ", info.width, 0);
  corner("", "lower left   ", 0, info.height);
  corner("", "lower right  ", info.width, info.height);
  sheet.line("Resolution", pairWords(position.xResolution, position.yResolution));
  if (position.xRotation != 0 || position.yRotation != 0) {
    sheet.line("Rotation", pairWords(position.xRotation, position.yRotation));
  }
}

void describeCrs(const GRIHostImageInfo& info, Sheet& sheet) {
  if (info.crs.empty()) return;
  const CrsWords words = crsWords(info.crs);
  std::string text = words.name.empty() ? "not understood: " + info.crs : words.name;
  if (!words.authority.empty()) text += " (" + words.authority + ")";
  sheet.line("CRS", text);
}

/// The first values of a record, as many as may be worth a line.
std::string valueWords(const GRIHostRecord& record) {
  constexpr size_t MOST_VALUES = 100;
  const size_t count = record.count();
  std::string words;
  for (size_t i = 0; i < std::min(count, MOST_VALUES); ++i) {
    if (i > 0) words += record.isText() ? "; " : " ";
    words += record.words(i);
  }
  if (count > MOST_VALUES) words += " …";
  // Fields of fixed width are filled up with blanks.
  words.erase(words.find_last_not_of(' ') + 1);
  return words;
}

void describeMetadata(const GRIHostImage& image, Sheet& sheet) {
  const size_t count = image.recordCount();
  sheet.line("Metadata", count == 0   ? "none"
                         : count == 1 ? "1 record"
                                      : std::to_string(count) + " records");
  for (size_t i = 0; i < count; ++i) {
    GRIHostRecord record;
    if (!image.record(i, record)) continue;
    std::string name = gri_hostUtf8(record.tag);
    if (record.count() > 1) name += " (" + std::to_string(record.count()) + ")";
    constexpr size_t NAME_WIDTH = 32;
    name.resize(std::max(name.size() + 2, NAME_WIDTH), ' ');
    sheet.detail(name + valueWords(record));
  }
}

nlohmann::ordered_json jsonOf(const std::string& file, const GRIHostImage& image) {
  nlohmann::ordered_json json{{"file", gri_hostUtf8(file.c_str())}};
  json.update(gri_hostInfoJson(image));
  if (!json["crs"].is_null()) {
    const CrsWords words = crsWords(image.info().crs);
    const auto orNull = [](const std::string& text) -> nlohmann::ordered_json {
      if (text.empty()) return nullptr;
      return text;
    };
    json["crs"] = {{"name", orNull(words.name)},
                   {"authority", orNull(words.authority)},
                   {"wkt", image.info().crs}};
  }
  return json;
}

}  // namespace

std::string gri_describe(const GRIHostImage& image, const GRITerminal& terminal) {
  const GRIHostImageInfo& info = image.info();
  Sheet sheet(terminal);
  sheet.line("Format", info.content.name);
  sheet.line("Size", sizeWords(info.width, info.height) + " pixels");
  if (info.tiles != 1) sheet.line("Tiles", std::to_string(info.tiles));
  sheet.line("Bands", bandWords(info));
  sheet.line("Colour", gri_hostColorSpaceName(info.colorSpace));
  sheet.line("Samples", sampleWords(info));
  if (!info.noData.empty()) {
    std::string values;
    for (const double value : info.noData)
      values += (values.empty() ? "" : ", ") + gri_hostNumberWords(value);
    sheet.line("No data", values);
  }
  describeMagnifications(info, sheet);
  describePosition(info, sheet);
  describeCrs(info, sheet);
  if (info.isLocked) sheet.line("Locked", "yes, needs a password");
  describeMetadata(image, sheet);
  return sheet.text();
}

int gri_runInfo(const std::vector<std::string>& files, bool isJson, const GRITerminal& terminal,
                std::ostream& out, std::ostream& err) {
  int exitCode = GRI_EXIT_DONE;
  bool isFirst = true;
  for (const std::string& file : files) {
    GRIInputFile input;
    GRIHostImage image;
    GRIHostError error = input.prepare(file);
    if (!error) error = image.open(input.path());
    if (error) {
      exitCode = GRI_EXIT_FAILED;
      gri_printError(err, file, error);
      if (isJson) {
        const nlohmann::ordered_json json{
            {"file", gri_hostUtf8(file.c_str())},
            {"error", {{"status", error.status}, {"text", gri_hostUtf8(error.text.c_str())}}}};
        out << json.dump(2) << '\n';
      }
      continue;
    }
    if (isJson) {
      out << jsonOf(file, image).dump(2) << '\n';
      continue;
    }
    if (!isFirst) out << '\n';
    isFirst = false;
    out << terminal.bold(gri_hostPrintable(gri_hostUtf8(file.c_str()))) << '\n'
        << gri_describe(image, terminal);
  }
  return exitCode;
}
