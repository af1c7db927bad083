/// @file
/// A stand-in for the library, for the unit tests of the hosts: all exported functions over
/// synthetic pictures, which can also fail in ways that real files hardly ever do.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "gri_rdk_cdll.h"

/// A synthetic picture. `writeTo` makes a file that the fake library opens: the first bytes of its
/// format, then this description in words.
struct FakePicture {
  enum Format { TESRA, NITF, JP2 };
  enum class Throws { NEVER, WHEN_OPENED, WHEN_DECODED, WHEN_CLOSED };

  Format format = TESRA;
  gr_uint32 width = 100;
  gr_uint32 height = 80;
  gr_uint32 bands = 3;
  gr_int32 colorSpace = GRIC_COLORSPACE_RGB;
  gr_int32 dataType = GRIC_DATATYPE_UINT8;
  double minMagnification = 0.125;
  double maxMagnification = 1;
  /// x, y origin, x, y resolution, x, y rotation; empty for a picture without a position.
  std::vector<double> position = {};
  /// Opening ends with this status.
  GR_STATUS openStatus = GRIC_STATUS_OK;
  /// A decode that touches these rows of the full size (from, to just below) fails with
  /// damageStatus.
  gr_uint32 damagedFrom = 0;
  gr_uint32 damagedTo = 0;
  GR_STATUS damageStatus = 2005;
  Throws throws = Throws::NEVER;
  bool isLocked = false;
  std::string wkt = {};                         // record IMAGE::WKT
  std::vector<double> noData = {};              // record IMAGE::TRANSPARENT_DATA_VALUE
  gr_int32 noDataType = GRIC_DATATYPE_INVALID;  // of that record; invalid: the samples' type
  gr_uint32 bits = 0;                           // record IMAGE::BITS_PER_SAMPLE
  bool hasOddRecords = false;                   // one record of each kind, see fake_gri.cpp
  gr_uint32 tiles = 0;                          // record IMAGE::NUMBER_OF_TILES
  bool statesPosition = false;  // records IMAGE::XY_ORIGIN, X_RESOLUTION and Y_RESOLUTION

  void writeTo(const std::filesystem::path& path) const;
};

/// The sample of a synthetic picture: column and row at the magnification 1 / 2^level.
double fake_sample(gr_uint32 band, gr_uint32 column, gr_uint32 row, int level);

/// How many handles are open, and how often gric_decode was called, since the program started.
int fake_openHandles();
int fake_decodeCalls();

/// A directory of its own for a test, which is gone after it.
class FakeDirectory {
 public:
  FakeDirectory();
  ~FakeDirectory();
  FakeDirectory(const FakeDirectory&) = delete;
  FakeDirectory& operator=(const FakeDirectory&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
  const std::filesystem::path& path() const { return m_path; }
  /// The names of what is in it, sorted.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path m_path;
};
