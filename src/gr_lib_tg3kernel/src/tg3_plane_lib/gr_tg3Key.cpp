#include "gr_lib_tg3kernel/src/tg3_plane_lib/gr_tg3Key.h"

#include <cassert>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr int MOST_ATTEMPTS = 3;
constexpr gr_uint8 TYPE_WITHOUT_DIGEST = 5;

// What a failure of the cipher or the digest is here.
GR_STATUS statusOf(GR_STATUS status) {
  return status == GR_STATUS_NO_MEMORY ? TG3_STATUS_NO_MEMORY : TG3_STATUS_SECURITY;
}

}  // namespace

GR_STATUS GRTG3Key::readData(GRFieldReader& fields, bool isLegacy) {
  m_isLegacy = isLegacy;
  gr_uint16 length = 0;
  GR_RETURN_IF_FAILED(fields.read(length));
  if (length == 0) return TG3_STATUS_FORMAT_ERROR;
  if (isLegacy) {
    gr_uint16 numConjuncts = 0;
    GR_RETURN_IF_FAILED(fields.read(numConjuncts));
    if (numConjuncts != 0) return TG3_STATUS_FORMAT_ERROR;
  }
  GR_RETURN_IF_FAILED(fields.read(m_providerType));
  if (!isLegacy) {
    const GR_STATUS status = fields.read(m_contentKey, length);
    if (!GR_SUCCESS(status)) return status == GR_STATUS_NO_MEMORY ? TG3_STATUS_NO_MEMORY : status;
  }
  if (isLegacy || m_providerType != TYPE_WITHOUT_DIGEST) {
    GRSha1Digest digest{};
    GR_RETURN_IF_FAILED(fields.read(digest.data(), digest.size()));
    m_digest = digest;
  }
  if (isLegacy) {
    gr_uint8 usesGuid = 0;
    GR_RETURN_IF_FAILED(fields.read(usesGuid));
    if (usesGuid != 0) return TG3_STATUS_FORMAT_ERROR;
  }
  return GR_STATUS_OK;
}

GR_STATUS GRTG3Key::unlock(const KeyProviderRegistry& providers, const char* description) {
  assert(!haveContentKey());
  KeyProvider* const provider = providers.find(m_providerType);
  if (!m_mayAsk || provider == nullptr || !m_digest) return TG3_STATUS_SECURITY;
  if (!m_isLegacy && Encryption::checkKey(m_contentKey.size()) != Encryption::KEY_OK) {
    return TG3_STATUS_SECURITY;
  }
  for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
    GRSecret password;
    if (!GR_SUCCESS(
            provider->getKeyWithDescription(description, KeyProvider::LOCK_DIR_UNLOCK, password))) {
      return TG3_STATUS_NO_MEMORY;
    }
    if (password.empty()) {
      m_mayAsk = false;
      return TG3_STATUS_SECURITY;
    }
    if (Encryption::checkKey(password.size()) != Encryption::KEY_OK) continue;
    GRSha1Digest digest{};
    const GR_STATUS status = gr_sha1(password.span(), digest);
    if (!GR_SUCCESS(status)) return statusOf(status);
    if (digest != *m_digest) {
      provider->reportFailure();
      return TG3_STATUS_SECURITY;
    }
    return takeContentKey(password.span());
  }
  return TG3_STATUS_SECURITY;
}

GR_STATUS GRTG3Key::takeContentKey(std::span<const gr_uint8> password) {
  if (m_isLegacy) return setContentKey(password);
  GRSecret contentKey;
  if (!GR_SUCCESS(contentKey.assign(m_contentKey.span()))) return TG3_STATUS_NO_MEMORY;
  try {
    Encryption withPassword;
    withPassword.setKey(password);
    withPassword.decrypt(contentKey.span());
  } catch (const GRUtilException& exception) {
    return statusOf(exception.getStatus());
  }
  return setContentKey(contentKey.span());
}

GR_STATUS GRTG3Key::setContentKey(std::span<const gr_uint8> contentKey) {
  try {
    m_cipher.setKey(contentKey);
  } catch (const GRUtilException& exception) {
    return statusOf(exception.getStatus());
  }
  m_contentKey.clear();
  m_digest.reset();
  return GR_STATUS_OK;
}
