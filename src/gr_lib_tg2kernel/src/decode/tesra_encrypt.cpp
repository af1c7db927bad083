#include "gr_lib_tg2kernel/src/decode/tesra_encrypt.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_keyProvider.h"
#include "gr_lib_utils/include/gr_secret.h"
#include "gr_lib_utils/include/gr_status.h"
#include "metadata/gri_metadataAcc.h"

namespace {

// Whether the key of a cipher brings the signature back.
bool isProved(Encryption& encryption, std::span<const gr_uint8> enciphered) {
  std::array<gr_uint8, ENCRYPTION_SIGNATURE.size()> text{};
  if (!encryption.isKeySet() || enciphered.size() != text.size()) return false;
  std::copy(enciphered.begin(), enciphered.end(), text.begin());
  encryption.decrypt(text);
  return text == ENCRYPTION_SIGNATURE;
}

GR_STATUS setContentKey(const GRIMetadataAccConst& records, Encryption& encryption,
                        std::span<const gr_uint8> password) {
  encryption.setKey(password);
  std::span<const gr_uint8> enciphered;
  GR_RETURN_IF_FAILED(records.getTagVector(GRI_TAG_IMAGE_KEY, enciphered));
  if (Encryption::checkKey(enciphered.size()) != Encryption::KEY_OK) return GR_STATUS_INVALID_KEY;
  GRSecret contentKey;
  GR_RETURN_IF_FAILED(contentKey.assign(enciphered));
  encryption.decrypt(contentKey.span());
  encryption.setKey(contentKey.span());
  return GR_STATUS_OK;
}

GR_STATUS unlock(const GRIMetadataAccConst& records, Encryption& encryption,
                 const KeyProviderRegistry& providers) {
  gr_uint8 type = KeyProvider::LOCK_TYPE_ERROR;
  GR_RETURN_IF_FAILED(records.getTagScalar(GRI_TAG_IMAGE_FILE_IS_LOCKED, type));
  KeyProvider* const provider = providers.find(type);
  if (provider == nullptr) return GR_STATUS_NO_KEY_PROVIDER;

  GRSecret password;
  GR_RETURN_IF_FAILED(provider->getKey(KeyProvider::LOCK_DIR_UNLOCK, password));
  if (password.empty()) return GR_STATUS_NO_KEY;
  if (Encryption::checkKey(password.size()) != Encryption::KEY_OK) return GR_STATUS_INVALID_KEY;
  GR_RETURN_IF_FAILED(setContentKey(records, encryption, password.span()));

  std::span<const gr_uint8> signature;
  GR_RETURN_IF_FAILED(records.getTagVector(GRI_TAG_IMAGE_SIGNATURE, signature));
  if (isProved(encryption, signature)) return GR_STATUS_OK;
  provider->reportFailure();
  return GR_STATUS_WRONG_KEY;
}

}  // namespace

bool tesraIsLocked(const GRIMetadataDatabase& database) {
  return database.has(GRI_TAG_IMAGE_FILE_IS_LOCKED);
}

GR_STATUS tesraUnlock(const GRIMetadataDatabase& database, Encryption& encryption,
                      const KeyProviderRegistry& providers) {
  const GRIMetadataAccConst records(database);
  std::span<const gr_uint8> signature;
  if (GR_SUCCESS(records.getTagVector(GRI_TAG_IMAGE_SIGNATURE, signature)) &&
      isProved(encryption, signature)) {
    return GR_STATUS_OK;
  }
  GR_STATUS status = GR_STATUS_OK;
  try {
    status = unlock(records, encryption, providers);
  } catch (const GRUtilException& exception) {
    status = exception.getStatus();
  }
  // A wrong key would decipher tables into nonsense, so none is left.
  if (!GR_SUCCESS(status)) encryption.clearKey();
  return status;
}
