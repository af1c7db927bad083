#include "gr_lib_utils/include/gr_sha1.h"

#include <gcrypt.h>

#include "gr_lib_utils/src/gr_gcrypt.h"

GRSha1Digest gr_sha1(std::span<const gr_uint8> bytes) {
  gr_initGcrypt();
  GRSha1Digest digest{};
  gcry_md_hash_buffer(GCRY_MD_SHA1, digest.data(), bytes.data(), bytes.size());
  return digest;
}
