/// @file
/// TG3PlaneDescIter, the slots for planes of an image in the order of its file.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDesc.h"
#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockIter.h"

/// Walks over all slots: subblock by subblock, and in each component by component, plane by plane.
class TG3PlaneDescIter {
 public:
  TG3PlaneDescIter() = default;

  /// @param info  the image; the caller's, and it outlives the iterator
  /// @return 0, and it stands at the first slot; 2009 where the image can't have this order; 2012
  ///         for memory
  [[nodiscard]] GR_STATUS initialize(const TG3ImageInfo& info, TG3Ordering ordering);

  bool isAtEnd() const { return m_left == 0; }
  /// The slots from this one on.
  gr_uint64 getLeft() const { return m_left; }
  /// The slot; invalid at the end.
  const TG3PlaneDesc& get() const { return m_desc; }
  /// Goes on by `count` slots; a step past the last one ends the walk.
  void advance(gr_uint64 count);

 private:
  void readSubblock();

  gr_uint32 m_numPlanes = 0;
  gr_uint32 m_numComponents = 0;
  gr_uint64 m_left = 0;
  std::unique_ptr<TG3SubblockIter> m_subblocks;
  TG3PlaneDesc m_desc;
};
