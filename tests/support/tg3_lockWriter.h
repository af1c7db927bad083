/// @file
/// Locks of TG3 files for tests: of every kind and form, and on request locks that no writer should
/// make. Which planes they lock is found out without the library.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/tg3_writer.h"

/// A lock, as a security packet stores it.
struct TG3TestLock {
  gr_uint8 kind = 1;                    ///< 1 the image, 2 scales, 3 a rectangle
  gr_uint8 scale = 0;                   ///< of kinds 2 and 3: the coarsest that is locked
  gr_uint8 numLevels = 0;               ///< of kinds 2 and 3: those of the image, if it's true
  std::array<gr_int32, 4> rectangle{};  ///< of kind 3: left, top, right, bottom; visible pixels
  bool isLegacy = false;                ///< the older form of keys
  std::vector<std::string> passwords = {"sesame"};  ///< of key after key, the last one of the rest

  gr_uint8 cipher = 1;
  gr_uint8 digest = 1;
  gr_uint8 providerType = 1;
  gr_uint16 contentKeyLength = 72;              ///< bytes
  std::optional<gr_uint16> claimedKeyLength{};  ///< a lie in place of it
  gr_uint16 numConjuncts = 0;
  gr_uint8 usesGuid = 0;

  gr_uint32 numKeys() const { return kind == 1 ? 1 : scale + 1U; }
  const std::string& password(gr_uint32 key) const;
  /// What planes are enciphered with; the password in the older form.
  std::vector<gr_uint8> contentKey(gr_uint32 key) const;
};

/// The body of a security packet.
std::vector<gr_uint8> tg3_lockBody(const TG3TestLock& lock);
/// The header of that packet.
TG3TestPacket tg3_lockPacket(const TG3TestLock& lock, gr_uint32 image = 0);

/// The key that locks a subblock's planes.
std::optional<gr_uint32> tg3_keyOf(const TG3TestLock& lock, const TG3TestImage& image,
                                   gr_uint32 subband, gr_uint64 subblock);
/// Makes an image one whose planes are written enciphered.
TG3TestImage tg3_locked(TG3TestImage image, const TG3TestLock& lock);

/// The bytes of a file with one image and its lock.
std::vector<gr_uint8> tg3_writeLockedImage(const TG3TestImage& image, const TG3TestLock& lock,
                                           const std::vector<std::vector<gr_int32>>& samples);
