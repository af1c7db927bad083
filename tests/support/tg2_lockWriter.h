/// @file
/// Locks of TG2 files for tests, and on request locks that no writer should make.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/tg2_writer.h"

/// A lock, as the records of an image store it. What isn't there is left out.
struct TG2TestLock {
  std::string password = "sesame";
  std::optional<gr_uint8> type = 1;
  gr_uint32 contentKeyLength = 72;  ///< bytes
  std::string signature = "Tesra content key verification..";
  bool hasKey = true;
  bool hasSignature = true;

  std::vector<gr_uint8> contentKey() const;
};

/// Makes an image one whose tables are written enciphered, with the records of its lock.
TG2TestImage tg2_locked(TG2TestImage image, const TG2TestLock& lock = {});
