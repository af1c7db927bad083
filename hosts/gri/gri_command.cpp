#include "hosts/gri/gri_command.h"

#include <gdal_version.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <ostream>

#include "hosts/common/gri_hostError.h"
#include "hosts/gri/gri_arguments.h"
#include "hosts/gri/gri_convertCommand.h"
#include "hosts/gri/gri_errorText.h"
#include "hosts/gri/gri_exitCodes.h"
#include "hosts/gri/gri_infoCommand.h"
#include "hosts/gri/gri_passwords.h"
#include "hosts/gri/gri_terminal.h"

namespace {

constexpr const char* EXAMPLES =
    "Examples:\n"
    "  gri info scene.ntf                       what is in it\n"
    "  gri info --json scene.ntf | jq .size     the same for programs\n"
    "  gri convert scene.ntf scene.png          the whole picture\n"
    "  gri status 51210                         what a number in an error means\n"
    "\n"
    "`gri COMMAND --help` tells more; so does `man gri`.";

constexpr const char* CONVERT_EXAMPLES =
    "Examples:\n"
    "  gri convert scene.ntf scene.png                              the whole picture\n"
    "  gri convert --size 1000x scene.ntf overview.jpg              1000 pixels wide\n"
    "  gri convert --window 0 0 512 512 scene.ntf corner.tif        a window\n"
    "  gri convert --bbox 485900 5205630 487000 5206500 a.ntf b.tif a box on the ground\n"
    "  gri convert --mag 1/8 -b 3,2,1 scene.ntf eighth.png          an eighth, bands turned\n"
    "  gri convert -f COG --co COMPRESS=DEFLATE scene.ntf cloud.tif\n"
    "  gri convert --password-file secret.txt locked.tsr a.png      a locked picture\n"
    "  cat scene.ntf | gri convert -f raw - - | wc -c               through pipes\n"
    "\n"
    "Exit codes: 0 done, 1 could not read or write, 2 wrong use, 3 damaged but partly\n"
    "decoded (--keep-going), 130 interrupted.";

/// A transform for CLI11 that keeps what `parse` makes of an option's text.
template <typename Value, typename Parse>
void addParsed(CLI::App& app, const std::string& name, const std::string& value,
               const std::string& help, const std::string& hint, Parse parse,
               std::optional<Value>& result) {
  app.add_option_function<std::string>(
         name,
         [=, &result](const std::string& text) {
           result = parse(text);
           if (!result) throw CLI::ValidationError(name, "\"" + text + "\" is no " + hint);
         },
         help)
      ->type_name(value);
}

void addConvert(CLI::App& app, GRIConvertOptions& options, std::optional<std::vector<int>>& bands,
                const GRIHostPassword& password) {
  app.add_option("IN", options.input, "the picture: a path, or - for standard input")
      ->required()
      ->type_name("");
  app.add_option("OUT", options.output, "what to write: a path, or - for standard output")
      ->required()
      ->type_name("");
  app.add_option("--window", options.window, "only these pixels, counted at full size")
      ->type_name("COL ROW W H");
  app.add_option("--bbox", options.bbox, "only this box, in the picture's coordinate system")
      ->type_name("W S E N")
      ->excludes("--window");
  addParsed(app, "--mag", "M", "magnification: 1/8 or 0.125", "magnification like 1/8 or 0.125",
            gri_parseMagnification, options.magnification);
  addParsed(app, "--size", "WxH", "size of the output: 1000x, x800 or 1000x800",
            "size like 1000x, x800 or 1000x800", gri_parseSize, options.size);
  app.get_option("--size")->excludes("--mag");
  addParsed(app, "-b,--bands", "LIST", "bands, counted from 1, in the order wanted: 3,2,1",
            "list of bands like 3,2,1", gri_parseBands, bands);
  app.add_option("-f,--format", options.format,
                 "format: PNG, GTiff, COG, raw or any other that GDAL writes; by OUT's suffix if "
                 "not given")
      ->type_name("NAME");
  app.add_option("--co", options.creationOptions, "option of the format: COMPRESS=DEFLATE")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option_function<std::string>(
         "--password", [&](const std::string&) { options.password = &password; },
         "password of a locked picture; asked for on the terminal if not given")
      ->type_name("TEXT");
  app.add_option("--password-file", options.passwordFile,
                 "the first line of this file is the password")
      ->type_name("FILE")
      ->excludes("--password");
  app.add_flag("--world-file", options.wantsWorldFile, "write the position beside OUT, too");
  app.add_flag("--keep-going", options.keepGoing,
               "fill what is damaged with no-data instead of stopping");
  app.add_flag("--force", options.force, "replace OUT if it exists");
  app.add_flag("-q,--quiet", options.quiet, "show no progress");
  app.footer(CONVERT_EXAMPLES);
}

int runStatus(const std::string& number, std::ostream& out, std::ostream& err) {
  GR_STATUS status = 0;
  const char* end = number.data() + number.size();
  const auto parsed = std::from_chars(number.data(), end, status);
  if (parsed.ec != std::errc() || parsed.ptr != end) {
    err << "gri: \"" << number << "\" is no status number\n";
    return GRI_EXIT_USAGE;
  }
  constexpr std::string_view UNKNOWN = "unknown status";
  std::string text = gri_hostCall([&] { return getRawStatusString(status); }, UNKNOWN.data());
  if (text == UNKNOWN) text = gri_hostErrorOf(status).text;  // our own words, where we have some
  out << status << ": " << text << '\n';
  return text == UNKNOWN ? GRI_EXIT_FAILED : GRI_EXIT_DONE;
}

/// The exit code of a command that has said all on `out`: a failure when not all of it arrived.
int flushed(int exitCode, std::ostream& out, std::ostream& err) {
  if (out.good()) {
    errno = 0;
    out.flush();
  }
  if (out.good()) return exitCode;
  gri_printError(err, "-", {GRI_HOST_STATUS_WRITE, std::strerror(errno == 0 ? EIO : errno)});
  return GRI_EXIT_FAILED;
}

std::string versionWords() {
  gr_uint32 major = 0;
  gr_uint32 minor = 0;
  gr_uint32 tweak = 0;
  gr_uint32 build = 0;
  const char* branch = "";
  gric_getVersion(&major, &minor, &tweak, &build, &branch);
  const auto dotted = [](gr_uint32 number) { return std::to_string(number) + '.'; };
  return "gri " + dotted(major) + dotted(minor) + dotted(tweak) + dotted(build) + branch +
         "\nwrites with GDAL " GDAL_RELEASE_NAME;
}

}  // namespace

int gri_run(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  const GRIHostMessages messages;
  CLI::App app("Describes and converts Tesra, NITF and JPEG 2000 pictures of any size.", "gri");
  app.set_version_flag("--version", versionWords(), "print the version");
  app.set_help_flag("-h,--help", "print this help");
  app.require_subcommand(1);
  app.footer(EXAMPLES);

  CLI::App* info = app.add_subcommand("info", "describe pictures");
  std::vector<std::string> files;
  bool isJson = false;
  info->add_option("FILE", files, "pictures; - for standard input")->required()->type_name("");
  info->add_flag("--json", isJson, "for programs: a JSON object for each picture");

  CLI::App* convert = app.add_subcommand("convert", "write a picture in another format");
  GRIConvertOptions options;
  std::optional<std::vector<int>> bands;
  GRIHostPassword password;
  const std::vector<const char*> arguments = gri_setPasswordAside(argc, argv, password);
  addConvert(*convert, options, bands, password);

  CLI::App* status = app.add_subcommand("status", "say what the number of an error means");
  std::string number;
  status->add_option("NUMBER", number, "the number in brackets")->required()->type_name("");

  try {
    app.parse(argc, arguments.data());
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return flushed(app.exit(e, out, err), out, err);
    const std::string first = argc > 1 ? argv[1] : "-";
    const bool isUnknown = !first.starts_with('-') && first != info->get_name() &&
                           first != convert->get_name() && first != status->get_name();
    const std::string text = isUnknown ? "there is no command \"" + first + "\"" : e.what();
    err << "gri: " << gri_withoutPasswords(text, argc, argv) << "\nTry `gri --help`.\n";
    return GRI_EXIT_USAGE;
  }
  if (*info) {
    const int exitCode = gri_runInfo(files, isJson, gri_terminalAt(STDOUT_FILENO), out, err);
    return flushed(exitCode, out, err);
  }
  if (*status) return flushed(runStatus(number, out, err), out, err);
  options.bands = bands.value_or(std::vector<int>());
  const bool isShown = !options.quiet && isatty(STDERR_FILENO) != 0;
  return gri_runConvert(options, isShown ? &err : nullptr, err);
}
