/// @file
/// TG3TestGeometry, sizes and order of subbands and subblocks as the rules of the format read. The
/// library has its own, which tests hold against this one.
#pragma once

#include <vector>

#include "gr_lib_utils/include/gr_types.h"

class TG3TestGeometry {
 public:
  struct Band {
    gr_uint32 columns = 0;       ///< samples
    gr_uint32 rows = 0;          ///< samples
    gr_uint32 blockColumns = 0;  ///< subblocks
    gr_uint32 blockRows = 0;     ///< subblocks
    gr_uint64 numBlocks() const { return gr_uint64{blockColumns} * blockRows; }
  };
  struct Rect {
    gr_uint32 left = 0;
    gr_uint32 top = 0;
    gr_uint32 width = 0;
    gr_uint32 height = 0;
  };

  TG3TestGeometry(gr_uint32 width, gr_uint32 height, gr_uint32 numLevels, gr_uint32 blockSize);

  gr_uint32 numLevels() const { return m_numLevels; }
  gr_uint32 blockSize() const { return m_blockSize; }
  const std::vector<Band>& bands() const { return m_bands; }
  gr_uint64 totalBlocks() const;
  /// A subblock in its subband, in samples.
  Rect blockRect(gr_uint32 band, gr_uint64 block) const;

  /// The place of a subblock in a file of ordering 1, from 0.
  gr_uint64 pipeIndex(gr_uint32 band, gr_uint64 block) const;
  /// The place of a subblock in a file of ordering 5.
  gr_uint64 bandIndex(gr_uint32 band, gr_uint64 block) const;

 private:
  gr_uint32 m_numLevels;
  gr_uint32 m_blockSize;
  std::vector<Band> m_bands;
};
