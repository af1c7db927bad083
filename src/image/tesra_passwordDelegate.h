/// @file
/// TesraPasswordDelegate, the host's side of a locked image.
#pragma once

#include <cstring>
#include <memory>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_secret.h"
#include "gr_lib_utils/include/gr_status.h"

/// Is asked for the password of a locked image when a part of it is decoded.
class TesraPasswordDelegate {
 public:
  virtual ~TesraPasswordDelegate() = default;
  /// Hears that the last password was wrong.
  virtual void reportIncorrectPassword() = 0;
  /// @return the password, empty when there is none; it stays the delegate's and lives as long
  virtual const char* getPassword() = 0;

 protected:
  TesraPasswordDelegate() = default;
  TesraPasswordDelegate(const TesraPasswordDelegate&) = default;
  TesraPasswordDelegate& operator=(const TesraPasswordDelegate&) = default;
};

/// Holds one password and always gives that. It is wiped with the delegate.
class TesraSimplePasswordDelegate : public TesraPasswordDelegate {
 public:
  /// A delegate with a copy of `password`; null when memory runs out.
  [[nodiscard]] static std::unique_ptr<TesraSimplePasswordDelegate> create(const char* password) {
    std::unique_ptr<TesraSimplePasswordDelegate> made =
        gr_makeUnique<TesraSimplePasswordDelegate>();
    const size_t bytes = std::strlen(password) + 1;
    if (made == nullptr || !GR_SUCCESS(made->m_password.assign(
                               {reinterpret_cast<const gr_uint8*>(password), bytes}))) {
      return nullptr;
    }
    return made;
  }

  void reportIncorrectPassword() override {}
  const char* getPassword() override {
    return m_password.empty() ? "" : reinterpret_cast<const char*>(m_password.span().data());
  }

 private:
  GRSecret m_password;  // with its zero
};
