/// @file
/// Tesra files of a few bytes, opened and decoded through the C interface.
#pragma once

#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"
#include "gri_rdk_cdll.h"
#include "tests/support/tg3_writer.h"

using TesraBytes = std::vector<gr_uint8>;
using TesraSamples = std::vector<std::vector<gr_int32>>;  // component after component

/// A file of the test's own, removed at its end.
class TesraFile {
 public:
  explicit TesraFile(const TesraBytes& bytes);
  ~TesraFile();
  TesraFile(const TesraFile&) = delete;
  TesraFile& operator=(const TesraFile&) = delete;

  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
};

/// An image that a host has opened, closed at its end.
class TesraHandle {
 public:
  explicit TesraHandle(const TesraBytes& bytes);
  ~TesraHandle();
  TesraHandle(const TesraHandle&) = delete;
  TesraHandle& operator=(const TesraHandle&) = delete;

  GR_STATUS status() const { return m_status; }  ///< of the open
  gric_image image() const { return m_image; }

  /// Decodes a window of 8-bit samples, band after band.
  GR_STATUS decode(double x, double y, double width, double height, double magnification,
                   TesraBytes& samples) const;
  /// The same, for its status alone.
  GR_STATUS decodeStatus(double x, double y, double width, double height,
                         double magnification) const;

 private:
  TesraFile m_file;
  gric_image m_image = nullptr;
  GR_STATUS m_status;
};

/// A gray image of 8 bits.
TG3TestImage tesra_grayImage(gr_uint32 width, gr_uint32 height, gr_uint8 levels);
/// Samples between 0 and 255 without a pattern, always the same ones.
TesraSamples tesra_noise(const TG3TestImage& image);
/// A file with one image of noise.
TesraBytes tesra_fileOf(const TG3TestImage& image);
