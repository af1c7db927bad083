/// @file
/// An open picture.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/common/gri_hostError.h"
#include "hosts/common/gri_hostFormat.h"
#include "hosts/common/gri_hostMetadata.h"
#include "hosts/common/gri_hostPassword.h"
#include "hosts/common/gri_hostPosition.h"
#include "hosts/common/gri_hostSample.h"

/// A rectangle of whole pixels at some magnification.
struct GRIHostWindow {
  gr_uint32 column = 0;
  gr_uint32 row = 0;
  gr_uint32 width = 0;
  gr_uint32 height = 0;

  bool operator==(const GRIHostWindow&) const = default;
  bool contains(const GRIHostWindow& other) const;
};

/// A magnification that the picture can be decoded at, and its size there.
struct GRIHostLevel {
  double magnification = 1;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
};

/// What a picture says about itself. Filled when it is opened.
struct GRIHostImageInfo {
  GRIHostContent content;
  gr_uint32 width = 0;   // columns at magnification 1
  gr_uint32 height = 0;  // rows at magnification 1
  gr_uint32 tiles = 1;   // images that the file shows as one picture
  gr_int32 dataType = GRIC_DATATYPE_INVALID;
  gr_uint32 bits = 0;  // that count in each sample; 0 where the bands' types differ
  gr_int32 colorSpace = GRIC_COLORSPACE_INVALID;
  std::vector<GRIHostColor> bands;  // one for each band
  double minMagnification = 1;
  double maxMagnification = 1;
  std::vector<GRIHostLevel> levels;         // 1 (or the nearest), 1/2, 1/4 ...
  std::optional<GRIHostPosition> position;  // none when the file states none
  std::string crs;                          // WKT; empty when the file states none
  std::vector<double> noData;               // a value for each band; empty when there is none
  bool isLocked = false;                    // needs a password

  size_t sampleBytes() const { return gri_hostSampleBytes(dataType); }
};

/// A picture, open from `open` to the destructor. Serves one thread at a time.
class GRIHostImage {
 public:
  GRIHostImage() = default;

  /// Opens the file at `path` with the reader that its first bytes call for. An image that is open
  /// already stays open when this fails.
  GRIHostError open(const std::string& path);
  bool isOpen() const { return m_handle != nullptr; }

  const GRIHostImageInfo& info() const { return m_info; }

  /// Gives the password of a locked picture. A wrong one is noticed by `decode`.
  GRIHostError setPassword(const char* password);
  /// Whom `decode` asks for the password when it comes to something locked; nobody at first. A
  /// picture may be locked in parts, and what is open needs no password. May be set before `open`.
  void setPasswordSource(GRIHostPasswordSource source);

  /// The size of the whole picture at a magnification.
  GRIHostError sizeAt(double magnification, gr_uint32& width, gr_uint32& height) const;

  /// Decodes a window. With a password source, what is locked is tried again with up to three
  /// passwords.
  /// @param window  in pixels at `magnification`, inside the picture
  /// @param bands   one pointer for each band, each to height x width samples of info().dataType,
  ///                row after row without padding. After an error they may be partly written
  GRIHostError decode(const GRIHostWindow& window, double magnification, void** bands);

  size_t recordCount() const;
  /// Record number `index` of the metadata; false when there is none.
  bool record(size_t index, GRIHostRecord& record) const;
  /// The record of that name; false when there is none.
  bool findRecord(const std::string& tag, GRIHostRecord& record) const;

 private:
  struct HandleCloser {
    void operator()(gric_image image) const;
  };
  using Handle = std::unique_ptr<gric_image_s, HandleCloser>;

  GRIHostError decodeOnce(const GRIHostWindow& window, double magnification, void** bands);
  void readInfo();
  void readLevels();
  void readPosition();

  Handle m_handle;
  GRIHostImageInfo m_info;
  GRIHostPasswordSource m_passwordSource;
};
