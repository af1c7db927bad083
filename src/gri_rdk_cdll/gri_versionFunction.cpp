// The exported function about the version; what it does is documented in the public header.
#include "gr_lib_utils/include/gr_status.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_version.h"

namespace {

// No function gives this one out: it is there to be found in the file of the library.
[[gnu::used]] constexpr char VERSION_STRING[] = "SDK Version 7.0.0.2181.HEAD";

}  // namespace

GR_STATUS gric_getVersion(gr_uint32* major, gr_uint32* minor, gr_uint32* tweak, gr_uint32* build,
                          const char** branch) {
  if (major == nullptr || branch == nullptr) return GR_STATUS_NULL_ARGUMENT;
  *major = GRI_VERSION_MAJOR;
  *minor = GRI_VERSION_MINOR;
  *tweak = GRI_VERSION_TWEAK;
  *build = GRI_VERSION_BUILD;
  *branch = GRI_VERSION_BRANCH;
  return GR_STATUS_OK;
}
