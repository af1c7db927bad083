/// @file
/// Output that is there as a whole or not at all.
#pragma once

#include <filesystem>
#include <string>

#include "hosts/common/gri_hostError.h"

/// Where a conversion writes to. What is written lies in a hidden directory beside the output,
/// under the output's own name, until `commit` moves it into place; the destructor removes what was
/// not committed. Output that can't be moved into place (standard output, a device, a pipe) is
/// gathered in the temporary directory and copied.
class GRIOutputFile {
 public:
  GRIOutputFile() = default;
  ~GRIOutputFile();
  GRIOutputFile(const GRIOutputFile&) = delete;
  GRIOutputFile& operator=(const GRIOutputFile&) = delete;

  /// @param output  path, or "-" for standard output
  /// @param force   replace files that are there already
  GRIHostError prepare(const std::string& output, bool force);

  /// Where to write. Other files may be written beside it; they go along.
  const std::filesystem::path& path() const { return m_path; }

  /// @return 50005 also when nothing was written, or more files than a copy can take along
  GRIHostError commit();

  /// The text without the hidden directory, of which users know nothing.
  std::string withoutPlace(std::string text) const;

 private:
  GRIHostError moveIntoPlace();
  GRIHostError copyTo(int descriptor) const;
  void removeDirectory();

  std::string m_output;
  std::filesystem::path m_target;     // of a file, symbolic links followed
  std::filesystem::path m_directory;  // ours, hidden; empty when there is none
  std::filesystem::path m_path;
  bool m_isCopied = false;  // to a descriptor, rather than moved
  bool m_force = false;
};

/// True when both name the same existing file.
bool gri_isSameFile(const std::string& one, const std::string& other);

/// Where temporary files go: TMPDIR or /tmp.
std::filesystem::path gri_temporaryDirectory();
