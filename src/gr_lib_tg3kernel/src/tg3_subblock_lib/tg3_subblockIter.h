/// @file
/// TG3SubblockIter, the subblocks of an image in the order of its file.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_planesetPacket.h"
#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_orderingPipe.h"

/// Walks over all subblocks of an image, once and forwards. Steps of any length cost the same.
class TG3SubblockIter {
 public:
  virtual ~TG3SubblockIter() = default;
  TG3SubblockIter(const TG3SubblockIter&) = delete;
  TG3SubblockIter& operator=(const TG3SubblockIter&) = delete;

  /// @param info  the image; the caller's, and it outlives the iterator
  /// @param iter  receives the iterator at the first subblock
  /// @return 0; 2009 where the image can't have this order; 2012 for memory
  [[nodiscard]] static GR_STATUS make(const TG3ImageInfo& info, TG3Ordering ordering,
                                      std::unique_ptr<TG3SubblockIter>& iter);

  bool isAtEnd() const { return m_left == 0; }
  gr_uint32 getSubband() const { return m_subband; }    ///< not at the end
  gr_uint32 getSubblock() const { return m_subblock; }  ///< not at the end
  /// The subblocks from this one on.
  gr_uint64 getLeft() const { return m_left; }
  /// Goes on by `count` subblocks; a step past the last one ends the walk.
  void advance(gr_uint64 count);

 protected:
  explicit TG3SubblockIter(const TG3ImageInfo& info)
      : m_info(info), m_left(info.getTotalSubblocks()) {}

  /// Prepares the order and goes to the first subblock.
  virtual GR_STATUS begin() = 0;
  /// Goes on by `count` subblocks, which doesn't pass the last one.
  virtual void step(gr_uint64 count) = 0;

  const TG3ImageInfo& m_info;
  gr_uint32 m_subband = 0;
  gr_uint32 m_subblock = 0;

 private:
  gr_uint64 m_left;
};

/// The order of the pipeline.
class PipeSubblockIter final : public TG3SubblockIter {
 public:
  explicit PipeSubblockIter(const TG3ImageInfo& info) : TG3SubblockIter(info) {}

 protected:
  GR_STATUS begin() override;
  void step(gr_uint64 count) override;

 private:
  OrderingPipe m_ordering;
  gr_uint64 m_index = 0;
};

/// Subband after subband, and in a subband by ascending number.
class SBCPSubblockIter final : public TG3SubblockIter {
 public:
  explicit SBCPSubblockIter(const TG3ImageInfo& info) : TG3SubblockIter(info) {}

 protected:
  GR_STATUS begin() override;
  void step(gr_uint64 count) override;
};
