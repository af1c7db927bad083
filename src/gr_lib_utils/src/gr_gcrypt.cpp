#include "gr_lib_utils/src/gr_gcrypt.h"

#include <gcrypt.h>

void gr_initGcrypt() {
  // What the manual asks of a library: only where nobody else has begun. Its pages of locked memory
  // are few and need rights, so we do without them and wipe.
  static const bool isUp = [] {
    if (gcry_control(GCRYCTL_ANY_INITIALIZATION_P) == 0) {
      gcry_check_version(nullptr);
      gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
      gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
    }
    return true;
  }();
  static_cast<void>(isUp);
}
