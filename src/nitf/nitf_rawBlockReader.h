/// @file
/// NITFRawBlockReader, an uncompressed NITF image of several blocks.
#pragma once

#include <memory>

#include "image/gri_sceneBuffer.h"
#include "nitf/gri_rawSampleReader.h"
#include "nitf/nitf_imageReader.h"
#include "nitf/nitf_imageRect.h"

/// Holds the blocks that a strip touches, so that the strips of one row of blocks read each block
/// once; the cache outlives the decode. Where a row of blocks is too large, it holds as many rows
/// of it as it may: any row of a raw block can be reached.
class NITFRawBlockReader : public NITFImageReader {
 public:
  /// Bytes of a cache, of which there can be two for a moment. A single strip may need more.
  static constexpr gr_uint64 CACHE_BYTES = 12 * 1024 * 1024;

  [[nodiscard]] GR_STATUS initialize(std::unique_ptr<GRIOStreamInf> stream,
                                     GRUtilSmartPointer<NITFImageManager> manager,
                                     const NITFImageSegment& segment, bool useWorldFile) override;

  [[nodiscard]] GR_STATUS decodeBegin(const GRIScene&) override { return GR_STATUS_OK; }
  /// @return 0; 50014 for a scene outside of the image; 51204, or the stream's status, for a block
  ///         that isn't whole in the file; 51207 for memory
  [[nodiscard]] GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& scene) override;
  [[nodiscard]] GR_STATUS decodeEnd() override { return GR_STATUS_OK; }

 private:
  GR_STATUS decodeRect(GRISceneBuffer& buffer, const NITFImageRect& rect);
  NITFImageRect getOuterRect(const NITFImageRect& rect) const;
  GR_STATUS loadCache(const NITFImageRect& outer);
  GR_STATUS fillAbsent(GRISceneBuffer& buffer, bool withNoData) const;
  GR_STATUS copyFromCache(GRISceneBuffer& buffer, const NITFImageRect& rect);
  GR_STATUS readBlocks(GRISceneBuffer& buffer, const NITFImageRect& origin,
                       const NITFImageRect& rect);
  GR_STATUS readBlock(GRISceneBuffer& buffer, const NITFImageRect& origin,
                      const NITFImageRect& part, gr_uint64 block, gr_uint16 firstBand);

  gr_uint32 m_blockCols = 0;
  gr_uint32 m_blockRows = 0;
  gr_uint64 m_blockBytes = 0;
  gr_uint64 m_pixelBytes = 0;  // of the data area that follows the mask
  GRIRawSamples m_samples;     // of a block, without its offset
  GRIRawSampleReader m_sampleReader;
  std::unique_ptr<GRISceneBuffer> m_cache;
  NITFImageRect m_cached;  // what the cache holds; empty when it can't be trusted
};
