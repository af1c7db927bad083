/// @file
/// EncryptImp, the key provider of Tesra readers.
#pragma once

#include <cstring>

#include "gr_lib_utils/include/gr_keyProvider.h"
#include "image/tesra_passwordDelegate.h"

/// Gets passwords from a host's delegate; none without one.
class EncryptImp final : public KeyProviderPwd {
 public:
  /// @param delegate  the caller's, or null
  void setDelegate(TesraPasswordDelegate* delegate) { m_delegate = delegate; }
  TesraPasswordDelegate* getDelegate() const { return m_delegate; }

  void reportFailure() override {
    if (m_delegate != nullptr) m_delegate->reportIncorrectPassword();
  }

 protected:
  GR_STATUS askForKey(const char* /*description*/, LockDirection /*direction*/,
                      GRSecret& text) override {
    const char* const password = m_delegate == nullptr ? "" : m_delegate->getPassword();
    return text.assign({reinterpret_cast<const gr_uint8*>(password), std::strlen(password)});
  }

 private:
  TesraPasswordDelegate* m_delegate = nullptr;
};
