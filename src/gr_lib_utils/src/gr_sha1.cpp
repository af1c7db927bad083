#include "gr_lib_utils/include/gr_sha1.h"

#include <gcrypt.h>

#include <algorithm>
#include <memory>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_gcrypt.h"

namespace {

// libgcrypt wipes what it closes.
struct Closer {
  void operator()(gcry_md_hd_t digest) const { gcry_md_close(digest); }
};

}  // namespace

// Not in one call: gcry_md_hash_buffer works on its stack, and leaves the end of the bytes there.
GR_STATUS gr_sha1(std::span<const gr_uint8> bytes, GRSha1Digest& digest) {
  gr_initGcrypt();
  gcry_md_hd_t opened = nullptr;
  if (const gcry_error_t error = gcry_md_open(&opened, GCRY_MD_SHA1, 0)) {
    return gcry_err_code(error) == GPG_ERR_ENOMEM ? GR_STATUS_NO_MEMORY : GR_STATUS_FAILURE;
  }
  const std::unique_ptr<gcry_md_handle, Closer> owner(opened);
  gcry_md_write(opened, bytes.data(), bytes.size());
  const gr_uint8* const result = gcry_md_read(opened, GCRY_MD_SHA1);
  if (result == nullptr) return GR_STATUS_FAILURE;
  std::copy_n(result, digest.size(), digest.begin());
  return GR_STATUS_OK;
}
