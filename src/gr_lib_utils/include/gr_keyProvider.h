/// @file
/// KeyProvider, which gets the key of a locked image from whoever knows it.
#pragma once

#include <array>
#include <iosfwd>

#include "gr_lib_utils/include/gr_secret.h"
#include "gr_lib_utils/include/gr_types.h"

/// Asks for keys. A lock names the type of provider that it was made with.
class KeyProvider {
 public:
  enum LockType : gr_uint8 { LOCK_TYPE_ERROR = 0, LOCK_TYPE_PASSWORD = 1 };
  enum LockDirection : gr_uint8 { LOCK_DIR_ERROR = 0, LOCK_DIR_LOCK = 1, LOCK_DIR_UNLOCK = 2 };

  virtual ~KeyProvider() = default;
  KeyProvider(const KeyProvider&) = delete;
  KeyProvider& operator=(const KeyProvider&) = delete;

  /// Gets the text of a key for an image.
  /// @param text  receives it without a zero at its end; empty when nobody gives one
  /// @return 0, also then; 8 for memory
  [[nodiscard]] virtual GR_STATUS getKey(LockDirection direction, GRSecret& text) {
    return getKeyWithDescription(getDefaultDescription(), direction, text);
  }
  /// The same for a part of an image.
  /// @param description  of the part, for the one who is asked
  [[nodiscard]] virtual GR_STATUS getKeyWithDescription(const char* description,
                                                        LockDirection direction, GRSecret& text) {
    return askForKey(description, direction, text);
  }
  virtual LockType getType() const = 0;
  /// What one says about a key that doesn't fit.
  virtual const char* getFailureMessage() const = 0;
  /// Tells whoever gave the last key that it doesn't fit.
  virtual void reportFailure() = 0;
  virtual const char* getDefaultDescription() const = 0;

 protected:
  KeyProvider() = default;
  virtual GR_STATUS askForKey(const char* description, LockDirection direction, GRSecret& text) = 0;
};

/// Gets passwords.
class KeyProviderPwd : public KeyProvider {
 public:
  LockType getType() const override { return LOCK_TYPE_PASSWORD; }
  const char* getFailureMessage() const override { return "Incorrect password"; }
  const char* getDefaultDescription() const override { return "This Tesra image"; }
};

/// Asks for a password on a stream and reads a line from another.
class KeyProviderPwdIStream final : public KeyProviderPwd {
 public:
  /// @param answers, questions  the caller's; they outlive the provider
  KeyProviderPwdIStream(std::istream& answers, std::ostream& questions)
      : m_answers(answers), m_questions(questions) {}

  void reportFailure() override;

 protected:
  GR_STATUS askForKey(const char* description, LockDirection direction, GRSecret& text) override;

 private:
  std::istream& m_answers;
  std::ostream& m_questions;
};

/// The providers that a reader knows, one of each type. They stay the caller's.
class KeyProviderRegistry {
 public:
  void add(KeyProvider& provider) { m_providers[provider.getType()] = &provider; }
  /// @param type  as a file has it
  /// @return null where there is none of this type
  KeyProvider* find(gr_uint8 type) const {
    return type < m_providers.size() ? m_providers[type] : nullptr;
  }

 private:
  std::array<KeyProvider*, KeyProvider::LOCK_TYPE_PASSWORD + 1> m_providers{};
};
