/// @file
/// NITFRawBlockReader, an uncompressed NITF image of several blocks.
#pragma once

#include <memory>

#include "image/gri_sceneBuffer.h"
#include "nitf/gri_rawSampleReader.h"
#include "nitf/nitf_blockRows.h"
#include "nitf/nitf_imageReader.h"
#include "nitf/nitf_imageRect.h"

/// Holds the bytes of the row of blocks that it came to last, so that the strips of a row of blocks
/// read each block once; they outlive the decode. Where a row of blocks is too large, it holds as
/// many rows of it as it may: any row of a raw block can be reached.
class NITFRawBlockReader : public NITFImageReader {
 public:
  static constexpr gr_uint64 CACHE_BYTES = gr_uint64{12} * 1024 * 1024;

  /// Bytes that are held at most.
  void setCacheBytes(gr_uint64 cacheBytes) { m_cacheBytes = cacheBytes; }

  [[nodiscard]] GR_STATUS initialize(std::unique_ptr<GRIOStreamInf> stream,
                                     GRUtilSmartPointer<NITFImageManager> manager,
                                     const NITFImageSegment& segment, bool useWorldFile) override;

  [[nodiscard]] GR_STATUS decodeBegin(const GRIScene&) override { return GR_STATUS_OK; }
  /// @return 0; 50014 for a scene outside of the image; 51204, or the stream's status, for a block
  ///         that isn't whole in the file; 51207 for memory
  [[nodiscard]] GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& scene) override;
  [[nodiscard]] GR_STATUS decodeEnd() override;

 private:
  GR_STATUS decodeRect(GRISceneBuffer& buffer, const NITFImageRect& rect);
  GR_STATUS decodeMasked(GRISceneBuffer& buffer, const NITFImageRect& rect);
  GR_STATUS fillAbsent(GRISceneBuffer& buffer) const;
  NITFImageRect getRowsToHold(const NITFImageRect& rect) const;
  GR_STATUS readBlocks(GRISceneBuffer& buffer, gr_uint32 firstRow, const NITFImageRect& rect);

  gr_uint64 m_cacheBytes = CACHE_BYTES;
  gr_uint32 m_blockCols = 0;
  gr_uint32 m_blockRows = 0;
  NITFBlockRows m_rows;
  GRIRawSampleReader m_sampleReader;        // for strips that are too large to be held
  std::unique_ptr<GRISceneBuffer> m_strip;  // with its pixels that are no data
};
