/// @file
/// TesraImageReaderInterface, what every reader of the Tesra formats answers beyond an image stage.
/// It stands this low because the kernels of both generations implement it.
#pragma once

#include "gr_lib_utils/include/gr_contentKeys.h"
#include "gr_lib_utils/include/gr_types.h"
#include "image/tesra_encryptImp.h"
#include "image/tesra_passwordDelegate.h"

/// How much memory a reader may take for the sake of speed.
enum TesraMemoryUsage : gr_int32 {
  TESRA_MEMORY_DEFAULT = 1,  ///< by the size of the image
  TESRA_MEMORY_SMALL = 2,
  TESRA_MEMORY_NORMAL = 3,
  TESRA_MEMORY_LARGE = 4,
};

/// How a reader treats the stream between two uses.
enum TesraStreamUsage : gr_int32 {
  TESRA_STREAM_KEEP_OPEN = 2,
  TESRA_STREAM_CLOSE = 3,  ///< opened and closed around each use
};

class TesraImageReaderInterface {
 public:
  virtual ~TesraImageReaderInterface() = default;

  /// Wavelet levels that a host can reduce by: the smallest magnification is 2^-levels.
  virtual gr_uint8 getNumLevels() const = 0;
  /// Whether some part of the file needs a password. It tells about the file: a password that
  /// was set doesn't change it.
  virtual bool isLocked() const = 0;
  /// The version bytes of the file.
  virtual void getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                          gr_int8& letter) const = 0;

  /// Replaces who is asked for a password; null for nobody. The delegate stays the caller's and
  /// outlives the reader, or is replaced before it goes.
  virtual void setPasswordDelegate(TesraPasswordDelegate* delegate) {
    m_keyProvider.setDelegate(delegate);
  }
  TesraPasswordDelegate* getPasswordDelegate() const { return m_keyProvider.getDelegate(); }

  /// Lends the reader the keys that earlier readers of its image have proved; it adds its own.
  /// @param keys  the caller's, and they outlive the reader; null for none
  void setContentKeys(GRContentKeys* keys) { m_contentKeys = keys; }

 protected:
  TesraImageReaderInterface() { m_keyProviders.add(m_keyProvider); }
  TesraImageReaderInterface(const TesraImageReaderInterface&) = delete;
  TesraImageReaderInterface& operator=(const TesraImageReaderInterface&) = delete;

  /// Who is asked for the keys of a lock: the delegate, for passwords.
  const KeyProviderRegistry& getKeyProviders() const { return m_keyProviders; }
  GRContentKeys* getContentKeys() const { return m_contentKeys; }

 private:
  EncryptImp m_keyProvider;
  KeyProviderRegistry m_keyProviders;
  GRContentKeys* m_contentKeys = nullptr;
};
