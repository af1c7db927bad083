// The exported functions about statuses; what they do is documented in the public header.
#include "gr_lib_utils/include/gr_statusData.h"
#include "gr_lib_utils/include/gr_statusStrings.h"
#include "gri_rdk_cdll.h"

gr_uint32 initializeStatusStrings(void) { return GRUtilStatusData::create(); }

gr_uint32 terminateStatusStrings(void) { return GRUtilStatusData::destroy(); }

const char* getLastStatusString(GR_STATUS status) { return gr_lastStatusString(status); }

const char* getRawStatusString(GR_STATUS status) { return gr_rawStatusString(status); }
