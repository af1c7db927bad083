/// @file
/// TG3FullMSPTable, the index with an entry for each subblock.
#pragma once

#include <array>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_mspTable.h"
#include "gr_lib_utils/include/gr_growingArray.h"

/// 24 bytes for each subblock that has planes; a lookup reads nothing.
class TG3FullMSPTable final : public TG3MSPTable {
 public:
  TG3FullMSPTable() = default;

  [[nodiscard]] GR_STATUS add(const TG3PlaneLocation& location) override;
  void finish() override;
  [[nodiscard]] GR_STATUS lookup(gr_uint32 subband, gr_uint32 subblock, TG3FilePlaneReader& reader,
                                 bool& found, TG3PlaneLocation& location) const override;
  bool hasAny(gr_uint32 subband, gr_uint32 first, gr_uint32 last) const override;

 private:
  struct Entry {
    gr_uint64 dataOffset;
    gr_uint64 lengthOffset;
    gr_uint32 subblock;
    gr_uint16 component;
    gr_uint8 plane;
  };
  static_assert(sizeof(Entry) == 24);

  // By ascending subblock, in which files have them; only those with several regions don't.
  struct Subband {
    GRGrowingArray<Entry> entries;
    bool isSorted = true;
  };

  const Entry* firstFrom(gr_uint32 subband, gr_uint32 subblock) const;

  std::array<Subband, TG3ImageInfo::MAX_SUBBANDS> m_subbands;
};
