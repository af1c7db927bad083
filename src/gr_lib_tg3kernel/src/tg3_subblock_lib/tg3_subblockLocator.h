/// @file
/// TG3SubblockLocator, whether a subblock matters for a part of an image at a range of scales.
#pragma once

#include <array>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"

/// Finds the subblocks that the whole image takes at a range of scales. The scale of a subband is
/// that of what its level makes: 0 for the finest.
class TG3SubblockLocator {
 public:
  /// All of an image, at all of its scales.
  explicit TG3SubblockLocator(const TG3ImageInfo& info)
      : m_info(info), m_scaleMax(info.numLevels) {}
  virtual ~TG3SubblockLocator() = default;
  TG3SubblockLocator(const TG3SubblockLocator&) = delete;
  TG3SubblockLocator& operator=(const TG3SubblockLocator&) = delete;

  // Of a subblock of the image: `subband` is below its number of subbands, and `subblock` below
  // its number of subblocks.

  /// Whether any of its samples matters.
  bool meets(gr_uint32 subband, gr_uint32 subblock) const {
    return getContribution(subband, subblock) > 0;
  }
  /// Whether some of its samples matter and others don't.
  bool meetsPartly(gr_uint32 subband, gr_uint32 subblock) const;
  /// The share of a full subblock that matters: 0 for none of it, 1 for a full one that does as a
  /// whole, and the more the more of it is covered.
  float getContribution(gr_uint32 subband, gr_uint32 subblock) const;

 protected:
  bool isInRange(gr_uint32 subband) const;
  /// The part of a subband that matters, in its own coordinates.
  virtual TG3Rect getSupport(gr_uint32 subband) const;

  const TG3ImageInfo m_info;
  gr_int32 m_scaleMin = 0;  ///< the removed levels count
  gr_int32 m_scaleMax;      ///< the removed levels count
};

/// The same for a rectangle of the visible image.
class TG3SubblockRectLocator final : public TG3SubblockLocator {
 public:
  explicit TG3SubblockRectLocator(const TG3ImageInfo& info) : TG3SubblockLocator(info) {}

  /// @param rectangle  of the visible image at scale `scaleMin`
  /// @param scaleMin, scaleMax  from 0, the full size of the visible image, upwards
  /// @return 0; 2009 for a rectangle that is empty or leaves the image at that scale, and for
  ///         scales that the image hasn't or that are the wrong way round
  [[nodiscard]] GR_STATUS initialize(const TG3Rect& rectangle, gr_int32 scaleMin,
                                     gr_int32 scaleMax);

 protected:
  TG3Rect getSupport(gr_uint32 subband) const override { return m_supports[subband]; }

 private:
  std::array<TG3Rect, TG3ImageInfo::MAX_SUBBANDS> m_supports{};
};
