/// @file
/// Encryption, the cipher of password-locked images, and the constants of their format.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "gr_lib_utils/include/gr_secret.h"
#include "gr_lib_utils/include/gr_types.h"

struct gcry_cipher_handle;

/// With this vector every run of enciphered bytes begins.
inline constexpr std::array<gr_uint8, 8> ENCRYPTION_VECTOR = {0x47, 0x52, 0x49, 0x2D,
                                                              0x54, 0x47, 0x33, 0x21};
/// A text that an image stores enciphered: a key that brings it back is the right one. It ends
/// with its last letter, there is no zero.
inline constexpr std::array<gr_uint8, 32> ENCRYPTION_SIGNATURE = {
    'T', 'e', 's', 'r', 'a', ' ', 'c', 'o', 'n', 't', 'e', 'n', 't', ' ', 'k', 'e',
    'y', ' ', 'v', 'e', 'r', 'i', 'f', 'i', 'c', 'a', 't', 'i', 'o', 'n', '.', '.'};

/// Blowfish in cipher feedback mode of 64 bits, with at most one key at a time. Copies of the key
/// and its schedule are wiped when it is replaced, cleared or destroyed.
class Encryption {
 public:
  static constexpr size_t SHORTEST_KEY = 1;  // bytes
  static constexpr size_t LONGEST_KEY = 72;  // bytes; those of the 18 sub-keys

  enum KeyCheck { KEY_TOO_SHORT = 0, KEY_TOO_LONG = 1, KEY_OK = 2 };
  /// Whether a key of so many bytes is one.
  static KeyCheck checkKey(size_t length);

  Encryption() = default;
  virtual ~Encryption() = default;
  Encryption(const Encryption&) = delete;
  Encryption& operator=(const Encryption&) = delete;

  /// Sets the bytes of a text as the key, without the zero at its end, or just bytes.
  ///
  /// Throws GRUtilException with 4009 unless checkKey says KEY_OK, 8 when memory runs out, and 1
  /// where the machine forbids this cipher; then the earlier key has gone, too.
  void setKey(const char* text);
  void setKey(std::span<const gr_uint8> key);
  bool isKeySet() const { return m_cipher != nullptr; }
  /// The bytes of the key, until it changes; none while no key is set.
  std::span<const gr_uint8> getKey() const { return m_key.span(); }
  void clearKey();

  /// Enciphers or deciphers bytes in place, always from the same vector: two calls never chain.
  /// Without a key they do nothing.
  void encrypt(std::span<gr_uint8> bytes);
  void decrypt(std::span<gr_uint8> bytes);

 private:
  struct Closer {
    void operator()(gcry_cipher_handle* cipher) const;
  };
  std::unique_ptr<gcry_cipher_handle, Closer> m_cipher;  // null while no key is set
  GRSecret m_key;
};
