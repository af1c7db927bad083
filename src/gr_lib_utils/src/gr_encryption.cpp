#include "gr_lib_utils/include/gr_encryption.h"

#include <gcrypt.h>

#include <cassert>
#include <cstring>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_gcrypt.h"

namespace {

[[noreturn]] void throwFor(gcry_error_t error) {
  throw GRUtilException(gcry_err_code(error) == GPG_ERR_ENOMEM ? GR_STATUS_NO_MEMORY
                                                               : GR_STATUS_FAILURE);
}

}  // namespace

// libgcrypt wipes what it closes.
void Encryption::Closer::operator()(gcry_cipher_handle* cipher) const { gcry_cipher_close(cipher); }

Encryption::KeyCheck Encryption::checkKey(size_t length) {
  if (length < SHORTEST_KEY) return KEY_TOO_SHORT;
  return length > LONGEST_KEY ? KEY_TOO_LONG : KEY_OK;
}

void Encryption::clearKey() {
  m_cipher.reset();
  m_key.clear();
}

void Encryption::setKey(const char* text) {
  setKey({reinterpret_cast<const gr_uint8*>(text), std::strlen(text)});
}

void Encryption::setKey(std::span<const gr_uint8> key) {
  clearKey();
  if (checkKey(key.size()) != KEY_OK) throw GRUtilException(GR_STATUS_INVALID_KEY);
  gr_initGcrypt();
  gcry_cipher_hd_t opened = nullptr;
  if (const gcry_error_t error =
          gcry_cipher_open(&opened, GCRY_CIPHER_BLOWFISH, GCRY_CIPHER_MODE_CFB, 0)) {
    throwFor(error);
  }
  std::unique_ptr<gcry_cipher_handle, Closer> cipher(opened);
  // A few keys give two equal entries in a table. They are keys of the format like all others, but
  // libgcrypt refuses them unless it is told so, and even then it says that it would have.
  gcry_cipher_ctl(opened, GCRYCTL_SET_ALLOW_WEAK_KEY, nullptr, 1);
  if (const gcry_error_t error = gcry_cipher_setkey(opened, key.data(), key.size());
      error != 0 && gcry_err_code(error) != GPG_ERR_WEAK_KEY) {
    throwFor(error);
  }
  if (!GR_SUCCESS(m_key.assign(key))) throw GRUtilException(GR_STATUS_NO_MEMORY);
  m_cipher = std::move(cipher);
}

void Encryption::encrypt(std::span<gr_uint8> bytes) {
  if (!isKeySet() || bytes.empty()) return;
  [[maybe_unused]] gcry_error_t error =
      gcry_cipher_setiv(m_cipher.get(), ENCRYPTION_VECTOR.data(), ENCRYPTION_VECTOR.size());
  assert(error == 0);
  error = gcry_cipher_encrypt(m_cipher.get(), bytes.data(), bytes.size(), nullptr, 0);
  assert(error == 0);
}

void Encryption::decrypt(std::span<gr_uint8> bytes) {
  if (!isKeySet() || bytes.empty()) return;
  [[maybe_unused]] gcry_error_t error =
      gcry_cipher_setiv(m_cipher.get(), ENCRYPTION_VECTOR.data(), ENCRYPTION_VECTOR.size());
  assert(error == 0);
  error = gcry_cipher_decrypt(m_cipher.get(), bytes.data(), bytes.size(), nullptr, 0);
  assert(error == 0);
}
