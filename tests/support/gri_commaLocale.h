/// @file
/// GRICommaLocale, a locale that writes numbers with a decimal comma.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// Makes a locale of its own, since a machine may have none with a comma, and sets it for numbers,
/// for as long as this lives. For tests of one thread.
class GRICommaLocale {
 public:
  GRICommaLocale() : m_folder((std::filesystem::temp_directory_path() / "localeXXXXXX").string()) {
    if (::mkdtemp(m_folder.data()) == nullptr) return;
    std::ofstream(m_folder + "/source")
        << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3\nEND LC_NUMERIC\n";
    // Complains about all the other categories, and makes the one that is there.
    const std::string command = "localedef -c -i " + m_folder + "/source " + m_folder +
                                "/xx_XX > " + m_folder + "/log 2>&1";
    // NOLINTNEXTLINE(bugprone-command-processor): no part of it comes from outside.
    static_cast<void>(std::system(command.c_str()));
    ::setenv("LOCPATH", m_folder.c_str(), 1);
    m_isSet = std::setlocale(LC_NUMERIC, "xx_XX") != nullptr;
  }
  GRICommaLocale(const GRICommaLocale&) = delete;
  GRICommaLocale& operator=(const GRICommaLocale&) = delete;
  ~GRICommaLocale() {
    std::setlocale(LC_NUMERIC, "C");
    ::unsetenv("LOCPATH");
    std::filesystem::remove_all(m_folder);
  }

  /// Whether the machine could make the locale.
  bool isSet() const { return m_isSet; }

 private:
  std::string m_folder;
  bool m_isSet = false;
};
