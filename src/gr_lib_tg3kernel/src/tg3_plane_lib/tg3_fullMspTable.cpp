#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_fullMspTable.h"

#include <algorithm>
#include <utility>

GR_STATUS TG3FullMSPTable::add(const TG3PlaneLocation& location) {
  const TG3PlaneDesc& desc = location.desc;
  Subband& subband = m_subbands[desc.subband];
  subband.isSorted = subband.isSorted &&
                     (subband.entries.empty() || subband.entries.back().subblock < desc.subblock);
  const Entry entry = {location.dataOffset, location.lengthOffset, desc.subblock, desc.component,
                       desc.plane};
  return GR_SUCCESS(subband.entries.append(entry)) ? GR_STATUS_OK : TG3_STATUS_NO_MEMORY;
}

void TG3FullMSPTable::finish() {
  for (Subband& subband : m_subbands) {
    if (subband.isSorted) continue;
    // Records are read in the order of the file, so of several the first one lies first.
    GRGrowingArray<Entry>& entries = subband.entries;
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
      return std::pair(a.subblock, a.lengthOffset) < std::pair(b.subblock, b.lengthOffset);
    });
    const Entry* const end =
        std::unique(entries.begin(), entries.end(),
                    [](const Entry& a, const Entry& b) { return a.subblock == b.subblock; });
    entries.truncate(static_cast<size_t>(end - entries.begin()));
    subband.isSorted = true;
  }
}

const TG3FullMSPTable::Entry* TG3FullMSPTable::firstFrom(gr_uint32 subband,
                                                         gr_uint32 subblock) const {
  const GRGrowingArray<Entry>& entries = m_subbands[subband].entries;
  // Entries ascend without repeating, so none stands behind its own number, and where every
  // subblock has planes it stands right there.
  if (subblock < entries.size() && entries[subblock].subblock == subblock) {
    return &entries[subblock];
  }
  const size_t last = std::min(entries.size(), size_t{subblock});
  return std::lower_bound(
      entries.begin(), entries.begin() + last, subblock,
      [](const Entry& entry, gr_uint32 number) { return entry.subblock < number; });
}

GR_STATUS TG3FullMSPTable::lookup(gr_uint32 subband, gr_uint32 subblock,
                                  TG3FilePlaneReader& /*reader*/, bool& found,
                                  TG3PlaneLocation& location) const {
  const Entry* const entry = firstFrom(subband, subblock);
  found = entry != m_subbands[subband].entries.end() && entry->subblock == subblock;
  if (!found) return GR_STATUS_OK;
  location.desc = {static_cast<gr_uint8>(subband), subblock, entry->component, entry->plane};
  location.dataOffset = entry->dataOffset;
  location.lengthOffset = entry->lengthOffset;
  return GR_STATUS_OK;
}

bool TG3FullMSPTable::hasAny(gr_uint32 subband, gr_uint32 first, gr_uint32 last) const {
  const Entry* const entry = firstFrom(subband, first);
  return entry != m_subbands[subband].entries.end() && entry->subblock <= last;
}
