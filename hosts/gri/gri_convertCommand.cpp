#include "hosts/gri/gri_convertCommand.h"

#include <gdal_priv.h>
#include <gdal_utils.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "hosts/common/gri_hostMetadata.h"
#include "hosts/gri/gri_errorText.h"
#include "hosts/gri/gri_exitCodes.h"
#include "hosts/gri/gri_inputFile.h"
#include "hosts/gri/gri_interrupt.h"
#include "hosts/gri/gri_outputFile.h"
#include "hosts/gri/gri_outputFormat.h"
#include "hosts/gri/gri_passwords.h"
#include "hosts/gri/gri_progress.h"
#include "hosts/gri/gri_rawWriter.h"

namespace {

// GDAL would take a share of the machine's memory. Strips pass through once, so little is enough.
constexpr GIntBig CACHE_BYTES = GIntBig{32} << 20;

/// GDAL, made ready for this command: quiet, with a small cache, and without files beside the
/// output. What it complains of is kept for us.
class GdalSession {
 public:
  GdalSession() {
    CPLSetConfigOption("GDAL_PAM_ENABLED", "NO");
    GDALSetCacheMax64(CACHE_BYTES);
    GDALAllRegister();
    CPLPushErrorHandlerEx(&GdalSession::onError, this);
  }
  ~GdalSession() { CPLPopErrorHandler(); }
  GdalSession(const GdalSession&) = delete;
  GdalSession& operator=(const GdalSession&) = delete;

  /// The first failure since the last `forget`; empty when there was none.
  const std::string& failure() const { return m_failure; }
  /// What it warned of since then, each once.
  const std::vector<std::string>& warnings() const { return m_warnings; }
  void forget() {
    m_failure.clear();
    m_warnings.clear();
  }

 private:
  static void CPL_STDCALL onError(CPLErr kind, CPLErrorNum, const char* message) {
    auto* session = static_cast<GdalSession*>(CPLGetErrorHandlerUserData());
    std::string text = message;
    text.erase(text.find_last_not_of(" \n") + 1);
    if (kind >= CE_Failure && session->m_failure.empty()) session->m_failure = text;
    std::vector<std::string>& warnings = session->m_warnings;
    const bool isNew = std::find(warnings.begin(), warnings.end(), text) == warnings.end();
    if (kind == CE_Warning && isNew) warnings.emplace_back(text);
  }

  std::string m_failure;
  std::vector<std::string> m_warnings;
};

int CPL_STDCALL onProgress(double fraction, const char*, void* data) {
  static_cast<GRIProgress*>(data)->show(fraction);
  return GRIInterrupt::wasRaised() ? FALSE : TRUE;
}

struct DatasetCloser {
  void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};
using Dataset = std::unique_ptr<GDALDataset, DatasetCloser>;

/// A conversion under way.
class Conversion {
 public:
  Conversion(const GRIConvertOptions& options, std::ostream* progress, std::ostream& err)
      : m_options(options), m_progress(progress), m_err(err) {}

  int run();

 private:
  int openInput();
  int setPassword(GRIHostImage& image);
  GRIHostError resample();
  int write();
  GRIHostError writeFormat();
  GRIHostError writeWorldFile();
  int wrongUse(const std::string& file, const std::string& text);
  int failed(const std::string& file, const GRIHostError& error);
  int finish();

  /// What is written: the picture's view, or that view resampled.
  GDALDataset& source() { return m_resampled ? *m_resampled : *m_picture; }

  const GRIConvertOptions& m_options;
  std::ostream* m_progress;
  std::ostream& m_err;
  GdalSession m_gdal;
  GRIInterrupt m_interrupt;
  GRIInputFile m_input;
  GRIOutputFile m_output;
  GRIOutputFormat m_format;
  GRIConvertPlan m_plan;
  std::vector<std::string> m_warnings;  // of the writer
  std::unique_ptr<GRIGdalDataset> m_picture;
  Dataset m_resampled;
};

int Conversion::wrongUse(const std::string& file, const std::string& text) {
  gri_printError(m_err, file, {GRI_HOST_STATUS_ARGUMENT, text});
  return GRI_EXIT_USAGE;
}

int Conversion::failed(const std::string& file, const GRIHostError& error) {
  if (GRIInterrupt::wasRaised()) return GRIInterrupt::exitCode();
  gri_printError(m_err, file, error);
  return GRI_EXIT_FAILED;
}

int Conversion::run() {
  const std::string input = m_options.input == "-" ? "/proc/self/fd/0" : m_options.input;
  if (m_options.output != "-" && gri_isSameFile(input, m_options.output)) {
    return wrongUse(m_options.output, "input and output are the same file");
  }
  if (m_options.output == "-" && m_options.wantsWorldFile) {
    return wrongUse(m_options.output, "a world file needs a file to stand beside");
  }
  if (m_options.output == "-" && isatty(STDOUT_FILENO) != 0) {
    return wrongUse(m_options.output, "a picture is nothing for a terminal; redirect it");
  }
  if (const std::string wrong = gri_findFormat(m_options.format, m_options.output, m_format);
      !wrong.empty()) {
    return wrongUse(m_options.output, wrong);
  }
  if (const std::string wrong = gri_checkCreationOptions(m_format, m_options.creationOptions);
      !wrong.empty()) {
    return wrongUse(m_options.output, wrong);
  }
  if (const int exitCode = openInput(); exitCode != GRI_EXIT_DONE) return exitCode;
  if (const std::string wrong = gri_checkFormat(m_format, *m_picture); !wrong.empty()) {
    return wrongUse(m_options.output, wrong);
  }
  if (m_options.wantsWorldFile && !m_picture->info().position) {
    return wrongUse(m_options.input, "the picture states no position for a world file");
  }
  if (GRIHostError error = m_output.prepare(m_options.output, m_options.force)) {
    return failed(m_options.output, error);
  }
  return write();
}

int Conversion::openInput() {
  if (GRIHostError error = m_input.prepare(m_options.input)) {
    return failed(m_options.input, error);
  }
  auto image = std::make_shared<GRIHostImage>();
  GRIHostError error = image->open(m_input.path());
  if (error) return failed(m_options.input, error);
  if (GRIInterrupt::wasRaised()) return GRIInterrupt::exitCode();
  if (const int exitCode = setPassword(*image); exitCode != GRI_EXIT_DONE) return exitCode;
  if (const std::string wrong = gri_planConversion(*image, m_options, m_plan); !wrong.empty()) {
    return wrongUse(m_options.input, wrong);
  }
  m_picture = GRIGdalDataset::create(std::move(image), m_plan.view, error);
  if (!m_picture) return failed(m_options.input, error);
  if (m_plan.isResampled) error = resample();
  return error ? failed(m_options.input, error) : GRI_EXIT_DONE;
}

/// Gives the password that the user gave us; without one, the picture asks when it needs it.
int Conversion::setPassword(GRIHostImage& image) {
  GRIHostPassword ofFile;
  const GRIHostPassword* password = m_options.password;
  if (m_options.passwordFile) {
    if (GRIHostError error = gri_readPasswordFile(*m_options.passwordFile, ofFile)) {
      return failed(*m_options.passwordFile, error);
    }
    password = &ofFile;
  }
  if (!image.info().isLocked) return GRI_EXIT_DONE;
  if (password != nullptr) {
    const GRIHostError error = image.setPassword(password->text());
    return error ? failed(m_options.input, error) : GRI_EXIT_DONE;
  }
  image.setPasswordSource([this](bool wasWrong, GRIHostPassword& typed) {
    return gri_askForPassword(m_options.input, wasWrong, typed);
  });
  return GRI_EXIT_DONE;
}

GRIHostError Conversion::resample() {
  CPLStringList arguments;
  const auto add = [&](const std::string& text) { arguments.AddString(text.c_str()); };
  const auto number = [](double value) {
    std::array<char, 40> text{};
    CPLsnprintf(text.data(), text.size(), "%.15g", value);
    return std::string(text.data());
  };
  add("-of");
  add("VRT");
  add("-srcwin");
  for (const double value : m_plan.source) add(number(value));
  add("-outsize");
  add(std::to_string(m_plan.width));
  add(std::to_string(m_plan.height));
  add("-r");
  const bool isSmaller = m_plan.width < m_plan.source[2] || m_plan.height < m_plan.source[3];
  add(isSmaller ? "average" : "bilinear");
  struct OptionsFreer {
    void operator()(GDALTranslateOptions* options) const { GDALTranslateOptionsFree(options); }
  };
  const std::unique_ptr<GDALTranslateOptions, OptionsFreer> options(
      GDALTranslateOptionsNew(arguments.List(), nullptr));
  m_gdal.forget();
  m_resampled.reset(GDALDataset::FromHandle(
      GDALTranslate("", GDALDataset::ToHandle(m_picture.get()), options.get(), nullptr)));
  if (m_resampled) return {};
  return {GRIC_STATUS_FAILURE, m_gdal.failure()};
}

int Conversion::write() {
  const GRIHostError error = writeFormat();
  if (error || GRIInterrupt::wasRaised()) {
    // What the reader says comes first: GDAL only repeats it.
    GRIHostError readError = m_picture->lastError();
    if (readError.isOfLock() && m_picture->info().isLocked) {
      readError.text = "the picture is locked by a password: " + readError.text;
    }
    if (readError) return failed(m_options.input, readError);
    return failed(m_options.output, error);
  }
  const GRIGdalDamage* damage = m_picture->damage();
  if (damage != nullptr && damage->first && damage->decodedPixels == 0) {
    return failed(m_options.input, damage->first);
  }
  if (m_options.wantsWorldFile) {
    if (GRIHostError worldError = writeWorldFile()) return failed(m_options.output, worldError);
  }
  if (GRIHostError commitError = m_output.commit()) return failed(m_options.output, commitError);
  return finish();
}

GRIHostError Conversion::writeFormat() {
  GRIProgress progress(m_progress, double{1} * m_plan.width * m_plan.height);
  CPLStringList creationOptions;
  for (const std::string& option : m_options.creationOptions) {
    creationOptions.AddString(option.c_str());
  }
  m_gdal.forget();
  if (m_format.isRaw()) {
    const char* interleave = creationOptions.FetchNameValueDef("INTERLEAVE", "BAND");
    const auto layout = EQUAL(interleave, "PIXEL") ? GRIRawLayout::PIXEL : GRIRawLayout::BAND;
    return gri_writeRaw(source(), m_picture->info().dataType, layout, m_output.path(), onProgress,
                        &progress);
  }
  if (m_format.name == "GTiff" || m_format.name == "COG") {
    // Beyond 4 GB a file needs the other kind; GDAL's own guess fails when it compresses badly.
    if (creationOptions.FetchNameValue("BIGTIFF") == nullptr) {
      creationOptions.SetNameValue("BIGTIFF", "IF_SAFER");
    }
  }
  Dataset written(m_format.driver->CreateCopy(m_output.path().c_str(), &source(), FALSE,
                                              creationOptions.List(), onProgress, &progress));
  const bool isWritten = written != nullptr;
  for (const std::string& warning : m_gdal.warnings()) {
    m_warnings.push_back(m_output.withoutPlace(warning));
  }
  if (isWritten) m_gdal.forget();
  written.reset();  // flushes, which fails when the disk is full
  if (isWritten && m_gdal.failure().empty()) return {};
  const std::string reason = m_gdal.failure().empty() ? "failed" : m_gdal.failure();
  return {GRI_HOST_STATUS_WRITE, m_output.withoutPlace(reason)};
}

GRIHostError Conversion::writeWorldFile() {
  std::array<double, 6> transform{};
  source().GetGeoTransform(transform.data());
  // The first and last letter of the suffix and a w: .tif makes .tfw.
  std::string suffix = m_output.path().extension().string();
  suffix = suffix.size() > 2 ? std::string{suffix[1], suffix.back(), 'w'} : "wld";
  if (GDALWriteWorldFile(m_output.path().c_str(), suffix.c_str(), transform.data()) != FALSE) {
    return {};
  }
  return {GRI_HOST_STATUS_WRITE, "the world file can't be written"};
}

int Conversion::finish() {
  for (const std::string& warning : m_warnings) {
    m_err << "gri: " << gri_hostPrintable(gri_hostUtf8(m_options.output.c_str()))
          << ": warning: " << gri_hostPrintable(gri_hostUtf8(warning.c_str())) << '\n';
  }
  const GRIGdalDamage* damage = m_picture->damage();
  if (damage == nullptr || !damage->first) return GRI_EXIT_DONE;
  const auto lost = static_cast<double>(damage->lostPixels);
  const double percent = 100 * lost / (lost + static_cast<double>(damage->decodedPixels));
  std::array<char, 64> words{"less than 0.1%"};
  if (percent >= 0.1) std::snprintf(words.data(), words.size(), "%.1f%%", percent);
  gri_printError(
      m_err, m_options.input,
      {damage->first.status, words.data() + (" of the pixels are lost: " + damage->first.text)});
  return GRI_EXIT_DAMAGED;
}

}  // namespace

int gri_runConvert(const GRIConvertOptions& options, std::ostream* progress, std::ostream& err) {
  return Conversion(options, progress, err).run();
}
