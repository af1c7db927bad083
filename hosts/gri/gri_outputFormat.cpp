#include "hosts/gri/gri_outputFormat.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace {

constexpr std::string_view RAW = "raw";

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

bool hasItem(GDALDriver& driver, const char* name) {
  const char* value = driver.GetMetadataItem(name);
  return value != nullptr && CPLTestBool(value);
}

bool canWrite(GDALDriver& driver) {
  return hasItem(driver, GDAL_DCAP_RASTER) &&
         (hasItem(driver, GDAL_DCAP_CREATE) || hasItem(driver, GDAL_DCAP_CREATECOPY));
}

/// True when the blank-separated words of a driver's item hold `word`.
bool hasWord(GDALDriver& driver, const char* item, const std::string& word) {
  const char* words = driver.GetMetadataItem(item);
  if (words == nullptr) return false;
  const CPLStringList list(CSLTokenizeString2(words, " ", 0));
  return list.FindString(word.c_str()) >= 0;
}

GDALDriver* driverOfSuffix(const std::string& suffix) {
  GDALDriverManager* manager = GetGDALDriverManager();
  // Several drivers claim these.
  if (suffix == "tif" || suffix == "tiff") return manager->GetDriverByName("GTiff");
  for (int i = 0; i < manager->GetDriverCount(); ++i) {
    GDALDriver* driver = manager->GetDriver(i);
    const bool isReference = EQUAL(driver->GetDescription(), "VRT");
    if (!isReference && canWrite(*driver) && hasWord(*driver, GDAL_DMD_EXTENSIONS, suffix))
      return driver;
  }
  return nullptr;
}

/// GDAL's names for sample types in words.
std::string typeWords(const std::string& type) {
  struct Words {
    std::string_view type;
    std::string_view words;
  };
  static constexpr std::array<Words, 9> WORDS{{{"Byte", "8-bit unsigned"},
                                               {"UInt16", "16-bit unsigned"},
                                               {"Int16", "16-bit signed"},
                                               {"UInt32", "32-bit unsigned"},
                                               {"Int32", "32-bit signed"},
                                               {"UInt64", "64-bit unsigned"},
                                               {"Int64", "64-bit signed"},
                                               {"Float32", "32-bit float"},
                                               {"Float64", "64-bit float"}}};
  for (const Words& words : WORDS) {
    if (words.type == type) return std::string(words.words);
  }
  return type;
}

}  // namespace

std::string gri_findFormat(const std::string& format, const std::string& output,
                           GRIOutputFormat& found) {
  if (!format.empty()) {
    if (lowerCase(format) == RAW) {
      found = {std::string(RAW), nullptr};
      return {};
    }
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(format.c_str());
    if (driver == nullptr) {
      return "there is no format \"" + format + "\"; `gdalinfo --formats` lists them";
    }
    if (!canWrite(*driver)) return "pictures can't be written as " + format;
    // It would refer to a picture that is gone when the command ends.
    if (EQUAL(driver->GetDescription(), "VRT")) return "VRT holds no picture, only where it is";
    found = {driver->GetDescription(), driver};
    return {};
  }
  if (output == "-") return "standard output needs a format: -f PNG, -f raw ...";
  std::string suffix = lowerCase(std::filesystem::path(output).extension().string());
  if (!suffix.empty()) suffix.erase(0, 1);
  if (suffix == RAW || suffix == "bsq") {
    found = {std::string(RAW), nullptr};
    return {};
  }
  GDALDriver* driver = suffix.empty() ? nullptr : driverOfSuffix(suffix);
  if (driver == nullptr) return "the name tells no format; say which: -f PNG, -f GTiff ...";
  found = {driver->GetDescription(), driver};
  return {};
}

std::string gri_checkFormat(const GRIOutputFormat& format, GDALDataset& picture) {
  if (format.isRaw()) return {};
  const int numBands = picture.GetRasterCount();
  constexpr int MOST_PNG_BANDS = 4;
  if (format.name == "PNG" && numBands > MOST_PNG_BANDS) {
    return "PNG holds 1 to 4 bands, and these are " + std::to_string(numBands) +
           "; choose some (-b 3,2,1) or another format (-f GTiff)";
  }
  const char* types = format.driver->GetMetadataItem(GDAL_DMD_CREATIONDATATYPES);
  if (types == nullptr) return {};
  const char* type = GDALGetDataTypeName(picture.GetRasterBand(1)->GetRasterDataType());
  const CPLStringList list(CSLTokenizeString2(types, " ", 0));
  if (list.FindString(type) >= 0) return {};
  std::string held;
  for (int i = 0; i < list.Count(); ++i) held += (i == 0 ? "" : ", ") + typeWords(list[i]);
  return format.name + " holds " + held + " samples, and these are " + typeWords(type) +
         "; choose another format (-f GTiff, -f raw)";
}

std::string gri_checkCreationOptions(const GRIOutputFormat& format,
                                     const std::vector<std::string>& options) {
  CPLStringList list;
  for (const std::string& option : options) {
    const size_t equals = option.find('=');
    if (equals == 0 || equals == std::string::npos) {
      return "--co takes NAME=VALUE, and \"" + option + "\" is none";
    }
    const std::string name = lowerCase(option.substr(0, equals));
    const std::string value = lowerCase(option.substr(equals + 1));
    if (format.isRaw() && (name != "interleave" || (value != "band" && value != "pixel"))) {
      return "raw has the options INTERLEAVE=BAND and INTERLEAVE=PIXEL, and no " + option;
    }
    list.AddString(option.c_str());
  }
  if (format.isRaw()) return {};
  CPLErrorReset();
  CPLPushErrorHandler(CPLQuietErrorHandler);
  const bool isValid = GDALValidateCreationOptions(format.driver, list.List()) != FALSE;
  CPLPopErrorHandler();
  if (isValid) return {};
  const std::string reason = CPLGetLastErrorMsg();
  return reason.empty() ? format.name + " has no such options" : reason;
}
