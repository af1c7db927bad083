/// @file
/// DecodeBase, rows of wavelet coefficients made of the coded planes of an image.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorTransform.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_rowSource.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeStoreClient.h"
#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockDecode.h"
#include "gr_lib_utils/include/gr_memory.h"

class GRIInterruptDelegate;

/// Decodes subblocks when the first of their rows is asked for, and keeps one row of subblocks of
/// each subband, as wide as the window that is being decoded. The colour transform of the file is
/// undone here, subband by subband.
///
/// Memory follows the window and what is stored: components and subbands without planes take none.
class DecodeBase : public TG3RowSource {
 public:
  DecodeBase() = default;

  /// @param info, client  the image; both outlive this
  /// @return 0; 2005 for a colour transform that isn't known, or doesn't fit the number of
  ///         components; 2012 for memory
  [[nodiscard]] GR_STATUS initialize(const TG3ImageInfo& info, TG3PlaneStoreClient& client);

  /// Who is asked after each subblock whether to go on; null for nobody.
  void setInterruptDelegate(GRIInterruptDelegate* delegate) { m_interrupt = delegate; }
  /// Forgets all rows, at the end of a decode.
  void dropRows();

  /// @return 0; 2009 for a row or columns that the subband doesn't have; 2012 for memory, and for a
  ///         huge subblock that has next to no bytes and isn't asked for as a whole either; else
  ///         the status of the plane store or of the interrupt delegate
  GR_STATUS getRow(gr_uint32 band, gr_uint32 row, gr_uint32 firstCol, gr_uint32 lastCol,
                   const gr_int32** components) override;

 private:
  /// One component of a row of subblocks.
  struct ComponentRows {
    GRArray<gr_int32> samples;  // rows of Band::stride
    gr_uint32 filled = 0;  // columns of the window, from its left, that are decoded; 0: all zero
  };
  /// The row of subblocks of a subband that was asked for last.
  struct Band {
    bool isLoaded = false;
    gr_uint32 firstCol = 1;  // of the window, in the subband; none yet
    gr_uint32 lastCol = 0;
    gr_uint32 firstRow = 0;  // of the subblocks
    gr_uint32 lastRow = 0;
    TG3Rect coded;
    GRArray<ComponentRows> components;  // empty until something is stored

    gr_uint32 columns() const { return lastCol - firstCol + 1; }
    gr_uint32 rows() const { return lastRow - firstRow + 1; }
  };

  GR_STATUS load(gr_uint32 subband, gr_uint32 row, Band& band);
  GR_STATUS decodeSubblock(gr_uint32 subband, gr_uint32 subblock, Band& band);
  GR_STATUS decodeComponent(const TG3SubblockShape& shape, const TG3Rect& rect,
                            TG3SubblockPlanes planes, Band& band);
  GR_STATUS startComponent(Band& band, gr_uint32 component, ComponentRows*& rows);
  GR_STATUS undoColorTransform(Band& band);

  const TG3ImageInfo* m_info = nullptr;
  TG3PlaneStoreClient* m_client = nullptr;
  GRIInterruptDelegate* m_interrupt = nullptr;
  TG3ColorTransform m_colorTransform;
  SubblockDecode m_decoder;
  GRArray<Band> m_bands;        // one per subband
  GRArray<gr_int32> m_scratch;  // a subblock that the window cuts
};
