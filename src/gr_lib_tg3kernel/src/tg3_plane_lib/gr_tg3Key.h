/// @file
/// GRTG3Key, one of the keys of a lock.
#pragma once

#include <optional>

#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_keyProvider.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_sha1.h"
#include "gr_lib_utils/include/gr_types.h"

/// A content key, which deciphers planes. The file has it enciphered with a password, and a digest
/// of that password; in older files the password itself is the content key.
///
/// Once unlocked it stays so. Each key has a cipher of its own, so that keys can be used in turn
/// without a new schedule for each plane.
class GRTG3Key {
 public:
  GRTG3Key() = default;
  GRTG3Key(const GRTG3Key&) = delete;
  GRTG3Key& operator=(const GRTG3Key&) = delete;

  /// Reads the record of the key; called once.
  /// @param isLegacy  whether the record has the older form
  /// @return 0; 2012 for memory; 2005 for a content key without bytes or anything else that no
  ///         record has; else the reader's status of a range that ends early
  [[nodiscard]] GR_STATUS readData(GRFieldReader& fields, bool isLegacy);

  bool haveContentKey() const { return m_cipher.isKeySet(); }

  /// Asks for the password until there is one that a key can be, three times at most. Called while
  /// haveContentKey() doesn't hold.
  /// @param description  of what the key opens
  /// @return 0; 2012 for memory; 2011 without a provider of the key's type, without a password,
  ///         with a wrong one, or for a content key that is too long. Without a password nobody is
  ///         asked again until allowAsking().
  [[nodiscard]] GR_STATUS unlock(const KeyProviderRegistry& providers, const char* description);
  void allowAsking() { m_mayAsk = true; }

  /// The content key in clear; none while haveContentKey() doesn't hold.
  std::span<const gr_uint8> getContentKey() const { return m_cipher.getKey(); }
  /// Unlocks with a content key that an earlier reader of the image got.
  /// @return 0; 2012 for memory; 2011 for a key that can't be one
  [[nodiscard]] GR_STATUS setContentKey(std::span<const gr_uint8> contentKey);

  /// Deciphers bytes in place; haveContentKey() holds.
  void decrypt(std::span<gr_uint8> bytes) { m_cipher.decrypt(bytes); }

 private:
  GR_STATUS takeContentKey(std::span<const gr_uint8> password);

  bool m_isLegacy = false;
  bool m_mayAsk = true;
  gr_uint8 m_providerType = KeyProvider::LOCK_TYPE_ERROR;
  GRArray<gr_uint8> m_contentKey;        // enciphered; not of an older record
  std::optional<GRSha1Digest> m_digest;  // of the password, until that is known
  Encryption m_cipher;                   // with the content key, once that is known
};
