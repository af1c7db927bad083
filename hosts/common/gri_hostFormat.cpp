#include "hosts/common/gri_hostFormat.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// "02.10" of a file header as "2.1"; as it stands when it has another form.
std::string versionName(std::string_view digits) {
  std::string name(digits);
  if (name.size() == 5 && name[0] == '0' && name[2] == '.') name.erase(0, 1);
  if (name.size() == 4 && name.back() == '0') name.pop_back();
  return name;
}

}  // namespace

GRIHostContent gri_hostIdentify(std::span<const gr_uint8> head) {
  using namespace std::literals;
  const std::string_view bytes(reinterpret_cast<const char*>(head.data()), head.size());
  if (bytes.starts_with("tsra"sv)) {
    const bool isOlder = bytes.size() > 4 && (bytes[4] == 1 || bytes[4] == 2);
    return {GRIHostFormat::TESRA, isOlder ? "Tesra TG2" : "Tesra TG3"};
  }
  // MIL-STD-2500C, 5.11.1: FHDR (4) and FVER (5).
  if (bytes.starts_with("NITF"sv) || bytes.starts_with("NSIF"sv)) {
    std::string name(bytes.substr(0, 4));
    if (bytes.size() >= 9) name += ' ' + versionName(bytes.substr(4, 5));
    return {GRIHostFormat::NITF, std::move(name)};
  }
  // ISO/IEC 15444-1, I.5.1: the signature box.
  if (bytes.starts_with("\0\0\0\x0CjP  \r\n\x87\n"sv)) return {GRIHostFormat::JPEG2000, "JP2"};
  // ISO/IEC 15444-1, A.4.1 and A.5.1: SOC, followed by SIZ.
  if (bytes.starts_with("\xFF\x4F\xFF\x51"sv)) {
    return {GRIHostFormat::JPEG2000, "JPEG 2000 codestream"};
  }
  return {};
}

GRIHostError gri_hostIdentifyFile(const std::string& path, GRIHostContent& content) {
  const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) return {GRI_HOST_STATUS_OPEN, std::strerror(errno)};
  std::array<gr_uint8, GRI_HOST_HEAD_BYTES> head{};
  const size_t count = std::fread(head.data(), 1, head.size(), file.get());
  // fopen takes a directory; reading it is what fails.
  if (std::ferror(file.get()) != 0) return {GRI_HOST_STATUS_READ, std::strerror(errno)};
  content = gri_hostIdentify(std::span(head).first(count));
  if (content.format == GRIHostFormat::UNKNOWN) {
    return {GRI_HOST_STATUS_OPERATION,
            count == 0 ? "the file is empty" : "not a Tesra, NITF or JPEG 2000 picture"};
  }
  return {};
}
