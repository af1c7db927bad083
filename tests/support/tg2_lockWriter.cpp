#include "tests/support/tg2_lockWriter.h"

#include <memory>

#include "gr_lib_utils/include/gr_encryption.h"

namespace {

std::vector<gr_uint8> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

}  // namespace

std::vector<gr_uint8> TG2TestLock::contentKey() const {
  std::vector<gr_uint8> bytes(contentKeyLength);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<gr_uint8>(i * 59 + 17);
  return bytes;
}

TG2TestImage tg2_locked(TG2TestImage image, const TG2TestLock& lock) {
  // std::function copies what it holds, a cipher can't be.
  const auto content = std::make_shared<Encryption>();
  if (Encryption::checkKey(lock.contentKeyLength) == Encryption::KEY_OK) {
    content->setKey(lock.contentKey());
  }
  image.cipher = [content](std::span<gr_uint8> bytes) { content->encrypt(bytes); };

  if (lock.type) image.records.push_back(tg2_byteRecord("IMAGE::FILE_IS_LOCKED", {*lock.type}));
  if (lock.hasKey) {
    std::vector<gr_uint8> key = lock.contentKey();
    Encryption withPassword;
    withPassword.setKey(bytesOf(lock.password));
    withPassword.encrypt(key);
    image.records.push_back(tg2_byteRecord("IMAGE::KEY", key));
  }
  if (lock.hasSignature) {
    std::vector<gr_uint8> signature = bytesOf(lock.signature);
    content->encrypt(signature);
    image.records.push_back(tg2_byteRecord("IMAGE::SIGNATURE", signature));
  }
  return image;
}
