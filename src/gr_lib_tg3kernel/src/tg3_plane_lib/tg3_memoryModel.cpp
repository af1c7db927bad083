#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_memoryModel.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

TG3MemoryModel modelOf(TesraMemoryUsage usage) {
  switch (usage) {
    case TESRA_MEMORY_DEFAULT:
      return TG3_MEMORY_DEFAULT;
    case TESRA_MEMORY_SMALL:
      return TG3_MEMORY_PARTIAL;
    case TESRA_MEMORY_NORMAL:
    case TESRA_MEMORY_LARGE:
      return TG3_MEMORY_FULL;
    default:
      return TG3_MEMORY_NONE;
  }
}

// Whether the rows of subblocks lie together, so that records can be walked over.
bool canWalk(const TG3PlanesetPacket& planeset) {
  return planeset.getOrdering() == TG3_ORDERING_PIPE &&
         planeset.getStorage() == TG3_STORAGE_DATA_FIRST && planeset.getType().versionMajor == 0;
}

}  // namespace

double tg3_estimateIndexBytes(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset) {
  const double planes = static_cast<double>(planeset.getNumPlanes());
  const double slots = static_cast<double>(info.getTotalSlots());
  return std::trunc(planes * 3.4 / info.numComponents + slots * 8.0) + 11814;
}

TG3MemoryModel tg3_overrideMemoryModel(TG3MemoryModel model, const char* variable) {
  if (variable == nullptr) return model;
  // "partia" is enough.
  if (std::strncmp(variable, "partial", 6) == 0) return TG3_MEMORY_PARTIAL;
  if (std::strncmp(variable, "full", 4) == 0) return TG3_MEMORY_FULL;
  if (std::strncmp(variable, "default", 7) == 0) return TG3_MEMORY_DEFAULT;
  return model;
}

TG3MemoryModel tg3_chooseMemoryModel(TesraMemoryUsage usage, const TG3ImageInfo& info,
                                     const TG3PlanesetPacket& planeset) {
  TG3MemoryModel model = modelOf(usage);
  if (model == TG3_MEMORY_NONE) return model;
  model = tg3_overrideMemoryModel(model, std::getenv("GR_TG3_MEMORY_MODEL"));
  if (model == TG3_MEMORY_DEFAULT) {
    const bool isSmall = tg3_estimateIndexBytes(info, planeset) < TG3_LARGEST_FULL_INDEX;
    model = isSmall ? TG3_MEMORY_FULL : TG3_MEMORY_PARTIAL;
  }
  return model == TG3_MEMORY_PARTIAL && !canWalk(planeset) ? TG3_MEMORY_FULL : model;
}
