/// @file
/// The picture to read, from a path or from standard input.
#pragma once

#include <string>

#include "hosts/common/gri_hostError.h"

/// Gives standard input a path. A redirected file is used as it is; what comes through a pipe, a
/// named one too, is first gathered in a temporary file without a name, which the system frees in
/// every case. When the first bytes are of no picture, nothing more is gathered.
class GRIInputFile {
 public:
  GRIInputFile() = default;
  ~GRIInputFile();
  GRIInputFile(const GRIInputFile&) = delete;
  GRIInputFile& operator=(const GRIInputFile&) = delete;

  /// @param input  path, or "-" for standard input
  GRIHostError prepare(const std::string& input);

  /// What to open, as long as this object lives.
  const std::string& path() const { return m_path; }

 private:
  GRIHostError gatherFrom(const std::string& pipe);
  GRIHostError gather(int source);

  std::string m_path;
  int m_descriptor = -1;  // of the temporary file
};
